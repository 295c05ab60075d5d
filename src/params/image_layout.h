// Layout of a device's parameter image: 1155 bytes, of which 0..303 are the preset the device
// itself holds. Offsets are absolute image offsets, indexed by ChannelIndex (0 = In A, 1 = In B,
// 2..7 = Out 1..Out 6) unless said otherwise.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace talvex::params {

inline constexpr std::size_t kImageSize = 1155;
inline constexpr std::size_t kPresetSize = 304;  // bytes 0..303: what the device holds
inline constexpr int kChannelCount = 8;
inline constexpr int kInputCount = 2;
inline constexpr int kOutputCount = 6;
inline constexpr int kBandCount = 52;
inline constexpr int kInputBands = 5;
inline constexpr int kOutputBands = 7;
inline constexpr int kCrossoverCount = 12;  // two filters per output
inline constexpr int kSlotCount = 24;       // device preset slots
inline constexpr int kSystemTypeCount = 3;

using ParamImage = std::array<std::uint8_t, kImageSize>;
using PresetImage = std::array<std::uint8_t, kPresetSize>;

inline constexpr std::size_t kInputBlockSize = 22;
inline constexpr std::size_t kOutputBlockSize = 42;
inline constexpr std::size_t kFirstOutputBlock = 44;

// Start of output k's 42-byte block, k = 1..6.
constexpr std::size_t OutputBlock(int k) {
  return kFirstOutputBlock + kOutputBlockSize * static_cast<std::size_t>(k - 1);
}

// Inputs: block start (two level bytes, high then low). Outputs: block start + 1 (one level byte).
inline constexpr std::array<std::size_t, 8> ChannelBase = {0, 22, 45, 87, 129, 171, 213, 255};
// First of the channel's three delay bytes: inputs +2, outputs +5.
inline constexpr std::array<std::size_t, 8> DelayOffset = {2, 24, 49, 91, 133, 175, 217, 259};
// Per-channel byte sent with every EQ band: inputs +20, outputs +34.
inline constexpr std::array<std::size_t, 8> EqChannelByte = {20, 42, 78, 120, 162, 204, 246, 288};
// Outputs only (index = output 0..5): source byte, 0 = In A, 1 = In B.
inline constexpr std::array<std::size_t, 6> OutputSourceOffset = {44, 86, 128, 170, 212, 254};
// Crossover frequency bytes by frequency-box index n = 0..11: 2(k-1) high-pass (+9) and
// 2(k-1)+1 low-pass (+11) of Out k. The filter's second byte follows each one.
inline constexpr std::array<std::size_t, 12> CrossoverOffset = {53,  55,  95,  97,  137, 139,
                                                                179, 181, 221, 223, 263, 265};
// Output +2 (zero for inputs); the dBu level byte sits two further on (output +4).
inline constexpr std::array<std::size_t, 8> OutputPlus2 = {0, 0, 46, 88, 130, 172, 214, 256};
// Polarity byte of outputs (+8); zero for inputs, whose polarity lives in ParamValues only.
inline constexpr std::array<std::size_t, 8> PolarityOffset = {0, 0, 52, 94, 136, 178, 220, 262};
// Limiter byte of command 35: inputs +21, outputs +35 (factory 0 everywhere).
inline constexpr std::array<std::size_t, 8> LimiterOffset = {21, 43, 79, 121, 163, 205, 247, 289};
// Channel names. Only the output entries (+36, six characters) are image bytes; the input
// entries are kept as the device's tools have them and are never written.
inline constexpr std::array<std::size_t, 8> NameOffset = {72, 112, 80, 122, 164, 206, 248, 290};
inline constexpr std::size_t kNameLength = 6;

// First byte of each of the 52 EQ bands (frequency, width/type, gain): inputs first
// (5 bands each), then outputs (7 bands each).
inline constexpr std::array<std::size_t, kBandCount> EqBandStart = [] {
  std::array<std::size_t, kBandCount> starts{};
  std::size_t b = 0;
  for (std::size_t input = 0; input < 2; ++input)
    for (std::size_t band = 0; band < kInputBands; ++band)
      starts[b++] = kInputBlockSize * input + 5 + 3 * band;
  for (int k = 1; k <= kOutputCount; ++k)
    for (std::size_t band = 0; band < kOutputBands; ++band)
      starts[b++] = OutputBlock(k) + 13 + 3 * band;
  return starts;
}();

// Global band number of band `bandInChannel` of channel `channel`, and the way back.
// Throws IndexError for a channel above 7, a band beyond the channel's count or above 51.
int GlobalBand(int channel, int bandInChannel);
int ChannelOfBand(int band);
int BandInChannel(int band);
constexpr int BandsOf(int channel) {
  return channel < kInputCount ? kInputBands : kOutputBands;
}

// Bytes outside the channel blocks.
inline constexpr std::size_t kSystemTypeByte = 298;
inline constexpr std::size_t kChannelBitsByte = 299;  // one bit per channel: EQ bypassed
inline constexpr std::size_t kPresetNameByte = 305;   // 305..320, 16 characters
inline constexpr std::size_t kPresetNameLength = 16;
inline constexpr std::size_t kInputSourceByte = 321;
inline constexpr std::size_t kDeviceWideByte = 322;  // sent with every delay command
inline constexpr std::size_t kOptionByte = 323;      // device-wide option of command 17
inline constexpr std::size_t kLockByte = 327;
// The output link switch (command 34) as the device reported it when it was connected.
inline constexpr std::size_t kOutputLinkByte = 328;

// Factory defaults of an EQ band: frequency byte 136 (1000 Hz), width 9 ("0.30"), gain 30 (0 dB).
inline constexpr std::array<std::uint8_t, 3> kDefaultBand = {136, 9, 30};

}  // namespace talvex::params
