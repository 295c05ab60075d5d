// The factory images of the three system types, as the device holds them after a type change.
#pragma once

#include <array>
#include <string_view>

#include "params/image_layout.h"

namespace talvex::params {

namespace detail {

struct SystemDefaults {
  std::array<std::uint8_t, 6> sources;  // Out 1..6: 0 = In A, 1 = In B
  std::array<std::string_view, 6> names;
  std::uint8_t outputPlus3;
};

inline constexpr std::array<SystemDefaults, kSystemTypeCount> kSystemDefaults = {{
    {{0, 1, 0, 1, 0, 1}, {" Low-A", " Low-B", "High-A", "High-B", "Sub-A ", "Sub-B "}, 0},
    {{0, 1, 0, 1, 0, 1}, {" Low-A", " Low-B", " Mid-A", " Mid-B", "High-A", "High-B"}, 4},
    {{0, 0, 0, 0, 0, 0}, {"Near-1", "Near-2", " Mid-1", " Mid-2", " Far-1", " Far-2"}, 4},
}};

constexpr void PutBands(PresetImage& image, std::size_t first, int count) {
  for (int band = 0; band < count; ++band)
    for (std::size_t i = 0; i < 3; ++i)
      image[first + 3 * static_cast<std::size_t>(band) + i] = kDefaultBand[i];
}

constexpr PresetImage BuildDefaultImage(int systemType) {
  const SystemDefaults& type = kSystemDefaults[static_cast<std::size_t>(systemType)];
  PresetImage image{};
  for (std::size_t input = 0; input < kInputCount; ++input) {
    const std::size_t block = kInputBlockSize * input;
    image[block + 1] = 150;  // level 0 dB (two bytes, high byte 0)
    PutBands(image, block + 5, kInputBands);
  }
  for (int k = 1; k <= kOutputCount; ++k) {
    const std::size_t block = OutputBlock(k);
    image[block + 0] = type.sources[static_cast<std::size_t>(k - 1)];
    image[block + 1] = 120;  // level 0 dB
    image[block + 2] = 19;
    image[block + 3] = type.outputPlus3;
    image[block + 4] = 150;   // +20 dBu
    image[block + 11] = 240;  // low-pass at 20000 Hz
    PutBands(image, block + 13, kOutputBands);
    const std::string_view name = type.names[static_cast<std::size_t>(k - 1)];
    for (std::size_t i = 0; i < kNameLength; ++i)
      image[block + 36 + i] = static_cast<std::uint8_t>(name[i]);
  }
  image[297] = 252;
  // Byte 298 names the system type. The factory image of each type carries its own index, so
  // that a device switched to "6 WAY XOVER" reports 2 there like the other two types do.
  image[kSystemTypeByte] = static_cast<std::uint8_t>(systemType);
  return image;
}

}  // namespace detail

// DefaultImage[t] is the factory preset of system type t (index into SystemTypeNames).
inline constexpr std::array<PresetImage, kSystemTypeCount> DefaultImage = {
    detail::BuildDefaultImage(0), detail::BuildDefaultImage(1), detail::BuildDefaultImage(2)};

}  // namespace talvex::params
