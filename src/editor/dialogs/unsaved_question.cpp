#include "editor/dialogs/unsaved_question.h"

#include "editor/dialogs/preset_file_flow.h"

namespace talvex::editor {

std::string UnsavedQuestion(const CommandContext& context, bool leavingProgram) {
  return "ID:" + std::to_string(context.DeviceId()) +
         ": these settings are kept neither in a preset file nor in a device slot (" +
         context.memory.FileText() + "; " + context.memory.SlotText() +
         "). Save them to a preset file before " + (leavingProgram ? "leaving?" : "closing?");
}

bool MayLeaveUnsaved(CommandContext& context, const std::string& title, bool leavingProgram) {
  if (!context.memory.Unsaved()) return true;
  switch (context.dialogs.AskYesNoCancel(title, UnsavedQuestion(context, leavingProgram),
                                         DialogIcon::Warning, Answer::Yes)) {
    case Answer::Yes:
      return SaveToChosenFile(context);
    case Answer::No:
      return true;
    case Answer::Cancel:
      break;
  }
  return false;
}

}  // namespace talvex::editor
