#include <gtest/gtest.h>

#include <set>
#include <string>

#include "params/default_image.h"
#include "params/image_layout.h"
#include "params/value_rules.h"
#include "params/value_tables.h"
#include "protocol/frame.h"

namespace talvex::params {
namespace {

TEST(ValueTablesTest, shouldHoldTheFrequencyGridEdgesAsTheDeviceHasThem) {
  EXPECT_EQ(FrequencyTable[0], 20.0);
  EXPECT_EQ(FrequencyTable[13], 29.0);
  EXPECT_EQ(FrequencyTable[136], 1000.0);
  EXPECT_EQ(FrequencyTable[239], 19500.0);
  EXPECT_EQ(FrequencyTable[240], 20000.0);
  for (std::size_t i = 1; i < kFrequencyCount; ++i)
    EXPECT_LT(FrequencyTable[i - 1], FrequencyTable[i]) << i;
}

TEST(ValueTablesTest, shouldDifferInTheDecimalMarkOnlyBetweenQTextVariants) {
  const auto& point = QTextTable(DecimalMark::Point);
  const auto& comma = QTextTable(DecimalMark::Comma);
  EXPECT_EQ(point[0], "-12 Hi-Sh");
  EXPECT_EQ(comma[3], "-6 Lo-Sh");
  EXPECT_EQ(point[4], "0.05");
  EXPECT_EQ(comma[4], "0,05");
  EXPECT_EQ(point[9], "0.30");
  EXPECT_EQ(comma[63], "3,00");
  for (std::size_t i = 0; i < 64; ++i) {
    std::string swapped(point[i]);
    for (char& c : swapped)
      if (c == '.') c = ',';
    EXPECT_EQ(swapped, comma[i]) << i;
    if (i >= 4) {
      EXPECT_EQ(ParseNumber(point[i]), BellWidths[i - 4]) << i;
    }
  }
}

TEST(ValueTablesTest, shouldMatchTheQValuesToFourPlaces) {
  const std::pair<std::size_t, double> cases[] = {
      {0, 28.8568}, {1, 14.4327}, {2, 9.6266},  {3, 7.225},   {19, 1.5},
      {30, 1.0186}, {37, 0.866},  {50, 0.7059}, {58, 0.6486}, {59, 0.6429}};
  for (const auto& [index, value] : cases)
    EXPECT_NEAR(QValueTable[index], value, 0.00005) << index;
  EXPECT_EQ(QValueTable[0], 28.856789);
  EXPECT_EQ(QValueTable[59], 0.642857);
}

TEST(ValueTablesTest, shouldMirrorTheShelfCorrectionsAboutTheMiddle) {
  EXPECT_EQ(T6[0], 2.2);
  EXPECT_EQ(T6[17], 1.07);
  EXPECT_EQ(T12[5], 1.277);
  EXPECT_EQ(T12[17], 1.03);
  for (std::size_t i = 0; i <= 60; ++i) {
    EXPECT_EQ(T6[i], T6[60 - i]) << i;
    EXPECT_EQ(T12[i], T12[60 - i]) << i;
    if (i >= 18 && i <= 42) {
      EXPECT_EQ(T6[i] + T12[i], 2.0) << i;
    }
  }
}

TEST(ValueTablesTest, shouldGiveTheLimiterTimesTheNumbersOfTheirListTexts) {
  for (std::size_t i = 0; i < AttackTimesMs.size(); ++i)
    EXPECT_EQ(ParseNumber(SmallNumberList[i]), AttackTimesMs[i]) << i;
  for (std::size_t i = 0; i < ReleaseTimesMs.size(); ++i)
    EXPECT_EQ(ParseNumber(HundredsList[i]), ReleaseTimesMs[i]) << i;
  EXPECT_EQ(AttackTimesMs[19], 19.0);  // the factory attack byte
  EXPECT_EQ(ReleaseTimesMs[4], 140.0);
}

TEST(ImageLayoutTest, shouldPlaceTheBandsInputsFirstThenOutputs) {
  const std::pair<int, std::size_t> starts[] = {{0, 5},   {4, 17},  {5, 27},  {9, 39},
                                                {10, 57}, {16, 75}, {17, 99}, {51, 285}};
  for (const auto& [band, start] : starts)
    EXPECT_EQ(EqBandStart[static_cast<std::size_t>(band)], start) << band;
  struct Case {
    int band, channel, inChannel;
  };
  for (const Case& c :
       {Case{0, 0, 0}, Case{9, 1, 4}, Case{10, 2, 0}, Case{23, 3, 6}, Case{51, 7, 6}}) {
    EXPECT_EQ(ChannelOfBand(c.band), c.channel) << c.band;
    EXPECT_EQ(BandInChannel(c.band), c.inChannel) << c.band;
    EXPECT_EQ(GlobalBand(c.channel, c.inChannel), c.band) << c.band;
  }
  EXPECT_THROW(ChannelOfBand(52), IndexError);
  EXPECT_THROW(GlobalBand(0, 5), IndexError);
  EXPECT_THROW(GlobalBand(8, 0), IndexError);
}

// Every byte a factory image may hold apart from 0, by offset.
std::set<std::size_t> NonZeroOffsets() {
  std::set<std::size_t> offsets{1, 23, 297};
  for (std::size_t start : EqBandStart)
    offsets.insert({start, start + 1, start + 2});
  for (int k = 1; k <= kOutputCount; ++k) {
    const std::size_t block = OutputBlock(k);
    offsets.insert({block, block + 1, block + 2, block + 3, block + 4, block + 11});
    for (std::size_t i = 0; i < kNameLength; ++i)
      offsets.insert(block + 36 + i);
  }
  offsets.insert(kSystemTypeByte);
  return offsets;
}

TEST(DefaultImageTest, shouldHoldTheFactorySettingsOfEachSystemType) {
  struct Expected {
    std::array<int, 6> sources;
    std::array<std::string, 6> names;
    int plus3;
  };
  const Expected types[] = {
      {{0, 1, 0, 1, 0, 1}, {" Low-A", " Low-B", "High-A", "High-B", "Sub-A ", "Sub-B "}, 0},
      {{0, 1, 0, 1, 0, 1}, {" Low-A", " Low-B", " Mid-A", " Mid-B", "High-A", "High-B"}, 4},
      {{0, 0, 0, 0, 0, 0}, {"Near-1", "Near-2", " Mid-1", " Mid-2", " Far-1", " Far-2"}, 4}};
  const std::set<std::size_t> nonZero = NonZeroOffsets();
  for (int type = 0; type < kSystemTypeCount; ++type) {
    const PresetImage& image = DefaultImage[static_cast<std::size_t>(type)];
    const Expected& expected = types[type];
    EXPECT_EQ(image[1], 150);
    EXPECT_EQ(image[23], 150);
    for (std::size_t start : EqBandStart)
      EXPECT_EQ((std::array{image[start], image[start + 1], image[start + 2]}), kDefaultBand);
    for (int k = 1; k <= kOutputCount; ++k) {
      const std::size_t block = OutputBlock(k);
      EXPECT_EQ(image[block], expected.sources[static_cast<std::size_t>(k - 1)]);
      EXPECT_EQ(image[block + 1], 120);
      EXPECT_EQ(image[block + 2], 19);
      EXPECT_EQ(image[block + 3], expected.plus3);
      EXPECT_EQ(image[block + 4], 150);
      EXPECT_EQ(image[block + 11], 240);
      EXPECT_EQ(std::string(image.begin() + static_cast<long>(block) + 36,
                            image.begin() + static_cast<long>(block) + 42),
                expected.names[static_cast<std::size_t>(k - 1)]);
    }
    EXPECT_EQ(image[297], 252);
    EXPECT_EQ(image[kSystemTypeByte], type);
    for (std::size_t offset = 0; offset < kPresetSize; ++offset)
      if (!nonZero.contains(offset)) {
        EXPECT_EQ(image[offset], 0) << "type " << type << " @" << offset;
      }
  }
}

}  // namespace
}  // namespace talvex::params
