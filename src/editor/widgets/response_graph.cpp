#include "editor/widgets/response_graph.h"

#include <QEvent>
#include <QFontMetricsF>
#include <QMouseEvent>
#include <QPainter>
#include <QPalette>
#include <algorithm>
#include <cmath>

#include "graph/frequency_grid.h"

namespace talvex::editor {

namespace {

using graph::GraphGeometry;

struct FrequencyLabel {
  int hz;
  const char* text;
};

// The labelled frequencies; a stronger grid line runs through each. The unlabelled lines run
// through the other whole multiples of each decade (30, 40, 60 .. 90, 300, ...).
constexpr std::array<FrequencyLabel, 10> kFrequencyLabels = {{{20, "20"},
                                                              {50, "50"},
                                                              {100, "100"},
                                                              {200, "200"},
                                                              {500, "500"},
                                                              {1000, "1k"},
                                                              {2000, "2k"},
                                                              {5000, "5k"},
                                                              {10000, "10k"},
                                                              {20000, "20k"}}};
constexpr int kLowestHz = 20;
constexpr int kHighestHz = 20000;

// dB rows every 10 dB over the whole 60 dB scale; degree marks every 90 degrees over one turn.
constexpr int kDbStep = 10;
constexpr int kDbLimit = 30;
constexpr int kDegreeStep = 90;
constexpr int kDegreeLimit = 180;

const char* const kDbUnit = "[dB]";
const char* const kDegreeUnit = "[\u00b0]";
const char* const kFrequencyUnit = "[Hz]";

// The curve starts at the last grid point below 20 Hz: its x is -1, one pixel left of the plot,
// so the first visible segment runs into the left edge with the curve's own slope. The points
// below it (10 .. 18 Hz) all share that x and would only draw a clipped vertical stub.
constexpr int FirstDrawnPoint() {
  int point = 0;
  while (graph::GridHz(point) < kLowestHz)
    ++point;
  return point - 1;
}
constexpr int kFirstDrawnPoint = FirstDrawnPoint();
constexpr int kDrawnPointCount = graph::kGridPointCount - kFirstDrawnPoint;

// Pixels a span of the plot covers; the geometry's single-precision values may carry a last
// bit of noise (191/s x 60/60 is not always 191/s exactly), which must not add a pixel.
int PixelsSpanning(float length) {
  return static_cast<int>(std::ceil(length - 1e-3f));
}

// The grid and the frame are shades between the plot's background and its text, so a dark
// palette gets a dark plot with light lines.
QColor Blend(const QColor& from, const QColor& to, double amount) {
  const auto mix = [amount](int a, int b) {
    return static_cast<int>(std::lround(a + (b - a) * amount));
  };
  return QColor(mix(from.red(), to.red()), mix(from.green(), to.green()),
                mix(from.blue(), to.blue()));
}

QString NumberText(int value) {
  return QString::number(value);
}

// The sizes the labels need, in pixels, from the font on the device painted on.
struct LabelMetrics {
  explicit LabelMetrics(const QFontMetricsF& metrics)
      : gap(std::ceil(metrics.height() / 4)),
        tick(std::ceil(metrics.height() / 3)),
        textHeight(std::ceil(metrics.height())),
        dbWidth(metrics.horizontalAdvance(kDbUnit)),
        degreeWidth(metrics.horizontalAdvance(kDegreeUnit)),
        halfFirstFrequency(metrics.horizontalAdvance(kFrequencyLabels.front().text) / 2),
        halfLastFrequency(metrics.horizontalAdvance(kFrequencyLabels.back().text) / 2),
        frequencyUnitWidth(metrics.horizontalAdvance(kFrequencyUnit)) {
    for (int db = -kDbLimit; db <= kDbLimit; db += kDbStep)
      dbWidth = std::max(dbWidth, metrics.horizontalAdvance(NumberText(db)));
    for (int degrees = -kDegreeLimit; degrees <= kDegreeLimit; degrees += kDegreeStep)
      degreeWidth = std::max(degreeWidth, metrics.horizontalAdvance(NumberText(degrees)));
  }

