#include "presets/meters.h"

#include <algorithm>

#include "protocol/meter.h"

namespace talvex::presets {

namespace {

constexpr std::size_t kDeviceIdByte = 2;
constexpr std::size_t kCodeByte = 3;
constexpr std::size_t kFirstLevelByte = 4;

}  // namespace

double MeterLevels::Dbfs(int channel) const {
  CheckIndex(channel, params::kChannelCount - 1, "channel");
  return protocol::meter::LevelOfByte(steps[static_cast<std::size_t>(channel)]);
}

protocol::Command MeterPollCommand() {
  protocol::Command command;
  command.code = protocol::code::kMeterPoll;
  return command;
}

std::optional<MeterLevels> ReadMeters(link::Link& link, int deviceId) {
  if (link.SendCommand(deviceId, MeterPollCommand()) != link::SendResult::Replied)
    return std::nullopt;
  const auto& reply = link.RxBuffer();
  // Nothing but the start byte of a reply is checked by the link: a frame that answers another
  // command or another device is line noise here, not levels.
  if (reply[kCodeByte] != protocol::code::kMeterPoll || reply[kDeviceIdByte] != deviceId)
    return std::nullopt;
  MeterLevels levels;
  for (std::size_t i = 0; i < levels.steps.size(); ++i)
    levels.steps[i] = std::min(reply[kFirstLevelByte + i], protocol::meter::kFullScale);
  return levels;
}

}  // namespace talvex::presets
