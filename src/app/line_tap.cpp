#include "app/line_tap.h"

#include "protocol/frame.h"

namespace talvex::app {

namespace {

constexpr std::size_t kIdIndex = 2;

}  // namespace

void LineTap::Sent(std::span<const std::uint8_t> frame) {
  if (!listening_.load(std::memory_order_relaxed)) return;
  lastSentId_ = frame.size() > kIdIndex ? frame[kIdIndex] : -1;
  Pass(LoggedFrame::Direction::Sent, lastSentId_, frame);
}

void LineTap::Taken(std::span<const std::uint8_t> reply) {
  if (!listening_.load(std::memory_order_relaxed)) return;
  const bool frame = reply.size() == protocol::kFrameSize;
  Pass(LoggedFrame::Direction::Received, frame ? reply[kIdIndex] : lastSentId_, reply);
}

void LineTap::Pass(LoggedFrame::Direction direction, int deviceId,
                   std::span<const std::uint8_t> bytes) {
  LoggedFrame logged{QDateTime::currentDateTime(), direction, deviceId,
                     std::vector<std::uint8_t>(bytes.begin(), bytes.end())};
  QMetaObject::invokeMethod(
      this, [this, logged = std::move(logged)] { emit frameSeen(logged); }, Qt::QueuedConnection);
}

}  // namespace talvex::app
