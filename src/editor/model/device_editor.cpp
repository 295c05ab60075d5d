#include "editor/model/device_editor.h"

#include <algorithm>

#include "graph/image_settings.h"
#include "graph/response_math.h"
#include "params/image_decode.h"

namespace talvex::editor {

using params::kInputCount;
using params::ParamKind;
using params::ParamRef;

namespace {

std::size_t Index(int value) {
  return static_cast<std::size_t>(value);
}

// The control range of a stepped parameter: band frequencies are table positions 0..240,
// delays 0..48000 samples.
int MaxStepPosition(const ParamRef& ref) {
  if (ref.kind == ParamKind::Delay) return params::kMaxDelaySamples;
  return params::MaxPosition(*params::RuleOf(ref));
}

float LevelOf(const params::ParamImage& image, int channel) {
  return static_cast<float>(params::LevelDb(image, channel));
}

int StepSize(const ControlId& upDown) {
  if (upDown.ref.kind == ParamKind::Delay && upDown.role == ControlRole::UpDown)
    return params::kFineStepsPerCoarse;
  return 1;
}

}  // namespace

DeviceEditor::DeviceEditor(int deviceId, params::DeviceParams& device, params::DecimalMark mark,
                           EditorLink& link)
    : deviceId_(deviceId),
      device_(device),
      mark_(mark),
      link_(link),
      tables_(std::make_unique<graph::ResponseTables>()),
      wholeOutputs_(std::make_unique<std::array<graph::ResponseCurves, params::kOutputCount>>()),
      sum_(std::make_unique<graph::ResponseCurves>()) {
  SetInputNames(presets::NamesFromImage(device.image));
}

params::EditOptions DeviceEditor::Options() const {
  params::EditOptions options;
  options.mark = mark_;
  return options;
}

void DeviceEditor::Load() {
  presets::ApplyPreset(device_, *this, presets::TransferFlags::EditorLoad(), mark_);
}

KeyOutcome DeviceEditor::Key(int key) const {
  return FilterKey(key, mark_, inputSuppressed_);
}

EditOutcome DeviceEditor::Commit(const ParamRef& ref, std::string_view text) {
  return Perform(EditOperation::Typed(ref, std::string(text)));
}

EditOutcome DeviceEditor::Move(const ParamRef& ref, int position) {
  return Perform(EditOperation::Moved(ref, position));
}

EditOutcome DeviceEditor::Step(const ControlId& upDown, int steps) {
  const int now = Show(upDown.ref).position;
  const int wanted = std::clamp(now + steps * StepSize(upDown), 0, MaxStepPosition(upDown.ref));
  if (wanted == now) return {};
  return Move(upDown.ref, wanted);
}

EditOutcome DeviceEditor::Choose(const ParamRef& ref, int choice) {
  return Perform(EditOperation::Chosen(ref, choice));
}

EditOutcome DeviceEditor::FlattenEq(int channel) {
  return Perform(EditOperation::Flatten(channel));
}

// The stores before the edit go to the history with the stores after it.
EditOutcome DeviceEditor::Perform(const EditOperation& operation) {
  if (!EditsEnabled()) return {};
  const params::DeviceParams before = device_;
  EditOutcome outcome = Finish(RunOperation(device_, operation, Options()));
  if (!outcome.Applied()) return outcome;
  const int tag = history_.RecordEdit(operation, outcome.changed, before, device_);
  if (edited_) edited_(operation, outcome, tag);
  return outcome;
}

EditOutcome DeviceEditor::Restore(const EditOperation& operation) {
  if (!EditsEnabled()) return {};
  return Finish(RunOperation(device_, operation, Options()));
}

EditOutcome DeviceEditor::SetBand(int band, const params::EqBandSetting& setting) {
  return Perform(EditOperation::WholeBand(band, setting));
}

int DeviceEditor::BeginGesture() {
  gesture_ = ++gestures_;
  history_.BeginGroup();
  return gesture_;
}

params::ShownParam DeviceEditor::Show(const ParamRef& ref) const {
  return params::ShowParam(device_, ref, Options());
}

bool DeviceEditor::Applies(const ParamRef& ref) const {
  if (ref.kind != ParamKind::EqQ) return true;
  return params::BandWidthIndex(device_.image, ref.band) >= params::kFirstBellWidth;
}

bool DeviceEditor::DeviceLocked() const {
  return device_.image[params::kLockByte] != 0;
}

// The model changes first; the commands go to the link; the curves the edit touched are
// computed again; then the window is told.
EditOutcome DeviceEditor::Finish(const params::EditResult& result) {
  EditOutcome outcome;
  outcome.message = result.message;
  if (!result.Ok()) return outcome;
  link_.Send(result.edits);
  outcome.shown = result.shown;
  outcome.position = result.position;
  outcome.changed = result.changed;
  outcome.gesture = gesture_;
  UpdateCurves(outcome.changed);
  if (changed_) changed_(outcome.changed);
  return outcome;
}

void DeviceEditor::UpdateCurves(std::span<const ParamRef> changed) {
  const graph::ResponseSettings settings = graph::SettingsFromDevice(device_);
  bool touched = false;
  for (const ParamRef& ref : changed) {
    if (params::IsEqBandKind(ref.kind)) {
      tables_->ComputeEqBandResponse(settings, ref.band);
    } else if (ref.kind == ParamKind::EqBypass) {
      const int first = graph::FirstBandOfChannel(ref.channel);
      for (int band = first; band < first + params::BandsOf(ref.channel); ++band)
        tables_->ComputeEqBandResponse(settings, band);
    } else if (params::IsCrossoverKind(ref.kind)) {
      tables_->ComputeCrossoverResponse(settings, graph::ResponseSlotOfBox(params::FilterOf(ref)));
    } else if (ref.kind == ParamKind::Delay || ref.kind == ParamKind::Polarity) {
      tables_->ComputeChannelSums(settings, ref.channel);
    } else if (ref.kind != ParamKind::OutputSource && ref.kind != ParamKind::Level) {
      continue;  // levels and sources shape the whole outputs alone
    }
    touched = true;
  }
  if (touched && NeedsWholeOutputs()) RefreshWholeOutputs(settings);
}

void DeviceEditor::ComputeAll() {
  const graph::ResponseSettings settings = graph::SettingsFromDevice(device_);
  tables_->ComputeAll(settings);
  curvesStale_ = false;
  if (NeedsWholeOutputs()) RefreshWholeOutputs(settings);
}

// Every output's whole way (any edit of an input reaches all the outputs it feeds), then the
// sum of the chosen ones.
void DeviceEditor::RefreshWholeOutputs(const graph::ResponseSettings& settings) {
  std::vector<const graph::ResponseCurves*> parts;
  for (int output = 0; output < params::kOutputCount; ++output) {
    graph::ResponseCurves& whole = (*wholeOutputs_)[Index(output)];
    graph::ComputeWholeOutput(*tables_, settings, output + kInputCount, whole);
    if (view_.sumOutputs.test(Index(output))) parts.push_back(&whole);
  }
  if (!parts.empty()) graph::ComputeAcousticSum(parts, *sum_);
}

void DeviceEditor::SelectChannel(int channel) {
  CheckIndex(channel, params::kChannelCount - 1, "channel");
  selected_ = channel;
}

void DeviceEditor::SetView(const GraphView& view) {
  const bool refresh =
      view.outPlusInput != view_.outPlusInput || view.sumOutputs != view_.sumOutputs;
  view_ = view;
  if (refresh && NeedsWholeOutputs()) RefreshWholeOutputs(graph::SettingsFromDevice(device_));
}

std::array<bool, params::kChannelCount> DeviceEditor::ShownChannels() const {
  std::array<bool, params::kChannelCount> shown{};
  shown[Index(kInputCount)] = true;  // Out 1
  for (std::size_t box = 0; box < view_.viewOut.size(); ++box)
    shown[Index(kInputCount) + 1 + box] = view_.viewOut[box];
  shown[Index(selected_)] = true;
  return shown;
}

const graph::Curve& DeviceEditor::Magnitude(int channel) const {
  if (view_.outPlusInput && channel >= kInputCount)
    return (*wholeOutputs_)[Index(channel - kInputCount)].magnitude;
  return tables_->ChannelMagnitude(channel);
}

const graph::Curve& DeviceEditor::Phase(int channel) const {
  if (view_.outPlusInput && channel >= kInputCount)
    return (*wholeOutputs_)[Index(channel - kInputCount)].phase;
  return tables_->ChannelPhase(channel);
}

// The level the graph adds to a channel's magnitude; a whole output holds its levels already.
float DeviceEditor::LevelDb(int channel) const {
  if (view_.outPlusInput && channel >= kInputCount) return 0.0f;
  return LevelOf(device_.image, channel);
}

const graph::ResponseCurves* DeviceEditor::Sum() const {
  return view_.sumOutputs.any() ? sum_.get() : nullptr;
}

void DeviceEditor::StoresReplaced() {
  ComputeAll();
  if (changed_) changed_({});
}

void DeviceEditor::SetInputNames(const presets::ChannelNames& names) {
  std::copy_n(names.begin(), kInputCount, inputNames_.begin());
}

std::string DeviceEditor::ChannelName(int channel) const {
  CheckIndex(channel, params::kChannelCount - 1, "channel");
  if (channel < kInputCount) return inputNames_[Index(channel)];
  return params::OutputName(device_.image, channel);
}

void DeviceEditor::RedrawGraph() {
  if (curvesStale_) ComputeAll();
}

// The transfer's last stage: the whole preset is in the stores; the window shows it all.
void DeviceEditor::RefreshControls(presets::PresetStage stage,
                                   std::span<const presets::PresetStep> /*steps*/) {
  if (stage != presets::PresetStage::MutesAgain) return;
  if (curvesStale_) ComputeAll();
  if (changed_) changed_({});
}

}  // namespace talvex::editor
