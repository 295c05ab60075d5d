#include "link/link.h"

#include <algorithm>

namespace talvex::link {

namespace code = protocol::code;

namespace {

// While a progress bar shows a wait, the wait is cut into slices so the bar moves.
constexpr Clock::Duration kProgressSlice = 50ms;

}  // namespace

Link::Link(Transport& transport, Clock& clock, LinkObserver* observer)
    : transport_(transport), clock_(clock), observer_(observer) {
  pending_.reserve(protocol::kBlockSize * 2);
}

bool Link::OpenPort() {
  if (transport_.IsOpen()) transport_.Close();
  clock_.SleepFor(kPortSettlePause);
  lastOpenError_ = transport_.Open();
  if (!lastOpenError_.empty()) return false;
  clock_.SleepFor(kPortSettlePause);
  flags_.PortOpened = true;
  flags_.LinkEnabled = true;
  return true;
}

bool Link::SkipsExchange() const {
  return flags_.DemoMode || !flags_.LinkEnabled || flags_.SendSuspended;
}

SendResult Link::SendCommand(int deviceId, const protocol::Command& command) {
  CheckIndex(deviceId, kMaxDeviceId, "device ID");
  replyReceived_ = false;
  if (SkipsExchange()) return SendResult::Skipped;
  const Clock::TimePoint start = clock_.Now();
  const Clock::Duration limit =
      command.code == code::kSetSystemType ? kSystemTypeReplyTimeout : kReplyTimeout;
  const ProgressKind progress = ProgressKind::Send;
  progressShown_ = 0;
  for (int transmission = 0; transmission < kSendTransmissions; ++transmission) {
    if (transmission > 0) ++stats_.retransmissions;
    Transmit(deviceId, command);
    if (protocol::IsUnacknowledged(command.code)) return SendResult::Unanswered;
    if (CollectReply(protocol::kFrameSize, limit, flags_.ShowSendProgress ? &progress : nullptr)) {
      TakeReply(protocol::kFrameSize);
      replyReceived_ = true;
      if (flags_.ShowSendProgress) ReportProgress(ProgressKind::Send, kProgressEnd);
      Finish(start, true);
      return SendResult::Replied;
    }
  }
  Finish(start, false);
  if (!flags_.ReportLinkErrors) return SendResult::NoReply;
  Report(FailureKind::CommunicationProblem, deviceId);
  return SendResult::Failed;
}

BlockResult Link::ReadBlock(int deviceId, const protocol::Command& command) {
  CheckIndex(deviceId, kMaxDeviceId, "device ID");
  if (SkipsExchange()) return BlockResult::Skipped;
  const Clock::TimePoint start = clock_.Now();
  const ProgressKind progress = ProgressKind::Read;
  progressShown_ = 0;
  for (int transmission = 0; transmission < kBlockTransmissions; ++transmission) {
    if (transmission > 0) ++stats_.retransmissions;
    Transmit(deviceId, command);
    if (CollectReply(protocol::kBlockSize, kBlockTimeout,
                     flags_.ShowReadProgress ? &progress : nullptr)) {
      TakeReply(protocol::kBlockSize);
      if (flags_.ShowReadProgress) ReportProgress(ProgressKind::Read, kProgressEnd);
      Finish(start, true);
      return BlockResult::Received;
    }
  }
  Finish(start, false);
  Report(FailureKind::BlockTimeOut, deviceId);
  return BlockResult::TimedOut;
}

bool Link::PollDevice(int deviceId, const protocol::Command& command) {
  CheckIndex(deviceId, kMaxDeviceId, "device ID");
  if (SkipsExchange()) return false;
  Transmit(deviceId, command);
  if (!CollectReply(protocol::kFrameSize, kPollTimeout, nullptr)) return false;
  TakeReply(protocol::kFrameSize);
  return rxBuffer_[protocol::kPollAnswerIndex] == protocol::kPollAnswer;
}

// Whatever waits in the input before a frame goes out cannot be its answer (a late reply to an
// earlier transmission, line noise), so the input is emptied first.
void Link::Transmit(int deviceId, const protocol::Command& command) {
  const protocol::Frame frame = protocol::BuildFrame(deviceId, command);
  transport_.DiscardInput();
  pending_.clear();
  ++stats_.transmissions;
  transport_.Write(frame);
  if (observer_) observer_->FrameSent(frame);
}

// Waits up to `limit` for `size` bytes. A 13-byte reply starts with 0xF0: bytes before it are
// line noise and are dropped. A block has no envelope and is taken as it comes.
bool Link::CollectReply(std::size_t size, Clock::Duration limit, const ProgressKind* progress) {
  const Clock::TimePoint start = clock_.Now();
  const Clock::TimePoint deadline = start + limit;
  const bool framed = size == protocol::kFrameSize;
  std::array<std::uint8_t, protocol::kBlockSize> chunk{};
  while (true) {
    const Clock::TimePoint now = clock_.Now();
    const Clock::TimePoint waitEnd = progress ? std::min(deadline, now + kProgressSlice) : deadline;
    const std::size_t available = transport_.WaitForBytes(size - pending_.size(), waitEnd);
    for (std::size_t left = available; left > 0;) {
      const std::size_t got = transport_.Read(std::span(chunk).first(std::min(left, chunk.size())));
      if (got == 0) break;
      pending_.insert(pending_.end(), chunk.begin(), chunk.begin() + static_cast<long>(got));
      left -= got;
    }
    if (framed) {
      const auto frameStart = std::find(pending_.begin(), pending_.end(), protocol::kFrameStart);
      pending_.erase(pending_.begin(), frameStart);
    }
    if (pending_.size() >= size) return true;
    if (!transport_.IsOpen() || clock_.Now() >= deadline) return false;
    if (progress) {
      const auto elapsed = clock_.Now() - start;
      ReportProgress(*progress, static_cast<int>(static_cast<long long>(kProgressEnd - 1) *
                                                 elapsed.count() / limit.count()));
    }
  }
}

// Copies the reply into RxBuffer and drops whatever came with it or after it.
void Link::TakeReply(std::size_t size) {
  std::copy_n(pending_.begin(), size, rxBuffer_.begin());
  pending_.clear();
  transport_.DiscardInput();
  if (observer_) observer_->ReplyTaken(std::span(rxBuffer_).first(size));
}

void Link::ReportProgress(ProgressKind kind, int value) {
  if (value <= progressShown_) return;  // never runs backwards across retransmissions
  progressShown_ = value;
  if (observer_) observer_->Progress(kind, value);
}

void Link::Finish(Clock::TimePoint start, bool answered) {
  stats_.longestExchange = std::max(stats_.longestExchange, clock_.Now() - start);
  if (!answered) ++stats_.failures;
}

void Link::Report(FailureKind kind, int deviceId) {
  if (!observer_) return;
  if (kind == FailureKind::CommunicationProblem) {
    observer_->LinkFailed({kind, deviceId, kCommunicationProblemTitle, kCommunicationProblemText});
  } else {
    observer_->LinkFailed({kind, deviceId, {}, kTimeOutText});
  }
}

}  // namespace talvex::link
