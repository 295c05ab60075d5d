#include "graph/graph_geometry.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "graph/frequency_grid.h"
#include "graph/response_math.h"
#include "protocol/frame.h"

namespace talvex::graph {

namespace {

constexpr float kPixelsAt96Dpi = 575.0f;  // three decades
constexpr float kZeroLineAt96Dpi = 95.4f;
constexpr float kScaleHeightAt96Dpi = 191.0f;

float DisplayScaleOf(int logicalDpi) {
  if (logicalDpi <= 0) throw std::invalid_argument("logical pixels per inch must be positive");
  return static_cast<float>((72.0 / logicalDpi) / 0.75);
}

// The plot spans 20 Hz .. 20 kHz, three decades.
constexpr double kLowestPlottedHz = 20.0;
constexpr double kPlottedDecades = 3.0;

}  // namespace

GraphGeometry::GraphGeometry(int logicalDpi)
    : displayScale_(DisplayScaleOf(logicalDpi)),
      graphWidth_(kPixelsAt96Dpi / displayScale_),
      zeroLine_(kZeroLineAt96Dpi / displayScale_),
      dbScale_(kScaleHeightAt96Dpi / displayScale_ / kMagnitudeRangeDb),
      frequencyX_(static_cast<std::size_t>(kMaxHz) + 1, 0.0f) {
  for (int f = 10; f <= kMaxHz; ++f) {
    frequencyX_[static_cast<std::size_t>(f)] =
        f < kLowestPlottedHz
            ? -1.0f
            : static_cast<float>(Log10(f / kLowestPlottedHz) * graphWidth_ / kPlottedDecades);
  }
}

double GraphGeometry::FrequencyAtX(double x) const {
  const double decades =
      std::clamp(x, 0.0, static_cast<double>(graphWidth_)) / graphWidth_ * kPlottedDecades;
  return kLowestPlottedHz * std::pow(10.0, decades);
}

float GraphGeometry::FrequencyX(int hz) const {
  CheckIndex(hz, kMaxHz, "frequency");
  return frequencyX_[static_cast<std::size_t>(hz)];
}

}  // namespace talvex::graph
