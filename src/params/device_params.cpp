#include "params/device_params.h"

#include <algorithm>

#include "params/default_image.h"
#include "params/image_decode.h"

namespace talvex::params {

ParamImage DefaultRecord(int systemType) {
  CheckIndex(systemType, kSystemTypeCount - 1, "system type");
  ParamImage record{};
  const PresetImage& preset = DefaultImage[static_cast<std::size_t>(systemType)];
  std::copy(preset.begin(), preset.end(), record.begin());
  return record;
}

DeviceParams DeviceParams::FromDefault(int systemType) {
  return FromImage(DefaultRecord(systemType));
}

DeviceParams DeviceParams::FromImage(const ParamImage& image) {
  DeviceParams device;
  device.image = image;
  device.ValuesFromImage();
  return device;
}

void DeviceParams::ValuesFromImage() {
  for (int band = 0; band < kBandCount; ++band)
    values.BandFrequency(band) = BandFrequency(image, band);
  for (int channel = 0; channel < kChannelCount; ++channel) {
    values.LevelDb(channel) = LevelDb(image, channel);
    if (channel < kInputCount) continue;
    values.Polarity(channel) = PolarityInverted(image, channel) ? 1 : 0;
    values.DbuLevel(channel) = ThresholdStep(image, channel);
  }
  values.Option() = image[kOptionByte];
  values.InputSource() = image[kInputSourceByte];
}

}  // namespace talvex::params
