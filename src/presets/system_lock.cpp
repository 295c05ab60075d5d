#include "presets/system_lock.h"

#include <algorithm>
#include <stdexcept>

#include "protocol/memory_map.h"

namespace talvex::presets {

namespace mem = protocol::memory;

namespace {

std::optional<Password> Encode(std::string_view text) {
  if (text.size() != kPasswordLength) return std::nullopt;
  Password password{};
  for (std::size_t i = 0; i < kPasswordLength; ++i) {
    const auto code = CheckNum(text[i]);
    if (!code) return std::nullopt;
    password[i] = *code;
  }
  return password;
}

// The lock state, its image byte 327 and the command carrying that byte.
protocol::Command SetLock(params::DeviceParams& device, DeviceState& state, std::uint8_t byte) {
  state.lock = byte;
  device.image[params::kLockByte] = byte;
  return LockByteCommand(device.image[params::kLockByte]);
}

}  // namespace

std::optional<std::uint8_t> CheckNum(char c) {
  const auto* at = std::find(kPasswordTable.begin(), kPasswordTable.end(), c);
  if (at == kPasswordTable.end()) return std::nullopt;
  return static_cast<std::uint8_t>(at - kPasswordTable.begin());
}

std::optional<char> CheckNumChar(std::uint8_t code) {
  if (code >= kPasswordTable.size()) return std::nullopt;
  return kPasswordTable[code];
}

bool VerifyPassword(std::string_view text) {
  return Encode(text).has_value();
}

bool VerifyNewPassword(std::string_view password, std::string_view repeated) {
  return password == repeated;
}

bool CheckCorrectPassword(std::string_view typed, const std::optional<Password>& known) {
  std::string taken(typed.substr(0, kPasswordLength));
  taken.resize(kPasswordLength, ' ');
  const std::optional<Password> encoded = Encode(taken);
  return known && encoded && *encoded == *known;
}

std::string_view LockText(bool locked) {
  return locked ? kSystemLockText : kSystemUnlockText;
}

StateRead ReadDevicePassword(link::Link& link, int deviceId, DeviceState& state) {
  Password password{};
  const StateRead read = ReadDeviceMemory(link, deviceId, mem::kPassword, password);
  if (read == StateRead::Received) state.password = password;
  return read;
}

protocol::Command LockByteCommand(std::uint8_t lockByte) {
  protocol::Command command = protocol::AddressedCommand(protocol::code::kMemoryWrite, mem::kLock);
  command.p(5) = lockByte;
  return command;
}

protocol::Command LockDevice(params::DeviceParams& device, DeviceState& state) {
  return SetLock(device, state, mem::kLocked);
}

std::optional<std::string_view> CheckUnlock(std::string_view typed, const DeviceState& state) {
  if (!CheckCorrectPassword(typed, state.password)) return kPasswordWrongText;
  return std::nullopt;
}

protocol::Command UnlockDevice(params::DeviceParams& device, DeviceState& state) {
  return SetLock(device, state, mem::kUnlocked);
}

std::optional<std::string_view> CheckNewPassword(std::string_view password,
                                                 std::string_view repeated) {
  if (!VerifyPassword(password)) return kValuePasswordWrongText;
  if (!VerifyNewPassword(password, repeated)) return kPasswordsDontMatchText;
  return std::nullopt;
}

std::vector<protocol::Command> NewPasswordCommands(std::string_view password) {
  const std::optional<Password> encoded = Encode(password);
  if (!encoded) throw std::invalid_argument(std::string(kValuePasswordWrongText));
  std::vector<protocol::Command> commands;
  for (std::size_t i = 0; i < kPasswordLength; ++i) {
    protocol::Command command =
        protocol::AddressedCommand(protocol::code::kMemoryWrite, mem::kPassword + i);
    command.p(5) = (*encoded)[i];
    commands.push_back(command);
  }
  return commands;
}

void FinishNewPassword(DeviceState& state, std::string_view password, const ListOutcome& outcome) {
  if (outcome.end == ListEnd::Stopped)
    state.password.reset();
  else
    state.password = Encode(password);
}

}  // namespace talvex::presets
