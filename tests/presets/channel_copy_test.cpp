#include "presets/channel_copy.h"

#include "params/image_decode.h"
#include "presets/conversation.h"
#include "sim_bench.h"

namespace talvex::presets {
namespace {

using ChannelCopyTest = SimBench;

std::vector<int> CodesOf(const ChannelCopy& copy) {
  std::vector<int> codes;
  for (const params::ParamEdit& edit : copy.edits)
    codes.push_back(edit.command.code);
  return codes;
}

// Everything a copy carries over, read back from the image.
struct ChannelSettings {
  double level;
  bool bypassed;
  std::vector<std::array<double, 3>> bands;
  int delay;
  bool operator==(const ChannelSettings&) const = default;
};

ChannelSettings SettingsOf(const params::ParamImage& image, int channel) {
  ChannelSettings settings{params::LevelDb(image, channel),
                           params::EqBypassed(image, channel),
                           {},
                           params::DelaySamples(image, channel)};
  for (int i = 0; i < params::BandsOf(channel); ++i) {
    const int band = params::GlobalBand(channel, i);
    settings.bands.push_back({params::BandFrequency(image, band),
                              static_cast<double>(params::BandWidthIndex(image, band)),
                              params::BandGainDb(image, band)});
  }
  return settings;
}

TEST_F(ChannelCopyTest, shouldRefuseACopyOntoTheSameChannel) {
  EXPECT_EQ(CheckCopy(0, 0), kSameChannelText);
  EXPECT_EQ(CheckCopy(6, 6), "Copy not possible, Source=Destination");
  EXPECT_EQ(CheckCopy(1, 0), std::nullopt);
  EXPECT_EQ(CheckCopy(2, 7), std::nullopt);
  EXPECT_THROW(CheckCopy(0, 2), IndexError);
  EXPECT_THROW(CheckCopy(7, 8), IndexError);
}

TEST_F(ChannelCopyTest, shouldCopyInputAOntoInputBInItsOrder) {
  params::Senders senders(device);
  senders.Level(0, -3.5);
  senders.EqBypass(0, true);
  senders.EqBand(2, {80, 1, 4.5});
  senders.Delay(0, {12, 5});
  const params::ParamImage before = device.image;
  const ChannelCopy copy = CopyInputAToB(device);
  EXPECT_EQ(CodesOf(copy), (std::vector<int>{1, 29, 5, 5, 5, 5, 5, 2}));
  EXPECT_EQ(copy.edits[1].command.p(1), 0b11);  // both bypass bits, sent whole
  EXPECT_EQ(SettingsOf(device.image, 1), SettingsOf(device.image, 0));
  EXPECT_EQ(SettingsOf(device.image, 0), SettingsOf(before, 0));
  EXPECT_DOUBLE_EQ(device.values.LevelDb(1), -3.5);
}

TEST_F(ChannelCopyTest, shouldMakeEverySettingOfOut6EqualToOut1s) {
  params::Senders senders(device);
  senders.Level(2, -4);
  senders.Crossover(0, 80, 3);
  senders.Crossover(1, 2000, 7);
  senders.Crossover(11, 500, 1);
  senders.LimiterThreshold(2, 6);
  senders.LimiterAttack(2, 30);
  senders.LimiterRelease(2, 12);
  senders.EqBypass(2, true);
  senders.EqBand(13, {63, 20, -7.5});
  senders.Polarity(2, true);
  senders.Delay(2, {3, 40});
  const params::ParamImage before = device.image;
  const ChannelCopy copy = CopyOutput(device, 2, 7);
  EXPECT_EQ(CodesOf(copy),
            (std::vector<int>{1, 4, 4, 7, 7, 7, 4, 4, 29, 5, 5, 5, 5, 5, 5, 5, 3, 2}));
  // Slope and type first, at Out 6's own frequencies (low-pass 500 Hz), then the frequencies.
  EXPECT_EQ(protocol::FormatHex(std::span(copy.edits[2].command.params)),
            "07 01 00 00 00 00 70 07");
  EXPECT_EQ(protocol::FormatHex(std::span(copy.edits[7].command.params)),
            "07 01 00 00 00 00 A0 07");

  const auto block = [](const params::ParamImage& image, int k) {
    const auto first = image.begin() + static_cast<long>(params::OutputBlock(k));
    return std::vector<std::uint8_t>(first + 1, first + 36);  // all but source and name
  };
  EXPECT_EQ(block(device.image, 6), block(device.image, 1));
  EXPECT_EQ(block(device.image, 1), block(before, 1));
  EXPECT_EQ(params::EqBypassed(device.image, 7), true);
  EXPECT_EQ(params::OutputName(device.image, 7), "Sub-B ");  // names are not copied

  // On the wire the device ends up with the same Out 6.
  const ListOutcome sent = SendCommandList(link, kId, CommandsOf(copy.edits));
  EXPECT_EQ(sent.acknowledged, 18);
  const auto& live = Device().LiveImage();
  const auto out6 = live.begin() + static_cast<long>(params::OutputBlock(6));
  EXPECT_TRUE(std::equal(out6 + 1, out6 + 34, block(device.image, 6).begin()));
}

}  // namespace
}  // namespace talvex::presets
