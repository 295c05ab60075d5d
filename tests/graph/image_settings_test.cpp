#include "graph/image_settings.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "params/default_image.h"
#include "protocol/frame.h"

namespace talvex::graph {
namespace {

params::ParamImage FactoryImage() {
  params::ParamImage image{};
  const params::PresetImage& preset = params::DefaultImage[0];
  std::copy(preset.begin(), preset.end(), image.begin());
  return image;
}

TEST(ImageSettingsTest, shouldReadTheFactoryImageAsFlat) {
  const ResponseSettings settings = SettingsFromImage(FactoryImage());
  for (const BandSettings& band : settings.bands) {
    EXPECT_EQ(band.frequencyHz, 1000.0);  // byte 136
    EXPECT_EQ(band.widthIndex, 9);
    EXPECT_EQ(band.gainStep, 30);
    EXPECT_EQ(band.gainDb, 0.0);
  }
  EXPECT_EQ(settings.crossovers[0].frequencyHz, 20.0);     // Out 1 high-pass byte 0
  EXPECT_EQ(settings.crossovers[1].frequencyHz, 20000.0);  // Out 1 low-pass byte 240
  EXPECT_EQ(settings.crossovers[1].type, 0);
  EXPECT_EQ(settings.channels[0].levelDb, 0.0);
  EXPECT_EQ(settings.channels[7].levelDb, 0.0);
}

TEST(ImageSettingsTest, shouldDecodeBandCrossoverDelayPolarityAndLevelBytes) {
  params::ParamImage image = FactoryImage();
  const std::size_t band51 = params::EqBandStart[51];
  image[band51] = 112;                       // 500 Hz
  image[band51 + 1] = 2;                     // "-12 Lo-Sh"
  image[band51 + 2] = 41;                    // +5.5 dB
  image[params::CrossoverOffset[11]] = 136;  // Out 6 low-pass at 1000 Hz
  image[params::CrossoverOffset[11] + 1] = 6;
  image[params::DelayOffset[7]] = 1;
  image[params::DelayOffset[7] + 1] = 2;
  image[params::DelayOffset[7] + 2] = 3;
  image[params::PolarityOffset[7]] = 1;
  image[params::ChannelBase[7]] = 60;  // -6 dB
  image[params::ChannelBase[1]] = 1;   // In B: g = 256 + 44 = 300, +15 dB
  image[params::ChannelBase[1] + 1] = 44;
  const ResponseSettings settings = SettingsFromImage(image);
  EXPECT_EQ(settings.bands[51].frequencyHz, 500.0);
  EXPECT_EQ(settings.bands[51].widthIndex, 2);
  EXPECT_EQ(settings.bands[51].gainStep, 41);
  EXPECT_EQ(settings.bands[51].gainDb, 5.5);
  EXPECT_EQ(settings.crossovers[11].frequencyHz, 1000.0);
  EXPECT_EQ(settings.crossovers[11].type, 6);
  EXPECT_EQ(settings.channels[7].delaySamples, 48 * (256 + 2) + 3);
  EXPECT_TRUE(settings.channels[7].polarityInverted);
  EXPECT_DOUBLE_EQ(settings.channels[7].levelDb, -6.0);
  EXPECT_DOUBLE_EQ(settings.channels[1].levelDb, 15.0);
}

TEST(ImageSettingsTest, shouldRefuseBytesOutsideTheirTables) {
  const struct {
    std::size_t offset;
    std::uint8_t value;
  } cases[] = {{params::EqBandStart[0], 241},
               {params::EqBandStart[0] + 1, 64},
               {params::EqBandStart[0] + 2, 61},
               {params::CrossoverOffset[0] + 1, 9}};
  for (const auto& c : cases) {
    params::ParamImage image = FactoryImage();
    image[c.offset] = c.value;
    EXPECT_THROW(SettingsFromImage(image), IndexError) << c.offset;
  }
}

}  // namespace
}  // namespace talvex::graph
