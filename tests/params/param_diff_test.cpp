#include "params/param_diff.h"

#include <gtest/gtest.h>

#include <functional>

namespace talvex::params {
namespace {

using Edit = std::function<void(DeviceParams&)>;

struct DiffCase {
  const char* name;
  Edit editA;
  Edit editB;
  DiffScope scope;
  std::vector<ParamRef> differing;
};

void Nothing(DeviceParams&) {}

Edit Typed(ParamRef ref, const char* text) {
  return [=](DeviceParams& device) { ASSERT_TRUE(EditText(device, ref, text).Ok()); };
}

Edit Chosen(ParamRef ref, int choice) {
  return [=](DeviceParams& device) { EditChoice(device, ref, choice); };
}

TEST(ParamDiffTest, shouldListEveryParameterWhoseValueDiffersAndNothingElse) {
  const int band = GlobalBand(2, 1);
  const DiffCase cases[] = {
      {"same", Nothing, Nothing, DiffScope::Record, {}},
      {"level",
       Nothing,
       Typed({ParamKind::Level, 4, 0}, "-3"),
       DiffScope::Preset,
       {{ParamKind::Level, 4, 0}}},
      {"bell becomes a shelf",
       Nothing,
       Chosen({ParamKind::EqType, 2, band}, 0),
       DiffScope::Preset,
       {{ParamKind::EqQ, 2, band}, {ParamKind::EqType, 2, band}}},
      {"two kinds of shelf",
       Chosen({ParamKind::EqType, 2, band}, 0),
       Chosen({ParamKind::EqType, 2, band}, 1),
       DiffScope::Preset,
       {{ParamKind::EqType, 2, band}}},
      {"name and crossover",
       Nothing,
       [](DeviceParams& device) {
         EditText(device, {ParamKind::Name, 7, 0}, "Kick");
         EditText(device, {ParamKind::LowPassFrequency, 7, 0}, "95");
       },
       DiffScope::Preset,
       {{ParamKind::LowPassFrequency, 7, 0}, {ParamKind::Name, 7, 0}}},
      // the same delay shown in ms by one and in m by the other is the same delay
      {"delay unit",
       Typed({ParamKind::Delay, 3, 0}, "2"),
       [](DeviceParams& device) {
         EditText(device, {ParamKind::Delay, 3, 0}, "2");
         EditChoice(device, {ParamKind::DelayUnit, 0, 0}, 1);
       },
       DiffScope::Record,
       {{ParamKind::DelayUnit, 0, 0}}},
      {"record settings left out",
       Nothing,
       [](DeviceParams& device) {
         EditChoice(device, {ParamKind::OutputLink, 0, 0}, 1);
         EditChoice(device, {ParamKind::InputSource, 0, 0}, 1);
       },
       DiffScope::Preset,
       {}},
      {"record settings",
       Nothing,
       [](DeviceParams& device) {
         EditChoice(device, {ParamKind::OutputLink, 0, 0}, 1);
         EditChoice(device, {ParamKind::InputSource, 0, 0}, 1);
       },
       DiffScope::Record,
       {{ParamKind::InputSource, 0, 0}, {ParamKind::OutputLink, 0, 0}}},
      {"kept in no image",
       Nothing,
       [](DeviceParams& device) {
         EditChoice(device, {ParamKind::Mute, 2, 0}, 1);
         EditChoice(device, {ParamKind::Polarity, 0, 0}, 1);
       },
       DiffScope::Record,
       {}},
  };
  for (const DiffCase& c : cases) {
    DeviceParams a = DeviceParams::FromDefault(1);
    DeviceParams b = DeviceParams::FromDefault(1);
    c.editA(a);
    c.editB(b);
    std::vector<ParamRef> refs;
    for (const ParamDifference& difference : DiffRecords(a.image, b.image, c.scope))
      refs.push_back(difference.ref);
    EXPECT_EQ(refs, c.differing) << c.name;
  }
}

TEST(ParamDiffTest, shouldGiveBothValuesAsTheEditorShowsThem) {
  DeviceParams a = DeviceParams::FromDefault(0);
  DeviceParams b = DeviceParams::FromDefault(0);
  EditText(b, {ParamKind::EqGain, 5, GlobalBand(5, 6)}, "-4.5");
  const auto differences = DiffRecords(a.image, b.image, DiffScope::Preset, DecimalMark::Comma);
  ASSERT_EQ(differences.size(), 1u);
  EXPECT_EQ(differences[0].a.text, "0");
  EXPECT_EQ(differences[0].b.text, "-4,5");

  ParamImage garbled = a.image;
  garbled[EqBandStart[0]] = 250;
  EXPECT_THROW(DiffRecords(garbled, b.image, DiffScope::Preset), IndexError);
}

}  // namespace
}  // namespace talvex::params
