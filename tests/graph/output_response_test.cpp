#include "graph/output_response.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <memory>
#include <numbers>
#include <vector>

#include "protocol/frame.h"

namespace talvex::graph {
namespace {

using Complex = std::complex<double>;

// The second route: each element of the way as a complex gain, multiplied in double precision
// from the element curves alone (bands, crossover filters, delay phases), polarity as a sign
// and the levels as a gain; outputs added as complex numbers.
Complex Element(double db, double degrees) {
  return std::polar(std::pow(10.0, db / 20.0), degrees * std::numbers::pi / 180.0);
}

Complex ChannelGain(const ResponseTables& tables, const ResponseSettings& settings, int channel,
                    int point) {
  const ChannelSettings& c = settings.channels[static_cast<std::size_t>(channel)];
  Complex gain = Element(c.levelDb, tables.DelayPhase(channel)[point]);
  if (c.polarityInverted) gain = -gain;
  const int first = FirstBandOfChannel(channel);
  for (int band = first; band < first + BandsOf(channel); ++band)
    gain *= Element(tables.BandMagnitude(band)[point], tables.BandPhase(band)[point]);
  if (channel >= 2)
    for (int slot = 2 * (channel - 2); slot <= 2 * (channel - 2) + 1; ++slot)
      gain *= Element(tables.CrossoverMagnitude(slot)[point], tables.CrossoverPhase(slot)[point]);
  return gain;
}

Complex WayGain(const ResponseTables& tables, const ResponseSettings& settings, int output,
                int point) {
  const int source = settings.channels[static_cast<std::size_t>(output)].source;
  return ChannelGain(tables, settings, source, point) *
         ChannelGain(tables, settings, output, point);
}

double Db(Complex value) {
  return 20.0 * std::log10(std::abs(value));
}

// The difference of two angles in degrees, folded into -180 .. +180.
double AngleApart(double a, double b) {
  return std::remainder(a - b, 360.0);
}

// One side of a 2x3-way system, set as an installer would: EQ on the inputs and outputs,
// crossovers at 250 Hz and 2500 Hz, delays, a level trim and an inverted mid.
ResponseSettings ThreeWaySide() {
  ResponseSettings settings;
  const auto band = [&](int channel, int k, double hz, int width, double db) {
    BandSettings& b = settings.bands[static_cast<std::size_t>(FirstBandOfChannel(channel) + k)];
    b.frequencyHz = hz;
    b.widthIndex = width;
    b.gainDb = db;
    b.gainStep = static_cast<int>(2 * db + 30);
  };
  band(0, 0, 80, 2, 4.0);  // In A: a low shelf
  band(0, 1, 3150, 12, -3.5);
  band(1, 0, 500, 20, 6.0);  // In B feeds Out 6
  band(2, 0, 60, 15, 3.0);
  band(4, 2, 800, 8, -5.0);
  band(6, 6, 10000, 0, 2.5);  // a high shelf
  const auto filter = [&](int box, double hz, int type) {
    settings.crossovers[static_cast<std::size_t>(box)] = {hz, type};
  };
  filter(1, 250, 7);    // Out 1 low-pass, -24dB/oct Lz
  filter(4, 250, 7);    // Out 3 high-pass
  filter(5, 2500, 6);   // Out 3 low-pass, -24dB/oct Bw
  filter(8, 2500, 8);   // Out 5 high-pass, -24dB/oct Bs
  filter(10, 1200, 5);  // Out 6 high-pass, -18dB/oct Bw
  const auto channel = [&](int c, int delay, bool inverted, double level, int source) {
    ChannelSettings& s = settings.channels[static_cast<std::size_t>(c)];
    s.delaySamples = delay;
    s.polarityInverted = inverted;
    s.levelDb = level;
    s.source = source;
  };
  channel(0, 12, false, -1.5, 0);
  channel(1, 0, true, 2.0, 0);
  channel(2, 0, false, 0.0, 0);
  channel(4, 24, true, -2.5, 0);
  channel(6, 19, false, -4.0, 0);
  channel(7, 5, false, 1.0, 1);
  return settings;
}

class OutputResponseTest : public ::testing::Test {
 protected:
  void Compute(const ResponseSettings& settings) {
    settings_ = settings;
    tables_->ComputeAll(settings_);
  }

