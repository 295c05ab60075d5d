// The program's side of the line: the link worker, the devices on the line with their names and
// images, the start-up search, the name refresh, connecting and disconnecting. It lives on the
// user-interface thread; every exchange runs on the link worker, and its result comes back here
// as a queued call, so the interface never waits on the wire.
#pragma once

#include <QObject>
#include <array>
#include <atomic>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/line_tap.h"
#include "app/startup_choice.h"
#include "editor/user_dialogs.h"
#include "link/line.h"
#include "link/link.h"
#include "link/link_worker.h"
#include "params/decimal_mark.h"
#include "params/device_params.h"
#include "presets/channel_names.h"
#include "presets/device_state.h"
#include "presets/preset_load.h"

namespace talvex::app {

using editor::Answer;
using editor::DialogIcon;
using editor::UserDialogs;

// Texts of the start-up and the device list.
inline constexpr const char* kWarningTitle = "Warning";
inline constexpr const char* kDevicesDisconnectedQuestion =
    "Devices disconnected, do you want to continue in demo mode?";
inline constexpr const char* kDevicesUnconnectedQuestion =
    "Devices unconnected, do you want to continue in demo mode?";
inline constexpr const char* kComNotFoundQuestion =
    "COM not found, do you want to continue in demo mode?";
inline constexpr const char* kDevicesNotFoundTitle = "Exit";
inline constexpr const char* kDevicesNotFoundText = "      Devices not found!";
inline constexpr const char* kConnectTitle = "Connect device";
inline constexpr const char* kConnectQuestion = "Do you want connect this device, are you sure ? ";
inline constexpr const char* kDeviceDisconnectedText = "Device disconnected";
inline constexpr const char* kConnectTimeOutText =
    "Time-Out: Communication problem with device ID:";
inline constexpr const char* kUnconnectTitle = "Unconnect device";
inline constexpr const char* kUnconnectQuestion =
    "Do you want unconnect this device, are you sure ? ";
inline constexpr const char* kLinkFailedRowName = " Disconnected    ";
inline constexpr const char* kUnconnectedRowName = " disconnected    ";
inline constexpr const char* kUnknownRowName = "---";
// The port itself went away (adapter unplugged, gateway stopped): told once, whatever failed.
inline constexpr const char* kPortLostText =
    "The port %1 is gone (adapter unplugged or gateway stopped). Every device on it is "
    "disconnected. Plug it back, then choose File > Reopen port and connect the devices again.";
inline constexpr const char* kReopenFailedTitle = "Reopen port";
inline constexpr const char* kPortReopenedText =
    "Port %1 reopened: connect the devices again from the device list.";

enum class StartupOutcome {
  DevicesFound,  // the list shows the devices that answered
  DemoMode,      // nothing is sent; the list shows the devices of "Speakers.cfg"
  Refused,       // the user refused demo mode, or nothing can be listed: the program ends
};

struct DeviceEntry {
  std::string name;           // the 16-character name as last read ("" before)
  bool disconnected = false;  // cut off by a link failure or by the user
  params::DeviceParams params = params::DeviceParams::FromDefault(0);
  presets::DeviceState state;
  bool imageRead = false;            // params hold what the device sent, not the factory image
  presets::PresetState presetState;  // cleared by a file load and a type change
  // The eight channel names: the inputs' are the editor's own and live only here.
  presets::ChannelNames names = presets::NamesFromImage(params.image);
};

class Session : public QObject, private link::LinkObserver {
  Q_OBJECT

 public:
  // `mark` is the locale's decimal mark, decided once at the splash.
  Session(link::Line line, UserDialogs& dialogs, std::filesystem::path configFolder,
          params::DecimalMark mark = params::DecimalMark::Point, QObject* parent = nullptr);
  ~Session() override;

  // Opens the port and finds the devices, or offers demo mode. Ends with startupFinished().
  void Start(const StartupChoice& choice);

  bool DemoMode() const { return demoMode_; }
  params::DecimalMark Mark() const { return mark_; }
  bool Closing() const { return closing_; }
  const std::vector<int>& ListedIds() const { return listedIds_; }
  const DeviceEntry& Device(int deviceId) const;
  DeviceEntry& Device(int deviceId);
  // The device's row in the device list: its name (or the state that replaces it), "  ID:", ID.
  std::string RowText(int deviceId) const;

  // One pass over the listed devices: each name is read (one byte per exchange) and, outside
  // demo mode, the live image. The pass stops at the first device that does not answer; that row
  // and the ones after it keep their text. It does not repeat by itself, so that the line stays
  // free for edits.
  void RefreshNames();

  // Polls the device and reads its name, image and state, then calls `done` with true when its
  // editor may open. False when the user did not want to connect a disconnected device, when it
  // does not answer (the system's message has been shown) or when a read failed. The slot rules
  // are the caller's and come first (MainWindow::ConnectDevice): a refused window sends nothing.
  void Connect(int deviceId, std::function<void(bool connected)> done);
  // Sends command 15 and marks the device disconnected.
  void Unconnect(int deviceId);
  // From the first editor window on, a final failure of an edit is reported and closes the device.
  void ReportLinkErrors();
  // Sends command 143 to ID 0 and calls `done` once everything queued before it has gone out.
  // Nothing is queued after it: the devices have been told the program left.
  void SendLeaveAndThen(std::function<void()> done);

