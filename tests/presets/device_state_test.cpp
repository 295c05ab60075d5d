#include "presets/device_state.h"

#include <gtest/gtest.h>

#include "link/line.h"
#include "testlib/recording_observer.h"

namespace talvex::presets {
namespace {

class DeviceStateTest : public ::testing::Test {
 protected:
  DeviceStateTest()
      : line(link::MakeLine(link::ParsePortSpec("sim:5"))),
        link(*line.transport, *line.clock, &observer) {
    EXPECT_TRUE(link.OpenPort());
    link.Flags().ReportLinkErrors = true;
    sim::SimDevice& simulated = line.simulator->Device(5);
    Put(32 + 2, "\x55");
    Put(32 + 7, "\x55");
    Put(32 + 4, "\x54");  // not 85: the slot is empty whatever its name says
    Put(384 + 16 * 4, "Ghost           ");
    Put(384 + 16 * 7, "Talk            ");
    Put(384 + 16 * 2, "Chorus live     ");  // stored last: the device's current preset
    Put(0x12, "\x01");                      // delays shown in metres
    simulated.Handle(
        protocol::BuildFrame(5, {protocol::code::kInputSource, {0, 0, 0, 0, 0, 0, 0, 1}}));
    simulated.Handle(protocol::BuildFrame(5, {protocol::code::kDelay, {2, 0, 0, 0, 7, 0, 0, 0}}));
    simulated.Handle(protocol::BuildFrame(5, {protocol::code::kSwitch, {1}}));
    Put(0x16, "\x01");  // locked last: a locked device takes no setting
  }

  void Put(int address, std::string_view bytes) {
    protocol::Command write{protocol::code::kMemoryWrite, {}};
    for (std::size_t i = 0; i < bytes.size(); ++i) {
      write.p(1) = static_cast<std::uint8_t>((address + static_cast<int>(i)) >> 8);
      write.p(2) = static_cast<std::uint8_t>((address + static_cast<int>(i)) & 0xFF);
      write.p(5) = static_cast<std::uint8_t>(bytes[i]);
      line.simulator->Device(5).Handle(protocol::BuildFrame(5, write));
    }
  }

  testing::RecordingObserver observer;
  link::Line line;
  link::Link link;
  params::DeviceParams device = params::DeviceParams::FromDefault(0);
  DeviceState state;
};

TEST_F(DeviceStateTest, shouldReadSettingsUsedSlotNamesCurrentNameAndLock) {
  ASSERT_EQ(ReadDeviceState(link, 5, device, state), StateRead::Received);
  const params::ParamImage& image = device.image;
  EXPECT_EQ(std::string(image.begin() + 305, image.begin() + 321), "Chorus live     ");
  EXPECT_EQ((std::array{image[321], image[322], image[323], image[327], image[328]}),
            (std::array<std::uint8_t, 5>{1, 7, 1, 1, 1}));
  EXPECT_EQ(
      (std::array{state.inputSource, state.deviceWide, state.option, state.lock, state.outputLink}),
      (std::array<double, 5>{1, 7, 1, 1, 1}));
  EXPECT_TRUE(state.Locked());
  EXPECT_EQ(device.values.InputSource(), 1);
  EXPECT_EQ(device.values.Option(), 1);
  EXPECT_EQ(device.values.Switch(), 1);
  for (int slot = 0; slot < 24; ++slot) {
    const std::string expected = slot == 2   ? "Chorus live     "
                                 : slot == 7 ? "Talk            "
                                             : "";
    EXPECT_EQ(state.slotNames[static_cast<std::size_t>(slot)], expected) << slot;
    EXPECT_EQ(state.SlotUsed(slot), slot == 2 || slot == 7) << slot;
  }
  EXPECT_EQ(state.usedMarks[4], 84);
  EXPECT_THROW(state.SlotUsed(24), IndexError);

  // 23 twice, 6 reads of marks, 4 per used name, 4 for the current name, 23 for the lock,
  // the 31/31/254 read and 36 to finish.
  ASSERT_EQ(observer.sent.size(), 2u + 6 + 8 + 4 + 1 + 1 + 1);
  EXPECT_EQ(protocol::FormatHex(observer.sent[0]), "F0 81 05 17 00 00 00 00 00 00 00 00 F7");
  EXPECT_EQ(protocol::FormatHex(observer.sent[2]), "F0 81 05 10 00 22 00 00 00 00 00 00 F7");
  EXPECT_EQ(protocol::FormatHex(observer.sent[20]), "F0 81 05 17 00 16 00 00 00 00 00 00 F7");
  EXPECT_EQ(protocol::FormatHex(observer.sent[21]), "F0 81 05 10 1F 1F FE 00 00 00 00 00 F7");
  EXPECT_EQ(protocol::FormatHex(observer.sent[22]), "F0 81 05 24 00 00 00 00 00 00 00 00 F7");
}

TEST_F(DeviceStateTest, shouldEndTheReadAtAnyFailedExchangeWithNothingChanged) {
  for (int answered = 0; answered < 23; ++answered) {
    line.simulator->Faults(5).vanishAfterFrames = answered;
    observer.sent.clear();
    state.slotNames[2] = "kept";
    const params::DeviceParams before = device;
    EXPECT_EQ(ReadDeviceState(link, 5, device, state), StateRead::Failed) << answered;
    EXPECT_EQ(device.image, before.image) << answered;
    EXPECT_EQ(device.values.Switch(), 0) << answered;
    EXPECT_EQ(state.slotNames[2], "kept") << answered;
    EXPECT_EQ(observer.sent.size(), static_cast<std::size_t>(answered) + 5) << answered;
  }
}

TEST_F(DeviceStateTest, shouldSendNothingInDemoMode) {
  link.Flags().DemoMode = true;
  EXPECT_EQ(ReadDeviceState(link, 5, device, state), StateRead::Skipped);
  EXPECT_TRUE(observer.sent.empty());
  EXPECT_THROW(ReadDeviceState(link, 33, device, state), IndexError);
}

}  // namespace
}  // namespace talvex::presets