  // Our sum against the second route at every grid point where the sum is no deeper than 40 dB
  // below its loudest part: below that a dB value hangs on the last bits of the parts.
  void ExpectSumMatches(OutputSet outputs) {
    const auto sum = std::make_unique<ResponseCurves>();
    ComputeAcousticSum(*tables_, settings_, outputs, *sum);
    int compared = 0;
    for (int i = 0; i < kGridPointCount; ++i) {
      Complex expected = 0;
      double loudest = 0;
      for (int output = 0; output < kOutputCount; ++output) {
        if (!outputs.test(static_cast<std::size_t>(output))) continue;
        const Complex way = WayGain(*tables_, settings_, output + 2, i);
        expected += way;
        loudest = std::max(loudest, std::abs(way));
      }
      if (std::abs(expected) < loudest / 100) continue;
      ++compared;
      ASSERT_NEAR(sum->magnitude[i], Db(expected), 0.01) << GridHz(i) << " Hz";
      ASSERT_NEAR(AngleApart(sum->phase[i], std::arg(expected) * 180 / std::numbers::pi), 0.0, 0.1)
          << GridHz(i) << " Hz";
    }
    EXPECT_GT(compared, kGridPointCount * 9 / 10) << outputs;
  }

  ResponseSettings settings_;
  std::unique_ptr<ResponseTables> tables_ = std::make_unique<ResponseTables>();
};

TEST_F(OutputResponseTest, shouldMatchTheProductOfEveryElementOnTheWayToEachOutput) {
  Compute(ThreeWaySide());
  const auto whole = std::make_unique<ResponseCurves>();
  for (int output = 2; output < kChannelCount; ++output) {
    ComputeWholeOutput(*tables_, settings_, output, *whole);
    for (int i = 0; i < kGridPointCount; ++i) {
      const Complex expected = WayGain(*tables_, settings_, output, i);
      ASSERT_NEAR(whole->magnitude[i], Db(expected), 0.01) << output << ", " << GridHz(i) << " Hz";
      ASSERT_NEAR(AngleApart(whole->phase[i], std::arg(expected) * 180 / std::numbers::pi), 0.0,
                  0.1)
          << output << ", " << GridHz(i) << " Hz";
      ASSERT_LE(std::abs(whole->phase[i]), 180.0f);
    }
  }
}

TEST_F(OutputResponseTest, shouldMatchTheComplexSumOfTheChosenOutputs) {
  Compute(ThreeWaySide());
  // Low and mid, mid and high, the whole side, a way fed by the other input, every output.
  for (const char* chosen : {"000101", "010100", "010101", "110001", "111111", "000001"})
    ExpectSumMatches(OutputSet(chosen));
}

// Two ways at one corner, known by hand: Linkwitz-Riley 4th order low and high pass add up flat
// in phase; Butterworth 2nd order ones are half a turn apart there, a deep notch, and +3 dB
// with one way inverted; Linkwitz-Riley 2nd order ones add up flat with one way inverted.
TEST_F(OutputResponseTest, shouldShowTheCrossoverDipOrBumpOfTwoWays) {
  const struct {
    int type;
    bool invertHigh;
    double below, above;  // the sum at the corner lies between these
  } cases[] = {{7, false, -0.05, 0.05},
               {2, false, -200.0, -60.0},
               {2, true, 2.95, 3.07},
               {3, true, -0.05, 0.05},
               {3, false, -200.0, -60.0}};
  for (const auto& c : cases) {
    ResponseSettings settings;
    settings.crossovers[1] = {2500, c.type};  // Out 1 low-pass
    settings.crossovers[4] = {2500, c.type};  // Out 3 high-pass
    settings.channels[4].polarityInverted = c.invertHigh;
    Compute(settings);
    const auto sum = std::make_unique<ResponseCurves>();
    ComputeAcousticSum(*tables_, settings_, OutputSet("000101"), *sum);
    const float atCorner = sum->magnitude.AtHz(2500);
    EXPECT_GE(atCorner, c.below) << "type " << c.type << ", inverted " << c.invertHigh;
    EXPECT_LE(atCorner, c.above) << "type " << c.type << ", inverted " << c.invertHigh;
    EXPECT_NEAR(sum->magnitude.AtHz(100), 0.0, 0.05) << "the low way alone far below the corner";
  }
}

TEST_F(OutputResponseTest, shouldGiveSilenceForNothingOrAWayThatCancelsItself) {
  ResponseSettings settings;
  settings.channels[3].polarityInverted = true;  // Out 2 is Out 1 upside down
  Compute(settings);
  const auto sum = std::make_unique<ResponseCurves>();
  ComputeAcousticSum(*tables_, settings_, OutputSet("000011"), *sum);
  EXPECT_EQ(sum->magnitude.AtHz(1009), kSilenceDb);
  EXPECT_EQ(sum->phase.AtHz(1009), 0.0f);
  ComputeAcousticSum(*tables_, settings_, OutputSet(), *sum);
  EXPECT_EQ(sum->magnitude.AtHz(20000), kSilenceDb);
  const auto whole = std::make_unique<ResponseCurves>();
  for (int channel : {0, 1, 8})
    EXPECT_THROW(ComputeWholeOutput(*tables_, settings_, channel, *whole), IndexError) << channel;
}

}  // namespace
}  // namespace talvex::graph