  // True from the moment the port was found gone until it is reopened.
  bool PortLost() const { return portLost_; }
  // Closes and opens the port again (after an adapter was plugged back), on the worker after
  // whatever is queued. `done` gets the empty text on success, else why it failed. The devices
  // stay disconnected: the user connects each again from the list.
  void ReopenPort(std::function<void(const std::string& error)> done);
  const std::string& PortName() const { return portName_; }
  // What the user is told, once, when the port goes away.
  std::string PortLostMessage() const;

  // Runs `work` on the link worker and then `done` with its result back on this thread. Edits
  // with the same non-empty key that still wait are replaced by the newer one.
  template <typename Work, typename Done>
  void Submit(int deviceId, const std::string& key, Work work, Done done);

  // The record every editor reads a preset file into before anything is taken over.
  presets::ScratchRecord& Scratch() { return scratch_; }
  // The device's name in Device(deviceId) changed: its row shows it.
  void DeviceRenamed(int deviceId);

  link::LinkWorker& Worker() { return *worker_; }
  UserDialogs& Dialogs() { return dialogs_; }
  // Jobs submitted whose result has not come back to this thread yet (dropped ones excluded).
  int Outstanding() const { return outstanding_.load(); }
  sim::SimLine* Simulator() { return line_.simulator.get(); }
  // The frames on the line, for the line monitor (quiet while no monitor listens).
  LineTap& Tap() { return tap_; }
  const std::filesystem::path& ConfigFolder() const { return configFolder_; }
  // Where preset files are kept: "preset" below the configuration folder unless the program
  // says otherwise (an installed program keeps them in the user's data folder).
  const std::filesystem::path& PresetFolder() const { return presetFolder_; }
  void SetPresetFolder(std::filesystem::path folder) { presetFolder_ = std::move(folder); }

 signals:
  void searchProgress(QString text);
  // The port is open and the search of several IDs begins; it ends before any question is asked.
  void searchStarted();
  void searchEnded();
  void startupFinished(talvex::app::StartupOutcome outcome);
  void rowsChanged();
  // A long job began or ended: what the status bar says meanwhile ("" when it ended).
  void busy(QString text);
  // The device failed during an edit: the message has been shown, its editor must close.
  void deviceLost(int deviceId);
  // A block read timed out: "Time out" has been shown and the program must end at once.
  void fatalTimeOut();
  // The port went away: its message has been shown once; every editor must close.
  void portLost();
  // The port did not open: why, in plain words (shown beside "COM not found, ...").
  void portProblem(QString reason);

 private:
  struct StartupResult {
    bool portOpened = false;
    std::string openError;  // why the port did not open
    std::vector<int> found;
  };
  struct ConnectResult {
    bool present = false;
    bool failureReported = false;  // a read failed and the link showed it (errors reported)
    std::string name;
    std::optional<params::DeviceParams> params;  // the live image and the state read
    presets::DeviceState state;
  };

  StartupResult SearchOnWorker(link::Link& link, const StartupChoice& choice);
  void FinishStartup(const StartupChoice& choice, const StartupResult& result);
  void OfferDemoMode(const char* question);
  void RefreshFrom(std::size_t row);
  ConnectResult ConnectOnWorker(link::Link& link, int deviceId, params::ParamImage record) const;
  bool FinishConnect(int deviceId, const ConnectResult& result);
  void SaveSpeakerRecords() const;
  void Post(std::function<void()> call);
  void MarkLost(int deviceId);
  void ReportPortLost();

  void LinkFailed(const link::LinkFailure& failure) override;
  void FrameSent(std::span<const std::uint8_t> frame) override { tap_.Sent(frame); }
  void ReplyTaken(std::span<const std::uint8_t> reply) override { tap_.Taken(reply); }

  LineTap tap_;  // before the worker, which reports to it until it has stopped
  link::Line line_;
  link::Link link_;
  std::unique_ptr<link::LinkWorker> worker_;
  UserDialogs& dialogs_;
  std::filesystem::path configFolder_;
  std::filesystem::path presetFolder_;
  std::array<DeviceEntry, kDeviceCount> devices_{};
  presets::ScratchRecord scratch_;
  std::vector<int> listedIds_;
  std::array<const char*, kDeviceCount> rowState_{};  // replaces the name in the row when set
  params::DecimalMark mark_ = params::DecimalMark::Point;
  bool demoMode_ = false;
  bool closing_ = false;
  bool leaving_ = false;           // command 143 is queued: nothing more goes on the line
  bool portLost_ = false;          // interface thread: the port is gone until reopened
  bool portLossReported_ = false;  // worker thread: later failures are the same loss
  std::string portName_;
  std::atomic<int> outstanding_{0};  // released on the worker thread when a job is dropped
};

template <typename Work, typename Done>
void Session::Submit(int deviceId, const std::string& key, Work work, Done done) {
  if (leaving_) return;  // after command 143 the devices are not spoken to again
  // A job carries a token; when the worker drops the job, the token goes with it.
  auto token =
      std::shared_ptr<std::atomic<int>>(&outstanding_, [](std::atomic<int>* count) { --*count; });
  ++outstanding_;
  worker_->EnqueueCoalesced(
      deviceId, key,
      [this, token, work = std::move(work), done = std::move(done)](link::Link& link) mutable {
        auto result = work(link);
        Post([token = std::move(token), done = std::move(done),
              result = std::move(result)]() mutable { done(std::move(result)); });
      });
}

}  // namespace talvex::app
