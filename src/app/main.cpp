// talvex: the desktop editor. Splash, then the selection window, then the main window.
#include <QApplication>
#include <QCommandLineParser>
#include <QMessageBox>
#include <algorithm>
#include <filesystem>
#include <iostream>
#include <set>

#include "app/main_window.h"
#include "app/select_window.h"
#include "app/splash_window.h"
#include "app/theme.h"
#include "config/locale.h"
#include "config/locations.h"
#include "editor/qt_user_dialogs.h"
#include "talvex_version.h"

namespace {

using namespace talvex;

struct Options {
  std::string port;
  config::Locations files;
  bool splash = true;
};

// The command line; `programFolder` decides where the files live (config/locations.h).
Options ParseOptions(const QStringList& arguments, const std::filesystem::path& programFolder) {
  QCommandLineParser parser;
  parser.setApplicationDescription("Editor for TALVEX loudspeaker processors");
  parser.addHelpOption();
  parser.addVersionOption();
  parser.addOption({"port", "Preselect PORT: sim:0,1,2, tcp:HOST:PORT or a serial port.", "PORT"});
  const config::Locations standard = config::FindLocations(programFolder, std::nullopt);
  parser.addOption(
      {"config-dir",
       QString("Keep TenDev.cfg, init.cfg, Speakers.cfg and %1 in DIR, presets in "
               "DIR/preset (now: %2, presets in %3).")
           .arg(app::kSettingsFile, QString::fromStdString(standard.configFolder.string()),
                QString::fromStdString(standard.presetFolder.string())),
       "DIR"});
  parser.addOption({"no-splash", "Start without the splash window."});
  parser.process(arguments);
  Options options;
  options.port = parser.value("port").toStdString();
  options.files =
      parser.isSet("config-dir")
          ? config::FindLocations(programFolder, parser.value("config-dir").toStdString())
          : standard;
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

// Help and version are printed without a desktop, so that they work in a terminal with no
// display (and in the package test). The parser prints them and ends the program.
void AnswerHelpOrVersion(int argc, char* argv[]) {
  const std::set<std::string> asks = {"-h", "--help", "-?", "--help-all", "-v", "--version"};
  if (std::none_of(argv + 1, argv + argc, [&](const char* arg) { return asks.contains(arg); }))
    return;
  QCoreApplication probe(argc, argv);
  probe.setApplicationName("talvex");
  probe.setApplicationVersion(kVersion);
  ParseOptions(probe.arguments(), QCoreApplication::applicationDirPath().toStdString());
}

}  // namespace

int main(int argc, char* argv[]) {
  AnswerHelpOrVersion(argc, argv);
  QApplication app(argc, argv);
  app.setApplicationName("TALVEX");
  app.setApplicationVersion(kVersion);
  app.setQuitOnLastWindowClosed(false);
  // Qt has taken its own options (-platform, -style ...) out of the arguments by now.
  const Options options =
      ParseOptions(app.arguments(), QCoreApplication::applicationDirPath().toStdString());
  if (const std::string why = config::CreateFolders(options.files); !why.empty())
    std::cerr << "talvex: " << why << '\n';  // the files are then not kept; the program works
  // The desktop's own look needs nothing done; the dark theme is applied before any window.
  if (app::ReadTheme(options.files.configFolder) == app::Theme::Dark)
    app::ApplyTheme(app::Theme::Dark);
  // The decimal mark is decided once, at start-up, and read for the rest of the run (the editor
  // writes and reads values with it).
  const params::DecimalMark mark = params::DecimalMarkOf(config::DetectCommaDecimal());

  editor::QtUserDialogs dialogs;
  app::SelectWindow select(app::AvailablePorts(options.port), options.files.configFolder, dialogs,
                           options.port);
  std::unique_ptr<app::MainWindow> main;

  QObject::connect(&select, &QDialog::rejected, &app, [&] { app.exit(0); });
  QObject::connect(&select, &QDialog::accepted, &app, [&] {
    const app::StartupChoice choice = select.Choice();
    auto session = std::make_unique<app::Session>(link::MakeLine(link::ParsePortSpec(choice.port)),
                                                  dialogs, options.files.configFolder, mark);
    session->SetPresetFolder(options.files.presetFolder);
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
