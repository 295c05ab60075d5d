#include "graph/frequency_grid.h"

namespace talvex::graph {

namespace {

constexpr int kFineCount = 790;  // 10..799
constexpr int kCoarseFirst = 820;
constexpr int kCoarseStep = 21;
constexpr int kCoarseLast = 19993;

static_assert(kGridPointCount == 1705);
static_assert(GridHz(kFineCount - 1) == 799 && GridHz(kFineCount) == kCoarseFirst);
static_assert(GridHz(kGridPointCount - 2) == kCoarseLast);
static_assert(GridHz(kGridPointCount - 1) == kMaxHz);

}  // namespace

std::optional<int> GridIndexOfHz(int hz) {
  if (hz >= 10 && hz <= 799) return hz - 10;
  if (hz == kMaxHz) return kGridPointCount - 1;
  if (hz >= kCoarseFirst && hz <= kCoarseLast && (hz - kCoarseFirst) % kCoarseStep == 0)
    return kFineCount + (hz - kCoarseFirst) / kCoarseStep;
  return std::nullopt;
}

}  // namespace talvex::graph
