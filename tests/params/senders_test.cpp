#include "params/senders.h"

#include <gtest/gtest.h>

#include <functional>

#include "params/image_decode.h"
#include "protocol/frame.h"

namespace talvex::params {
namespace {

std::string Bytes(const protocol::Command& command) {
  return protocol::FormatHex(protocol::BuildFrame(0, command));
}

struct SenderCase {
  const char* what;
  std::function<ParamEdit(Senders&)> send;
  const char* frame;  // to device 0
  std::vector<std::string> labels;
};

// Every code a sender produces, on a device at the factory settings of "2x2 WAY XOVER + SUB".
TEST(SendersTest, shouldProduceExactlyTheBytesTheDeviceExpects) {
  const SenderCase cases[] = {
      {"Out 2 level -3.5 dB",
       [](Senders& s) { return s.Level(3, -3.5); },
       "F0 81 00 01 03 00 00 00 00 00 00 55 F7",
       {"-3.5 dB"}},
      {"In A level 0.2 dB",
       [](Senders& s) { return s.Level(0, 0.2); },
       "F0 81 00 01 00 00 00 00 00 00 00 98 F7",
       {"0.2 dB"}},
      {"In B level +15 dB needs the high byte",
       [](Senders& s) { return s.Level(1, 15); },
       "F0 81 00 01 01 00 00 00 00 01 00 2C F7",
       {"15 dB"}},
      {"Out 1 polarity 180",
       [](Senders& s) { return s.Polarity(2, true); },
       "F0 81 00 03 02 00 00 00 00 00 01 78 F7",
       {"180'"}},
      {"In A polarity 180 carries the level's high byte",
       [](Senders& s) { return s.Polarity(0, true); },
       "F0 81 00 03 00 00 00 00 00 00 01 00 F7",
       {"180'"}},
      {"Out 6 mute",
       [](Senders& s) { return s.Mute(7, true); },
       "F0 81 00 09 07 00 00 00 00 00 00 01 F7",
       {"Unmute"}},
      {"In B unmute",
       [](Senders& s) { return s.Mute(1, false); },
       "F0 81 00 09 01 00 00 00 00 00 00 00 F7",
       {"Mute"}},
      {"S/PDIF input",
       [](Senders& s) { return s.InputSource(1); },
       "F0 81 00 0D 00 00 00 00 00 00 00 01 F7",
       {" SPDIF ", " SPDIF "}},
      {"analogue inputs",
       [](Senders& s) { return s.InputSource(0); },
       "F0 81 00 0D 00 00 00 00 00 00 00 00 F7",
       {"Input 1", "Input 2"}},
      {"Out 5 from In B",
       [](Senders& s) { return s.OutputSource(6, 1); },
       "F0 81 00 08 06 00 00 00 00 00 00 01 F7",
       {"+ InB"}},
      {"Out 1 threshold 0 dBu",
       [](Senders& s) { return s.LimiterThreshold(2, 0); },
       "F0 81 00 07 02 00 00 00 00 13 00 32 F7",
       {"0 dBu"}},
      {"Out 1 attack 0.5 ms",
       [](Senders& s) { return s.LimiterAttack(2, 0); },
       "F0 81 00 07 02 00 00 00 00 00 00 96 F7",
       {"0.5"}},
      {"Out 6 release 500 ms",
       [](Senders& s) { return s.LimiterRelease(7, 40); },
       "F0 81 00 07 07 00 00 00 00 13 28 96 F7",
       {"500"}},
      {"Out 1 delay 10 coarse 5 fine",
       [](Senders& s) {
         return s.Delay(2, {10, 5});
       },
       "F0 81 00 02 02 00 00 00 00 00 0A 05 F7",
       {"10.005 ms"}},
      {"In A delay one second",
       [](Senders& s) {
         return s.Delay(0, {1000, 0});
       },
       "F0 81 00 02 00 00 00 00 00 03 E8 00 F7",
       {"990.387 ms"}},
      {"delays shown in metres",
       [](Senders& s) { return s.DelayUnit(1); },
       "F0 81 00 11 00 12 00 00 01 00 00 00 F7",
       {" m"}},
      {"Out 6 limiter +9 dBu",
       [](Senders& s) { return s.Limiter(7, 2); },
       "F0 81 00 23 72 00 00 00 00 00 00 00 F7",
       {"  Limit+ 9 dBu"}},
      {"In A limiter clip",
       [](Senders& s) { return s.Limiter(0, 0); },
       "F0 81 00 23 00 00 00 00 00 00 00 00 F7",
       {"  Limit Clip"}},
      {"outputs linked",
       [](Senders& s) { return s.OutputLink(true); },
       "F0 81 00 22 01 00 00 00 00 00 00 00 F7",
       {}},
      {"band 51 = Out 6 band 6",
       [](Senders& s) {
         return s.EqBand(51, {20000, 63, 15});
       },
       "F0 81 00 05 07 06 00 00 00 F0 3F 3C F7",
       {"20000", "3.00", "15", "~~~~~~"}},
      {"band 10 = Out 1 band 0, a shelf at 0 dB",
       [](Senders& s) {
         return s.EqBand(10, {20.3, 2, 0});
       },
       "F0 81 00 05 02 00 00 00 00 00 02 1E F7",
       {"20", "-12 Lo-Sh", "0", "Flat"}},
      {"crossover 11 = Out 6 low-pass",
       [](Senders& s) { return s.Crossover(11, 1000, 6); },
       "F0 81 00 04 07 01 00 00 00 00 88 06 F7",
       {"1000", "HP: 20 Hz,   No cut-off -- LP: 1000 Hz, -24dB/oct Bw"}},
      {"crossover 0 = Out 1 high-pass",
       [](Senders& s) { return s.Crossover(0, 80, 3); },
       "F0 81 00 04 02 00 00 00 00 00 30 03 F7",
       {"80", "HP: 80 Hz, -12dB/oct Lz -- LP: 20000 Hz,   No cut-off"}},
      {"Out 3 name AB",
       [](Senders& s) { return s.OutputName(4, "AB"); },
       "F0 81 00 0E 04 00 20 20 41 42 20 20 F7",
       {"  AB  "}},
      {"Out 2 equaliser bypassed",
       [](Senders& s) { return s.EqBypass(3, true); },
       "F0 81 00 1D 08 00 00 00 00 00 00 00 F7",
       {}},
  };
  for (const SenderCase& c : cases) {
    DeviceParams device = DeviceParams::FromDefault(0);
    Senders senders(device);
    const ParamEdit edit = c.send(senders);
    EXPECT_EQ(Bytes(edit.command), c.frame) << c.what;
    EXPECT_EQ(edit.labels, c.labels) << c.what;
  }
}

TEST(SendersTest, shouldKeepBothStoresInStepWithTheCommand) {
  DeviceParams device = DeviceParams::FromDefault(1);
  Senders senders(device);
  senders.Level(3, -3.5);
  senders.Polarity(3, true);
  senders.EqBand(17, {1016, 20, -2.5});
  senders.LimiterThreshold(7, 1);
  senders.InputSource(1);
  senders.Mute(4, true);
  senders.Polarity(1, true);
  EXPECT_EQ(LevelDb(device.image, 3), -3.5);
  EXPECT_EQ(device.values.LevelDb(3), -3.5);
  EXPECT_TRUE(PolarityInverted(device.image, 3));
  EXPECT_EQ(device.values.Polarity(3), 1);
  EXPECT_EQ(BandFrequency(device.image, 17), 1030);
  EXPECT_EQ(device.values.BandFrequency(17), 1016);
  EXPECT_EQ(BandGainDb(device.image, 17), -2.5);
  EXPECT_EQ(ThresholdStep(device.image, 7), 55);
  EXPECT_EQ(device.values.DbuLevel(7), 55);
  EXPECT_EQ(device.image[kInputSourceByte], 1);
  EXPECT_EQ(device.values.InputSource(), 1);
  EXPECT_EQ(device.values.Mute(4), 1);
  EXPECT_EQ(device.values.Polarity(1), 1);
  // The values read back from the image alone agree with what the senders kept.
  const DeviceParams reread = DeviceParams::FromImage(device.image);
  EXPECT_EQ(reread.values.LevelDb(3), -3.5);
  EXPECT_EQ(reread.values.Polarity(3), 1);
  EXPECT_EQ(reread.values.DbuLevel(7), 55);
  EXPECT_EQ(reread.values.InputSource(), 1);
}

TEST(SendersTest, shouldRefuseIndexFaultsAndChangeNothing) {
  const std::function<void(Senders&)> faults[] = {
      [](Senders& s) { s.Level(8, 0); },
      [](Senders& s) { s.Level(2, 6.1); },
      [](Senders& s) { s.Mute(-1, true); },
      [](Senders& s) { s.EqBand(52, {}); },
      [](Senders& s) {
        s.EqBand(0, {25000, 9, 0});
      },
      [](Senders& s) {
        s.EqBand(0, {1000, 64, 0});
      },
      [](Senders& s) { s.Crossover(12, 1000, 0); },
      [](Senders& s) { s.Crossover(0, 1000, 9); },
      [](Senders& s) { s.LimiterThreshold(1, 0); },  // inputs have no limiter bytes
      [](Senders& s) { s.LimiterAttack(2, 52); },
      [](Senders& s) { s.Limiter(0, 5); },  // inputs offer five levels
      [](Senders& s) { s.OutputSource(1, 0); },
      [](Senders& s) { s.OutputName(0, "In A"); },
      [](Senders& s) {
        s.Delay(0, {0, 48});
      },
      [](Senders& s) {
        s.Delay(0, {1000, 1});
      },
      [](Senders& s) { s.InputSource(2); },
  };
  for (std::size_t i = 0; i < std::size(faults); ++i) {
    DeviceParams device = DeviceParams::FromDefault(2);
    const ParamImage before = device.image;
    Senders senders(device);
    EXPECT_THROW(faults[i](senders), IndexError) << "fault " << i;
    EXPECT_EQ(device.image, before) << "fault " << i;
  }
}

TEST(SendersTest, shouldCentreNamesInSixCharacters) {
  const std::pair<const char*, const char*> cases[] = {
      {"", "      "},     {"X", "   X  "},     {"AB", "  AB  "},     {"ABC", "  ABC "},
      {"ABCD", " ABCD "}, {"ABCDE", " ABCDE"}, {"ABCDEF", "ABCDEF"}, {"ABCDEFGH", "ABCDEF"}};
  for (const auto& [name, fitted] : cases)
    EXPECT_EQ(FitName(name), fitted) << name;
}

TEST(SendersTest, shouldWriteLabelsWithTheLocaleDecimalMark) {
  DeviceParams device = DeviceParams::FromDefault(0);
  Senders senders(device, DecimalMark::Comma);
  EXPECT_EQ(senders.Level(0, -0.5).labels.front(), "-0,5 dB");
  EXPECT_EQ(senders.EqBand(3, {20.6, 9, 0}).labels,
            (std::vector<std::string>{"20,6", "0,30", "0", "Flat"}));
}

}  // namespace
}  // namespace talvex::params
