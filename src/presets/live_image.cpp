#include "presets/live_image.h"

#include <algorithm>

namespace talvex::presets {

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
  std::copy_n(link.RxBuffer().begin(), params::kPresetSize, image.begin());
  const link::SendResult closed = link.SendCommand(deviceId, protocol::Command{});
  const bool failed = closed == link::SendResult::Failed || closed == link::SendResult::NoReply;
  return failed ? LiveRead::Failed : LiveRead::Received;
}

}  // namespace talvex::presets
