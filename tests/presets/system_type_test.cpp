#include "presets/system_type.h"

#include "params/captions.h"
#include "params/default_image.h"
#include "sim_bench.h"

namespace talvex::presets {
namespace {

using SystemTypeTest = SimBench;

TEST_F(SystemTypeTest, shouldSwitchTheDeviceAndShowTheFactoryImageWithoutSendingIt) {
  params::Senders(device).Level(4, 3);
  PresetState presetState{7, 1};
  const protocol::Command command = BeginTypeChange(device, 2);
  EXPECT_EQ(device.image[298], 2);
  ASSERT_EQ(SendSystemType(link, kId, command), TypeSend::Switched);
  ASSERT_EQ(observer.sent.size(), 1u);
  EXPECT_EQ(SentHex(0), "F0 81 05 15 02 00 00 00 00 00 00 00 F7");
  EXPECT_EQ(observer.progress.back(), std::make_pair(link::ProgressKind::Send, 400000));
  EXPECT_FALSE(link.Flags().ShowSendProgress);
  EXPECT_EQ(Device().SystemType(), 2);

  PresetView view;
  const PresetTransfer transfer = ApplyFactoryImage(device, presetState, view);
  const params::PresetImage& factory = params::DefaultImage[2];
  EXPECT_TRUE(std::equal(factory.begin(), factory.end(), device.image.begin()));
  EXPECT_DOUBLE_EQ(device.values.LevelDb(4), 0);
  EXPECT_EQ(presetState.loadedPresetNumber, 0);
  EXPECT_EQ(presetState.presetChanged, 0);
  EXPECT_TRUE(transfer.flags.sendSuspended);
  EXPECT_EQ(observer.sent.size(), 1u);
  EXPECT_EQ(params::DefaultLoadedCaption(kId, 2),
            "ID:5 TALVEX - Preset loaded from device: Default - Type: 6 WAY XOVER");
  EXPECT_EQ(kChangeTypeText, "Change Xover Type, are you sure ? ");
}

TEST_F(SystemTypeTest, shouldKeepOnlyTheNewTypeByteWhenTheDeviceDoesNotAnswer) {
  line.simulator->Faults(kId).vanishAfterFrames = 0;
  params::Senders(device).Level(4, 3);
  const params::ParamImage before = device.image;
  const protocol::Command command = BeginTypeChange(device, 1);
  EXPECT_EQ(SendSystemType(link, kId, command), TypeSend::Failed);
  EXPECT_EQ(observer.sent.size(), 5u);
  ASSERT_EQ(observer.failures.size(), 1u);
  EXPECT_EQ(observer.failures[0].title, "Communication problem");
  params::ParamImage expected = before;
  expected[298] = 1;
  EXPECT_EQ(device.image, expected);
  // Command 21 waits 10 s per transmission.
  EXPECT_GE(link.Stats().longestExchange, std::chrono::seconds(50));
}

}  // namespace
}  // namespace talvex::presets
