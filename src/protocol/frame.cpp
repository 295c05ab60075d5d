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
