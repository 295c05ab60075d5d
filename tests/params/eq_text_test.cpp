#include "params/eq_text.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "params/image_decode.h"

namespace talvex::params {
namespace {

constexpr int kOut1 = 2;

// A measurement program's file with a header, a preamp, bells and shelves to round, a gain
// beyond the device's range, a type the device lacks, OFF filters and more filters than Out 1
// has bands. `comma` writes it with decimal commas, as a program in a comma locale does.
std::string SampleFile(bool comma) {
  std::string text =
      "Filter Settings file\r\n"
      "Room EQ V5.20\r\n"
      "\r\n"
      "Preamp: -3.5 dB\r\n"
      "Filter  1: ON  PK       Fc   45.80 Hz  Gain   3.00 dB  Q  1.000\r\n"
      "Filter  2: ON  PK       Fc   1000 Hz   Gain -18.00 dB  Q  4.320\r\n"
      "Filter  3: ON  LS 6dB   Fc   100.0 Hz  Gain   4.50 dB\r\n"
      "Filter  4: ON  HSC 12 dB Fc  8000 Hz   Gain  -2.25 dB  Q  0.700\r\n"
      "Filter  5: ON  NO       Fc     60 Hz   Gain   0.00 dB  Q  10.00\r\n"
      "Filter  6: OFF None\r\n"
      "Filter  7: OFF None\r\n"
      "Filter  8: ON  LS       Fc     15 Hz   Gain   2.00 dB\r\n"
      "Filter  9: ON  PK       Fc  2.5 kHz    Gain   1.00 dB  Q  50\r\n"
      "Filter 10: ON  PK       Fc  20000 Hz   Gain   1.00 dB  BW Oct 1.03\r\n"
      "Filter 11: ON  PK       Fc    300 Hz   Gain   1.00 dB  Q  2.914\r\n"
      "Filter 12: ON  PK       Fc    400 Hz   Gain   1.00 dB  Q  2.000\r\n";
  if (comma) {
    for (std::size_t at = 0; (at = text.find('.', at)) != std::string::npos;)
      if (std::isdigit(static_cast<unsigned char>(text[at + 1]))) text[at] = ',';
  }
  return text;
}

TEST(EqTextTest, shouldReadAMeasurementFileInEitherDecimalFormOntoTheDevicesGrid) {
  for (bool comma : {false, true}) {
    const ParamImage image = DefaultRecord(0);
    const EqImportPlan plan = PlanEqImport(SampleFile(comma), image, kOut1);
    SCOPED_TRACE(comma ? "comma" : "point");
    ASSERT_EQ(plan.bands.size(), 7u);
    EXPECT_EQ(plan.filterLines, 12);
    EXPECT_EQ(plan.bandsFromText, 7);
    struct Expected {
      double hz;
      int width;
      double gain;
      int line;
    };
    const Expected expected[] = {
        {46.2, 35, 3.0, 5},    // Q 1.000 -> 0.992 (width 1.60)
        {1000, 10, -15.0, 6},  // gain clamped; Q 4.32 -> width 0.35 (Q 4.142)
        {100, 3, 4.5, 7},      // "LoSHF -6dB"
        {8000, 0, -2.5, 8},    // "HiSHF -12dB"; -2.25 lies halfway and goes down
        {20, 2, 2.0, 12},      // 15 Hz clamped; LS without a slope is the 12 dB shelf
        {2500, 4, 1.0, 13},    // Q 50 beyond the narrowest bell
        {20000, 24, 1.0, 14},  // BW 1.03 octaves -> 1.05
    };
    for (std::size_t k = 0; k < 7; ++k) {
      const EqPlannedBand& band = plan.bands[k];
      EXPECT_EQ(band.band, GlobalBand(kOut1, static_cast<int>(k)));
      EXPECT_DOUBLE_EQ(band.setting.frequencyHz, expected[k].hz) << k;
      EXPECT_EQ(band.setting.width, expected[k].width) << k;
      EXPECT_DOUBLE_EQ(band.setting.gainDb, expected[k].gain) << k;
      EXPECT_EQ(band.line, expected[k].line) << k;
    }
  }
}

TEST(EqTextTest, shouldReportWhatWasRoundedWhatDoesNotFitAndWhatWasSkipped) {
  const EqImportPlan plan = PlanEqImport(SampleFile(false), DefaultRecord(0), kOut1);
  std::vector<std::string> lines;
  for (const EqNote& note : plan.notes)
    lines.push_back(DescribeNote(note));
  const std::vector<std::string> expected = {
      "lines 1-2: no filter settings, ignored (\"Filter Settings file\")",
      "line 4, Preamp: -3.5 dB not applied: the channel's level is left as it is (a preamp "
      "keeps a PC's digital path from clipping; on the processor the level sets the balance "
      "between the ways)",
      "line 5, Filter 1: Fc 45.80 Hz -> 46.2 Hz, Q 1.000 -> 0.992 (width 1.60)",
      "line 6, Filter 2: Gain -18.00 dB -> -15 dB (the device's limit), Q 4.320 -> 4.142 "
      "(width 0.35)",
      "line 8, Filter 4: Gain -2.25 dB -> -2.5 dB, Q 0.700 ignored: the device's shelves have a "
      "fixed shape",
      "line 9, Filter 5: a notch filter (NO): the device's bands are bells and shelves",
      "lines 10-11, Filter 6 .. Filter 7: OFF, skipped",
      "line 12, Filter 8: Fc 15 Hz -> 20 Hz (the device's lowest), no slope: taken as the "
      "device's 12 dB shelf",
      "line 13, Filter 9: Q 50 -> 28.857 (width 0.05, the narrowest bell)",
      "line 14, Filter 10: BW 1.03 oct -> 1.05 oct",
      "line 15, Filter 11: no band left: the channel has 7",
      "line 16, Filter 12: no band left: the channel has 7",
  };
  EXPECT_EQ(lines, expected);
  EXPECT_EQ(EqPlanSummary(plan), "filters onto bands 1 .. 7");
}

struct BadLineCase {
  const char* line;
  EqNoteKind kind;
  const char* note;
};

TEST(EqTextTest, shouldTakeNoBandForALineItCannotReadOrATypeTheDeviceLacks) {
  const BadLineCase cases[] = {
      {"Filter 1: ON PK Fc abc Hz Gain 1 dB Q 1", EqNoteKind::DoesNotFit,
       "line 1, Filter 1: no number after Fc: not read"},
      {"Filter 1: ON PK Fc 100 Hz Q 1", EqNoteKind::DoesNotFit,
       "line 1, Filter 1: no Gain: not read"},
      {"Filter 1: ON PK Fc 100 Hz Gain 1 dB", EqNoteKind::DoesNotFit,
       "line 1, Filter 1: no Q: not read"},
      {"Filter 1: ON PK Fc 100 Hz Gain 1 dB Q 0", EqNoteKind::DoesNotFit,
       "line 1, Filter 1: Q 0 is not above 0: not read"},
      {"Filter 1: ON PK Fc 100 mHz Gain 1 dB Q 1", EqNoteKind::DoesNotFit,
       "line 1, Filter 1: \"mHz\" is no unit of Fc: not read"},
      {"Filter 1: ON PK Fc 100 Hz Gain 1 dB T60 1", EqNoteKind::DoesNotFit,
       "line 1, Filter 1: \"T60\" is no value of a filter: not read"},
      {"Filter 1: maybe PK Fc 100 Hz", EqNoteKind::DoesNotFit,
       "line 1, Filter 1: neither ON nor OFF: not read"},
      {"Filter: ON XYZ Fc 100 Hz", EqNoteKind::DoesNotFit,
       "line 1, Filter: type \"XYZ\" is unknown"},
      {"Filter 1: ON HPQ Fc 80 Hz Q 0.7", EqNoteKind::DoesNotFit,
       "line 1, Filter 1: a high-pass filter (HPQ): the device's bands are bells and shelves; an "
       "output's crossover has high-pass and low-pass filters"},
      {"Filter 1: ON AP Fc 80 Hz Q 0.7", EqNoteKind::DoesNotFit,
       "line 1, Filter 1: an all-pass filter (AP): the device's bands are bells and shelves"},
      {"Filter 1: ON None", EqNoteKind::Skipped, "line 1, Filter 1: no filter (None), skipped"},
      {"Filter 1: ON LS 6dBx Fc 100 Hz Gain 1 dB", EqNoteKind::DoesNotFit,
       "line 1, Filter 1: \"dBx\" is no unit of a slope: not read"},
      {"Preamp: loud", EqNoteKind::Skipped, "line 1, Preamp: no number: ignored"},
  };
  for (const BadLineCase& c : cases) {
    const EqImportPlan plan = PlanEqImport(c.line, DefaultRecord(0), 0);
    ASSERT_EQ(plan.notes.size(), 1u) << c.line;
    EXPECT_EQ(plan.notes[0].kind, c.kind) << c.line;
    EXPECT_EQ(DescribeNote(plan.notes[0]), c.note);
    EXPECT_EQ(plan.bandsFromText, 0) << c.line;
  }
}

TEST(EqTextTest, shouldFlattenTheBandsTheTextLeavesAndRefuseATextWithoutFilters) {
  DeviceParams device = DeviceParams::FromDefault(1);
  EditBand(device, GlobalBand(0, 4), {5000, 20, 6});
  const EqImportPlan plan =
      PlanEqImport("Filter 1: ON PK Fc 63 Hz Gain -4 dB Q 2.914\n", device.image, 0);
  EXPECT_EQ(EqPlanSummary(plan),
            "filters onto band 1; bands 2 .. 5 flattened to 0 dB (frequency and width kept)");
  const EqPlannedBand& last = plan.bands.back();
  EXPECT_EQ(last.line, 0);
  EXPECT_DOUBLE_EQ(last.setting.frequencyHz, 5000);
  EXPECT_EQ(last.setting.width, 20);
  EXPECT_DOUBLE_EQ(last.setting.gainDb, 0);
  EXPECT_TRUE(plan.notes.empty());

  EXPECT_FALSE(PlanEqImport("just some text\nno filters\n", device.image, 0).HasFilters());
  EXPECT_TRUE(PlanEqImport("Filter 1: OFF None\n", device.image, 0).HasFilters());
  const EqImportPlan marked = PlanEqImport(
      "\xEF\xBB\xBF"
      "Filter 1: ON PK Fc 63 Hz Gain -4 dB Q 2.914\r\n",
      device.image, 0);
  EXPECT_EQ(marked.bandsFromText, 1);
  EXPECT_TRUE(marked.notes.empty());
}

TEST(EqTextTest, shouldApplyEveryBandThroughTheEditPathAndFollowTheOutputLink) {
  for (bool linked : {false, true}) {
    DeviceParams device = DeviceParams::FromDefault(1);
    if (linked) EditChoice(device, {ParamKind::OutputLink, 0, 0}, 1);
    const EqImportPlan plan = PlanEqImport(SampleFile(false), device.image, 3);  // Out 2
    const EditResult result = ApplyEqImport(device, plan);
    ASSERT_EQ(result.edits.size(), linked ? 14u : 7u);
    for (int k = 0; k < 7; ++k) {
      const EqBandSetting& want = plan.bands[static_cast<std::size_t>(k)].setting;
      for (int channel : linked ? std::vector{3, 2} : std::vector{3}) {
        const int band = GlobalBand(channel, k);
        EXPECT_DOUBLE_EQ(BandFrequency(device.image, band), want.frequencyHz);
        EXPECT_EQ(BandWidthIndex(device.image, band), want.width);
        EXPECT_DOUBLE_EQ(BandGainDb(device.image, band), want.gainDb);
      }
    }
    EXPECT_EQ(result.edits[0].command.code, 5);
    EXPECT_EQ(result.edits[0].command.p(1), 3);
    if (!linked) {
      EXPECT_DOUBLE_EQ(BandGainDb(device.image, GlobalBand(2, 0)), 0);
    }
  }
}

// Every width (the four shelves and the 60 bells), many frequencies and gains, both marks.
TEST(EqTextTest, shouldGiveTheSameBandsBackWhenAnExportIsImported) {
  for (DecimalMark mark : {DecimalMark::Point, DecimalMark::Comma}) {
    for (int round = 0; round < 10; ++round) {
      DeviceParams device = DeviceParams::FromDefault(0);
      for (int k = 0; k < 7; ++k) {
        const int width = (round * 7 + k) % 64;
        const double hz = FrequencyTable[static_cast<std::size_t>((round * 53 + k * 37) % 241)];
        const double gain = ((round * 11 + k * 17) % 61) / 2.0 - 15;
        EditBand(device, GlobalBand(7, k), {hz, width, gain});
      }
      const std::string text = ExportEqText(device.image, 7, "Out 6", mark);
      const EqImportPlan plan = PlanEqImport(text, DefaultRecord(0), 7, mark);
      for (const EqNote& note : plan.notes)
        ADD_FAILURE() << DescribeNote(note) << "\n" << text;
      DeviceParams imported = DeviceParams::FromDefault(0);
      ApplyEqImport(imported, plan);
      const auto first = EqBandStart[static_cast<std::size_t>(GlobalBand(7, 0))];
      EXPECT_TRUE(std::equal(device.image.begin() + static_cast<long>(first),
                             device.image.begin() + static_cast<long>(first + 21),
                             imported.image.begin() + static_cast<long>(first)))
          << text;
    }
  }
}

TEST(EqTextTest, shouldWriteEachBandAsTheProgramsWriteIt) {
  DeviceParams device = DeviceParams::FromDefault(0);
  EditBand(device, 0, {46.2, 35, 3});
  EditBand(device, 1, {100, 3, -4.5});
  EditBand(device, 2, {12500, 0, 0});
  EditChoice(device, {ParamKind::EqBypass, 0, 0}, 1);
  EXPECT_EQ(ExportEqText(device.image, 0, "In A", DecimalMark::Comma),
            "# TALVEX equaliser: In A\n"
            "# bypassed on the device: these bands do not act while the bypass is on\n"
            "Filter  1: ON  PK       Fc    46,2 Hz  Gain   3,0 dB  Q 0,992\n"
            "Filter  2: ON  LS 6dB   Fc   100,0 Hz  Gain  -4,5 dB\n"
            "Filter  3: ON  HS 12dB  Fc 12500,0 Hz  Gain   0,0 dB\n"
            "Filter  4: ON  PK       Fc  1000,0 Hz  Gain   0,0 dB  Q 4,826\n"
            "Filter  5: ON  PK       Fc  1000,0 Hz  Gain   0,0 dB  Q 4,826\n");
}

}  // namespace
}  // namespace talvex::params
