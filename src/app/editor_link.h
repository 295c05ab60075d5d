// An editor window's way to its device: each command of an edit is one job on the link worker,
// coalesced with a waiting command of the same parameter (the newest wins); the meters are read
// only while the line has nothing else to do, one reading at a time, so an edit never waits
// behind more than one meter exchange. A whole conversation of the toolbar runs as one job, its
// progress posted back to the interface thread.
#pragma once

#include <memory>

#include "app/session.h"
#include "editor/model/device_editor.h"

namespace talvex::app {

class SessionEditorLink final : public editor::EditorLink {
 public:
  SessionEditorLink(Session& session, int deviceId) : session_(session), deviceId_(deviceId) {}
  // Progress and ends of jobs that come back after this are dropped: the editor has gone.
  ~SessionEditorLink() override { *alive_ = false; }
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
};

}  // namespace talvex::app
