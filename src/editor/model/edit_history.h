// The undo and redo history of one editor, without widgets. A step is either the edits of one
// action of the user (one typed value, one click, or every position of a drag, grouped) or a
// whole setting replaced at once (a preset file loaded, a preset read from device memory, a
// type change, an A/B switch, an equaliser import, a channel copy, new names). Each step keeps
// the device's setting before and after it; taking a step back puts `before` back, a step
// forward puts `after` back (settings_memory.h sends them).
//
// Grouping: the edits between BeginGroup and EndGroup are one step, named by the group or by its
// first edit. A slider calls them on press and release; a drag of a handle on the response graph
// calls them when the drag begins and ends. Every step carries a tag; an edit recorded with the
// tag of the step on top joins it, which is how the devices of a group record one drag made in
// another editor as one step each, and how an undo in one editor finds the same step in the
// others.
#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "editor/model/edit_operation.h"

namespace talvex::editor {

// How many steps an editor keeps; the oldest goes first. A step keeps two settings (about 7 KB),
// so a full history of eleven editors stays under 8 MB.
inline constexpr std::size_t kHistorySteps = 100;

struct HistoryStep {
  enum class Kind {
    Edits,     // put back parameter by parameter through the edit path
    Settings,  // put back as a whole setting through the whole-preset transfer
  };
  Kind kind = Kind::Edits;
  std::string name;  // "Out 3 EQ 2 gain", "Load Preset from PC"
  int tag = 0;
  params::DeviceParams before;
  params::DeviceParams after;
  std::vector<RecordedEdit> edits;  // for Kind::Edits, in the order they were made
  // An A/B switch: the side shown before and after it (0 = A, 1 = B); -1 for other steps.
  int sideBefore = -1;
  int sideAfter = -1;
};

class EditHistory {
 public:
  // A new group: the edits until EndGroup are one step. `name` names the step; empty: the first
  // edit names it. A group still open is ended first.
  void BeginGroup(std::string name = {});
  // The edits until EndGroup join the step tagged `tag` while it is on top (a group's edit that
  // another editor made); otherwise they make a step of that tag.
  void JoinGroup(int tag, std::string name = {});
  void EndGroup();
  bool GroupOpen() const { return group_.has_value(); }

  // One edit of the edit path; returns the tag of the step it went to. Clears what could be
  // redone.
  int RecordEdit(const EditOperation& operation, std::vector<params::ParamRef> changed,
                 const params::DeviceParams& before, const params::DeviceParams& after);
  // A whole setting replaced; returns the step's tag.
  int RecordSettings(std::string name, const params::DeviceParams& before,
                     const params::DeviceParams& after, int sideBefore = -1, int sideAfter = -1);

  bool CanUndo() const { return !undo_.empty(); }
  bool CanRedo() const { return !redo_.empty(); }
  const HistoryStep& NextUndo() const { return undo_.back(); }
  const HistoryStep& NextRedo() const { return redo_.back(); }
  // The step undone (moved to the redo side), or redone. A group still open is ended first.
  HistoryStep Undo();
  HistoryStep Redo();
  std::size_t UndoCount() const { return undo_.size(); }
  std::size_t RedoCount() const { return redo_.size(); }

  // Forgets every step, saying why ("the device was disconnected"): the word stays until the
  // next step is recorded.
  void Clear(std::string reason);
  const std::string& ClearedBecause() const { return cleared_; }

  // "Undo Out 3 EQ 2 gain"; "Undo" with nothing to undo, or "Undo (history cleared: the device
  // was disconnected)".
  std::string UndoText() const;
  std::string RedoText() const;

  // Told after every change of the steps (to rename the menu's entries).
  void OnChanged(std::function<void()> changed) { changed_ = std::move(changed); }

 private:
  struct OpenGroup {
    int tag = 0;
    std::string name;
  };
  int Push(HistoryStep step);
  void Changed() const {
    if (changed_) changed_();
  }

  std::deque<HistoryStep> undo_;
  std::deque<HistoryStep> redo_;
  std::optional<OpenGroup> group_;
  std::string cleared_;
  std::function<void()> changed_;
};

}  // namespace talvex::editor
