#include "graph/response_math.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <string>

#include "graph/arc_tangent.h"
#include "protocol/frame.h"

namespace talvex::graph {
namespace {

TEST(ArcTanTest, shouldAgreeWithTheStandardLibraryToTheLastBitsOverEveryRange) {
  // Tangents from 1e-8 to 1e17 (a zero-guarded corner), both signs, across the reduction
  // boundaries 0.66 and tan(3 pi / 8).
  double worst = 0.0;
  for (double x = 1e-8; x < 1e17; x *= 1.0007) {
    for (double sign : {1.0, -1.0}) {
      const double expected = std::atan(sign * x);
      worst = std::max(worst, std::fabs(ArcTan(sign * x) - expected) / std::fabs(expected));
    }
  }
  EXPECT_LT(worst, 4.5e-16);
  EXPECT_EQ(ArcTan(0.0), 0.0);
  EXPECT_DOUBLE_EQ(ArcTan(1.0), std::atan(1.0));
}

TEST(BellQFactorTest, shouldMatchGainsExactlyOnTheTenthDbGridWithTheGapAtOneDb) {
  const struct {
    double gainDb;
    float k;
  } cases[] = {{0.0, 1.0f},  {0.1, 1.05f},  {0.5, 1.05f},     {0.6, 1.1f},   {0.9, 1.1f},
               {-0.9, 1.1f}, {1.0, 1.0f},   {-1.0, 1.0f},     {1.1, 1.15f},  {2.0, 1.2f},
               {8.1, 1.83f}, {10.0, 1.93f}, {10.1, 2.0f},     {15.0, 2.52f}, {-15.0, 2.52f},
               {0.25, 1.0f}, {15.1, 1.0f},  {0.1000001, 1.0f}};
  for (const auto& c : cases)
    EXPECT_EQ(BellQFactor(c.gainDb), c.k) << c.gainDb;
}

TEST(WrapDegreesTest, shouldFoldInto180ByWholeTurnsKeepingTheEnds) {
  const struct {
    float in, out;
  } cases[] = {{10.0f, 10.0f},     {190.0f, -170.0f},  {-190.0f, 170.0f},  {180.0f, 180.0f},
               {-180.0f, -180.0f}, {540.0f, 180.0f},   {-540.0f, -180.0f}, {900.5f, -179.5f},
               {370.25f, 10.25f},  {3600010.0f, 10.0f}};
  for (const auto& c : cases) {
    float angle = c.in;
    EXPECT_EQ(WrapDegrees(angle), c.out) << c.in;
    EXPECT_EQ(angle, c.out) << c.in;
  }
}

TEST(ChannelPhaseTest, shouldShiftAnInvertedPolarityBy180BeforeFolding) {
  EXPECT_EQ(ChannelPhasePoint(10.0f, true), -170.0f);
  EXPECT_EQ(ChannelPhasePoint(10.0f, false), 10.0f);
  EXPECT_EQ(ChannelPhasePoint(-170.0f, true), 10.0f);
}

TEST(DelayPhaseTest, shouldTurnOnceFor48SamplesAt1kHz) {
  // One period of 1 kHz at 48 kHz, with the program's own pi and degree factor.
  EXPECT_FLOAT_EQ(DelayPhase(1000.0f, 48), static_cast<float>(2 * 3.1415926535 * 57.2957878112793));
  EXPECT_FLOAT_EQ(DelayPhase(1000.0f, -24), -180.00003f);
}

TEST(SectionPhaseTest, shouldGiveQuarterTurnAtTheCornerThroughTheZeroGuard) {
  PhaseUnwrapState state;
  EXPECT_FLOAT_EQ(LowPassSectionPhase(0.707f, 10.0f, 10.0f, state), -90.0f);
  EXPECT_FLOAT_EQ(HighPassSectionPhase(0.707f, 10.0f, 10.0f, state), 90.0f);
  EXPECT_EQ(state.sectionTurns, 0);
}

TEST(UnwrapTest, shouldCountAHalfTurnWhenTheTangentJumpsThroughAStepAngle) {
  PhaseUnwrapState state;
  std::int16_t counter = 0;
  EXPECT_EQ(UpdateUnwrap(10.0f, -5.0, counter, state), 0);  // seeds the previous sign
  EXPECT_EQ(UpdateUnwrap(11.0f, 5.0, counter, state), 1);   // -5 -> +5: steep, counts
  EXPECT_EQ(UpdateUnwrap(12.0f, -0.5, counter, state), 1);  // near zero phase: ignored
  EXPECT_EQ(UpdateUnwrap(13.0f, 0.5, counter, state), 1);
  EXPECT_EQ(UpdateUnwrap(14.0f, -5.0, counter, state), 0);  // +0.5 -> -5: steep, back
  EXPECT_EQ(state.previousSign, -1);
}

BandSettings Band(int widthIndex, int gainStep, double frequencyHz) {
  return {gainStep / 2.0 - 15.0, frequencyHz, widthIndex, gainStep};
}

TEST(BellTest, shouldReachItsGainAtTheCentreWithZeroPhase) {
  for (int step : {0, 18, 29, 31, 60}) {
    for (int width : {4, 23, 63}) {
      const BandSettings bell = Band(width, step, 630.0);
      EXPECT_FLOAT_EQ(BellMagnitude(bell, 630.0f), static_cast<float>(bell.gainDb)) << step;
      EXPECT_EQ(BellPhase(bell, 630.0f), 0.0f) << step;
    }
  }
}

TEST(BellTest, shouldBeNarrowerAtOneDbThanAtPointNineDb) {
  // The same band at 1 kHz, Q 1.5; an octave above, the curve's share of its gain.
  BandSettings oneDb{1.0, 1000.0, 23, 32};
  BandSettings pointNine{0.9, 1000.0, 23, 32};
  EXPECT_LT(BellMagnitude(oneDb, 2000.0f) / 1.0f, BellMagnitude(pointNine, 2000.0f) / 0.9f);
  // Qm = 1.5 / 1.0 and 1.5 / 1.1: G / (1 + Qm^2 (0.5 - 2)^2)
  EXPECT_FLOAT_EQ(BellMagnitude(oneDb, 2000.0f), static_cast<float>(1.0 / (1 + 2.25 * 2.25)));
}

TEST(ShelfTest, shouldReachHalfItsGainAtItsOwnCorner) {
  // At f = Fc every shelf is at G/2. The corners: code 0 F0 / (0.97 T12[g]), code 1 F0 / T6[g],
  // code 2 F0 T12[g], code 3 F0 T6[g], with g the gain byte.
  const struct {
    int code, step;
    double f0, fc;
  } cases[] = {{0, 42, 970.0, 970.0 / static_cast<double>(0.97f)},
               {1, 10, 1600.0, 1000.0},  // T6[10] = 1.6
               {2, 60, 1000.0, 1370.0},  // T12[60] = 1.37
               {3, 50, 625.0, 1000.0}};  // T6[50] = 1.6
  for (const auto& c : cases) {
    const BandSettings shelf = Band(c.code, c.step, c.f0);
    EXPECT_NEAR(ShelfMagnitude(shelf, static_cast<float>(c.fc)), shelf.gainDb / 2, 1e-4) << c.code;
  }
}

TEST(ShelfTest, shouldHoldTheGainOnItsOwnSideAndZeroOnTheOther) {
  const BandSettings low = Band(2, 42, 1000.0);   // +6 dB
  const BandSettings high = Band(1, 18, 1000.0);  // -6 dB
  EXPECT_NEAR(ShelfMagnitude(low, 10.0f), 6.0, 1e-3);
  EXPECT_NEAR(ShelfMagnitude(low, 20000.0f), 0.0, 1e-2);
  EXPECT_NEAR(ShelfMagnitude(high, 10.0f), 0.0, 2e-2);  // a 6 dB shelf settles slowly
  EXPECT_NEAR(ShelfMagnitude(high, 20000.0f), -6.0, 2e-2);
}

TEST(EqBandModelTest, shouldRefuseWidthsAndGainStepsOutsideTheTables) {
  EXPECT_THROW(EqBandModel(Band(64, 30, 1000.0)), IndexError);
  EXPECT_THROW(EqBandModel(Band(2, 61, 1000.0)), IndexError);
  EXPECT_THROW(CrossoverModel(false, {1000.0, 9}), IndexError);
}

}  // namespace
}  // namespace talvex::graph

