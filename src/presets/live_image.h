// Reading a device's live image into the PC's copy.
#pragma once

#include "link/link.h"
#include "params/image_layout.h"

namespace talvex::presets {

enum class LiveRead {
  Received,  // bytes 0..303 of `image` now hold the device's image
  Skipped,   // the link sends nothing (demo mode, not open, suspended): `image` unchanged
  Failed,    // the block or the closing command went unanswered (reported by the link); when
             // only the closing command failed, `image` holds a readable block all the same
  Garbled,   // the block came but holds a byte the device never keeps (line noise: a block has
             // no checksum); `image` unchanged, the block transfer closed all the same
};

// True when every byte of bytes 0..303 that the model reads holds a value the device keeps:
// the values can be decoded from it and every sender of the whole-preset transfer takes it.
bool IsReadableImage(const params::ParamImage& image);

// A block read with command 11, p1 = p2 = 255 (the device answers with its current 304-byte
// image), copied into bytes 0..303 of `image` unless it is garbled; then command 0 with all
// parameters 0 closes the block transfer.
LiveRead ReadLiveImage(link::Link& link, int deviceId, params::ParamImage& image);

}  // namespace talvex::presets
