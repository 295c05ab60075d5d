// Takes the screenshots of docs/screenshots: the real windows on a real X server (Xvfb), driven as
// a user would drive them, grabbed from the screen.
//   xvfb-run -s "-screen 0 1280x900x24" ./build/dev/tools/talvex-screenshots OUT_FOLDER 96dpi
//   QT_ENABLE_HIGHDPI_SCALING=0 QT_FONT_DPI=120 xvfb-run -s "-screen 0 1600x1000x24"
//     ./build/dev/tools/talvex-screenshots OUT_FOLDER 120dpi
// (the screens the shots in docs/screenshots were taken on).
#include <QApplication>
#include <QCheckBox>
#include <QDialog>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QListWidget>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QScreen>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>
#include <QTimer>
#include <iostream>

#include "app/main_window.h"
#include "app/select_window.h"
#include "app/splash_window.h"
#include "app/theme.h"
#include "editor/dialogs/eq_import_dialog.h"
#include "editor/dialogs/frm_edit_label.h"
#include "editor/dialogs/frm_store.h"
#include "editor/dialogs/frm_vmeter.h"
#include "editor/dialogs/preset_diff_dialog.h"
#include "editor/editor_menus.h"
#include "editor/qt_user_dialogs.h"
#include "editor/widgets/graph_panel.h"
#include "editor/widgets/response_graph.h"
#include "params/param_edit.h"

namespace {

using namespace talvex;

void Pump(int milliseconds) {
  QElapsedTimer timer;
  timer.start();
  while (timer.elapsed() < milliseconds) {
    QApplication::processEvents(QEventLoop::AllEvents, 20);
    QThread::msleep(5);
  }
}

void Settle(app::Session& session) {
  for (int round = 0; round < 10000 && session.Outstanding() > 0; ++round) {
    session.Worker().WaitIdle();
    QApplication::processEvents();
  }
  Pump(300);
}

// A three-way side per input: low up to 250 Hz, mid to 2.5 kHz, high above, each way with a
// few bands set, so that every curve has something to show.
void ShowPreset(sim::SimLine& line, int id) {
  params::DeviceParams device = params::DeviceParams::FromDefault(1);
  const auto set = [&](params::ParamKind kind, int channel, const char* text, int band = 0) {
    params::EditText(device, {kind, channel, band}, text);
  };
  const auto type = [&](params::ParamKind kind, int channel, int choice) {
    params::EditChoice(device, {kind, channel, 0}, choice);
  };
  for (int side = 0; side < 2; ++side) {
    const int low = 2 + side, mid = 4 + side, high = 6 + side;
    set(params::ParamKind::LowPassFrequency, low, "250");
    type(params::ParamKind::LowPassType, low, 7);
    set(params::ParamKind::HighPassFrequency, mid, "250");
    type(params::ParamKind::HighPassType, mid, 7);
    set(params::ParamKind::LowPassFrequency, mid, "2500");
    type(params::ParamKind::LowPassType, mid, 7);
    set(params::ParamKind::HighPassFrequency, high, "2500");
    type(params::ParamKind::HighPassType, high, 6);
    set(params::ParamKind::EqGain, low, "4", params::GlobalBand(low, 0));
    set(params::ParamKind::EqFrequency, low, "60", params::GlobalBand(low, 0));
    set(params::ParamKind::EqGain, mid, "-5", params::GlobalBand(mid, 1));
    set(params::ParamKind::EqFrequency, mid, "800", params::GlobalBand(mid, 1));
    set(params::ParamKind::EqGain, high, "3", params::GlobalBand(high, 2));
    set(params::ParamKind::EqFrequency, high, "12000", params::GlobalBand(high, 2));
    set(params::ParamKind::Delay, high, "0.4");
    set(params::ParamKind::Level, mid, "-2.5");
  }
  set(params::ParamKind::EqGain, 0, "-3", params::GlobalBand(0, 3));
  set(params::ParamKind::EqFrequency, 0, "125", params::GlobalBand(0, 3));
  protocol::Command setType;  // the device loads the type's factory image, then takes ours
  setType.code = protocol::code::kSetSystemType;
  setType.p(1) = 1;
  line.Device(id).Handle(protocol::BuildFrame(id, setType));
  line.Device(id).SetName("SIM 2x3 " + std::string(id < 10 ? "0" : "") + std::to_string(id));
  auto& live = line.Device(id).LiveImage();
  std::copy_n(device.image.begin(), live.size(), live.begin());
}

// The real boxes, except while the toolbar's dialogs are shot: then every question is answered
// Yes (a box would wait for a click) and the file dialogs return the given file.
class ShotDialogs final : public editor::UserDialogs {
 public:
  editor::Answer AskYesNo(const std::string& title, const std::string& text,
                          editor::DialogIcon icon, editor::Answer defaultAnswer) override {
    if (scripted) return editor::Answer::Yes;
    return real.AskYesNo(title, text, icon, defaultAnswer);
  }
  void ShowMessage(const std::string& title, const std::string& text,
                   editor::DialogIcon icon) override {
    if (!scripted) real.ShowMessage(title, text, icon);
  }
  std::optional<std::string> ChooseOpenFile(const std::string& folder,
                                            const std::string& filter) override {
    return scripted ? std::optional(file) : real.ChooseOpenFile(folder, filter);
  }
  std::optional<std::string> ChooseSaveFile(const std::string& folder,
                                            const std::string& filter) override {
    return scripted ? std::optional(file) : real.ChooseSaveFile(folder, filter);
  }