namespace talvex::graph {
namespace {

// The grid form of every model gives the point form's values bit for bit, the unwrapped phases
// of shelves and sections included.
template <typename Model>
void ExpectFillMatchesPoints(const Model& model, const std::string& what) {
  auto curves = std::make_unique<std::array<Curve, 2>>();
  PhaseUnwrapState filled;
  PhaseUnwrapState pointwise;
  model.Fill((*curves)[0], (*curves)[1], filled);
  for (int i = 0; i < kGridPointCount; ++i) {
    const PointResponse point = model.At(kGridFrequencies[static_cast<std::size_t>(i)], pointwise);
    ASSERT_EQ((*curves)[0][i], point.magnitudeDb) << what << " at " << GridHz(i);
    ASSERT_EQ((*curves)[1][i], point.phaseDeg) << what << " at " << GridHz(i);
  }
  EXPECT_EQ(filled.sectionTurns, pointwise.sectionTurns) << what;
  EXPECT_EQ(filled.shelfTurns, pointwise.shelfTurns) << what;
}

TEST(FillTest, shouldGiveThePointFormsValuesForEveryModel) {
  for (int width : {0, 1, 2, 3, 4, 30, 63})
    for (int step : {0, 22, 45})
      ExpectFillMatchesPoints(EqBandModel({step / 2.0 - 15.0, 315.0, width, step}),
                              "width " + std::to_string(width) + " step " + std::to_string(step));
  for (int type = 0; type < kCrossoverTypeCount; ++type)
    for (bool highPass : {false, true})
      ExpectFillMatchesPoints(CrossoverModel(highPass, {1000.0, type}),
                              "type " + std::to_string(type) + (highPass ? " hp" : " lp"));
}

}  // namespace
}  // namespace talvex::graph
