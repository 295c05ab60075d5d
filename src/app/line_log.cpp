#include "app/line_log.h"

#include "protocol/frame.h"

namespace talvex::app {

namespace {

constexpr int kNameWidth = 17;  // the longest command name, "limiter threshold"

QString NameOf(const LoggedFrame& frame) {
  if (frame.bytes.size() == protocol::kFrameSize)
    return QString::fromStdString(protocol::CommandName(frame.bytes[3]));
  return QString("block (%1 bytes)").arg(frame.bytes.size());
}

}  // namespace

QString FormatFrame(const LoggedFrame& frame) {
  const QString id =
      frame.deviceId < 0 ? QString("ID  ?") : QString("ID %1").arg(frame.deviceId, 2);
  return QString("%1  %2  %3  %4  %5")
      .arg(frame.at.toString("HH:mm:ss.zzz"),
           frame.direction == LoggedFrame::Direction::Sent ? ">" : "<", id,
           NameOf(frame).leftJustified(kNameWidth),
           QString::fromStdString(protocol::FormatHex(frame.bytes)));
}

void LineLog::Add(LoggedFrame frame) {
  if (frames_.size() == kMaxFrames) frames_.pop_front();
  frames_.push_back(std::move(frame));
}

QStringList LineLog::Lines(std::optional<int> deviceId, std::size_t from) const {
  QStringList lines;
  for (std::size_t i = from; i < frames_.size(); ++i)
    if (Shows(frames_[i], deviceId)) lines << FormatFrame(frames_[i]);
  return lines;
}

}  // namespace talvex::app