  editor::QtUserDialogs real;
  bool scripted = false;
  std::string file;
};

bool Save(const QWidget& window, const QString& path) {
  const QRect frame = window.frameGeometry();
  const QPixmap shot = QApplication::primaryScreen()->grabWindow(0, frame.x(), frame.y(),
                                                                 frame.width(), frame.height());
  std::cout << path.toStdString() << '\n';
  return shot.save(path);
}

QDialog* OpenDialog(editor::CtrlWindow& editor, editor::WindowCommand command) {
  editor.Command2(static_cast<int>(command)).trigger();
  Pump(300);
  for (QDialog* dialog : editor.findChildren<QDialog*>())
    if (dialog->isVisible()) return dialog;
  return nullptr;
}

bool ShootDialog(editor::CtrlWindow& editor, editor::WindowCommand command, const QString& path,
                 const std::function<void(QDialog&)>& prepare = {}) {
  QDialog* dialog = OpenDialog(editor, command);
  if (!dialog) return false;
  if (prepare) prepare(*dialog);
  Pump(250);
  const bool saved = Save(*dialog, path);
  dialog->reject();
  Pump(100);
  return saved;
}

// Every dialog of the editor's toolbar over the editor that shows it, on the paced line, so that
// the store's ProgressBar1 and the file transfer's window are shot half-way.
bool ShootDialogs(app::MainWindow& window, editor::CtrlWindow& editor, ShotDialogs& dialogs,
                  const QString& out, const QString& suffix, const QString& folder) {
  using editor::WindowCommand;
  auto* sub = qobject_cast<QMdiSubWindow*>(editor.parentWidget());
  sub->showNormal();
  sub->resize(window.Area()->size());
  sub->move(0, 0);
  editor.SelectChannel(2);
  dialogs.scripted = true;
  const auto shot = [&](const char* name) { return out + "/dialog-" + name + suffix + ".png"; };
  bool ok = Save(window, out + "/editor-toolbar" + suffix + ".png");
  ok = ShootDialog(editor, WindowCommand::ReadPreset, shot("read")) && ok;
  ok = ShootDialog(editor, WindowCommand::SystemSetup, shot("system-setup")) && ok;
  ok = ShootDialog(editor, WindowCommand::InputCopy, shot("input-copy")) && ok;
  ok = ShootDialog(editor, WindowCommand::OutputCopy, shot("output-copy")) && ok;
  ok = ShootDialog(editor, WindowCommand::LockUnit, shot("password")) && ok;
  ok = ShootDialog(editor, WindowCommand::EditDeviceName, shot("name-device")) && ok;
  ok = ShootDialog(editor, WindowCommand::EditNames, shot("edit-names"),
                   [](QDialog& dialog) {
                     auto& names = static_cast<editor::FrmEditLabel&>(dialog);
                     QTest::keyClicks(&names.Text1(3), "#");  // the hint while typing
                   }) &&
       ok;
  ok = ShootDialog(editor, WindowCommand::StorePreset, shot("store")) && ok;

  // Half-way through a store: 81 exchanges take about 2.2 s on a 9600-baud line.
  if (auto* store =
          static_cast<editor::FrmStore*>(OpenDialog(editor, WindowCommand::StorePreset))) {
    store->List1().setCurrentRow(3);
    store->NameBox().setText("Chorus live");
    store->Command1(1).click();
    Pump(1000);
    ok = Save(*store, shot("store-progress")) && ok;
    Settle(window.CurrentSession());
    store->reject();
  } else {
    ok = false;
  }

  // Half-way through a preset file's transfer (about 160 exchanges).
  dialogs.file = (folder + "/show.tvx").toStdString();
  editor.Command2(static_cast<int>(WindowCommand::SavePresetToPc)).trigger();
  editor.Command2(static_cast<int>(WindowCommand::LoadPresetFromPc)).trigger();
  Pump(1500);
  if (auto* meter = editor.findChild<editor::FrmVMeter*>()) {
    meter->move(editor.mapToGlobal(QPoint(200, 200)));
    Pump(200);
    ok = Save(*meter, shot("load-progress")) && ok;
  } else {
    ok = false;
  }
  Settle(window.CurrentSession());
  dialogs.scripted = false;
  return ok;
}

// The editor's own menus and status line after an A/B switch, the Edit menu open, and the
// Tools menu's import report and comparison, on the paced line.
bool ShootEditorMemory(app::MainWindow& window, editor::CtrlWindow& editor, ShotDialogs& dialogs,
                       const QString& out, const QString& suffix, const QString& folder) {
  using editor::EditorAction;
  using params::ParamKind;
  const auto shot = [&](const char* name) { return out + "/" + name + suffix + ".png"; };
  const auto run = [&](EditorAction action) {
    editor.Menus().Action(action).trigger();
    Settle(window.CurrentSession());
  };
  dialogs.scripted = true;
  editor.SelectChannel(2);
  editor.Model().Commit({ParamKind::EqGain, 2, params::GlobalBand(2, 3)}, "-4.5");
  run(EditorAction::CopyAToB);
  run(EditorAction::SwitchSide);
  editor.Model().Commit({ParamKind::EqFrequency, 2, params::GlobalBand(2, 3)}, "1600");
  Settle(window.CurrentSession());
  run(EditorAction::SwitchSide);
  bool ok = Save(window, shot("editor-ab-switch"));
  QMenu* edit = editor.Menus().Bar().findChildren<QMenu*>().value(0);
  if (edit) {
    edit->popup(editor.Menus().Bar().mapToGlobal(QPoint(0, editor.Menus().Bar().height())));
    Pump(300);
    ok = Save(window, shot("editor-edit-menu")) && ok;
    edit->hide();
  } else {
    ok = false;
  }

  const QString room = folder + "/room.txt";
  QFile file(room);
  file.open(QIODevice::WriteOnly);
  file.write(
      "Preamp: -3,5 dB\n"
      "Filter  1: ON  PK       Fc   45,80 Hz  Gain   3,00 dB  Q  1,000\n"
      "Filter  2: ON  LS 6dB   Fc  120,0 Hz   Gain  -2,5 dB\n"
      "Filter  3: OFF None\n"
      "Filter  4: ON  HP       Fc   30 Hz\n"
      "Filter  5: ON  PK       Fc 2150,0 Hz  Gain  -4,20 dB  Q  4,500\n");
  file.close();
  dialogs.file = room.toStdString();
  run(EditorAction::ImportEq);
  if (auto* report = editor.findChild<editor::EqImportDialog*>()) {
    Pump(300);
    ok = Save(*report, shot("dialog-eq-import")) && ok;
    report->reject();
  } else {
    ok = false;
  }
  Pump(100);
  dialogs.file = (folder + "/show.tvx").toStdString();
  run(EditorAction::CompareFile);
  if (auto* diff = editor.findChild<editor::PresetDiffDialog*>()) {
    Pump(300);
    ok = Save(*diff, shot("dialog-compare")) && ok;
    diff->reject();
  } else {
    ok = false;
  }
  Pump(100);
  dialogs.scripted = false;
  return ok;
}

}  // namespace

