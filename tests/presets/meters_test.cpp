// Reading a device's level meters with command 18.
#include "presets/meters.h"

#include "link/clock.h"
#include "sim_bench.h"
#include "testlib/scripted_transport.h"

namespace talvex::presets {
namespace {

using MetersTest = SimBench;

TEST_F(MetersTest, shouldReadEveryChannelInOneExchange) {
  const auto levels = ReadMeters(link, kId);
  ASSERT_TRUE(levels);
  ASSERT_EQ(observer.sent.size(), 1u);
  EXPECT_EQ(SentHex(0), "F0 81 05 12 00 00 00 00 00 00 00 00 F7");
  for (int channel = 0; channel < params::kChannelCount; ++channel)
    EXPECT_DOUBLE_EQ(levels->Dbfs(channel), -20.0) << channel;  // the programme at 0 dB
  EXPECT_THROW(levels->Dbfs(8), IndexError);
}

TEST_F(MetersTest, shouldReadASilentDeviceAsMinus60) {
  for (std::uint8_t channel = 0; channel < params::kChannelCount; ++channel)
    ASSERT_EQ(link.SendCommand(
                  kId, testing::MakeCommand(protocol::code::kMute, {channel, 0, 0, 0, 0, 0, 0, 1})),
              link::SendResult::Replied);
  const auto levels = ReadMeters(link, kId);
  ASSERT_TRUE(levels);
  EXPECT_EQ(levels->steps, (std::array<std::uint8_t, 8>{}));
  EXPECT_DOUBLE_EQ(levels->Dbfs(7), -60.0);
}

TEST_F(MetersTest, shouldReadNothingWhenTheLinkSendsNothingOrNoOneAnswers) {
  link.Flags().SendSuspended = true;
  EXPECT_FALSE(ReadMeters(link, kId));
  EXPECT_TRUE(observer.sent.empty());
  link.Flags().SendSuspended = false;
  line.simulator->Faults(kId).silentFrames = 5;
  EXPECT_FALSE(ReadMeters(link, kId));
  EXPECT_EQ(observer.sent.size(), 5u);
  EXPECT_EQ(observer.failures.size(), 1u);  // reported by the link, as for every command
}

// Replies as they may come off a real line: the byte scale, and frames that are no meter reply.
TEST(MeterDecodingTest, shouldDecodeTheScaleAndRefuseForeignReplies) {
  const struct {
    const char* what;
    testing::Bytes reply;
    std::optional<std::array<std::uint8_t, 8>> steps;
  } cases[] = {
      {"scale", testing::ReplyFrame(5, 18, {0, 1, 40, 119, 120, 121, 200, 255}),
       std::array<std::uint8_t, 8>{0, 1, 40, 119, 120, 120, 120, 120}},
      {"another command's echo", testing::ReplyFrame(5, 16, {80, 80, 80, 80, 80, 80, 80, 80}),
       std::nullopt},
      {"another device", testing::ReplyFrame(6, 18, {80, 80, 80, 80, 80, 80, 80, 80}),
       std::nullopt},
  };
  for (const auto& c : cases) {
    link::VirtualClock clock;
    testing::ScriptedTransport transport(clock);
    link::Link link(transport, clock);
    ASSERT_TRUE(link.OpenPort());
    transport.Answer(c.reply);
    const auto levels = ReadMeters(link, 5);
    ASSERT_EQ(levels.has_value(), c.steps.has_value()) << c.what;
    if (levels) {
      EXPECT_EQ(levels->steps, *c.steps) << c.what;
    }
  }
  MeterLevels levels;
  levels.steps = {0, 1, 40, 119, 120};
  const double dbfs[] = {-60, -59.5, -40, -0.5, 0};
  for (int channel = 0; channel < 5; ++channel)
    EXPECT_DOUBLE_EQ(levels.Dbfs(channel), dbfs[channel]) << channel;
}

}  // namespace
}  // namespace talvex::presets
