#include "graph/plot_range.h"

#include <gtest/gtest.h>

#include <sstream>

#include "graph/shown_curves.h"

namespace talvex::graph {
namespace {

// The whole range maps exactly as the geometry does, at every display scale.
TEST(PlotRangeTest, shouldMapTheWholePlotExactlyAsTheGeometry) {
  for (int dpi : {96, 120, 144}) {
    const GraphGeometry geometry(dpi);
    const PlotMapping mapping(geometry, {});
    for (int hz : {19, 20, 21, 799, 820, 1000, 19993, 20000})
      EXPECT_EQ(mapping.XOfHz(hz), geometry.FrequencyX(hz)) << dpi << " dpi, " << hz << " Hz";
    for (float db : {-30.0f, -4.5f, 0.0f, 12.0f, 30.0f})
      EXPECT_EQ(mapping.MagnitudeY(db), geometry.MagnitudeY(db)) << dpi << " dpi, " << db;
    for (float degrees : {-180.0f, -45.0f, 0.0f, 179.0f})
      EXPECT_EQ(mapping.PhaseY(degrees), geometry.PhaseY(degrees)) << dpi << " dpi";
    EXPECT_NEAR(mapping.XOf(1000.0), geometry.FrequencyX(1000), 1e-3);
    EXPECT_NEAR(mapping.FrequencyAt(geometry.FrequencyX(5000)), 5000.0, 0.01);
  }
}

// Zoomed: what lies under the anchor stays there, the shown part shrinks by the factor, and
// the inverse maps give back what the forward maps put.
TEST(PlotRangeTest, shouldZoomAboutThePointerAndPanWithinTheWholePlot) {
  const GraphGeometry geometry(96);
  const PlotRange whole;
  const PlotMapping before(geometry, whole);
  const double atX = 0.25, atY = 0.75;
  const double hzUnder = before.FrequencyAt(atX * before.Width());
  const double dbUnder = before.DbAt(atY * before.Height());
  const PlotRange zoomed = Zoomed(whole, 4, 2, atX, atY);
  EXPECT_DOUBLE_EQ(zoomed.width, 0.25);
  EXPECT_DOUBLE_EQ(zoomed.height, 0.5);
  const PlotMapping after(geometry, zoomed);
  EXPECT_NEAR(after.XOf(hzUnder), atX * after.Width(), 1e-6);
  EXPECT_NEAR(after.MagnitudeY(dbUnder), atY * after.Height(), 1e-4);
  EXPECT_NEAR(after.DegreesAt(after.PhaseY(33.0)), 33.0, 1e-4);
  // A quarter of three decades across the plot: 10^0.75 from the left edge to the right.
  EXPECT_NEAR(after.FrequencyAt(after.Width()) / after.FrequencyAt(0), std::pow(10.0, 0.75), 1e-6);

  const struct {
    PlotRange range;
    PlotRange expected;
  } held[] = {
      {Zoomed(whole, 0.5, 0.5, 0.5, 0.5), whole},                     // never beyond the whole
      {Zoomed(whole, 1000, 1000, 0, 0), {0, 0, 1 / 16.0, 1 / 16.0}},  // at most 16 times
      {Panned(zoomed, -10, 0), {0, zoomed.top, 0.25, 0.5}},           // held at the left edge
      {Panned(zoomed, 10, 10), {0.75, 0.5, 0.25, 0.5}},               // and at the far ones
      {Panned(zoomed, 0.5, 0), {zoomed.left + 0.125, zoomed.top, 0.25, 0.5}},
  };
  for (const auto& h : held) {
    EXPECT_NEAR(h.range.left, h.expected.left, 1e-12);
    EXPECT_NEAR(h.range.top, h.expected.top, 1e-12);
    EXPECT_NEAR(h.range.width, h.expected.width, 1e-12);
    EXPECT_NEAR(h.range.height, h.expected.height, 1e-12);
  }
}

TEST(PlotRangeTest, shouldLabelTheAxesFinerAsTheyZoomIn) {
  const GraphGeometry geometry(96);
  const PlotMapping whole(geometry, {});
  const AxisTicks frequencies =
      FrequencyTicks(whole.FrequencyAt(0), whole.FrequencyAt(whole.Width()));
  EXPECT_EQ(frequencies.labelled,
            (std::vector<double>{20, 50, 100, 200, 500, 1000, 2000, 5000, 10000, 20000}));
  EXPECT_EQ(frequencies.lines.size(), 28u - 10u);  // 20..90, 100..900, 1k..9k, 10k, 20k
  EXPECT_EQ(DbTicks(whole.DbAt(whole.Height()), whole.DbAt(0)).labelled,
            (std::vector<double>{-30, -20, -10, 0, 10, 20, 30}));
  EXPECT_EQ(DegreeTicks(whole.DegreesAt(whole.Height()), whole.DegreesAt(0)).labelled,
            (std::vector<double>{-180, -90, 0, 90, 180}));

  EXPECT_EQ(FrequencyTicks(900, 3000).labelled, (std::vector<double>{900, 1000, 2000, 3000}));
  EXPECT_EQ(FrequencyTicks(1000, 1550).labelled,
            (std::vector<double>{1000, 1100, 1200, 1300, 1400, 1500}));
  EXPECT_EQ(FrequencyTicks(1000, 2500).lines.front(), 1100);
  EXPECT_EQ(DbTicks(-7.3, 7.6).labelled, (std::vector<double>{-5, 0, 5}));
  EXPECT_EQ(DbTicks(2.2, 5.9).labelled, (std::vector<double>{3, 4, 5}));
  EXPECT_EQ(DegreeTicks(-20, 25).labelled, (std::vector<double>{-15, 0, 15}));

  const struct {
    double hz;
    const char* text;
  } labels[] = {{20, "20"},     {95, "95"},     {1000, "1k"},
                {1500, "1.5k"}, {12000, "12k"}, {20000, "20k"}};
  for (const auto& l : labels)
    EXPECT_EQ(FrequencyLabel(l.hz), l.text);
}

// The cursor reads the grid point nearest its frequency, each magnitude with its level; the CSV
// holds every grid point of every shown curve.
TEST(ShownCurvesTest, shouldReadAndWriteTheShownCurvesOnTheGrid) {
  Curve magnitude, phase, sum;
  for (int i = 0; i < kGridPointCount; ++i) {
    magnitude[i] = static_cast<float>(i) / 100;
    phase[i] = -static_cast<float>(i) / 10;
    sum[i] = -0.001f;
  }
  ShownCurves curves;
  curves.magnitude[3] = &magnitude;
  curves.phase[3] = &phase;
  curves.levelDb[3] = -2.5f;
  curves.sumMagnitude = &sum;
  curves.sumPhase = &phase;
  const CursorReading reading = ReadAt(curves, 809.4);  // nearer 799 than 820
  EXPECT_EQ(reading.hz, 799);
  ASSERT_TRUE(reading.channels[3].has_value());
  EXPECT_FLOAT_EQ(reading.channels[3]->magnitudeDb, 789 / 100.0f - 2.5f);
  EXPECT_FLOAT_EQ(reading.channels[3]->phaseDeg, -78.9f);
  EXPECT_FALSE(reading.channels[2].has_value());
  ASSERT_TRUE(reading.sum.has_value());
  EXPECT_EQ(ReadAt(curves, 810.6).hz, 820);
  EXPECT_EQ(ReadAt(curves, 3).hz, 10);
  EXPECT_EQ(ReadAt(curves, 30000).hz, 20000);

  std::array<std::string, kChannelCount> names;
  names[3] = "Out 2, \"mid\"";
  std::ostringstream csv;
  WriteCurvesCsv(csv, CsvOfShown(curves, names));
  std::istringstream lines(csv.str());
  std::string line;
  std::getline(lines, line);
  EXPECT_EQ(line,
            "hz,\"Out 2, \"\"mid\"\" magnitude_db\",\"Out 2, \"\"mid\"\" phase_deg\","
            "Sum magnitude_db,Sum phase_deg");
  int rows = 0;
  while (std::getline(lines, line)) {
    if (rows == 0) {
      EXPECT_EQ(line, "10,-2.50,0.00,0.00,0.00");  // never "-0.00"
    } else if (rows == 789) {
      EXPECT_EQ(line, "799,5.39,-78.90,0.00,-78.90");
    }
    ++rows;
  }
  EXPECT_EQ(rows, kGridPointCount);
}

}  // namespace
}  // namespace talvex::graph
