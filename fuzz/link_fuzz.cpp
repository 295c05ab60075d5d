// Line noise at the link: arbitrary bytes, cut at arbitrary points and arriving at arbitrary
// moments of a virtual clock, while the link sends commands, reads blocks and polls, and while
// the conversations above it (live image, state read, name, password, search) take the
// replies apart. Between and after the replies come stray bytes; some arrivals are the echo
// of the frame just written, so that exchanges also succeed and conversations go deep.
//
// Checked on every exchange: no crash, no wait past the exchange's limits, a taken 13-byte
// reply starts with 0xF0, and a final failure is reported exactly once.
#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <deque>
#include <vector>

#include "fuzz/fuzz_support.h"
#include "graph/image_settings.h"
#include "link/device_name.h"
#include "link/link.h"
#include "link/search.h"
#include "params/device_params.h"
#include "presets/device_state.h"
#include "presets/live_image.h"
#include "presets/preset_transfer.h"
#include "presets/system_lock.h"

namespace talvex::fuzz {
namespace {

using namespace std::chrono_literals;
using link::Clock;

// A line whose bytes come from the fuzzer: after each write, a few arrivals, each at its own
// delay, each either raw bytes or the written frame echoed with one byte changed or not.
class FuzzedLine final : public link::Transport {
 public:
  FuzzedLine(FuzzedDataProvider& data, link::VirtualClock& clock) : data_(data), clock_(clock) {}

  std::string Name() const override { return "fuzz"; }
  std::string Open() override {
    open_ = !data_.ConsumeBool() || data_.remaining_bytes() == 0;
    return open_ ? "" : "the line refused to open";
  }
  void Close() override { open_ = false; }
  bool IsOpen() const override { return open_; }
  void Unplug() { open_ = false; }

  bool Write(std::span<const std::uint8_t> bytes) override {
    if (!open_) return false;
    const int arrivals = data_.ConsumeIntegralInRange(0, 3);
    for (int i = 0; i < arrivals; ++i)
      Schedule(bytes);
    return true;
  }

  std::size_t WaitForBytes(std::size_t count, Clock::TimePoint deadline) override {
    Deliver();
    while (open_ && received_.size() < count && clock_.Now() < deadline) {
      const Clock::TimePoint next = inFlight_.empty() ? deadline : inFlight_.front().first;
      clock_.SleepUntil(std::min(next, deadline));
      Deliver();
    }
    return received_.size();
  }

  std::size_t Read(std::span<std::uint8_t> out) override {
    Deliver();
    const std::size_t n = std::min(out.size(), received_.size());
    std::copy_n(received_.begin(), n, out.begin());
    received_.erase(received_.begin(), received_.begin() + static_cast<long>(n));
    return n;
  }

  void DiscardInput() override {
    Deliver();
    received_.clear();
  }

 private:
  void Schedule(std::span<const std::uint8_t> written) {
    // Mostly inside the reply limits, sometimes past them (a late reply to an earlier frame).
    const auto after =
        std::chrono::milliseconds(data_.ConsumeBool() ? data_.ConsumeIntegralInRange(0, 200)
                                                      : data_.ConsumeIntegralInRange(0, 40000));
    std::vector<std::uint8_t> bytes;
    switch (data_.ConsumeIntegralInRange(0, 3)) {
      case 0:  // the echo, as a device acknowledges
        bytes.assign(written.begin(), written.end());
        break;
      case 1: {  // the echo with one byte changed
        bytes.assign(written.begin(), written.end());
        if (!bytes.empty())
          bytes[data_.ConsumeIntegralInRange<std::size_t>(0, bytes.size() - 1)] =
              data_.ConsumeIntegral<std::uint8_t>();
        break;
      }
      default:  // raw bytes: noise, a block, half a frame
        bytes = data_.ConsumeBytes<std::uint8_t>(data_.ConsumeIntegralInRange<std::size_t>(0, 340));
        break;
    }
    const Clock::TimePoint at = clock_.Now() + after;
    for (std::uint8_t value : bytes) {
      const auto place =
          std::upper_bound(inFlight_.begin(), inFlight_.end(), at,
                           [](Clock::TimePoint t, const auto& item) { return t < item.first; });
      inFlight_.insert(place, {at, value});
    }
  }

  void Deliver() {
    while (!inFlight_.empty() && inFlight_.front().first <= clock_.Now()) {
      if (open_) received_.push_back(inFlight_.front().second);
      inFlight_.pop_front();
    }
  }

