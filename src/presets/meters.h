// The level meters of a connected device: one command-18 exchange, answered with the eight
// channels' levels. Cheap and self-contained, so that the link worker can run it between edits;
// it touches nothing but the link it is given.
#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "link/link.h"
#include "params/image_layout.h"

namespace talvex::presets {

struct MeterLevels {
  // Per ChannelIndex (In A, In B, Out 1 .. Out 6): half-dB steps above -60 dBFS, 0 .. 120
  // (protocol/meter.h). A byte above 120 is taken as 120.
  std::array<std::uint8_t, params::kChannelCount> steps{};

  // The channel's level in dBFS, -60 (silent or below) .. 0. IndexError outside 0..7.
  double Dbfs(int channel) const;
};

// Command 18 with p1..p8 = 0.
protocol::Command MeterPollCommand();

// Asks the device for its meters. Nothing when the link skips the exchange (demo mode, sending
// suspended, port not open), when the device does not answer (a final failure is reported by
// the link as for every command), or when the reply is not a meter reply of this device.
std::optional<MeterLevels> ReadMeters(link::Link& link, int deviceId);

}  // namespace talvex::presets
