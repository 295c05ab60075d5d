#include "protocol/meter.h"

#include <algorithm>
#include <cmath>

namespace talvex::protocol::meter {

std::uint8_t ByteOfLevel(double dbfs) {
  const double steps = std::round((dbfs - kFloorDbfs) * kStepsPerDb);
  if (!(steps > kSilent)) return kSilent;  // NaN (no signal at all) reads as silence
  return static_cast<std::uint8_t>(std::min(steps, static_cast<double>(kFullScale)));
}

double LevelOfByte(std::uint8_t byte) {
  return kFloorDbfs + static_cast<double>(std::min(byte, kFullScale)) / kStepsPerDb;
}

}  // namespace talvex::protocol::meter
