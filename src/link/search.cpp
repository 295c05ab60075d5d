#include "link/search.h"

namespace talvex::link {

protocol::Command PollCommand(int deviceId) {
  CheckIndex(deviceId, kMaxDeviceId, "device ID");
  protocol::Command command;
  command.code = protocol::code::kPoll;
  command.p(8) = static_cast<std::uint8_t>(deviceId);
  return command;
}

bool PollTwice(Link& link, int deviceId) {
  if (link.PollDevice(deviceId, PollCommand(deviceId))) return true;
  link.Time().SleepFor(kRepollPause);
  return link.PollDevice(deviceId, PollCommand(deviceId));
}

std::string SearchProgressText(int deviceId) {
  const int tenths = deviceId * 1000 / kMaxDeviceId;  // cut, not rounded
  std::string text = std::to_string(tenths / 10);
  if (tenths % 10 != 0) text += "." + std::to_string(tenths % 10);
  return text + " %";
}

std::vector<int> SearchDevices(Link& link, const std::vector<int>& ids,
                               const std::function<void(const std::string&)>& progress) {
  std::vector<int> found;
  for (int id : ids) {
    if (progress) progress(SearchProgressText(id));
    if (PollTwice(link, id)) found.push_back(id);
  }
  return found;
}

std::vector<int> AllDeviceIds() {
  std::vector<int> ids;
  for (int id = 0; id <= kMaxDeviceId; ++id)
    ids.push_back(id);
  return ids;
}

}  // namespace talvex::link
