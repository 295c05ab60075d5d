#include "editor/dialogs/frm_copy_out.h"

#include "presets/channel_copy.h"

namespace talvex::editor {

FrmCopyOut::FrmCopyOut(CommandContext& context)
    : CopyDialog(context, presets::kOutputCopyCaption, presets::kCopyOutputTitle,
                 params::kInputCount, params::kOutputCount) {
  setObjectName("FrmCopyOut");
}

}  // namespace talvex::editor
