// The editor's A/B switch on an in-process simulated device paced at 9600 baud (sim:0@9600,
// real time): only the whole-preset transfer's commands that differ between the two settings go
// out (presets/settings_switch.h). Measured for one changed band and for a whole different
// preset, against a full push of the same setting, and against the least time the line needs
// for the commands sent (a 13-byte frame and a 13-byte reply of 10 bits a byte each).
//
// Each repetition switches back and forth; a switch is timed from its first command out to its
// last reply in, as the editor's status line reports it.
//   ab_switch_bench --benchmark_repetitions=5 --benchmark_report_aggregates_only=true
#include <benchmark/benchmark.h>

#include <chrono>

#include "link/line.h"
#include "link/link.h"
#include "params/senders.h"
#include "presets/preset_transfer.h"
#include "presets/settings_switch.h"

namespace {

using namespace talvex;

constexpr double kSecondsPerExchange = (13 + 13) * 10 / 9600.0;

params::DeviceParams SettingA() {
  params::DeviceParams device = params::DeviceParams::FromDefault(1);
  params::Senders senders(device);
  senders.EqBand(12, {250, 20, 6});
  senders.Level(6, -4.5);
  return device;
}

params::DeviceParams OneBandChanged() {
  params::DeviceParams device = SettingA();
  params::Senders(device).EqBand(30, {800, 20, -6});
  return device;
}

// Every channel's level, delay and bands moved, the crossovers, limiters and names too.
params::DeviceParams WholeOtherPreset() {
  params::DeviceParams device = params::DeviceParams::FromDefault(1);
  params::Senders senders(device);
  for (int channel = 0; channel < params::kChannelCount; ++channel) {
    senders.Level(channel, -1.0 - channel);
    senders.Delay(channel, {channel, 3});
    senders.Polarity(channel, channel % 2 == 1);
  }
  for (int band = 0; band < params::kBandCount; ++band)
    senders.EqBand(band, {100.0 + 50 * band, 8 + band % 40, -6.0 + band % 12});
  for (int filter = 0; filter < params::kCrossoverCount; ++filter)
    senders.Crossover(filter, filter % 2 == 0 ? 80 : 12500, 2 + filter % 5);
  for (int output = params::kInputCount; output < params::kChannelCount; ++output) {
    senders.OutputName(output, "Way " + std::to_string(output));
    senders.LimiterThreshold(output, 10);
  }
  return device;
}

struct PacedLine {
  link::Line line = link::MakeLine(link::ParsePortSpec("sim:0@9600"));
  link::Link link{*line.transport, *line.clock};
  PacedLine() { link.OpenPort(); }
};

void Push(link::Link& link, params::DeviceParams setting) {
  presets::PresetView view;
  presets::SendPresetTransfer(
      link, 0, presets::ApplyPreset(setting, view, presets::TransferFlags::PresetFileLoad()));
}

void Report(benchmark::State& state, std::size_t commands, double seconds, int switches) {
  const double perSwitch = seconds / switches;
  const double bound = static_cast<double>(commands) * kSecondsPerExchange;
  state.counters["commands"] = static_cast<double>(commands);
  state.counters["bound_ms"] = bound * 1000;
  state.counters["measured_ms"] = perSwitch * 1000;
  state.counters["ratio"] = perSwitch / bound;
  state.counters["of_full_push"] = perSwitch / (155 * kSecondsPerExchange + 0.010);
}

void SwitchBetween(benchmark::State& state, const params::DeviceParams& a,
                   const params::DeviceParams& b) {
  PacedLine paced;
  paced.line.simulator->Device(0).Handle(
      protocol::BuildFrame(0, {protocol::code::kSetSystemType, {1}}));
  Push(paced.link, a);
  const presets::SettingsSwitch toB = presets::PlanSettingsSwitch(a, b);
  const presets::SettingsSwitch toA = presets::PlanSettingsSwitch(b, a);
  double seconds = 0;
  int switches = 0;
  for (auto _ : state) {
    for (const presets::SettingsSwitch* plan : {&toB, &toA}) {
      const auto start = std::chrono::steady_clock::now();
      if (presets::SendSettingsSwitch(paced.link, 0, *plan).end != presets::ListEnd::Completed)
        state.SkipWithError("switch failed");
      seconds += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
      ++switches;
    }
  }
  Report(state, toB.Size(), seconds, switches);
}

void BM_AbSwitchOneBandAt9600(benchmark::State& state) {
  SwitchBetween(state, SettingA(), OneBandChanged());
}
BENCHMARK(BM_AbSwitchOneBandAt9600)->Iterations(20)->UseRealTime()->Unit(benchmark::kMillisecond);

void BM_AbSwitchWholePresetAt9600(benchmark::State& state) {
  SwitchBetween(state, SettingA(), WholeOtherPreset());
}
BENCHMARK(BM_AbSwitchWholePresetAt9600)
    ->Iterations(2)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

// What the same change costs as a full push: every command of the transfer.
void BM_FullPushAt9600(benchmark::State& state) {
  PacedLine paced;
  paced.line.simulator->Device(0).Handle(
      protocol::BuildFrame(0, {protocol::code::kSetSystemType, {1}}));
  double seconds = 0;
  int pushes = 0;
  for (auto _ : state) {
    const auto start = std::chrono::steady_clock::now();
    Push(paced.link, OneBandChanged());
    seconds += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    ++pushes;
  }
  Report(state, 155, seconds, pushes);
}
BENCHMARK(BM_FullPushAt9600)->Iterations(1)->UseRealTime()->Unit(benchmark::kMillisecond);

// The interface thread's share: both settings walked through the transfer and compared.
void BM_PlanSwitch(benchmark::State& state) {
  const params::DeviceParams a = SettingA();
  const params::DeviceParams b = WholeOtherPreset();
  for (auto _ : state)
    benchmark::DoNotOptimize(presets::PlanSettingsSwitch(a, b));
}
BENCHMARK(BM_PlanSwitch)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
