// The limiter of command 35. The channel's limiter byte (input +21, output +35) holds its level,
// an index into LimiterLevelTexts; inputs offer the first kInputLimiterLevels levels, outputs
// all of them. The command carries nothing but one byte (p1), so the frame names the channel
// in that byte's high nibble and the level in its low nibble; the device keeps the level at
// the channel's offset. The image and the device therefore hold the same byte whatever was
// sent, and a factory byte 0 reads as level 0 (" Clip") on every channel.
#pragma once

#include <cstdint>

#include "params/image_layout.h"
#include "params/value_tables.h"
#include "protocol/frame.h"

namespace talvex::params {

constexpr int LimiterLevelCount(int channel) {
  return channel < kInputCount ? kInputLimiterLevels : kOutputLimiterLevels;
}

// The level of an image byte; images written before the level stood alone carried the channel
// in the high nibble, which is ignored.
constexpr int LimiterLevelOfByte(std::uint8_t byte) {
  return byte & 0x0F;
}

// p1 of command 35 and the channel and level it names.
constexpr int LimiterChannelOfFrameByte(std::uint8_t p1) {
  return p1 >> 4;
}
constexpr int LimiterLevelOfFrameByte(std::uint8_t p1) {
  return p1 & 0x0F;
}
// IndexError for a channel above 7 or a level the channel does not offer.
inline std::uint8_t LimiterFrameByte(int channel, int level) {
  CheckIndex(channel, kChannelCount - 1, "channel");
  CheckIndex(level, LimiterLevelCount(channel) - 1, "limiter level");
  return static_cast<std::uint8_t>(channel << 4 | level);
}

}  // namespace talvex::params
