#include "presets/preset_transfer.h"

#include <algorithm>
#include <array>

#include "params/image_decode.h"

namespace talvex::presets {

using params::kChannelCount;
using params::kInputCount;
using params::ParamEdit;

namespace {

constexpr link::Clock::Duration kFirstPause = std::chrono::milliseconds(10);

constexpr std::array<std::string_view, kStageCount> kStageNames = {
    "pause",      "mutes",        "input source",      "output sources",  "dBu levels",
    "crossovers", "channel bits", "equaliser buttons", "equaliser bands", "polarities",
    "delays",     "levels",       "limiters",          "output link",     "output names",
    "delay unit", "view boxes",   "Out + InputB",      "graph",           "mutes once more"};

constexpr int Number(PresetStage stage) {
  return static_cast<int>(stage);
}

constexpr PresetStage StageAt(int number) {
  return static_cast<PresetStage>(number);
}

// Builds the command list stage by stage on a working copy of the device.
class StageWalk {
 public:
  StageWalk(params::DeviceParams& work, params::DecimalMark mark)
      : work_(work), senders_(work, mark) {}

  std::vector<PresetStep> Run() {
    Mutes(PresetStage::Mutes);
    Add(PresetStage::InputSource, senders_.InputSource(Image(params::kInputSourceByte) != 0));
    ForOutputs([&](int ch) {
      const auto output = static_cast<std::size_t>(ch - kInputCount);
      Add(PresetStage::OutputSources,
          senders_.OutputSource(ch, Image(params::OutputSourceOffset[output])));
    });
    ForOutputs([&](int ch) {
      const double threshold = params::ThresholdDbu(work_.image, ch);
      const int attack = params::AttackIndex(work_.image, ch);
      const int release = params::ReleaseIndex(work_.image, ch);
      Add(PresetStage::DbuLevels, senders_.LimiterThreshold(ch, threshold));
      Add(PresetStage::DbuLevels, senders_.LimiterAttack(ch, attack));
      Add(PresetStage::DbuLevels, senders_.LimiterRelease(ch, release));
    });
    for (int filter = 0; filter < params::kCrossoverCount; ++filter)
      Add(PresetStage::Crossovers,
          senders_.Crossover(filter, params::CrossoverFrequency(work_.image, filter),
                             params::CrossoverType(work_.image, filter)));
    ChannelBits();
    // Command5's routine brings the "Bypass Eq" buttons in line with byte 299 (sent in the
    // stage before) and runs Check3's, the delay unit; Command4's routine shows the selected
    // band's filter type. Only the delay unit sends.
    DelayUnit(PresetStage::EqButtons);
    for (int band = 0; band < params::kBandCount; ++band)
      Add(PresetStage::EqBands, senders_.EqBand(band, {params::BandFrequency(work_.image, band),
                                                       params::BandWidthIndex(work_.image, band),
                                                       params::BandGainDb(work_.image, band)}));
    ForChannels([&](int ch) {
      // The image holds no input polarity: the editor's value stands for it.
      const bool inverted = ch < kInputCount ? work_.values.Polarity(ch) != 0
                                             : params::PolarityInverted(work_.image, ch);
      Add(PresetStage::Polarities, senders_.Polarity(ch, inverted));
    });
    ForChannels([&](int ch) {
      Add(PresetStage::Delays, senders_.Delay(ch, params::DelayStepsOf(work_.image, ch)));
    });
    // The level slider's handler and the level box's both run the sender.
    ForChannels([&](int ch) {
      for (int twice = 0; twice < 2; ++twice)
        Add(PresetStage::Levels, senders_.Level(ch, params::LevelDb(work_.image, ch)));
    });
    // Check13 and Check12 only choose what the limiter frame shows.
    ForChannels([&](int ch) {
      Add(PresetStage::Limiters, senders_.Limiter(ch, params::LimiterLevel(work_.image, ch)));
    });
    Add(PresetStage::OutputLink, senders_.OutputLink(work_.values.Switch() != 0));
    ForOutputs([&](int ch) {
      Add(PresetStage::OutputNames, senders_.OutputName(ch, params::OutputName(work_.image, ch)));
    });
    // Check3 again: the delays went out meanwhile, and their labels take the unit.
    DelayUnit(PresetStage::DelayUnit);
    Mutes(PresetStage::MutesAgain);
    return std::move(steps_);
  }

 private:
  std::uint8_t Image(std::size_t offset) const { return work_.image[offset]; }

  void Add(PresetStage stage, ParamEdit edit) { steps_.push_back({stage, std::move(edit)}); }

  template <typename F>
  static void ForChannels(F each) {
    for (int ch = 0; ch < kChannelCount; ++ch)
      each(ch);
  }
  template <typename F>
  static void ForOutputs(F each) {
    for (int ch = kInputCount; ch < kChannelCount; ++ch)
      each(ch);
  }

  void Mutes(PresetStage stage) {
    ForChannels([&](int ch) { Add(stage, senders_.Mute(ch, work_.values.Mute(ch) != 0)); });
  }

  // Byte 299 as it stands, straight into command 29: no sender changes a bit here.
  void ChannelBits() {
    ParamEdit edit;
    edit.command.code = protocol::code::kChannelBits;
    edit.command.p(1) = Image(params::kChannelBitsByte);
    Add(PresetStage::ChannelBits, std::move(edit));
  }

