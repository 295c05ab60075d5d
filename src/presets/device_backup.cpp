#include "presets/device_backup.h"

#include <algorithm>
#include <filesystem>
#include <optional>

#include "config/config_files.h"
#include "link/device_name.h"
#include "params/device_params.h"
#include "presets/conversation.h"
#include "presets/device_memory.h"
#include "presets/device_state.h"
#include "presets/live_image.h"
#include "presets/preset_transfer.h"
#include "presets/system_type.h"
#include "protocol/memory_map.h"

namespace talvex::presets {

namespace mem = protocol::memory;

namespace {

constexpr std::size_t kNameSize = 16;
constexpr std::size_t kWriteSize = 4;
constexpr int kLiveReadAttempts = 3;
// Exchanges of a block read (the block and the command that closes it), and of a state read
// beside the four name reads of each used slot: two of command 23, six for the used marks, four
// for the running preset's name, the lock, the closing memory read and command 36.
constexpr int kLiveReadExchanges = 2;
constexpr int kStateReadExchanges = 15;
constexpr int kSlotNameReads = static_cast<int>(kNameSize / kWriteSize);
constexpr int kSlotDataReads = static_cast<int>(params::kPresetSize / kWriteSize);
constexpr int kDeviceNameWrites = static_cast<int>(link::kDeviceNameLength);

// Where each part lies in the body.
constexpr std::size_t kIdAt = 0;
constexpr std::size_t kTypeAt = 1;
constexpr std::size_t kSettingsAt = 2;  // input source, byte 322, delay unit, link switch
constexpr std::size_t kDeviceNameAt = 6;
constexpr std::size_t kPresetNameAt = 22;
constexpr std::size_t kLiveAt = 38;
constexpr std::size_t kMarksAt = kLiveAt + params::kPresetSize;
constexpr std::size_t kSlotNamesAt = kMarksAt + params::kSlotCount;
constexpr std::size_t kSlotsAt = kSlotNamesAt + kNameSize * params::kSlotCount;
static_assert(kSlotsAt + params::kPresetSize * params::kSlotCount == kBackupBodySize);

constexpr std::array<std::uint32_t, 256> kCrcTable = [] {
  std::array<std::uint32_t, 256> table{};
  for (std::uint32_t n = 0; n < table.size(); ++n) {
    std::uint32_t c = n;
    for (int k = 0; k < 8; ++k)
      c = (c & 1) != 0 ? 0xEDB88320u ^ (c >> 1) : c >> 1;
    table[n] = c;
  }
  return table;
}();

std::size_t Index(int value) {
  return static_cast<std::size_t>(value);
}

void PutLittle(std::vector<std::uint8_t>& bytes, std::size_t at, std::uint32_t value, int size) {
  for (int i = 0; i < size; ++i)
    bytes[at + Index(i)] = static_cast<std::uint8_t>(value >> (8 * i));
}

std::uint32_t LittleAt(std::span<const std::uint8_t> bytes, std::size_t at, int size) {
  std::uint32_t value = 0;
  for (int i = size - 1; i >= 0; --i)
    value = value << 8 | bytes[at + Index(i)];
  return value;
}

// A name as 16 bytes: cut or padded with zeros.
void PutName(std::uint8_t* into, const std::string& name) {
  std::fill_n(into, kNameSize, 0);
  std::copy_n(name.begin(), std::min(name.size(), kNameSize), into);
}

std::string NameAt(std::span<const std::uint8_t> body, std::size_t at) {
  return {body.begin() + static_cast<long>(at), body.begin() + static_cast<long>(at + kNameSize)};
}

// The contents of a body that passed its checksum, checked as a restore will use them.
std::string CheckContents(const DeviceBackup& backup) {
  if (backup.systemType >= params::kSystemTypeCount)
    return "is damaged: system type " + std::to_string(backup.systemType) + " is not 0, 1 or 2";
  const std::pair<const char*, std::uint8_t> switches[] = {{"input source", backup.inputSource},
                                                           {"delay unit", backup.delayUnit},
                                                           {"output link", backup.outputLink}};
  for (const auto& [what, value] : switches)
    if (value > 1)
      return std::string("is damaged: the ") + what + " is " + std::to_string(value) +
             ", not 0 or 1";
  if (backup.live[params::kSystemTypeByte] != backup.systemType)
    return "is damaged: its running preset is of system type " +
           std::to_string(backup.live[params::kSystemTypeByte]) + ", its device of type " +
           std::to_string(backup.systemType);
  if (!IsReadableImage(backup.Record()))
    return "is damaged: its running preset holds a byte no device keeps";
  return {};
}

DeviceBackup DecodeBody(std::span<const std::uint8_t> body) {
  DeviceBackup backup;
  backup.deviceId = body[kIdAt];
  backup.systemType = body[kTypeAt];
  backup.inputSource = body[kSettingsAt];
  backup.deviceWide = body[kSettingsAt + 1];
  backup.delayUnit = body[kSettingsAt + 2];
  backup.outputLink = body[kSettingsAt + 3];
  backup.deviceName = NameAt(body, kDeviceNameAt);
  backup.presetName = NameAt(body, kPresetNameAt);
  std::copy_n(body.begin() + kLiveAt, params::kPresetSize, backup.live.begin());
  std::copy_n(body.begin() + kMarksAt, params::kSlotCount, backup.usedMarks.begin());
  for (int slot = 0; slot < params::kSlotCount; ++slot) {
    if (!backup.SlotUsed(slot)) continue;
    backup.slotNames[Index(slot)] = NameAt(body, kSlotNamesAt + kNameSize * Index(slot));
    std::copy_n(body.begin() + static_cast<long>(kSlotsAt + params::kPresetSize * Index(slot)),
                params::kPresetSize, backup.slotPresets[Index(slot)].begin());
  }
  return backup;
}

// Four bytes from `from` on to device memory `address`, for every four of `count`.
void AddStores(std::vector<protocol::Command>& commands, std::size_t address,
               const std::uint8_t* from, std::size_t count) {
  for (std::size_t i = 0; i < count; i += kWriteSize)
    commands.push_back(
        StoreDataCommand(address + i, std::span<const std::uint8_t, 4>(from + i, 4)));
}

// The slots (each used one's name and preset, then its mark) and the running preset's name.
std::vector<protocol::Command> MemoryCommands(const DeviceBackup& backup) {
  std::vector<protocol::Command> commands;
  std::array<std::uint8_t, kNameSize> name{};
  for (int slot = 0; slot < params::kSlotCount; ++slot) {
    if (backup.SlotUsed(slot)) {
      PutName(name.data(), backup.slotNames[Index(slot)]);
      AddStores(commands, mem::SlotNameAddress(slot), name.data(), kNameSize);
      AddStores(commands, mem::SlotDataAddress(slot), backup.slotPresets[Index(slot)].data(),
                params::kPresetSize);
    }
    commands.push_back(SlotMarkCommand(slot, backup.usedMarks[Index(slot)]));
  }
  PutName(name.data(), backup.presetName);
  AddStores(commands, mem::kPresetName, name.data(), kNameSize);
  return commands;
}

BackupEnd EndOf(StateRead read) {
  return read == StateRead::Skipped ? BackupEnd::Skipped : BackupEnd::Failed;
}

BackupEnd ReadLive(link::Link& link, int deviceId, params::ParamImage& image) {
  LiveRead live = LiveRead::Garbled;
  for (int attempt = 0; attempt < kLiveReadAttempts && live == LiveRead::Garbled; ++attempt)
    live = ReadLiveImage(link, deviceId, image);
  switch (live) {
    case LiveRead::Received:
      return BackupEnd::Completed;
    case LiveRead::Skipped:
      return BackupEnd::Skipped;
    case LiveRead::Garbled:
      return BackupEnd::Garbled;
    case LiveRead::Failed:
      break;
  }
  return BackupEnd::Failed;
}

// The backup as the state read left it: settings, marks, names; the slots still to be read.
DeviceBackup FromState(int deviceId, const params::ParamImage& image, const DeviceState& state) {
  DeviceBackup backup;
  backup.deviceId = deviceId;
  backup.systemType = state.systemType;
  backup.inputSource = image[params::kInputSourceByte];
  backup.deviceWide = image[params::kDeviceWideByte];
  backup.delayUnit = image[params::kOptionByte];
  backup.outputLink = image[params::kOutputLinkByte];
  backup.presetName.assign(image.begin() + params::kPresetNameByte,
                           image.begin() + params::kPresetNameByte + params::kPresetNameLength);
  std::copy_n(image.begin(), params::kPresetSize, backup.live.begin());
  for (int slot = 0; slot < params::kSlotCount; ++slot) {
    backup.usedMarks[Index(slot)] = static_cast<std::uint8_t>(state.usedMarks[Index(slot)]);
    if (backup.SlotUsed(slot)) backup.slotNames[Index(slot)] = state.slotNames[Index(slot)];
  }
  return backup;
}

// The restore's steps in their order; each returns the outcome that ends the restore, or
// nothing to go on.
class Restorer {
 public:
  Restorer(link::Link& link, int deviceId, const DeviceBackup& backup,
           const BackupProgress& progress)
      : link_(link), deviceId_(deviceId), backup_(backup), progress_(progress) {}

