// What the device does to the signal on its whole way from an input to an output, and what
// several outputs give together in the air, on the response grid.
//
// - The whole output of Out k: its source input's equaliser, level, delay and polarity, then
//   the output's own equaliser, crossover filters, level, delay and polarity. The magnitude
//   holds both levels (unlike a channel's own curve); the phase is folded into -180..+180.
// - The acoustic sum of chosen outputs: their whole outputs added as complex pressures,
//   10^(dB/20) at the phase's angle, so two ways that are out of phase at their crossover dip
//   there and two in phase add up to +6 dB. Each way's loudspeaker is taken as flat and all at
//   the same distance from the listener: the program knows neither the drivers nor the room,
//   so the sum shows what the processor does across the crossover, nothing more.
#pragma once

#include <bitset>
#include <span>

#include "graph/curve.h"
#include "graph/response_tables.h"

namespace talvex::graph {

// A magnitude (dB) and a phase (degrees, folded) curve.
struct ResponseCurves {
  Curve magnitude;
  Curve phase;
};

// The magnitude of a sum whose parts cancel completely (a pressure of exactly zero has no
// decibel value); its phase is then 0.
inline constexpr float kSilenceDb = -200.0f;

// The outputs chosen for a sum: bit k is Out k+1 (ChannelIndex k + 2).
using OutputSet = std::bitset<kOutputCount>;

// The whole output of output `channel` (2..7) from the tables' channel curves, which must be
// up to date for the output and its source input. IndexError for a channel that is no output.
void ComputeWholeOutput(const ResponseTables& tables, const ResponseSettings& settings, int channel,
                        ResponseCurves& whole);

// The acoustic sum of whole outputs (any number; none gives silence at every point).
void ComputeAcousticSum(std::span<const ResponseCurves* const> wholeOutputs, ResponseCurves& sum);
// The same from the tables: the chosen outputs' whole outputs, then their sum.
void ComputeAcousticSum(const ResponseTables& tables, const ResponseSettings& settings,
                        OutputSet outputs, ResponseCurves& sum);

}  // namespace talvex::graph
