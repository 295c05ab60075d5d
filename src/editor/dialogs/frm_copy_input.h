// `FrmCopyInput`, "Input Copy": In A onto In B or In B onto In A (see copy_dialog.h).
#pragma once

#include "editor/dialogs/copy_dialog.h"

namespace talvex::editor {

class FrmCopyInput final : public CopyDialog {
 public:
  explicit FrmCopyInput(CommandContext& context);
};

}  // namespace talvex::editor
