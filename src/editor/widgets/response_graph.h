// The response graph of an editor window: each shown channel's magnitude and phase curve in the
// channel's colour over 20 Hz .. 20 kHz, with the frequency, dB and degree axes around the plot.
//
// The plot is the graph picture of the device's editor: graph width x 191/s pixels (s the
// display scale of GraphGeometry), 0 dB and 0 degrees on the zero line, one polyline segment
// per grid point. Around it sit the margins that hold the labels: decades below, dB on the
// left, degrees on the right, the units above. Background, grid and labels take the widget's
// palette; the channel colours are fixed.
#pragma once

#include <QPointF>
#include <QRect>
#include <QRgb>
#include <QSize>
#include <QWidget>
#include <array>
#include <memory>
#include <optional>
#include <vector>

#include "graph/graph_geometry.h"
#include "graph/response_settings.h"
#include "graph/response_tables.h"

class QFontMetricsF;
class QPainter;

namespace talvex::editor {

// The colour of each channel's curves, by ChannelIndex (In A, In B, Out 1 .. Out 6).
inline constexpr std::array<QRgb, graph::kChannelCount> kChannelColours = {
    qRgb(255, 0, 0),   qRgb(0, 0, 255), qRgb(255, 0, 255), qRgb(192, 0, 0),
    qRgb(0, 192, 192), qRgb(0, 255, 0), qRgb(0, 0, 192),   qRgb(255, 128, 0)};

// The colour a channel's curves are drawn in on a plot of the given background: the fixed
// colour, or on a dark background (a dark theme) the same hue made light enough to read.
QColor ChannelColour(int channel, const QColor& background);
// The contrast ratio of two colours (1 .. 21), by their relative luminance.
double ContrastRatio(const QColor& a, const QColor& b);

// What the graph draws: each channel's magnitude and phase curve, or none (null: the channel is
// not shown). The curves belong to the editor window and must outlive the graph (or be replaced
// before they go). levelDb is each channel's level, added to its magnitude curve (the curves
// hold the filters' shape without it).
struct GraphCurves {
  std::array<const graph::Curve*, graph::kChannelCount> magnitude{};
  std::array<const graph::Curve*, graph::kChannelCount> phase{};
  std::array<float, graph::kChannelCount> levelDb{};

  // Shows `channel` with its own curves from `tables`.
  void Show(const graph::ResponseTables& tables, int channel, float level = 0.0f);
};

// Where the plot sits in a graph of the given geometry whose labels are set in the given font,
// and the whole graph's size (plot and margins), the graph's top-left corner at (0, 0).
struct GraphLayout {
  QRect plot;
  QSize size;
};
GraphLayout LayoutGraph(const graph::GraphGeometry& geometry, const QFontMetricsF& metrics);

class ResponseGraph : public QWidget {
 public:
  explicit ResponseGraph(QWidget* parent = nullptr);

  // Call after every recomputation of the tables, a level change or a change of the shown
  // channels; schedules one repaint.
  void SetCurves(const GraphCurves& curves);
  const GraphCurves& Curves() const { return curves_; }

  // The geometry of the widget's present logical dots per inch.
  const graph::GraphGeometry& Geometry() const { return *geometry_; }
  // Where the plot sits in the widget: x = plot.left() + FrequencyX, y = plot.top() + the
  // geometry's MagnitudeY or PhaseY.
  QRect PlotRect() const;

  // Paints the whole graph, its top-left corner at the painter's origin, in the given geometry
  // with the widget's font and palette, onto any device (the widget, an image, a printer). The
  // layout is LayoutGraph(geometry, the font's metrics on the painter's device).
  void Paint(QPainter& painter, const graph::GraphGeometry& geometry) const;

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

  // "Show cursor": a vertical cursor follows the mouse over the plot and reads, at the grid
  // frequency under it, every shown curve's magnitude (level included) and phase.
  void SetCursorShown(bool shown);
  bool CursorShown() const { return cursorShown_; }
  struct CurveReading {
    float magnitudeDb = 0;
    float phaseDeg = 0;
  };
  struct CursorReading {
    int hz = 0;  // the grid frequency under the cursor
    std::array<std::optional<CurveReading>, graph::kChannelCount> channels{};
  };
  // The reading at x pixels from the plot's left edge (held to the plot).
  CursorReading ReadingAt(double plotX) const;
  // Puts the cursor at x pixels from the plot's left edge, as the mouse does.
  void MoveCursor(double plotX);

 protected:
  void paintEvent(QPaintEvent* event) override;
  bool event(QEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void leaveEvent(QEvent* event) override;

 private:
  // Where the graph's top-left corner sits in the widget: centred when the widget is larger.
  QPoint GraphOrigin() const;
  // A new geometry when the logical dots per inch changed (another screen, other settings).
  void FollowDpi();
  void PaintCurves(QPainter& painter, const graph::GraphGeometry& geometry,
                   const QRect& plot) const;
  void PaintCursor(QPainter& painter, const QRect& plot) const;

  GraphCurves curves_;
  bool cursorShown_ = false;
  std::optional<double> cursorX_;  // from the plot's left edge, while the mouse is over it
  int dpi_ = 0;
  std::shared_ptr<const graph::GraphGeometry> geometry_;
  // One curve's points, filled and drawn in turn: drawing the curves allocates nothing.
  mutable std::vector<QPointF> points_;
};

}  // namespace talvex::editor
