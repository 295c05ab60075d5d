#include "cli/connection.h"

#include "presets/live_image.h"

namespace talvex::cli {

params::ParamImage ReadLiveRecord(CliContext& context) {
  params::ParamImage record = params::DefaultRecord(0);
  switch (presets::ReadLiveImage(context.Link(), context.Options().id, record)) {
    case presets::LiveRead::Received:
      return record;
    case presets::LiveRead::Garbled:
      throw CommandFailed("the device's image came garbled (a byte no device keeps); try again");
    case presets::LiveRead::Skipped:
    case presets::LiveRead::Failed:
      break;
  }
  throw CommandFailed("the device's image could not be read", context.LinkFailedOnce());
}

params::DeviceParams ReadLive(CliContext& context) {
  return params::DeviceParams::FromImage(ReadLiveRecord(context));
}

presets::DeviceState ReadState(CliContext& context, params::DeviceParams& device) {
  presets::DeviceState state;
  if (presets::ReadDeviceState(context.Link(), context.Options().id, device, state) !=
      presets::StateRead::Received)
    throw CommandFailed("the device's state could not be read", context.LinkFailedOnce());
  return state;
}

}  // namespace talvex::cli
