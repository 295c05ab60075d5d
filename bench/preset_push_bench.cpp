// A whole-preset push to an in-process simulated device paced at the line speed (9600 baud,
// real time), measured against the least time the line itself needs for it: every exchange is
// a 13-byte frame and a 13-byte reply of 10 bits a byte, plus the transfer's 10 ms pause.
#include <benchmark/benchmark.h>

#include <chrono>

#include "link/line.h"
#include "link/link.h"
#include "params/senders.h"
#include "presets/preset_transfer.h"

namespace {

using namespace talvex;

constexpr double kBitsPerExchange = (13 + 13) * 10;
constexpr double kBaud = 9600;
constexpr double kStatedPausesSeconds = 0.010;

params::DeviceParams ShowPreset() {
  params::DeviceParams device = params::DeviceParams::FromDefault(1);
  params::Senders senders(device);
  senders.EqBand(12, {250, 20, 6});
  senders.Level(6, -4.5);
  senders.OutputName(4, "Kick");
  return device;
}

void BM_PresetPushAt9600(benchmark::State& state) {
  double measured = 0;
  std::size_t frames = 0;
  for (auto _ : state) {
    state.PauseTiming();
    link::Line line = link::MakeLine(link::ParsePortSpec("sim:0@9600"));
    link::Link link(*line.transport, *line.clock);
    link.OpenPort();
    params::DeviceParams device = ShowPreset();
    presets::PresetView view;
    const presets::PresetTransfer transfer =
        presets::ApplyPreset(device, view, presets::TransferFlags::PresetFileLoad());
    state.ResumeTiming();

    const auto start = std::chrono::steady_clock::now();
    const presets::TransferOutcome outcome = presets::SendPresetTransfer(link, 0, transfer);
    measured += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();

    if (outcome.end != presets::TransferEnd::Completed) state.SkipWithError("transfer failed");
    frames = static_cast<std::size_t>(line.simulator->Device(0).FramesHandled());
  }
  const double bound =
      static_cast<double>(frames) * kBitsPerExchange / kBaud + kStatedPausesSeconds;
  const double perPush = measured / static_cast<double>(state.iterations());
  state.counters["frames"] = static_cast<double>(frames);
  state.counters["bound_s"] = bound;
  state.counters["measured_s"] = perPush;
  state.counters["ratio"] = perPush / bound;
}
BENCHMARK(BM_PresetPushAt9600)->Iterations(1)->UseRealTime()->Unit(benchmark::kSecond);

}  // namespace

BENCHMARK_MAIN();
