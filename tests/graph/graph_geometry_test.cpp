#include "graph/graph_geometry.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "protocol/frame.h"

namespace talvex::graph {
namespace {

TEST(GraphGeometryTest, shouldScaleEverythingButThePhaseWithTheDisplay) {
  const struct {
    int dpi;
    float scale, width, zeroLine, dbScale;
  } cases[] = {{96, 1.0f, 575.0f, 95.4f, 191.0f / 60.0f},
               {120, 0.8f, 718.75f, 119.25f, 191.0f / 0.8f / 60.0f}};
  for (const auto& c : cases) {
    const GraphGeometry geometry(c.dpi);
    EXPECT_FLOAT_EQ(geometry.DisplayScale(), c.scale) << c.dpi;
    EXPECT_FLOAT_EQ(geometry.GraphWidth(), c.width) << c.dpi;
    EXPECT_FLOAT_EQ(geometry.ZeroLine(), c.zeroLine) << c.dpi;
    EXPECT_FLOAT_EQ(geometry.DbScale(), c.dbScale) << c.dpi;
    EXPECT_FLOAT_EQ(geometry.PhaseY(180.0f), c.zeroLine - 0.5305555f * 180.0f) << c.dpi;
    EXPECT_FLOAT_EQ(geometry.FrequencyX(20000), c.width) << c.dpi;
    EXPECT_FLOAT_EQ(geometry.FrequencyX(200), c.width / 3.0f) << c.dpi;
  }
}

TEST(GraphGeometryTest, shouldPutFrequenciesBelow20HzJustLeftOfThePlot) {
  const GraphGeometry geometry(96);
  EXPECT_EQ(geometry.FrequencyX(9), 0.0f);
  EXPECT_EQ(geometry.FrequencyX(10), -1.0f);
  EXPECT_EQ(geometry.FrequencyX(19), -1.0f);
  EXPECT_EQ(geometry.FrequencyX(20), 0.0f);
  EXPECT_THROW(geometry.FrequencyX(20001), IndexError);
  EXPECT_THROW(GraphGeometry(0), std::invalid_argument);
}

}  // namespace
}  // namespace talvex::graph
