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
  void CloseWithoutAsking();

 signals:
  void disconnectRequested(int deviceId);
  void closed(int slot);

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  QWidget* BuildTabs();
  void BuildToolbar();
  void RunCommand(WindowCommand command);
  void UpdateActions();
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
  std::unique_ptr<CommandContext> commands_;
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
