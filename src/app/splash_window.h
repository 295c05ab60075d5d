// The splash window: our picture for two seconds, shaped by its red areas (pure red is see-through,
// so the window takes the picture's outline).
#pragma once

#include <QPixmap>
#include <QTimer>
#include <QWidget>

namespace talvex::app {

inline constexpr int kSplashMilliseconds = 2000;

class SplashWindow : public QWidget {
  Q_OBJECT

 public:
  explicit SplashWindow(QWidget* parent = nullptr);
  // Shows the window and starts its timer.
  void Start();

  // The picture, drawn on pure red wherever the window is to be transparent.
  static QPixmap Picture();

 signals:
  void finished();

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QPixmap picture_;
  QTimer timer_;
};

}  // namespace talvex::app
