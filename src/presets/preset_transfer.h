// The whole-preset transfer: after a device's image has been replaced as a whole (editor load,
// a preset read from device memory, a system type change, a preset file load), every
// parameter is walked once through the same senders single edits use, so the stores, the
// editor and, when sending is allowed, the device all come into line with the image.
//
// It is split in two so that the desktop program's UI thread never waits on the wire:
// `ApplyPreset` walks the 20 stages on the model, tells the editor (a `PresetView`) what each
// stage changed, and returns the commands in sending order, each tagged with its stage;
// `SendPresetTransfer` sends such a list through a link (on the link worker thread in the
// desktop program, directly in talvexctl).
#pragma once

#include <functional>
#include <span>
#include <string_view>
#include <vector>

#include "link/link.h"
#include "params/senders.h"

namespace talvex::presets {

enum class PresetStage {
  Pause = 1,      // 10 ms before the first command (part of sending)
  Mutes,          // code 9, every channel
  InputSource,    // code 13
  OutputSources,  // code 8, Out 1..6
  DbuLevels,      // code 7: the threshold, attack and release senders of each output
  Crossovers,     // code 4, twelve filters; then the crossover responses
  ChannelBits,    // code 29 with byte 299, sent directly
  EqButtons,      // Command5 ("Bypass Eq", which runs Check3), then Command4
  EqBands,        // code 5, 52 bands; then the band responses
  Polarities,     // code 3
  Delays,         // code 2
  Levels,         // code 1, the level sender twice per channel
  Limiters,       // code 35; then Check13 and Check12, which send nothing
  OutputLink,     // code 34, the switch behind Check11
  OutputNames,    // code 14, Out 1..6
  DelayUnit,      // the routine behind Check3 once more (code 17)
  ViewBoxes,      // Check4..Check8 ("View Out2" .. "View Out6"), each redraws the graph
  InputBView,     // Option2 ("Out + InputB")
  Graph,          // the graph as a whole
  MutesAgain,     // code 9, every channel once more
};
inline constexpr int kStageCount = 20;
// Progress is shown at 18 points: at the end of each stage from Mutes to Graph.
inline constexpr int kProgressPoints = 18;

// The name of a stage, for traces and messages ("equaliser bands").
std::string_view StageName(PresetStage stage);

// How the caller runs the transfer. The four callers of the device's tools, as factories:
//   caller                   EditorLoading  SendSuspended  PresetApplying  DeviceRead  Progress
//   EditorLoad()             1              true           false           -           -
//   DeviceRead()             1              true           true            true        -
//   SystemTypeChange()       1              true           -               -           -
//   PresetFileLoad()         -              false          true            -           true
// ("-": the caller leaves it as it was; here it starts false.) The flags travel with the
// transfer instead of living in globals, so nothing has to be restored afterwards.
struct TransferFlags {
  int editorLoading = 0;
  bool sendSuspended = false;
  bool presetApplying = false;      // a stored preset (file or device memory) is being applied
  bool deviceReadApplying = false;  // ... and it came from device memory
  bool showApplyProgress = false;

  static TransferFlags EditorLoad();
  static TransferFlags DeviceRead();
  static TransferFlags SystemTypeChange();
  static TransferFlags PresetFileLoad();
};

// One command of the transfer with the stage that produced it and the labels its sender built.
struct PresetStep {
  PresetStage stage;
  params::ParamEdit edit;
};

struct PresetTransfer {
  TransferFlags flags;
  std::vector<PresetStep> steps;  // in sending order; mutes first and last

  std::span<const PresetStep> StepsOf(PresetStage stage) const;
};

// The editor's side of the transfer; every hook does nothing by default (talvexctl passes a
// view that does nothing). Hooks come in stage order, after the model has been updated whole.
class PresetView {
 public:
  virtual ~PresetView() = default;
  // The stage's senders have run: refresh the controls and labels of that stage from the
  // stores. `steps` are its commands with their labels, in sender order (empty for the stages
  // that send nothing: Command4, Check12/13, the view boxes, Option2, the graph).
  virtual void RefreshControls(PresetStage /*stage*/, std::span<const PresetStep> /*steps*/) {}
  // After the crossover filters (stage 6) and the equaliser bands (stage 9).
  virtual void RecomputeCrossoverResponses() {}
  virtual void RecomputeBandResponses() {}
  // Once for each of the five view boxes (stage 17), for Option2 (18) and for the whole graph
  // (19); a view may coalesce them.
  virtual void RedrawGraph() {}
  // EditorLoading is raised around the equaliser bands and the levels, whose controls would
  // otherwise send again from their change handlers, and is 0 after each (as it always was,
  // whatever the caller had set).
  virtual void SetEditorLoading(int /*value*/) {}
};

// Walks the 20 stages on `device` and returns the commands in sending order. The whole walk is
// done on a copy first: a byte in the image that no sender accepts (a frequency byte above 240,
// a delay beyond one second ...) throws IndexError with `device` unchanged and no hook called.
// Then the copy replaces `device` and the view hooks run stage by stage.
PresetTransfer ApplyPreset(params::DeviceParams& device, PresetView& view,
                           const TransferFlags& flags,
                           params::DecimalMark mark = params::DecimalMark::Point);

enum class TransferEnd {
  Completed,  // every command was acknowledged
  Suspended,  // nothing went out: sending suspended, demo mode or the link not open
  Stopped,    // an exchange finally failed; nothing was sent after it
};

struct TransferOutcome {
  TransferEnd end = TransferEnd::Completed;
  int commandsSent = 0;                        // acknowledged commands
  PresetStage stoppedAt = PresetStage::Pause;  // the stage of the failed command (Stopped)
};

// Progress point 1..18, reported at the end of stages Mutes .. Graph when the transfer's
// flags ask for progress.
using TransferProgress = std::function<void(int point)>;

// Sends the transfer's commands to `deviceId` in order: a 10 ms pause, then each command with
// SendCommand. With the transfer's sendSuspended the link's SendSuspended is raised for the
// call (and restored), so not one frame goes out. After a final failure (reported and the
// device closed when the link reports errors; silent otherwise) nothing more is sent: the
// device is gone, and waiting out five transmissions for each further command would only
// hold the line. The stage walk still runs to its end, so progress reaches its last point.
TransferOutcome SendPresetTransfer(link::Link& link, int deviceId, const PresetTransfer& transfer,
                                   const TransferProgress& progress = {});

}  // namespace talvex::presets
