#include "editor/ctrl_window.h"

#include <QAction>
#include <QCheckBox>
#include <QCloseEvent>
#include <QHBoxLayout>
#include <QMenuBar>
#include <QPointer>
#include <QScrollArea>
#include <QStyle>
#include <QTabBar>
#include <QTimer>
#include <QToolBar>
#include <QVBoxLayout>

#include "editor/dialogs/command_context.h"
#include "editor/dialogs/unsaved_question.h"
#include "editor/editor_menus.h"
#include "editor/model/device_groups.h"
#include "editor/widgets/channel_page.h"
#include "editor/widgets/graph_panel.h"
#include "editor/widgets/response_graph.h"
#include "editor/widgets/signal_chain.h"
#include "editor/widgets/status_line.h"
#include "params/captions.h"

namespace talvex::editor {

namespace {

// A caption on two lines under its icon, broken at the blank nearest its middle, so that the
// twelve buttons fit an editor's width ("Store Preset" over "to device").
QString TwoLines(const QString& caption) {
  const int middle = static_cast<int>(caption.size() / 2);
  const int before = static_cast<int>(caption.lastIndexOf(' ', middle));
  const int after = static_cast<int>(caption.indexOf(' ', middle));
  int at = before;
  if (at < 0 || (after >= 0 && after - middle < middle - before)) at = after;
  if (at < 0) return caption;
  return caption.left(at) + '\n' + caption.mid(at + 1);
}

}  // namespace

CtrlWindow::CtrlWindow(int deviceId, int slot, params::DeviceParams& device,
                       params::DecimalMark mark, std::unique_ptr<EditorLink> link,
                       UserDialogs& dialogs, std::function<bool()> mayClose, QWidget* parent)
    : QWidget(parent),
      deviceId_(deviceId),
      slot_(slot),
      link_(std::move(link)),
      model_(deviceId, device, mark, *link_),
      context_{model_, dialogs},
      mayClose_(std::move(mayClose)) {
  setAttribute(Qt::WA_DeleteOnClose);
  // The editor's load: the stores are applied to the model with sending suspended.
  model_.Load();
  model_.SetInputNames(link_->Records().names);
  model_.OnChanged([this](std::span<const params::ParamRef>) { ShowChanges(); });
  memory_ = std::make_unique<SettingsMemory>(model_, device, *link_);

  BuildToolbar();
  chain_ = new SignalChain(model_);
  auto* top = new QHBoxLayout;
  top->addWidget(chain_, 1);
  graphPanel_ = new GraphPanel(model_, dialogs, [this] { return link_->Records().presetFolder; });
  top->addWidget(graphPanel_);
  auto* content = new QWidget;
  auto* layout = new QVBoxLayout(content);
  layout->addLayout(top);
  layout->addWidget(BuildTabs());
  page_ = new ChannelPage(context_);
  layout->addWidget(page_);
  layout->addStretch(1);
  content_ = content;
  auto* scroll = new QScrollArea;
  scroll->setWidget(content);
  scroll->setWidgetResizable(true);
  scroll->setFrameShape(QFrame::NoFrame);
  auto* outer = new QVBoxLayout(this);
  outer->setContentsMargins(0, 0, 0, 0);
  outer->setSpacing(0);
  outer->addWidget(toolbar_);
  outer->addWidget(scroll);
  statusLine_ = new StatusLine;
  outer->addWidget(statusLine_);

  connect(chain_, &SignalChain::channelSelected, this, &CtrlWindow::SelectChannel);
  connect(&page_->EditorLockBox(), &QCheckBox::clicked, this, [this] {
    UpdateActions();
    UpdateGraph();  // a locked editor offers no handles
  });
  commands_ = std::make_unique<CommandContext>(
      CommandContext{*this, model_, device, *link_, dialogs,
                     [this](const std::string& caption) { SetCaption(caption); },
                     [this](bool running) { SetJobRunning(running); }, [this] { ShowChanges(); },
                     [this] {
                       commandOpen_ = false;
                       UpdateActions();
                     },
                     *memory_});
  memory_->jobRunning = [this](bool running) { SetJobRunning(running); };
  memory_->status = [this](const std::string& text) { ShowStatus(text); };
  memory_->changed = [this] { ShowMemory(); };
  memory_->typeChanged = [this](int type) { SetCaption(params::EditorCaption(deviceId_, type)); };
  menus_ = new EditorMenus(
      *commands_, [this](const auto& tool) { RunTool(tool); }, *this);
  outer->setMenuBar(&menus_->Bar());
  SetCaption(params::EditorCaption(deviceId_, device.image[params::kSystemTypeByte]));
  SelectChannel(0);
  page_->Refresh();
  UpdateActions();

  meterTimer_ = new QTimer(this);
  connect(meterTimer_, &QTimer::timeout, this, &CtrlWindow::PollMeters);
  meterTimer_->start(kMeterIntervalMs);
}

// The panels work on the model, a member: they go first (QWidget would delete its children only
// after the members, and a drag ending in its destructor would reach a model already gone).
CtrlWindow::~CtrlWindow() {
  qDeleteAll(findChildren<QWidget*>(Qt::FindDirectChildrenOnly));
}

// The twelve window commands in their order; each shortcut works anywhere in this editor (the
// editors share one frame window, so a window-wide shortcut would be ambiguous).
void CtrlWindow::BuildToolbar() {
  toolbar_ = new QToolBar;
  toolbar_->setAccessibleName("Window commands");
  toolbar_->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
  for (const ToolbarCommand& entry : kToolbarCommands) {
    const QString caption = QString::fromUtf8(entry.caption.data(), entry.caption.size());
    QAction* action = toolbar_->addAction(style()->standardIcon(entry.icon), caption);
    action->setIconText(TwoLines(caption));
    const QKeySequence shortcut(QString::fromUtf8(entry.shortcut.data(), entry.shortcut.size()));
    action->setShortcut(shortcut);
    action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    action->setToolTip(
        QString("%1 (%2)").arg(QString::fromUtf8(entry.tooltip.data(), entry.tooltip.size()),
                               shortcut.toString(QKeySequence::NativeText)));
    action->setData(static_cast<int>(entry.command));
    addAction(action);
    connect(action, &QAction::triggered, this,
            [this, command = entry.command] { RunCommand(command); });
    actions_[static_cast<std::size_t>(entry.command)] = action;
  }
}

QAction& CtrlWindow::Command2(int index) const {
  CheckIndex(index, kWindowCommandCount - 1, "window command");
  return *actions_[static_cast<std::size_t>(index)];
}

// The window-command-busy flag is set for the command's dialog or flow; a job it starts keeps
// the window busy until the job ends.
void CtrlWindow::RunCommand(WindowCommand command) {
  if (command == WindowCommand::Disconnect) {
    const bool wasOpen = std::exchange(commandOpen_, true);
    emit disconnectRequested(deviceId_);
    commandOpen_ = wasOpen;
    return;
  }
  if (CommandBusy()) return;
  commandOpen_ = true;
  UpdateActions();
  RunWindowCommand(command, *commands_);
}

// The editor's tools run like the toolbar's commands, under the same busy flag.
void CtrlWindow::RunTool(const std::function<void(CommandContext&)>& tool) {
  if (CommandBusy()) return;
  commandOpen_ = true;
  UpdateActions();
  tool(*commands_);
}

void CtrlWindow::SetGroups(DeviceGroups& groups) {
  groups.Attach(*memory_);
}

// The caption the system gives the editor, then its group: "ID:3 - Type: 6 WAY XOVER -
// Group 1 (ID 0, 3, 7)".
void CtrlWindow::SetCaption(const std::string& caption) {
  caption_ = caption;
  std::string shown = caption;
  if (const DeviceGroups* groups = memory_->Groups())
    if (const int group = groups->GroupOf(*memory_)) shown += " - " + groups->Name(group);
  setWindowTitle(QString::fromStdString(shown));
}

void CtrlWindow::ShowStatus(const std::string& text) {
  const QString line = QString::fromStdString(text);
  statusLine_->ShowMessage(line);
  emit statusMessage(line);
}

void CtrlWindow::ShowMemory() {
  SetCaption(caption_);
  UpdateActions();
}

// The toolbar's part of the enable routine: nothing starts while a command runs, and nothing
// that changes the device while it or the editor is locked.
void CtrlWindow::UpdateActions() {
  const bool locked = model_.EditorLock();
  for (const ToolbarCommand& entry : kToolbarCommands) {
    QAction* action = actions_[static_cast<std::size_t>(entry.command)];
    if (entry.command == WindowCommand::Disconnect) continue;
    action->setEnabled(!CommandBusy() && !(entry.changesDevice && locked));
  }
  if (menus_) menus_->Update(CommandBusy());
  if (statusLine_) statusLine_->ShowState(*memory_);
}

// While the device runs a long job the entry boxes ignore keys and the channel's controls are
// disabled, so that no edit slips in between a preset's commands or under a preset read back.
void CtrlWindow::SetJobRunning(bool running) {
  jobsRunning_ += running ? 1 : -1;
  model_.SetInputSuppressed(jobsRunning_ > 0);
  page_->setEnabled(jobsRunning_ == 0);
  UpdateActions();
  UpdateGraph();  // nor while a job runs
}

QWidget* CtrlWindow::BuildTabs() {
  tabs_ = new QTabBar;
  tabs_->setAccessibleName("Channels");
  tabs_->setExpanding(false);
  for (int channel = 0; channel < params::kChannelCount; ++channel)
    tabs_->addTab(QString::fromStdString(ChannelCaption(channel)));
  connect(tabs_, &QTabBar::currentChanged, this, &CtrlWindow::SelectChannel);
  return tabs_;
}

void CtrlWindow::SelectChannel(int channel) {
  if (channel < 0) return;
  if (tabs_->currentIndex() != channel) tabs_->setCurrentIndex(channel);  // comes back here
  chain_->Select(channel);
  if (page_ && model_.SelectedChannel() != channel) page_->Bind(channel);
  UpdateGraph();
  if (menus_) menus_->Update(CommandBusy());
}

// After an edit or a whole preset: every control, the chain and the graph show the stores.
void CtrlWindow::ShowChanges() {
  page_->Refresh();
  chain_->Refresh();
  UpdateGraph();
  UpdateActions();
}

void CtrlWindow::UpdateGraph() {
  graphPanel_->Refresh();
}

ResponseGraph& CtrlWindow::Graph() const {
  return graphPanel_->Graph();
}

void CtrlWindow::PollMeters() {
  if (!isVisible()) return;
  QPointer<CtrlWindow> self(this);
  link_->PollMeters([self](const EditorLink::MeterLevels& levels) {
    if (self) self->chain_->SetMeters(levels);
  });
}

// The whole editor, toolbar and content, as the scroll area would show it without scrolling.
QSize CtrlWindow::sizeHint() const {
  const QSize content = content_->sizeHint();
  return {content.width() + style()->pixelMetric(QStyle::PM_ScrollBarExtent),
          content.height() + toolbar_->sizeHint().height()};
}

void CtrlWindow::SetCursorShown(bool shown) {
  graphPanel_->ShowCursorBox().setChecked(shown);
}

void CtrlWindow::CloseWithoutAsking() {
  asked_ = true;
  memory_->ClearHistory("the device was disconnected");
  close();
}

bool CtrlWindow::MayLeave(const std::string& title, bool leavingProgram) {
  return MayLeaveUnsaved(*commands_, title, leavingProgram);
}

void CtrlWindow::closeEvent(QCloseEvent* event) {
  if (!asked_ && mayClose_ && !mayClose_()) {
    event->ignore();
    return;
  }
  asked_ = true;
  if (DeviceGroups* groups = memory_->Groups()) groups->Leave(*memory_);
  meterTimer_->stop();
  emit closed(slot_);
  event->accept();
}

}  // namespace talvex::editor
