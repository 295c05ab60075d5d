// The desktop program's main window on a simulated line, with scripted dialogs, offscreen.
#pragma once

#include <QCoreApplication>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <functional>
#include <memory>

#include "app/main_window.h"
#include "link/line.h"
#include "recording_dialogs.h"

namespace talvex::testing {

class AppHarness {
 public:
  explicit AppHarness(const std::string& port, std::function<void(sim::SimLine&)> prepare = {}) {
    link::Line line = link::MakeLine(link::ParsePortSpec(port));
    simulator = line.simulator;
    if (prepare && simulator) prepare(*simulator);
    auto session = std::make_unique<app::Session>(std::move(line), dialogs, Folder());
    window = std::make_unique<app::MainWindow>(std::move(session), dialogs);
    quits = std::make_unique<QSignalSpy>(window.get(), &app::MainWindow::quitRequested);
  }

  std::filesystem::path Folder() const { return folder.path().toStdString(); }
  app::Session& Session() { return window->CurrentSession(); }

  app::StartupOutcome Start(app::StartupChoice choice) {
    QSignalSpy finished(window.get(), &app::MainWindow::startupFinished);
    window->Start(choice);
    if (finished.isEmpty() && !finished.wait(10000))
      throw std::runtime_error("start-up did not finish");
    Settle();
    return finished.front().front().value<app::StartupOutcome>();
  }

  // Lets the link worker and the queued results run until every job's result is back.
  void Settle() {
    for (int round = 0; round < 10000 && Session().Outstanding() > 0; ++round) {
      Session().Worker().WaitIdle();
      QCoreApplication::processEvents();
    }
    QCoreApplication::processEvents();
  }

  int Frames(int id, std::uint8_t code) const { return simulator->Device(id).FramesHandled(code); }

  QTemporaryDir folder;
  RecordingDialogs dialogs;
  std::shared_ptr<sim::SimLine> simulator;
  std::unique_ptr<app::MainWindow> window;
  std::unique_ptr<QSignalSpy> quits;
};

inline app::StartupChoice Choice(app::SearchMode mode, int singleId = 0) {
  app::StartupChoice choice;
  choice.mode = mode;
  choice.singleDeviceId = singleId;
  for (int i = 0; i < config::kIdListCount; ++i)
    choice.ids[static_cast<std::size_t>(i)] = static_cast<std::int16_t>(i);
  return choice;
}

inline void NameDevice(sim::SimLine& line, int id, const std::string& name) {
  auto& memory = line.Device(id).DeviceMemory();
  for (std::size_t i = 0; i < 16; ++i)
    memory[368 + i] = static_cast<std::uint8_t>(i < name.size() ? name[i] : ' ');
}

}  // namespace talvex::testing