  // Left of the plot's first column: the right edge of the dB column.
  qreal DbColumn() const { return 1 + gap; }
  // Right of the plot's last column: the left edge of the degree column, and of the Hz unit,
  // which sits in that column unless the last frequency label reaches into it.
  qreal DegreeColumn() const { return 1 + tick + gap; }
  qreal FrequencyUnitColumn() const { return std::max(DegreeColumn(), halfLastFrequency + gap); }

  qreal gap;   // between a label and the frame, or between two labels
  qreal tick;  // the degree marks outside the right edge
  qreal textHeight;
  qreal dbWidth;      // the widest dB label or unit
  qreal degreeWidth;  // the widest degree label or unit
  qreal halfFirstFrequency;
  qreal halfLastFrequency;
  qreal frequencyUnitWidth;
};

// A label centred on (x, y), or right- or left-aligned against x.
void DrawLabel(QPainter& painter, qreal x, qreal y, const QString& text, Qt::Alignment horizontal,
               const LabelMetrics& labels) {
  const qreal width = painter.fontMetrics().horizontalAdvance(text);
  qreal left = x - width / 2;
  if (horizontal == Qt::AlignRight) left = x - width;
  if (horizontal == Qt::AlignLeft) left = x;
  const QRectF box(left, y - labels.textHeight / 2, width, labels.textHeight);
  painter.drawText(box, static_cast<int>(horizontal | Qt::AlignVCenter | Qt::TextDontClip), text);
}

void PaintGrid(QPainter& painter, const GraphGeometry& geometry, const QRect& plot,
               const QPalette& palette) {
  const QColor base = palette.color(QPalette::Base);
  const QColor text = palette.color(QPalette::Text);
  painter.fillRect(plot, base);
  painter.setClipRect(plot);
  painter.setPen(QPen(Blend(base, text, 0.12), 0));
  for (int decade = 10; decade <= kHighestHz; decade *= 10) {
    for (int multiple = 1; multiple <= 9; ++multiple) {
      const int hz = multiple * decade;
      if (hz < kLowestHz || hz > kHighestHz) continue;
      const qreal x = plot.left() + geometry.FrequencyX(hz);
      painter.drawLine(QPointF(x, plot.top()), QPointF(x, plot.bottom()));
    }
  }
  painter.setPen(QPen(Blend(base, text, 0.28), 0));
  for (const FrequencyLabel& label : kFrequencyLabels) {
    const qreal x = plot.left() + geometry.FrequencyX(label.hz);
    painter.drawLine(QPointF(x, plot.top()), QPointF(x, plot.bottom()));
  }
  for (int db = -kDbLimit; db <= kDbLimit; db += kDbStep) {
    painter.setPen(QPen(Blend(base, text, db == 0 ? 0.5 : 0.28), 0));
    const qreal y = plot.top() + geometry.MagnitudeY(static_cast<float>(db));
    painter.drawLine(QPointF(plot.left(), y), QPointF(plot.right(), y));
  }
  painter.setClipping(false);
  painter.setPen(QPen(Blend(base, text, 0.6), 0));
  painter.drawRect(plot.adjusted(-1, -1, 0, 0));  // the one-pixel frame just outside the plot
}

void PaintLabels(QPainter& painter, const GraphGeometry& geometry, const QRect& plot,
                 const QPalette& palette, const LabelMetrics& labels) {
  painter.setPen(palette.color(QPalette::WindowText));
  const qreal dbColumn = plot.left() - labels.DbColumn();
  const qreal degreeColumn = plot.right() + 1 + labels.DegreeColumn();
  for (int db = -kDbLimit; db <= kDbLimit; db += kDbStep) {
    const qreal y = plot.top() + geometry.MagnitudeY(static_cast<float>(db));
    DrawLabel(painter, dbColumn, y, NumberText(db), Qt::AlignRight, labels);
  }
  for (int degrees = -kDegreeLimit; degrees <= kDegreeLimit; degrees += kDegreeStep) {
    const qreal y = plot.top() + geometry.PhaseY(static_cast<float>(degrees));
    painter.drawLine(QPointF(plot.right() + 2, y), QPointF(plot.right() + 1 + labels.tick, y));
    DrawLabel(painter, degreeColumn, y, NumberText(degrees), Qt::AlignLeft, labels);
  }
  // The units above the label columns, and beside the frequencies at the bottom right.
  const qreal unitRow = plot.top() - labels.textHeight;
  DrawLabel(painter, dbColumn, unitRow, kDbUnit, Qt::AlignRight, labels);
  DrawLabel(painter, degreeColumn, unitRow, kDegreeUnit, Qt::AlignLeft, labels);
  // Below the plot, clear of the lowest dB and degree labels, which reach half a line down.
  const qreal frequencyRow = plot.bottom() + 1 + labels.gap + labels.textHeight;
  for (const FrequencyLabel& label : kFrequencyLabels) {
    const qreal x = plot.left() + geometry.FrequencyX(label.hz);
    DrawLabel(painter, x, frequencyRow, label.text, Qt::AlignHCenter, labels);
  }
  DrawLabel(painter, plot.right() + 1 + labels.FrequencyUnitColumn(), frequencyRow, kFrequencyUnit,
            Qt::AlignLeft, labels);
}

}  // namespace

GraphLayout LayoutGraph(const GraphGeometry& geometry, const QFontMetricsF& metrics) {
  const LabelMetrics labels(metrics);
  const int plotWidth = PixelsSpanning(geometry.GraphWidth());
  const int plotHeight = PixelsSpanning(geometry.DbScale() * graph::kMagnitudeRangeDb);
  // Each side margin holds its label column and a gap to the window's edge; the first and the
  // last frequency label are centred on the plot's edges and reach half their width beyond.
  const qreal left =
      std::max(labels.DbColumn() + labels.dbWidth, labels.halfFirstFrequency) + labels.gap;
  const qreal right = std::max(labels.DegreeColumn() + labels.degreeWidth,
                               labels.FrequencyUnitColumn() + labels.frequencyUnitWidth) +
                      labels.gap;
  // Above: a gap, the unit row and the upper half of the top labels; below: the lower half of
  // the bottom labels, the frequency row (its centre a line and a gap below the plot) and a gap.
  const qreal top = labels.gap + labels.textHeight * 1.5;
  const qreal bottom = 1 + labels.gap + labels.textHeight * 1.5 + labels.gap;
  const QRect plot(static_cast<int>(std::ceil(left)), static_cast<int>(std::ceil(top)), plotWidth,
                   plotHeight);
  return {plot, QSize(plot.right() + 1 + static_cast<int>(std::ceil(right)),
                      plot.bottom() + 1 + static_cast<int>(std::ceil(bottom)))};
}

ResponseGraph::ResponseGraph(QWidget* parent)
    : QWidget(parent), points_(static_cast<std::size_t>(kDrawnPointCount)) {
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
  setAccessibleName("Response graph");
  FollowDpi();
}

double RelativeLuminance(const QColor& colour) {
  const auto linear = [](double c) {
    return c <= 0.03928 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
         0.0722 * linear(colour.blueF());
}

double ContrastRatio(const QColor& a, const QColor& b) {
  const double la = RelativeLuminance(a);
  const double lb = RelativeLuminance(b);
  return (std::max(la, lb) + 0.05) / (std::min(la, lb) + 0.05);
}

// On a dark plot the darker channel colours (dark blue, dark red) would all but vanish: the hue
// stays and the lightness is raised until the curve stands out at 3.5:1, the contrast the
// accessibility guidelines ask of lines and large text (3:1), with a margin.
QColor ChannelColour(int channel, const QColor& background) {
  const QColor colour(kChannelColours.at(static_cast<std::size_t>(channel)));
  constexpr float kDarkBackground = 0.5f;
  constexpr double kContrastWanted = 3.5;
  if (background.lightnessF() >= kDarkBackground) return colour;
  float hue = 0, saturation = 0, lightness = 0;
  colour.getHslF(&hue, &saturation, &lightness);
  QColor lighter = colour;
  while (ContrastRatio(lighter, background) < kContrastWanted && lightness < 1.0f) {
    lightness = std::min(1.0f, lightness + 0.02f);
    lighter = QColor::fromHslF(hue, saturation, lightness);
  }
  return lighter;
}

void GraphCurves::Show(const graph::ResponseTables& tables, int channel, float level) {
  const auto at = static_cast<std::size_t>(channel);
  magnitude.at(at) = &tables.ChannelMagnitude(channel);
  phase.at(at) = &tables.ChannelPhase(channel);
  levelDb.at(at) = level;
}

void ResponseGraph::SetCurves(const GraphCurves& curves) {
  curves_ = curves;
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
  geometry_ = std::make_shared<const GraphGeometry>(dpi);
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

void ResponseGraph::paintEvent(QPaintEvent*) {
  FollowDpi();  // a dpi change that came with no event of its own
  QPainter painter(this);
  painter.translate(GraphOrigin());
  Paint(painter, *geometry_);
}

void ResponseGraph::Paint(QPainter& painter, const GraphGeometry& geometry) const {
  painter.save();
  painter.setFont(font());
  const QFontMetricsF metrics(font(), painter.device());
  const GraphLayout layout = LayoutGraph(geometry, metrics);
  const QPalette& colours = palette();
  painter.fillRect(QRect(QPoint(0, 0), layout.size), colours.color(QPalette::Window));
  painter.setRenderHint(QPainter::Antialiasing, false);
  PaintGrid(painter, geometry, layout.plot, colours);
  PaintLabels(painter, geometry, layout.plot, colours, LabelMetrics(metrics));
  PaintCurves(painter, geometry, layout.plot);
  PaintCursor(painter, layout.plot);
  painter.restore();
}

// Every phase curve first, then every magnitude curve over them; channels in index order.
// Points outside the plot (x = -1 at the start, a deep cut below the bottom) are clipped.
void ResponseGraph::PaintCurves(QPainter& painter, const GraphGeometry& geometry,
                                const QRect& plot) const {
  const QPointF origin = plot.topLeft();
  painter.setClipRect(plot);
  for (int j = 0; j < kDrawnPointCount; ++j)
    points_[static_cast<std::size_t>(j)].setX(
        origin.x() + geometry.FrequencyX(graph::GridHz(kFirstDrawnPoint + j)));
  const auto draw = [&](int channel, const graph::Curve& curve, auto y) {
    for (int j = 0; j < kDrawnPointCount; ++j)
      points_[static_cast<std::size_t>(j)].setY(origin.y() + y(curve[kFirstDrawnPoint + j]));
    painter.setPen(QPen(ChannelColour(channel, palette().color(QPalette::Base)), 0));
    painter.drawPolyline(points_.data(), kDrawnPointCount);
  };
  for (int channel = 0; channel < graph::kChannelCount; ++channel) {
    if (const graph::Curve* phase = curves_.phase[static_cast<std::size_t>(channel)])
      draw(channel, *phase, [&](float degrees) { return geometry.PhaseY(degrees); });
  }
  for (int channel = 0; channel < graph::kChannelCount; ++channel) {
    const float level = curves_.levelDb[static_cast<std::size_t>(channel)];
    if (const graph::Curve* magnitude = curves_.magnitude[static_cast<std::size_t>(channel)])
      draw(channel, *magnitude, [&](float db) { return geometry.MagnitudeY(db + level); });
  }
  painter.setClipping(false);
}

void ResponseGraph::SetCursorShown(bool shown) {
  cursorShown_ = shown;
  setMouseTracking(shown);
  if (!shown) cursorX_.reset();
  update();
}

ResponseGraph::CursorReading ResponseGraph::ReadingAt(double plotX) const {
  const double hz = geometry_->FrequencyAtX(plotX);
  // The grid point nearest the cursor's frequency.
  const auto& grid = graph::kGridFrequencies;
  auto above = std::lower_bound(grid.begin(), grid.end(), static_cast<float>(hz));
  if (above == grid.end()) --above;
  if (above != grid.begin() && hz - *(above - 1) < *above - hz) --above;
  const int point = static_cast<int>(above - grid.begin());
  CursorReading reading;
  reading.hz = graph::GridHz(point);
  for (int channel = 0; channel < graph::kChannelCount; ++channel) {
    const auto at = static_cast<std::size_t>(channel);
    const graph::Curve* magnitude = curves_.magnitude[at];
    const graph::Curve* phase = curves_.phase[at];
    if (magnitude && phase)
      reading.channels[at] =
          CurveReading{(*magnitude)[point] + curves_.levelDb[at], (*phase)[point]};
  }
  return reading;
}

void ResponseGraph::MoveCursor(double plotX) {
  cursorX_ = std::clamp(plotX, 0.0, static_cast<double>(geometry_->GraphWidth()));
  update();
}

void ResponseGraph::mouseMoveEvent(QMouseEvent* event) {
  QWidget::mouseMoveEvent(event);
  if (!cursorShown_) return;
  const QRect plot = PlotRect();
  if (!plot.contains(event->position().toPoint())) {
    if (cursorX_) update();
    cursorX_.reset();
    return;
  }
  MoveCursor(event->position().x() - plot.left());
}

void ResponseGraph::leaveEvent(QEvent* event) {
  QWidget::leaveEvent(event);
  cursorX_.reset();
  update();
}

// The cursor line, and a box in the plot's top-left corner (or its right half when the cursor
// stands there) with the frequency and each shown channel's reading in its colour.
void ResponseGraph::PaintCursor(QPainter& painter, const QRect& plot) const {
  if (!cursorShown_ || !cursorX_) return;
  const CursorReading reading = ReadingAt(*cursorX_);
  const double x = plot.left() + *cursorX_;
  painter.setPen(QPen(palette().color(QPalette::Text), 0, Qt::DashLine));
  painter.drawLine(QPointF(x, plot.top()), QPointF(x, plot.bottom()));
  QStringList lines{QString("%1 Hz").arg(reading.hz)};
  std::vector<int> channels;
  for (int channel = 0; channel < graph::kChannelCount; ++channel) {
    const auto& value = reading.channels[static_cast<std::size_t>(channel)];
    if (!value) continue;
    channels.push_back(channel);
    lines
        << QString("%1 dB  %2°").arg(value->magnitudeDb, 0, 'f', 1).arg(value->phaseDeg, 0, 'f', 0);
  }
  const QFontMetrics metrics(painter.font());
  int width = 0;
  for (const QString& line : lines)
    width = std::max(width, metrics.horizontalAdvance(line));
  const int lineHeight = metrics.height();
  QRect box(0, 0, width + 8, lineHeight * static_cast<int>(lines.size()) + 4);
  const bool onTheLeft = x > plot.center().x();
  box.moveTopLeft(
      QPoint(onTheLeft ? plot.left() + 4 : plot.right() - box.width() - 4, plot.top() + 4));
  painter.fillRect(box, palette().color(QPalette::Base));
  painter.setPen(palette().color(QPalette::Mid));
  painter.drawRect(box);
  const QColor base = palette().color(QPalette::Base);
  for (int i = 0; i < lines.size(); ++i) {
    painter.setPen(i == 0 ? palette().color(QPalette::Text)
                          : ChannelColour(channels[static_cast<std::size_t>(i - 1)], base));
    painter.drawText(box.left() + 4, box.top() + 2 + metrics.ascent() + i * lineHeight, lines[i]);
  }
}

}  // namespace talvex::editor
