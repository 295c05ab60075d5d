#include "graph/response_tables.h"

#include <cfenv>
#include <cmath>
#include <string>

#include "protocol/frame.h"

namespace talvex::graph {

namespace {

constexpr int kMaxBand = kBandCount - 1;
constexpr int kMaxSlot = kCrossoverFilterCount - 1;
constexpr int kMaxChannel = kChannelCount - 1;

// The exceptions that count as a floating-point fault; underflow and inexact do not.
constexpr int kFaultFlags = FE_OVERFLOW | FE_DIVBYZERO | FE_INVALID;

FloatingPointFault Fault(const char* element, int index, const std::string& where) {
  return FloatingPointFault("floating-point fault in the response of " + std::string(element) +
                            " " + std::to_string(index) + where);
}

void ThrowIfFaulted(const char* element, int index) {
  if (std::fetestexcept(kFaultFlags) != 0) throw Fault(element, index, "");
}

void ThrowUnlessFinite(double value, const char* element, int index) {
  if (!std::isfinite(value)) throw Fault(element, index, ": a setting is not a number");
}

}  // namespace

int ResponseSlotOfBox(int box) {
  CheckIndex(box, kMaxSlot, "crossover frequency box");
  return box ^ 1;
}

int BoxOfResponseSlot(int slot) {
  CheckIndex(slot, kMaxSlot, "crossover filter slot");
  return slot ^ 1;
}

void ResponseTables::ComputeEqBandResponse(const ResponseSettings& settings, int band) {
  FillBand(settings, band);
  ComputeChannelSums(settings, ChannelOfBand(band));
}

void ResponseTables::ComputeCrossoverResponse(const ResponseSettings& settings, int filterSlot) {
  FillCrossover(settings, filterSlot);
  ComputeChannelSums(settings, ChannelOfSlot(filterSlot));
}

void ResponseTables::ComputeChannelSums(const ResponseSettings& settings, int channel) {
  CheckIndex(channel, kMaxChannel, "channel");
  FillDelay(settings, channel);
  SumChannel(settings, channel);
}

void ResponseTables::ComputeAll(const ResponseSettings& settings) {
  for (int band = 0; band < kBandCount; ++band)
    FillBand(settings, band);
  for (int slot = 0; slot < kCrossoverFilterCount; ++slot)
    FillCrossover(settings, slot);
  for (int channel = 0; channel < kChannelCount; ++channel)
    ComputeChannelSums(settings, channel);
}

// Fills the scratch curves over the whole grid and copies them over when no fault flag went
// up. On a fault the walk is repeated from the same unwrap state straight into the tables,
// point by point with the same arithmetic, and stops at the first point that raises a flag,
// which keeps its old value; a walk that meets no fault stands (the vector loops' flags are then
// taken as spurious). The caller clears the flags before it sets up the pass.
template <typename Fill, typename Point>
void ResponseTables::RunPass(Curve& magnitude, Curve& phase, const char* element, int index,
                             Fill fill, Point point) {
  const PhaseUnwrapState start = unwrap_;
  fill(scratchMagnitude_, scratchPhase_);
  if (std::fetestexcept(kFaultFlags) == 0) {
    magnitude.Points() = scratchMagnitude_.Points();
    phase.Points() = scratchPhase_.Points();
    return;
  }
  unwrap_ = start;
  std::feclearexcept(kFaultFlags);
  for (int i = 0; i < kGridPointCount; ++i) {
    const float oldMagnitude = magnitude[i];
    const float oldPhase = phase[i];
    const PointResponse response = point(i, kGridFrequencies[static_cast<std::size_t>(i)]);
    magnitude[i] = response.magnitudeDb;
    phase[i] = response.phaseDeg;
    if (std::fetestexcept(kFaultFlags) != 0) {
      magnitude[i] = oldMagnitude;
      phase[i] = oldPhase;
      throw Fault(element, index, " at " + std::to_string(GridHz(i)) + " Hz");
    }
  }
}

void ResponseTables::FillBand(const ResponseSettings& settings, int band) {
  CheckIndex(band, kMaxBand, "band");
  const BandSettings& bandSettings = settings.bands[static_cast<std::size_t>(band)];
  ThrowUnlessFinite(bandSettings.gainDb, "band", band);
  ThrowUnlessFinite(bandSettings.frequencyHz, "band", band);
  std::feclearexcept(kFaultFlags);
  const EqBandModel model(bandSettings);
  ThrowIfFaulted("band", band);
  Curve& magnitude = bandMagnitude_[static_cast<std::size_t>(band)];
  Curve& phase = bandPhase_[static_cast<std::size_t>(band)];
  if (model.IsFlatBell()) {
    magnitude.Points().fill(0.0f);
    phase.Points().fill(0.0f);
    return;
  }
  unwrap_.shelfTurns = 0;
  RunPass(
      magnitude, phase, "band", band, [&](Curve& m, Curve& p) { model.Fill(m, p, unwrap_); },
      [&](int, float f) { return model.At(f, unwrap_); });
}

void ResponseTables::FillCrossover(const ResponseSettings& settings, int filterSlot) {
  const int box = BoxOfResponseSlot(filterSlot);
  const CrossoverSettings& filter = settings.crossovers[static_cast<std::size_t>(box)];
  ThrowUnlessFinite(filter.frequencyHz, "crossover filter", filterSlot);
  std::feclearexcept(kFaultFlags);
  const CrossoverModel model(IsHighPassSlot(filterSlot), filter);
  ThrowIfFaulted("crossover filter", filterSlot);
  unwrap_.sectionTurns = 0;
  RunPass(
      crossoverMagnitude_[static_cast<std::size_t>(filterSlot)],
      crossoverPhase_[static_cast<std::size_t>(filterSlot)], "crossover filter", filterSlot,
      [&](Curve& m, Curve& p) { model.Fill(m, p, unwrap_); },
      [&](int, float f) { return model.At(f, unwrap_); });
}

// A delay phase is at most about 3.3e11 degrees (2^31 samples at 20 kHz): it cannot fault.
void ResponseTables::FillDelay(const ResponseSettings& settings, int channel) {
  const std::int32_t samples = settings.channels[static_cast<std::size_t>(channel)].delaySamples;
  Curve& phase = delayPhase_[static_cast<std::size_t>(channel)];
  for (int i = 0; i < kGridPointCount; ++i)
    phase[i] = graph::DelayPhase(kGridFrequencies[static_cast<std::size_t>(i)], samples);
}

void ResponseTables::SumChannel(const ResponseSettings& settings, int channel) {
  // Sums in double, one element after the other, so the loops stay simple vector loops.
  std::array<double, kGridPointCount> magnitudeSum{};
  std::array<double, kGridPointCount> phaseSum{};
  const auto add = [&](const Curve& magnitude, const Curve& phase) {
    for (std::size_t i = 0; i < magnitudeSum.size(); ++i) {
      magnitudeSum[i] += magnitude.Points()[i];
      phaseSum[i] += phase.Points()[i];
    }
  };
  const int first = FirstBandOfChannel(channel);
  for (int band = first; band < first + BandsOf(channel); ++band)
    add(bandMagnitude_[static_cast<std::size_t>(band)], bandPhase_[static_cast<std::size_t>(band)]);
  if (channel >= 2) {
    const int lowPass = 2 * (channel - 2);
    for (int slot = lowPass; slot <= lowPass + 1; ++slot)
      add(crossoverMagnitude_[static_cast<std::size_t>(slot)],
          crossoverPhase_[static_cast<std::size_t>(slot)]);
  }
  const auto c = static_cast<std::size_t>(channel);
  const Curve& delay = delayPhase_[c];
  const bool inverted = settings.channels[c].polarityInverted;
  std::feclearexcept(kFaultFlags);
  const auto point = [&](int i, float) {
    const auto p = static_cast<std::size_t>(i);
    return PointResponse{static_cast<float>(magnitudeSum[p]),
                         ChannelPhasePoint(static_cast<float>(phaseSum[p] + delay[i]), inverted)};
  };
  const auto fill = [&](Curve& m, Curve& p) {
    for (int i = 0; i < kGridPointCount; ++i) {
      const PointResponse response = point(i, 0.0f);
      m[i] = response.magnitudeDb;
      p[i] = response.phaseDeg;
    }
  };
  RunPass(channelMagnitude_[c], channelPhase_[c], "channel", channel, fill, point);
}

const Curve& ResponseTables::BandMagnitude(int band) const {
  CheckIndex(band, kMaxBand, "band");
  return bandMagnitude_[static_cast<std::size_t>(band)];
}

const Curve& ResponseTables::BandPhase(int band) const {
  CheckIndex(band, kMaxBand, "band");
  return bandPhase_[static_cast<std::size_t>(band)];
}

const Curve& ResponseTables::CrossoverMagnitude(int filterSlot) const {
  CheckIndex(filterSlot, kMaxSlot, "crossover filter slot");
  return crossoverMagnitude_[static_cast<std::size_t>(filterSlot)];
}

const Curve& ResponseTables::CrossoverPhase(int filterSlot) const {
  CheckIndex(filterSlot, kMaxSlot, "crossover filter slot");
  return crossoverPhase_[static_cast<std::size_t>(filterSlot)];
}

const Curve& ResponseTables::DelayPhase(int channel) const {
  CheckIndex(channel, kMaxChannel, "channel");
  return delayPhase_[static_cast<std::size_t>(channel)];
}

const Curve& ResponseTables::ChannelMagnitude(int channel) const {
  CheckIndex(channel, kMaxChannel, "channel");
  return channelMagnitude_[static_cast<std::size_t>(channel)];
}

const Curve& ResponseTables::ChannelPhase(int channel) const {
  CheckIndex(channel, kMaxChannel, "channel");
  return channelPhase_[static_cast<std::size_t>(channel)];
}

}  // namespace talvex::graph
