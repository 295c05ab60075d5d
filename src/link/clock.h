// Where the link reads the time and how it pauses. Tests and the in-process simulator use a
// virtual clock, so five 5-second retransmissions take microseconds, not 25 seconds.
#pragma once

#include <chrono>

namespace talvex::link {

class Clock {
 public:
  using TimePoint = std::chrono::steady_clock::time_point;
  using Duration = std::chrono::steady_clock::duration;

  virtual ~Clock() = default;
  virtual TimePoint Now() const = 0;
  // Returns once Now() >= t. Never spins: a real clock sleeps, a virtual one jumps.
  virtual void SleepUntil(TimePoint t) = 0;
  void SleepFor(Duration d) { SleepUntil(Now() + d); }
};

// The monotonic clock of the machine.
class SteadyClock final : public Clock {
 public:
  TimePoint Now() const override;
  void SleepUntil(TimePoint t) override;
};

// Time that only moves when someone sleeps or advances it.
class VirtualClock final : public Clock {
 public:
  TimePoint Now() const override { return now_; }
  void SleepUntil(TimePoint t) override;
  void Advance(Duration d) { now_ += d; }

 private:
  TimePoint now_{};
};

}  // namespace talvex::link
