#include "link/clock.h"

#include <thread>

namespace talvex::link {

Clock::TimePoint SteadyClock::Now() const {
  return std::chrono::steady_clock::now();
}

void SteadyClock::SleepUntil(TimePoint t) {
  std::this_thread::sleep_until(t);
}

void VirtualClock::SleepUntil(TimePoint t) {
  if (t > now_) now_ = t;
}

}  // namespace talvex::link
