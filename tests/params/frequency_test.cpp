#include "params/frequency.h"

#include <gtest/gtest.h>

#include <cmath>

#include "protocol/frame.h"

namespace talvex::params {
namespace {

TEST(FrequencyTest, shouldTakeTheNearestEntryAndTheLowerOneOnATie) {
  struct Case {
    double hz;
    int byte;
  };
  const Case cases[] = {
      {20, 0},           {19, 0},      {20.3, 0},  // 20.3 is halfway between 20 and 20.6
      {20.31, 1},        {29, 13},     {1000, 136},    {1015, 136},  // halfway to 1030
      {1015.5, 137},     {19750, 239}, {19750.1, 240}, {20000, 240},
      {20000.5, 0},      {25000, 0},  // nothing above 20000 Hz is met: callers clamp first
      {std::nan(""), 0},
  };
  for (const Case& c : cases)
    EXPECT_EQ(FrequencyToByte(c.hz), c.byte) << c.hz;
}

TEST(FrequencyTest, shouldSnapToTheFrequencyOfTheChosenByte) {
  EXPECT_EQ(SnapFrequency(20.31), 20.6);
  EXPECT_EQ(SnapFrequency(1016), 1030.0);
  EXPECT_EQ(SnapFrequency(19999), 20000.0);
  EXPECT_EQ(ByteToFrequency(240), 20000.0);
  EXPECT_THROW(ByteToFrequency(241), IndexError);
}

}  // namespace
}  // namespace talvex::params
