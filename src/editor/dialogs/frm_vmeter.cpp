#include "editor/dialogs/frm_vmeter.h"

#include <QApplication>
#include <QLabel>
#include <QProgressBar>
#include <QVBoxLayout>

namespace talvex::editor {

FrmVMeter::FrmVMeter(const QString& title, int maximum, QWidget* parent)
    : QDialog(parent, Qt::Tool | Qt::CustomizeWindowHint | Qt::WindowTitleHint),
      bar_(new QProgressBar) {
  setObjectName("FrmVMeter");
  setWindowTitle(title);
  bar_->setObjectName("ProgressBar1");
  bar_->setRange(0, maximum);
  bar_->setValue(0);
  bar_->setAccessibleName("Transfer progress");
  bar_->setMinimumWidth(bar_->fontMetrics().averageCharWidth() * 40);
  auto* label = new QLabel("Sending the preset to the device ...");
  label->setBuddy(bar_);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(label);
  layout->addWidget(bar_);
  QApplication::setOverrideCursor(Qt::BusyCursor);
}

// The pointer comes back however the transfer ends, also when the editor closes under it.
FrmVMeter::~FrmVMeter() {
  QApplication::restoreOverrideCursor();
}

void FrmVMeter::SetValue(int value) {
  bar_->setValue(value);
}

}  // namespace talvex::editor
