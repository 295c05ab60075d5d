#include "cli/connection.h"

#include "presets/live_image.h"

namespace talvex::cli {

params::DeviceParams ReadLive(CliContext& context) {
  params::ParamImage record = params::DefaultRecord(0);
  if (presets::ReadLiveImage(context.Link(), context.Options().id, record) !=
      presets::LiveRead::Received)
    throw CommandFailed("the device's image could not be read", context.LinkFailedOnce());
  return params::DeviceParams::FromImage(record);
}

presets::DeviceState ReadState(CliContext& context, params::DeviceParams& device) {
  presets::DeviceState state;
  if (presets::ReadDeviceState(context.Link(), context.Options().id, device, state) !=
      presets::StateRead::Received)
    throw CommandFailed("the device's state could not be read", context.LinkFailedOnce());
  return state;
}

}  // namespace talvex::cli
