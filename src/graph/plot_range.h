// Zoom and pan of the response graph: the part of the whole plot that is shown, and where the
// graph's frequencies, decibels and degrees fall in that part.
//
// The whole (unzoomed) plot is the graph picture that GraphGeometry describes; a range is a
// rectangle of it in fractions (0..1 across, 0..1 down), so the same range shows the same
// frequencies and decibels at any display scale. The magnitude and the phase share the plot's
// rows as in the whole picture: zooming the rows stretches both scales alike.
#pragma once

#include <string>
#include <vector>

#include "graph/graph_geometry.h"

namespace talvex::graph {

// A range is held inside the whole plot and never narrower than 1/kMaxZoom of it.
inline constexpr double kMaxZoom = 16.0;

struct PlotRange {
  double left = 0.0;  // fractions of the whole plot
  double top = 0.0;
  double width = 1.0;
  double height = 1.0;

  bool IsWhole() const { return left == 0.0 && top == 0.0 && width == 1.0 && height == 1.0; }
  friend bool operator==(const PlotRange&, const PlotRange&) = default;
};

// The range zoomed by `factorX` across and `factorY` down (above 1 zooms in), keeping the point
// at (atX, atY), fractions of the shown plot, where it is; held to the whole plot.
PlotRange Zoomed(const PlotRange& range, double factorX, double factorY, double atX, double atY);
// The range moved by (dx, dy) fractions of the shown plot (a drag to the right shows lower
// frequencies: pass the drag's distance negated); held to the whole plot.
PlotRange Panned(const PlotRange& range, double dx, double dy);

// Positions in pixels from the plot's top-left corner, the plot being the whole picture's
// size (GraphWidth x 60 dB) whatever the range. With the whole range they are exactly the
// geometry's: FrequencyX, MagnitudeY, PhaseY.
class PlotMapping {
 public:
  PlotMapping(const GraphGeometry& geometry, const PlotRange& range);

  const GraphGeometry& Geometry() const { return geometry_; }
  const PlotRange& Range() const { return range_; }
  double Width() const { return width_; }
  double Height() const { return height_; }

  // x of a whole-hertz frequency (the geometry's table, -1 below 20 Hz) and of any frequency.
  double XOfHz(int hz) const;
  double XOf(double hz) const;
  double MagnitudeY(double db) const;
  double PhaseY(double degrees) const;

  double FrequencyAt(double x) const;  // not held: outside the plot, outside 20 Hz..20 kHz
  double DbAt(double y) const;
  double DegreesAt(double y) const;

 private:
  double UnzoomedX(double x) const { return range_.left * width_ + x * range_.width; }
  double UnzoomedY(double y) const { return range_.top * height_ + y * range_.height; }

  const GraphGeometry& geometry_;
  PlotRange range_;
  double width_;
  double height_;
};

// The values an axis labels and the values it draws lighter grid lines at, for the part of it
// shown.
struct AxisTicks {
  std::vector<double> labelled;  // a stronger line and a label each
  std::vector<double> lines;     // the lighter lines between them
};

// Frequencies: over the whole plot 20, 50, 100, 200, 500, 1k .. 20k labelled and every whole
// multiple of each decade lined; zoomed in, every multiple (under 1.5 decades shown), then
// every half (under half a decade), then every tenth (under a quarter), with lines a step finer.
AxisTicks FrequencyTicks(double lowHz, double highHz);
// Decibels: every 10 dB over the whole plot, 5, 2 or 1 dB when zoomed in (at most six steps).
AxisTicks DbTicks(double bottomDb, double topDb);
// Degrees: every 90 degrees over the whole plot, then 45, 30, 15, 10 or 5 (at most four steps).
AxisTicks DegreeTicks(double bottomDeg, double topDeg);

// A frequency label: "20", "500", "1k", "1.5k", "12k".
std::string FrequencyLabel(double hz);

}  // namespace talvex::graph
