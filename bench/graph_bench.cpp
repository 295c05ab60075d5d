// The response maths as an editor uses it: one band edited while its slider moves, one
// crossover filter, and a whole editor (52 bands, 12 crossover filters, 8 channels) as when a
// window opens or a preset is applied. Every element is non-flat, so no pass is skipped.
#include <benchmark/benchmark.h>

#include <array>
#include <memory>

#include "busy_settings.h"
#include "graph/output_response.h"
#include "graph/response_tables.h"

namespace talvex::graph {
namespace {

void EditOneBand(benchmark::State& state, int band) {
  const ResponseSettings settings = BusySettings();
  const auto tables = std::make_unique<ResponseTables>();
  tables->ComputeAll(settings);
  for (auto _ : state) {
    tables->ComputeEqBandResponse(settings, band);
    benchmark::DoNotOptimize(tables->ChannelPhase(ChannelOfBand(band))[0]);
  }
}

// Out 1: band 11 is a bell, band 10 a low shelf (the dearer model, unwrapped).
void BM_OneBellBandWithChannelSums(benchmark::State& state) {
  EditOneBand(state, 11);
}
void BM_OneShelfBandWithChannelSums(benchmark::State& state) {
  EditOneBand(state, 10);
}

void BM_OneCrossoverFilterWithChannelSums(benchmark::State& state) {
  const ResponseSettings settings = BusySettings();
  const auto tables = std::make_unique<ResponseTables>();
  tables->ComputeAll(settings);
  for (auto _ : state) {
    tables->ComputeCrossoverResponse(settings, 0);  // a 4th-order Bessel: two sections
    benchmark::DoNotOptimize(tables->ChannelPhase(2)[0]);
  }
}

void BM_WholeEditor(benchmark::State& state) {
  const ResponseSettings settings = BusySettings();
  const auto tables = std::make_unique<ResponseTables>();
  for (auto _ : state) {
    tables->ComputeAll(settings);
    benchmark::DoNotOptimize(tables->ChannelPhase(7)[0]);
  }
  state.counters["tables_11_editors_MiB"] =
      11.0 * static_cast<double>(sizeof(ResponseTables)) / (1024.0 * 1024.0);
}

// The same whole editor on a factory preset: flat bells, no crossover filter, the common case
// of an editor opening on a fresh device.
void BM_WholeEditorFactoryPreset(benchmark::State& state) {
  const ResponseSettings settings;
  const auto tables = std::make_unique<ResponseTables>();
  for (auto _ : state) {
    tables->ComputeAll(settings);
    benchmark::DoNotOptimize(tables->ChannelPhase(7)[0]);
  }
}

// What the editor recomputes after an edit while outputs are drawn as whole outputs and a sum
// is shown: the six whole outputs from their inputs, and the acoustic sum of two of them.
void WholeOutputsAndSum(const ResponseTables& tables, const ResponseSettings& settings,
                        std::array<ResponseCurves, kOutputCount>& wholes, ResponseCurves& sum) {
  for (int output = 0; output < kOutputCount; ++output)
    ComputeWholeOutput(tables, settings, output + 2, wholes[static_cast<std::size_t>(output)]);
  const ResponseCurves* parts[] = {&wholes[0], &wholes[2]};  // Out 1 and Out 3
  ComputeAcousticSum(parts, sum);
}

void BM_WholeOutputsAndTwoWaySum(benchmark::State& state) {
  const ResponseSettings settings = BusySettings();
  const auto tables = std::make_unique<ResponseTables>();
  tables->ComputeAll(settings);
  auto wholes = std::make_unique<std::array<ResponseCurves, kOutputCount>>();
  auto sum = std::make_unique<ResponseCurves>();
  for (auto _ : state) {
    WholeOutputsAndSum(*tables, settings, *wholes, *sum);
    benchmark::DoNotOptimize(sum->phase[0]);
  }
}

// One step of a band dragged on the graph with the sum shown: the band, its channel's sums, the
// whole outputs and the sum.
void BM_DraggedBandWithWholeOutputsAndSum(benchmark::State& state) {
  const ResponseSettings settings = BusySettings();
  const auto tables = std::make_unique<ResponseTables>();
  tables->ComputeAll(settings);
  auto wholes = std::make_unique<std::array<ResponseCurves, kOutputCount>>();
  auto sum = std::make_unique<ResponseCurves>();
  for (auto _ : state) {
    tables->ComputeEqBandResponse(settings, 26);  // Out 3 "EQ 3", a bell
    WholeOutputsAndSum(*tables, settings, *wholes, *sum);
    benchmark::DoNotOptimize(sum->phase[0]);
  }
}

BENCHMARK(BM_WholeOutputsAndTwoWaySum)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_DraggedBandWithWholeOutputsAndSum)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_OneBellBandWithChannelSums)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_OneShelfBandWithChannelSums)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_OneCrossoverFilterWithChannelSums)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_WholeEditor)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_WholeEditorFactoryPreset)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace talvex::graph
