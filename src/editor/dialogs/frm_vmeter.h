// `FrmVMeter`: the small window with one progress bar that a preset file's transfer shows at
// its 18 points. While it is open the pointer is the busy one (arrow with hourglass).
#pragma once

#include <QDialog>
#include <QPointer>

class QProgressBar;

namespace talvex::editor {

class FrmVMeter final : public QDialog {
  Q_OBJECT

 public:
  FrmVMeter(const QString& title, int maximum, QWidget* parent);
  ~FrmVMeter() override;

  void SetValue(int value);
  QProgressBar& Bar() const { return *bar_; }
  void reject() override {}  // the transfer cannot be cancelled half-way

 private:
  QProgressBar* bar_;
};

}  // namespace talvex::editor
