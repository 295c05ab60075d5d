// The curves an editor's graph draws for a set of channels, taken from its model: shared by the
// editor's graph panel and talvexctl's plot, so both draw the same.
#pragma once

#include <array>

#include "editor/model/device_editor.h"
#include "graph/shown_curves.h"

namespace talvex::editor {

// Each chosen channel's curves as the model's view has them (its own, or an output's whole
// way with "Out + InputB"), with the level the graph adds, and the sum of the outputs the view
// chose, if any. The curves are the model's: they change with it.
graph::ShownCurves ShownCurvesOf(const DeviceEditor& model,
                                 const std::array<bool, params::kChannelCount>& channels);

}  // namespace talvex::editor
