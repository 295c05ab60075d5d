// `FrmStore`, "Store Preset to device": the editor's preset into one of the device's 24 slots
// under a name of up to 16 characters, after "               Are you sure ? " ("Store
// Preset"). `ProgressBar1` shows the store's steps against its maximum of 84 while the job runs
// on the link worker; the dialog cannot be closed meanwhile.
#pragma once

#include <QDialog>

#include "editor/dialogs/command_context.h"
#include "presets/device_memory.h"

class QLineEdit;
class QListWidget;
class QProgressBar;
class QPushButton;

namespace talvex::editor {

inline constexpr const char* kStoreDialogTitle = "Store Preset to device";

class FrmStore final : public QDialog {
  Q_OBJECT

 public:
  // Closes the dialog, unless its job is still running.
  void reject() override;
  explicit FrmStore(CommandContext& context);

  QListWidget& List1() const { return *list_; }
  QLineEdit& NameBox() const { return *name_; }
  // Index 0 cancels (closes), index 1 stores the selected slot.
  QPushButton& Command1(int index) const;
  QProgressBar& ProgressBar1() const { return *progress_; }
  bool Storing() const { return storing_; }

 private:
  void ShowSlotName(int slot);
  void Store();
  void Stored(const presets::PresetStore& store, const presets::StoreOutcome& outcome);

  CommandContext& context_;
  QListWidget* list_;
  QLineEdit* name_;
  QPushButton* cancel_;
  QPushButton* store_;
  QProgressBar* progress_;
  bool storing_ = false;
};

}  // namespace talvex::editor
