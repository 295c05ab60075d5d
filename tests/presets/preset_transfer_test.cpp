#include "presets/preset_transfer.h"

#include <gtest/gtest.h>

#include "link/line.h"
#include "testlib/recording_observer.h"

namespace talvex::presets {
namespace {

using Stage = PresetStage;

// A preset that differs from the factory image in every kind of parameter.
params::DeviceParams ShowPreset() {
  params::DeviceParams device = params::DeviceParams::FromDefault(1);
  params::Senders senders(device);
  senders.InputSource(1);
  senders.OutputSource(7, 0);
  senders.LimiterThreshold(2, 12);
  senders.LimiterAttack(3, 7);
  senders.LimiterRelease(4, 20);
  senders.Crossover(0, 80, 4);
  senders.Crossover(11, 12500, 2);
  senders.EqBypass(3, true);
  senders.DelayUnit(1);
  senders.EqBand(12, {250, 20, 6});
  senders.EqBand(3, {40, 1, -4.5});
  senders.Polarity(4, true);
  senders.Delay(5, {3, 11});
  senders.Level(0, 2.5);
  senders.Level(6, -4.5);
  senders.Limiter(6, 3);
  senders.OutputName(4, "Kick");
  return device;
}

class RecordingView final : public PresetView {
 public:
  void RefreshControls(PresetStage stage, std::span<const PresetStep>) override {
    Log("R" + std::to_string(static_cast<int>(stage)));
  }
  void RecomputeCrossoverResponses() override { Log("X"); }
  void RecomputeBandResponses() override { Log("B"); }
  void RedrawGraph() override { Log("G"); }
  void SetEditorLoading(int value) override { Log("L" + std::to_string(value)); }

  std::string calls;

 private:
  void Log(const std::string& call) { calls += (calls.empty() ? "" : " ") + call; }
};

class PresetTransferTest : public ::testing::Test {
 protected:
  PresetTransferTest()
      : line(link::MakeLine(link::ParsePortSpec("sim:2"))),
        link(*line.transport, *line.clock, &observer) {
    EXPECT_TRUE(link.OpenPort());
    link.Flags().ReportLinkErrors = true;
    line.simulator->Device(2).Handle(
        protocol::BuildFrame(2, {protocol::code::kSetSystemType, {1}}));
  }
  const sim::SimDevice& Device() const { return line.simulator->Device(2); }

