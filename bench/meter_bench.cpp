// One meter reading (command 18) as the editor's meter timer will run it on the link worker: on
// a simulated device paced at 9600 baud (real time), against the least time the line needs (a
// 13-byte frame and a 13-byte reply of 10 bits a byte, 27.08 ms): the longest an edit can wait
// behind one meter exchange. And the program's own share, on the virtual clock.
#include <benchmark/benchmark.h>

#include "link/line.h"
#include "presets/meters.h"

namespace {

using namespace talvex;

constexpr double kLineSeconds = (13 + 13) * 10 / 9600.0;

void Read(benchmark::State& state, const char* port) {
  link::Line line = link::MakeLine(link::ParsePortSpec(port));
  link::Link link(*line.transport, *line.clock);
  link.OpenPort();
  for (auto _ : state)
    if (!presets::ReadMeters(link, 0)) state.SkipWithError("no meter reply");
}

// The Time column is the wall time of one reading; bound_ms the line's share of it.
void BM_MeterReadAt9600(benchmark::State& state) {
  Read(state, "sim:0@9600");
  state.counters["bound_ms"] = kLineSeconds * 1000;
}
BENCHMARK(BM_MeterReadAt9600)->Iterations(20)->UseRealTime()->Unit(benchmark::kMillisecond);

void BM_MeterReadInProcess(benchmark::State& state) {
  Read(state, "sim:0");
}
BENCHMARK(BM_MeterReadInProcess)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
