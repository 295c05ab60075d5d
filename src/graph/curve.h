// One response curve: a single-precision value at each grid point. Values exist only at grid
// points (1705 of them), which keeps eleven editors' tables near 11 MB where a column for
// every whole hertz would cost about 127 MB; a lookup by whole hertz still answers for every
// grid frequency.
#pragma once

#include <array>
#include <cstddef>

#include "graph/frequency_grid.h"

namespace talvex::graph {

class Curve {
 public:
  using Values = std::array<float, kGridPointCount>;

  // By grid point 0..1704 (unchecked, for the passes and the plot's walk).
  float& operator[](int point) { return values_[static_cast<std::size_t>(point)]; }
  float operator[](int point) const { return values_[static_cast<std::size_t>(point)]; }

  // By whole hertz. A frequency that is no grid point (800 Hz, 1000 Hz, anything outside
  // 10..20000) holds no value and throws IndexError rather than answering with a neighbour.
  float AtHz(int hz) const;

  const Values& Points() const { return values_; }
  Values& Points() { return values_; }

 private:
  Values values_{};
};

}  // namespace talvex::graph
