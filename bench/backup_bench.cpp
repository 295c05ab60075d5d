// A whole device backup and its restore onto another device, on an in-process simulated line
// paced at 9600 baud (sim:0,1@9600, real time), against the least time the line needs for the
// bytes they exchange: 10 bits a byte, each request 13 bytes, each reply 13 bytes (the live
// image's block 304), plus the whole-preset transfer's stated 10 ms pause.
//
// The source holds a preset in each of its 24 slots (the longest backup: 76 memory reads per
// slot) and is of another system type than the target, so the restore changes the type too.
//   backup_bench --benchmark_repetitions=3 --benchmark_report_aggregates_only=true
#include <benchmark/benchmark.h>

#include <chrono>

#include "link/line.h"
#include "link/link.h"
#include "params/default_image.h"
#include "params/senders.h"
#include "presets/device_backup.h"
#include "protocol/memory_map.h"

namespace {

using namespace talvex;
namespace mem = protocol::memory;

constexpr double kBitsPerByte = 10;
constexpr double kBaud = 9600;
constexpr double kTransferPauseSeconds = 0.010;

struct Bench {
  link::Line line = link::MakeLine(link::ParsePortSpec("sim:0,1@9600"));
  link::Link link{*line.transport, *line.clock};

  Bench() {
    link.OpenPort();
    sim::SimDevice& source = line.simulator->Device(0);
    for (int slot = 0; slot < params::kSlotCount; ++slot) {
      const std::string name = "Preset " + std::to_string(slot) + std::string(8, ' ');
      std::copy_n(name.begin(), mem::kSlotNameLength,
                  source.DeviceMemory().begin() + static_cast<long>(mem::SlotNameAddress(slot)));
      const params::PresetImage& preset = params::DefaultImage[static_cast<std::size_t>(slot % 3)];
      std::copy(preset.begin(), preset.end(),
                source.DeviceMemory().begin() + static_cast<long>(mem::SlotDataAddress(slot)));
      source.DeviceMemory()[mem::kUsedMarks + static_cast<std::size_t>(slot)] = mem::kUsedMark;
    }
    source.Handle(protocol::BuildFrame(0, {protocol::code::kSetSystemType, {2}}));
  }

  // Frames a device has handled on the line (the source's set-up type change was not).
  int LineFrames(int id) const {
    return line.simulator->Device(id).FramesHandled() - (id == 0 ? 1 : 0);
  }

  // Line time of everything a device has handled on the line: a block read's reply is the block.
  double LineSeconds(int id) const {
    const int blocks = line.simulator->Device(id).FramesHandled(protocol::code::kReadBlock);
    const int frames = LineFrames(id);
    const double bytes = 2.0 * protocol::kFrameSize * (frames - blocks) +
                         (protocol::kFrameSize + protocol::kBlockSize) * blocks;
    return bytes * kBitsPerByte / kBaud;
  }
};

void Report(benchmark::State& state, double measured, double bound, int frames) {
  const double perRun = measured / static_cast<double>(state.iterations());
  state.counters["frames"] = frames;
  state.counters["bound_s"] = bound;
  state.counters["measured_s"] = perRun;
  state.counters["ratio"] = perRun / bound;
}

double Seconds(std::chrono::steady_clock::time_point since) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - since).count();
}

void BM_BackupAt9600(benchmark::State& state) {
  double measured = 0;
  double bound = 0;
  int frames = 0;
  for (auto _ : state) {
    state.PauseTiming();
    Bench bench;
    state.ResumeTiming();
    const auto start = std::chrono::steady_clock::now();
    presets::DeviceBackup backup;
    const presets::BackupEnd end = presets::ReadDeviceBackup(bench.link, 0, backup);
    measured += Seconds(start);
    if (end != presets::BackupEnd::Completed || backup.UsedSlots() != params::kSlotCount)
      state.SkipWithError("backup failed");
    bound = bench.LineSeconds(0);
    frames = bench.LineFrames(0);
  }
  Report(state, measured, bound, frames);
}
BENCHMARK(BM_BackupAt9600)->Iterations(1)->UseRealTime()->Unit(benchmark::kSecond);

void BM_RestoreAt9600(benchmark::State& state) {
  double measured = 0;
  double bound = 0;
  int frames = 0;
  for (auto _ : state) {
    state.PauseTiming();
    Bench bench;
    presets::DeviceBackup backup;
    presets::ReadDeviceBackup(bench.link, 0, backup);
    state.ResumeTiming();
    const auto start = std::chrono::steady_clock::now();
    const presets::RestoreOutcome outcome = presets::RestoreDeviceBackup(bench.link, 1, backup);
    measured += Seconds(start);
    if (outcome.end != presets::RestoreEnd::Completed ||
        bench.line.simulator->Device(1).DeviceMemory() !=
            bench.line.simulator->Device(0).DeviceMemory())
      state.SkipWithError("restore failed");
    bound = bench.LineSeconds(1) + kTransferPauseSeconds;
    frames = bench.LineFrames(1);
  }
  Report(state, measured, bound, frames);
}
BENCHMARK(BM_RestoreAt9600)->Iterations(1)->UseRealTime()->Unit(benchmark::kSecond);

}  // namespace

BENCHMARK_MAIN();
