#include "sim/apply_command.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "params/senders.h"
#include "sim/sim_device.h"

namespace talvex::sim {
namespace {

using params::Senders;

std::vector<std::uint8_t> Send(SimDevice& device, const protocol::Command& command) {
  return device.Handle(protocol::BuildFrame(device.Id(), command));
}

bool SameAsLive(const params::ParamImage& image, const params::PresetImage& live) {
  return std::equal(live.begin(), live.end(), image.begin());
}

// Every sender's command, applied by the device, leaves its live image equal to bytes
// 0..303 of the image the sender wrote: a value set on the device reads back the same.
TEST(ApplyCommandTest, shouldHoldWhatEverySenderWroteAtTheSameOffsets) {
  const std::function<params::ParamEdit(Senders&)> edits[] = {
      [](Senders& s) { return s.Level(0, 15); },
      [](Senders& s) { return s.Level(3, -3.5); },
      [](Senders& s) { return s.Polarity(7, true); },
      [](Senders& s) { return s.Polarity(1, true); },
      [](Senders& s) {
        return s.Delay(1, {1000, 0});
      },
      [](Senders& s) {
        return s.Delay(5, {3, 47});
      },
      [](Senders& s) {
        return s.EqBand(9, {63, 1, -15});
      },
      [](Senders& s) {
        return s.EqBand(51, {12500, 40, 7.5});
      },
      [](Senders& s) { return s.Crossover(0, 80, 6); },
      [](Senders& s) { return s.Crossover(11, 2500, 8); },
      [](Senders& s) { return s.LimiterThreshold(4, -4.4); },
      [](Senders& s) { return s.LimiterAttack(4, 51); },
      [](Senders& s) { return s.LimiterRelease(6, 40); },
      [](Senders& s) { return s.OutputSource(2, 1); },
      [](Senders& s) { return s.OutputName(6, "Horn"); },
      [](Senders& s) { return s.Limiter(1, 4); },
      [](Senders& s) { return s.Limiter(7, 9); },
      [](Senders& s) { return s.EqBypass(5, true); },
  };
  params::DeviceParams model = params::DeviceParams::FromDefault(1);
  Senders senders(model);
  SimDevice device(3, 1);
  for (const auto& edit : edits) {
    const protocol::Command command = edit(senders).command;
    const std::vector<std::uint8_t> reply = Send(device, command);
    const protocol::Frame sent = protocol::BuildFrame(3, command);
    EXPECT_EQ(reply, std::vector<std::uint8_t>(sent.begin(), sent.end()));  // echoed
    EXPECT_TRUE(SameAsLive(model.image, device.LiveImage())) << int(command.code);
  }
  protocol::Command read;
  read.code = protocol::code::kReadBlock;
  read.p(1) = read.p(2) = 255;
  const std::vector<std::uint8_t> block = Send(device, read);
  EXPECT_TRUE(std::equal(block.begin(), block.end(), model.image.begin()));
}

TEST(ApplyCommandTest, shouldKeepWhatTheImageDoesNotHoldInTheDeviceState) {
  params::DeviceParams model = params::DeviceParams::FromDefault(0);
  Senders senders(model);
  SimDevice device(0);
  Send(device, senders.Mute(6, true).command);
  Send(device, senders.InputSource(1).command);
  Send(device, senders.Polarity(0, true).command);
  Send(device, senders.OutputLink(true).command);
  Send(device, senders.Delay(2, {1, 0}).command);
  EXPECT_EQ(device.State().mute[6], 1);
  EXPECT_EQ(device.State().inputSource, 1);
  EXPECT_EQ(device.State().inputPolarity[0], 1);
  EXPECT_EQ(device.State().outputLink, 1);
  EXPECT_TRUE(SameAsLive(model.image, device.LiveImage()));
}

TEST(ApplyCommandTest, shouldIgnoreChannelsBandsAndFiltersTheDeviceDoesNotHave) {
  const std::array<std::array<std::uint8_t, 9>, 7> commands = {{
      {protocol::code::kChannelLevel, 8, 0, 0, 0, 0, 0, 0, 99},
      {protocol::code::kEqBand, 0, 5, 0, 0, 0, 1, 1, 1},  // inputs have bands 0..4
      {protocol::code::kCrossover, 2, 2, 0, 0, 0, 0, 9, 9},
      {protocol::code::kCrossover, 1, 0, 0, 0, 0, 0, 9, 9},  // inputs have no crossover
      {protocol::code::kDbuLevel, 0, 0, 0, 0, 0, 9, 9, 9},
      {protocol::code::kLimiter, 0x05, 0, 0, 0, 0, 0, 0, 0},  // inputs offer five levels
      {protocol::code::kLimiter, 0x80, 0, 0, 0, 0, 0, 0, 0},
  }};
  SimDevice device(0);
  const params::PresetImage before = device.LiveImage();
  for (const auto& bytes : commands) {
    protocol::Command command;
    command.code = bytes[0];
    std::copy(bytes.begin() + 1, bytes.end(), command.params.begin());
    EXPECT_EQ(Send(device, command).size(), protocol::kFrameSize);
  }
  EXPECT_EQ(device.LiveImage(), before);
}

}  // namespace
}  // namespace talvex::sim
