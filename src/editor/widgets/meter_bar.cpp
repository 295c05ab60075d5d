#include "editor/widgets/meter_bar.h"

#include <QPainter>
#include <algorithm>

namespace talvex::editor {

namespace {

constexpr double kYellowFrom = -18.0;
constexpr double kRedFrom = -6.0;

double Fraction(double dbfs) {
  return (dbfs - MeterBar::kFloorDbfs) / -MeterBar::kFloorDbfs;
}

}  // namespace

MeterBar::MeterBar(QWidget* parent) : QWidget(parent) {
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  SetLevel(kFloorDbfs);
}

void MeterBar::SetLevel(double dbfs) {
  dbfs = std::clamp(dbfs, kFloorDbfs, 0.0);
  if (dbfs == dbfs_ && !accessibleDescription().isEmpty()) return;
  dbfs_ = dbfs;
  setAccessibleDescription(dbfs_ <= kFloorDbfs ? QString("silent")
                                               : QString("%1 dBFS").arg(dbfs_, 0, 'f', 1));
  update();
}

QSize MeterBar::sizeHint() const {
  return {fontMetrics().averageCharWidth() * 10, fontMetrics().height() / 2 + 2};
}

void MeterBar::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  const QRect frame = rect().adjusted(0, 0, -1, -1);
  painter.fillRect(frame, palette().base());
  const int width = frame.width();
  const auto x = [&](double dbfs) {
    return frame.left() + static_cast<int>(width * Fraction(dbfs));
  };
  const int level = x(dbfs_);
  const struct {
    double from, to;
    QColor colour;
  } zones[] = {{kFloorDbfs, kYellowFrom, QColor(40, 170, 60)},
               {kYellowFrom, kRedFrom, QColor(225, 190, 30)},
               {kRedFrom, 0.0, QColor(215, 40, 40)}};
  for (const auto& zone : zones) {
    const int left = x(zone.from);
    const int right = std::min(x(zone.to), level);
    if (right > left)
      painter.fillRect(QRect(left, frame.top(), right - left, frame.height()), zone.colour);
  }
  painter.setPen(palette().mid().color());
  painter.drawRect(frame);
}

}  // namespace talvex::editor
