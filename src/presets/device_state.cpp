#include "presets/device_state.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "protocol/memory_map.h"

namespace talvex::presets {

namespace mem = protocol::memory;
namespace code = protocol::code;

namespace {

// Reply bytes 6..9 (p3..p6) of a memory read hold memory A-2 .. A+1 of the address A asked for,
// so four bytes from B on are asked for at B + 2.
constexpr std::size_t kFourBytesAhead = 2;
constexpr std::size_t kFirstDataByte = 6;
constexpr std::size_t kAddressedByte = 8;

using Reply = std::array<std::uint8_t, protocol::kFrameSize>;

using protocol::AddressedCommand;

class StateReader {
 public:
  StateReader(link::Link& link, int deviceId) : link_(link), deviceId_(deviceId) {}

  // One exchange; nullopt when it went unanswered or was skipped (`skipped_` tells which).
  std::optional<Reply> Exchange(const protocol::Command& command) {
    const link::SendResult result = link_.SendCommand(deviceId_, command);
    if (result == link::SendResult::Skipped) skipped_ = true;
    if (result != link::SendResult::Replied) return std::nullopt;
    Reply reply{};
    std::copy_n(link_.RxBuffer().begin(), reply.size(), reply.begin());
    return reply;
  }

  std::optional<Reply> ReadAt(std::uint8_t commandCode, std::size_t address) {
    return Exchange(AddressedCommand(commandCode, address));
  }

  // `count` bytes of device memory from `address` on, four per exchange.
  std::optional<std::string> ReadBytes(std::size_t address, std::size_t count) {
    std::vector<std::uint8_t> bytes(count);
    const StateRead read = ReadDeviceMemory(link_, deviceId_, address, bytes);
    if (read == StateRead::Skipped) skipped_ = true;
    if (read != StateRead::Received) return std::nullopt;
    return std::string(bytes.begin(), bytes.end());
  }

  bool Skipped() const { return skipped_; }

 private:
  link::Link& link_;
  int deviceId_;
  bool skipped_ = false;
};

struct ReadState {
  DeviceState state;
  std::string presetName;
  std::uint8_t inputSource = 0, deviceWide = 0, option = 0, lock = 0, outputLink = 0;
};

std::optional<ReadState> ReadAll(StateReader& reader) {
  ReadState read;
  std::optional<Reply> settings;
  for (int i = 0; i < 2; ++i)
    if (!(settings = reader.Exchange(protocol::Command{code::kReadState, {}}))) return std::nullopt;
  read.state.systemType = (*settings)[4];
  read.inputSource = (*settings)[5];
  read.deviceWide = (*settings)[6];
  read.option = (*settings)[7];
  read.outputLink = (*settings)[8];

  const auto marks = reader.ReadBytes(mem::kUsedMarks, params::kSlotCount);
  if (!marks) return std::nullopt;
  for (int slot = 0; slot < params::kSlotCount; ++slot) {
    const auto mark = static_cast<std::uint8_t>((*marks)[static_cast<std::size_t>(slot)]);
    read.state.usedMarks[static_cast<std::size_t>(slot)] = mark;
    if (mark != mem::kUsedMark) continue;
    const auto name = reader.ReadBytes(mem::SlotNameAddress(slot), mem::kSlotNameLength);
    if (!name) return std::nullopt;
    read.state.slotNames[static_cast<std::size_t>(slot)] = *name;
  }

  const auto presetName = reader.ReadBytes(mem::kPresetName, mem::kPresetNameLength);
  if (!presetName) return std::nullopt;
  read.presetName = *presetName;

  const std::optional<Reply> lock = reader.ReadAt(code::kReadState, mem::kLock);
  if (!lock) return std::nullopt;
  read.lock = (*lock)[kAddressedByte];

  protocol::Command closing{code::kMemoryRead, {31, 31, 254}};
  if (!reader.Exchange(closing)) return std::nullopt;
  if (!reader.Exchange(protocol::Command{code::kReadStateEnd, {}})) return std::nullopt;
  return read;
}

}  // namespace

StateRead ReadDeviceMemory(link::Link& link, int deviceId, std::size_t address,
                           std::span<std::uint8_t> into, const ExchangeDone& exchanged) {
  int done = 0;
  for (std::size_t at = 0; at < into.size(); at += 4) {
    const auto command = AddressedCommand(code::kMemoryRead, address + at + kFourBytesAhead);
    switch (link.SendCommand(deviceId, command)) {
      case link::SendResult::Replied:
        break;
      case link::SendResult::Skipped:
        return StateRead::Skipped;
      default:
        return StateRead::Failed;
    }
    for (std::size_t i = 0; i < 4 && at + i < into.size(); ++i)
      into[at + i] = link.RxBuffer()[kFirstDataByte + i];
    if (exchanged) exchanged(++done);
  }
  return StateRead::Received;
}

bool DeviceState::SlotUsed(int slot) const {
  CheckIndex(slot, params::kSlotCount - 1, "preset slot");
  return usedMarks[static_cast<std::size_t>(slot)] == mem::kUsedMark;
}

StateRead ReadDeviceState(link::Link& link, int deviceId, params::DeviceParams& device,
                          DeviceState& state) {
  CheckIndex(deviceId, kMaxDeviceId, "device ID");
  StateReader reader(link, deviceId);
  std::optional<ReadState> read = ReadAll(reader);
  if (!read) return reader.Skipped() ? StateRead::Skipped : StateRead::Failed;

  params::ParamImage& image = device.image;
  std::copy(read->presetName.begin(), read->presetName.end(),
            image.begin() + params::kPresetNameByte);
  image[params::kInputSourceByte] = read->inputSource;
  image[params::kDeviceWideByte] = read->deviceWide;
  image[params::kOptionByte] = read->option;
  image[params::kLockByte] = read->lock;
  image[params::kOutputLinkByte] = read->outputLink;

  read->state.password = state.password;  // not part of the state read: ReadDevicePassword
  state = std::move(read->state);
  state.inputSource = image[params::kInputSourceByte];
  state.deviceWide = image[params::kDeviceWideByte];
  state.option = image[params::kOptionByte];
  state.lock = image[params::kLockByte];
  state.outputLink = image[params::kOutputLinkByte];
  device.values.InputSource() = state.inputSource;
  device.values.Option() = state.option;
  device.values.Switch() = state.outputLink;
  return StateRead::Received;
}

}  // namespace talvex::presets
