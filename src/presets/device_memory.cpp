#include "presets/device_memory.h"

#include <algorithm>
#include <stdexcept>

#include "protocol/memory_map.h"

namespace talvex::presets {

namespace mem = protocol::memory;

namespace {

constexpr std::size_t kWriteSize = 4;

std::size_t Index(int value) {
  return static_cast<std::size_t>(value);
}

}  // namespace

protocol::Command SlotMarkCommand(int slot, std::uint8_t mark) {
  CheckIndex(slot, params::kSlotCount - 1, "preset slot");
  protocol::Command command;
  command.code = protocol::code::kMemoryWrite;
  protocol::PutAddress(command, mem::kUsedMarks + Index(slot), 1);
  command.p(5) = mark;
  return command;
}

protocol::Command MarkSlotUsedCommand(int slot) {
  return SlotMarkCommand(slot, mem::kUsedMark);
}

protocol::Command StoreDataCommand(std::size_t address, std::span<const std::uint8_t, 4> bytes) {
  protocol::Command command;
  command.code = protocol::code::kStoreData;
  protocol::PutAddress(command, address, 1);
  std::copy(bytes.begin(), bytes.end(), command.params.begin() + 2);
  protocol::PutAddress(command, address, 7);
  return command;
}

std::string PadSlotName(std::string_view name) {
  if (name.size() > kSlotNameLength)
    throw std::invalid_argument("a preset name has at most 16 characters: \"" + std::string(name) +
                                "\"");
  std::string padded(name);
  padded.resize(kSlotNameLength, ' ');
  return padded;
}

PresetStore PrepareStore(params::DeviceParams& device, DeviceState& state, int slot,
                         std::string_view name) {
  CheckIndex(slot, params::kSlotCount - 1, "preset slot");
  PresetStore store{slot, PadSlotName(name), {}};
  state.slotNames[Index(slot)] = store.name;
  std::copy(store.name.begin(), store.name.end(), device.image.begin() + params::kPresetNameByte);

  const auto write = [&](std::size_t address, std::size_t imageOffset) {
    const std::span<const std::uint8_t, kWriteSize> bytes(device.image.data() + imageOffset,
                                                          kWriteSize);
    store.commands.push_back(StoreDataCommand(address, bytes));
  };
  store.commands.push_back(MarkSlotUsedCommand(slot));
  for (std::size_t i = 0; i < kSlotNameLength; i += kWriteSize)
    write(mem::SlotNameAddress(slot) + i, params::kPresetNameByte + i);
  for (std::size_t i = 0; i < params::kPresetSize; i += kWriteSize)
    write(mem::SlotDataAddress(slot) + i, i);
  return store;
}

StoreOutcome SendPresetStore(link::Link& link, int deviceId, const PresetStore& store,
                             const StoreProgress& progress) {
  if (progress) progress(0, kStoreProgressMaximum);
  StoreOutcome outcome;
  const ListOutcome sent = SendCommandList(link, deviceId, store.commands, [&](int done) {
    if (done == 1) outcome.marked = true;
    if (progress) progress(done, kStoreProgressMaximum);
  });
  outcome.end = sent.end;
  outcome.written = sent.acknowledged;
  return outcome;
}

void FinishStore(DeviceState& state, const PresetStore& store, const StoreOutcome& outcome) {
  CheckIndex(store.slot, params::kSlotCount - 1, "preset slot");
  if (outcome.marked) state.usedMarks[Index(store.slot)] = mem::kUsedMark;
}

std::optional<std::string_view> CheckPresetReadable(const DeviceState& state, int slot) {
  if (!state.SlotUsed(slot)) return kPresetEmptyText;
  return std::nullopt;
}

SlotRead ReadPresetSlot(link::Link& link, int deviceId, int slot, params::PresetImage& preset) {
  CheckIndex(slot, params::kSlotCount - 1, "preset slot");
  protocol::Command read;
  read.code = protocol::code::kReadBlock;
  read.p(1) = static_cast<std::uint8_t>(slot);
  link::BlockResult block = link::BlockResult::Skipped;
  {
    const RaisedFlag showProgress(link.Flags().ShowReadProgress);
    block = link.ReadBlock(deviceId, read);
  }
  if (block == link::BlockResult::Skipped) return SlotRead::Skipped;
  if (block == link::BlockResult::TimedOut) return SlotRead::Failed;
  std::copy_n(link.RxBuffer().begin(), params::kPresetSize, preset.begin());
  const link::SendResult closed = link.SendCommand(deviceId, protocol::Command{});
  const bool failed = closed == link::SendResult::Failed || closed == link::SendResult::NoReply;
  return failed ? SlotRead::Failed : SlotRead::Received;
}

PresetTransfer ApplyDevicePreset(params::DeviceParams& device, const params::PresetImage& preset,
                                 PresetView& view, params::DecimalMark mark) {
  const params::ParamImage before = device.image;
  std::copy(preset.begin(), preset.end(), device.image.begin());
  try {
    return ApplyPreset(device, view, TransferFlags::DeviceRead(), mark);
  } catch (const IndexError&) {
    device.image = before;  // ApplyPreset left everything else as it was
    throw;
  }
}

}  // namespace talvex::presets
