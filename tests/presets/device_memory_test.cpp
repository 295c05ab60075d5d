#include "presets/device_memory.h"

#include "params/captions.h"
#include "sim_bench.h"

namespace talvex::presets {
namespace {

using DeviceMemoryTest = SimBench;

TEST_F(DeviceMemoryTest, shouldStoreSlot23MarkNameAndDataInThatOrder) {
  params::Senders(device).Level(3, -2.5);
  const PresetStore store = PrepareStore(device, state, 23, "Bob");
  EXPECT_EQ(store.name, "Bob             ");
  EXPECT_EQ(state.slotNames[23], store.name);
  EXPECT_EQ(std::string(device.image.begin() + 305, device.image.begin() + 321), store.name);

  std::vector<std::pair<int, int>> progress;
  const StoreOutcome outcome = SendPresetStore(
      link, kId, store, [&](int value, int maximum) { progress.emplace_back(value, maximum); });
  EXPECT_EQ(outcome.end, ListEnd::Completed);
  EXPECT_EQ(outcome.written, 81);
  ASSERT_EQ(observer.sent.size(), 81u);
  EXPECT_EQ(SentHex(0), "F0 81 05 11 00 37 00 00 55 00 00 00 F7");   // 85 at 32 + 23
  EXPECT_EQ(SentHex(1), "F0 81 05 18 02 F0 42 6F 62 20 02 F0 F7");   // name at 752
  EXPECT_EQ(SentHex(4), "F0 81 05 18 02 FC 20 20 20 20 02 FC F7");   // ... to 767
  EXPECT_EQ(SentHex(5), "F0 81 05 18 1E 50 00 96 00 00 1E 50 F7");   // data at 7760
  EXPECT_EQ(SentHex(80), "F0 81 05 18 1F 7C 00 00 00 00 1F 7C F7");  // ... to 8063
  EXPECT_EQ(progress.front(), std::make_pair(0, 84));
  EXPECT_EQ(progress.back(), std::make_pair(81, 84));  // the bar stops short of its end
  EXPECT_EQ(progress.size(), 82u);

  EXPECT_EQ(Device().DeviceMemory()[32 + 23], 85);
  EXPECT_EQ(Memory(752, 16), store.name);
  EXPECT_EQ(Memory(7760, 304), std::string(device.image.begin(), device.image.begin() + 304));
  EXPECT_FALSE(state.SlotUsed(23));
  FinishStore(state, store, outcome);
  EXPECT_TRUE(state.SlotUsed(23));
}

TEST_F(DeviceMemoryTest, shouldKeepWhatWasWrittenWhenTheDeviceStopsAnswering) {
  const struct {
    int answered;
    bool marked;
    std::string name;  // slot 2's name in device memory afterwards
  } cases[] = {{0, false, std::string(16, '\0')},
               {1, true, std::string(16, '\0')},
               {3, true, "Encore  " + std::string(8, '\0')}};
  for (const auto& c : cases) {
    SimBench::Device().DeviceMemory() = {};
    observer.sent.clear();
    line.simulator->Faults(kId).vanishAfterFrames = c.answered;
    DeviceState fresh;
    const PresetStore store = PrepareStore(device, fresh, 2, "Encore");
    const StoreOutcome outcome = SendPresetStore(link, kId, store);
    EXPECT_EQ(outcome.end, ListEnd::Stopped) << c.answered;
    EXPECT_EQ(outcome.written, c.answered);
    EXPECT_EQ(outcome.marked, c.marked);
    // Five transmissions of the unanswered command, nothing after it.
    EXPECT_EQ(observer.sent.size(), static_cast<std::size_t>(c.answered) + 5);
    EXPECT_EQ(Memory(384 + 32, 16), c.name);
    FinishStore(fresh, store, outcome);
    EXPECT_EQ(fresh.SlotUsed(2), c.marked);
  }
}

TEST_F(DeviceMemoryTest, shouldRefuseAnEmptySlotAndRecallAUsedOne) {
  EXPECT_EQ(CheckPresetReadable(state, 5), kPresetEmptyText);
  EXPECT_EQ(kPresetEmptyText, "Preset empty");
  EXPECT_EQ(kOverwriteEditingText, "Overwrite current editing, are you sure ? ");

  params::DeviceParams show = params::DeviceParams::FromDefault(0);
  params::Senders senders(show);
  senders.EqBand(20, {125, 30, -6});
  for (int ch = 0; ch < 8; ++ch)  // as a device keeps them: each limiter byte names its channel
    senders.Limiter(ch, 0);
  const PresetStore store = PrepareStore(show, state, 5, "Show");
  FinishStore(state, store, SendPresetStore(link, kId, store));
  ASSERT_EQ(CheckPresetReadable(state, 5), std::nullopt);

  observer.sent.clear();
  params::PresetImage preset{};
  ASSERT_EQ(ReadPresetSlot(link, kId, 5, preset), SlotRead::Received);
  ASSERT_EQ(observer.sent.size(), 2u);
  EXPECT_EQ(SentHex(0), "F0 81 05 0B 05 00 00 00 00 00 00 00 F7");
  EXPECT_EQ(SentHex(1), "F0 81 05 00 00 00 00 00 00 00 00 00 F7");
  EXPECT_EQ(observer.progress.back(), std::make_pair(link::ProgressKind::Read, 400000));
  EXPECT_FALSE(link.Flags().ShowReadProgress);
  EXPECT_EQ(Device().LiveImage(), preset);  // the device runs it now

  PresetView view;
  const PresetTransfer transfer = ApplyDevicePreset(device, preset, view);
  EXPECT_TRUE(transfer.flags.sendSuspended);
  EXPECT_TRUE(transfer.flags.deviceReadApplying);
  EXPECT_TRUE(std::equal(preset.begin(), preset.end(), device.image.begin()));
  EXPECT_DOUBLE_EQ(device.values.BandFrequency(20), 125);
  EXPECT_EQ(observer.sent.size(), 2u);
  EXPECT_EQ(params::LoadedFromDeviceCaption(kId, state.slotNames[5], 0),
            "ID:5 TALVEX - Last preset loaded: come from DEVICE - Show             - Type: 2x2 "
            "WAY XOVER + SUB");
}

}  // namespace
}  // namespace talvex::presets
