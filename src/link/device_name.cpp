#include "link/device_name.h"

#include "protocol/memory_map.h"

namespace talvex::link {

using protocol::AddressedCommand;

std::string DeviceRowText(std::string_view name, int deviceId) {
  return std::string(name) + "  ID:" + std::to_string(deviceId);
}

std::string PadDeviceName(std::string_view text) {
  std::string name(text);
  if (name.size() < kDeviceNameLength) name.resize(kDeviceNameLength, ' ');
  return name;
}

std::optional<std::string> ReadDeviceName(Link& link, int deviceId) {
  std::string name;
  for (std::size_t k = 0; k < kDeviceNameLength; ++k) {
    const auto command =
        AddressedCommand(protocol::code::kMemoryRead, protocol::memory::kDeviceName + k);
    if (link.SendCommand(deviceId, command) != SendResult::Replied) return std::nullopt;
    name += static_cast<char>(link.RxBuffer()[8]);  // the device puts the addressed byte in p5
  }
  return name;
}

NameWrite WriteDeviceName(Link& link, int deviceId, std::string_view text) {
  const std::string name = PadDeviceName(text);
  for (std::size_t i = 0; i < kDeviceNameLength; ++i) {
    auto command =
        AddressedCommand(protocol::code::kMemoryWrite, protocol::memory::kDeviceName + i);
    command.p(5) = static_cast<std::uint8_t>(name[i]);
    switch (link.SendCommand(deviceId, command)) {
      case SendResult::Replied:
        break;
      case SendResult::Skipped:
        return NameWrite::Skipped;
      default:
        return NameWrite::Stopped;
    }
  }
  return NameWrite::Written;
}

}  // namespace talvex::link
