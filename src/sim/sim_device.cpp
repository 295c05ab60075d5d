#include "sim/sim_device.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

#include "params/default_image.h"
#include "params/image_decode.h"
#include "params/value_tables.h"
#include "protocol/meter.h"

namespace talvex::sim {

namespace mem = protocol::memory;
namespace code = protocol::code;

namespace {

// The system types as a name of 16 characters has room for them: "SIM 2x2 00".
constexpr std::array<const char*, params::kSystemTypeCount> kShortTypeNames = {"2x2", "2x3",
                                                                               "6way"};

std::string DefaultName(int id, int systemType) {
  const std::string number = std::to_string(id);
  return std::string("SIM ") + kShortTypeNames[static_cast<std::size_t>(systemType)] + " " +
         (number.size() < 2 ? "0" : "") + number;
}

std::size_t AddressOf(const protocol::Command& command) {
  return static_cast<std::size_t>(command.p(1)) << 8 | command.p(2);
}

// The simulated programme: about -20 dBFS, swinging 3 dB either way over 40 meter polls (some
// seconds at the rate an editor polls), counted by the device itself so that runs repeat.
constexpr double kProgrammeDbfs = -20.0;
constexpr double kProgrammeSwingDb = 3.0;
constexpr int kProgrammePolls = 40;
constexpr double kSilence = -std::numeric_limits<double>::infinity();

double ProgrammeDbfs(int poll) {
  return kProgrammeDbfs +
         kProgrammeSwingDb * std::sin(2 * std::numbers::pi * poll / kProgrammePolls);
}

// A channel's level in dB as its image holds it; a level byte beyond the channel's range (taken
// as it came by the level command) gives the top of the range.
double GainDb(const params::PresetImage& live, int channel) {
  try {
    return params::LevelDb(live, channel);
  } catch (const IndexError&) {
    return params::LevelRule(channel).hi;
  }
}

// The input (0 = In A, 1 = In B) that feeds an output; a source byte other than 0 is In B.
std::size_t SourceInput(const params::PresetImage& live, int channel) {
  const auto output = static_cast<std::size_t>(channel - params::kInputCount);
  return live[params::OutputSourceOffset[output]] != 0 ? 1 : 0;
}

}  // namespace

SimDevice::SimDevice(int id, int systemType) : id_(id) {
  CheckIndex(id, kMaxDeviceId, "device ID");
  CheckIndex(systemType, params::kSystemTypeCount - 1, "system type");
  SetSystemType(systemType);
  SetName(DefaultName(id, systemType));
  std::copy(params::EmptyPresetName.begin(), params::EmptyPresetName.end(),
            memory_.begin() + mem::kPresetName);
}

void SimDevice::SetName(const std::string& name) {
  for (std::size_t i = 0; i < mem::kDeviceNameLength; ++i)
    memory_[mem::kDeviceName + i] = static_cast<std::uint8_t>(i < name.size() ? name[i] : ' ');
}

std::string SimDevice::Name() const {
  return {memory_.begin() + mem::kDeviceName,
          memory_.begin() + mem::kDeviceName + mem::kDeviceNameLength};
}

int SimDevice::FramesHandled(std::uint8_t commandCode) const {
  const auto it = framesByCode_.find(commandCode);
  return it == framesByCode_.end() ? 0 : it->second;
}

std::optional<protocol::Frame> SimDevice::LastFrame(std::uint8_t commandCode) const {
  const auto it = lastFrameByCode_.find(commandCode);
  if (it == lastFrameByCode_.end()) return std::nullopt;
  return it->second;
}

std::vector<std::uint8_t> SimDevice::Handle(const protocol::Frame& request) {
  const protocol::Command command = protocol::CommandOf(request);
  ++framesByCode_[command.code];
  lastFrameByCode_[command.code] = request;
  ++totalFrames_;
  if (Refuses(command)) return Acknowledge(request);
  switch (command.code) {
    case code::kPoll:
      return AnswerPoll(request);
    case code::kReadBlock:
      return ReadBlock(command);
    case code::kMemoryRead:
      return ReadMemory(request);
    case code::kReadState:
      return ReportState(request);
    case code::kMeterPoll:
      return AnswerMeters(request);
    case code::kMemoryWrite:
      WriteMemory(AddressOf(command), command.p(5));
      return Acknowledge(request);
    case code::kStoreData:
      // Four bytes p3..p6 from the address in p1 (high), p2 (low) on; p7, p8 carry the
      // same address again and are not needed to store.
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

// A locked device keeps its settings: it acknowledges every frame, as always (a frame left
// unanswered would make the program close the device), but changes nothing for a parameter
// command, a name, a stored preset, a system type or a memory write, except the two a locked
// device must take: the lock byte itself (to be unlocked) and the password bytes (the
// password dialog sets a new password in either state). Reads, polls and recalls of a stored
// preset's bytes are answered; a recall does not make a locked device run the preset.
bool SimDevice::Refuses(const protocol::Command& command) const {
  if (!Locked()) return false;
  switch (command.code) {
    case code::kMemoryWrite: {
      const std::size_t address = AddressOf(command);
      const bool password =
          address >= mem::kPassword && address < mem::kPassword + mem::kPasswordLength;
      return address != mem::kLock && !password;
    }
    case code::kStoreData:
    case code::kSetSystemType:
      return true;
    default:
      return IsParameterCode(command.code);
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

// p1 = p2 = 255 reads the live image; p1 = slot 0..23 with p2 = 0 reads a stored preset, which
// recalls it: a used slot (mark 85) becomes the preset the device runs (in the system type it
// names), its name the current preset's name, so the program that reads it has nothing to send. A
// locked device answers with the bytes but keeps running what it ran.
std::vector<std::uint8_t> SimDevice::ReadBlock(const protocol::Command& command) {
  if (command.p(1) == 255 && command.p(2) == 255) return {state_.live.begin(), state_.live.end()};
  if (command.p(1) >= params::kSlotCount || command.p(2) != 0) return {};
  const int slot = command.p(1);
  const auto first = memory_.begin() + static_cast<long>(mem::SlotDataAddress(slot));
  const bool used = memory_[mem::kUsedMarks + static_cast<std::size_t>(slot)] == mem::kUsedMark;
  if (used && !Locked()) {
    std::copy_n(first, mem::kSlotDataLength, state_.live.begin());
    // A preset carries its system type (byte 298): the device runs it in that type.
    if (state_.live[params::kSystemTypeByte] < params::kSystemTypeCount)
      systemType_ = state_.live[params::kSystemTypeByte];
    const auto name = memory_.begin() + static_cast<long>(mem::SlotNameAddress(slot));
    std::copy_n(name, mem::kSlotNameLength, memory_.begin() + mem::kPresetName);
  }
  return {first, first + static_cast<long>(mem::kSlotDataLength)};
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

// Command 23 reads the device's state. With p1 = p2 = 0 it answers with the settings that
// live beside the preset image: p1 = system type, p2 = input source (0 analogue, 1 S/PDIF),
// p3 = the device-wide byte that rides with every delay command, p4 = the delay unit kept at
// memory 0x12, p5 = the output link switch of command 34; p6..p8 = 0. With an address A in
// p1 (high) and p2 (low) it answers like a memory read (16): bytes 6..9 = memory A-2 .. A+1,
// so p5 is the byte at A (the lock state at 0x16, for instance). Command 36, which ends a
// state read, is simply acknowledged.
std::vector<std::uint8_t> SimDevice::ReportState(const protocol::Frame& request) const {
  if (AddressOf(protocol::CommandOf(request)) != 0) return ReadMemory(request);
  protocol::Frame reply = request;
  std::fill(reply.begin() + 4, reply.begin() + 12, 0);
  reply[4] = static_cast<std::uint8_t>(systemType_);
  reply[5] = state_.inputSource;
  reply[6] = state_.deviceWide;
  reply[7] = memory_[mem::kOption];
  reply[8] = state_.outputLink;
  return {reply.begin(), reply.end()};
}

// Command 18 asks for the level meters; its p1..p8 are 0 and are not read. The reply is the
// request echoed with p1..p8 = the levels of In A, In B, Out 1 .. Out 6, each byte in half-dB
// steps above -60 dBFS (0 = silent or at most -60 dBFS, 120 = 0 dBFS full scale; never above
// 120; protocol/meter.h holds the scale). The levels are those of a programme at about -20 dBFS
// that swings slowly with the count of meter polls answered: an input reads the programme plus
// its level, an output its source input (clipped at full scale) plus its own level; a muted
// channel reads silent, and so does an output whose source input is muted. Everything is clipped
// at full scale. EQ, crossovers, delay, polarity and limiters are left out: the programme is a
// level, not a waveform, so it has no spectrum for a filter to shape and no peaks for a limiter
// to hold; what a meter must show, that the signal passes and how each gain and mute acts on it,
// these levels show.
std::vector<std::uint8_t> SimDevice::AnswerMeters(const protocol::Frame& request) const {
  const double programme = ProgrammeDbfs(FramesHandled(code::kMeterPoll) - 1);
  std::array<double, params::kChannelCount> dbfs{};
  for (int channel = 0; channel < params::kChannelCount; ++channel) {
    const auto index = static_cast<std::size_t>(channel);
    // A muted source input is silent already (-infinity), and so stays its output.
    const double fed = channel < params::kInputCount
                           ? programme
                           : std::min(dbfs[SourceInput(state_.live, channel)], 0.0);
    dbfs[index] = state_.mute[index] != 0 ? kSilence : fed + GainDb(state_.live, channel);
  }
  protocol::Frame reply = request;
  for (std::size_t i = 0; i < dbfs.size(); ++i)
    reply[4 + i] = protocol::meter::ByteOfLevel(dbfs[i]);
  return {reply.begin(), reply.end()};
}

// A slot-name byte written is also written to the current preset's name: the device takes a
// preset it stores as the one it runs.
void SimDevice::WriteMemory(std::size_t address, std::uint8_t value) {
  if (address >= memory_.size()) return;
  memory_[address] = value;
  if (address >= mem::kSlotNames && address < mem::kSlotData)
    memory_[mem::kPresetName + (address - mem::kSlotNames) % mem::kSlotNameLength] = value;
}

void SimDevice::SetSystemType(int systemType) {
  systemType_ = systemType;
  state_.live = params::DefaultImage[static_cast<std::size_t>(systemType)];
}

}  // namespace talvex::sim