  RestoreOutcome Run() {
    // The model first: a running preset that no sender takes never puts a frame on the line.
    params::DeviceParams device = params::DeviceParams::FromImage(backup_.Record());
    device.values.Switch() = backup_.outputLink;
    PresetView view;
    transfer_ = ApplyPreset(device, view, TransferFlags::PresetFileLoad());
    memory_ = MemoryCommands(backup_);
    std::optional<RestoreOutcome> end = CheckTarget();
    if (!end) end = SendType();
    if (!end) end = SendRunningPreset();
    if (!end) end = SendName();
    if (!end) end = SendMemory();
    return end.value_or(RestoreOutcome{RestoreEnd::Completed, {}});
  }

 private:
  static RestoreOutcome Skipped() { return {RestoreEnd::Skipped, {}}; }
  static RestoreOutcome Failed(std::string step) { return {RestoreEnd::Failed, std::move(step)}; }

  void Report(int done) {
    done_ = done;
    if (progress_) progress_(done_, total_);
  }

  // The target's state: a locked device takes nothing, and its type says whether to change it.
  std::optional<RestoreOutcome> CheckTarget() {
    params::DeviceParams target = params::DeviceParams::FromDefault(0);
    DeviceState state;
    const StateRead read = ReadDeviceState(link_, deviceId_, target, state);
    if (read == StateRead::Skipped) return Skipped();
    if (read == StateRead::Failed) return Failed("the state read");
    if (state.Locked()) return RestoreOutcome{RestoreEnd::Locked, {}};
    typeChange_ = state.systemType != backup_.systemType;
    total_ = (typeChange_ ? 1 : 0) + static_cast<int>(transfer_.steps.size()) + kDeviceNameWrites +
             static_cast<int>(memory_.size());
    return std::nullopt;
  }