  void DelayUnit(PresetStage stage) {
    Add(stage, senders_.DelayUnit(Image(params::kOptionByte) != 0 ? 1 : 0));
  }

  params::DeviceParams& work_;
  params::Senders senders_;
  std::vector<PresetStep> steps_;
};

void RunViewHooks(const PresetTransfer& transfer, PresetView& view) {
  for (int number = Number(PresetStage::Mutes); number <= kStageCount; ++number) {
    const PresetStage stage = StageAt(number);
    const bool loading = stage == PresetStage::EqBands || stage == PresetStage::Levels;
    if (loading) view.SetEditorLoading(1);
    view.RefreshControls(stage, transfer.StepsOf(stage));
    if (loading) view.SetEditorLoading(0);
    if (stage == PresetStage::Crossovers) view.RecomputeCrossoverResponses();
    if (stage == PresetStage::EqBands) view.RecomputeBandResponses();
    const int redraws = stage == PresetStage::ViewBoxes                                   ? 5
                        : stage == PresetStage::InputBView || stage == PresetStage::Graph ? 1
                                                                                          : 0;
    for (int i = 0; i < redraws; ++i)
      view.RedrawGraph();
  }
}

bool SendsNothing(const link::LinkFlags& flags) {
  return flags.DemoMode || !flags.LinkEnabled || flags.SendSuspended;
}

// Raises the link's SendSuspended for a suspended transfer and puts it back afterwards.
class SuspendGuard {
 public:
  SuspendGuard(link::Link& link, bool suspend)
      : flags_(link.Flags()), before_(flags_.SendSuspended) {
    if (suspend) flags_.SendSuspended = true;
  }
  ~SuspendGuard() { flags_.SendSuspended = before_; }
  SuspendGuard(const SuspendGuard&) = delete;
  SuspendGuard& operator=(const SuspendGuard&) = delete;

 private:
  link::LinkFlags& flags_;
  bool before_;
};

}  // namespace

std::string_view StageName(PresetStage stage) {
  CheckIndex(Number(stage) - 1, kStageCount - 1, "transfer stage");
  return kStageNames[static_cast<std::size_t>(Number(stage) - 1)];
}

TransferFlags TransferFlags::EditorLoad() {
  return {.editorLoading = 1, .sendSuspended = true, .presetApplying = false};
}

TransferFlags TransferFlags::DeviceRead() {
  return {.editorLoading = 1,
          .sendSuspended = true,
          .presetApplying = true,
          .deviceReadApplying = true};
}

TransferFlags TransferFlags::SystemTypeChange() {
  return {.editorLoading = 1, .sendSuspended = true};
}

TransferFlags TransferFlags::PresetFileLoad() {
  return {.sendSuspended = false, .presetApplying = true, .showApplyProgress = true};
}

std::span<const PresetStep> PresetTransfer::StepsOf(PresetStage stage) const {
  const auto first = std::find_if(steps.begin(), steps.end(),
                                  [&](const PresetStep& step) { return step.stage == stage; });
  const auto last =
      std::find_if(first, steps.end(), [&](const PresetStep& step) { return step.stage != stage; });
  return {first, last};
}

PresetTransfer ApplyPreset(params::DeviceParams& device, PresetView& view,
                           const TransferFlags& flags, params::DecimalMark mark) {
  params::DeviceParams work = device;
  PresetTransfer transfer{flags, StageWalk(work, mark).Run()};
  device = work;
  RunViewHooks(transfer, view);
  return transfer;
}

TransferOutcome SendPresetTransfer(link::Link& link, int deviceId, const PresetTransfer& transfer,
                                   const TransferProgress& progress) {
  CheckIndex(deviceId, kMaxDeviceId, "device ID");
  const SuspendGuard guard(link, transfer.flags.sendSuspended);
  TransferOutcome outcome;
  if (SendsNothing(link.Flags())) outcome.end = TransferEnd::Suspended;
  if (outcome.end == TransferEnd::Completed) link.Time().SleepFor(kFirstPause);

  // Progress point k - 1 marks the end of stage k (2..19); a stage has ended once a command
  // of a later stage is due, or the list is through.
  int stagesEnded = Number(PresetStage::Pause);
  const auto endStagesBefore = [&](int number) {
    for (; stagesEnded < std::min(number - 1, Number(PresetStage::Graph)); ++stagesEnded)
      if (transfer.flags.showApplyProgress && progress) progress(stagesEnded);
  };
  for (const PresetStep& step : transfer.steps) {
    endStagesBefore(Number(step.stage));
    if (outcome.end != TransferEnd::Completed) continue;
    const link::SendResult result = link.SendCommand(deviceId, step.edit.command);
    if (result == link::SendResult::Replied) {
      ++outcome.commandsSent;
    } else if (result == link::SendResult::Skipped) {
      outcome.end = TransferEnd::Suspended;
    } else if (result != link::SendResult::Unanswered) {
      outcome.end = TransferEnd::Stopped;
      outcome.stoppedAt = step.stage;
    }
  }
  endStagesBefore(kStageCount + 1);
  return outcome;
}

}  // namespace talvex::presets
