// Takes the screenshots of docs/screenshots: the real windows on a real X server (Xvfb), driven as
// a user would drive them, grabbed from the screen.
//   xvfb-run -s "-screen 0 1280x800x24" ./build/dev/tools/talvex-screenshots OUT_FOLDER [SUFFIX]
#include <QApplication>
#include <QDir>
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
  auto line = link::MakeLine(link::ParsePortSpec(select.Choice().port));
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
  window.CurrentSession().Connect(0);
  Settle(window.CurrentSession());
  window.CurrentSession().Connect(1);
  Settle(window.CurrentSession());
  window.Monitor()->DeviceFilter()->setCurrentIndex(1 + 1);  // "ID 1"
  window.Monitor()->raise();
  Pump(300);
  ok = Save(*window.Monitor(), out + "/line-monitor" + suffix + ".png") && ok;
  window.Monitor()->hide();
  window.activateWindow();
  Pump(300);
  ok = Save(window, out + "/main" + suffix + ".png") && ok;
  app::ApplyTheme(app::Theme::Dark);
  Pump(400);
  ok = Save(window, out + "/main-dark" + suffix + ".png") && ok;
  return ok ? 0 : 1;
}
