#include "presets/system_lock.h"

#include "sim_bench.h"

namespace talvex::presets {
namespace {

using SystemLockTest = SimBench;

TEST_F(SystemLockTest, shouldPlaceEveryCharacterOfCheckNumsTable) {
  const std::pair<char, int> places[] = {{' ', 0},  {'0', 1},  {'9', 10}, {'A', 11},
                                         {'a', 12}, {'B', 13}, {'Z', 61}, {'z', 62}};
  for (const auto& [c, place] : places) {
    EXPECT_EQ(CheckNum(c), place) << c;
    EXPECT_EQ(CheckNumChar(static_cast<std::uint8_t>(place)), c);
  }
  for (char outside : {'-', '!', '\0', '~'})
    EXPECT_EQ(CheckNum(outside), std::nullopt) << outside;
  EXPECT_EQ(CheckNumChar(63), std::nullopt);
}

TEST_F(SystemLockTest, shouldRefuseBadNewPasswordsInTheirOrder) {
  const struct {
    std::string_view password, repeated;
    std::optional<std::string_view> refusal;
  } cases[] = {
      {"abc12", "abc12", kValuePasswordWrongText},    {"abc12-", "abc12-", kValuePasswordWrongText},
      {"abcdefg", "abcdef", kValuePasswordWrongText}, {"abc123", "abc124", kPasswordsDontMatchText},
      {"abc123", "abc12", kPasswordsDontMatchText},   {"Ab 9z0", "Ab 9z0", std::nullopt},
  };
  for (const auto& c : cases)
    EXPECT_EQ(CheckNewPassword(c.password, c.repeated), c.refusal) << c.password;
  EXPECT_EQ(kPasswordsDontMatchText, "Passwords don't match ");
  EXPECT_THROW(NewPasswordCommands("short"), std::invalid_argument);
}

TEST_F(SystemLockTest, shouldSetAPasswordLockAndUnlockOnlyWithIt) {
  const auto commands = NewPasswordCommands("Ab 9z0");
  const ListOutcome set = SendCommandList(link, kId, commands);
  FinishNewPassword(state, "Ab 9z0", set);
  ASSERT_EQ(observer.sent.size(), 6u);
  EXPECT_EQ(SentHex(0), "F0 81 05 11 00 18 00 00 0B 00 00 00 F7");
  EXPECT_EQ(SentHex(5), "F0 81 05 11 00 1D 00 00 01 00 00 00 F7");
  EXPECT_EQ(Memory(0x18, 6), std::string("\x0B\x0E\x00\x0A\x3E\x01", 6));

  observer.sent.clear();
  const protocol::Command lock = LockDevice(device, state);
  EXPECT_TRUE(state.Locked());
  EXPECT_EQ(device.image[327], 1);
  EXPECT_EQ(LockText(state.Locked()), "System Lock");
  ASSERT_EQ(link.SendCommand(kId, lock), link::SendResult::Replied);
  EXPECT_EQ(SentHex(0), "F0 81 05 11 00 16 00 00 01 00 00 00 F7");
  EXPECT_TRUE(Device().Locked());

  DeviceState connected;  // as a new connection learns it
  ASSERT_EQ(ReadDevicePassword(link, kId, connected), StateRead::Received);
  EXPECT_EQ(SentHex(1), "F0 81 05 10 00 1A 00 00 00 00 00 00 F7");
  EXPECT_EQ(SentHex(2), "F0 81 05 10 00 1E 00 00 00 00 00 00 F7");
  EXPECT_EQ(connected.password, state.password);

  for (std::string_view wrong : {"ab 9z0", "Ab 9z", "", "Ab 9z0!"})
    EXPECT_EQ(CheckUnlock(wrong, connected),
              wrong == "Ab 9z0!" ? std::nullopt : std::optional(kPasswordWrongText))
        << wrong;  // typed text is taken as six characters
  ASSERT_EQ(CheckUnlock("Ab 9z0", connected), std::nullopt);
  ASSERT_EQ(link.SendCommand(kId, UnlockDevice(device, connected)), link::SendResult::Replied);
  EXPECT_EQ(SentHex(3), "F0 81 05 11 00 16 00 00 00 00 00 00 F7");
  EXPECT_FALSE(Device().Locked());
  EXPECT_EQ(device.image[327], 0);
}

TEST_F(SystemLockTest, shouldOpenANeverLockedDeviceWithAnEmptyPassword) {
  EXPECT_EQ(CheckUnlock("", state), kPasswordWrongText);  // password not read yet
  ASSERT_EQ(ReadDevicePassword(link, kId, state), StateRead::Received);
  EXPECT_EQ(state.password, Password{});
  EXPECT_EQ(CheckUnlock("", state), std::nullopt);
  EXPECT_EQ(CheckUnlock("      ", state), std::nullopt);
}

TEST_F(SystemLockTest, shouldForgetAPasswordWrittenOnlyInPart) {
  state.password = Password{};
  line.simulator->Faults(kId).vanishAfterFrames = 2;
  const ListOutcome set = SendCommandList(link, kId, NewPasswordCommands("secret"));
  EXPECT_EQ(set.end, ListEnd::Stopped);
  FinishNewPassword(state, "secret", set);
  EXPECT_EQ(state.password, std::nullopt);
  EXPECT_EQ(Memory(0x18, 6), std::string("\x30\x14\0\0\0\0", 6));  // "se" written
}

}  // namespace
}  // namespace talvex::presets
