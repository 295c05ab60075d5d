#include "link/sim_transport.h"

#include <algorithm>

namespace talvex::link {

SimTransport::SimTransport(std::shared_ptr<sim::SimLine> line, Clock& clock, std::string name)
    : line_(std::move(line)), clock_(clock), name_(std::move(name)) {}

std::string SimTransport::Open() {
  open_ = true;
  return {};
}

void SimTransport::Close() {
  open_ = false;
  inFlight_.clear();
  received_.clear();
}

bool SimTransport::Write(std::span<const std::uint8_t> bytes) {
  if (!open_) return false;
  const Clock::TimePoint now = clock_.Now();
  for (const sim::ScheduledByte& byte : line_->Receive(bytes)) {
    const InFlight item{now + std::chrono::duration_cast<Clock::Duration>(byte.at), byte.value};
    // Replies to one write come sorted; a later write's bytes may overtake nothing earlier.
    const auto at =
        std::upper_bound(inFlight_.begin(), inFlight_.end(), item.at,
                         [](Clock::TimePoint t, const InFlight& f) { return t < f.at; });
    inFlight_.insert(at, item);
  }
  return true;
}

void SimTransport::Deliver() {
  const Clock::TimePoint now = clock_.Now();
  while (!inFlight_.empty() && inFlight_.front().at <= now) {
    received_.push_back(inFlight_.front().value);
    inFlight_.pop_front();
  }
}

std::size_t SimTransport::WaitForBytes(std::size_t count, Clock::TimePoint deadline) {
  while (open_) {
    Deliver();
    if (received_.size() >= count || clock_.Now() >= deadline) break;
    // Sleep until the byte that completes `count` is due, or to the deadline if it never comes.
    const std::size_t missing = count - received_.size();
    Clock::TimePoint wakeAt = deadline;
    if (inFlight_.size() >= missing) wakeAt = std::min(deadline, inFlight_[missing - 1].at);
    clock_.SleepUntil(wakeAt);
  }
  return received_.size();
}

std::size_t SimTransport::Read(std::span<std::uint8_t> out) {
  Deliver();
  const std::size_t n = std::min(out.size(), received_.size());
  std::copy_n(received_.begin(), n, out.begin());
  received_.erase(received_.begin(), received_.begin() + static_cast<long>(n));
  return n;
}

void SimTransport::DiscardInput() {
  Deliver();
  received_.clear();
}

}  // namespace talvex::link
