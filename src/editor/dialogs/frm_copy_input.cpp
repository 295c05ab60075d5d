#include "editor/dialogs/frm_copy_input.h"

#include "presets/channel_copy.h"

namespace talvex::editor {

FrmCopyInput::FrmCopyInput(CommandContext& context)
    : CopyDialog(context, presets::kInputCopyCaption, presets::kCopyInputTitle, 0,
                 params::kInputCount) {
  setObjectName("FrmCopyInput");
}

}  // namespace talvex::editor
