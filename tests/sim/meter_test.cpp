// Command 18: the simulated device's meters follow each channel's level and mute.
#include <gtest/gtest.h>

#include <algorithm>

#include "sim/sim_device.h"

namespace talvex::sim {
namespace {

using Levels = std::array<std::uint8_t, 8>;

protocol::Frame Request(std::uint8_t code, std::array<std::uint8_t, 8> params = {}) {
  protocol::Command command;
  command.code = code;
  command.params = params;
  return protocol::BuildFrame(0, command);
}

// Level commands as they come over the wire. Inputs carry a step of 0.1 dB from -15 dB in p6
// (high) and p8 (low); outputs one from -12 dB in p8.
protocol::Frame InputLevel(std::uint8_t channel, double db) {
  const int step = static_cast<int>((db + 15) * 10 + 0.5);
  return Request(protocol::code::kChannelLevel,
                 {channel, 0, 0, 0, 0, static_cast<std::uint8_t>(step >> 8), 0,
                  static_cast<std::uint8_t>(step & 0xFF)});
}
protocol::Frame OutputLevel(std::uint8_t channel, double db) {
  return Request(protocol::code::kChannelLevel,
                 {channel, 0, 0, 0, 0, 0, 0, static_cast<std::uint8_t>((db + 12) * 10 + 0.5)});
}
protocol::Frame Mute(std::uint8_t channel) {
  return Request(protocol::code::kMute, {channel, 0, 0, 0, 0, 0, 0, 1});
}
protocol::Frame Source(std::uint8_t channel, std::uint8_t input) {
  return Request(protocol::code::kOutputSource, {channel, 0, 0, 0, 0, 0, 0, input});
}

Levels Meters(SimDevice& device) {
  const auto reply = device.Handle(Request(protocol::code::kMeterPoll));
  EXPECT_EQ(reply.size(), protocol::kFrameSize);
  EXPECT_EQ(reply[3], protocol::code::kMeterPoll);
  Levels levels{};
  std::copy_n(reply.begin() + 4, levels.size(), levels.begin());
  return levels;
}

// The first poll of a device meets its programme at -20 dBFS: byte 80 at 0 dB. The factory
// preset of type 0 feeds Out 1, 3, 5 from In A and Out 2, 4, 6 from In B.
TEST(MeterTest, shouldFollowEachChannelsLevelAndMute) {
  const struct {
    const char* what;
    std::vector<protocol::Frame> setup;
    Levels expected;  // In A, In B, Out 1 .. Out 6
  } cases[] = {
      {"factory levels", {}, {80, 80, 80, 80, 80, 80, 80, 80}},
      {"In A +6 dB reaches its outputs", {InputLevel(0, 6)}, {92, 80, 92, 80, 92, 80, 92, 80}},
      {"Out 2 at -12 dB", {OutputLevel(3, -12)}, {80, 80, 80, 56, 80, 80, 80, 80}},
      {"In A -3.5 dB, Out 1 +2.5 dB",
       {InputLevel(0, -3.5), OutputLevel(2, 2.5)},
       {73, 80, 78, 80, 73, 80, 73, 80}},
      {"muted In B silences Out 2, 4, 6", {Mute(1)}, {80, 0, 80, 0, 80, 0, 80, 0}},
      {"muted Out 4 alone", {Mute(5)}, {80, 80, 80, 80, 80, 0, 80, 80}},
      {"Out 1 fed from In B",
       {InputLevel(1, 15), Source(2, 1)},
       {80, 110, 110, 110, 80, 110, 80, 110}},
      {"clipped at full scale",
       {InputLevel(0, 15), OutputLevel(2, 6), OutputLevel(4, 4)},
       {110, 80, 120, 80, 118, 80, 110, 80}},
  };
  for (const auto& c : cases) {
    SimDevice device(0);
    for (const protocol::Frame& frame : c.setup)
      device.Handle(frame);
    EXPECT_EQ(Meters(device), c.expected) << c.what;
  }
}

// The programme swings slowly around -20 dBFS with the device's own count of meter polls, so
// that two runs read the same levels.
TEST(MeterTest, shouldVarySlowlyAndRepeatably) {
  SimDevice first(0);
  SimDevice second(0);
  second.Handle(InputLevel(0, 0));  // other frames do not move the programme
  std::vector<int> inA;
  for (int poll = 0; poll < 80; ++poll) {
    const Levels levels = Meters(first);
    EXPECT_EQ(Meters(second), levels) << poll;
    inA.push_back(levels[0]);
  }
  const auto [low, high] = std::minmax_element(inA.begin(), inA.end());
  EXPECT_EQ(*low, 74);   // -23 dBFS
  EXPECT_EQ(*high, 86);  // -17 dBFS
  for (std::size_t i = 1; i < inA.size(); ++i)
    EXPECT_LE(std::abs(inA[i] - inA[i - 1]), 1) << i;
}

}  // namespace
}  // namespace talvex::sim
