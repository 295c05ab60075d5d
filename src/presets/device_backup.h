// A backup of everything a processor keeps, in one file: the preset it runs (with its output
// names), its 24 preset slots with their names and used marks, its own name, the name of the
// preset it runs, its system type and the settings beside the preset (input source, the byte
// that rides with every delay command, the delay unit, the output link switch). Restoring it
// puts all of that on a device, the same one or another, through the device's own
// conversations: the type change (21), the whole-preset transfer, the name writes (17), the
// store writes (24) and the used marks (17).
//
// Not in a backup: the lock state and the password (a restore must leave the device open to
// the one who restores it, and a password does not belong in a file), mutes and input
// polarities (no device read tells them; the transfer leaves every channel playing, as a preset
// load does), and the contents of unused slots (nothing of them can be recalled).
//
// Both exchanges run as one job on the link worker thread in the desktop program, directly in
// talvexctl, and report their progress as exchanges done out of the exchanges they need.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "link/link.h"
#include "params/image_layout.h"

namespace talvex::presets {

struct DeviceBackup {
  int deviceId = 0;  // the device it was taken from
  int systemType = 0;
  std::uint8_t inputSource = 0;  // record byte 321: 0 analogue, 1 S/PDIF
  std::uint8_t deviceWide = 0;   // 322: rides with every delay command
  std::uint8_t delayUnit = 0;    // 323 (device memory 0x12): 0 ms, 1 m
  std::uint8_t outputLink = 0;   // 328: the output link switch of command 34
  std::string deviceName;        // 16 bytes, device memory 368..383
  std::string presetName;        // 16 bytes, device memory 0x40..0x4F
  params::PresetImage live{};    // the running preset; output names at their offsets
  std::array<std::uint8_t, params::kSlotCount> usedMarks{};  // 85 = the slot holds a preset
  std::array<std::string, params::kSlotCount> slotNames;     // 16 bytes each; empty if unused
  // Zeros for an unused slot. Not called `slots`: Qt code, which shows backups too, reads that
  // word as its keyword.
  std::array<params::PresetImage, params::kSlotCount> slotPresets{};

  bool SlotUsed(int slot) const;
  int UsedSlots() const;
  // The running preset as a whole record: bytes 0..303 the live preset, 305..320 the preset's
  // name, 321, 322, 323 and 328 the settings; what a preset file of it would hold.
  params::ParamImage Record() const;
  friend bool operator==(const DeviceBackup&, const DeviceBackup&) = default;
};

// The file: a 20-byte header, then the body, all little-endian.
//   header  0  8  "TVXBACK" and a 0 byte
//           8  2  version, 1
//          10  2  0
//          12  4  body length, 8046
//          16  4  CRC-32 of the body (IEEE 802.3, the one of zip and PNG)
//   body    0  1  ID of the device the backup was taken from
//           1  1  system type 0..2
//           2  4  input source, byte 322, delay unit, output link switch
//           6 16  device name
//          22 16  name of the running preset
//          38 304 running preset
//         342 24  used marks of slots 0..23
//         366 384 names of slots 0..23, 16 bytes each (zeros for unused slots)
//         750 7296 presets of slots 0..23, 304 bytes each (zeros for unused slots)
inline constexpr std::string_view kBackupMagic{"TVXBACK\0", 8};
inline constexpr int kBackupVersion = 1;
inline constexpr std::size_t kBackupHeaderSize = 20;
inline constexpr std::size_t kBackupBodySize = 8046;
inline constexpr std::size_t kBackupFileSize = kBackupHeaderSize + kBackupBodySize;

// The CRC-32 the header keeps of the body (reflected polynomial 0xEDB88320, start and end
// inverted).
std::uint32_t Crc32(std::span<const std::uint8_t> bytes);

std::vector<std::uint8_t> EncodeBackup(const DeviceBackup& backup);

// A backup read from bytes, checked whole: the header, the length, the checksum, and every
// value a restore would send (a system type, settings of 0 or 1, a running preset every sender
// takes, of the backup's own type). `error` says what is wrong, in a sentence that begins with
// what follows a file's name ("is not a TALVEX backup ..."); `backup` is set only when all is
// well.
struct BackupCheck {
  std::optional<DeviceBackup> backup;
  std::string error;
};
BackupCheck DecodeBackup(std::span<const std::uint8_t> bytes);

// The file at `path`, read and checked whole; errors begin with the path.
BackupCheck ReadBackupFile(const std::string& path);
// Writes the file whole and atomically (config::WriteFileAtomically); an empty text, or why it
// failed with the old file left as it was.
std::string WriteBackupFile(const std::string& path, const DeviceBackup& backup);

// Exchanges done so far out of those the job needs (`total` may grow once it is known).
using BackupProgress = std::function<void(int done, int total)>;

enum class BackupEnd {
  Completed,  // `backup` holds everything
  Skipped,    // the link sends nothing (demo mode, not open, suspended)
  Failed,     // an exchange went unanswered (the link has reported it)
  Garbled,    // the running preset came garbled three times (line noise)
};

// Reads a whole backup: the running preset (a block read, read again if it comes garbled),
// the state read (settings, used marks, slot names, the running preset's name), the device's
// name and the preset of every used slot, with memory reads (command 16, four bytes each: a
// block read of a slot would make the device run it). `backup` changes only when all is read.
BackupEnd ReadDeviceBackup(link::Link& link, int deviceId, DeviceBackup& backup,
                           const BackupProgress& progress = {});

enum class RestoreEnd {
  Completed,  // the device holds everything the backup holds
  Skipped,    // the link sends nothing
  Locked,     // the device is locked: nothing was sent ("System Lock")
  Failed,     // an exchange went unanswered; what went before it stays written
};

struct RestoreOutcome {
  RestoreEnd end = RestoreEnd::Completed;
  std::string stoppedAt;  // for Failed: the step ("the slot presets")
};

// Puts a checked backup on the device: reads its state first (refusing a locked device),
// then the system type (command 21, only when it differs), the running preset (the whole-preset
// transfer, every parameter sent), the device name (16 commands 17), every used slot's name and
// preset (commands 24) followed by its used mark (17), the used mark of every unused slot, and
// the running preset's name (commands 24 at 0x40: slot-name writes land there too). A slot's
// mark goes after its contents, so a restore that stops half-way never marks a slot used over
// a half-written preset it did not have before.
RestoreOutcome RestoreDeviceBackup(link::Link& link, int deviceId, const DeviceBackup& backup,
                                   const BackupProgress& progress = {});

}  // namespace talvex::presets
