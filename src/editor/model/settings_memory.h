// What an editor remembers of its device's settings, without widgets: the history (undo and
// redo), the other side of the A/B compare, and the settings last kept in a preset file and in
// a device slot. It sends what it puts back through the editor's own paths:
//   - the edits of a step go back parameter by parameter through the edit path (DeviceEditor::
//     Restore), each a command of its own, coalesced like any edit;
//   - a whole setting (a preset load, a type change, an A/B switch ...) goes back through the
//     whole-preset transfer, of which only the commands that differ are sent
//     (presets/settings_switch.h), as one job on the link worker.
// Everything runs on the interface thread.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "editor/model/device_editor.h"
#include "editor/model/save_marks.h"
#include "presets/settings_switch.h"

namespace talvex::editor {

class DeviceGroups;

inline constexpr int kSideA = 0;
inline constexpr int kSideB = 1;

class SettingsMemory {
 public:
  // `device` is the stores `model` edits. The setting it holds now counts as the one the editor
  // opened with (SaveMarks::Opened).
  SettingsMemory(DeviceEditor& model, params::DeviceParams& device, EditorLink& link);
  ~SettingsMemory();
  SettingsMemory(const SettingsMemory&) = delete;
  SettingsMemory& operator=(const SettingsMemory&) = delete;

  DeviceEditor& Model() { return model_; }
  int DeviceId() const { return model_.DeviceId(); }
  EditHistory& History() { return model_.History(); }
  const EditHistory& History() const { return model_.History(); }

  // Undo and redo: nothing while the editor takes no edits (locked). A step of a device group's
  // edit is taken back (or redone) on every member whose next step it is.
  bool CanUndo() const;
  bool CanRedo() const;
  void Undo();
  void Redo();

  // A whole setting replaced the stores (a preset file loaded, a preset read from the device, a
  // type change, an import, a copy, new names): one step, from `before` to the stores now.
  void RecordSettingsStep(std::string name, const params::DeviceParams& before);

  // The A/B compare: two settings, one on the device (the side shown) and one kept here. The
  // first switch makes B a copy of A.
  int Side() const { return side_; }
  bool HasOtherSide() const { return other_.has_value(); }
  // Puts the other side on the device, sending only what differs, as one job; one step.
  void SwitchSide();
  // "Copy A to B": B takes A's setting. While B is shown the device takes it (one step).
  void CopyAToB();
  // "A/B: A", "A/B: B (B not set)".
  std::string SideText() const;

  // The save state.
  void FileMarked(std::string title, bool saved);
  void SlotMarked(int slot, std::string name, bool stored);
  std::string FileText() const { return marks_.FileText(device_.image); }
  std::string SlotText() const { return marks_.SlotText(device_.image); }
  bool Unsaved() const { return marks_.Unsaved(device_.image); }
  // A backup was restored onto the device: what it holds now is what the editor opened with.
  void Reopened();

  // Forgets the history, saying why (the device was disconnected, a backup was restored).
  void ClearHistory(std::string reason);
  // A line for the status bars (through `status`).
  void Tell(const std::string& text) const;

  // The program's device groups (DeviceGroups::Attach); the editor leaves its group when it
  // goes.
  DeviceGroups* Groups() const { return groups_; }

  // The window's hooks: a job of this memory began (true) or ended; a line for the status bar;
  // the history, the side, the marks or the group changed; the type changed (the caption).
  std::function<void(bool running)> jobRunning;
  std::function<void(const std::string&)> status;
  std::function<void()> changed;
  std::function<void(int systemType)> typeChanged;

 private:
  friend class DeviceGroups;
  // Undo and redo of this editor alone.
  HistoryStep UndoHere();
  HistoryStep RedoHere();
  void PutBack(const HistoryStep& step, const params::DeviceParams& target, int side,
               const std::string& verb);
  // Replaces the stores' setting with `target` and sends what differs; false (and nothing
  // changed) when either holds a byte no sender takes.
  bool ReplaceSetting(const params::DeviceParams& target, const std::string& what);
  void Edited(const EditOperation& operation, const EditOutcome& outcome, int tag);
  void Changed() const;

  DeviceEditor& model_;
  params::DeviceParams& device_;
  EditorLink& link_;
  SaveMarks marks_;
  int side_ = kSideA;
  std::optional<params::DeviceParams> other_;
  DeviceGroups* groups_ = nullptr;
};

}  // namespace talvex::editor
