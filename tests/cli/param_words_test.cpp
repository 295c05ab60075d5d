#include "cli/param_words.h"

#include <gtest/gtest.h>

#include "protocol/frame.h"

namespace talvex::cli {

using namespace params;
namespace {

TEST(ParamWordsTest, shouldReadBackEveryNameItWrites) {
  const std::vector<ParamRef> all = AllParams();
  EXPECT_EQ(all.size(), 4 + 2 * (5 + 1 + 5 * 4) + 6 * (14 + 1 + 7 * 4));
  for (const ParamRef& ref : all)
    EXPECT_EQ(ParseParamName(ParamName(ref)), ref) << ParamName(ref);
  EXPECT_EQ(ParseParamName("out6.eq7.q"), (ParamRef{ParamKind::EqQ, 7, 51}));
  EXPECT_EQ(ParseParamName("inB.eq1.freq"), (ParamRef{ParamKind::EqFrequency, 1, 5}));
}

TEST(ParamWordsTest, shouldRefuseNamesOfNoParameter) {
  for (const char* name :
       {"", "level", "inC.level", "out7.level", "out0.level", "inA.source", "inA.hp.freq",
        "inA.name", "inA.eq6.gain", "out1.eq8.gain", "out1.eq0.gain", "out1.eq1", "out1.eq1.width",
        "out1.eq12.q", "out1.level.x", "input.source.x"})
    EXPECT_FALSE(ParseParamName(name)) << name;
}

struct SetCase {
  const char* name;
  const char* text;
  const char* shown;
  const char* frame;  // the one command, to device 0
};

TEST(ParamWordsTest, shouldSetThroughTheRuleAndTheSenderAndReadTheSameBack) {
  const SetCase cases[] = {
      {"out2.level", "-3.5", "-3.5", "F0 81 00 01 03 00 00 00 00 00 00 55 F7"},
      {"inA.level", "0.25", "0.2", "F0 81 00 01 00 00 00 00 00 00 00 98 F7"},
      {"out1.level", "100", "6", "F0 81 00 01 02 00 00 00 00 00 00 B4 F7"},
      {"out1.polarity", "180", "180", "F0 81 00 03 02 00 00 00 00 00 01 78 F7"},
      {"out3.delay", "10", "10.005", "F0 81 00 02 04 00 00 00 00 00 0A 05 F7"},
      {"out6.limiter", "-15", "-15", "F0 81 00 23 79 00 00 00 00 00 00 00 F7"},
      {"inB.limiter", "clip", "clip", "F0 81 00 23 10 00 00 00 00 00 00 00 F7"},
      {"out6.eq7.freq", "1015", "1000", "F0 81 00 05 07 06 00 00 00 88 09 1E F7"},
      {"inA.eq1.gain", "0.26", "0.5", "F0 81 00 05 00 00 00 00 00 88 09 1F F7"},
      {"inA.eq2.q", "2,98", "3", "F0 81 00 05 00 01 00 00 00 88 3F 1E F7"},
      {"out1.eq1.type", "ls6", "ls6", "F0 81 00 05 02 00 00 00 00 88 03 1E F7"},
      {"out1.eq1.type", "bell", "bell", "F0 81 00 05 02 00 00 00 00 88 09 1E F7"},
      {"out6.lp.freq", "30000", "20000", "F0 81 00 04 07 01 00 00 00 00 F0 00 F7"},
      {"out6.lp.type", "-24dB/oct lz", "7", "F0 81 00 04 07 01 00 00 00 00 F0 07 F7"},
      {"out1.hp.type", "2", "2", "F0 81 00 04 02 00 00 00 00 00 00 02 F7"},
      {"out2.source", "inA", "inA", "F0 81 00 08 03 00 00 00 00 00 00 00 F7"},
      {"out1.limiter.threshold", "0.3", "0.2", "F0 81 00 07 02 00 00 00 00 13 00 33 F7"},
      {"out1.limiter.attack", "0.5", "0.5", "F0 81 00 07 02 00 00 00 00 00 00 96 F7"},
      {"out1.limiter.release", "136", "140", "F0 81 00 07 02 00 00 00 00 13 04 96 F7"},
      {"out4.name", "Tw", "Tw", "F0 81 00 0E 05 00 20 20 54 77 20 20 F7"},
      {"input.source", "spdif", "spdif", "F0 81 00 0D 00 00 00 00 00 00 00 01 F7"},
      {"delay.unit", "M", "m", "F0 81 00 11 00 12 00 00 01 00 00 00 F7"},
      {"output.link", "on", "on", "F0 81 00 22 01 00 00 00 00 00 00 00 F7"},
      {"out1.eq.bypass", "on", "on", "F0 81 00 1D 04 00 00 00 00 00 00 00 F7"},
  };
  for (const SetCase& c : cases) {
    DeviceParams device = DeviceParams::FromDefault(0);
    const ParamRef ref = *ParseParamName(c.name);
    const SetOutcome outcome = SetParam(device, ref, c.text);
    ASSERT_TRUE(outcome.Ok()) << c.name << " " << outcome.badChoice;
    EXPECT_EQ(outcome.shown.text, c.shown) << c.name;
    EXPECT_EQ(protocol::FormatHex(protocol::BuildFrame(0, outcome.edit.edits.front().command)),
              c.frame)
        << c.name;
    EXPECT_EQ(GetParam(device.image, ref).text, c.shown) << c.name;
  }
}

TEST(ParamWordsTest, shouldRefuseBadTextAndChangeNothing) {
  const std::pair<const char*, const char*> badNumbers[] = {
      {"out2.level", "  Incorrect value"},
      {"out1.delay", "  Incorrect value"},
      {"inA.eq1.freq", "  Incorrect frequency value"},
      {"inA.eq1.q", "  Incorrect Q value"},
      {"out1.hp.freq", "  Incorrect f value"},
  };
  for (const auto& [name, message] : badNumbers) {
    DeviceParams device = DeviceParams::FromDefault(0);
    const ParamImage before = device.image;
    const SetOutcome outcome = SetParam(device, *ParseParamName(name), "abc");
    EXPECT_EQ(outcome.badText, message) << name;
    EXPECT_EQ(device.image, before) << name;
  }
  for (const auto& [name, text] : {std::pair{"inA.mute", "maybe"},
                                   {"inA.polarity", "90"},
                                   {"inA.limiter", "-3"},
                                   {"out1.eq1.type", "notch"},
                                   {"out1.hp.type", "9"},
                                   {"out1.name", "TooLong"},
                                   {"input.source", "usb"}}) {
    DeviceParams device = DeviceParams::FromDefault(0);
    const ParamImage before = device.image;
    const SetOutcome outcome = SetParam(device, *ParseParamName(name), text);
    EXPECT_FALSE(outcome.badChoice.empty()) << name;
    EXPECT_EQ(device.image, before) << name;
  }
}

TEST(ParamWordsTest, shouldKnowWhichParametersNoImageHolds) {
  EXPECT_EQ(StorageOf(*ParseParamName("out1.mute")), Storage::NotStored);
  EXPECT_EQ(StorageOf(*ParseParamName("inA.polarity")), Storage::NotStored);
  EXPECT_EQ(StorageOf(*ParseParamName("out1.polarity")), Storage::Preset);
  EXPECT_EQ(StorageOf(*ParseParamName("input.source")), Storage::Record);
  EXPECT_THROW(GetParam(DefaultRecord(0), *ParseParamName("inB.mute")), IndexError);
  EXPECT_EQ(GetParam(DefaultRecord(2), *ParseParamName("out6.name")).text, "Far-2");
  EXPECT_EQ(GetParam(DefaultRecord(0), *ParseParamName("out1.eq1.q")).text, "0.3");
  EXPECT_EQ(GetParam(DefaultRecord(0), *ParseParamName("out1.lp.freq")).text, "20000");
}

}  // namespace
}  // namespace talvex::cli
