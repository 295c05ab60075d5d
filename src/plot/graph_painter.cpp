#include "plot/graph_painter.h"

#include <QFont>
#include <QFontMetricsF>
#include <QPainter>
#include <QPalette>
#include <QStringList>
#include <algorithm>
#include <cmath>

#include "graph/frequency_grid.h"

namespace talvex::plot {

namespace {

using graph::GraphGeometry;
using graph::PlotMapping;

constexpr int kLowestHz = 20;

// The labels the margins are sized for: the widest of the whole plot's (a zoomed plot's labels
// are no wider: "-180", "-30", and frequencies of up to four characters).
constexpr const char* kFirstFrequencyLabel = "20";
constexpr const char* kLastFrequencyLabel = "20k";
constexpr int kDbLimit = 30;
constexpr int kDegreeLimit = 180;
constexpr int kDbStep = 10;
constexpr int kDegreeStep = 90;

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

QString NumberText(double value) {
  return QString::number(value, 'g', 6);
}

// The sizes the labels need, in pixels, from the font on the device painted on.
struct LabelMetrics {
  explicit LabelMetrics(const QFontMetricsF& metrics)
      : gap(std::ceil(metrics.height() / 4)),
        tick(std::ceil(metrics.height() / 3)),
        textHeight(std::ceil(metrics.height())),
        dbWidth(metrics.horizontalAdvance(kDbUnit)),
        degreeWidth(metrics.horizontalAdvance(kDegreeUnit)),
        halfFirstFrequency(metrics.horizontalAdvance(kFirstFrequencyLabel) / 2),
        halfLastFrequency(metrics.horizontalAdvance(kLastFrequencyLabel) / 2),
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

// The ticks of the part of each axis the mapping shows.
struct ShownTicks {
  explicit ShownTicks(const PlotMapping& mapping)
      : frequencies(
            graph::FrequencyTicks(mapping.FrequencyAt(0), mapping.FrequencyAt(mapping.Width()))),
        db(graph::DbTicks(mapping.DbAt(mapping.Height()), mapping.DbAt(0))),
        degrees(graph::DegreeTicks(mapping.DegreesAt(mapping.Height()), mapping.DegreesAt(0))) {}

