// The model of one editor window, without widgets: it owns nothing of the device but works on
// the device's stores (the session keeps them), rules every edit through the one edit path,
// hands the commands to the window's link, keeps the window's response tables up to date, and
// knows what the graph shows. It is the editor's side of the whole-preset transfer (a
// PresetView): a preset applied to the device refreshes the curves, then the window.
//
// Everything here runs on the interface thread and never waits on the line: the commands go to
// an EditorLink, which queues them on the link worker.
#pragma once

#include <array>
#include <filesystem>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "editor/model/controls.h"
#include "editor/model/edit_history.h"
#include "editor/model/edit_operation.h"
#include "editor/model/entry_keys.h"
#include "graph/output_response.h"
#include "graph/response_tables.h"
#include "presets/channel_names.h"
#include "presets/device_state.h"
#include "presets/preset_load.h"
#include "presets/preset_transfer.h"

namespace talvex::editor {

// A whole conversation with the device (a store, a slot read, a file's transfer, a type
// change, a list of commands) run as one job on the link worker, so that the window stays
// responsive while it lasts.
struct DeviceJob {
  // A step of the job: `value` of `maximum`.
  using Progress = std::function<void(int value, int maximum)>;
  // On the link worker thread: the conversation. It may report progress any number of times;
  // the link's own progress of a long wait (ShowSendProgress, ShowReadProgress) comes through
  // the same function as (value, link::kProgressEnd).
  std::function<void(link::Link&, const Progress&)> work;
  // On the interface thread: each progress report, then the end.
  Progress progress;
  std::function<void()> done;
  // Told (title, text) when the job is dropped before it began: its editor closed first.
  std::string unfinishedTitle;
  std::string unfinishedText;
};

// A job whose conversation returns a `Result` (default-constructible), handed to `done` on the
// interface thread.
template <typename Result, typename Work, typename Done>
DeviceJob MakeDeviceJob(Work work, DeviceJob::Progress progress, Done done) {
  auto result = std::make_shared<Result>();
  DeviceJob job;
  job.work = [result, work = std::move(work)](link::Link& link, const DeviceJob::Progress& step) {
    *result = work(link, step);
  };
  job.progress = std::move(progress);
  job.done = [result, done = std::move(done)]() mutable { done(std::move(*result)); };
  return job;
}

// What the program keeps of a connected device beside its stores, which the toolbar's dialogs
// read and change. The session owns it (one per device, one scratch record for all); an
// editor borrows it for its life.
struct DeviceRecords {
  presets::DeviceState& state;        // used marks and names of the 24 slots, lock, password
  presets::PresetState& presetState;  // the loaded-preset number and the changed flag
  presets::ChannelNames& names;       // the eight names; the input names are the editor's own
  presets::ScratchRecord& scratch;    // every preset file is read into it first
  std::string& deviceName;            // the 16-character name the device list shows
  const std::filesystem::path& presetFolder;  // where the file dialogs open (config/locations.h)
};

// Where an editor's commands go: to its device, through the link worker. Each command is
// coalesced with a waiting command of the same parameter (the newest wins).
class EditorLink {
 public:
  using MeterLevels = std::array<double, params::kChannelCount>;  // dBFS, -60 .. 0

  virtual ~EditorLink() = default;
  virtual void Send(std::span<const params::ParamEdit> edits) = 0;
  // Asks the device for its level meters while the line has nothing else to do; `done` comes
  // back on the interface thread with the levels of In A, In B, Out 1 .. Out 6. Nothing comes
  // back while the line is busy, in demo mode, or when the device does not answer.
  virtual void PollMeters(std::function<void(const MeterLevels&)> /*done*/) {}
  // Runs `job` after everything queued before it. Its progress and its end come back on the
  // interface thread while the editor lives; when the device fails or is unconnected before
  // the job runs, the job is dropped and `done` never comes (the device's editor closes then).
  // A link without a line (a test's) runs nothing.
  virtual void RunJob(DeviceJob /*job*/) {}
  // What the program keeps of the device. A link without a program behind it keeps its own.
  virtual DeviceRecords Records() {
    return {own_.state,   own_.presetState, own_.names,
            own_.scratch, own_.deviceName,  own_.presetFolder};
  }
  // The device's name in Records() changed: the device list shows it.
  virtual void DeviceRenamed() {}

