// A byte pipe to the processors: a serial port, a serial-over-TCP gateway, or the in-process
// simulator. The link frames, waits and retries; a transport only moves bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "link/clock.h"

namespace talvex::link {

class Transport {
 public:
  virtual ~Transport() = default;

  // How the user named the line ("/dev/ttyUSB0", "tcp:host:2000", "sim:0,1,2").
  virtual std::string Name() const = 0;

  // Opens the line. Returns an empty text on success, otherwise why it failed.
  virtual std::string Open() = 0;
  virtual void Close() = 0;
  // False once the line is closed, including after it failed (adapter unplugged, gateway gone).
  virtual bool IsOpen() const = 0;

  // Sends all bytes. False when the line refused them.
  virtual bool Write(std::span<const std::uint8_t> bytes) = 0;
  // Waits until at least `count` received bytes are buffered or `deadline` passes, without
  // spinning; returns the number buffered. Returns early only when the line fails.
  virtual std::size_t WaitForBytes(std::size_t count, Clock::TimePoint deadline) = 0;
  // Moves up to out.size() buffered bytes into `out`; returns how many.
  virtual std::size_t Read(std::span<std::uint8_t> out) = 0;
  // Drops everything received and not yet read.
  virtual void DiscardInput() = 0;
};

}  // namespace talvex::link
