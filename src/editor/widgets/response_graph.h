// The response graph of an editor window, drawn by plot::GraphPainter: each shown channel's
// magnitude and phase curve, the acoustic sum, over 20 Hz .. 20 kHz or the part of it zoomed
// to, with the frequency, dB and degree axes around the plot.
//
// With the mouse: a handle (the window's selected channel's bands and crossover corners) is
// dragged, and the wheel over a band's handle steps its Q; the widget only reports these, the
// window hands them to the model. The wheel elsewhere on the plot zooms about the pointer (both
// axes; Shift the frequencies alone, Ctrl the decibels alone), a drag on the background pans,
// a double click shows the whole plot again. With the keyboard (the graph takes focus): + and -
// zoom, the arrows pan, Home shows the whole plot. The zoom is this editor's own.
#pragma once

#include <QPointF>
#include <QRect>
#include <QSize>
#include <QString>
#include <QWidget>
#include <memory>
#include <optional>
#include <vector>

#include "graph/graph_geometry.h"
#include "graph/plot_range.h"
#include "graph/shown_curves.h"
#include "plot/graph_painter.h"

class QPainter;

namespace talvex::editor {

using GraphCurves = graph::ShownCurves;
using plot::ChannelColour;
using plot::ContrastRatio;
using plot::GraphLayout;
using plot::kChannelColours;
using plot::LayoutGraph;

class ResponseGraph : public QWidget {
  Q_OBJECT

 public:
  explicit ResponseGraph(QWidget* parent = nullptr);

  // Call after every recomputation of the tables, a level change or a change of the shown
  // curves; schedules one repaint.
  void SetCurves(const GraphCurves& curves);
  const GraphCurves& Curves() const { return curves_; }

  // The handles the mouse can take, and what hovering each names. Replaced after every edit;
  // a handle being dragged keeps its place in the list.
  struct Handle {
    plot::HandleMark mark;
    QString text;
  };
  void SetHandles(std::vector<Handle> handles);
  const std::vector<Handle>& Handles() const { return handles_; }
  // The handle under a point of the widget, if any (the nearest; the first of equals).
  std::optional<int> HandleAt(QPointF point) const;
  // Where a handle's centre is in the widget.
  QPointF HandleCentre(int handle) const;

  // The part of the plot shown (graph/plot_range.h).
  const graph::PlotRange& Range() const { return range_; }
  void SetRange(const graph::PlotRange& range);

  // The geometry of the widget's present logical dots per inch.
  const graph::GraphGeometry& Geometry() const { return *geometry_; }
  int Dpi() const { return dpi_; }
  // Where the plot sits in the widget.
  QRect PlotRect() const;
  // The plot's positions through the present zoom.
  graph::PlotMapping Mapping() const { return graph::PlotMapping(*geometry_, range_); }

  // What the graph shows, for a picture of it: the curves and the zoom, without the handles
  // and the cursor, which follow the mouse.
  plot::GraphScene ExportScene() const;
  // Paints the whole graph as the widget shows it, its top-left corner at the painter's origin,
  // in the given geometry with the widget's font and palette, onto any device.
  void Paint(QPainter& painter, const graph::GraphGeometry& geometry) const;

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

  // "Show cursor": a vertical cursor follows the mouse over the plot and reads, at the grid
  // frequency nearest it, every shown curve's magnitude (level included) and phase.
  void SetCursorShown(bool shown);
  bool CursorShown() const { return cursorShown_; }
  // The reading at x pixels from the plot's left edge (held to the plot).
  graph::CursorReading ReadingAt(double plotX) const;
  // Puts the cursor at x pixels from the plot's left edge, as the mouse does.
  void MoveCursor(double plotX);

 signals:
  // A left press on a handle, each move of it while held (where its centre would go, as a
  // frequency and a dB value, with the keys held), its release.
  void handlePressed(int handle);
  void handleDragged(int handle, double hz, double db, Qt::KeyboardModifiers keys);
  void handleReleased(int handle);
  // Wheel notches over a handle: positive away from the user.
  void handleWheeled(int handle, int steps);

 protected:
  void paintEvent(QPaintEvent* event) override;
  bool event(QEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void leaveEvent(QEvent* event) override;

 private:
  // Where the graph's top-left corner sits in the widget: centred when the widget is larger.
  QPoint GraphOrigin() const;
  // A new geometry when the logical dots per inch changed (another screen, other settings).
  void FollowDpi();
  plot::GraphScene Scene() const;
  void Hover(QPointF point);
  void ZoomAt(QPointF point, int notches, Qt::KeyboardModifiers keys);

  GraphCurves curves_;
  std::vector<Handle> handles_;
  graph::PlotRange range_;
  bool cursorShown_ = false;
  std::optional<double> cursorHz_;  // while the mouse is over the plot
  std::optional<int> hovered_;
  std::optional<int> dragged_;
  QPointF grab_;  // from the mouse to the dragged handle's centre
  std::optional<QPointF> panFrom_;
  graph::PlotRange panRange_;
  int wheelRest_ = 0;  // eighths of a degree not yet a whole notch (fine-grained wheels)
  int dpi_ = 0;
  std::shared_ptr<const graph::GraphGeometry> geometry_;
  plot::GraphPainter painter_;
};

}  // namespace talvex::editor
