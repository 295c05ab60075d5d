// Faults a simulated processor can be told to show, for tests, the soak and talvex-sim.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>

namespace talvex::sim {

struct FaultPlan {
  // Stay silent (ignore the frame entirely) for this many frames; when silentCode is set,
  // only frames of that code are ignored and counted.
  int silentFrames = 0;
  std::optional<std::uint8_t> silentCode;
  // Answer this many more frames, then none ever again: a device unplugged mid-transfer.
  // Negative: the device never vanishes.
  int vanishAfterFrames = -1;
  // Ignore every first poll and answer the one after it (a slow device that needs the retry).
  bool answerSecondPollOnly = false;
  // Answer polls with 0x00 instead of 0x81 at index 4.
  bool wrongPollByte = false;
  // Every reply leaves this much later than it would.
  std::chrono::microseconds replyDelay{0};
  // Append this many bytes of line noise after every reply.
  int garbageBytes = 0;
  // Corrupt (invert) the reply byte at this index, for the next corruptCount replies
  // (a negative count means every reply).
  int corruptIndex = -1;
  int corruptCount = -1;

  // Random faults, drawn from a generator seeded with `seed`.
  double dropRequestRate = 0.0;  // the frame never reaches the device
  double dropReplyRate = 0.0;    // the device acts but its reply is lost
  double corruptRate = 0.0;      // one random byte of the reply is changed
  bool corruptBlocks = true;     // false: only 13-byte replies are corrupted, blocks come whole
  std::chrono::microseconds maxRandomDelay{0};
  double lateReplyRate = 0.0;  // the reply leaves lateReplyDelay later still
  std::chrono::microseconds lateReplyDelay{0};
  std::uint32_t seed = 1;
};

}  // namespace talvex::sim
