// talvex: the desktop editor. Splash, then the selection window, then the main window.
#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QMessageBox>
#include <filesystem>
#include <iostream>

#include "app/main_window.h"
#include "app/select_window.h"
#include "app/splash_window.h"
#include "config/locale.h"
#include "editor/qt_user_dialogs.h"

namespace {

using namespace talvex;

struct Options {
  std::string port;
  std::filesystem::path configFolder;
  bool splash = true;
};

Options ParseOptions(QApplication& app) {
  QCommandLineParser parser;
  parser.setApplicationDescription("Editor for TALVEX loudspeaker processors");
  parser.addHelpOption();
  parser.addOption({"port", "Preselect PORT: sim:0,1,2, tcp:HOST:PORT or a serial port.", "PORT"});
  parser.addOption(
      {"config-dir",
       "Keep TenDev.cfg, init.cfg and Speakers.cfg in DIR (default: the working folder).", "DIR"});
  parser.addOption({"no-splash", "Start without the splash window."});
  parser.process(app);
  Options options;
  options.port = parser.value("port").toStdString();
  options.configFolder = parser.isSet("config-dir") ? parser.value("config-dir").toStdString()
                                                    : QDir::currentPath().toStdString();
  options.splash = !parser.isSet("no-splash");
  if (!options.port.empty()) {
    try {
      link::ParsePortSpec(options.port);
    } catch (const link::PortSpecError& error) {
      std::cerr << "talvex: " << error.what() << '\n';
      std::exit(2);
    }
  }
  return options;
}

}  // namespace

int main(int argc, char* argv[]) {
  QApplication app(argc, argv);
  app.setApplicationName("TALVEX");
  app.setQuitOnLastWindowClosed(false);
  const Options options = ParseOptions(app);
  // The decimal mark is decided once, at start-up, and read for the rest of the run (the editor
  // writes and reads values with it).
  const params::DecimalMark mark = params::DecimalMarkOf(config::DetectCommaDecimal());

  editor::QtUserDialogs dialogs;
  app::SelectWindow select(app::AvailablePorts(options.port), options.configFolder, dialogs,
                           options.port);
  std::unique_ptr<app::MainWindow> main;

  QObject::connect(&select, &QDialog::rejected, &app, [&] { app.exit(0); });
  QObject::connect(&select, &QDialog::accepted, &app, [&] {
    const app::StartupChoice choice = select.Choice();
    auto session = std::make_unique<app::Session>(link::MakeLine(link::ParsePortSpec(choice.port)),
                                                  dialogs, options.configFolder, mark);
    main = std::make_unique<app::MainWindow>(std::move(session), dialogs);
    dialogs.SetParent(main.get());
    QObject::connect(main.get(), &app::MainWindow::quitRequested, &app,
                     [&](int code) { app.exit(code); });
    main->show();
    main->Start(choice);
  });

  app::SplashWindow splash;
  QObject::connect(&splash, &app::SplashWindow::finished, &select, &QDialog::show);
  if (options.splash) {
    splash.Start();
  } else {
    select.show();
  }
  const int code = app.exec();
  main.reset();  // the link worker finishes what is queued (command 143 after "Exit")
  return code;
}
