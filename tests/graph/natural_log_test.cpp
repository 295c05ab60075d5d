#include "graph/natural_log.h"

#include <gtest/gtest.h>

#include <cfenv>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

namespace talvex::graph {
namespace {

std::int64_t UnitsApart(double a, double b) {
  std::int64_t ia;
  std::int64_t ib;
  std::memcpy(&ia, &a, sizeof a);
  std::memcpy(&ib, &b, sizeof b);
  return ia > ib ? ia - ib : ib - ia;
}

TEST(NaturalLogTest, shouldStayWithinOneUnitOfTheStandardLibrary) {
  // Magnitude ratios run from tiny (a steep filter far into its stop band) to large shelves.
  std::vector<double> values = {DBL_MIN,
                                1e-300,
                                1e-30,
                                0.5,
                                0.70710678118654752,
                                0.999999999,
                                1.0,
                                1.0000000001,
                                1.41421356237309504,
                                2.0,
                                3.0,
                                10.0,
                                1e30,
                                DBL_MAX};
  std::mt19937_64 random(7);
  std::uniform_real_distribution<double> exponent(-300.0, 300.0);
  for (int i = 0; i < 20000; ++i)
    values.push_back(std::pow(10.0, exponent(random)));
  std::vector<double> logs(values.size());
  LogOfEach(values.data(), logs.data(), static_cast<int>(values.size()));
  int differentFloats = 0;
  for (std::size_t i = 0; i < values.size(); ++i) {
    ASSERT_LE(UnitsApart(logs[i], std::log(values[i])), 1) << values[i];
    differentFloats += static_cast<float>(logs[i]) != static_cast<float>(std::log(values[i]));
  }
  EXPECT_LE(differentFloats, 1);
  EXPECT_EQ(logs[6], 0.0);  // log 1 is exactly 0
}

TEST(NaturalLogTest, shouldFaultAsTheStandardLibraryDoesOutsideThePositiveNumbers) {
  const double values[] = {0.0, -1.0, std::numeric_limits<double>::infinity(), std::nan(""),
                           1e-310};
  double logs[5];
  std::feclearexcept(FE_ALL_EXCEPT);
  LogOfEach(values, logs, 5);
  EXPECT_TRUE(std::fetestexcept(FE_DIVBYZERO));  // log 0
  EXPECT_TRUE(std::fetestexcept(FE_INVALID));    // log -1
  EXPECT_EQ(logs[0], -std::numeric_limits<double>::infinity());
  EXPECT_TRUE(std::isnan(logs[1]));
  EXPECT_EQ(logs[2], std::numeric_limits<double>::infinity());
  EXPECT_TRUE(std::isnan(logs[3]));
  EXPECT_EQ(logs[4], std::log(1e-310));  // subnormal
  std::feclearexcept(FE_ALL_EXCEPT);
  const double one = 1.0;
  double zero;
  LogOfEach(&one, &zero, 1);
  EXPECT_FALSE(std::fetestexcept(FE_ALL_EXCEPT & ~FE_INEXACT));
}

}  // namespace
}  // namespace talvex::graph
