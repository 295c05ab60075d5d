// The in-process simulated line: bytes written reach the simulated processors at once, and
// their replies arrive at the times the simulator gives, read from the link's clock. With a
// virtual clock the wait costs nothing; with the steady clock it is slept for real.
#pragma once

#include <deque>
#include <memory>

#include "link/transport.h"
#include "sim/sim_line.h"

namespace talvex::link {

class SimTransport final : public Transport {
 public:
  SimTransport(std::shared_ptr<sim::SimLine> line, Clock& clock, std::string name);

  std::string Name() const override { return name_; }
  std::string Open() override;
  void Close() override;
  bool IsOpen() const override { return open_; }
  bool Write(std::span<const std::uint8_t> bytes) override;
  std::size_t WaitForBytes(std::size_t count, Clock::TimePoint deadline) override;
  std::size_t Read(std::span<std::uint8_t> out) override;
  void DiscardInput() override;

  sim::SimLine& Simulator() { return *line_; }

 private:
  struct InFlight {
    Clock::TimePoint at;
    std::uint8_t value;
  };
  void Deliver();

  std::shared_ptr<sim::SimLine> line_;
  Clock& clock_;
  std::string name_;
  bool open_ = false;
  std::deque<InFlight> inFlight_;  // ordered by arrival time
  std::deque<std::uint8_t> received_;
};

}  // namespace talvex::link
