#include "graph/frequency_grid.h"

#include <gtest/gtest.h>

#include "graph/curve.h"
#include "protocol/frame.h"

namespace talvex::graph {
namespace {

TEST(FrequencyGridTest, shouldStepByOneHertzTo799ThenBy21AndEndExactlyAt20000) {
  ASSERT_EQ(kGridPointCount, 1705);
  EXPECT_EQ(GridHz(0), 10);
  EXPECT_EQ(GridHz(789), 799);
  EXPECT_EQ(GridHz(790), 820);
  EXPECT_EQ(GridHz(791), 841);
  EXPECT_EQ(GridHz(1703), 19993);
  EXPECT_EQ(GridHz(1704), 20000);
}

TEST(FrequencyGridTest, shouldFindGridPointsByWholeHertzAndNothingBetweenThem) {
  const struct {
    int hz;
    std::optional<int> point;
  } cases[] = {{10, 0},
               {799, 789},
               {800, std::nullopt},
               {819, std::nullopt},
               {820, 790},
               {841, 791},
               {1000, std::nullopt},
               {19993, 1703},
               {19994, std::nullopt},
               {20000, 1704},
               {9, std::nullopt},
               {20001, std::nullopt}};
  for (const auto& c : cases)
    EXPECT_EQ(GridIndexOfHz(c.hz), c.point) << c.hz;
  for (int i = 0; i < kGridPointCount; ++i)
    ASSERT_EQ(GridIndexOfHz(GridHz(i)), i);
}

TEST(CurveTest, shouldAnswerByHertzOnlyAtGridPoints) {
  Curve curve;
  curve[790] = 4.5f;
  EXPECT_EQ(curve.AtHz(820), 4.5f);
  EXPECT_THROW(curve.AtHz(800), IndexError);
  EXPECT_THROW(curve.AtHz(1000), IndexError);
  EXPECT_THROW(curve.AtHz(20001), IndexError);
}

}  // namespace
}  // namespace talvex::graph
