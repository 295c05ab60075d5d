#include "protocol/frame.h"

#include <cmath>
#include <string>

namespace talvex {

void CheckIndex(long long value, long long max, const char* what) {
  if (value < 0 || value > max) {
    throw IndexError(std::string(what) + " " + std::to_string(value) + " is outside 0.." +
                     std::to_string(max));
  }
}

namespace protocol {

Frame BuildFrame(int deviceId, const Command& command) {
  CheckIndex(deviceId, kMaxDeviceId, "device ID");
  Frame frame{};
  frame[0] = kFrameStart;
  frame[1] = kFrameSecond;
  frame[2] = static_cast<std::uint8_t>(deviceId);
  frame[3] = command.code;
  for (std::size_t i = 0; i < command.params.size(); ++i)
    frame[4 + i] = command.params[i];
  frame[12] = kFrameEnd;
  return frame;
}

Command CommandOf(const Frame& frame) {
  Command command;
  command.code = frame[3];
  for (std::size_t i = 0; i < command.params.size(); ++i)
    command.params[i] = frame[4 + i];
  return command;
}

bool HasFrameEnvelope(std::span<const std::uint8_t> bytes) {
  return bytes.size() == kFrameSize && bytes[0] == kFrameStart && bytes[1] == kFrameSecond &&
         bytes[12] == kFrameEnd;
}

std::array<std::uint8_t, 4> SplitToBytes(double value) {
  // nearbyint honours the default rounding mode: to nearest, ties to even.
  const auto whole = static_cast<long long>(std::nearbyint(value));
  const auto bits = static_cast<std::uint32_t>(static_cast<unsigned long long>(whole));
  return {static_cast<std::uint8_t>(bits >> 24), static_cast<std::uint8_t>(bits >> 16),
          static_cast<std::uint8_t>(bits >> 8), static_cast<std::uint8_t>(bits)};
}

void PutAddress(Command& command, std::size_t address, int highParam) {
  const std::array<std::uint8_t, 4> bytes = SplitToBytes(static_cast<double>(address));
  command.p(highParam) = bytes[2];
  command.p(highParam + 1) = bytes[3];
}

Command AddressedCommand(std::uint8_t commandCode, std::size_t address) {
  Command command;
  command.code = commandCode;
  PutAddress(command, address);
  return command;
}

std::string ParameterKey(const Command& command) {
  const std::string codeKey = std::to_string(command.code);
  const auto with = [&](std::initializer_list<int> bytes) {
    std::string key = codeKey;
    for (int byte : bytes)
      key += "/" + std::to_string(byte);
    return key;
  };
  switch (command.code) {
    case code::kChannelLevel:
    case code::kDelay:
    case code::kPolarity:
    case code::kDbuLevel:  // threshold, attack and release travel together
    case code::kOutputSource:
    case code::kMute:
    case code::kChannelName:
      return with({command.p(1)});
    case code::kCrossover:    // p2: high-pass or low-pass
    case code::kEqBand:       // p2: the band in the channel; the command carries the whole band
    case code::kMemoryWrite:  // p1, p2: the address
      return with({command.p(1), command.p(2)});
    case code::kLimiter:  // the channel rides in p1's high nibble
      return with({command.p(1) >> 4});
    case code::kInputSource:
    case code::kChannelBits:  // the whole bit field
    case code::kSwitch:
      return codeKey;
    default:
      return {};
  }
}

std::string CommandName(std::uint8_t commandCode) {
  for (const CommandInfo& info : kCommandNames)
    if (info.code == commandCode) return std::string(info.name);
  return "code " + std::to_string(commandCode);
}

std::string FormatHex(std::span<const std::uint8_t> bytes) {
  static constexpr char kDigits[] = "0123456789ABCDEF";
  std::string text;
  text.reserve(bytes.size() * 3);
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (i > 0) text += ' ';
    text += kDigits[bytes[i] >> 4];
    text += kDigits[bytes[i] & 0x0F];
  }
  return text;
}

}  // namespace protocol
}  // namespace talvex
