#include "link/device_name.h"

#include <gtest/gtest.h>

#include "link/line.h"
#include "testlib/recording_observer.h"

namespace talvex::link {
namespace {

class DeviceNameTest : public ::testing::Test {
 protected:
  DeviceNameTest()
      : line(MakeLine(ParsePortSpec("sim:0,6"))), link(*line.transport, *line.clock, &observer) {
    EXPECT_TRUE(link.OpenPort());
    link.Flags().ReportLinkErrors = true;
  }
  std::string NameInMemory(int id) {
    const auto& memory = line.simulator->Device(id).DeviceMemory();
    return std::string(memory.begin() + 368, memory.begin() + 384);
  }

  testing::RecordingObserver observer;
  Line line;
  Link link;
};

TEST_F(DeviceNameTest, shouldPadNamesToSixteenCharacters) {
  const std::pair<const char*, const char*> cases[] = {{"", "                "},
                                                       {"Amp", "Amp             "},
                                                       {"Front of house16", "Front of house16"}};
  for (const auto& [text, padded] : cases)
    EXPECT_EQ(PadDeviceName(text), padded) << text;
  EXPECT_EQ(DeviceRowText("Amp             ", 6), "Amp               ID:6");
}

TEST_F(DeviceNameTest, shouldWriteOneCharacterPerAddressAndReadItBack) {
  ASSERT_EQ(WriteDeviceName(link, 6, "Stage L"), NameWrite::Written);
  EXPECT_EQ(NameInMemory(6), "Stage L         ");
  ASSERT_EQ(observer.sent.size(), 16u);
  EXPECT_EQ(protocol::FormatHex(observer.sent[0]), "F0 81 06 11 01 70 00 00 53 00 00 00 F7");
  EXPECT_EQ(protocol::FormatHex(observer.sent[15]), "F0 81 06 11 01 7F 00 00 20 00 00 00 F7");
  EXPECT_EQ(ReadDeviceName(link, 6), "Stage L         ");
}

TEST_F(DeviceNameTest, shouldStopWritingAtTheFirstFailure) {
  ASSERT_EQ(WriteDeviceName(link, 6, "AAAAAAAAAAAAAAAA"), NameWrite::Written);
  observer.sent.clear();
  line.simulator->Faults(6).vanishAfterFrames = 3;
  EXPECT_EQ(WriteDeviceName(link, 6, "BBBBBBBBBBBBBBBB"), NameWrite::Stopped);
  EXPECT_EQ(NameInMemory(6), "BBBAAAAAAAAAAAAA");  // what was written stays written
  EXPECT_EQ(observer.sent.size(), 3u + 5u);        // the fourth character, five times, no more
  EXPECT_EQ(observer.failures.size(), 1u);
}

TEST_F(DeviceNameTest, shouldLeaveTheNameUnknownWhenAReadGoesUnanswered) {
  line.simulator->Faults(0).silentFrames = 5;
  EXPECT_EQ(ReadDeviceName(link, 0), std::nullopt);
  EXPECT_EQ(observer.sent.size(), 5u);  // the first read failed: no further reads
}

TEST_F(DeviceNameTest, shouldSendNothingInDemoMode) {
  link.Flags().DemoMode = true;
  EXPECT_EQ(WriteDeviceName(link, 6, "X"), NameWrite::Skipped);
  EXPECT_TRUE(observer.sent.empty());
}

}  // namespace
}  // namespace talvex::link
