// Addresses of the processor's own memory, as reached with commands 16 (read), 17 (write one
// byte) and 24 (write four bytes). The device keeps its presets, names and settings here.
#pragma once

#include <cstddef>
#include <cstdint>

namespace talvex::protocol::memory {

inline constexpr std::size_t kSize = 8192;

inline constexpr std::size_t kOption = 0x12;  // device-wide option switched by command 17
// Lock state: 1 = locked, 0 = unlocked (any other value reads as locked). While locked the
// device keeps every setting as it is: see SimDevice for what it still accepts.
inline constexpr std::size_t kLock = 0x16;
inline constexpr std::uint8_t kLocked = 1;
inline constexpr std::uint8_t kUnlocked = 0;
// The six characters of the lock password, one byte each (their places in the password
// table, see presets/system_lock.h), right after the single settings at 0x16 and 0x17. A
// device that was never given a password holds six zeros: six blanks.
inline constexpr std::size_t kPassword = 0x18;
inline constexpr std::size_t kPasswordLength = 6;
// The name of the preset the device is running: 16 characters. The device takes a preset it
// stores as its current one, so it copies every slot-name byte written to this place too.
inline constexpr std::size_t kPresetName = 0x40;
inline constexpr std::size_t kPresetNameLength = 16;

inline constexpr std::size_t kUsedMarks = 32;  // one byte per preset slot, 85 = slot in use
inline constexpr std::uint8_t kUsedMark = 85;
inline constexpr std::size_t kDeviceName = 368;  // 16 characters, 368..383
inline constexpr std::size_t kDeviceNameLength = 16;
inline constexpr std::size_t kSlotNames = 384;  // 16 characters per slot
inline constexpr std::size_t kSlotNameLength = 16;
inline constexpr std::size_t kSlotData = 768;  // 304 bytes per slot
inline constexpr std::size_t kSlotDataLength = 304;

constexpr std::size_t SlotNameAddress(int slot) {
  return kSlotNames + kSlotNameLength * static_cast<std::size_t>(slot);
}
constexpr std::size_t SlotDataAddress(int slot) {
  return kSlotData + kSlotDataLength * static_cast<std::size_t>(slot);
}

}  // namespace talvex::protocol::memory
