#include "editor/widgets/response_graph.h"

#include <gtest/gtest.h>

#include <QFontMetricsF>
#include <QImage>
#include <QPainter>
#include <cmath>
#include <map>
#include <memory>
#include <set>

namespace talvex::editor {
namespace {

// An image whose text metrics are those of a display of `dpi` dots per inch.
QImage ImageAtDpi(QSize size, int dpi) {
  QImage image(size, QImage::Format_ARGB32_Premultiplied);
  const int dotsPerMeter = static_cast<int>(std::lround(dpi / 0.0254));
  image.setDotsPerMeterX(dotsPerMeter);
  image.setDotsPerMeterY(dotsPerMeter);
  return image;
}

struct Rendered {
  QImage image;
  QRect plot;
};

Rendered Render(const ResponseGraph& graph, int dpi) {
  const graph::GraphGeometry geometry(dpi);
  const QImage probe = ImageAtDpi(QSize(1, 1), dpi);
  const GraphLayout layout = LayoutGraph(geometry, QFontMetricsF(graph.font(), &probe));
  Rendered rendered{ImageAtDpi(layout.size, dpi), layout.plot};
  rendered.image.fill(Qt::black);
  QPainter painter(&rendered.image);
  graph.Paint(painter, geometry);
  return rendered;
}

// Rows of one image column (x relative to the plot) that carry the colour, relative to the plot.
std::set<int> RowsOfColour(const Rendered& rendered, int plotX, QRgb colour) {
  std::set<int> rows;
  const int x = rendered.plot.left() + plotX;
  for (int y = 0; y < rendered.image.height(); ++y)
    if (rendered.image.pixel(x, y) == colour) rows.insert(y - rendered.plot.top());
  return rows;
}

std::map<QRgb, int> CountColours(const QImage& image) {
  std::map<QRgb, int> counts;
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x)
      ++counts[image.pixel(x, y)];
  return counts;
}

class ResponseGraphTest : public ::testing::Test {
 protected:
  // Default settings are the factory's: flat EQ, no crossover filter, no delay.
  void Show(std::initializer_list<int> channels, float levelDb = 0.0f,
            const graph::ResponseSettings& settings = {}) {
    tables_->ComputeAll(settings);
    GraphCurves curves;
    for (int channel : channels)
      curves.Show(*tables_, channel, levelDb);
    graph_.SetCurves(curves);
  }

