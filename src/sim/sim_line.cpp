#include "sim/sim_line.h"

#include <algorithm>

namespace talvex::sim {

namespace {

constexpr std::uint8_t kNoiseByte = 0x55;

}  // namespace

SimLine::SimLine(const std::vector<int>& deviceIds, int systemType) {
  for (int id : deviceIds) {
    CheckIndex(id, kMaxDeviceId, "device ID");
    devices_.try_emplace(id, std::make_unique<Station>(id, systemType));
  }
}

SimDevice& SimLine::Device(int id) {
  const auto it = devices_.find(id);
  if (it == devices_.end()) throw IndexError("no simulated device with ID " + std::to_string(id));
  return it->second->device;
}

const SimDevice& SimLine::Device(int id) const {
  return const_cast<SimLine*>(this)->Device(id);  // NOLINT: same lookup, const result
}

std::vector<int> SimLine::DeviceIds() const {
  std::vector<int> ids;
  for (const auto& [id, station] : devices_)
    ids.push_back(id);
  return ids;
}

FaultPlan& SimLine::Faults(int id) {
  Device(id);  // throws for an unknown ID
  return devices_.at(id)->faults;
}

// Devices listen for 0xF0 and take the next 13 bytes as a frame; a frame whose second or
// last byte is wrong is dropped and the search for 0xF0 goes on after its first byte.
std::vector<ScheduledByte> SimLine::Receive(std::span<const std::uint8_t> bytes) {
  std::vector<ScheduledByte> out;
  pending_.insert(pending_.end(), bytes.begin(), bytes.end());
  std::size_t start = 0;
  while (true) {
    while (start < pending_.size() && pending_[start] != protocol::kFrameStart)
      ++start;
    if (pending_.size() - start < protocol::kFrameSize) break;
    const std::span<const std::uint8_t> candidate(pending_.data() + start, protocol::kFrameSize);
    if (!protocol::HasFrameEnvelope(candidate)) {
      ++malformedFrames_;
      ++start;
      continue;
    }
    protocol::Frame frame;
    std::copy(candidate.begin(), candidate.end(), frame.begin());
    start += protocol::kFrameSize;
    Dispatch(frame, out);
  }
  pending_.erase(pending_.begin(), pending_.begin() + static_cast<long>(start));
  std::stable_sort(out.begin(), out.end(),
                   [](const ScheduledByte& a, const ScheduledByte& b) { return a.at < b.at; });
  return out;
}

void SimLine::Dispatch(const protocol::Frame& frame, std::vector<ScheduledByte>& out) {
  const auto it = devices_.find(frame[2]);
  if (it == devices_.end()) return;  // nobody at that ID: silence
  Station& station = *it->second;
  if (station.seededWith != station.faults.seed) {
    station.random.seed(station.faults.seed);
    station.seededWith = station.faults.seed;
  }
  if (Ignores(station, frame)) return;
  std::vector<std::uint8_t> reply = station.device.Handle(frame);
  if (reply.empty()) return;
  Duration delay = station.faults.replyDelay;
  Disturb(station, reply, delay);
  if (!reply.empty()) Schedule(reply, delay, out);
}

bool SimLine::Ignores(Station& station, const protocol::Frame& frame) {
  FaultPlan& faults = station.faults;
  const std::uint8_t commandCode = frame[3];
  if (faults.vanishAfterFrames == 0) return true;
  if (faults.vanishAfterFrames > 0) --faults.vanishAfterFrames;
  if (faults.silentFrames > 0 && (!faults.silentCode || *faults.silentCode == commandCode)) {
    --faults.silentFrames;
    return true;
  }
  if (commandCode == protocol::code::kPoll && faults.answerSecondPollOnly &&
      station.pollsSeen++ % 2 == 0) {
    return true;
  }
  return Chance(station, faults.dropRequestRate);
}

void SimLine::Disturb(Station& station, std::vector<std::uint8_t>& reply, Duration& delay) {
  FaultPlan& faults = station.faults;
  if (reply.size() == protocol::kFrameSize && reply[3] == protocol::code::kPoll &&
      faults.wrongPollByte) {
    reply[protocol::kPollAnswerIndex] = 0x00;
  }
  if (faults.corruptIndex >= 0 && faults.corruptCount != 0 &&
      static_cast<std::size_t>(faults.corruptIndex) < reply.size()) {
    reply[static_cast<std::size_t>(faults.corruptIndex)] ^= 0xFF;
    if (faults.corruptCount > 0) --faults.corruptCount;
  }
  const bool corruptible = faults.corruptBlocks || reply.size() != protocol::kBlockSize;
  if (corruptible && Chance(station, faults.corruptRate)) {
    std::uniform_int_distribution<std::size_t> at(0, reply.size() - 1);
    reply[at(station.random)] ^= 0x5A;
  }
  if (faults.maxRandomDelay.count() > 0) {
    std::uniform_int_distribution<long long> extra(0, faults.maxRandomDelay.count());
    delay += std::chrono::microseconds(extra(station.random));
  }
  if (Chance(station, faults.lateReplyRate)) delay += faults.lateReplyDelay;
  reply.insert(reply.end(), static_cast<std::size_t>(std::max(faults.garbageBytes, 0)), kNoiseByte);
  if (Chance(station, faults.dropReplyRate)) reply.clear();
}

void SimLine::Schedule(const std::vector<std::uint8_t>& reply, Duration delay,
                       std::vector<ScheduledByte>& out) const {
  // On a paced line the request itself needs 13 byte times before the device has it all.
  Duration at =
      delay + (paced_ ? kByteTimeAt9600 * static_cast<long>(protocol::kFrameSize) : Duration{});
  for (std::uint8_t value : reply) {
    if (paced_) at += kByteTimeAt9600;
    out.push_back({at, value});
  }
}

bool SimLine::Chance(Station& station, double rate) {
  if (rate <= 0.0) return false;
  return std::uniform_real_distribution<double>(0.0, 1.0)(station.random) < rate;
}

}  // namespace talvex::sim
