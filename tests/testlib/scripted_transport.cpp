#include "testlib/scripted_transport.h"

#include <algorithm>

namespace talvex::testing {

void ScriptedTransport::Answer(Bytes bytes, link::Clock::Duration after) {
  script_.push_back({{after, std::move(bytes)}});
}

void ScriptedTransport::Answer(std::vector<Arrival> arrivals) {
  script_.push_back(std::move(arrivals));
}

void ScriptedTransport::StaySilent(int writes) {
  for (int i = 0; i < writes; ++i)
    script_.push_back({});
}

void ScriptedTransport::Inject(Bytes bytes, link::Clock::Duration after) {
  Schedule({{after, std::move(bytes)}});
}

std::string ScriptedTransport::Open() {
  if (!openError_.empty()) return openError_;
  open_ = true;
  return {};
}

bool ScriptedTransport::Write(std::span<const std::uint8_t> bytes) {
  if (!open_) return false;
  written_.emplace_back(bytes.begin(), bytes.end());
  writeTimes_.push_back(clock_.Now());
  if (!script_.empty()) {
    const std::vector<Arrival> arrivals = std::move(script_.front());
    script_.pop_front();
    Schedule(arrivals);
  } else if (echo_) {
    Schedule({{{}, written_.back()}});
  }
  return true;
}

void ScriptedTransport::Schedule(const std::vector<Arrival>& arrivals) {
  for (const Arrival& arrival : arrivals)
    for (std::uint8_t byte : arrival.bytes)
      inFlight_.emplace_back(clock_.Now() + arrival.after, byte);
  std::stable_sort(inFlight_.begin(), inFlight_.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
}

void ScriptedTransport::Deliver() {
  const auto now = clock_.Now();
  auto due = inFlight_.begin();
  while (due != inFlight_.end() && due->first <= now)
    received_.push_back((due++)->second);
  inFlight_.erase(inFlight_.begin(), due);
}

std::size_t ScriptedTransport::WaitForBytes(std::size_t count, link::Clock::TimePoint deadline) {
  while (open_) {
    Deliver();
    if (received_.size() >= count || clock_.Now() >= deadline) break;
    const std::size_t missing = count - received_.size();
    auto wakeAt = deadline;
    if (inFlight_.size() >= missing) wakeAt = std::min(deadline, inFlight_[missing - 1].first);
    clock_.SleepUntil(wakeAt);
  }
  return received_.size();
}

std::size_t ScriptedTransport::Read(std::span<std::uint8_t> out) {
  Deliver();
  const std::size_t n = std::min(out.size(), received_.size());
  std::copy_n(received_.begin(), n, out.begin());
  received_.erase(received_.begin(), received_.begin() + static_cast<long>(n));
  return n;
}

void ScriptedTransport::DiscardInput() {
  Deliver();
  received_.clear();
}

protocol::Command MakeCommand(std::uint8_t code, std::array<std::uint8_t, 8> params) {
  protocol::Command command;
  command.code = code;
  command.params = params;
  return command;
}

Bytes ReplyFrame(int deviceId, std::uint8_t code, std::array<std::uint8_t, 8> params) {
  const protocol::Frame frame = protocol::BuildFrame(deviceId, MakeCommand(code, params));
  return {frame.begin(), frame.end()};
}

}  // namespace talvex::testing
