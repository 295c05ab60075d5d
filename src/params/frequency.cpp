#include "params/frequency.h"

#include "params/value_tables.h"
#include "protocol/frame.h"

namespace talvex::params {

namespace {

// Typed frequencies are decimal numbers; two distances that are equal in decimal may differ
// in the last bits of a double. Anything closer than this counts as a tie.
constexpr double kTieTolerance = 1e-9;

}  // namespace

std::uint8_t FrequencyToByte(double hz) {
  for (std::size_t i = 0; i < kFrequencyCount; ++i) {
    const double entry = FrequencyTable[i];
    if (entry < hz) continue;
    if (entry == hz || i == 0) return static_cast<std::uint8_t>(i);
    const double below = hz - FrequencyTable[i - 1];
    const double above = entry - hz;
    return static_cast<std::uint8_t>(below <= above + kTieTolerance ? i - 1 : i);
  }
  return 0;
}

double SnapFrequency(double hz) {
  return FrequencyTable[FrequencyToByte(hz)];
}

double ByteToFrequency(int byte) {
  CheckIndex(byte, kFrequencyCount - 1, "frequency byte");
  return FrequencyTable[static_cast<std::size_t>(byte)];
}

}  // namespace talvex::params
