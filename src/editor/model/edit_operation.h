// One edit of the editor as a value: what the user did to one parameter (typed a text, moved a
// control, picked a choice, "Flat Eq", set a whole band), so that it can be run on the edit
// path, named in the history ("Out 3 EQ 2 gain"), and run again on the other devices of a
// group. Also the edits that put parameters back to what a recorded setting holds, for undo and
// redo.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "params/param_edit.h"

namespace talvex::editor {

struct EditOperation {
  enum class Kind {
    Text,       // a typed text committed with Enter (`text`)
    Position,   // a slider, scroll bar or up-down position (`value`)
    Choice,     // a list, option or check box (`value`)
    FlattenEq,  // "Flat Eq" of `ref.channel`
    Band,       // a whole band at once (`band`, for `ref.band`)
  };
  Kind kind = Kind::Position;
  params::ParamRef ref;
  std::string text;
  int value = 0;
  params::EqBandSetting band;
  // Linked outputs take the same value. Off for the edits that put a recorded setting back:
  // each member of a link pair goes back to its own value.
  bool followLinks = true;

  static EditOperation Typed(const params::ParamRef& ref, std::string text);
  static EditOperation Moved(const params::ParamRef& ref, int position);
  static EditOperation Chosen(const params::ParamRef& ref, int choice);
  static EditOperation Flatten(int channel);
  static EditOperation WholeBand(int band, const params::EqBandSetting& setting);
};

// Runs the operation on the edit path (params/param_edit.h) with `options`; the operation's
// followLinks stands over the options'.
params::EditResult RunOperation(params::DeviceParams& device, const EditOperation& operation,
                                params::EditOptions options);

// The change as the history names it: "Out 3 EQ 2 gain", "In A level", "Out 1 flat EQ",
// "temperature".
std::string ChangeName(const EditOperation& operation);

// An edit as it was made, with what the edit path changed (linked outputs too).
struct RecordedEdit {
  EditOperation operation;
  std::vector<params::ParamRef> changed;
};

// The edits that put back what `target` holds for every parameter the recorded edits changed,
// each once: a band's parameters as one whole band, every other parameter by its own control
// (position, choice or name), each alone (linked outputs are not followed: each goes back to its
// own value). A temperature change goes back as a temperature, whatever delays it sent again.
std::vector<EditOperation> RestoreOperations(const params::DeviceParams& target,
                                             std::span<const RecordedEdit> edits);

}  // namespace talvex::editor
