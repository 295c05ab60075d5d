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
#include <cmath>
#include <memory>

#include "busy_settings.h"
#include "editor/widgets/response_graph.h"
#include "graph/response_tables.h"

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
