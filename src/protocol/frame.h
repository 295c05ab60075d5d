// The 13-byte frame that carries every exchange with a TALVEX processor, the command codes,
// and the byte helpers shared by everything that builds command parameters.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

namespace talvex {

// Raised for an index outside its range (device above 32, slot above 10, channel above 7,
// band above 51 ...). Such a fault stops the operation; it is never clamped.
class IndexError : public std::out_of_range {
 public:
  using std::out_of_range::out_of_range;
};

inline constexpr int kMaxDeviceId = 32;
inline constexpr int kDeviceCount = kMaxDeviceId + 1;

// Throws IndexError naming `what` unless 0 <= value <= max.
void CheckIndex(long long value, long long max, const char* what);

namespace protocol {

inline constexpr std::size_t kFrameSize = 13;
inline constexpr std::size_t kBlockSize = 304;
inline constexpr std::uint8_t kFrameStart = 0xF0;
inline constexpr std::uint8_t kFrameSecond = 0x81;
inline constexpr std::uint8_t kFrameEnd = 0xF7;
// A device answers a presence poll with this byte at index 4.
inline constexpr std::uint8_t kPollAnswer = 0x81;
inline constexpr std::size_t kPollAnswerIndex = 4;

using Frame = std::array<std::uint8_t, kFrameSize>;

// Command codes (byte 3 of a frame).
namespace code {
inline constexpr std::uint8_t kPoll = 0;
inline constexpr std::uint8_t kChannelLevel = 1;
inline constexpr std::uint8_t kDelay = 2;
inline constexpr std::uint8_t kPolarity = 3;
inline constexpr std::uint8_t kCrossover = 4;
inline constexpr std::uint8_t kEqBand = 5;
inline constexpr std::uint8_t kDbuLevel = 7;
inline constexpr std::uint8_t kOutputSource = 8;
inline constexpr std::uint8_t kMute = 9;
inline constexpr std::uint8_t kReadBlock = 11;
inline constexpr std::uint8_t kInputSource = 13;
inline constexpr std::uint8_t kChannelName = 14;
inline constexpr std::uint8_t kRelease = 15;  // never acknowledged
inline constexpr std::uint8_t kMemoryRead = 16;
inline constexpr std::uint8_t kMemoryWrite = 17;
inline constexpr std::uint8_t kMeterPoll = 18;
inline constexpr std::uint8_t kSetSystemType = 21;  // long wait
inline constexpr std::uint8_t kReadState = 23;
inline constexpr std::uint8_t kStoreData = 24;
inline constexpr std::uint8_t kChannelBits = 29;
inline constexpr std::uint8_t kSwitch = 34;
inline constexpr std::uint8_t kLimiter = 35;
inline constexpr std::uint8_t kReadStateEnd = 36;
inline constexpr std::uint8_t kLeaveProgram = 143;  // never acknowledged
}  // namespace code

// The name of each command code above, for the line monitor and traces: what the command does
// on the device. Every code of the table has exactly one row.
struct CommandInfo {
  std::uint8_t code;
  std::string_view name;
};
inline constexpr std::array<CommandInfo, 24> kCommandNames = {{
    {code::kPoll, "poll"},
    {code::kChannelLevel, "level"},
    {code::kDelay, "delay"},
    {code::kPolarity, "polarity"},
    {code::kCrossover, "crossover"},
    {code::kEqBand, "EQ band"},
    {code::kDbuLevel, "limiter threshold"},
    {code::kOutputSource, "output source"},
    {code::kMute, "mute"},
    {code::kReadBlock, "read block"},
    {code::kInputSource, "input source"},
    {code::kChannelName, "channel name"},
    {code::kRelease, "release device"},
    {code::kMemoryRead, "memory read"},
    {code::kMemoryWrite, "memory write"},
    {code::kMeterPoll, "level meters"},
    {code::kSetSystemType, "system type"},
    {code::kReadState, "read state"},
    {code::kStoreData, "store data"},
    {code::kChannelBits, "channel bits"},
    {code::kSwitch, "output link"},
    {code::kLimiter, "limiter"},
    {code::kReadStateEnd, "read state end"},
    {code::kLeaveProgram, "leave program"},
}};

// The command's name, or "code N" for a code no device knows (line noise, a future command).
std::string CommandName(std::uint8_t commandCode);

// True for the two codes that a device never acknowledges (release and leave-program).
constexpr bool IsUnacknowledged(std::uint8_t commandCode) {
  return commandCode == code::kRelease || commandCode == code::kLeaveProgram;
}

// One command as the senders produce it: the code and its eight parameter bytes (p1..p8).
// Unused parameters stay 0.
struct Command {
  std::uint8_t code = 0;
  std::array<std::uint8_t, 8> params{};

  // Parameter n counted from 1, as the device documentation numbers them.
  constexpr std::uint8_t& p(int n) { return params.at(static_cast<std::size_t>(n - 1)); }
  constexpr std::uint8_t p(int n) const { return params.at(static_cast<std::size_t>(n - 1)); }

  friend constexpr bool operator==(const Command&, const Command&) = default;
};

// 0xF0, 0x81, device ID, code, p1..p8, 0xF7. Throws IndexError for an ID above 32.
Frame BuildFrame(int deviceId, const Command& command);

// The command carried by a frame (the inverse of BuildFrame, for replies and the simulator).
Command CommandOf(const Frame& frame);

// True when the bytes have the frame's envelope: 0xF0, 0x81 ... 0xF7.
bool HasFrameEnvelope(std::span<const std::uint8_t> bytes);

// Rounds `value` to a whole number (ties to even, as the device's tools always did) and
// returns it as four bytes, most significant first. Memory addresses and large parameter
// values go out as bytes 2 and 3 of this result (the 16-bit high and low byte).
std::array<std::uint8_t, 4> SplitToBytes(double value);

// Writes a device-memory address into parameters `highParam` and the one after it, high byte
// first: bytes 2 and 3 of SplitToBytes, as the device takes every address.
void PutAddress(Command& command, std::size_t address, int highParam = 1);
// A command of `commandCode` addressing device memory at `address` (p1 high, p2 low).
Command AddressedCommand(std::uint8_t commandCode, std::size_t address);

// What a command sets, for commands that set one parameter as a whole ("5/2/3" for band 3 of
// Out 1): a later command with the same key replaces the earlier one's effect, so a command
// that still waits to go out may be dropped for it. Empty for commands that must each go out
// (polls, reads, stores, releases).
std::string ParameterKey(const Command& command);

// "F0 81 03 10 01 70 00 00 00 00 00 00 F7": upper-case hex, single spaces.
std::string FormatHex(std::span<const std::uint8_t> bytes);

}  // namespace protocol
}  // namespace talvex
