#include "protocol/meter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace talvex::protocol::meter {
namespace {

TEST(MeterScaleTest, shouldPutALevelOnHalfDecibelStepsBetweenSilenceAndFullScale) {
  const struct {
    double dbfs;
    std::uint8_t byte;
  } cases[] = {
      {-std::numeric_limits<double>::infinity(), 0},  // a muted channel
      {std::nan(""), 0},
      {-75, 0},
      {-60, 0},
      {-59.5, 1},
      {-20, 80},
      {-20.2, 80},
      {-20.3, 79},
      {-0.5, 119},
      {-0.2, 120},
      {0, 120},
      {4, 120},  // clipped
  };
  for (const auto& c : cases)
    EXPECT_EQ(ByteOfLevel(c.dbfs), c.byte) << c.dbfs;
}

}  // namespace
}  // namespace talvex::protocol::meter