  FuzzedDataProvider& data_;
  link::VirtualClock& clock_;
  bool open_ = true;
  std::deque<std::pair<Clock::TimePoint, std::uint8_t>> inFlight_;
  std::deque<std::uint8_t> received_;
};

class CountingObserver final : public link::LinkObserver {
 public:
  void LinkFailed(const link::LinkFailure& failure) override {
    ++failures;
    Require(failure.deviceId >= 0 && failure.deviceId <= kMaxDeviceId, "failure for a real ID");
  }
  void Progress(link::ProgressKind /*kind*/, int value) override {
    Require(value > 0 && value <= link::kProgressEnd, "progress within the bar");
  }
  int failures = 0;
};

// The commands a program sends, weighted towards the ones with special rules.
std::uint8_t CommandCode(FuzzedDataProvider& data) {
  static constexpr std::uint8_t kCodes[] = {
      protocol::code::kPoll,      protocol::code::kChannelLevel, protocol::code::kEqBand,
      protocol::code::kRelease,   protocol::code::kMemoryRead,   protocol::code::kSetSystemType,
      protocol::code::kReadState, protocol::code::kLeaveProgram, protocol::code::kMeterPoll};
  return data.ConsumeBool() ? data.PickValueInArray(kCodes) : data.ConsumeIntegral<std::uint8_t>();
}

void CheckSend(link::Link& link, CountingObserver& observer, int id, FuzzedDataProvider& data) {
  protocol::Command command;
  command.code = CommandCode(data);
  for (std::uint8_t& p : command.params)
    p = data.ConsumeIntegral<std::uint8_t>();
  const int failuresBefore = observer.failures;
  const Clock::TimePoint start = link.Time().Now();
  const link::SendResult result = link.SendCommand(id, command);
  const Clock::Duration limit = command.code == protocol::code::kSetSystemType
                                    ? link::kSystemTypeReplyTimeout
                                    : link::kReplyTimeout;
  Require(link.Time().Now() - start <= link::kSendTransmissions * limit, "send within its limit");
  const int reported = observer.failures - failuresBefore;
  Require(reported == (result == link::SendResult::Failed ? 1 : 0), "one report per failure");
  if (result == link::SendResult::Replied) {
    Require(link.ReplyReceived() && link.RxBuffer()[0] == protocol::kFrameStart,
            "a reply starts with 0xF0");
  } else {
    Require(!link.ReplyReceived(), "no reply flagged without a reply");
  }
}

void CheckBlock(link::Link& link, CountingObserver& observer, int id) {
  protocol::Command read;
  read.code = protocol::code::kReadBlock;
  read.p(1) = 255;
  read.p(2) = 255;
  const int failuresBefore = observer.failures;
  const Clock::TimePoint start = link.Time().Now();
  const link::BlockResult result = link.ReadBlock(id, read);
  Require(link.Time().Now() - start <= link::kBlockTransmissions * link::kBlockTimeout,
          "block within its limit");
  Require(observer.failures - failuresBefore == (result == link::BlockResult::TimedOut ? 1 : 0),
          "one report per block time-out");
}

void CheckPoll(link::Link& link, int id) {
  const Clock::TimePoint start = link.Time().Now();
  const bool present = link.PollDevice(id, link::PollCommand(id));
  Require(link.Time().Now() - start <= link::kPollTimeout, "poll within its period");
  Require(!present || link.RxBuffer()[protocol::kPollAnswerIndex] == protocol::kPollAnswer,
          "present only with 0x81 at index 4");
}

// What the program does with a live image it read: decode every value from it and load it
// into the editor. A garbled block leaves the image as it was.
void TakeImage(link::Link& link, int id) {
  const params::ParamImage before = params::DefaultRecord(0);
  params::ParamImage image = before;
  const presets::LiveRead read = presets::ReadLiveImage(link, id, image);
  if (read == presets::LiveRead::Garbled) Require(image == before, "a garbled block is not taken");
  if (read != presets::LiveRead::Received) return;
  params::DeviceParams device = params::DeviceParams::FromImage(image);
  presets::PresetView view;
  (void)presets::ApplyPreset(device, view, presets::TransferFlags::EditorLoad());
  (void)graph::SettingsFromImage(device.image);
}

}  // namespace
}  // namespace talvex::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  using namespace talvex;
  FuzzedDataProvider data(bytes, size);
  link::VirtualClock clock;
  fuzz::FuzzedLine line(data, clock);
  fuzz::CountingObserver observer;
  link::Link link(line, clock, &observer);
  link.Flags().LinkEnabled = true;
  params::DeviceParams device = params::DeviceParams::FromDefault(0);
  presets::DeviceState state;
  for (int step = 0; step < 48 && data.remaining_bytes() > 0; ++step) {
    const int id = data.ConsumeIntegralInRange(0, kMaxDeviceId);
    link.Flags().ReportLinkErrors = data.ConsumeBool();
    link.Flags().ShowSendProgress = data.ConsumeBool();
    link.Flags().ShowReadProgress = link.Flags().ShowSendProgress;
    switch (data.ConsumeIntegralInRange(0, 9)) {
      case 0:
        fuzz::CheckSend(link, observer, id, data);
        break;
      case 1:
        fuzz::CheckBlock(link, observer, id);
        break;
      case 2:
        fuzz::CheckPoll(link, id);
        break;
      case 3:
        fuzz::TakeImage(link, id);
        break;
      case 4:
        presets::ReadDeviceState(link, id, device, state);
        break;
      case 5:
        (void)link::ReadDeviceName(link, id);
        break;
      case 6:
        presets::ReadDevicePassword(link, id, state);
        break;
      case 7:
        (void)link::SearchDevices(link, {id, (id + 1) % kDeviceCount});
        break;
      case 8:
        line.Unplug();
        break;
      default:
        link.OpenPort();
        break;
    }
  }
  return 0;
}
