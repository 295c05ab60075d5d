#include "sim/apply_command.h"

#include "params/limiter.h"

namespace talvex::sim {

namespace code = protocol::code;
using params::kInputCount;

namespace {

bool IsChannel(int channel) {
  return channel < params::kChannelCount;
}

bool IsOutput(int channel) {
  return channel >= kInputCount && channel < params::kChannelCount;
}

std::size_t Index(int value) {
  return static_cast<std::size_t>(value);
}

// Writes p(first) .. p(first + count - 1) to the image from `offset` on.
void Put(DeviceState& state, std::size_t offset, const protocol::Command& command, int first,
         int count) {
  for (int i = 0; i < count; ++i)
    state.live[offset + Index(i)] = command.p(first + i);
}

// Inputs: p6 and p8 are the level's high and low byte. Outputs: p8 the level, p7 the
// polarity byte that travels with it.
void ApplyLevel(DeviceState& state, const protocol::Command& command, int channel) {
  const std::size_t base = params::ChannelBase[Index(channel)];
  if (channel < kInputCount) {
    state.live[base] = command.p(6);
    state.live[base + 1] = command.p(8);
  } else {
    state.live[base] = command.p(8);
    state.live[params::PolarityOffset[Index(channel)]] = command.p(7);
  }
}

// p7 the polarity, p8 the channel's level byte (for inputs the high byte of the level).
void ApplyPolarity(DeviceState& state, const protocol::Command& command, int channel) {
  state.live[params::ChannelBase[Index(channel)]] = command.p(8);
  if (channel < kInputCount)
    state.inputPolarity[Index(channel)] = command.p(7);
  else
    state.live[params::PolarityOffset[Index(channel)]] = command.p(7);
}

void ApplyEqBand(DeviceState& state, const protocol::Command& command, int channel) {
  const int bandInChannel = command.p(2);
  if (bandInChannel >= params::BandsOf(channel)) return;
  const int band = params::GlobalBand(channel, bandInChannel);
  state.live[params::EqChannelByte[Index(channel)]] = command.p(5);
  Put(state, params::EqBandStart[Index(band)], command, 6, 3);
}

void ApplyCrossover(DeviceState& state, const protocol::Command& command, int channel) {
  if (command.p(2) > 1) return;
  const int filter = 2 * (channel - kInputCount) + command.p(2);
  Put(state, params::CrossoverOffset[Index(filter)], command, 7, 2);
}

// The frame's byte names the channel in its high nibble; the device keeps the level.
void ApplyLimiter(DeviceState& state, std::uint8_t p1) {
  const int channel = params::LimiterChannelOfFrameByte(p1);
  const int level = params::LimiterLevelOfFrameByte(p1);
  if (!IsChannel(channel) || level >= params::LimiterLevelCount(channel)) return;
  state.live[params::LimiterOffset[Index(channel)]] = static_cast<std::uint8_t>(level);
}

void ApplyChannelCommand(DeviceState& state, const protocol::Command& command) {
  const int channel = command.p(1);
  if (!IsChannel(channel)) return;
  const bool output = IsOutput(channel);
  switch (command.code) {
    case code::kChannelLevel:
      return ApplyLevel(state, command, channel);
    case code::kPolarity:
      return ApplyPolarity(state, command, channel);
    case code::kMute:
      state.mute[Index(channel)] = command.p(8);
      return;
    case code::kDelay:
      state.deviceWide = command.p(5);
      return Put(state, params::DelayOffset[Index(channel)], command, 6, 3);
    case code::kEqBand:
      return ApplyEqBand(state, command, channel);
    case code::kDbuLevel:
      if (output) Put(state, params::OutputPlus2[Index(channel)], command, 6, 3);
      return;
    case code::kOutputSource:
      if (output)
        state.live[params::OutputSourceOffset[Index(channel - kInputCount)]] = command.p(8);
      return;
    case code::kCrossover:
      if (output) ApplyCrossover(state, command, channel);
      return;
    case code::kChannelName:
      if (output) Put(state, params::NameOffset[Index(channel)], command, 3, 6);
      return;
    default:
      return;
  }
}

}  // namespace

bool IsParameterCode(std::uint8_t commandCode) {
  switch (commandCode) {
    case code::kChannelLevel:
    case code::kDelay:
    case code::kPolarity:
    case code::kCrossover:
    case code::kEqBand:
    case code::kDbuLevel:
    case code::kOutputSource:
    case code::kMute:
    case code::kInputSource:
    case code::kChannelName:
    case code::kChannelBits:
    case code::kSwitch:
    case code::kLimiter:
      return true;
    default:
      return false;
  }
}

void ApplyCommand(DeviceState& state, const protocol::Command& command) {
  switch (command.code) {
    case code::kInputSource:
      state.inputSource = command.p(8);
      return;
    case code::kChannelBits:
      state.live[params::kChannelBitsByte] = command.p(1);
      return;
    case code::kSwitch:
      state.outputLink = command.p(1);
      return;
    case code::kLimiter:
      return ApplyLimiter(state, command.p(1));
    default:
      if (IsParameterCode(command.code)) ApplyChannelCommand(state, command);
      return;
  }
}

}  // namespace talvex::sim
