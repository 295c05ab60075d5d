// A level meter: a bar over -60 .. 0 dBFS, green up to -18 dBFS, yellow up to -6, red above.
#pragma once

#include <QWidget>

namespace talvex::editor {

class MeterBar final : public QWidget {
 public:
  inline static constexpr double kFloorDbfs = -60.0;

  explicit MeterBar(QWidget* parent = nullptr);
  // dBFS, held to -60 .. 0; the accessible description tells the value.
  void SetLevel(double dbfs);
  double Level() const { return dbfs_; }

  QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  double dbfs_ = kFloorDbfs;
};

}  // namespace talvex::editor
