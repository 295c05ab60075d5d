// How a simulated processor takes a parameter command: it writes the bytes into its live
// image at the offsets the parameter model uses, so that a value set on the device reads back
// the same through a block read. Settings the 304-byte image does not hold are kept beside it.
#pragma once

#include <array>
#include <cstdint>

#include "params/image_layout.h"
#include "protocol/frame.h"

namespace talvex::sim {

struct DeviceState {
  params::PresetImage live{};
  std::array<std::uint8_t, params::kChannelCount> mute{};
  std::array<std::uint8_t, params::kInputCount> inputPolarity{};
  std::uint8_t inputSource = 0;  // 0 analogue, 1 S/PDIF
  std::uint8_t deviceWide = 0;   // the byte that rides with every delay command
  std::uint8_t outputLink = 0;   // command 34
};

// True for the codes ApplyCommand handles (1, 2, 3, 4, 5, 7, 8, 9, 13, 14, 29, 34, 35).
bool IsParameterCode(std::uint8_t code);

// Applies one parameter command. A command naming a channel, band or filter the device does
// not have changes nothing (the device still acknowledges it, as it does every frame).
void ApplyCommand(DeviceState& state, const protocol::Command& command);

}  // namespace talvex::sim
