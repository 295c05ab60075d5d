#include "editor/widgets/response_graph.h"

#include <QEvent>
#include <QFontMetricsF>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>

namespace talvex::editor {

namespace {

// One wheel notch is 15 degrees, reported in eighths of a degree.
constexpr int kNotch = 120;
// A notch zooms by a quarter; a key press pans a tenth of the plot.
constexpr double kZoomPerNotch = 1.25;
constexpr double kPanPerKey = 0.1;
// The mouse takes a handle this many pixels beyond its drawn edge.
constexpr double kGrabMargin = 3.0;

}  // namespace

ResponseGraph::ResponseGraph(QWidget* parent) : QWidget(parent) {
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
  setAccessibleName("Response graph");
  setFocusPolicy(Qt::StrongFocus);
  setMouseTracking(true);
  FollowDpi();
}

void ResponseGraph::SetCurves(const GraphCurves& curves) {
  curves_ = curves;
  update();
}

void ResponseGraph::SetHandles(std::vector<Handle> handles) {
  handles_ = std::move(handles);
  const auto fits = [this](const std::optional<int>& index) {
    return index && *index < static_cast<int>(handles_.size());
  };
  if (!fits(hovered_)) hovered_.reset();
  if (!fits(dragged_)) dragged_.reset();
  update();
}

QPointF ResponseGraph::HandleCentre(int handle) const {
  const plot::HandleMark& mark = handles_.at(static_cast<std::size_t>(handle)).mark;
  const graph::PlotMapping mapping = Mapping();
  return QPointF(PlotRect().topLeft()) + QPointF(mapping.XOf(mark.hz), mapping.MagnitudeY(mark.db));
}

std::optional<int> ResponseGraph::HandleAt(QPointF point) const {
  if (!PlotRect().contains(point.toPoint())) return std::nullopt;
  const double reach = plot::HandleRadius(*geometry_) + kGrabMargin;
  std::optional<int> nearest;
  double best = reach * reach;
  for (int i = 0; i < static_cast<int>(handles_.size()); ++i) {
    const QPointF apart = HandleCentre(i) - point;
    const double distance = QPointF::dotProduct(apart, apart);
    if (distance <= best && (!nearest || distance < best)) {
      nearest = i;
      best = distance;
    }
  }
  return nearest;
}

void ResponseGraph::SetRange(const graph::PlotRange& range) {
  range_ = graph::Zoomed(range, 1, 1, 0, 0);  // held to the whole plot
  update();
}

QRect ResponseGraph::PlotRect() const {
  return LayoutGraph(*geometry_, QFontMetricsF(font(), this)).plot.translated(GraphOrigin());
}

QSize ResponseGraph::sizeHint() const {
  return LayoutGraph(*geometry_, QFontMetricsF(font(), this)).size;
}

QSize ResponseGraph::minimumSizeHint() const {
  return sizeHint();
}

QPoint ResponseGraph::GraphOrigin() const {
  const QSize graph = sizeHint();
  return {std::max(0, (width() - graph.width()) / 2), std::max(0, (height() - graph.height()) / 2)};
}

void ResponseGraph::FollowDpi() {
  const int dpi = logicalDpiX();
  if (dpi == dpi_ && geometry_) return;
  geometry_ = std::make_shared<const graph::GraphGeometry>(dpi);
  dpi_ = dpi;
  updateGeometry();
  update();
}

bool ResponseGraph::event(QEvent* event) {
  switch (event->type()) {
    case QEvent::ScreenChangeInternal:
    case QEvent::Show:
      FollowDpi();
      break;
    case QEvent::FontChange:
      updateGeometry();
      break;
    default:
      break;
  }
  return QWidget::event(event);
}

plot::GraphScene ResponseGraph::ExportScene() const {
  plot::GraphScene scene;
  scene.curves = curves_;
  scene.range = range_;
  return scene;
}

plot::GraphScene ResponseGraph::Scene() const {
  plot::GraphScene scene = ExportScene();
  if (cursorShown_) scene.cursorHz = cursorHz_;
  for (int i = 0; i < static_cast<int>(handles_.size()); ++i) {
    plot::HandleMark mark = handles_[static_cast<std::size_t>(i)].mark;
    mark.active = i == hovered_ || i == dragged_;
    scene.handles.push_back(mark);
  }
  return scene;
}

void ResponseGraph::paintEvent(QPaintEvent*) {
  FollowDpi();  // a dpi change that came with no event of its own
  QPainter painter(this);
  painter.translate(GraphOrigin());
  painter_.Paint(painter, *geometry_, Scene(), font(), palette());
}

void ResponseGraph::Paint(QPainter& painter, const graph::GraphGeometry& geometry) const {
  painter_.Paint(painter, geometry, Scene(), font(), palette());
}

void ResponseGraph::SetCursorShown(bool shown) {
  cursorShown_ = shown;
  if (!shown) cursorHz_.reset();
  update();
}

graph::CursorReading ResponseGraph::ReadingAt(double plotX) const {
  const graph::PlotMapping mapping = Mapping();
  return graph::ReadAt(curves_, mapping.FrequencyAt(std::clamp(plotX, 0.0, mapping.Width())));
}

void ResponseGraph::MoveCursor(double plotX) {
  const graph::PlotMapping mapping = Mapping();
  cursorHz_ = mapping.FrequencyAt(std::clamp(plotX, 0.0, mapping.Width()));
  update();
}

void ResponseGraph::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return QWidget::mousePressEvent(event);
  const QPointF at = event->position();
  if (const std::optional<int> handle = HandleAt(at)) {
    dragged_ = handle;
    grab_ = HandleCentre(*handle) - at;
    QToolTip::hideText();
    emit handlePressed(*handle);
  } else if (PlotRect().contains(at.toPoint())) {
    panFrom_ = at;
    panRange_ = range_;
  }
  update();
}

