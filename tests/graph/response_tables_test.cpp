#include "graph/response_tables.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>

#include "protocol/frame.h"

namespace talvex::graph {
namespace {

constexpr float kCornerDb = -3.0103f;  // 20 log10(1 / sqrt(2))

class ResponseTablesTest : public ::testing::Test {
 protected:
  // Box n of Out 1: 0 high-pass, 1 low-pass; response slots 1 and 0.
  void SetOut1Filter(int box, int type, double hz) {
    settings_.crossovers[static_cast<std::size_t>(box)] = {hz, type};
  }

  ResponseSettings settings_;
  std::unique_ptr<ResponseTables> tables_ = std::make_unique<ResponseTables>();
};

TEST_F(ResponseTablesTest, shouldModelEveryCrossoverTypeAtItsCorner) {
  // At a 500 Hz corner (a grid point): magnitude and phase of the low-pass and the high-pass
  // form. The Bessel types keep their mismatched corner scalings.
  const struct {
    int type;
    float lowDb, lowDeg, highDb, highDeg;
  } cases[] = {{0, 0.0f, 0.0f, 0.0f, 0.0f},
               {1, kCornerDb, -45.0f, kCornerDb, 45.0f},
               {2, kCornerDb, -90.0f, kCornerDb, 90.0f},
               {3, 2 * kCornerDb, -90.0f, 2 * kCornerDb, 90.0f},
               {4, -5.74308f, -51.00722f, -5.74308f, 51.00723f},
               {5, kCornerDb, -135.0f, kCornerDb, 135.0f},
               {6, kCornerDb, -180.0f, kCornerDb, 180.0f},
               {7, 2 * kCornerDb, -180.0f, 2 * kCornerDb, 180.0f},
               {8, -7.66799f, -180.0f, -7.66799f, 119.32712f}};
  for (const auto& c : cases) {
    SetOut1Filter(0, c.type, 500.0);
    SetOut1Filter(1, c.type, 500.0);
    tables_->ComputeAll(settings_);
    EXPECT_NEAR(tables_->CrossoverMagnitude(0).AtHz(500), c.lowDb, 2e-4) << c.type;
    EXPECT_NEAR(tables_->CrossoverPhase(0).AtHz(500), c.lowDeg, 2e-4) << c.type;
    EXPECT_NEAR(tables_->CrossoverMagnitude(1).AtHz(500), c.highDb, 2e-4) << c.type;
    EXPECT_NEAR(tables_->CrossoverPhase(1).AtHz(500), c.highDeg, 2e-4) << c.type;
  }
}

TEST_F(ResponseTablesTest, shouldComputeAHighPassBoxWithTheHighPassModel) {
  SetOut1Filter(0, 2, 500.0);  // box 0: Out 1's high-pass
  tables_->ComputeCrossoverResponse(settings_, ResponseSlotOfBox(0));
  EXPECT_EQ(ResponseSlotOfBox(0), 1);
  EXPECT_EQ(ResponseSlotOfBox(11), 10);
  EXPECT_EQ(BoxOfResponseSlot(1), 0);
  EXPECT_THROW(ResponseSlotOfBox(12), IndexError);
  EXPECT_NEAR(tables_->CrossoverMagnitude(1).AtHz(50), -40.0, 1e-3);  // 12 dB/oct below
  EXPECT_NEAR(tables_->CrossoverMagnitude(1).AtHz(19993), 0.0, 1e-3);
  EXPECT_EQ(tables_->CrossoverMagnitude(0).AtHz(50), 0.0f);
}

TEST_F(ResponseTablesTest, shouldFall24DbPerOctaveAboveAButterworthCornerAt1kHz) {
  SetOut1Filter(1, 6, 1000.0);
  tables_->ComputeCrossoverResponse(settings_, 0);
  const Curve& lowPass = tables_->CrossoverMagnitude(0);
  // 1000 Hz is no grid point; its neighbours 988 and 1009 Hz straddle -3.01 dB.
  const auto butterworth = [](double f) { return -10 * std::log10(1 + std::pow(f / 1000, 8)); };
  EXPECT_NEAR(lowPass.AtHz(988), butterworth(988), 1e-4);
  EXPECT_NEAR(lowPass.AtHz(1009), butterworth(1009), 1e-4);
  const double slope = (lowPass.AtHz(7960) - lowPass.AtHz(3970)) / std::log2(7960.0 / 3970.0);
  EXPECT_NEAR(slope, -24.08, 0.01);
}

TEST_F(ResponseTablesTest, shouldKeepAZeroDbBellFlatWithZeroPhase) {
  settings_.bands[3] = {0.0, 1000.0, 4, 30};
  settings_.bands[4] = {6.0, 1000.0, 9, 42};
  tables_->ComputeEqBandResponse(settings_, 4);
  tables_->ComputeEqBandResponse(settings_, 3);
  for (int i = 0; i < kGridPointCount; ++i) {
    ASSERT_EQ(tables_->BandMagnitude(3)[i], 0.0f);
    ASSERT_EQ(tables_->BandPhase(3)[i], 0.0f);
  }
  EXPECT_NE(tables_->BandPhase(4).AtHz(500), 0.0f);
}

TEST_F(ResponseTablesTest, shouldSumOnlyTheEditedBandsChannel) {
  settings_.bands[10] = {6.0, 500.0, 23, 42};  // Out 1, band 1
  SetOut1Filter(1, 2, 500.0);
  settings_.channels[2].delaySamples = 12;  // 45 degrees at 500 Hz
  settings_.channels[2].polarityInverted = true;
  settings_.bands[17] = {6.0, 500.0, 23, 42};  // Out 2: changed but not recomputed
  tables_->ComputeCrossoverResponse(settings_, 0);
  tables_->ComputeEqBandResponse(settings_, 10);
  EXPECT_NEAR(tables_->ChannelMagnitude(2).AtHz(500), 6.0 + kCornerDb, 1e-4);
  EXPECT_NEAR(tables_->ChannelPhase(2).AtHz(500), 0.0 - 90.0 + 45.0 - 180.0 + 360.0, 1e-3);
  EXPECT_EQ(tables_->ChannelMagnitude(3).AtHz(500), 0.0f);
  // The level is not part of the sum; a polarity edit needs the sums only.
  settings_.channels[2].levelDb = -6.0;
  settings_.channels[2].polarityInverted = false;
  tables_->ComputeChannelSums(settings_, 2);
  EXPECT_NEAR(tables_->ChannelMagnitude(2).AtHz(500), 6.0 + kCornerDb, 1e-4);
  EXPECT_NEAR(tables_->ChannelPhase(2).AtHz(500), -45.0, 1e-3);
}

TEST_F(ResponseTablesTest, shouldStopAPassAtAFloatingPointFaultKeepingTheOldValues) {
  settings_.bands[0] = {6.0, 1000.0, 9, 42};
  tables_->ComputeEqBandResponse(settings_, 0);
  const float before = tables_->BandMagnitude(0).AtHz(988);
  const float channelBefore = tables_->ChannelMagnitude(0).AtHz(500);
  settings_.bands[0].frequencyHz = 0.0;  // divides by zero
  try {
    tables_->ComputeEqBandResponse(settings_, 0);
    FAIL() << "no fault";
  } catch (const FloatingPointFault& fault) {
    EXPECT_STREQ(fault.what(), "floating-point fault in the response of band 0 at 10 Hz");
  }
  EXPECT_EQ(tables_->BandMagnitude(0).AtHz(988), before);
  EXPECT_EQ(tables_->ChannelMagnitude(0).AtHz(500), channelBefore);
  settings_.bands[0].gainDb = std::nan("");
  EXPECT_THROW(tables_->ComputeEqBandResponse(settings_, 0), FloatingPointFault);
}

TEST_F(ResponseTablesTest, shouldRefuseIndicesOutsideTheirRanges) {
  EXPECT_THROW(tables_->ComputeEqBandResponse(settings_, 52), IndexError);
  EXPECT_THROW(tables_->ComputeCrossoverResponse(settings_, 12), IndexError);
  EXPECT_THROW(tables_->ComputeChannelSums(settings_, 8), IndexError);
  EXPECT_THROW(tables_->ChannelPhase(-1), IndexError);
}

TEST(ResponseTablesSizeTest, shouldKeepElevenEditorsTablesUnder16MB) {
  EXPECT_LE(11 * sizeof(ResponseTables), 16u * 1000 * 1000);
}

}  // namespace
}  // namespace talvex::graph