  graph::AxisTicks frequencies;
  graph::AxisTicks db;
  graph::AxisTicks degrees;
};

// Every tick frequency is a whole number of hertz: the geometry's own x for it.
qreal TickX(const PlotMapping& mapping, const QRect& plot, double hz) {
  return plot.left() + mapping.XOfHz(static_cast<int>(std::lround(hz)));
}

void PaintGrid(QPainter& painter, const PlotMapping& mapping, const QRect& plot,
               const QPalette& palette, const ShownTicks& ticks) {
  const QColor base = palette.color(QPalette::Base);
  const QColor text = palette.color(QPalette::Text);
  painter.fillRect(plot, base);
  painter.setClipRect(plot);
  const auto vertical = [&](double hz) {
    const qreal x = TickX(mapping, plot, hz);
    painter.drawLine(QPointF(x, plot.top()), QPointF(x, plot.bottom()));
  };
  painter.setPen(QPen(Blend(base, text, 0.12), 0));
  for (double hz : ticks.frequencies.lines)
    vertical(hz);
  painter.setPen(QPen(Blend(base, text, 0.28), 0));
  for (double hz : ticks.frequencies.labelled)
    vertical(hz);
  for (double db : ticks.db.labelled) {
    painter.setPen(QPen(Blend(base, text, db == 0 ? 0.5 : 0.28), 0));
    const qreal y = plot.top() + mapping.MagnitudeY(db);
    painter.drawLine(QPointF(plot.left(), y), QPointF(plot.right(), y));
  }
  painter.setClipping(false);
  painter.setPen(QPen(Blend(base, text, 0.6), 0));
  painter.drawRect(plot.adjusted(-1, -1, 0, 0));  // the one-pixel frame just outside the plot
}

// Whether a frequency is 1, 2 or 5 times a power of ten: the labels a crowded axis keeps.
bool IsRoundFrequency(double hz) {
  const double mantissa = hz / std::pow(10.0, std::floor(std::log10(hz) + 1e-9));
  return std::abs(mantissa - 1) < 1e-6 || std::abs(mantissa - 2) < 1e-6 ||
         std::abs(mantissa - 5) < 1e-6;
}

// The frequency labels, each centred on its frequency; where a zoomed plot labels densely, a
// label that would touch one already placed or reach beyond the graph is left out, the round
// ones (1, 2, 5 times a power of ten) placed first.
void PaintFrequencyLabels(QPainter& painter, const PlotMapping& mapping, const QRect& plot,
                          const graph::AxisTicks& ticks, qreal graphWidth, qreal row,
                          const LabelMetrics& labels) {
  std::vector<std::pair<qreal, qreal>> placed;
  const auto place = [&](double hz) {
    const QString text = QString::fromStdString(graph::FrequencyLabel(hz));
    const qreal x = TickX(mapping, plot, hz);
    const qreal half = painter.fontMetrics().horizontalAdvance(text) / 2;
    if (x - half < 0 || x + half > graphWidth) return;
    for (const auto& [left, right] : placed)
      if (x - half < right + labels.gap && x + half > left - labels.gap) return;
    placed.emplace_back(x - half, x + half);
    DrawLabel(painter, x, row, text, Qt::AlignHCenter, labels);
  };
  for (bool round : {true, false})
    for (double hz : ticks.labelled)
      if (IsRoundFrequency(hz) == round) place(hz);
}

void PaintLabels(QPainter& painter, const PlotMapping& mapping, const GraphLayout& layout,
                 const QPalette& palette, const LabelMetrics& labels, const ShownTicks& ticks) {
  const QRect& plot = layout.plot;
  painter.setPen(palette.color(QPalette::WindowText));
  const qreal dbColumn = plot.left() - labels.DbColumn();
  const qreal degreeColumn = plot.right() + 1 + labels.DegreeColumn();
  for (double db : ticks.db.labelled) {
    const qreal y = plot.top() + mapping.MagnitudeY(db);
    DrawLabel(painter, dbColumn, y, NumberText(db), Qt::AlignRight, labels);
  }
  for (double degrees : ticks.degrees.labelled) {
    const qreal y = plot.top() + mapping.PhaseY(degrees);
    painter.drawLine(QPointF(plot.right() + 2, y), QPointF(plot.right() + 1 + labels.tick, y));
    DrawLabel(painter, degreeColumn, y, NumberText(degrees), Qt::AlignLeft, labels);
  }
  // The units above the label columns, and beside the frequencies at the bottom right.
  const qreal unitRow = plot.top() - labels.textHeight;
  DrawLabel(painter, dbColumn, unitRow, kDbUnit, Qt::AlignRight, labels);
  DrawLabel(painter, degreeColumn, unitRow, kDegreeUnit, Qt::AlignLeft, labels);
  // Below the plot, clear of the lowest dB and degree labels, which reach half a line down.
  const qreal frequencyRow = plot.bottom() + 1 + labels.gap + labels.textHeight;
  PaintFrequencyLabels(painter, mapping, plot, ticks.frequencies,
                       plot.right() + 1 + labels.FrequencyUnitColumn(), frequencyRow, labels);
  DrawLabel(painter, plot.right() + 1 + labels.FrequencyUnitColumn(), frequencyRow, kFrequencyUnit,
            Qt::AlignLeft, labels);
}

void PaintHandles(QPainter& painter, const PlotMapping& mapping, const QRect& plot,
                  const std::vector<HandleMark>& handles, const QPalette& palette) {
  if (handles.empty()) return;
  const QColor base = palette.color(QPalette::Base);
  const QColor text = palette.color(QPalette::Text);
  const double radius = HandleRadius(mapping.Geometry());
  painter.save();
  painter.setClipRect(plot);
  painter.setRenderHint(QPainter::Antialiasing, true);
  // The first on top: where several meet, it is the one the mouse takes.
  for (auto it = handles.rbegin(); it != handles.rend(); ++it) {
    const HandleMark& handle = *it;
    const QPointF centre(plot.left() + mapping.XOf(handle.hz),
                         plot.top() + mapping.MagnitudeY(handle.db));
    const QColor colour = ChannelColour(handle.channel, base);
    const double r = handle.active ? radius * 1.4 : radius;
    painter.setPen(QPen(handle.hollow ? colour : text, handle.active ? 2.0 : 1.0));
    painter.setBrush(handle.hollow ? QBrush(base) : QBrush(colour));
    painter.drawEllipse(centre, r, r);
  }
  painter.restore();
}

// The cursor line, and a box in the plot's top-left corner (or its right half when the cursor
// stands there) with the frequency and each shown curve's reading in its colour, the sum last.
void PaintCursor(QPainter& painter, const PlotMapping& mapping, const QRect& plot,
                 const GraphScene& scene, const QPalette& palette) {
  if (!scene.cursorHz) return;
  const graph::CursorReading reading = graph::ReadAt(scene.curves, *scene.cursorHz);
  const double x = plot.left() + mapping.XOf(*scene.cursorHz);
  const QColor base = palette.color(QPalette::Base);
  const QColor text = palette.color(QPalette::Text);
  painter.setClipRect(plot);
  painter.setPen(QPen(text, 0, Qt::DashLine));
  painter.drawLine(QPointF(x, plot.top()), QPointF(x, plot.bottom()));
  QStringList lines{QString("%1 Hz").arg(reading.hz)};
  std::vector<QColor> colours{text};
  const auto add = [&](const graph::CurveReading& value, const QString& prefix) {
    lines << prefix + QString("%1 dB  %2°")
                          .arg(value.magnitudeDb, 0, 'f', 1)
                          .arg(value.phaseDeg, 0, 'f', 0);
  };
  for (int channel = 0; channel < graph::kChannelCount; ++channel) {
    const auto& value = reading.channels[static_cast<std::size_t>(channel)];
    if (!value) continue;
    add(*value, {});
    colours.push_back(ChannelColour(channel, base));
  }
  if (reading.sum) {
    add(*reading.sum, QString(graph::kSumName) + "  ");
    colours.push_back(text);
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
  painter.fillRect(box, base);
  painter.setPen(palette.color(QPalette::Mid));
  painter.drawRect(box);
  for (int i = 0; i < lines.size(); ++i) {
    painter.setPen(colours[static_cast<std::size_t>(i)]);
    painter.drawText(box.left() + 4, box.top() + 2 + metrics.ascent() + i * lineHeight, lines[i]);
  }
  painter.setClipping(false);
}

double RelativeLuminance(const QColor& colour) {
  const auto linear = [](double c) {
    return c <= 0.03928 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
         0.0722 * linear(colour.blueF());
}

}  // namespace

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

// Four and a half pixels at 96 dots per inch: large enough to take with the mouse, small
// enough to leave the curve under it readable.
double HandleRadius(const GraphGeometry& geometry) {
  return 4.5 / geometry.DisplayScale();
}

GraphPainter::GraphPainter() : points_(static_cast<std::size_t>(kDrawnPointCount)) {}

void GraphPainter::Paint(QPainter& painter, const GraphGeometry& geometry, const GraphScene& scene,
                         const QFont& font, const QPalette& palette) const {
  painter.save();
  painter.setFont(font);
  const QFontMetricsF metrics(font, painter.device());
  const GraphLayout layout = LayoutGraph(geometry, metrics);
  const PlotMapping mapping(geometry, scene.range);
  const ShownTicks ticks(mapping);
  painter.fillRect(QRect(QPoint(0, 0), layout.size), palette.color(QPalette::Window));
  painter.setRenderHint(QPainter::Antialiasing, false);
  PaintGrid(painter, mapping, layout.plot, palette, ticks);
  PaintLabels(painter, mapping, layout, palette, LabelMetrics(metrics), ticks);
  PaintCurves(painter, mapping, layout.plot, scene.curves, palette);
  PaintHandles(painter, mapping, layout.plot, scene.handles, palette);
  PaintCursor(painter, mapping, layout.plot, scene, palette);
  painter.restore();
}

// Every phase curve first, then every magnitude curve over them; channels in index order; the
// sum last, over everything, in the text's colour (its magnitude twice as thick, its phase
// dashed). Points outside the plot (x = -1 at the start, a deep cut below the bottom, what a
// zoom leaves out) are clipped.
void GraphPainter::PaintCurves(QPainter& painter, const PlotMapping& mapping, const QRect& plot,
                               const graph::ShownCurves& curves, const QPalette& palette) const {
  const QPointF origin = plot.topLeft();
  const QColor base = palette.color(QPalette::Base);
  painter.setClipRect(plot);
  for (int j = 0; j < kDrawnPointCount; ++j)
    points_[static_cast<std::size_t>(j)].setX(origin.x() +
                                              mapping.XOfHz(graph::GridHz(kFirstDrawnPoint + j)));
  const auto draw = [&](const QPen& pen, const graph::Curve& curve, auto y) {
    for (int j = 0; j < kDrawnPointCount; ++j)
      points_[static_cast<std::size_t>(j)].setY(origin.y() + y(curve[kFirstDrawnPoint + j]));
    painter.setPen(pen);
    painter.drawPolyline(points_.data(), kDrawnPointCount);
  };
  const auto phaseY = [&](float degrees) { return mapping.PhaseY(degrees); };
  for (int channel = 0; channel < graph::kChannelCount; ++channel) {
    if (const graph::Curve* phase = curves.phase[static_cast<std::size_t>(channel)])
      draw(QPen(ChannelColour(channel, base), 0), *phase, phaseY);
  }
  for (int channel = 0; channel < graph::kChannelCount; ++channel) {
    const float level = curves.levelDb[static_cast<std::size_t>(channel)];
    if (const graph::Curve* magnitude = curves.magnitude[static_cast<std::size_t>(channel)])
      draw(QPen(ChannelColour(channel, base), 0), *magnitude,
           [&](float db) { return mapping.MagnitudeY(db + level); });
  }
  if (curves.ShowsSum()) {
    const QColor text = palette.color(QPalette::Text);
    draw(QPen(text, 0, Qt::DashLine), *curves.sumPhase, phaseY);
    // Twice as thick: the one-pixel line again a pixel lower, which costs a tenth of a wide pen.
    for (const double shift : {0.0, 1.0})
      draw(QPen(text, 0), *curves.sumMagnitude,
           [&](float db) { return mapping.MagnitudeY(db) + shift; });
  }
  painter.setClipping(false);
}

}  // namespace talvex::plot
