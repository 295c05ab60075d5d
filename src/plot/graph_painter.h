// The response graph drawn with QPainter on any paint device (a widget, an image, an SVG
// generator): each shown channel's magnitude and phase curve in the channel's colour, the
// acoustic sum, the equaliser's handles and the cursor, over 20 Hz .. 20 kHz or the zoomed part
// of it, with the frequency, dB and degree axes around the plot. The editor's graph widget and
// talvexctl's plot both draw through here, so a picture exported from the editor and one
// written by talvexctl are the same. Needs Qt Gui only (no widgets).
//
// The plot is the graph picture of the device's editor: graph width x 191/s pixels (s the
// display scale of GraphGeometry), 0 dB and 0 degrees on the zero line, one polyline segment
// per grid point. Around it sit the margins that hold the labels: frequencies below, dB on the
// left, degrees on the right, the units above. Background, grid and labels take the palette;
// the channel colours are fixed.
#pragma once

#include <QColor>
#include <QPointF>
#include <QRect>
#include <QRgb>
#include <QSize>
#include <array>
#include <optional>
#include <vector>

#include "graph/graph_geometry.h"
#include "graph/plot_range.h"
#include "graph/response_settings.h"
#include "graph/shown_curves.h"

class QFont;
class QFontMetricsF;
class QPainter;
class QPalette;

namespace talvex::plot {

// The colour of each channel's curves, by ChannelIndex (In A, In B, Out 1 .. Out 6).
inline constexpr std::array<QRgb, graph::kChannelCount> kChannelColours = {
    qRgb(255, 0, 0),   qRgb(0, 0, 255), qRgb(255, 0, 255), qRgb(192, 0, 0),
    qRgb(0, 192, 192), qRgb(0, 255, 0), qRgb(0, 0, 192),   qRgb(255, 128, 0)};

// The colour a channel's curves are drawn in on a plot of the given background: the fixed
// colour, or on a dark background (a dark theme) the same hue made light enough to read.
QColor ChannelColour(int channel, const QColor& background);
// The contrast ratio of two colours (1 .. 21), by their relative luminance.
double ContrastRatio(const QColor& a, const QColor& b);

// A handle the user can drag: a band's (frequency, gain) or a crossover corner.
struct HandleMark {
  double hz = 1000;
  double db = 0;  // where it sits on the dB scale
  int channel = 0;
  bool hollow = false;  // a flat band: it changes nothing yet
  bool active = false;  // under the mouse or being dragged
};

// Everything one picture of the graph shows.
struct GraphScene {
  graph::ShownCurves curves;
  graph::PlotRange range;           // the part of the whole plot shown
  std::optional<double> cursorHz;   // "Show cursor": the cursor's frequency and its reading
  std::vector<HandleMark> handles;  // the selected channel's, in the editor only
};

// Where the plot sits in a graph of the given geometry whose labels are set in the given font,
// and the whole graph's size (plot and margins), the graph's top-left corner at (0, 0). The
// layout does not depend on the zoom.
struct GraphLayout {
  QRect plot;
  QSize size;
};
GraphLayout LayoutGraph(const graph::GraphGeometry& geometry, const QFontMetricsF& metrics);

// The radius of a handle on a plot of the geometry's display scale, and the distance within
// which the mouse takes it.
double HandleRadius(const graph::GraphGeometry& geometry);

class GraphPainter {
 public:
  GraphPainter();

  // Paints the whole graph, its top-left corner at the painter's origin. The layout is
  // LayoutGraph(geometry, the font's metrics on the painter's device).
  void Paint(QPainter& painter, const graph::GraphGeometry& geometry, const GraphScene& scene,
             const QFont& font, const QPalette& palette) const;

 private:
  void PaintCurves(QPainter& painter, const graph::PlotMapping& mapping, const QRect& plot,
                   const graph::ShownCurves& curves, const QPalette& palette) const;

  // One curve's points, filled and drawn in turn: drawing the curves allocates nothing.
  mutable std::vector<QPointF> points_;
};

}  // namespace talvex::plot
