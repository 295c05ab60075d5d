#include "app/main_window.h"

#include <QCloseEvent>
#include <QLabel>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QScreen>
#include <QStatusBar>
#include <QStyle>

#include "app/theme.h"

namespace talvex::app {

namespace {

// The permanent part of the status bar: the port, and whether the line is simulated.
QString LineStateText(const std::string& port, bool simulated) {
  const QString name = QString::fromStdString(port);
  return simulated ? QString("Simulated line %1: no hardware needed").arg(name)
                   : QString("Port: %1").arg(name);
}

}  // namespace

MainWindow::MainWindow(std::unique_ptr<Session> session, UserDialogs& dialogs, QWidget* parent)
    : QMainWindow(parent), session_(std::move(session)), dialogs_(dialogs), area_(new QMdiArea) {
  setWindowTitle(kMainTitle);
  setCentralWidget(area_);
  area_->setBackground(QColor(0x5b, 0x63, 0x70));
  BuildMenus();
  lineState_ = new QLabel;
  statusBar()->addPermanentWidget(lineState_);
  // Room for the device list and an editor beside it: most of the screen.
  resize(screen()->availableGeometry().size() * 0.92);
  connect(session_.get(), &Session::startupFinished, this, &MainWindow::FinishStartup);
  connect(session_.get(), &Session::searchStarted, this, &MainWindow::ShowSearch);
  connect(session_.get(), &Session::searchEnded, this, [this] {
    if (search_) search_->hide();
  });
  connect(session_.get(), &Session::deviceLost, this, &MainWindow::CloseEditorOf);
  connect(session_.get(), &Session::fatalTimeOut, this, [this] { emit quitRequested(1); });
  connect(session_.get(), &Session::portLost, this, &MainWindow::CloseEveryEditor);
  connect(session_.get(), &Session::portProblem, lineState_, &QLabel::setText);
  connect(session_.get(), &Session::busy, this, [this](const QString& text) {
    if (text.isEmpty()) {
      statusBar()->clearMessage();
    } else {
      statusBar()->showMessage(text);
    }
  });
}

// The program is ending: its editors close without their question, before the session goes.
MainWindow::~MainWindow() {
  for (editor::CtrlWindow* editor : editors_)
    if (editor) editor->CloseWithoutAsking();
}

void MainWindow::BuildMenus() {
  QMenu* file = menuBar()->addMenu("&File");
  reopenPort_ = file->addAction("&Reopen port", this, &MainWindow::ReopenPort);
  reopenPort_->setToolTip("Open the port again after its adapter was plugged back");
  reopenPort_->setEnabled(false);  // once the start-up has opened it, outside demo mode
  file->addAction("E&xit", QKeySequence::Quit, this, &QWidget::close);
  QMenu* window = menuBar()->addMenu("&Window");
  window->addAction("&Devices", this, [this] {
    if (deviceList_)
      area_->setActiveSubWindow(qobject_cast<QMdiSubWindow*>(deviceList_->parentWidget()));
  });
  window->addAction("&Tile", area_, &QMdiArea::tileSubWindows);
  window->addAction("&Cascade", area_, &QMdiArea::cascadeSubWindows);
  QMenu* view = menuBar()->addMenu("&View");
  view->addAction("Line &monitor", this, &MainWindow::ShowLineMonitor);
  view->addAction(MakeThemeAction(session_->ConfigFolder(), this));
}

void MainWindow::ShowLineMonitor() {
  if (!monitor_)
    monitor_ = new LineMonitorWindow(session_->Tap(), dialogs_, session_->ConfigFolder(), this);
  monitor_->show();
  monitor_->raise();
  monitor_->activateWindow();
}

void MainWindow::Start(const StartupChoice& choice) {
  lineState_->setText(LineStateText(choice.port, session_->Simulator() != nullptr));
  session_->Start(choice);
}

// Only once the port has opened: a port that did not open has nothing to search, and its
// question ("COM not found, ...") stands alone.
void MainWindow::ShowSearch() {
  if (!search_) {
    search_ = new SearchWindow(this);
    connect(session_.get(), &Session::searchProgress, search_, &SearchWindow::ShowProgress);
  }
  search_->show();
}

void MainWindow::FinishStartup(StartupOutcome outcome) {
  if (outcome == StartupOutcome::Refused) {
    emit startupFinished(outcome);
    emit quitRequested(0);  // no exit question: Closing is set
    return;
  }
  if (outcome == StartupOutcome::DemoMode)
    statusBar()->showMessage("Demo mode: nothing is sent to the devices");
  reopenPort_->setEnabled(outcome == StartupOutcome::DevicesFound);
  deviceList_ = new DeviceListWindow(*session_);
  connect(deviceList_, &DeviceListWindow::connectRequested, this, &MainWindow::ConnectDevice);
  QMdiSubWindow* sub = area_->addSubWindow(deviceList_, Qt::SubWindow | Qt::WindowTitleHint);
  sub->resize(360, 320);
  sub->move(8, 8);
  sub->show();
  emit startupFinished(outcome);
}

editor::CtrlWindow* MainWindow::Editor(int slot) const {
  CheckIndex(slot, kWindowSlotCount - 1, "window slot");
  return editors_[static_cast<std::size_t>(slot)];
}

void MainWindow::ConnectDevice(int deviceId) {
  if (const auto held = slots_.SlotOfDevice(deviceId); held && !Editor(*held))
    return;  // still being read: the status bar says so
  const OpenResult result = slots_.Open(deviceId);
  if (result.refusal != OpenRefusal::None) return ShowRefusal(result.refusal);
  const int slot = *result.slot;
  session_->Connect(deviceId, [this, deviceId, slot](bool connected) {
    if (connected) {
      OpenEditor(deviceId, slot);
    } else {
      slots_.Close(slot);
    }
  });
}

void MainWindow::ShowRefusal(OpenRefusal refusal) {
  if (refusal == OpenRefusal::OutOfMemory) {
    dialogs_.ShowMessage(std::string(kOutOfMemoryTitle), std::string(kOutOfMemoryText),
                         DialogIcon::Warning);
  } else {
    dialogs_.ShowMessage(std::string(kAlreadyOpenTitle), std::string(kAlreadyOpenText),
                         DialogIcon::Warning);
  }
}

void MainWindow::OpenEditor(int deviceId, int slot) {
  if (!errorsReported_) {  // from the first editor on, a failed edit is reported
    session_->ReportLinkErrors();
    errorsReported_ = true;
  }
  auto link = std::make_unique<SessionEditorLink>(*session_, deviceId);
  links_[static_cast<std::size_t>(slot)] = link.get();
  auto* editor = new editor::CtrlWindow(deviceId, slot, session_->Device(deviceId).params,
                                        session_->Mark(), std::move(link), dialogs_,
                                        [this, deviceId] { return MayCloseEditor(deviceId); });
  connect(editor, &editor::CtrlWindow::closed, this, &MainWindow::EditorClosed);
  connect(editor, &editor::CtrlWindow::statusMessage, this,
          [this](const QString& text) { statusBar()->showMessage(text, kEditorMessageMs); });
  editor->SetGroups(groups_);
  connect(editor, &editor::CtrlWindow::disconnectRequested, this, &MainWindow::Unconnect);
  editors_[static_cast<std::size_t>(slot)] = editor;
  QMdiSubWindow* sub = area_->addSubWindow(editor);
  sub->setAttribute(Qt::WA_DeleteOnClose);
  sub->show();
  PlaceEditor(sub, slot);
}

// Editors cascade to the right of the device list, each slot a step further, inside the area.
void MainWindow::PlaceEditor(QMdiSubWindow* sub, int slot) const {
  const QRect room = area_->viewport()->rect();
  const QSize size = sub->sizeHint().expandedTo({320, 280}).boundedTo(room.size());
  const int step = sub->style()->pixelMetric(QStyle::PM_TitleBarHeight) + 4;
  const QPoint wanted(deviceList_ ? deviceList_->parentWidget()->geometry().right() + 12 : 8, 8);
  const QPoint at = wanted + QPoint(step * slot, step * slot);
  sub->resize(size);
  sub->move(std::clamp(at.x(), 0, std::max(0, room.width() - size.width())),
            std::clamp(at.y(), 0, std::max(0, room.height() - size.height())));
}

// The system's question as it always stood, then ours when the settings would be lost.
bool MainWindow::MayCloseEditor(int deviceId) {
  if (session_->Device(deviceId).disconnected) return true;
  const std::string title = "ID:" + std::to_string(deviceId) + kCloseWindowSuffix;
  if (dialogs_.AskYesNo(title, kExitQuestion, DialogIcon::None, Answer::Yes) != Answer::Yes)
    return false;
  const auto slot = slots_.SlotOfDevice(deviceId);
  editor::CtrlWindow* editor = slot ? Editor(*slot) : nullptr;
  return !editor || editor->MayLeave(title, false);
}

// The editor is deleted later; what it queued must not reach the device from now on.
void MainWindow::EditorClosed(int slot) {
  slots_.Close(slot);
  editors_[static_cast<std::size_t>(slot)] = nullptr;
  if (SessionEditorLink* link = std::exchange(links_[static_cast<std::size_t>(slot)], nullptr))
    link->Close();
  if (deviceList_) deviceList_->Redraw();
}

// Never under an open box: the code that opened it goes on in the editor when it closes.
void MainWindow::CloseEditorOf(int deviceId) {
  dialogs_.AfterBoxes([this, deviceId] {
    const auto slot = slots_.SlotOfDevice(deviceId);
    editor::CtrlWindow* editor = slot ? editors_[static_cast<std::size_t>(*slot)] : nullptr;
    if (!editor) return;
    if (auto* sub = qobject_cast<QMdiSubWindow*>(editor->parentWidget())) {
      editor->CloseWithoutAsking();
      sub->close();
    }
  });
}

// The port is gone: its message has been shown once; no editor can reach its device now.
void MainWindow::CloseEveryEditor() {
  for (int slot = 0; slot < kWindowSlotCount; ++slot)
    if (editor::CtrlWindow* editor = Editor(slot)) CloseEditorOf(editor->DeviceId());
  lineState_->setText(QString("Port %1 is gone").arg(QString::fromStdString(session_->PortName())));
  if (deviceList_) deviceList_->Redraw();
}

void MainWindow::ReopenPort() {
  reopenPort_->setEnabled(false);
  statusBar()->showMessage("Reopening the port ...");
  session_->ReopenPort([this](const std::string& error) {
    reopenPort_->setEnabled(true);
    statusBar()->clearMessage();
    if (!error.empty()) {
      dialogs_.ShowMessage(kReopenFailedTitle, error, DialogIcon::Warning);
      return;
    }
    const QString port = QString::fromStdString(session_->PortName());
    lineState_->setText(LineStateText(session_->PortName(), session_->Simulator() != nullptr));
    statusBar()->showMessage(QString(kPortReopenedText).arg(port));
  });
}

void MainWindow::Unconnect(int deviceId) {
  if (dialogs_.AskYesNo(kUnconnectTitle, kUnconnectQuestion, DialogIcon::None, Answer::Yes) ==
      Answer::No)
    return;
  session_->Unconnect(deviceId);
  CloseEditorOf(deviceId);
}

void MainWindow::closeEvent(QCloseEvent* event) {
  if (session_->Closing() || leaving_) {
    event->accept();
    return;
  }
  event->ignore();
  if (dialogs_.AskYesNo(kExitTitle, kExitQuestion, DialogIcon::None, Answer::No) == Answer::No)
    return;
  for (editor::CtrlWindow* editor : editors_)
    if (editor && !editor->MayLeave(kExitTitle, true)) return;
  leaving_ = true;
  hide();
  // Command 143 goes out after whatever is queued; the program ends once it has.
  session_->SendLeaveAndThen([this] { emit quitRequested(0); });
}

}  // namespace talvex::app