 private:
  struct OwnRecords {
    presets::DeviceState state;
    presets::PresetState presetState;
    presets::ChannelNames names = presets::NamesFromImage(params::DefaultRecord(0));
    presets::ScratchRecord scratch;
    std::string deviceName;
    std::filesystem::path presetFolder = std::filesystem::temp_directory_path();
  };
  OwnRecords own_;
};

// What an edit did, for the window.
struct EditOutcome {
  // Non-empty: the system's message, to show titled "Warning"; nothing changed, nothing sent.
  std::string_view message;
  std::string shown;                      // the edited control's text now
  int position = 0;                       // the edited control's position now
  std::vector<params::ParamRef> changed;  // every parameter the edit changed (linked twins too)
  int gesture = 0;  // the gesture the edit belongs to (DeviceEditor::BeginGesture), 0 for none
  bool Applied() const { return !changed.empty(); }
};

// Which curves the graph draws: `Check4`..`Check8` ("View Out2" .. "View Out6"), "Show cursor",
// the option pair `Option1` "Out" / `Option2` "Out + InputB" (outputs drawn alone, or as their
// whole way from the input that feeds them), and the "Sum" boxes: the outputs whose acoustic
// sum is drawn (none: no sum).
struct GraphView {
  std::array<bool, 5> viewOut{true, true, true, true, true};  // Out 2 .. Out 6
  bool showCursor = false;
  bool outPlusInput = false;
  graph::OutputSet sumOutputs;  // bit k: Out k+1
};

class DeviceEditor final : public presets::PresetView {
 public:
  DeviceEditor(int deviceId, params::DeviceParams& device, params::DecimalMark mark,
               EditorLink& link);

  int DeviceId() const { return deviceId_; }
  params::DecimalMark Mark() const { return mark_; }
  const params::DeviceParams& Device() const { return device_; }

  // The editor's load: the whole-preset transfer with sending suspended fills every control and
  // the graph; nothing is sent.
  void Load();

  // An entry box's key (see entry_keys.h), with the input-suppress flag.
  KeyOutcome Key(int key) const;
  // Enter in a box: read, clamp, snap, send.
  EditOutcome Commit(const params::ParamRef& ref, std::string_view text);
  // A slider, scroll bar or up-down position; the value is sent once.
  EditOutcome Move(const params::ParamRef& ref, int position);
  // Up-down steps from the current position (a band frequency one table step, a delay's coarse
  // step 48 samples, its fine step one), held to the control's range.
  EditOutcome Step(const ControlId& upDown, int steps);
  // A list, option or check box.
  EditOutcome Choose(const params::ParamRef& ref, int choice);
  // "Flat Eq".
  EditOutcome FlattenEq(int channel);
  // Every edit of the user comes here: run on the edit path, recorded in the history, and told
  // to OnEdited (a device group runs it again on its other devices).
  EditOutcome Perform(const EditOperation& operation);
  // An edit that puts back a recorded value (undo, redo, a group's undo): on the edit path like
  // any other, neither recorded nor told.
  EditOutcome Restore(const EditOperation& operation);
  EditHistory& History() { return history_; }
  const EditHistory& History() const { return history_; }
  // Told after each edit of the user that changed something, with the tag of its history step.
  void OnEdited(std::function<void(const EditOperation&, const EditOutcome&, int tag)> edited) {
    edited_ = std::move(edited);
  }
  // A whole band at once (a handle dragged on the graph): one command for the band.
  EditOutcome SetBand(int band, const params::EqBandSetting& setting);

  // A gesture: the edits between BeginGesture and EndGesture are one action of the user (a
  // drag on the graph, however many positions it sent), which an undo would take back as one
  // step. Each edit's outcome carries the gesture's number (from 1; 0 outside a gesture).
  // A gesture is one group of the history (EditHistory::BeginGroup, EndGroup).
  int BeginGesture();
  void EndGesture() {
    gesture_ = 0;
    history_.EndGroup();
  }
  int Gesture() const { return gesture_; }
  // What a control shows now.
  params::ShownParam Show(const params::ParamRef& ref) const;
  // Whether the parameter means anything as the device stands: a shelf has no Q.
  bool Applies(const params::ParamRef& ref) const;

