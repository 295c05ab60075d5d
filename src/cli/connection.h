// Connecting a device as the editor does before it works on it: its live image, then its state.
#pragma once

#include "cli/cli_context.h"
#include "params/device_params.h"
#include "presets/device_state.h"

namespace talvex::cli {

// Bytes 0..303 the device's live image, the rest a default record. CommandFailed when the read
// fails or the block came garbled.
params::ParamImage ReadLiveRecord(CliContext& context);

// The device's record as far as a block read tells it: bytes 0..303 are the device's live
// image, the rest a default record. CommandFailed when the read fails.
params::DeviceParams ReadLive(CliContext& context);

// The state read into `device` (bytes 305..328) and the returned state. CommandFailed when it
// fails.
presets::DeviceState ReadState(CliContext& context, params::DeviceParams& device);

}  // namespace talvex::cli
