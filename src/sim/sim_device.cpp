#include "sim/sim_device.h"

#include <algorithm>

#include "params/default_image.h"

namespace talvex::sim {

namespace mem = protocol::memory;
namespace code = protocol::code;

namespace {

std::size_t AddressOf(const protocol::Command& command) {
  return static_cast<std::size_t>(command.p(1)) << 8 | command.p(2);
}

}  // namespace

SimDevice::SimDevice(int id, int systemType) : id_(id) {
  CheckIndex(id, kMaxDeviceId, "device ID");
  CheckIndex(systemType, params::kSystemTypeCount - 1, "system type");
  SetSystemType(systemType);
  std::fill_n(memory_.begin() + mem::kDeviceName, mem::kDeviceNameLength, ' ');
}

int SimDevice::FramesHandled(std::uint8_t commandCode) const {
  const auto it = framesByCode_.find(commandCode);
  return it == framesByCode_.end() ? 0 : it->second;
}

std::vector<std::uint8_t> SimDevice::Handle(const protocol::Frame& request) {
  const protocol::Command command = protocol::CommandOf(request);
  ++framesByCode_[command.code];
  ++totalFrames_;
  switch (command.code) {
    case code::kPoll:
      return AnswerPoll(request);
    case code::kReadBlock:
      return ReadBlock(command);
    case code::kMemoryRead:
      return ReadMemory(request);
    case code::kMemoryWrite:
      WriteMemory(AddressOf(command), command.p(5));
      return Acknowledge(request);
    case code::kStoreData:
      for (std::size_t i = 0; i < 4; ++i)
        WriteMemory(AddressOf(command) + i, command.p(3 + static_cast<int>(i)));
      return Acknowledge(request);
    case code::kSetSystemType:
      if (command.p(1) < params::kSystemTypeCount) SetSystemType(command.p(1));
      return Acknowledge(request);
    case code::kRelease:
    case code::kLeaveProgram:
      return {};
    default:
      if (IsParameterCode(command.code)) ApplyCommand(state_, command);
      return Acknowledge(request);
  }
}

// Every frame the device accepts is acknowledged by sending it back unchanged.
std::vector<std::uint8_t> SimDevice::Acknowledge(const protocol::Frame& request) const {
  return {request.begin(), request.end()};
}

std::vector<std::uint8_t> SimDevice::AnswerPoll(const protocol::Frame& request) const {
  protocol::Frame reply = request;
  std::fill(reply.begin() + 4, reply.begin() + 12, 0);
  reply[protocol::kPollAnswerIndex] = protocol::kPollAnswer;
  return {reply.begin(), reply.end()};
}

// p1 = p2 = 255 reads the live image; p1 = slot 0..23 with p2 = 0 reads a stored preset.
std::vector<std::uint8_t> SimDevice::ReadBlock(const protocol::Command& command) const {
  if (command.p(1) == 255 && command.p(2) == 255) return {state_.live.begin(), state_.live.end()};
  if (command.p(1) < params::kSlotCount && command.p(2) == 0) {
    const auto first = memory_.begin() + static_cast<long>(mem::SlotDataAddress(command.p(1)));
    return {first, first + static_cast<long>(mem::kSlotDataLength)};
  }
  return {};
}

// A memory read answers with the addressed byte in p5, the very place where a write
// (command 17) carries its byte, framed by its two predecessors in p3, p4 and its successor
// in p6: reply bytes 6..9 hold memory A-2 .. A+1. A reader that wants four bytes from B on
// therefore asks for B + 2. p1, p2 echo the address; addresses outside memory read as 0.
std::vector<std::uint8_t> SimDevice::ReadMemory(const protocol::Frame& request) const {
  const std::size_t address = AddressOf(protocol::CommandOf(request));
  protocol::Frame reply = request;
  std::fill(reply.begin() + 6, reply.begin() + 12, 0);
  for (std::size_t i = 0; i < 4; ++i) {
    const std::size_t at = address + i;  // reads A-2+i, shifted by 2 to stay unsigned
    if (at >= 2 && at - 2 < memory_.size()) reply[6 + i] = memory_[at - 2];
  }
  return {reply.begin(), reply.end()};
}

void SimDevice::WriteMemory(std::size_t address, std::uint8_t value) {
  if (address < memory_.size()) memory_[address] = value;
}

void SimDevice::SetSystemType(int systemType) {
  systemType_ = systemType;
  state_.live = params::DefaultImage[static_cast<std::size_t>(systemType)];
}

}  // namespace talvex::sim
