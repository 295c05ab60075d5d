// The device's crossover system type ("System Setup"): one of the three SystemTypeNames, byte
// 298 of the image. Changing it makes the device load the factory preset of the new type, and
// the editor follows with the same factory image, sending nothing.
//
// Split for the desktop program: BeginTypeChange and ApplyFactoryImage run on the UI thread,
// SendSystemType as a job on the link worker thread (its wait may last 10 s per transmission).
#pragma once

#include <string>
#include <string_view>

#include "link/link.h"
#include "params/device_params.h"
#include "presets/preset_load.h"
#include "presets/preset_transfer.h"

namespace talvex::presets {

inline constexpr std::string_view kSystemSetupTitle = "System Setup";
inline constexpr std::string_view kChangeTypeText = "Change Xover Type, are you sure ? ";

// False when `systemType` is the type in force (byte 298): then nothing is asked, changed or
// sent. IndexError for a type above 2.
bool TypeChangeNeeded(const params::DeviceParams& device, int systemType);

// Command 21: p1 = the new type 0..2 (the index into SystemTypeNames), p2..p8 = 0. The device
// switches its crossovers and loads the type's factory preset itself.
protocol::Command SystemTypeCommand(int systemType);

// The model half before sending (UI thread), once the user answered kChangeTypeText ("System
// Setup") with Yes: byte 298 takes the new type, which it keeps even if the device then does
// not answer. Returns command 21.
protocol::Command BeginTypeChange(params::DeviceParams& device, int systemType);

enum class TypeSend {
  Switched,  // the device acknowledged command 21
  Skipped,   // the link sends nothing (demo mode ...): the editor changes type on its own
  Failed,    // no acknowledgement (reported by the link): no factory image is loaded
};

// The exchange (link worker thread): command 21 with the link's send progress shown; the
// link waits up to 10 s per transmission for this code.
TypeSend SendSystemType(link::Link& link, int deviceId, const protocol::Command& command);

// The model half after a Switched or Skipped send (UI thread): the factory image of the new
// type replaces image bytes 0..303, the two preset-state flags are cleared, and the whole-
// preset transfer runs with TransferFlags::SystemTypeChange() (controls and graph only; the
// returned transfer sends nothing, the device switched by itself).
PresetTransfer ApplyFactoryImage(params::DeviceParams& device, PresetState& presetState,
                                 PresetView& view,
                                 params::DecimalMark mark = params::DecimalMark::Point);

}  // namespace talvex::presets
