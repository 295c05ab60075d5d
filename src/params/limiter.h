// The limiter of command 35. The command carries nothing but the limiter byte (p1), so the
// byte itself tells the device which channel it is for: the high nibble is the ChannelIndex,
// the low nibble the level, an index into LimiterLevelTexts. Inputs offer the first
// kInputLimiterLevels levels, outputs all of them. The factory images hold 0 in every limiter
// byte, which reads as level 0 (" Clip"); the channel nibble is only written by a sender.
#pragma once

#include <cstdint>

#include "params/image_layout.h"
#include "params/value_tables.h"
#include "protocol/frame.h"

namespace talvex::params {

constexpr int LimiterLevelCount(int channel) {
  return channel < kInputCount ? kInputLimiterLevels : kOutputLimiterLevels;
}

constexpr int LimiterLevelOfByte(std::uint8_t byte) {
  return byte & 0x0F;
}

constexpr int LimiterChannelOfByte(std::uint8_t byte) {
  return byte >> 4;
}

// IndexError for a channel above 7 or a level the channel does not offer.
inline std::uint8_t LimiterByte(int channel, int level) {
  CheckIndex(channel, kChannelCount - 1, "channel");
  CheckIndex(level, LimiterLevelCount(channel) - 1, "limiter level");
  return static_cast<std::uint8_t>(channel << 4 | level);
}

}  // namespace talvex::params
