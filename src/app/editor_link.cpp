#include "app/editor_link.h"

#include <QMetaObject>

#include "presets/meters.h"

namespace talvex::app {

namespace {

// For the length of one job the link's reports pass through here: its progress of a long wait
// also goes to the job, everything else goes on to the observer it had (the worker).
class ProgressTap final : public link::LinkObserver {
 public:
  ProgressTap(link::Link& link, editor::DeviceJob::Progress progress)
      : link_(link), next_(link.Observer()), progress_(std::move(progress)) {
    link_.SetObserver(this);
  }
  ~ProgressTap() override { link_.SetObserver(next_); }
  ProgressTap(const ProgressTap&) = delete;
  ProgressTap& operator=(const ProgressTap&) = delete;

  void LinkFailed(const link::LinkFailure& failure) override {
    if (next_) next_->LinkFailed(failure);
  }
  void FrameSent(std::span<const std::uint8_t> frame) override {
    if (next_) next_->FrameSent(frame);
  }
  void ReplyTaken(std::span<const std::uint8_t> reply) override {
    if (next_) next_->ReplyTaken(reply);
  }
  void Progress(link::ProgressKind kind, int value) override {
    if (next_) next_->Progress(kind, value);
    progress_(value, link::kProgressEnd);
  }

 private:
  link::Link& link_;
  link::LinkObserver* next_;
  editor::DeviceJob::Progress progress_;
};

// Travels with a long job to the worker. A job whose editor closed before it began sends
// nothing; one that never began (skipped so, or dropped because its device was lost or
// unconnected) tells the user so once, when it says what it was: a store or a file's transfer
// must not seem done when it is not.
class JobTicket {
 public:
  JobTicket(Session& session, std::shared_ptr<std::atomic<bool>> closed, std::string title,
            std::string text)
      : session_(session),
        closed_(std::move(closed)),
        title_(std::move(title)),
        text_(std::move(text)) {}
  ~JobTicket() {
    if (began_ || title_.empty()) return;
    QMetaObject::invokeMethod(
        &session_,
        [session = &session_, title = title_, text = text_] {
          session->Dialogs().ShowMessage(title, text, editor::DialogIcon::Warning);
        },
        Qt::QueuedConnection);
  }
  JobTicket(const JobTicket&) = delete;
  JobTicket& operator=(const JobTicket&) = delete;

  // On the worker thread, as the job starts: false when its editor has closed.
  bool Begin() {
    began_ = !closed_->load();
    return began_;
  }

 private:
  Session& session_;
  std::shared_ptr<std::atomic<bool>> closed_;
  std::string title_;
  std::string text_;
  bool began_ = false;
};

}  // namespace

SessionEditorLink::~SessionEditorLink() {
  *alive_ = false;
  *closed_ = true;
}

void SessionEditorLink::Send(std::span<const params::ParamEdit> edits) {
  for (const params::ParamEdit& edit : edits) {
    const int id = deviceId_;
    const protocol::Command command = edit.command;
    session_.Submit(
        id, protocol::ParameterKey(command),
        [id, command, closed = closed_](link::Link& link) {
          return *closed ? link::SendResult::Skipped : link.SendCommand(id, command);
        },
        [](link::SendResult) {});  // a final failure comes back through the link's report
  }
}

void SessionEditorLink::PollMeters(std::function<void(const MeterLevels&)> done) {
  if (session_.DemoMode() || *meterPending_ || session_.Outstanding() > 0) return;
  *meterPending_ = true;
  const int id = deviceId_;
  session_.Submit(
      id, {},
      [id, closed = closed_](link::Link& link) {
        return *closed ? std::nullopt : presets::ReadMeters(link, id);
      },
      [pending = meterPending_, done = std::move(done)](std::optional<presets::MeterLevels> read) {
        *pending = false;
        if (!read) return;
        MeterLevels levels{};
        for (int channel = 0; channel < params::kChannelCount; ++channel)
          levels[static_cast<std::size_t>(channel)] = read->Dbfs(channel);
        done(levels);
      });
}

void SessionEditorLink::RunJob(editor::DeviceJob job) {
  // Called on the worker thread; each report is posted to the interface thread.
  editor::DeviceJob::Progress post = [session = &session_, alive = alive_,
                                      report = std::move(job.progress)](int value, int maximum) {
    if (!report) return;
    QMetaObject::invokeMethod(
        session,
        [alive, report, value, maximum] {
          if (*alive) report(value, maximum);
        },
        Qt::QueuedConnection);
  };
  auto ticket = std::make_shared<JobTicket>(session_, closed_, std::move(job.unfinishedTitle),
                                            std::move(job.unfinishedText));
  session_.Submit(
      deviceId_, {},
      [work = std::move(job.work), post, ticket = std::move(ticket)](link::Link& link) {
        if (!ticket->Begin()) return false;
        const ProgressTap tap(link, post);
        work(link, post);
        return true;
      },
      [alive = alive_, done = std::move(job.done)](bool) {
        if (*alive && done) done();
      });
}

editor::DeviceRecords SessionEditorLink::Records() {
  DeviceEntry& device = session_.Device(deviceId_);
  return {device.state,       device.presetState, device.names,
          session_.Scratch(), device.name,        session_.PresetFolder()};
}

void SessionEditorLink::DeviceRenamed() {
  session_.DeviceRenamed(deviceId_);
}

}  // namespace talvex::app
