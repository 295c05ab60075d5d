// Reading a device's live image into the PC's copy.
#pragma once

#include "link/link.h"
#include "params/image_layout.h"

namespace talvex::presets {

enum class LiveRead {
  Received,  // bytes 0..303 of `image` now hold the device's image
  Skipped,   // the link sends nothing (demo mode, not open, suspended): `image` unchanged
  Failed,    // the block or the closing command went unanswered (reported by the link); when
             // only the closing command failed, `image` holds the block all the same
};

// A block read with command 11, p1 = p2 = 255 (the device answers with its current 304-byte
// image), copied into bytes 0..303 of `image`; then command 0 with all parameters 0 closes the
// block transfer.
LiveRead ReadLiveImage(link::Link& link, int deviceId, params::ParamImage& image);

}  // namespace talvex::presets
