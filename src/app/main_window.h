// The program's frame window, "TALVEX Speaker management": the device list and up to 11 editor
// windows inside it. It runs the start-up, opens and closes editors by the slot rules, and asks
// before the program ends.
#pragma once

#include <QAction>
#include <QLabel>
#include <QMainWindow>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <array>
#include <memory>

#include "app/device_list_window.h"
#include "app/editor_link.h"
#include "app/line_monitor_window.h"
#include "app/search_window.h"
#include "app/session.h"
#include "app/window_slots.h"
#include "editor/ctrl_window.h"
#include "editor/model/device_groups.h"

namespace talvex::app {

inline constexpr const char* kMainTitle = "TALVEX Speaker management";
inline constexpr const char* kExitTitle = "Exit";
inline constexpr const char* kExitQuestion = "               Are you sure ? ";
inline constexpr const char* kCloseWindowSuffix = " - Close window";
// An editor's word in the status bar (a switch's time, a cleared history) stays this long.
inline constexpr int kEditorMessageMs = 15000;

class MainWindow : public QMainWindow {
  Q_OBJECT

 public:
  MainWindow(std::unique_ptr<Session> session, UserDialogs& dialogs, QWidget* parent = nullptr);
  ~MainWindow() override;

  void Start(const StartupChoice& choice);

  Session& CurrentSession() { return *session_; }
  const WindowSlots& Slots() const { return slots_; }
  DeviceListWindow* DeviceList() const { return deviceList_; }
  SearchWindow* Search() const { return search_; }
  editor::CtrlWindow* Editor(int slot) const;
  QMdiArea* Area() const { return area_; }
  // The line monitor, made on first use (null before).
  LineMonitorWindow* Monitor() const { return monitor_; }
  void ShowLineMonitor();

  // The device list's connect. The slot rules come first (Out of memory, already open), so that
  // a refused window puts nothing on the line; the lowest free slot is then held for the device
  // while the session polls and reads it, its editor opens there, and a connect that fails gives
  // the slot back. A second connect of a device still being read is ignored.
  void ConnectDevice(int deviceId);
  // The editor's "Disconnect device": asks, then sends command 15 and closes the editor.
  void Unconnect(int deviceId);
  // File > Reopen port: after an adapter was plugged back (or a gateway restarted) the port is
  // closed and opened again without leaving the program; the devices are then connected again
  // from the list. Unavailable in demo mode.
  void ReopenPort();
  QAction& ReopenPortAction() const { return *reopenPort_; }

 signals:
  void startupFinished(talvex::app::StartupOutcome outcome);
  // The program must end with this exit code (after "Are you sure ?", demo refused, "Time out").
  void quitRequested(int exitCode);

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void BuildMenus();
  void ShowSearch();
  void FinishStartup(StartupOutcome outcome);
  void ShowRefusal(OpenRefusal refusal);
  void OpenEditor(int deviceId, int slot);
  void CloseEditorOf(int deviceId);
  void CloseEveryEditor();
  void EditorClosed(int slot);
  bool MayCloseEditor(int deviceId);
  void PlaceEditor(QMdiSubWindow* sub, int slot) const;

  std::unique_ptr<Session> session_;
  UserDialogs& dialogs_;
  QMdiArea* area_;
  WindowSlots slots_;
  std::array<editor::CtrlWindow*, kWindowSlotCount> editors_{};
  std::array<SessionEditorLink*, kWindowSlotCount> links_{};  // owned by the editors
  DeviceListWindow* deviceList_ = nullptr;
  SearchWindow* search_ = nullptr;
  QLabel* lineState_ = nullptr;  // the port, or demo mode
  QAction* reopenPort_ = nullptr;
  LineMonitorWindow* monitor_ = nullptr;
  editor::DeviceGroups groups_;  // the user's groups of open editors
  bool errorsReported_ = false;
  bool leaving_ = false;
};

}  // namespace talvex::app
