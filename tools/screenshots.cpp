// Takes the screenshots of docs/screenshots: the real windows on a real X server (Xvfb), driven as
// a user would drive them, grabbed from the screen.
//   xvfb-run -s "-screen 0 1280x800x24" ./build/dev/tools/talvex-screenshots OUT_FOLDER [SUFFIX]
#include <QApplication>
#include <QDir>
#include <QMdiSubWindow>
#include <QScreen>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>
#include <iostream>

#include "app/main_window.h"
#include "app/select_window.h"
#include "app/splash_window.h"
#include "app/theme.h"
#include "editor/qt_user_dialogs.h"
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

bool Save(const QWidget& window, const QString& path) {
  const QRect frame = window.frameGeometry();
  const QPixmap shot = QApplication::primaryScreen()->grabWindow(0, frame.x(), frame.y(),
                                                                 frame.width(), frame.height());
  std::cout << path.toStdString() << '\n';
  return shot.save(path);
}

}  // namespace

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
  editor::QtUserDialogs dialogs;

  app::SplashWindow splash;
  splash.move(40, 40);
  splash.show();
  Pump(400);
  bool ok = Save(splash, out + "/splash" + suffix + ".png");
  splash.close();

  app::SelectWindow select(app::AvailablePorts("sim:0,1,2"), config.path().toStdString(), dialogs,
                           "sim:0,1,2");
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
  dialogs.SetParent(&window);
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
  app::ApplyTheme(app::Theme::Dark);
  Pump(400);
  ok = Save(window, out + "/main-dark" + suffix + ".png") && ok;
  return ok ? 0 : 1;
}
