#include "presets/live_image.h"

#include <algorithm>

#include "presets/preset_transfer.h"

namespace talvex::presets {

// Line noise inside a block arrives as a byte the device never holds (a frequency byte above
// 240, a limiter index past its table ...). Taken over, it would stop the editor's load and
// every decoder with an IndexError; it is refused here, where the bytes come in.
bool IsReadableImage(const params::ParamImage& image) {
  try {
    params::DeviceParams device = params::DeviceParams::FromImage(image);
    PresetView noView;
    (void)ApplyPreset(device, noView, TransferFlags::EditorLoad());
    return true;
  } catch (const IndexError&) {
    return false;
  }
}

LiveRead ReadLiveImage(link::Link& link, int deviceId, params::ParamImage& image) {
  protocol::Command read;
  read.code = protocol::code::kReadBlock;
  read.p(1) = 255;
  read.p(2) = 255;
  switch (link.ReadBlock(deviceId, read)) {
    case link::BlockResult::Skipped:
      return LiveRead::Skipped;
    case link::BlockResult::TimedOut:
      return LiveRead::Failed;
    case link::BlockResult::Received:
      break;
  }
  params::ParamImage received = image;
  std::copy_n(link.RxBuffer().begin(), params::kPresetSize, received.begin());
  const bool readable = IsReadableImage(received);
  if (readable) image = received;
  const link::SendResult closed = link.SendCommand(deviceId, protocol::Command{});
  const bool failed = closed == link::SendResult::Failed || closed == link::SendResult::NoReply;
  if (failed) return LiveRead::Failed;
  return readable ? LiveRead::Received : LiveRead::Garbled;
}

}  // namespace talvex::presets
