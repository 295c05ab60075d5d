// The one link to the processors on a line: framing, the three kinds of exchange with their
// retransmissions and time limits, the link flags, and failure reports.
#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "link/clock.h"
#include "link/transport.h"
#include "protocol/frame.h"

namespace talvex::link {

using namespace std::chrono_literals;

// Time limits of one transmission. The device's own tools waited 0.11 / 2000 days (4.752 s)
// for a reply, 0.11 / 1000 days (9.504 s) for command 21 and 0.21 / 1000 days (18.144 s) for a
// block, read from a clock with one-second steps; ours never wait less than that.
inline constexpr Clock::Duration kReplyTimeout = 5s;
inline constexpr Clock::Duration kSystemTypeReplyTimeout = 10s;
inline constexpr Clock::Duration kBlockTimeout = 18144ms;
inline constexpr Clock::Duration kPollTimeout = 100ms;
inline constexpr int kSendTransmissions = 5;
inline constexpr int kBlockTransmissions = 6;
inline constexpr Clock::Duration kPortSettlePause = 30ms;

// Progress values run from 0 to kProgressEnd, the end of the progress bars of the windows that
// show a long wait (the system-type and read-preset windows).
inline constexpr int kProgressEnd = 400000;

inline constexpr std::string_view kCommunicationProblemTitle = "Communication problem";
inline constexpr std::string_view kCommunicationProblemText =
    " The system will be close the communication with this device";
inline constexpr std::string_view kTimeOutText = "Time out";

struct LinkFlags {
  bool DemoMode = false;          // no device connected: nothing is sent or received
  bool LinkEnabled = false;       // set once the port is open; while false nothing is sent
  bool PortOpened = false;        // set by OpenPort on success
  bool SendSuspended = false;     // raised around bulk updates: every exchange returns at once
  bool ReportLinkErrors = false;  // report a final SendCommand failure (and close the device)
  bool ShowSendProgress = false;  // SendCommand reports its wait as progress
  bool ShowReadProgress = false;  // ReadBlock reports its wait as progress
};

enum class FailureKind {
  CommunicationProblem,  // SendCommand: the device's editor is closed, the port stays open
  BlockTimeOut,          // ReadBlock: the program ends at once
};

struct LinkFailure {
  FailureKind kind;
  int deviceId;
  std::string_view title;  // empty for "Time out", which has none
  std::string_view text;
};

enum class ProgressKind { Send, Read };

// Told about everything the link does that someone may show: frames on the wire (for traces),
// progress of long waits, and final failures, each reported once. The core never shows a
// message itself.
class LinkObserver {
 public:
  virtual ~LinkObserver() = default;
  virtual void LinkFailed(const LinkFailure& failure) = 0;
  virtual void FrameSent(std::span<const std::uint8_t> /*frame*/) {}
  virtual void ReplyTaken(std::span<const std::uint8_t> /*reply*/) {}
  virtual void Progress(ProgressKind /*kind*/, int /*value*/) {}
};

enum class SendResult {
  Skipped,     // early return: demo mode, link not enabled, or sending suspended
  Unanswered,  // code 15 or 143 went out; these are never acknowledged
  Replied,     // a 13-byte reply is in RxBuffer
  NoReply,     // five transmissions went unanswered; not reported (ReportLinkErrors false)
  Failed,      // five transmissions went unanswered; reported as "Communication problem"
};

enum class BlockResult {
  Skipped,   // early return
  Received,  // 304 bytes are in RxBuffer
  TimedOut,  // six transmissions went unanswered; reported as "Time out"
};

struct LinkStats {
  long transmissions = 0;
  long retransmissions = 0;
  long failures = 0;  // exchanges that ended without a reply after every transmission
  Clock::Duration longestExchange{};
};

class Link {
 public:
  Link(Transport& transport, Clock& clock, LinkObserver* observer = nullptr);

  LinkFlags& Flags() { return flags_; }
  const LinkFlags& Flags() const { return flags_; }
  Transport& Line() { return transport_; }
  Clock& Time() { return clock_; }
  void SetObserver(LinkObserver* observer) { observer_ = observer; }
  LinkObserver* Observer() const { return observer_; }

  // Closes the port if open, pauses 30 ms, opens it, pauses 30 ms, then sets PortOpened and
  // LinkEnabled. On failure both flags keep their values and LastOpenError() says why.
  bool OpenPort();
  const std::string& LastOpenError() const { return lastOpenError_; }

  // One frame to `deviceId`, then a 13-byte reply, with up to five transmissions.
  SendResult SendCommand(int deviceId, const protocol::Command& command);
  // One frame, then a 304-byte block, with up to six transmissions.
  BlockResult ReadBlock(int deviceId, const protocol::Command& command);
  // One frame and at most one poll period; true when a reply came with 0x81 at index 4.
  bool PollDevice(int deviceId, const protocol::Command& command);

  // The last reply: a 13-byte reply fills 0..12, a block 0..303; other bytes keep their content.
  const std::array<std::uint8_t, protocol::kBlockSize>& RxBuffer() const { return rxBuffer_; }
  bool ReplyReceived() const { return replyReceived_; }
  const LinkStats& Stats() const { return stats_; }

 private:
  bool SkipsExchange() const;
  void Transmit(int deviceId, const protocol::Command& command);
  bool CollectReply(std::size_t size, Clock::Duration limit, const ProgressKind* progress);
  void TakeReply(std::size_t size);
  void ReportProgress(ProgressKind kind, int value);
  void Finish(Clock::TimePoint start, bool answered);
  void Report(FailureKind kind, int deviceId);

  Transport& transport_;
  Clock& clock_;
  LinkObserver* observer_;
  LinkFlags flags_;
  std::array<std::uint8_t, protocol::kBlockSize> rxBuffer_{};
  std::vector<std::uint8_t> pending_;
  bool replyReceived_ = false;
  int progressShown_ = 0;
  std::string lastOpenError_;
  LinkStats stats_;
};

}  // namespace talvex::link
