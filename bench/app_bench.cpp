// The desktop program's responsiveness, timed on whole runs (offscreen):
//  - start-up: from building the session and main window on the simulated line "sim:0,1,2" to the
//    device list showing the three devices, and then to their names being read (the splash's
//    two seconds are not counted);
//  - the longest stall of the user-interface thread while a whole preset is pushed to a simulated
//    device paced at 9600 baud (the exchanges run on the link worker).
// Prints medians over the repetitions.
#include <QApplication>
#include <QElapsedTimer>
#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <vector>

#include "app/main_window.h"
#include "presets/preset_transfer.h"
#include "whole_run.h"

namespace {

using namespace talvex;
using bench::Clock;
using bench::Median;
using bench::Ms;
using bench::SilentDialogs;

void WaitFor(const std::function<bool()>& done) {
  while (!done())
    QApplication::processEvents(QEventLoop::WaitForMoreEvents, 5);
}

void StartUp(std::vector<double>& listed, std::vector<double>& named) {
  SilentDialogs dialogs;
  const auto start = Clock::now();
  auto session = std::make_unique<app::Session>(link::MakeLine(link::ParsePortSpec("sim:0,1,2")),
                                                dialogs, std::filesystem::temp_directory_path());
  app::Session& s = *session;
  app::MainWindow window(std::move(session), dialogs);
  window.show();
  app::StartupChoice choice;
  window.Start(choice);
  WaitFor([&] { return window.DeviceList() && window.DeviceList()->Grid()->rowCount() == 3; });
  listed.push_back(Ms(Clock::now() - start));
  WaitFor([&] { return s.Outstanding() == 0; });
  named.push_back(Ms(Clock::now() - start));
}

// The user-interface thread ticks every millisecond; the longest gap between ticks is its
// longest stall while the worker pushes the preset.
double LongestStallDuringPush(int& frames, double& pushSeconds) {
  SilentDialogs dialogs;
  app::Session session(link::MakeLine(link::ParsePortSpec("sim:0@9600")), dialogs,
                       std::filesystem::temp_directory_path());
  Clock::duration longest{};
  auto last = Clock::now();
  QTimer ticker;
  ticker.setInterval(1);
  QObject::connect(&ticker, &QTimer::timeout, [&] {
    const auto now = Clock::now();
    longest = std::max(longest, now - last);
    last = now;
  });
  bool opened = false;
  session.Submit(
      0, {}, [](link::Link& link) { return link.OpenPort(); }, [&](bool ok) { opened = ok; });
  WaitFor([&] { return session.Outstanding() == 0; });
  if (!opened) return -1;

  ticker.start();
  last = Clock::now();
  const auto start = Clock::now();
  presets::PresetView view;  // the model and its transfer are made here, on this thread
  params::DeviceParams device = params::DeviceParams::FromDefault(1);
  const presets::PresetTransfer transfer =
      presets::ApplyPreset(device, view, presets::TransferFlags::PresetFileLoad());
  presets::TransferOutcome outcome;
  session.Submit(
      0, {},
      [transfer](link::Link& link) { return presets::SendPresetTransfer(link, 0, transfer); },
      [&](presets::TransferOutcome result) { outcome = result; });
  WaitFor([&] { return session.Outstanding() == 0; });
  ticker.stop();
  frames = outcome.commandsSent;
  pushSeconds = std::chrono::duration<double>(Clock::now() - start).count();
  return Ms(longest);
}

}  // namespace

int main(int argc, char* argv[]) {
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication app(argc, argv);
  const int repetitions = argc > 1 ? std::max(1, std::atoi(argv[1])) : 10;

  std::vector<double> listed, named;
  for (int i = 0; i < repetitions; ++i)
    StartUp(listed, named);
  std::printf("start-up to the device list (3 devices):   median %.1f ms (goal < 300 ms)\n",
              Median(listed));
  std::printf("start-up to their names read:              median %.1f ms\n", Median(named));

  std::vector<double> stalls;
  int frames = 0;
  double seconds = 0;
  for (int i = 0; i < std::max(3, repetitions / 2); ++i)
    stalls.push_back(LongestStallDuringPush(frames, seconds));
  std::printf(
      "longest UI stall during a paced push:      median %.2f ms, worst %.2f ms (goal < 50 ms)\n",
      Median(stalls), *std::max_element(stalls.begin(), stalls.end()));
  std::printf("  (push of %d commands at 9600 baud took %.2f s)\n", frames, seconds);
  return 0;
}
