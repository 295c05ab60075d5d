#include "editor/model/settings_memory.h"

#include <cstdio>

#include "editor/model/device_groups.h"
#include "params/image_decode.h"

namespace talvex::editor {

namespace {

std::string SideName(int side) {
  return side == kSideA ? "A" : "B";
}

std::string Commands(int count) {
  return std::to_string(count) + (count == 1 ? " command" : " commands");
}

// "31 ms", "4.3 s".
std::string LineTime(link::Clock::Duration time) {
  const double ms = std::chrono::duration<double, std::milli>(time).count();
  char text[32];
  if (ms < 1000) {
    std::snprintf(text, sizeof text, "%.0f ms", ms);
  } else {
    std::snprintf(text, sizeof text, "%.1f s", ms / 1000);
  }
  return text;
}

// "Switched to B: 1 command in 29 ms (a full push sends 155)".
std::string SwitchText(const std::string& what, const presets::SettingsSwitch& plan,
                       const presets::SwitchOutcome& outcome) {
  if (outcome.end == presets::ListEnd::Skipped) return what + ": nothing sent (demo mode)";
  if (plan.Size() == 0) return what + ": nothing differs, nothing sent";
  return what + ": " + Commands(outcome.sent) + " in " + LineTime(outcome.lineTime) +
         " (a full push sends " + std::to_string(plan.transferCommands) + ")";
}

}  // namespace

SettingsMemory::SettingsMemory(DeviceEditor& model, params::DeviceParams& device, EditorLink& link)
    : model_(model), device_(device), link_(link) {
  marks_.Opened(device_.image);
  model_.OnEdited([this](const EditOperation& operation, const EditOutcome& outcome, int tag) {
    Edited(operation, outcome, tag);
  });
  model_.History().OnChanged([this] { Changed(); });
}

SettingsMemory::~SettingsMemory() {
  if (groups_) groups_->Detach(*this);
  model_.OnEdited({});
  model_.History().OnChanged({});
}

bool SettingsMemory::CanUndo() const {
  return History().CanUndo() && model_.EditsEnabled();
}

bool SettingsMemory::CanRedo() const {
  return History().CanRedo() && model_.EditsEnabled();
}

void SettingsMemory::Undo() {
  if (!CanUndo()) return;
  const HistoryStep step = UndoHere();
  if (groups_) groups_->UndoTagged(*this, step.tag);
}

void SettingsMemory::Redo() {
  if (!CanRedo()) return;
  const HistoryStep step = RedoHere();
  if (groups_) groups_->RedoTagged(*this, step.tag);
}

HistoryStep SettingsMemory::UndoHere() {
  HistoryStep step = History().Undo();
  PutBack(step, step.before, step.sideBefore, "Undo ");
  return step;
}

HistoryStep SettingsMemory::RedoHere() {
  HistoryStep step = History().Redo();
  PutBack(step, step.after, step.sideAfter, "Redo ");
  return step;
}

// An A/B switch taken back or redone shows its side again and keeps the setting it leaves as
// the other side.
void SettingsMemory::PutBack(const HistoryStep& step, const params::DeviceParams& target, int side,
                             const std::string& verb) {
  if (step.kind == HistoryStep::Kind::Edits) {
    for (const EditOperation& restore : RestoreOperations(target, step.edits))
      model_.Restore(restore);
    Tell(verb + step.name);
    return;
  }
  const params::DeviceParams leaving = device_;
  if (!ReplaceSetting(target, verb + step.name) || side < 0) return;
  other_ = leaving;
  side_ = side;
  Changed();
}

void SettingsMemory::RecordSettingsStep(std::string name, const params::DeviceParams& before) {
  History().RecordSettings(std::move(name), before, device_);
}

void SettingsMemory::SwitchSide() {
  if (!model_.EditsEnabled()) return;
  const params::DeviceParams before = device_;
  const int from = side_;
  const int to = from == kSideA ? kSideB : kSideA;
  if (!ReplaceSetting(other_.value_or(device_), "Switched to " + SideName(to))) return;
  other_ = before;
  side_ = to;
  History().RecordSettings("A/B switch to " + SideName(to), before, device_, from, to);
}

void SettingsMemory::CopyAToB() {
  if (!model_.EditsEnabled()) return;
  if (side_ == kSideA || !other_) {
    other_ = device_;
    Tell("B is now a copy of A");
    Changed();
    return;
  }
  const params::DeviceParams before = device_;
  if (ReplaceSetting(*other_, "Copy A to B"))
    History().RecordSettings("Copy A to B", before, device_);
}

std::string SettingsMemory::SideText() const {
  return "A/B: " + SideName(side_) + (other_ ? "" : " (B not set)");
}

bool SettingsMemory::ReplaceSetting(const params::DeviceParams& target, const std::string& what) {
  presets::SettingsSwitch plan;
  try {
    plan = presets::PlanSettingsSwitch(device_, target);
  } catch (const IndexError& error) {
    Tell(what + ": not done, " + error.what());
    return false;
  }
  const int typeBefore = device_.image[params::kSystemTypeByte];
  presets::TakeSettings(device_, target);
  presets::ApplyPreset(device_, model_, presets::TransferFlags::EditorLoad(), model_.Mark());
  DeviceRecords records = link_.Records();
  const presets::ChannelNames names = presets::NamesFromImage(device_.image);
  std::copy(names.begin() + params::kInputCount, names.end(),
            records.names.begin() + params::kInputCount);
  const int type = device_.image[params::kSystemTypeByte];
  if (type != typeBefore) {
    records.state.systemType = type;
    if (typeChanged) typeChanged(type);
  }
  if (jobRunning) jobRunning(true);
  const int id = DeviceId();
  const int total = static_cast<int>(plan.Size());
  link_.RunJob(MakeDeviceJob<presets::SwitchOutcome>(
      [id, plan, total](link::Link& link, const DeviceJob::Progress& progress) {
        return presets::SendSettingsSwitch(link, id, plan,
                                           [&progress, total](int done) { progress(done, total); });
      },
      [this, what, total](int value, int maximum) {
        if (maximum == total) Tell(what + ": " + std::to_string(value) + " of " + Commands(total));
      },
      [this, what, plan](presets::SwitchOutcome outcome) {
        if (jobRunning) jobRunning(false);
        // A switch that stopped has been reported by the link, and the editor closes.
        if (outcome.end != presets::ListEnd::Stopped) Tell(SwitchText(what, plan, outcome));
      }));
  return true;
}

void SettingsMemory::FileMarked(std::string title, bool saved) {
  marks_.FileMarked(std::move(title), saved, device_.image);
  Changed();
}

void SettingsMemory::SlotMarked(int slot, std::string name, bool stored) {
  marks_.SlotMarked(slot, std::move(name), stored, device_.image);
  Changed();
}

void SettingsMemory::Reopened() {
  marks_ = SaveMarks{};
  marks_.Opened(device_.image);
  Changed();
}

void SettingsMemory::ClearHistory(std::string reason) {
  const bool hadSteps = History().CanUndo() || History().CanRedo();
  History().Clear(reason);
  if (hadSteps) Tell("ID:" + std::to_string(DeviceId()) + ": undo history cleared, " + reason);
}

void SettingsMemory::Edited(const EditOperation& operation, const EditOutcome& /*outcome*/,
                            int tag) {
  if (groups_) groups_->Spread(*this, operation, tag);
}

void SettingsMemory::Tell(const std::string& text) const {
  if (status) status(text);
}

void SettingsMemory::Changed() const {
  if (changed) changed();
}

}  // namespace talvex::editor
