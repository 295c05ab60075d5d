#include "editor/model/shown_graph.h"

namespace talvex::editor {

graph::ShownCurves ShownCurvesOf(const DeviceEditor& model,
                                 const std::array<bool, params::kChannelCount>& channels) {
  graph::ShownCurves curves;
  for (int channel = 0; channel < params::kChannelCount; ++channel) {
    const auto at = static_cast<std::size_t>(channel);
    if (!channels[at]) continue;
    curves.magnitude[at] = &model.Magnitude(channel);
    curves.phase[at] = &model.Phase(channel);
    curves.levelDb[at] = model.LevelDb(channel);
  }
  if (const graph::ResponseCurves* sum = model.Sum()) {
    curves.sumMagnitude = &sum->magnitude;
    curves.sumPhase = &sum->phase;
  }
  return curves;
}

}  // namespace talvex::editor
