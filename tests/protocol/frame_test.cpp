#include "protocol/frame.h"

#include <gtest/gtest.h>

#include <set>

namespace talvex::protocol {
namespace {

TEST(FrameTest, shouldFrameCodeAndParametersBetweenStartAndEnd) {
  Command command;
  command.code = code::kMemoryRead;
  command.p(1) = 0x01;
  command.p(2) = 0x70;
  EXPECT_EQ(FormatHex(BuildFrame(3, command)), "F0 81 03 10 01 70 00 00 00 00 00 00 F7");
}

TEST(FrameTest, shouldRefuseDeviceIdsAbove32) {
  EXPECT_NO_THROW(BuildFrame(32, Command{}));
  EXPECT_THROW(BuildFrame(33, Command{}), IndexError);
  EXPECT_THROW(BuildFrame(-1, Command{}), IndexError);
}

TEST(FrameTest, shouldReadBackTheCommandOfAFrame) {
  Command command;
  command.code = code::kEqBand;
  command.params = {7, 6, 0, 0, 1, 136, 9, 30};
  EXPECT_EQ(CommandOf(BuildFrame(5, command)), command);
}

TEST(SplitToBytesTest, shouldSplitBigEndianAfterRoundingTiesToEven) {
  struct Case {
    double value;
    std::array<std::uint8_t, 4> bytes;
  };
  const Case cases[] = {
      {368, {0, 0, 0x01, 0x70}},    // first byte of the device name
      {8063, {0, 0, 0x1F, 0x7F}},   // last data byte of preset slot 23
      {383.5, {0, 0, 0x01, 0x80}},  // halfway goes to the even neighbour
      {382.5, {0, 0, 0x01, 0x7E}},
      {0x12345678, {0x12, 0x34, 0x56, 0x78}},
      {4294967295.0, {0xFF, 0xFF, 0xFF, 0xFF}},
  };
  for (const Case& c : cases)
    EXPECT_EQ(SplitToBytes(c.value), c.bytes) << c.value;
}

// The line monitor names frames by this table: one distinct name for each code devices know.
TEST(CommandNameTest, shouldNameEveryKnownCodeOnceAndNumberTheRest) {
  const std::pair<std::uint8_t, const char*> cases[] = {
      {0, "poll"},         {11, "read block"},     {16, "memory read"}, {17, "memory write"},
      {21, "system type"}, {143, "leave program"}, {6, "code 6"},       {255, "code 255"},
  };
  for (const auto& [code, name] : cases)
    EXPECT_EQ(CommandName(code), name) << int(code);
  std::set<std::uint8_t> codes;
  std::set<std::string_view> names;
  for (const CommandInfo& info : kCommandNames) {
    EXPECT_TRUE(codes.insert(info.code).second) << int(info.code);
    EXPECT_TRUE(names.insert(info.name).second) << info.name;
  }
}

}  // namespace
}  // namespace talvex::protocol
