#include "presets/system_type.h"

#include <algorithm>

#include "params/default_image.h"
#include "presets/conversation.h"

namespace talvex::presets {

bool TypeChangeNeeded(const params::DeviceParams& device, int systemType) {
  CheckIndex(systemType, params::kSystemTypeCount - 1, "system type");
  return device.image[params::kSystemTypeByte] != systemType;
}

protocol::Command SystemTypeCommand(int systemType) {
  CheckIndex(systemType, params::kSystemTypeCount - 1, "system type");
  protocol::Command command;
  command.code = protocol::code::kSetSystemType;
  command.p(1) = static_cast<std::uint8_t>(systemType);
  return command;
}

protocol::Command BeginTypeChange(params::DeviceParams& device, int systemType) {
  const protocol::Command command = SystemTypeCommand(systemType);
  device.image[params::kSystemTypeByte] = static_cast<std::uint8_t>(systemType);
  return command;
}

TypeSend SendSystemType(link::Link& link, int deviceId, const protocol::Command& command) {
  const RaisedFlag showProgress(link.Flags().ShowSendProgress);
  switch (link.SendCommand(deviceId, command)) {
    case link::SendResult::Replied:
      return TypeSend::Switched;
    case link::SendResult::Skipped:
      return TypeSend::Skipped;
    default:
      return TypeSend::Failed;
  }
}

PresetTransfer ApplyFactoryImage(params::DeviceParams& device, PresetState& presetState,
                                 PresetView& view, params::DecimalMark mark) {
  const int systemType = device.image[params::kSystemTypeByte];
  CheckIndex(systemType, params::kSystemTypeCount - 1, "system type");
  const params::PresetImage& factory = params::DefaultImage[static_cast<std::size_t>(systemType)];
  std::copy(factory.begin(), factory.end(), device.image.begin());
  presetState = {};
  return ApplyPreset(device, view, TransferFlags::SystemTypeChange(), mark);
}

}  // namespace talvex::presets
