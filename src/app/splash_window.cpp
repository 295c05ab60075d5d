#include "app/splash_window.h"

#include <QBitmap>
#include <QPainter>
#include <QPainterPath>

namespace talvex::app {

namespace {

const QColor kColourKey(255, 0, 0);  // see-through wherever the picture is pure red

void DrawCone(QPainter& painter, QPointF centre, qreal radius) {
  painter.setPen(QPen(QColor(200, 200, 205), 3));
  painter.setBrush(QColor(40, 40, 46));
  painter.drawEllipse(centre, radius, radius);
  painter.setBrush(QColor(70, 70, 78));
  painter.drawEllipse(centre, radius * 0.62, radius * 0.62);
  painter.setBrush(QColor(225, 160, 40));
  painter.drawEllipse(centre, radius * 0.22, radius * 0.22);
}

}  // namespace

QPixmap SplashWindow::Picture() {
  QPixmap pixmap(520, 300);
  pixmap.fill(kColourKey);
  QPainter painter(&pixmap);
  // The outline is drawn without smoothing: blended edge pixels would be neither red nor picture.
  QPainterPath outline;
  outline.addRoundedRect(QRectF(10, 10, 500, 280), 36, 36);
  painter.fillPath(outline, QColor(24, 26, 32));
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(QColor(225, 160, 40), 4));
  painter.drawRoundedRect(QRectF(18, 18, 484, 264), 30, 30);
  DrawCone(painter, {110, 150}, 70);
  QFont title("Sans", 40, QFont::Black);
  painter.setFont(title);
  painter.setPen(Qt::white);
  painter.drawText(QRectF(200, 80, 300, 70), Qt::AlignLeft | Qt::AlignVCenter, "TALVEX");
  painter.setFont(QFont("Sans", 14));
  painter.setPen(QColor(200, 200, 205));
  painter.drawText(QRectF(204, 150, 300, 30), Qt::AlignLeft | Qt::AlignVCenter,
                   "Speaker management");
  painter.setPen(QColor(150, 150, 160));
  painter.setFont(QFont("Sans", 10));
  painter.drawText(QRectF(204, 190, 300, 24), Qt::AlignLeft | Qt::AlignVCenter,
                   "2 inputs  \u00b7  6 outputs  \u00b7  up to 33 processors");
  return pixmap;
}

SplashWindow::SplashWindow(QWidget* parent)
    : QWidget(parent, Qt::SplashScreen | Qt::FramelessWindowHint), picture_(Picture()) {
  setFixedSize(picture_.size());
  setMask(picture_.createMaskFromColor(kColourKey, Qt::MaskInColor));
  timer_.setSingleShot(true);
  timer_.setInterval(kSplashMilliseconds);
  connect(&timer_, &QTimer::timeout, this, [this] {
    emit finished();
    close();
  });
}

void SplashWindow::Start() {
  show();
  timer_.start();
}

void SplashWindow::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.drawPixmap(0, 0, picture_);
}

}  // namespace talvex::app
