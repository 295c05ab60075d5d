// A serial line with simulated processors on it: takes the bytes the program writes, finds the
// frames in them, lets the addressed device answer, and says when each reply byte arrives.
#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <random>
#include <span>
#include <vector>

#include "sim/fault_plan.h"
#include "sim/sim_device.h"

namespace talvex::sim {

using Duration = std::chrono::nanoseconds;

// One byte of a reply and when it arrives, counted from the moment the request was written.
struct ScheduledByte {
  Duration at;
  std::uint8_t value;
};

// 10 bits a byte (start, 8 data, stop) at 9600 baud.
inline constexpr Duration kByteTimeAt9600{1'041'667};

class SimLine {
 public:
  explicit SimLine(const std::vector<int>& deviceIds, int systemType = 0);

  bool HasDevice(int id) const { return devices_.contains(id); }
  SimDevice& Device(int id);
  const SimDevice& Device(int id) const;
  std::vector<int> DeviceIds() const;

  FaultPlan& Faults(int id);

  // Pace the line at 9600 baud: a reply starts only after the request has crossed the line
  // and then takes one byte time per byte.
  void SetPaced(bool paced) { paced_ = paced; }
  bool Paced() const { return paced_; }

  // Bytes written to the line. Returns the answers of the devices, in arrival order.
  std::vector<ScheduledByte> Receive(std::span<const std::uint8_t> bytes);

  // Frames seen on the line whose envelope was broken (counted, then ignored).
  int MalformedFrames() const { return malformedFrames_; }

 private:
  struct Station {
    explicit Station(int id, int systemType) : device(id, systemType) {}
    SimDevice device;
    FaultPlan faults;
    std::mt19937 random{1};
    std::uint32_t seededWith = 1;
    int pollsSeen = 0;
  };

  void Dispatch(const protocol::Frame& frame, std::vector<ScheduledByte>& out);
  bool Ignores(Station& station, const protocol::Frame& frame);
  void Disturb(Station& station, std::vector<std::uint8_t>& reply, Duration& delay);
  void Schedule(const std::vector<std::uint8_t>& reply, Duration delay,
                std::vector<ScheduledByte>& out) const;
  static bool Chance(Station& station, double rate);

  std::map<int, std::unique_ptr<Station>> devices_;
  std::vector<std::uint8_t> pending_;
  bool paced_ = false;
  int malformedFrames_ = 0;
};

}  // namespace talvex::sim