void ResponseGraph::mouseMoveEvent(QMouseEvent* event) {
  QWidget::mouseMoveEvent(event);
  const QPointF at = event->position();
  const QRect plot = PlotRect();
  if (cursorShown_) {
    if (plot.contains(at.toPoint()))
      MoveCursor(at.x() - plot.left());
    else if (std::exchange(cursorHz_, std::nullopt))
      update();  // the mouse left the plot: no cursor until it comes back
  }
  if (dragged_) {
    const graph::PlotMapping mapping = Mapping();
    const QPointF centre = at + grab_ - QPointF(plot.topLeft());
    emit handleDragged(*dragged_, mapping.FrequencyAt(centre.x()), mapping.DbAt(centre.y()),
                       event->modifiers());
  } else if (panFrom_) {
    const QPointF moved = at - *panFrom_;
    range_ = graph::Panned(panRange_, -moved.x() / plot.width(), -moved.y() / plot.height());
    update();
  } else {
    Hover(at);
  }
}

void ResponseGraph::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return QWidget::mouseReleaseEvent(event);
  panFrom_.reset();
  if (const std::optional<int> handle = std::exchange(dragged_, std::nullopt))
    emit handleReleased(*handle);
  Hover(event->position());
  update();
}

void ResponseGraph::mouseDoubleClickEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton && !HandleAt(event->position())) SetRange({});
}

// The handle under the mouse is drawn larger and named in a tool tip.
void ResponseGraph::Hover(QPointF point) {
  const std::optional<int> handle = HandleAt(point);
  if (handle == hovered_) return;
  hovered_ = handle;
  if (handle)
    QToolTip::showText(mapToGlobal(point.toPoint()),
                       handles_[static_cast<std::size_t>(*handle)].text, this);
  else
    QToolTip::hideText();
  update();
}

void ResponseGraph::wheelEvent(QWheelEvent* event) {
  const QPoint delta = event->angleDelta();
  // Shift turns a wheel sideways on some systems: either direction counts.
  wheelRest_ += delta.y() != 0 ? delta.y() : delta.x();
  const int notches = wheelRest_ / kNotch;
  wheelRest_ -= notches * kNotch;
  const QPointF at = event->position();
  if (!PlotRect().contains(at.toPoint())) return QWidget::wheelEvent(event);
  event->accept();
  if (notches == 0) return;
  if (const std::optional<int> handle = HandleAt(at))
    emit handleWheeled(*handle, notches);
  else
    ZoomAt(at, notches, event->modifiers());
}

void ResponseGraph::ZoomAt(QPointF point, int notches, Qt::KeyboardModifiers keys) {
  const QRect plot = PlotRect();
  const double factor = std::pow(kZoomPerNotch, notches);
  const double across = keys & Qt::ControlModifier ? 1.0 : factor;
  const double down = keys & Qt::ShiftModifier ? 1.0 : factor;
  range_ = graph::Zoomed(range_, across, down, (point.x() - plot.left()) / plot.width(),
                         (point.y() - plot.top()) / plot.height());
  update();
}

void ResponseGraph::keyPressEvent(QKeyEvent* event) {
  const QPointF centre = QRectF(PlotRect()).center();
  switch (event->key()) {
    case Qt::Key_Plus:
    case Qt::Key_Equal:
      ZoomAt(centre, 1, event->modifiers());
      break;
    case Qt::Key_Minus:
      ZoomAt(centre, -1, event->modifiers());
      break;
    case Qt::Key_Left:
    case Qt::Key_Right:
      SetRange(graph::Panned(range_, event->key() == Qt::Key_Left ? -kPanPerKey : kPanPerKey, 0));
      break;
    case Qt::Key_Up:
    case Qt::Key_Down:
      SetRange(graph::Panned(range_, 0, event->key() == Qt::Key_Up ? -kPanPerKey : kPanPerKey));
      break;
    case Qt::Key_Home:
      SetRange({});
      break;
    default:
      QWidget::keyPressEvent(event);
  }
}

void ResponseGraph::leaveEvent(QEvent* event) {
  QWidget::leaveEvent(event);
  cursorHz_.reset();
  hovered_.reset();
  update();
}

}  // namespace talvex::editor
