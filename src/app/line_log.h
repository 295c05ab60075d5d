// What the line monitor keeps and shows: the frames seen, newest last, at most kMaxFrames of
// them; each as one line of text with its time, direction, device ID, command name and bytes.
#pragma once

#include <QString>
#include <QStringList>
#include <deque>
#include <optional>

#include "app/line_tap.h"

namespace talvex::app {

// An hour of a busy line (about 70 frames a second at 9600 baud) is a quarter of a million
// frames; the monitor keeps the newest 100,000, some 10 MB.
inline constexpr std::size_t kMaxFrames = 100000;

// "19:45:02.123  >  ID  3  memory read      F0 81 03 10 01 70 00 00 00 00 00 00 F7"; a block
// reply is named "block (304 bytes)" and shows all its bytes.
QString FormatFrame(const LoggedFrame& frame);

class LineLog {
 public:
  void Add(LoggedFrame frame);
  void Clear() { frames_.clear(); }
  std::size_t Size() const { return frames_.size(); }

  // nullopt: every device.
  static bool Shows(const LoggedFrame& frame, std::optional<int> deviceId) {
    return !deviceId || frame.deviceId == *deviceId;
  }
  // The lines of the frames of `deviceId` (every device when nullopt), from the `from`-th frame.
  QStringList Lines(std::optional<int> deviceId, std::size_t from = 0) const;

 private:
  std::deque<LoggedFrame> frames_;
};

}  // namespace talvex::app
