// One simulated TALVEX processor: its memory, live preset image and system type, answering
// every command code as the device does.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "params/image_layout.h"
#include "protocol/frame.h"
#include "protocol/memory_map.h"
#include "sim/apply_command.h"

namespace talvex::sim {

using Memory = std::array<std::uint8_t, protocol::memory::kSize>;

class SimDevice {
 public:
  explicit SimDevice(int id, int systemType = 0);

  int Id() const { return id_; }
  int SystemType() const { return systemType_; }

  // The device's current preset (what a block read with p1 = p2 = 255 returns).
  params::PresetImage& LiveImage() { return state_.live; }
  const params::PresetImage& LiveImage() const { return state_.live; }
  // The live image with the settings it does not hold (mutes, input source, ...).
  const DeviceState& State() const { return state_; }
  Memory& DeviceMemory() { return memory_; }
  const Memory& DeviceMemory() const { return memory_; }
  // The device's name at memory 368..383, blank-padded to 16 characters. A new simulated
  // device is named after its system type and ID ("SIM 2x2 00"), so that a list of simulated
  // devices is told apart; SetName({}) leaves 16 blanks, as a device leaves the factory.
  void SetName(const std::string& name);
  std::string Name() const;

  // Locked while the lock byte (memory 0x16) is not 0.
  bool Locked() const { return memory_[protocol::memory::kLock] != protocol::memory::kUnlocked; }

  // Acts on a frame addressed to this device and returns its reply: a 13-byte frame, a
  // 304-byte block, or nothing for the codes that are never acknowledged.
  std::vector<std::uint8_t> Handle(const protocol::Frame& request);

  // Frames handled so far, by command code.
  int FramesHandled(std::uint8_t code) const;
  int FramesHandled() const { return totalFrames_; }
  // The last frame handled of a code, as it came.
  std::optional<protocol::Frame> LastFrame(std::uint8_t commandCode) const;

 private:
  std::vector<std::uint8_t> Acknowledge(const protocol::Frame& request) const;
  std::vector<std::uint8_t> AnswerPoll(const protocol::Frame& request) const;
  std::vector<std::uint8_t> ReadBlock(const protocol::Command& command);
  bool Refuses(const protocol::Command& command) const;
  std::vector<std::uint8_t> ReadMemory(const protocol::Frame& request) const;
  std::vector<std::uint8_t> ReportState(const protocol::Frame& request) const;
  std::vector<std::uint8_t> AnswerMeters(const protocol::Frame& request) const;
  void WriteMemory(std::size_t address, std::uint8_t value);
  void SetSystemType(int systemType);

  int id_;
  int systemType_ = 0;
  DeviceState state_;
  Memory memory_{};
  std::map<std::uint8_t, int> framesByCode_;
  std::map<std::uint8_t, protocol::Frame> lastFrameByCode_;
  int totalFrames_ = 0;
};

}  // namespace talvex::sim
