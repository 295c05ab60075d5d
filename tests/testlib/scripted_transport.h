// A transport whose answers are written by the test: per write, silence or bytes after a delay,
// all on a virtual clock so that waits cost nothing.
#pragma once

#include <deque>
#include <functional>
#include <vector>

#include "link/clock.h"
#include "link/transport.h"
#include "protocol/frame.h"

namespace talvex::testing {

using Bytes = std::vector<std::uint8_t>;

struct Arrival {
  link::Clock::Duration after;  // counted from the write
  Bytes bytes;
};

class ScriptedTransport final : public link::Transport {
 public:
  explicit ScriptedTransport(link::VirtualClock& clock) : clock_(clock) {}

  // Answers the next write that has no answer scripted yet. Writes beyond the script meet silence.
  void Answer(Bytes bytes, link::Clock::Duration after = {});
  void Answer(std::vector<Arrival> arrivals);
  void StaySilent(int writes = 1);
  // Bytes that arrive at `after` from now, whatever is written.
  void Inject(Bytes bytes, link::Clock::Duration after = {});
  // Answers every unscripted write by echoing it back (a device that acknowledges everything).
  void EchoEverything(bool on = true) { echo_ = on; }
  void FailOpen(std::string why) { openError_ = std::move(why); }
  // The adapter is pulled: the line closes and refuses writes.
  void Unplug() { open_ = false; }

  const std::vector<Bytes>& Written() const { return written_; }
  // When each write happened, on the virtual clock.
  const std::vector<link::Clock::TimePoint>& WriteTimes() const { return writeTimes_; }
  std::size_t Buffered() const { return received_.size(); }

  std::string Name() const override { return "scripted"; }
  std::string Open() override;
  void Close() override { open_ = false; }
  bool IsOpen() const override { return open_; }
  bool Write(std::span<const std::uint8_t> bytes) override;
  std::size_t WaitForBytes(std::size_t count, link::Clock::TimePoint deadline) override;
  std::size_t Read(std::span<std::uint8_t> out) override;
  void DiscardInput() override;

 private:
  void Schedule(const std::vector<Arrival>& arrivals);
  void Deliver();

  link::VirtualClock& clock_;
  bool open_ = false;
  bool echo_ = false;
  std::string openError_;
  std::deque<std::vector<Arrival>> script_;
  std::vector<Bytes> written_;
  std::vector<link::Clock::TimePoint> writeTimes_;
  std::vector<std::pair<link::Clock::TimePoint, std::uint8_t>> inFlight_;
  std::deque<std::uint8_t> received_;
};

// A command from its code and parameter bytes p1..p8.
protocol::Command MakeCommand(std::uint8_t code, std::array<std::uint8_t, 8> params = {});

// A 13-byte reply frame for `deviceId` and `code` with the given parameter bytes.
Bytes ReplyFrame(int deviceId, std::uint8_t code, std::array<std::uint8_t, 8> params = {});

}  // namespace talvex::testing
