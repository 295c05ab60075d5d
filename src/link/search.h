// The search of a line for devices: each ID is polled, and polled once more after a short
// pause when it stays silent, so that a slow device is still found.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "link/link.h"

namespace talvex::link {

inline constexpr Clock::Duration kRepollPause = 10ms;

// Command 0 with the polled ID in parameter 8.
protocol::Command PollCommand(int deviceId);

// Poll, and if silent pause 10 ms and poll once more.
bool PollTwice(Link& link, int deviceId);

// The search window's text while `deviceId` is polled: Int(ID / 32 * 1000) / 10 as plain
// text, then " %" ("0 %", "3.1 %", ... "100 %").
std::string SearchProgressText(int deviceId);

// Polls each of `ids` in order; returns those that answered, in that order. `progress` gets the
// text above before each poll.
std::vector<int> SearchDevices(Link& link, const std::vector<int>& ids,
                               const std::function<void(const std::string&)>& progress = {});

// IDs 0..32.
std::vector<int> AllDeviceIds();

}  // namespace talvex::link
