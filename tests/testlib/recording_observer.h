// Records what the link reports, for tests to check.
#pragma once

#include <vector>

#include "link/link.h"
#include "testlib/scripted_transport.h"

namespace talvex::testing {

struct RecordedFailure {
  link::FailureKind kind;
  int deviceId;
  std::string title;
  std::string text;
};

class RecordingObserver final : public link::LinkObserver {
 public:
  void LinkFailed(const link::LinkFailure& failure) override {
    failures.push_back(
        {failure.kind, failure.deviceId, std::string(failure.title), std::string(failure.text)});
  }
  void FrameSent(std::span<const std::uint8_t> frame) override {
    sent.emplace_back(frame.begin(), frame.end());
  }
  void ReplyTaken(std::span<const std::uint8_t> reply) override {
    replies.emplace_back(reply.begin(), reply.end());
  }
  void Progress(link::ProgressKind kind, int value) override { progress.emplace_back(kind, value); }

  std::vector<RecordedFailure> failures;
  std::vector<Bytes> sent;
  std::vector<Bytes> replies;
  std::vector<std::pair<link::ProgressKind, int>> progress;
};

}  // namespace talvex::testing