  testing::RecordingObserver observer;
  link::Line line;
  link::Link link;
  RecordingView view;
};

TEST_F(PresetTransferTest, shouldSendEveryParameterStageByStageWithMutesFirstAndLast) {
  struct Expected {
    Stage stage;
    std::uint8_t code;
    std::size_t count;
  };
  const Expected table[] = {
      {Stage::Mutes, 9, 8},       {Stage::InputSource, 13, 1}, {Stage::OutputSources, 8, 6},
      {Stage::DbuLevels, 7, 18},  {Stage::Crossovers, 4, 12},  {Stage::ChannelBits, 29, 1},
      {Stage::EqButtons, 17, 1},  {Stage::EqBands, 5, 52},     {Stage::Polarities, 3, 8},
      {Stage::Delays, 2, 8},      {Stage::Levels, 1, 16},      {Stage::Limiters, 35, 8},
      {Stage::OutputLink, 34, 1}, {Stage::OutputNames, 14, 6}, {Stage::DelayUnit, 17, 1},
      {Stage::ViewBoxes, 0, 0},   {Stage::InputBView, 0, 0},   {Stage::Graph, 0, 0},
      {Stage::MutesAgain, 9, 8}};
  params::DeviceParams device = ShowPreset();
  const PresetTransfer transfer = ApplyPreset(device, view, TransferFlags::PresetFileLoad());
  std::size_t at = 0;
  for (const Expected& e : table) {
    const auto steps = transfer.StepsOf(e.stage);
    EXPECT_EQ(steps.size(), e.count) << StageName(e.stage);
    for (const PresetStep& step : steps) {
      EXPECT_EQ(step.edit.command.code, e.code) << StageName(e.stage);
      EXPECT_EQ(&step, &transfer.steps[at++]) << "out of order in " << StageName(e.stage);
    }
  }
  EXPECT_EQ(at, 155u);

  const TransferOutcome outcome = SendPresetTransfer(link, 2, transfer);
  EXPECT_EQ(outcome.end, TransferEnd::Completed);
  EXPECT_EQ(outcome.commandsSent, 155);
  ASSERT_EQ(observer.sent.size(), 155u);
  for (std::size_t i = 0; i < 155; ++i)
    ASSERT_EQ(observer.sent[i][3], transfer.steps[i].edit.command.code) << i;
  EXPECT_EQ(observer.sent.front()[3], 9);
  EXPECT_EQ(observer.sent.back()[3], 9);
}

TEST_F(PresetTransferTest, shouldBringTheDeviceInLineWithTheImage) {
  params::DeviceParams device = ShowPreset();
  params::ParamImage shown = device.image;
  SendPresetTransfer(link, 2, ApplyPreset(device, view, TransferFlags::PresetFileLoad()));
  EXPECT_TRUE(
      std::equal(Device().LiveImage().begin(), Device().LiveImage().end(), device.image.begin()));
  EXPECT_EQ(Device().State().inputSource, 1);
  EXPECT_EQ(Device().DeviceMemory()[0x12], 1);  // the delay unit
  // The senders only rewrite what the image held: a file pushed and pulled back is the file.
  EXPECT_EQ(device.image, shown);
}

TEST_F(PresetTransferTest, shouldSendNoFrameAtAllWhileSendingIsSuspended) {
  for (const TransferFlags& flags : {TransferFlags::EditorLoad(), TransferFlags::DeviceRead(),
                                     TransferFlags::SystemTypeChange()}) {
    params::DeviceParams device = ShowPreset();
    const params::ParamImage before = device.image;
    const TransferOutcome outcome = SendPresetTransfer(link, 2, ApplyPreset(device, view, flags));
    // The device already holds the image: walked without sending, the image stays its own.
    EXPECT_TRUE(std::equal(before.begin(), before.begin() + 304, device.image.begin()));
    EXPECT_EQ(outcome.end, TransferEnd::Suspended);
    EXPECT_EQ(outcome.commandsSent, 0);
    EXPECT_FALSE(link.Flags().SendSuspended);  // put back as it was
  }
  link.Flags().DemoMode = true;
  params::DeviceParams device = ShowPreset();
  SendPresetTransfer(link, 2, ApplyPreset(device, view, TransferFlags::PresetFileLoad()));
  EXPECT_TRUE(observer.sent.empty());
  EXPECT_EQ(Device().FramesHandled(), 1);  // the type change of the fixture only
}

TEST_F(PresetTransferTest, shouldStopSendingAfterAFinalFailureAndStillFinishTheProgress) {
  const std::pair<int, Stage> cases[] = {
      {0, Stage::Mutes}, {9, Stage::OutputSources}, {60, Stage::EqBands}, {154, Stage::MutesAgain}};
  for (const auto& [answered, stage] : cases) {
    line.simulator->Faults(2).vanishAfterFrames = answered;
    observer.sent.clear();
    observer.failures.clear();
    std::vector<int> points;
    params::DeviceParams device = ShowPreset();
    const TransferOutcome outcome =
        SendPresetTransfer(link, 2, ApplyPreset(device, view, TransferFlags::PresetFileLoad()),
                           [&](int point) { points.push_back(point); });
    EXPECT_EQ(outcome.end, TransferEnd::Stopped) << answered;
    EXPECT_EQ(outcome.stoppedAt, stage) << answered;
    EXPECT_EQ(outcome.commandsSent, answered);
    EXPECT_EQ(observer.sent.size(), static_cast<std::size_t>(answered) + 5);  // then no more
    EXPECT_EQ(observer.failures.size(), 1u);
    EXPECT_EQ(points.size(), 18u);
    line.simulator->Faults(2).vanishAfterFrames = -1;
  }
}

TEST_F(PresetTransferTest, shouldReportProgressAtEighteenPointsOnlyWhenAsked) {
  std::vector<int> points;
  const auto record = [&](int point) { points.push_back(point); };
  params::DeviceParams device = ShowPreset();
  SendPresetTransfer(link, 2, ApplyPreset(device, view, TransferFlags::EditorLoad()), record);
  EXPECT_TRUE(points.empty());
  SendPresetTransfer(link, 2, ApplyPreset(device, view, TransferFlags::PresetFileLoad()), record);
  EXPECT_EQ(points,
            (std::vector<int>{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18}));
}

TEST_F(PresetTransferTest, shouldTellTheViewStageByStage) {
  params::DeviceParams device = ShowPreset();
  ApplyPreset(device, view, TransferFlags::EditorLoad());
  EXPECT_EQ(view.calls,
            "R2 R3 R4 R5 R6 X R7 R8 L1 R9 L0 B R10 R11 L1 R12 L0 R13 R14 R15 R16 "
            "R17 G G G G G R18 G R19 G R20");
}

TEST_F(PresetTransferTest, shouldRefuseAnImageByteNoSenderTakesWithNothingChanged) {
  params::DeviceParams device = ShowPreset();
  device.values.Mute(3) = 1;
  device.image[params::EqBandStart[7]] = 250;  // no frequency has that byte
  const params::DeviceParams before = device;
  EXPECT_THROW(ApplyPreset(device, view, TransferFlags::PresetFileLoad()), IndexError);
  EXPECT_EQ(device.image, before.image);
  EXPECT_EQ(device.values.Mute(3), 1);
  EXPECT_EQ(view.calls, "");
}

}  // namespace
}  // namespace talvex::presets