  // The input-suppress flag: while set, entry boxes ignore every key (a whole preset is being
  // applied or sent, and a typed value would be lost under it).
  void SetInputSuppressed(bool suppressed) { inputSuppressed_ = suppressed; }
  bool InputSuppressed() const { return inputSuppressed_; }
  // The lock: the device's system lock (record byte 327) or the editor's own "Lock unit"
  // (`Check10`, a guard against stray edits during a show). The enable routine: edits are
  // allowed only while neither is set; the window disables its controls, and the model refuses
  // edits that come anyway.
  bool DeviceLocked() const;
  void SetEditorLock(bool locked) { editorLock_ = locked; }
  bool EditorLock() const { return editorLock_ || DeviceLocked(); }
  bool EditsEnabled() const { return !EditorLock(); }

  // The selected channel, whose controls the window shows.
  int SelectedChannel() const { return selected_; }
  void SelectChannel(int channel);

  const GraphView& View() const { return view_; }
  void SetView(const GraphView& view);
  // Out 1 always, Out 2 .. Out 6 by their view boxes, and the selected channel.
  std::array<bool, params::kChannelCount> ShownChannels() const;
  // The curves the graph draws for a channel: its own, or with "Out + InputB" an output's
  // whole way from its source input (graph/output_response.h), levels included.
  const graph::Curve& Magnitude(int channel) const;
  const graph::Curve& Phase(int channel) const;
  float LevelDb(int channel) const;
  // The acoustic sum of the outputs the "Sum" boxes chose; null when none is chosen.
  const graph::ResponseCurves* Sum() const;
  const graph::ResponseTables& Tables() const { return *tables_; }

  // The stores changed outside the edit path (a channel copy, new names): every curve is
  // computed again and the window is told to show everything.
  void StoresReplaced();

  // The editor's names of In A and In B (the device keeps none), fitted to six characters.
  void SetInputNames(const presets::ChannelNames& names);
  // A channel's name as the editor's labels show it: an input's from SetInputNames ("In A"
  // and "In B" until then), an output's from the image.
  std::string ChannelName(int channel) const;

  // Told after every change the window must show: an edit's parameters, or (empty) everything,
  // after a whole preset was applied.
  void OnChanged(std::function<void(std::span<const params::ParamRef>)> changed) {
    changed_ = std::move(changed);
  }

  // PresetView: the whole-preset transfer's hooks.
  void RecomputeCrossoverResponses() override { curvesStale_ = true; }
  void RecomputeBandResponses() override { curvesStale_ = true; }
  void RedrawGraph() override;
  void RefreshControls(presets::PresetStage stage,
                       std::span<const presets::PresetStep> steps) override;

 private:
  EditOutcome Finish(const params::EditResult& result);
  void UpdateCurves(std::span<const params::ParamRef> changed);
  void ComputeAll();
  void RefreshWholeOutputs(const graph::ResponseSettings& settings);
  bool NeedsWholeOutputs() const { return view_.outPlusInput || view_.sumOutputs.any(); }
  params::EditOptions Options() const;

  int deviceId_;
  params::DeviceParams& device_;
  params::DecimalMark mark_;
  EditorLink& link_;
  std::unique_ptr<graph::ResponseTables> tables_;
  // Each output's whole way from its input ("Out + InputB") and the outputs' acoustic sum.
  std::unique_ptr<std::array<graph::ResponseCurves, params::kOutputCount>> wholeOutputs_;
  std::unique_ptr<graph::ResponseCurves> sum_;
  GraphView view_;
  int selected_ = 0;
  bool inputSuppressed_ = false;
  bool editorLock_ = false;
  bool curvesStale_ = false;
  int gesture_ = 0;
  int gestures_ = 0;
  std::array<std::string, params::kInputCount> inputNames_;
  std::function<void(std::span<const params::ParamRef>)> changed_;
  EditHistory history_;
  std::function<void(const EditOperation&, const EditOutcome&, int tag)> edited_;
};

}  // namespace talvex::editor
