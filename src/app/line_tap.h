// The line monitor's tap on the link: the link worker reports every frame it sends and every
// reply it takes; while a monitor listens, the tap stamps each one and passes it to the
// interface's thread. While no monitor listens it does nothing but read one flag, so a closed
// monitor costs nothing.
#pragma once

#include <QDateTime>
#include <QMetaType>
#include <QObject>
#include <atomic>
#include <cstdint>
#include <span>
#include <vector>

namespace talvex::app {

struct LoggedFrame {
  enum class Direction { Sent, Received };
  QDateTime at;
  Direction direction = Direction::Sent;
  int deviceId = -1;  // byte 2 of a frame; a block carries none and takes its request's ID
  std::vector<std::uint8_t> bytes;
};

class LineTap : public QObject {
  Q_OBJECT

 public:
  using QObject::QObject;

  // From the interface's thread: a monitor opened (true) or closed (false).
  void SetListening(bool listening) { listening_.store(listening); }
  bool Listening() const { return listening_.load(); }

  // From the link worker's thread.
  void Sent(std::span<const std::uint8_t> frame);
  void Taken(std::span<const std::uint8_t> reply);

 signals:
  // On the interface's thread, in the order the frames crossed the line.
  void frameSeen(const talvex::app::LoggedFrame& frame);

 private:
  void Pass(LoggedFrame::Direction direction, int deviceId, std::span<const std::uint8_t> bytes);

  std::atomic<bool> listening_{false};
  int lastSentId_ = -1;  // worker thread only
};

}  // namespace talvex::app

Q_DECLARE_METATYPE(talvex::app::LoggedFrame)
