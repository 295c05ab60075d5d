// An editor window's way to its device: each command of an edit is one job on the link worker,
// coalesced with a waiting command of the same parameter (the newest wins); the meters are read
// only while the line has nothing else to do, one reading at a time, so an edit never waits
// behind more than one meter exchange. A whole conversation of the toolbar runs as one job, its
// progress posted back to the interface thread.
#pragma once

#include <atomic>
#include <memory>

#include "app/session.h"
#include "editor/model/device_editor.h"

namespace talvex::app {

class SessionEditorLink final : public editor::EditorLink {
 public:
  SessionEditorLink(Session& session, int deviceId) : session_(session), deviceId_(deviceId) {}
  // Progress and ends of jobs that come back after this are dropped, and jobs that have not
  // begun send nothing: the editor has gone, and so has the user's wish to talk to the device.
  ~SessionEditorLink() override;
  // The editor has closed (it is deleted a little later): from now on its jobs that have not
  // begun send nothing, and what they would have changed on the device is told as not done.
  void Close() { *closed_ = true; }
  SessionEditorLink(const SessionEditorLink&) = delete;
  SessionEditorLink& operator=(const SessionEditorLink&) = delete;

  void Send(std::span<const params::ParamEdit> edits) override;
  void PollMeters(std::function<void(const MeterLevels&)> done) override;
  void RunJob(editor::DeviceJob job) override;
  editor::DeviceRecords Records() override;
  void DeviceRenamed() override;

 private:
  Session& session_;
  int deviceId_;
  // Set while a meter reading waits or runs; shared with the job, which may outlive the window.
  std::shared_ptr<bool> meterPending_ = std::make_shared<bool>(false);
  // Read on the interface thread only, by what a job posts back.
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
  // Read by the jobs on the worker thread before they send anything.
  std::shared_ptr<std::atomic<bool>> closed_ = std::make_shared<std::atomic<bool>>(false);
};

}  // namespace talvex::app
