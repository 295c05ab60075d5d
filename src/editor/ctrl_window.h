// `FrmCtrl`, the editor window of one connected device: the signal chain, the response graph
// with its view boxes, the channel tabs (`SSTab1`) and the selected channel's controls, and the
// toolbar. It composes the panels and holds no rule: every edit goes to its DeviceEditor, whose
// commands go to the device through the window's EditorLink (the link worker), so the window
// never waits on the line.
#pragma once

#include <QWidget>
#include <array>
#include <functional>
#include <memory>
#include <string>

#include "editor/model/device_editor.h"
#include "editor/model/settings_memory.h"
#include "editor/toolbar_commands.h"
#include "editor/user_dialogs.h"
#include "editor/widgets/bound_controls.h"

class QAction;
class QTabBar;
class QTimer;
class QToolBar;

namespace talvex::editor {

class ChannelPage;
struct CommandContext;
class DeviceGroups;
class EditorMenus;
class StatusLine;
class GraphPanel;
class ResponseGraph;
class SignalChain;

// The meters are asked for this often, and only while the line has nothing else to do.
inline constexpr int kMeterIntervalMs = 200;

class CtrlWindow : public QWidget {
  Q_OBJECT

 public:
  // `device` is the session's record of the device: the window edits it in place. `mayClose`
  // is asked before the window closes (the close question); it is not asked when the program
  // closes the window itself (CloseWithoutAsking).
  CtrlWindow(int deviceId, int slot, params::DeviceParams& device, params::DecimalMark mark,
             std::unique_ptr<EditorLink> link, UserDialogs& dialogs, std::function<bool()> mayClose,
             QWidget* parent = nullptr);
  ~CtrlWindow() override;

  int DeviceId() const { return deviceId_; }
  int Slot() const { return slot_; }
  DeviceEditor& Model() { return model_; }
  ChannelPage& Page() const { return *page_; }
  SignalChain& Chain() const { return *chain_; }
  ResponseGraph& Graph() const;
  GraphPanel& GraphArea() const { return *graphPanel_; }
  QTabBar& Tabs() const { return *tabs_; }
  QToolBar& Toolbar() const { return *toolbar_; }
  // The toolbar's action for `Command2` index `index` (toolbar_commands.h).
  QAction& Command2(int index) const;
  // The window-command-busy flag: a command's dialog or flow is open, or a job it started runs.
  // Meanwhile no other command starts (Disconnect excepted).
  bool CommandBusy() const { return commandOpen_ || jobsRunning_ > 0; }

  // Shows `channel`'s controls (the chain's button and the tab follow).
  void SelectChannel(int channel);
  // "Show cursor".
  void SetCursorShown(bool shown);

  QSize sizeHint() const override;
  // The program closes the editor itself: its device has gone (lost or unconnected) or the
  // program ends. No question; the history is cleared with a word.
  void CloseWithoutAsking();

  // The history, the A/B compare and the save state (settings_memory.h), the editor's own menus
  // (editor_menus.h) and its status line.
  SettingsMemory& Memory() { return *memory_; }
  EditorMenus& Menus() const { return *menus_; }
  StatusLine& Status() const { return *statusLine_; }
  // The program's device groups; the editor's caption names its group.
  void SetGroups(DeviceGroups& groups);
  // Our question when the settings would be left nowhere but on the device (closing the editor,
  // or leaving the program); it comes after the system's own close question, which the main
  // window asks (unsaved_question.h). False: the user took the close back.
  bool MayLeave(const std::string& title, bool leavingProgram);

 signals:
  void disconnectRequested(int deviceId);
  void closed(int slot);
  // A line for the program's status bar (a switch's time, a cleared history).
  void statusMessage(const QString& text);

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  QWidget* BuildTabs();
  void BuildToolbar();
  void RunCommand(WindowCommand command);
  void UpdateActions();
  void RunTool(const std::function<void(CommandContext&)>& tool);
  void SetCaption(const std::string& caption);
  void ShowStatus(const std::string& text);
  void ShowMemory();
  void SetJobRunning(bool running);
  void ShowChanges();
  void UpdateGraph();
  void PollMeters();

  int deviceId_;
  int slot_;
  std::unique_ptr<EditorLink> link_;
  DeviceEditor model_;
  EditorContext context_;
  std::function<bool()> mayClose_;
  bool asked_ = false;
  QToolBar* toolbar_ = nullptr;
  std::array<QAction*, kWindowCommandCount> actions_{};
  std::unique_ptr<SettingsMemory> memory_;
  std::unique_ptr<CommandContext> commands_;
  EditorMenus* menus_ = nullptr;
  StatusLine* statusLine_ = nullptr;
  std::string caption_;  // without the group's name
  bool commandOpen_ = false;
  int jobsRunning_ = 0;
  QWidget* content_ = nullptr;
  SignalChain* chain_ = nullptr;
  GraphPanel* graphPanel_ = nullptr;
  QTabBar* tabs_ = nullptr;
  ChannelPage* page_ = nullptr;
  QTimer* meterTimer_ = nullptr;
};

}  // namespace talvex::editor