  std::unique_ptr<graph::ResponseTables> tables_ = std::make_unique<graph::ResponseTables>();
  ResponseGraph graph_;
};

TEST_F(ResponseGraphTest, shouldDrawAFlatChannelOnTheZeroRowFrom20HzTo20kHz) {
  // The plot is 575/s x 191/s pixels; the zero line 95.4/s falls in row 95 or 119.
  const struct {
    int dpi, channel;
    QRgb colour;
    int plotWidth, plotHeight, zeroRow;
  } cases[] = {{96, 0, qRgb(255, 0, 0), 575, 191, 95},
               {96, 4, qRgb(0, 192, 192), 575, 191, 95},
               {120, 7, qRgb(255, 128, 0), 719, 239, 119},
               {120, 1, qRgb(0, 0, 255), 719, 239, 119}};
  for (const auto& c : cases) {
    Show({c.channel});
    const Rendered rendered = Render(graph_, c.dpi);
    ASSERT_EQ(rendered.plot.width(), c.plotWidth) << c.dpi;
    ASSERT_EQ(rendered.plot.height(), c.plotHeight) << c.dpi;
    // Magnitude and phase on the one row, in every column from the left edge to the right.
    for (int x = 0; x < c.plotWidth; ++x)
      ASSERT_EQ(RowsOfColour(rendered, x, c.colour), std::set<int>{c.zeroRow})
          << c.dpi << " dpi, channel " << c.channel << ", x " << x;
    EXPECT_EQ(CountColours(rendered.image)[c.colour], c.plotWidth) << "colour elsewhere";
  }
}

TEST_F(ResponseGraphTest, shouldLiftTheMagnitudeByTheLevelAndScaleThePhaseAlike) {
  // +6 dB: 6 x 191/60/s pixels above the zero line; -180 degrees (an inverted polarity) is
  // 95.5 pixels below it at any dpi.
  const struct {
    int dpi;
    float levelDb;
    bool inverted;
    int magnitudeRow, phaseRow;
  } cases[] = {{96, 6.0f, false, 76, 95},
               {120, 6.0f, false, 95, 119},
               {96, -12.0f, false, 133, 95},
               {96, 0.0f, true, 95, 190},
               {120, 0.0f, true, 119, 214}};
  for (const auto& c : cases) {
    graph::ResponseSettings settings;
    settings.channels[3].polarityInverted = c.inverted;
    Show({3}, c.levelDb, settings);
    const Rendered rendered = Render(graph_, c.dpi);
    for (int x : {0, rendered.plot.width() / 2, rendered.plot.width() - 1})
      EXPECT_EQ(RowsOfColour(rendered, x, kChannelColours[3]),
                (std::set<int>{c.magnitudeRow, c.phaseRow}))
          << c.dpi << " dpi, level " << c.levelDb << ", x " << x;
  }
}

TEST_F(ResponseGraphTest, shouldDrawNothingOfAHiddenChannel) {
  for (int shown = 0; shown < graph::kChannelCount; ++shown) {
    Show({shown});
    std::map<QRgb, int> counts = CountColours(Render(graph_, 96).image);
    for (int channel = 0; channel < graph::kChannelCount; ++channel) {
      const int pixels = counts[kChannelColours[static_cast<std::size_t>(channel)]];
      if (channel == shown)
        EXPECT_GT(pixels, 0) << channel;
      else
        EXPECT_EQ(pixels, 0) << "channel " << channel << " hidden, " << shown << " shown";
    }
  }
  graph_.SetCurves({});
  std::map<QRgb, int> counts = CountColours(Render(graph_, 96).image);
  for (QRgb colour : kChannelColours)
    EXPECT_EQ(counts[colour], 0) << "no curves";
}

TEST_F(ResponseGraphTest, shouldKeepEveryLabelInsideTheGraph) {
  // Nothing but the background on the graph's outermost rows and columns, in the default font
  // and in a large one, at both display scales.
  for (int pointSize : {0, 16}) {
    QFont font = graph_.font();
    if (pointSize > 0) font.setPointSize(pointSize);
    graph_.setFont(font);
    for (int dpi : {96, 120}) {
      const QImage image = Render(graph_, dpi).image;
      const QRgb background = graph_.palette().color(QPalette::Window).rgb();
      int touching = 0;
      for (int x = 0; x < image.width(); ++x)
        touching +=
            (image.pixel(x, 0) != background) + (image.pixel(x, image.height() - 1) != background);
      for (int y = 0; y < image.height(); ++y)
        touching +=
            (image.pixel(0, y) != background) + (image.pixel(image.width() - 1, y) != background);
      EXPECT_EQ(touching, 0) << dpi << " dpi, " << font.pointSize() << " pt";
    }
  }
}

TEST_F(ResponseGraphTest, shouldPaintThePlotWherePlotRectSays) {
  Show({0});
  graph_.resize(graph_.sizeHint() + QSize(40, 30));  // the graph is centred in the extra room
  const QImage image = graph_.grab().toImage();
  const QRect plot = graph_.PlotRect();
  const int zeroRow = plot.top() + static_cast<int>(graph_.Geometry().ZeroLine());
  const QRgb red = kChannelColours[0];
  EXPECT_EQ(image.pixel(plot.left(), zeroRow), red);
  EXPECT_EQ(image.pixel(plot.right(), zeroRow), red);
  EXPECT_NE(image.pixel(plot.left() - 2, zeroRow), red);
  EXPECT_NE(image.pixel(plot.right() + 2, zeroRow), red);
}

}  // namespace
}  // namespace talvex::editor

namespace talvex::editor {
namespace {

// The fixed colours on a light plot; on a dark one every channel still reads at 3:1 or better.
TEST(ChannelColourTest, shouldKeepEveryChannelReadableOnALightAndADarkPlot) {
  EXPECT_NEAR(ContrastRatio(QColor(0, 0, 0), QColor(255, 255, 255)), 21.0, 1e-9);
  const QColor light(255, 255, 255);
  const QColor dark(42, 42, 46);
  for (int channel = 0; channel < graph::kChannelCount; ++channel) {
    EXPECT_EQ(ChannelColour(channel, light).rgb(),
              kChannelColours[static_cast<std::size_t>(channel)]);
    EXPECT_GE(ContrastRatio(ChannelColour(channel, dark), dark), 3.0) << channel;
  }
}

}  // namespace
}  // namespace talvex::editor
