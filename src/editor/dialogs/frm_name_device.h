// `FrmNameDevice`, "Edit name device": the device's own name of up to 16 characters. The box
// opens on the current name; storing sends its 16 characters (padded with blanks) as one job,
// and the device list's row shows the new name once all 16 went through (or at once in demo
// mode, where nothing is sent).
#pragma once

#include <QDialog>

#include "editor/dialogs/command_context.h"

class QLineEdit;
class QPushButton;

namespace talvex::editor {

inline constexpr const char* kNameDeviceTitle = "Edit name device";

class FrmNameDevice final : public QDialog {
  Q_OBJECT

 public:
  explicit FrmNameDevice(CommandContext& context);

  QLineEdit& NameBox() const { return *name_; }
  // Index 0 stores the name, index 1 closes without sending.
  QPushButton& Command1(int index) const;

 private:
  void Store();

  CommandContext& context_;
  QLineEdit* name_;
  QPushButton* store_;
  QPushButton* cancel_;
};

}  // namespace talvex::editor
