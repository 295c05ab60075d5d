#include "graph/image_settings.h"

#include "params/image_decode.h"
#include "params/image_layout.h"

namespace talvex::graph {

// The byte encodings are the parameter model's (params/image_decode.h); this only gathers what
// the response maths reads. Inputs have no polarity byte in the image: never inverted here.
ResponseSettings SettingsFromImage(const params::ParamImage& image) {
  const params::ImageBytes bytes(image);
  ResponseSettings settings;
  for (int band = 0; band < kBandCount; ++band) {
    BandSettings& b = settings.bands[static_cast<std::size_t>(band)];
    b.frequencyHz = params::BandFrequency(bytes, band);
    b.widthIndex = params::BandWidthIndex(bytes, band);
    b.gainStep = params::BandGainStep(bytes, band);
    b.gainDb = params::BandGainDb(bytes, band);
  }
  for (int box = 0; box < kCrossoverFilterCount; ++box) {
    CrossoverSettings& filter = settings.crossovers[static_cast<std::size_t>(box)];
    filter.frequencyHz = params::CrossoverFrequency(bytes, box);
    filter.type = params::CrossoverType(bytes, box);
  }
  for (int channel = 0; channel < kChannelCount; ++channel) {
    ChannelSettings& c = settings.channels[static_cast<std::size_t>(channel)];
    c.delaySamples = params::DelaySamples(bytes, channel);
    c.levelDb = params::LevelDb(bytes, channel);
    c.polarityInverted = channel >= 2 && params::PolarityInverted(bytes, channel);
    c.source = channel >= 2 ? params::OutputSource(bytes, channel) : 0;
  }
  return settings;
}

ResponseSettings SettingsFromDevice(const params::DeviceParams& device) {
  ResponseSettings settings = SettingsFromImage(device.image);
  for (int channel = 0; channel < kChannelCount; ++channel) {
    if (channel < params::kInputCount)
      settings.channels[static_cast<std::size_t>(channel)].polarityInverted =
          device.values.Polarity(channel) != 0;
    if (!params::EqBypassed(device.image, channel)) continue;
    const int first = FirstBandOfChannel(channel);
    for (int band = first; band < first + BandsOf(channel); ++band) {
      BandSettings& flat = settings.bands[static_cast<std::size_t>(band)];
      flat.gainDb = 0;
      flat.gainStep = kGainStepMax / 2;
    }
  }
  return settings;
}

}  // namespace talvex::graph
