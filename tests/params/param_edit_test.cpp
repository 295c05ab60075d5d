#include "params/param_edit.h"

#include <gtest/gtest.h>

#include "protocol/frame.h"

namespace talvex::params {
namespace {

std::string Frame(const ParamEdit& edit) {
  return protocol::FormatHex(protocol::BuildFrame(0, edit.command));
}

DeviceParams Linked() {
  DeviceParams device = DeviceParams::FromDefault(1);
  EditChoice(device, {ParamKind::OutputLink, 0, 0}, 1);
  return device;
}

struct LinkCase {
  ParamRef ref;
  const char* text;  // typed; empty: choice 1
  std::vector<ParamRef> changed;
};

TEST(ParamEditTest, shouldSendOnceForEveryMemberOfALinkGroup) {
  const LinkCase cases[] = {
      {{ParamKind::Level, 2, 0}, "-3", {{ParamKind::Level, 2, 0}, {ParamKind::Level, 3, 0}}},
      {{ParamKind::EqGain, 5, 33}, "4", {{ParamKind::EqGain, 5, 33}, {ParamKind::EqGain, 4, 26}}},
      {{ParamKind::LowPassFrequency, 7, 0},
       "2000",
       {{ParamKind::LowPassFrequency, 7, 0}, {ParamKind::LowPassFrequency, 6, 0}}},
      {{ParamKind::Mute, 4, 0}, "", {{ParamKind::Mute, 4, 0}, {ParamKind::Mute, 5, 0}}},
      // inputs, sources and names stand apart
      {{ParamKind::Level, 0, 0}, "3", {{ParamKind::Level, 0, 0}}},
      {{ParamKind::OutputSource, 2, 0}, "", {{ParamKind::OutputSource, 2, 0}}},
      {{ParamKind::Name, 2, 0}, "Tw", {{ParamKind::Name, 2, 0}}},
  };
  for (const LinkCase& c : cases) {
    DeviceParams device = Linked();
    const EditResult result = std::string_view(c.text).empty() ? EditChoice(device, c.ref, 1)
                                                               : EditText(device, c.ref, c.text);
    ASSERT_TRUE(result.Ok());
    EXPECT_EQ(result.changed, c.changed) << c.text;
    ASSERT_EQ(result.edits.size(), c.changed.size()) << c.text;
    for (std::size_t i = 0; i < c.changed.size(); ++i) {
      EXPECT_EQ(result.edits[i].command.p(1) & 0x0F, c.changed[i].channel) << c.text;
      EXPECT_EQ(ShowParam(device, c.changed[i]).text, result.shown) << c.text;
    }
  }
}

TEST(ParamEditTest, shouldSendOnlyTheEditedOutputWhileTheSwitchIsOff) {
  DeviceParams device = DeviceParams::FromDefault(1);
  const EditResult result = EditText(device, {ParamKind::Level, 2, 0}, "-3");
  EXPECT_EQ(result.edits.size(), 1u);
  EXPECT_EQ(ShowParam(device, {ParamKind::Level, 3, 0}).text, "0");
}

struct PositionCase {
  ParamRef ref;
  int position;
  const char* shown;
  const char* frame;
};

TEST(ParamEditTest, shouldTurnAControlPositionIntoTheValueItShows) {
  const PositionCase cases[] = {
      {{ParamKind::Level, 0, 0}, 0, "15", "F0 81 00 01 00 00 00 00 00 01 00 2C F7"},
      {{ParamKind::Level, 2, 0}, 180, "-12", "F0 81 00 01 02 00 00 00 00 00 00 00 F7"},
      {{ParamKind::EqGain, 2, 10}, 29, "0.5", "F0 81 00 05 02 00 00 00 00 88 09 1F F7"},
      {{ParamKind::EqFrequency, 2, 10}, 13, "29", "F0 81 00 05 02 00 00 00 00 0D 09 1E F7"},
      {{ParamKind::EqQ, 2, 10}, 63, "3.00", "F0 81 00 05 02 00 00 00 00 88 3F 1E F7"},
      {{ParamKind::Threshold, 2, 0}, 150, "-10", "F0 81 00 07 02 00 00 00 00 13 04 00 F7"},
      {{ParamKind::Attack, 2, 0}, 0, "0.5", "F0 81 00 07 02 00 00 00 00 00 04 96 F7"},
      {{ParamKind::Delay, 4, 0}, 49, "1.01", "F0 81 00 02 04 00 00 00 00 00 01 01 F7"},
  };
  for (const PositionCase& c : cases) {
    DeviceParams device = DeviceParams::FromDefault(1);
    const EditResult result = EditPosition(device, c.ref, c.position);
    ASSERT_EQ(result.edits.size(), 1u);
    EXPECT_EQ(result.shown, c.shown) << c.frame;
    EXPECT_EQ(Frame(result.edits[0]), c.frame);
    EXPECT_EQ(ShowParam(device, c.ref).position, c.position) << c.frame;
  }
  DeviceParams device = DeviceParams::FromDefault(1);
  EXPECT_THROW(EditPosition(device, {ParamKind::Level, 2, 0}, 181), IndexError);
}

TEST(ParamEditTest, shouldShowDelaysInTheDeviceUnitAtItsTemperature) {
  DeviceParams device = DeviceParams::FromDefault(0);
  const ParamRef delay{ParamKind::Delay, 2, 0};
  EditText(device, delay, "10");
  EXPECT_EQ(ShowParam(device, delay).text, "10.005");
  // At 30 degrees C the same steps are a shorter time; every delay goes out again.
  const EditResult warmer = EditText(device, {ParamKind::Temperature, 0, 0}, "30");
  EXPECT_EQ(warmer.position, 50);
  EXPECT_EQ(warmer.edits.size(), 8u);
  EXPECT_EQ(Frame(warmer.edits[2]), "F0 81 00 02 02 00 00 00 00 00 0A 05 F7");
  EXPECT_EQ(ShowParam(device, delay).text, "9.833");
  EditChoice(device, {ParamKind::DelayUnit, 0, 0}, 1);
  EXPECT_EQ(ShowParam(device, delay).text, "3.435");
  EditOptions comma;
  comma.mark = DecimalMark::Comma;
  EXPECT_EQ(ShowParam(device, delay, comma).text, "3,435");
}

TEST(ParamEditTest, shouldKeepABellsWidthWhenBellIsChosenAgain) {
  DeviceParams device = DeviceParams::FromDefault(0);
  const ParamRef q{ParamKind::EqQ, 0, 2};
  const ParamRef type{ParamKind::EqType, 0, 2};
  EditText(device, q, "1,5");
  EXPECT_EQ(EditChoice(device, type, 4).shown, "BELL");
  EXPECT_EQ(ShowParam(device, q).text, "1.50");
  EXPECT_EQ(EditChoice(device, type, 2).shown, "LoSHF -12dB");
  EXPECT_EQ(ShowParam(device, q).text, "-12 Lo-Sh");
  EditChoice(device, type, 4);
  EXPECT_EQ(ShowParam(device, q).text, "0.30");  // a shelf turned bell takes the factory width
}

TEST(ParamEditTest, shouldFlattenEveryBandOfTheChannelAndItsTwin) {
  DeviceParams device = Linked();
  EditText(device, {ParamKind::EqGain, 6, GlobalBand(6, 2)}, "-6");
  EditText(device, {ParamKind::EqGain, 7, GlobalBand(7, 5)}, "3");
  const EditResult flat = FlattenEq(device, 6);
  EXPECT_EQ(flat.edits.size(), 14u);
  EXPECT_EQ(flat.edits.back().labels.back(), "Flat");
  for (int ch : {6, 7})
    for (int k = 0; k < kOutputBands; ++k)
      EXPECT_EQ(ShowParam(device, {ParamKind::EqGain, ch, GlobalBand(ch, k)}).text, "0");
}

TEST(ParamEditTest, shouldRefuseTextThatIsNoValueAndChangeNothing) {
  const std::pair<ParamRef, const char*> cases[] = {
      {{ParamKind::EqFrequency, 0, 0}, "  Incorrect frequency value"},
      {{ParamKind::HighPassFrequency, 2, 0}, "  Incorrect f value"},
      {{ParamKind::EqQ, 0, 0}, "  Incorrect Q value"},
      {{ParamKind::Delay, 0, 0}, "  Incorrect value"},
      {{ParamKind::Temperature, 0, 0}, "  Incorrect value"},
  };
  for (const auto& [ref, message] : cases) {
    DeviceParams device = DeviceParams::FromDefault(0);
    const ParamImage before = device.image;
    const EditResult result = EditText(device, ref, "1?");
    EXPECT_EQ(result.message, message);
    EXPECT_TRUE(result.edits.empty());
    EXPECT_EQ(device.image, before);
  }
  DeviceParams device = DeviceParams::FromDefault(0);
  EXPECT_FALSE(EditText(device, {ParamKind::Name, 2, 0}, "Tweeter").refusal.empty());
}

TEST(ParamEditTest, shouldSetAWholeBandForEveryLinkMemberOrChangeNothing) {
  DeviceParams device = Linked();
  const EditResult result = EditBand(device, GlobalBand(4, 2), {250, 3, -6});
  EXPECT_EQ(result.changed, (std::vector<ParamRef>{{ParamKind::EqType, 4, GlobalBand(4, 2)},
                                                   {ParamKind::EqType, 5, GlobalBand(5, 2)}}));
  ASSERT_EQ(result.edits.size(), 2u);
  EXPECT_EQ(Frame(result.edits[1]), "F0 81 00 05 05 02 00 00 00 58 03 12 F7");
  EXPECT_EQ(result.shown, "-6 Lo-Sh");

  const ParamImage before = device.image;
  EXPECT_THROW(EditBand(device, GlobalBand(4, 2), {250, 3, -16}), IndexError);
  EXPECT_THROW(EditBand(device, GlobalBand(4, 2), {250, 64, 0}), IndexError);
  EXPECT_EQ(device.image, before);
}

}  // namespace
}  // namespace talvex::params
