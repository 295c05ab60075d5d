#include "graph/image_settings.h"

#include <string>

#include "params/value_tables.h"
#include "protocol/frame.h"

namespace talvex::graph {

namespace {

// Samples per step of the delay's two high bytes; the third byte counts single samples.
constexpr int kSamplesPerDelayStep = 48;

std::uint8_t Byte(const params::ParamImage& image, std::size_t offset) {
  return image[offset];
}

double FrequencyOfByte(std::uint8_t byte, const std::string& what) {
  CheckIndex(byte, static_cast<long long>(params::kFrequencyCount) - 1, what.c_str());
  return params::FrequencyTable[byte];
}

BandSettings BandFromImage(const params::ParamImage& image, int band) {
  const std::size_t start = params::EqBandStart[static_cast<std::size_t>(band)];
  const std::string name = "band " + std::to_string(band);
  BandSettings settings;
  settings.frequencyHz = FrequencyOfByte(Byte(image, start), "frequency byte of " + name);
  settings.widthIndex = Byte(image, start + 1);
  CheckIndex(settings.widthIndex, kWidthCount - 1, ("width byte of " + name).c_str());
  // The gain byte g is 60 - the gain slider's position; g / 2 - 15 dB.
  settings.gainStep = Byte(image, start + 2);
  CheckIndex(settings.gainStep, kGainStepMax, ("gain byte of " + name).c_str());
  settings.gainDb = settings.gainStep / 2.0 - 15.0;
  return settings;
}

CrossoverSettings CrossoverFromImage(const params::ParamImage& image, int box) {
  const std::size_t offset = params::CrossoverOffset[static_cast<std::size_t>(box)];
  const std::string name = "crossover box " + std::to_string(box);
  CrossoverSettings settings;
  settings.frequencyHz = FrequencyOfByte(Byte(image, offset), "frequency byte of " + name);
  settings.type = Byte(image, offset + 1);
  CheckIndex(settings.type, kCrossoverTypeCount - 1, ("type byte of " + name).c_str());
  return settings;
}

ChannelSettings ChannelFromImage(const params::ParamImage& image, int channel) {
  const auto c = static_cast<std::size_t>(channel);
  const std::size_t delay = params::DelayOffset[c];
  ChannelSettings settings;
  settings.delaySamples =
      kSamplesPerDelayStep * (Byte(image, delay) * 256 + Byte(image, delay + 1)) +
      Byte(image, delay + 2);
  const std::size_t level = params::ChannelBase[c];
  if (channel < params::kInputCount) {
    // Inputs: two level bytes, g = 0..300, g / 10 - 15 dB; no polarity byte in the image.
    settings.levelDb = (Byte(image, level) * 256 + Byte(image, level + 1)) / 10.0 - 15.0;
  } else {
    // Outputs: one level byte, g = 0..180, g / 10 - 12 dB.
    settings.levelDb = Byte(image, level) / 10.0 - 12.0;
    settings.polarityInverted = Byte(image, params::PolarityOffset[c]) != 0;
  }
  return settings;
}

}  // namespace

ResponseSettings SettingsFromImage(const params::ParamImage& image) {
  ResponseSettings settings;
  for (int band = 0; band < kBandCount; ++band)
    settings.bands[static_cast<std::size_t>(band)] = BandFromImage(image, band);
  for (int box = 0; box < kCrossoverFilterCount; ++box)
    settings.crossovers[static_cast<std::size_t>(box)] = CrossoverFromImage(image, box);
  for (int channel = 0; channel < kChannelCount; ++channel)
    settings.channels[static_cast<std::size_t>(channel)] = ChannelFromImage(image, channel);
  return settings;
}

}  // namespace talvex::graph
