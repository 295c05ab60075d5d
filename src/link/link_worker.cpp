#include "link/link_worker.h"

#include <algorithm>

namespace talvex::link {

LinkWorker::LinkWorker(Link& link, LinkObserver* observer) : link_(link), observer_(observer) {
  link_.SetObserver(this);
  thread_ = std::thread([this] { Run(); });
}

LinkWorker::~LinkWorker() {
  {
    std::lock_guard lock(mutex_);
    stopping_ = true;
  }
  wake_.notify_all();
  thread_.join();
  link_.SetObserver(observer_);
}

void LinkWorker::Enqueue(int deviceId, Job job) {
  EnqueueCoalesced(deviceId, {}, std::move(job));
}

void LinkWorker::EnqueueCoalesced(int deviceId, const std::string& key, Job job) {
  {
    std::lock_guard lock(mutex_);
    if (failed_.contains(deviceId)) return;
    if (!key.empty()) {
      std::erase_if(queue_, [&](const Entry& e) { return e.key == key && e.deviceId == deviceId; });
    }
    queue_.push_back({deviceId, key, std::move(job)});
  }
  wake_.notify_one();
}

void LinkWorker::DropJobsFor(int deviceId) {
  std::lock_guard lock(mutex_);
  std::erase_if(queue_, [&](const Entry& e) { return e.deviceId == deviceId; });
  if (queue_.empty() && !running_) idle_.notify_all();
}

void LinkWorker::Revive(int deviceId) {
  std::lock_guard lock(mutex_);
  failed_.erase(deviceId);
}

void LinkWorker::WaitIdle() {
  std::unique_lock lock(mutex_);
  idle_.wait(lock, [&] { return queue_.empty() && !running_; });
}

std::size_t LinkWorker::Waiting() const {
  std::lock_guard lock(mutex_);
  return queue_.size();
}

void LinkWorker::OnJobError(std::function<void(int, const std::string&)> handler) {
  std::lock_guard lock(mutex_);
  jobError_ = std::move(handler);
}

void LinkWorker::RunJob(Entry& entry) {
  try {
    entry.job(link_);
  } catch (const std::exception& error) {
    std::function<void(int, const std::string&)> handler;
    {
      std::lock_guard lock(mutex_);
      handler = jobError_;
    }
    if (handler) handler(entry.deviceId, error.what());
  }
  entry.job = nullptr;  // what the job held goes now, on this thread
}

void LinkWorker::Run() {
  std::unique_lock lock(mutex_);
  while (true) {
    wake_.wait(lock, [&] { return stopping_ || !queue_.empty(); });
    if (queue_.empty()) return;  // stopping, and everything queued has run
    Entry entry = std::move(queue_.front());
    queue_.pop_front();
    running_ = true;
    lock.unlock();
    RunJob(entry);
    lock.lock();
    running_ = false;
    if (queue_.empty()) idle_.notify_all();
  }
}

// A device that failed is closed: what still waits for it would only fail again, each after 25 s.
void LinkWorker::LinkFailed(const LinkFailure& failure) {
  {
    std::lock_guard lock(mutex_);
    failed_.insert(failure.deviceId);
  }
  DropJobsFor(failure.deviceId);
  if (observer_) observer_->LinkFailed(failure);
}

void LinkWorker::FrameSent(std::span<const std::uint8_t> frame) {
  if (observer_) observer_->FrameSent(frame);
}

void LinkWorker::ReplyTaken(std::span<const std::uint8_t> reply) {
  if (observer_) observer_->ReplyTaken(reply);
}

void LinkWorker::Progress(ProgressKind kind, int value) {
  if (observer_) observer_->Progress(kind, value);
}

}  // namespace talvex::link
