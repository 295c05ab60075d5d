// `FrmSysType`, "System Setup": one option per crossover system type (`Option1`), the type in
// force selected. Applying another type asks "Change Xover Type, are you sure ? ", sends
// command 21 as a job on the link worker (the device may take up to 10 s per transmission to
// answer; the wait is shown), then the editor takes the new type's factory image without
// sending and its caption names "Default".
#pragma once

#include <QDialog>
#include <array>

#include "editor/dialogs/command_context.h"
#include "presets/system_type.h"

class QButtonGroup;
class QProgressBar;
class QPushButton;
class QRadioButton;

namespace talvex::editor {

class FrmSysType final : public QDialog {
  Q_OBJECT

 public:
  // Closes the dialog, unless its job is still running.
  void reject() override;
  explicit FrmSysType(CommandContext& context);

  QRadioButton& Option1(int type) const;
  // Index 0 applies the selected type, index 1 closes.
  QPushButton& Command1(int index) const;
  QProgressBar& Wait() const { return *wait_; }

 private:
  void Apply();
  void Switched(int systemType, presets::TypeSend sent, const params::DeviceParams& before);

  CommandContext& context_;
  std::array<QRadioButton*, params::kSystemTypeCount> options_{};
  QButtonGroup* group_;
  QPushButton* apply_;
  QPushButton* close_;
  QProgressBar* wait_;
  bool switching_ = false;
};

}  // namespace talvex::editor
