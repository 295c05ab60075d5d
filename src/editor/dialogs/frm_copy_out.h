// `FrmCopyOut`, "Output Copy": one of Out 1 .. Out 6 onto another (see copy_dialog.h).
#pragma once

#include "editor/dialogs/copy_dialog.h"

namespace talvex::editor {

class FrmCopyOut final : public CopyDialog {
 public:
  explicit FrmCopyOut(CommandContext& context);
};

}  // namespace talvex::editor
