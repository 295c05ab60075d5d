// One full paint of an editor's response graph: background, grid, labels and the magnitude and
// phase curves of all eight channels of a preset on which every band, filter and delay works
// (so no curve is a straight line), into an image of the graph's size, offscreen. The argument
// is the display's dots per inch. The axes-only paint shows what the curves themselves cost.
//   graph_paint_bench --benchmark_repetitions=10 --benchmark_report_aggregates_only=true
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QFontMetricsF>
#include <QImage>
#include <QPainter>
#include <array>
#include <cmath>
#include <memory>

#include "busy_settings.h"
#include "editor/widgets/response_graph.h"
#include "graph/output_response.h"
#include "graph/response_tables.h"
#include "plot/graph_painter.h"

namespace talvex::editor {
namespace {

QImage GraphImage(const ResponseGraph& graph, const graph::GraphGeometry& geometry, int dpi) {
  QImage probe(1, 1, QImage::Format_ARGB32_Premultiplied);
  const int dotsPerMeter = static_cast<int>(std::lround(dpi / 0.0254));
  probe.setDotsPerMeterX(dotsPerMeter);
  probe.setDotsPerMeterY(dotsPerMeter);
  QImage image(LayoutGraph(geometry, QFontMetricsF(graph.font(), &probe)).size,
               QImage::Format_ARGB32_Premultiplied);
  image.setDotsPerMeterX(dotsPerMeter);
  image.setDotsPerMeterY(dotsPerMeter);
  return image;
}

void PaintGraph(benchmark::State& state, bool withCurves) {
  const int dpi = static_cast<int>(state.range(0));
  const auto tables = std::make_unique<graph::ResponseTables>();
  tables->ComputeAll(graph::BusySettings());
  GraphCurves curves;
  for (int channel = 0; channel < graph::kChannelCount && withCurves; ++channel)
    curves.Show(*tables, channel, static_cast<float>(channel - 3));
  ResponseGraph graph;
  graph.SetCurves(curves);
  const graph::GraphGeometry geometry(dpi);
  QImage image = GraphImage(graph, geometry, dpi);
  for (auto _ : state) {
    QPainter painter(&image);
    graph.Paint(painter, geometry);
    painter.end();
    benchmark::DoNotOptimize(image.constBits());
  }
  state.counters["width"] = image.width();
  state.counters["height"] = image.height();
}

void BM_GraphPaint8Magnitude8Phase(benchmark::State& state) {
  PaintGraph(state, true);
}
void BM_GraphPaintAxesOnly(benchmark::State& state) {
  PaintGraph(state, false);
}

// The editor's graph while a band is dragged: Out 1 .. Out 6 as whole outputs, In A, the sum
// of Out 1 and Out 3 (thick magnitude, dashed phase), seven handles and the cursor's reading.
void BM_GraphPaintWholeOutputsSumHandlesCursor(benchmark::State& state) {
  const int dpi = static_cast<int>(state.range(0));
  const graph::ResponseSettings settings = graph::BusySettings();
  const auto tables = std::make_unique<graph::ResponseTables>();
  tables->ComputeAll(settings);
  auto wholes = std::make_unique<std::array<graph::ResponseCurves, graph::kOutputCount>>();
  for (int output = 0; output < graph::kOutputCount; ++output)
    graph::ComputeWholeOutput(*tables, settings, output + 2,
                              (*wholes)[static_cast<std::size_t>(output)]);
  auto sum = std::make_unique<graph::ResponseCurves>();
  const graph::ResponseCurves* parts[] = {&(*wholes)[0], &(*wholes)[2]};
  graph::ComputeAcousticSum(parts, *sum);
  plot::GraphScene scene;
  scene.curves.Show(*tables, 0);
  for (int output = 0; output < graph::kOutputCount; ++output) {
    const auto at = static_cast<std::size_t>(output + 2);
    scene.curves.magnitude[at] = &(*wholes)[at - 2].magnitude;
    scene.curves.phase[at] = &(*wholes)[at - 2].phase;
  }
  scene.curves.sumMagnitude = &sum->magnitude;
  scene.curves.sumPhase = &sum->phase;
  scene.cursorHz = 1500;
  for (int k = 0; k < 7; ++k)
    scene.handles.push_back({40.0 * (1 << k), -6.0 + 2 * k, 4, k == 3, k == 2});
  ResponseGraph graph;
  const graph::GraphGeometry geometry(dpi);
  QImage image = GraphImage(graph, geometry, dpi);
  const plot::GraphPainter painter;
  for (auto _ : state) {
    QPainter on(&image);
    painter.Paint(on, geometry, scene, graph.font(), graph.palette());
    on.end();
    benchmark::DoNotOptimize(image.constBits());
  }
}

BENCHMARK(BM_GraphPaintWholeOutputsSumHandlesCursor)
    ->Arg(96)
    ->Arg(120)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_GraphPaint8Magnitude8Phase)->Arg(96)->Arg(120)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_GraphPaintAxesOnly)->Arg(96)->Arg(120)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace talvex::editor

int main(int argc, char** argv) {
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication app(argc, argv);
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
