// The response tables of one editor window: each band's and each crossover filter's magnitude
// and phase, each channel's delay phase, and the channel sums the graph draws. One object per
// window holds that window's tables and its unwrap state; about 1 MB, so create it on the heap
// (std::make_unique<ResponseTables>()).
//
// The channel sums, formed from the cached tables after every pass:
// - channel magnitude: the sum in dB of the channel's EQ bands and, for an output, its two
//   crossover filters. The channel level is not in it: the plot adds the level when it draws,
//   so a level change needs no recomputation, and `talvexctl response` prints the filters'
//   shape alone.
// - channel phase: the sum of the phases of every EQ band of the channel, of its two crossover
//   filters (outputs) and of its delay, minus 180 degrees when the polarity is inverted, folded
//   into -180..+180. An EQ pass and a crossover pass form this same sum, so the curve does not
//   depend on which kind of edit came last; with flat EQ it is exactly the crossover-and-delay
//   phase (a flat bell and a flat high shelf add 0 degrees).
#pragma once

#include <array>

#include "graph/curve.h"
#include "graph/response_math.h"
#include "graph/response_settings.h"

namespace talvex::graph {

class ResponseTables {
 public:
  // One EQ band over the whole grid (the shelf counter starts from 0), then its channel's delay
  // phase and sums. IndexError for a band outside 0..51 or a bad width or gain step;
  // FloatingPointFault on a fault (see response_math.h).
  void ComputeEqBandResponse(const ResponseSettings& settings, int band);
  // One crossover filter by response slot (0..11; 2k low-pass, 2k+1 high-pass of output k),
  // read from frequency box BoxOfResponseSlot(slot), then its output's delay phase and sums.
  // The section counter is reset to 0 at the start of the pass: each filter's phase starts
  // unwrapped from 10 Hz whatever filter was computed before it.
  void ComputeCrossoverResponse(const ResponseSettings& settings, int filterSlot);
  // The delay phase and the channel sums alone: after a delay or polarity edit.
  void ComputeChannelSums(const ResponseSettings& settings, int channel);
  // Every band, every crossover filter and every channel: an editor opening, a preset applied.
  void ComputeAll(const ResponseSettings& settings);

  const Curve& BandMagnitude(int band) const;
  const Curve& BandPhase(int band) const;
  const Curve& CrossoverMagnitude(int filterSlot) const;
  const Curve& CrossoverPhase(int filterSlot) const;
  const Curve& DelayPhase(int channel) const;
  const Curve& ChannelMagnitude(int channel) const;  // without the level
  const Curve& ChannelPhase(int channel) const;      // wrapped, polarity applied

  const PhaseUnwrapState& UnwrapState() const { return unwrap_; }

 private:
  template <typename Fill, typename Point>
  void RunPass(Curve& magnitude, Curve& phase, const char* element, int index, Fill fill,
               Point point);
  void FillBand(const ResponseSettings& settings, int band);
  void FillCrossover(const ResponseSettings& settings, int filterSlot);
  void FillDelay(const ResponseSettings& settings, int channel);
  void SumChannel(const ResponseSettings& settings, int channel);

  std::array<Curve, kBandCount> bandMagnitude_;
  std::array<Curve, kBandCount> bandPhase_;
  std::array<Curve, kCrossoverFilterCount> crossoverMagnitude_;
  std::array<Curve, kCrossoverFilterCount> crossoverPhase_;
  std::array<Curve, kChannelCount> delayPhase_;
  std::array<Curve, kChannelCount> channelMagnitude_;
  std::array<Curve, kChannelCount> channelPhase_;
  PhaseUnwrapState unwrap_;
  // A pass is written here first and copied when it raised no fault.
  Curve scratchMagnitude_;
  Curve scratchPhase_;
};

}  // namespace talvex::graph
