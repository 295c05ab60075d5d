// One device's two stores: the byte image in the device's own encoding and the editor's
// values. Senders change both; a preset that replaces the image refreshes the values.
#pragma once

#include "params/image_layout.h"
#include "params/param_values.h"

namespace talvex::params {

// A whole 1155-byte record of a device of `systemType` that was never read: its DefaultImage
// in 0..303, everything else 0 (analogue inputs, delays shown in ms). IndexError for a type
// above 2.
ParamImage DefaultRecord(int systemType);

struct DeviceParams {
  ParamImage image{};
  ParamValues values;

  static DeviceParams FromDefault(int systemType);
  static DeviceParams FromImage(const ParamImage& image);

  // Sets every value the image holds from it: band frequencies, levels, output polarities,
  // thresholds, the delay unit (323) and the input source (321). Mutes, input polarities, the
  // output link switch and the temperature are not in the image and keep their values.
  void ValuesFromImage();
};

}  // namespace talvex::params
