// Locking a device against changes from its front panel and the editor, unlocking it with its
// six-character password, and giving it a new password ("Password" in the editor's toolbar).
//
// The device keeps the lock state at memory 0x16 (1 locked, 0 unlocked; image byte 327 and the
// state's lock copy hold the same) and the password at 0x18..0x1D, one byte per character: the
// character's place in CheckNum's table. The program learns the password by reading those six
// bytes (ReadDevicePassword, two memory reads) when it connects the device, right after the
// state read, and compares typed passwords with that copy: a wrong password sends nothing.
//
// Every step is a single command 17 or a short list of them; the desktop program changes the
// model on the UI thread (LockDevice, UnlockDevice) and sends as a job on the link worker
// thread (SendCommandList).
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "link/link.h"
#include "params/device_params.h"
#include "presets/conversation.h"
#include "presets/device_state.h"

namespace talvex::presets {

// The dialog's text names the lock state: "System Lock" while locked, "System Unlock" while not.
inline constexpr std::string_view kSystemLockText = "System Lock";
inline constexpr std::string_view kSystemUnlockText = "System Unlock";
inline constexpr std::string_view kInsertPasswordTitle = "Insert Password";
inline constexpr std::string_view kNewPasswordTitle = "New Password";
inline constexpr std::string_view kPasswordWrongText = "Password wrong";  // information icon
inline constexpr std::string_view kValuePasswordWrongText = "Value password wrong";
inline constexpr std::string_view kPasswordsDontMatchText = "Passwords don't match ";

inline constexpr std::size_t kPasswordLength = 6;
using Password = std::array<std::uint8_t, kPasswordLength>;

// CheckNum's table, 63 characters: the blank, "0".."9", then "A", "a", "B", "b", .. "Z", "z".
inline constexpr std::array<char, 63> kPasswordTable = [] {
  std::array<char, 63> table{};
  std::size_t i = 0;
  table[i++] = ' ';
  for (char digit = '0'; digit <= '9'; ++digit)
    table[i++] = digit;
  for (char letter = 0; letter < 26; ++letter) {
    table[i++] = static_cast<char>('A' + letter);
    table[i++] = static_cast<char>('a' + letter);
  }
  return table;
}();

// A character's place in the table, which is the very byte the device keeps for it (blank 0,
// "0" 1, "9" 10, "A" 11, "a" 12, "z" 62); nullopt for a character outside the table.
std::optional<std::uint8_t> CheckNum(char c);
// The way back; nullopt for a byte above 62.
std::optional<char> CheckNumChar(std::uint8_t code);

// VerifyPassword: exactly six characters, each from the table.
bool VerifyPassword(std::string_view text);
// VerifyNewPassword: the repetition equals the new password.
bool VerifyNewPassword(std::string_view password, std::string_view repeated);
// CheckCorrectPassword: the typed text, taken as six characters (cut after six, blanks added
// up to six, so a device that never had a password, six blanks, opens with an empty text),
// encodes to the device's password. False when the password is not known.
bool CheckCorrectPassword(std::string_view typed, const std::optional<Password>& known);

// "System Lock" or "System Unlock".
std::string_view LockText(bool locked);

// Reads the six password bytes from device memory 0x18 with two command-16 reads into
// state.password. Received, Skipped (the link sends nothing) or Failed (nothing changed).
StateRead ReadDevicePassword(link::Link& link, int deviceId, DeviceState& state);

// Command 17 writing `lockByte` to memory 0x16: p1 = 0, p2 = 22, p5 = the byte, the rest 0.
protocol::Command LockByteCommand(std::uint8_t lockByte);

// Locking (UI thread): the lock state and image byte 327 become 1 (they stay so even if the
// device does not answer); returns the command sending byte 327.
protocol::Command LockDevice(params::DeviceParams& device, DeviceState& state);

// Unlocking: kPasswordWrongText (title "Insert Password") when the typed password is not the
// device's, and nothing may change or be sent; nullopt when it is.
std::optional<std::string_view> CheckUnlock(std::string_view typed, const DeviceState& state);
// After CheckUnlock passed (UI thread): state and byte 327 become 0; returns the command.
protocol::Command UnlockDevice(params::DeviceParams& device, DeviceState& state);

// A new password: kValuePasswordWrongText unless it is six characters from the table, then
// kPasswordsDontMatchText unless the repetition equals it (both titled "New Password"); nullopt
// when it may be sent.
std::optional<std::string_view> CheckNewPassword(std::string_view password,
                                                 std::string_view repeated);
// Six commands 17, one per character: p1 = 0, p2 = 0x18 + i, p5 = its table place.
// std::invalid_argument when CheckNewPassword refuses the text.
std::vector<protocol::Command> NewPasswordCommands(std::string_view password);
// After sending (UI thread): the device's password is the new one once every character went
// through; after a stop it is half written, so the program forgets it (a new connection reads
// it again).
void FinishNewPassword(DeviceState& state, std::string_view password, const ListOutcome& outcome);

}  // namespace talvex::presets
