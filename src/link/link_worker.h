// One thread that owns the link and runs exchanges as queued jobs, in order, so that the user
// interface never waits on the wire. Repeated edits of one parameter that still wait are
// coalesced: the newest value wins and is sent after everything queued before it.
#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <set>
#include <string>
#include <thread>

#include "link/link.h"

namespace talvex::link {

inline constexpr int kAnyDevice = -1;

class LinkWorker final : private LinkObserver {
 public:
  using Job = std::function<void(Link&)>;

  // From now on `link` is used on the worker thread only. Its reports (failures, progress,
  // traces) reach `observer` on the worker thread; the observer passes them on to its own thread.
  LinkWorker(Link& link, LinkObserver* observer);
  // Runs what is queued, then stops.
  ~LinkWorker() override;
  LinkWorker(const LinkWorker&) = delete;
  LinkWorker& operator=(const LinkWorker&) = delete;

  // `deviceId` is the device the job talks to (kAnyDevice for none in particular).
  void Enqueue(int deviceId, Job job);
  // A job that waits with the same non-empty key is dropped; this one goes to the end.
  void EnqueueCoalesced(int deviceId, const std::string& key, Job job);
  // Drops the waiting jobs of a device (the running one finishes).
  void DropJobsFor(int deviceId);
  // After a device failed, jobs for it are refused until it is connected again: edits queued
  // before the failure reached the user would otherwise each fail (and be reported) anew.
  void Revive(int deviceId);

  // A job that throws does not end the program: the error goes here (on the worker thread) and
  // the next job runs. Its result is lost.
  void OnJobError(std::function<void(int deviceId, const std::string& what)> handler);

  // Blocks until nothing waits and nothing runs. For shutdown and tests, never the UI thread
  // while a device may be slow.
  void WaitIdle();
  std::size_t Waiting() const;

 private:
  struct Entry {
    int deviceId;
    std::string key;
    Job job;
  };

  void Run();
  void RunJob(Entry& entry);
  void LinkFailed(const LinkFailure& failure) override;
  void FrameSent(std::span<const std::uint8_t> frame) override;
  void ReplyTaken(std::span<const std::uint8_t> reply) override;
  void Progress(ProgressKind kind, int value) override;

  Link& link_;
  LinkObserver* observer_;
  mutable std::mutex mutex_;
  std::condition_variable wake_;
  std::condition_variable idle_;
  std::deque<Entry> queue_;
  std::set<int> failed_;
  std::function<void(int, const std::string&)> jobError_;
  bool running_ = false;
  bool stopping_ = false;
  std::thread thread_;
};

}  // namespace talvex::link