  std::optional<RestoreOutcome> SendType() {
    if (!typeChange_) return std::nullopt;
    switch (SendSystemType(link_, deviceId_, SystemTypeCommand(backup_.systemType))) {
      case TypeSend::Switched:
        Report(done_ + 1);
        return std::nullopt;
      case TypeSend::Skipped:
        return Skipped();
      case TypeSend::Failed:
        break;
    }
    return Failed("the system type");
  }

  std::optional<RestoreOutcome> SendRunningPreset() {
    const int before = done_;
    const int steps = static_cast<int>(transfer_.steps.size());
    const TransferOutcome sent = SendPresetTransfer(link_, deviceId_, transfer_, [&](int point) {
      Report(before + point * steps / kProgressPoints);
    });
    if (sent.end == TransferEnd::Suspended) return Skipped();
    if (sent.end == TransferEnd::Stopped)
      return Failed("the running preset (" + std::string(StageName(sent.stoppedAt)) + ")");
    done_ = before + steps;
    return std::nullopt;
  }

  std::optional<RestoreOutcome> SendName() {
    switch (link::WriteDeviceName(link_, deviceId_, backup_.deviceName)) {
      case link::NameWrite::Written:
        Report(done_ + kDeviceNameWrites);
        return std::nullopt;
      case link::NameWrite::Skipped:
        return Skipped();
      case link::NameWrite::Stopped:
        break;
    }
    return Failed("the device name");
  }

