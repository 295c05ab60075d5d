#include "app/session.h"

#include <QMetaObject>
#include <QString>
#include <utility>

#include "link/device_name.h"
#include "link/search.h"
#include "presets/live_image.h"
#include "presets/system_lock.h"

namespace talvex::app {

namespace {

using namespace std::chrono_literals;

// Between the port's receive reset and the first poll of a connect, two short pauses.
constexpr link::Clock::Duration kConnectSettlePause = 50ms;
// A live image that comes garbled (line noise in a block, which has no checksum) is read again
// this many times before the connect gives up.
constexpr int kGarbledImageReads = 3;
// Single-device mode polls once more after this pause.
constexpr link::Clock::Duration kSinglePollPause = 30ms;
// Each device of a name refresh is followed by this pause.
constexpr link::Clock::Duration kRefreshPause = 50ms;

presets::LiveRead ReadUngarbled(link::Link& link, int deviceId, params::ParamImage& image) {
  presets::LiveRead read = presets::LiveRead::Garbled;
  for (int attempt = 0; attempt < kGarbledImageReads && read == presets::LiveRead::Garbled;
       ++attempt)
    read = presets::ReadLiveImage(link, deviceId, image);
  return read;
}

}  // namespace

Session::Session(link::Line line, UserDialogs& dialogs, std::filesystem::path configFolder,
                 params::DecimalMark mark, QObject* parent)
    : QObject(parent),
      line_(std::move(line)),
      link_(*line_.transport, *line_.clock),
      dialogs_(dialogs),
      configFolder_(std::move(configFolder)),
      presetFolder_(configFolder_ / "preset"),
      mark_(mark),
      portName_(line_.transport->Name()) {
  link::LinkObserver* observer = this;
  worker_ = std::make_unique<link::LinkWorker>(link_, observer);
  worker_->OnJobError([this](int deviceId, const std::string& what) {
    Post([this, deviceId, what] {
      dialogs_.ShowMessage(link::kCommunicationProblemTitle.data(),
                           "ID:" + std::to_string(deviceId) + " " + what, DialogIcon::Warning);
    });
  });
}

// The worker finishes what is queued (command 143 at the end of a run) before the line closes.
Session::~Session() {
  worker_.reset();
}

const DeviceEntry& Session::Device(int deviceId) const {
  CheckIndex(deviceId, kMaxDeviceId, "device ID");
  return devices_[static_cast<std::size_t>(deviceId)];
}

DeviceEntry& Session::Device(int deviceId) {
  CheckIndex(deviceId, kMaxDeviceId, "device ID");
  return devices_[static_cast<std::size_t>(deviceId)];
}

std::string Session::RowText(int deviceId) const {
  const char* state = rowState_[static_cast<std::size_t>(deviceId)];
  return link::DeviceRowText(state ? std::string(state) : Device(deviceId).name, deviceId);
}

void Session::Post(std::function<void()> call) {
  QMetaObject::invokeMethod(this, std::move(call), Qt::QueuedConnection);
}

void Session::Start(const StartupChoice& choice) {
  // The link starts with sending allowed; errors are reported once an editor has loaded.
  Submit(
      link::kAnyDevice, {},
      [this, choice](link::Link& link) { return SearchOnWorker(link, choice); },
      [this, choice](StartupResult result) { FinishStartup(choice, result); });
}

Session::StartupResult Session::SearchOnWorker(link::Link& link, const StartupChoice& choice) {
  link.Flags().SendSuspended = false;
  StartupResult result;
  result.portOpened = link.OpenPort();
  if (!result.portOpened) {
    result.openError = link.LastOpenError();
    return result;
  }
  if (choice.mode == SearchMode::SingleDevice) {
    const int id = choice.singleDeviceId;
    bool present = link.PollDevice(id, link::PollCommand(id));
    if (!present) {
      link.Time().SleepFor(kSinglePollPause);
      present = link.PollDevice(id, link::PollCommand(id));
    }
    if (present) result.found.push_back(id);
    return result;
  }
  std::vector<int> ids = link::AllDeviceIds();
  if (choice.mode == SearchMode::IdList) ids.assign(choice.ids.begin(), choice.ids.end());
  Post([this] { emit searchStarted(); });  // a port that did not open has nothing to search
  result.found = link::SearchDevices(link, ids, [this](const std::string& text) {
    Post([this, text] { emit searchProgress(QString::fromStdString(text)); });
  });
  return result;
}

void Session::FinishStartup(const StartupChoice& choice, const StartupResult& result) {
  emit searchEnded();  // before the demo-mode question, which is about the search's outcome
  if (!result.found.empty()) {
    listedIds_ = result.found;
    emit rowsChanged();
    emit startupFinished(StartupOutcome::DevicesFound);
    RefreshNames();
    return;
  }
  if (!result.portOpened) {
    emit portProblem(QString::fromStdString(result.openError));
    return OfferDemoMode(kComNotFoundQuestion);
  }
  OfferDemoMode(choice.mode == SearchMode::SingleDevice ? kDevicesUnconnectedQuestion
                                                        : kDevicesDisconnectedQuestion);
}

// On No the program ends without the exit question; on Yes nothing is sent from now on and the
// list shows the devices of "Speakers.cfg".
void Session::OfferDemoMode(const char* question) {
  if (dialogs_.AskYesNo(kWarningTitle, question, DialogIcon::Warning, Answer::Yes) == Answer::No) {
    closing_ = true;
    emit startupFinished(StartupOutcome::Refused);
    return;
  }
  demoMode_ = true;
  Submit(
      link::kAnyDevice, {}, [](link::Link& link) { return link.Flags().DemoMode = true; },
      [](bool) {});
  const auto records = config::ReadSpeakerRecords(configFolder_);
  listedIds_ = config::PresentDeviceIds(records.value);
  if (listedIds_.empty()) {
    dialogs_.ShowMessage(kDevicesNotFoundTitle, kDevicesNotFoundText, DialogIcon::Critical);
    closing_ = true;
    emit startupFinished(StartupOutcome::Refused);
    return;
  }
  for (int id : listedIds_)
    Device(id).name = std::string(link::kDemoDeviceName);
  emit rowsChanged();
  emit startupFinished(StartupOutcome::DemoMode);
}

void Session::RefreshNames() {
  if (demoMode_) {
    for (int id : listedIds_)
      Device(id).name = std::string(link::kDemoDeviceName);
    emit rowsChanged();
    return;
  }
  RefreshFrom(0);
}

// One device per job, so that edits queued meanwhile wait for one device's reads at most.
void Session::RefreshFrom(std::size_t row) {
  if (row >= listedIds_.size()) return SaveSpeakerRecords();
  const int id = listedIds_[row];
  struct Refreshed {
    std::optional<std::string> name;
    std::optional<params::ParamImage> image;
  };
  Submit(
      id, {},
      [id, image = Device(id).params.image](link::Link& link) mutable {
        Refreshed result;
        result.name = link::ReadDeviceName(link, id);
        if (result.name && ReadUngarbled(link, id, image) == presets::LiveRead::Received)
          result.image = image;
        link.Time().SleepFor(kRefreshPause);
        return result;
      },
      [this, id, row](Refreshed result) {
        if (!result.name) return;  // the pass ends here; this row and the rest keep their text
        DeviceEntry& device = Device(id);
        device.name = *result.name;
        if (result.image) {
          device.params = params::DeviceParams::FromImage(*result.image);
          device.imageRead = true;
        }
        emit rowsChanged();
        RefreshFrom(row + 1);
      });
}

void Session::Connect(int deviceId, std::function<void(bool connected)> done) {
  DeviceEntry& device = Device(deviceId);
  if (portLost_) {  // nothing can answer through a port that is gone
    dialogs_.ShowMessage(link::kCommunicationProblemTitle.data(), PortLostMessage(),
                         DialogIcon::Warning);
    return done(false);
  }
  if (device.disconnected &&
      dialogs_.AskYesNo(kConnectTitle, kConnectQuestion, DialogIcon::Exclamation, Answer::Yes) ==
          Answer::No) {
    return done(false);
  }
  if (demoMode_) {  // nothing is polled in demo mode: the editor works on the PC's copy
    device.name = std::string(link::kDemoDeviceName);
    return done(true);
  }
  worker_->Revive(deviceId);
  emit busy(QString("Connecting device ID:%1 ...").arg(deviceId));
  Submit(
      deviceId, {},
      // The worker reads into a copy: the device's stores belong to this thread.
      [this, deviceId, record = device.params.image](link::Link& link) {
        return ConnectOnWorker(link, deviceId, record);
      },
      [this, deviceId, done = std::move(done)](ConnectResult result) {
        done(FinishConnect(deviceId, result));
      });
}

Session::ConnectResult Session::ConnectOnWorker(link::Link& link, int deviceId,
                                                params::ParamImage record) const {
  ConnectResult result;
  link.Line().DiscardInput();  // the port's receive state is reset, with a pause either side
  link.Time().SleepFor(kConnectSettlePause);
  link.Time().SleepFor(kConnectSettlePause);
  result.present = link::PollTwice(link, deviceId);
  if (!result.present) return result;
  // With errors reported, a failed read has been shown and the device closed by the link.
  result.failureReported = link.Flags().ReportLinkErrors;
  const auto name = link::ReadDeviceName(link, deviceId);
  if (!name) return result;
  result.name = *name;
  // The editor opens on what the device holds: its live image, then its state.
  if (ReadUngarbled(link, deviceId, record) != presets::LiveRead::Received) return result;
  params::DeviceParams device = params::DeviceParams::FromImage(record);
  if (presets::ReadDeviceState(link, deviceId, device, result.state) !=
      presets::StateRead::Received)
    return result;
  // The lock dialog compares a typed password with the one the device keeps.
  if (presets::ReadDevicePassword(link, deviceId, result.state) == presets::StateRead::Received)
    result.params = device;
  return result;
}

bool Session::FinishConnect(int deviceId, const ConnectResult& result) {
  emit busy({});
  DeviceEntry& device = Device(deviceId);
  const std::size_t index = static_cast<std::size_t>(deviceId);
  if (!result.present) {
    device.disconnected = true;
    dialogs_.ShowMessage(link::kCommunicationProblemTitle.data(), kDeviceDisconnectedText,
                         DialogIcon::Warning);
    return false;
  }
  if (!result.params) {
    if (!result.name.empty()) device.name = result.name;
    if (!result.failureReported) {  // a read outlasted its time limit: say so, show "---"
      rowState_[index] = kUnknownRowName;
      dialogs_.ShowMessage(link::kCommunicationProblemTitle.data(),
                           kConnectTimeOutText + std::to_string(deviceId), DialogIcon::Warning);
    }
    emit rowsChanged();
    return false;
  }
  device.name = result.name;
  device.disconnected = false;
  rowState_[index] = nullptr;
  device.params = *result.params;
  device.state = result.state;
  device.imageRead = true;
  emit rowsChanged();
  return true;
}

void Session::Unconnect(int deviceId) {
  Device(deviceId).disconnected = true;
  rowState_[static_cast<std::size_t>(deviceId)] = kUnconnectedRowName;
  worker_->DropJobsFor(deviceId);
  Submit(
      deviceId, {},
      [deviceId](link::Link& link) {
        protocol::Command release;
        release.code = protocol::code::kRelease;
        return link.SendCommand(deviceId, release);
      },
      [](link::SendResult) {});
  emit rowsChanged();
}

void Session::DeviceRenamed(int deviceId) {
  CheckIndex(deviceId, kMaxDeviceId, "device ID");
  emit rowsChanged();
}

void Session::ReportLinkErrors() {
  Submit(
      link::kAnyDevice, {}, [](link::Link& link) { return link.Flags().ReportLinkErrors = true; },
      [](bool) {});
}

void Session::SendLeaveAndThen(std::function<void()> done) {
  Submit(
      link::kAnyDevice, {},
      [](link::Link& link) {
        protocol::Command leave;
        leave.code = protocol::code::kLeaveProgram;
        return link.SendCommand(0, leave);
      },
      [done = std::move(done)](link::SendResult) { done(); });
  leaving_ = true;
}

void Session::ReopenPort(std::function<void(const std::string& error)> done) {
  Submit(
      link::kAnyDevice, {},
      [this](link::Link& link) {
        const std::string error = link.OpenPort() ? std::string() : link.LastOpenError();
        if (error.empty()) portLossReported_ = false;  // a loss from now on is a new one
        return error;
      },
      [this, done = std::move(done)](const std::string& error) {
        if (error.empty()) portLost_ = false;
        done(error);
      });
}

// The devices found are kept in "Speakers.cfg" with their names, so that demo mode can list them
// on a later run.
void Session::SaveSpeakerRecords() const {
  config::SpeakerRecords records{};
  for (std::size_t i = 0; i < records.size(); ++i)
    records[i].id = static_cast<std::int16_t>(i);
  for (int id : listedIds_) {
    records[static_cast<std::size_t>(id)].present = true;
    records[static_cast<std::size_t>(id)].name = Device(id).name;
  }
  // A folder that refuses the file only costs the demo list of a later run.
  (void)config::WriteSpeakerRecords(configFolder_, records);
}

std::string Session::PortLostMessage() const {
  return QString(kPortLostText).arg(QString::fromStdString(portName_)).toStdString();
}

void Session::MarkLost(int deviceId) {
  Device(deviceId).disconnected = true;
  rowState_[static_cast<std::size_t>(deviceId)] = kLinkFailedRowName;
}

// One message for the whole port, then every editor closes; the devices' rows say
// " Disconnected    " as after any link failure.
void Session::ReportPortLost() {
  portLost_ = true;
  for (int id : listedIds_)
    MarkLost(id);
  dialogs_.ShowMessage(link::kCommunicationProblemTitle.data(), PortLostMessage(),
                       DialogIcon::Warning);
  emit portLost();
  emit rowsChanged();
}

// Called on the worker thread: the rest happens on the interface's thread. A failure with the
// port gone is the port's, not the device's: the first one tells it, the ones that follow (every
// device fails at once then) are the same loss, and a block read that ends that way does not
// end the program.
void Session::LinkFailed(const link::LinkFailure& failure) {
  if (!line_.transport->IsOpen()) {
    if (!std::exchange(portLossReported_, true)) Post([this] { ReportPortLost(); });
    return;
  }
  Post([this, failure] {  // title and text are the link's constants: the copy stays valid
    dialogs_.ShowMessage(std::string(failure.title), std::string(failure.text),
                         DialogIcon::Warning);
    if (failure.kind == link::FailureKind::BlockTimeOut) {
      emit fatalTimeOut();
      return;
    }
    MarkLost(failure.deviceId);
    emit rowsChanged();
    emit deviceLost(failure.deviceId);
  });
}

}  // namespace talvex::app
