// Our question before an editor's settings are left nowhere but on the device: asked when an
// editor closes or the program ends while the editor holds settings that changed since it
// opened and are kept neither in the last preset file nor in the last device slot. It comes
// after the system's own close question ("               Are you sure ? "), which stays as it
// always was: the system's asks whether to close at all; ours, only when something would be
// lost, whether to keep it in a file first, and its Cancel takes the close back.
#pragma once

#include <string>

#include "editor/dialogs/command_context.h"

namespace talvex::editor {

// "ID:3: these settings are kept neither in a preset file nor in a device slot (File: none;
// Slot: 3 Chorus live, changed since read). Save them to a preset file before closing?"
std::string UnsavedQuestion(const CommandContext& context, bool leavingProgram);

// True when the editor may go: nothing is unsaved, the user saved to a file, or chose not to.
// False on Cancel, or when the save was cancelled or failed (told).
bool MayLeaveUnsaved(CommandContext& context, const std::string& title, bool leavingProgram);

}  // namespace talvex::editor