// One side's mid and high way (Out 3 and Out 5, crossing at 2.5 kHz, the high way 0.4 ms
// later) drawn as whole outputs with their acoustic sum, the cursor at the crossover, the high
// way's handles on the graph; then the view as it was.
bool ShootSum(const QWidget& window, editor::CtrlWindow& editor, const QString& path) {
  editor::GraphPanel& panel = editor.GraphArea();
  const auto box = [&](const QString& name) {
    for (QAbstractButton* button : panel.findChildren<QAbstractButton*>())
      if (button->accessibleName() == name || button->text() == name) return button;
    throw std::runtime_error("no box " + name.toStdString());
  };
  const QStringList hidden{"View Out2", "View Out4", "View Out6"};
  for (const QString& name : hidden)
    box(name)->click();
  box("Out + InputB")->click();  // the outputs drawn as the sum takes them
  panel.SumBox(2).click();
  panel.SumBox(4).click();
  editor.SelectChannel(6);
  editor::ResponseGraph& graph = editor.Graph();
  Pump(250);
  graph.MoveCursor(graph.Mapping().XOf(2500));
  Pump(250);
  const bool saved = Save(window, path);
  panel.SumBox(2).click();
  panel.SumBox(4).click();
  box("Out")->click();
  for (const QString& name : hidden)
    box(name)->click();
  editor.SelectChannel(4);
  return saved;
}

