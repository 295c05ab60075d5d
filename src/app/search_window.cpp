#include "app/search_window.h"

#include <QVBoxLayout>

namespace talvex::app {

SearchWindow::SearchWindow(QWidget* parent)
    : QWidget(parent, Qt::Tool), progress_(new QLabel("0 %")), bar_(new QProgressBar) {
  setWindowTitle("Searching devices");
  bar_->setAccessibleName("Search progress");
  bar_->setRange(0, 1000);
  bar_->setTextVisible(false);
  progress_->setAlignment(Qt::AlignCenter);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(new QLabel("Searching the line for devices (IDs 0 to 32)..."));
  layout->addWidget(bar_);
  layout->addWidget(progress_);
  setMinimumWidth(320);
}

void SearchWindow::ShowProgress(const QString& text) {
  progress_->setText(text);
  bar_->setValue(static_cast<int>(QString(text).remove(" %").toDouble() * 10));
}

}  // namespace talvex::app