  std::optional<RestoreOutcome> SendMemory() {
    const int before = done_;
    const ListOutcome written =
        SendCommandList(link_, deviceId_, memory_, [&](int through) { Report(before + through); });
    if (written.end == ListEnd::Skipped) return Skipped();
    if (written.end == ListEnd::Stopped) return Failed("the preset slots");
    return std::nullopt;
  }

  link::Link& link_;
  int deviceId_;
  const DeviceBackup& backup_;
  const BackupProgress& progress_;
  PresetTransfer transfer_;
  std::vector<protocol::Command> memory_;
  bool typeChange_ = false;
  int total_ = 0;
  int done_ = 0;
};

}  // namespace

bool DeviceBackup::SlotUsed(int slot) const {
  CheckIndex(slot, params::kSlotCount - 1, "preset slot");
  return usedMarks[Index(slot)] == mem::kUsedMark;
}

int DeviceBackup::UsedSlots() const {
  return static_cast<int>(std::count(usedMarks.begin(), usedMarks.end(), mem::kUsedMark));
}

params::ParamImage DeviceBackup::Record() const {
  params::ParamImage record{};
  std::copy(live.begin(), live.end(), record.begin());
  PutName(record.data() + params::kPresetNameByte, presetName);
  record[params::kInputSourceByte] = inputSource;
  record[params::kDeviceWideByte] = deviceWide;
  record[params::kOptionByte] = delayUnit;
  record[params::kOutputLinkByte] = outputLink;
  return record;
}

std::uint32_t Crc32(std::span<const std::uint8_t> bytes) {
  std::uint32_t crc = 0xFFFFFFFFu;
  for (std::uint8_t byte : bytes)
    crc = kCrcTable[(crc ^ byte) & 0xFFu] ^ (crc >> 8);
  return crc ^ 0xFFFFFFFFu;
}

std::vector<std::uint8_t> EncodeBackup(const DeviceBackup& backup) {
  std::vector<std::uint8_t> bytes(kBackupFileSize, 0);
  std::copy(kBackupMagic.begin(), kBackupMagic.end(), bytes.begin());
  PutLittle(bytes, 8, kBackupVersion, 2);
  PutLittle(bytes, 12, kBackupBodySize, 4);
  std::uint8_t* body = bytes.data() + kBackupHeaderSize;
  body[kIdAt] = static_cast<std::uint8_t>(backup.deviceId);
  body[kTypeAt] = static_cast<std::uint8_t>(backup.systemType);
  body[kSettingsAt] = backup.inputSource;
  body[kSettingsAt + 1] = backup.deviceWide;
  body[kSettingsAt + 2] = backup.delayUnit;
  body[kSettingsAt + 3] = backup.outputLink;
  PutName(body + kDeviceNameAt, backup.deviceName);
  PutName(body + kPresetNameAt, backup.presetName);
  std::copy(backup.live.begin(), backup.live.end(), body + kLiveAt);
  std::copy(backup.usedMarks.begin(), backup.usedMarks.end(), body + kMarksAt);
  for (int slot = 0; slot < params::kSlotCount; ++slot) {
    if (!backup.SlotUsed(slot)) continue;
    PutName(body + kSlotNamesAt + kNameSize * Index(slot), backup.slotNames[Index(slot)]);
    const params::PresetImage& preset = backup.slotPresets[Index(slot)];
    std::copy(preset.begin(), preset.end(), body + kSlotsAt + params::kPresetSize * Index(slot));
  }
  PutLittle(bytes, 16, Crc32({body, kBackupBodySize}), 4);
  return bytes;
}

BackupCheck DecodeBackup(std::span<const std::uint8_t> bytes) {
  BackupCheck check;
  if (bytes.size() < kBackupMagic.size() ||
      !std::equal(kBackupMagic.begin(), kBackupMagic.end(), bytes.begin())) {
    check.error = "is not a TALVEX backup (it does not begin with \"TVXBACK\")";
    return check;
  }
  if (bytes.size() < kBackupHeaderSize) {
    check.error = "is damaged: it ends inside its header";
    return check;
  }
  const std::uint32_t version = LittleAt(bytes, 8, 2);
  if (version != kBackupVersion) {
    check.error = "is a backup of version " + std::to_string(version) +
                  "; this program reads version " + std::to_string(kBackupVersion);
    return check;
  }
  if (LittleAt(bytes, 12, 4) != kBackupBodySize || bytes.size() != kBackupFileSize) {
    check.error = "is damaged: it holds " + std::to_string(bytes.size()) +
                  " bytes where a backup has " + std::to_string(kBackupFileSize);
    return check;
  }
  const std::span<const std::uint8_t> body = bytes.subspan(kBackupHeaderSize);
  if (Crc32(body) != LittleAt(bytes, 16, 4)) {
    check.error = "is damaged: its checksum does not match its contents";
    return check;
  }
  DeviceBackup backup = DecodeBody(body);
  check.error = CheckContents(backup);
  if (check.error.empty()) check.backup = std::move(backup);
  return check;
}

BackupCheck ReadBackupFile(const std::string& path) {
  BackupCheck check;
  std::error_code error;
  const std::filesystem::path file(path);
  if (!std::filesystem::is_regular_file(file, error)) {
    check.error = path + " is not a file that can be read";
    return check;
  }
  // A backup has a fixed length; anything far longer is not one and is not read whole.
  const auto bytes = config::ReadSmallFile(file, 2 * kBackupFileSize);
  if (!bytes) {
    const auto size = std::filesystem::file_size(file, error);
    check.error = path + (!error && size > 2 * kBackupFileSize
                              ? " is not a TALVEX backup (it is far longer than one)"
                              : " cannot be read");
    return check;
  }
  check = DecodeBackup(*bytes);
  if (!check.error.empty()) check.error = path + " " + check.error;
  return check;
}

std::string WriteBackupFile(const std::string& path, const DeviceBackup& backup) {
  return config::WriteFileAtomically(path, EncodeBackup(backup));
}

BackupEnd ReadDeviceBackup(link::Link& link, int deviceId, DeviceBackup& backup,
                           const BackupProgress& progress) {
  params::DeviceParams device = params::DeviceParams::FromDefault(0);
  if (const BackupEnd live = ReadLive(link, deviceId, device.image); live != BackupEnd::Completed)
    return live;
  DeviceState state;
  if (const StateRead read = ReadDeviceState(link, deviceId, device, state);
      read != StateRead::Received)
    return EndOf(read);

  DeviceBackup read = FromState(deviceId, device.image, state);
  const int used = read.UsedSlots();
  int done = kLiveReadExchanges + kStateReadExchanges + kSlotNameReads * used;
  const int total = done + kSlotNameReads + kSlotDataReads * used;
  const auto step = [&](int) {
    if (progress) progress(++done, total);
  };
  if (progress) progress(done, total);
  std::array<std::uint8_t, kNameSize> name{};
  if (const StateRead nameRead = ReadDeviceMemory(link, deviceId, mem::kDeviceName, name, step);
      nameRead != StateRead::Received)
    return EndOf(nameRead);
  read.deviceName.assign(name.begin(), name.end());
  for (int slot = 0; slot < params::kSlotCount; ++slot) {
    if (!read.SlotUsed(slot)) continue;
    const StateRead slotRead = ReadDeviceMemory(link, deviceId, mem::SlotDataAddress(slot),
                                                read.slotPresets[Index(slot)], step);
    if (slotRead != StateRead::Received) return EndOf(slotRead);
  }
  backup = std::move(read);
  return BackupEnd::Completed;
}

RestoreOutcome RestoreDeviceBackup(link::Link& link, int deviceId, const DeviceBackup& backup,
                                   const BackupProgress& progress) {
  Restorer restorer(link, deviceId, backup, progress);
  return restorer.Run();
}

}  // namespace talvex::presets