int main(int argc, char* argv[]) {
  QApplication app(argc, argv);
  if (argc < 2) {
    std::cerr << "usage: talvex-screenshots OUT_FOLDER [SUFFIX]\n";
    return 2;
  }
  const QString out = argv[1];
  const QString suffix = argc > 2 ? QString("-") + argv[2] : QString();
  QDir().mkpath(out);
  QTemporaryDir config;
  ShotDialogs dialogs;

  app::SplashWindow splash;
  splash.move(40, 40);
  splash.show();
  Pump(400);
  bool ok = Save(splash, out + "/splash" + suffix + ".png");
  splash.close();

  // Paced at 9600 baud, so that long jobs take the time they take on a real line.
  const std::string port = "sim:0,1,2@9600";
  app::SelectWindow select(app::AvailablePorts(port), config.path().toStdString(), dialogs, port);
  select.move(40, 40);
  select.show();
  Pump(400);
  ok = Save(select, out + "/select" + suffix + ".png") && ok;
  select.Confirm();

  // The simulated processors as a first run shows them: named after their type and ID.
  // The simulated processors as a first run shows them (named after their type and ID); the
  // second one holds a three-way preset so that its editor has curves to show.
  auto line = link::MakeLine(link::ParsePortSpec(select.Choice().port));
  ShowPreset(*line.simulator, 1);
  app::MainWindow window(
      std::make_unique<app::Session>(std::move(line), dialogs, config.path().toStdString()),
      dialogs);
  dialogs.real.SetParent(&window);
  window.move(0, 0);
  window.show();
  // The line monitor watches the search and the connects.
  window.ShowLineMonitor();
  window.Monitor()->move(40, 160);
  QSignalSpy started(&window, &app::MainWindow::startupFinished);
  window.Start(select.Choice());
  started.wait(5000);
  Settle(window.CurrentSession());
  for (int id : {0, 1, 2}) {
    window.ConnectDevice(id);
    Settle(window.CurrentSession());
  }
  window.Monitor()->DeviceFilter()->setCurrentIndex(1 + 1);  // "ID 1"
  window.Monitor()->raise();
  Pump(300);
  ok = Save(*window.Monitor(), out + "/line-monitor" + suffix + ".png") && ok;
  window.Monitor()->hide();
  window.activateWindow();
  Pump(300);
  ok = Save(window, out + "/main" + suffix + ".png") && ok;

  // The "2x3 WAY XOVER" device's editor, alone in the frame, on every channel tab.
  editor::CtrlWindow* shown = window.Editor(1);
  auto* sub = qobject_cast<QMdiSubWindow*>(shown->parentWidget());
  sub->showMaximized();
  shown->SetCursorShown(true);
  for (int channel = 0; channel < params::kChannelCount; ++channel) {
    shown->SelectChannel(channel);
    if (channel == 4) shown->Graph().MoveCursor(shown->Graph().Geometry().GraphWidth() * 0.6);
    Pump(250);
    const QString tab =
        QString::fromStdString(editor::ChannelCaption(channel)).remove(' ').toLower();
    ok = Save(window, out + "/editor-" + tab + suffix + ".png") && ok;
  }
  ok = ShootSum(window, *shown, out + "/editor-sum" + suffix + ".png") && ok;
  ok = ShootDialogs(window, *shown, dialogs, out, suffix, config.path()) && ok;
  ok = ShootEditorMemory(window, *shown, dialogs, out, suffix, config.path()) && ok;
  app::ApplyTheme(app::Theme::Dark);
  Pump(400);
  ok = Save(window, out + "/main-dark" + suffix + ".png") && ok;
  return ok ? 0 : 1;
}
