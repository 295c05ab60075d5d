// `FrmRead`, "Read Preset from device": a stored preset of the device's 24 slots into the
// editor. An unused slot brings "Preset empty" and nothing is sent; otherwise, after "Overwrite
// current editing, are you sure ? ", the slot's 304 bytes are read as a job on the link worker
// (its wait shown in the dialog), the editor shows them without sending, and the caption names
// the slot.
#pragma once

#include <QDialog>

#include "editor/dialogs/command_context.h"
#include "presets/device_memory.h"

class QListWidget;
class QProgressBar;
class QPushButton;

namespace talvex::editor {

inline constexpr const char* kReadDialogTitle = "Read Preset from device";
// A block has no checksum: line noise can bring a byte no device keeps.
inline constexpr const char* kGarbledPresetText =
    "The preset came garbled (a byte no device keeps); nothing was changed. Please read it again.";

class FrmRead final : public QDialog {
  Q_OBJECT

 public:
  // Closes the dialog, unless its job is still running.
  void reject() override;
  explicit FrmRead(CommandContext& context);

  QListWidget& List1() const { return *list_; }
  // Index 0 cancels, index 1 reads the selected slot.
  QPushButton& Command1(int index) const;
  QProgressBar& Progress() const { return *progress_; }

 private:
  struct SlotReadResult {
    presets::SlotRead read = presets::SlotRead::Failed;
    params::PresetImage preset{};
  };

  void Read();
  void Apply(int slot, const SlotReadResult& result);
  void SetReading(bool reading);

  CommandContext& context_;
  QListWidget* list_;
  QPushButton* cancel_;
  QPushButton* read_;
  QProgressBar* progress_;
  bool reading_ = false;
};

}  // namespace talvex::editor
