// Reads the response settings out of a device's parameter image through the parameter model's
// decoding, so the byte encodings live in one place.
#pragma once

#include "graph/response_settings.h"
#include "params/device_params.h"
#include "params/image_layout.h"

namespace talvex::graph {

// IndexError for a byte outside its range (a frequency byte above 240, a width above 63, a
// gain byte above 60, a crossover type above 8, a level step beyond its scale): such an image
// is not the device's.
ResponseSettings SettingsFromImage(const params::ParamImage& image);

// What the editor draws for a device: the image's settings, the input polarities the editor
// keeps beside the image, and a bypassed channel's equaliser flat (its bands pass the signal
// as it is, so they draw nothing, whatever they are set to).
ResponseSettings SettingsFromDevice(const params::DeviceParams& device);

}  // namespace talvex::graph
