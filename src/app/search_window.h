// Shown while the start-up search polls the line: the share of IDs polled so far.
#pragma once

#include <QLabel>
#include <QProgressBar>
#include <QWidget>

namespace talvex::app {

class SearchWindow : public QWidget {
  Q_OBJECT

 public:
  explicit SearchWindow(QWidget* parent = nullptr);
  QString ProgressText() const { return progress_->text(); }

 public slots:
  // "3.1 %": shown as it is, and on the bar.
  void ShowProgress(const QString& text);

 private:
  QLabel* progress_;
  QProgressBar* bar_;
};

}  // namespace talvex::app
