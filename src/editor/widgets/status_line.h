// The editor's own status line, under its controls: which side of the A/B compare the device
// holds, whether the settings differ from the last preset file and the last device slot, and
// the last word of the editor's history, compare and tools ("Switched to B: 1 command in 29 ms").
#pragma once

#include <QWidget>

class QLabel;

namespace talvex::editor {

class SettingsMemory;

class StatusLine final : public QWidget {
 public:
  explicit StatusLine(QWidget* parent = nullptr);

  // The A/B side and the save state as the memory has them now.
  void ShowState(const SettingsMemory& memory);
  void ShowMessage(const QString& text);

  QLabel& Side() const { return *side_; }
  QLabel& File() const { return *file_; }
  QLabel& Slot() const { return *slot_; }
  QLabel& Message() const { return *message_; }

 private:
  void Show(QLabel& part, const QString& text);

  QLabel* side_;
  QLabel* file_;
  QLabel* slot_;
  QLabel* message_;
};

}  // namespace talvex::editor
