// The frequency grid every response pass walks and every curve is stored on: 10..799 Hz in
// 1 Hz steps, then every 21 Hz from 820 Hz, then exactly 20000 Hz. 800 Hz is never a point:
// the step past 799 adds 1 and then the coarse extra 20. The plot relies on this shape, so it
// stays as it is rather than becoming a logarithmic grid.
#pragma once

#include <array>
#include <optional>

namespace talvex::graph {

inline constexpr float kGridStart = 10.0f;
inline constexpr float kFineStepLimit = 799.0f;
inline constexpr float kCoarseExtraStep = 20.0f;
inline constexpr float kGridEnd = 20000.0f;
inline constexpr int kMaxHz = 20000;

namespace detail {

// Walks the grid the way a pass does, with a single-precision frequency, calling visit(f).
template <typename Visit>
constexpr void WalkGrid(Visit visit) {
  float f = kGridStart;
  while (f <= kGridEnd) {
    if (f > kFineStepLimit && f < kGridEnd) {
      f += kCoarseExtraStep;
      if (f > kGridEnd) f = kGridEnd;
    }
    visit(f);
    f += 1.0f;
  }
}

constexpr int CountGridPoints() {
  int count = 0;
  WalkGrid([&](float) { ++count; });
  return count;
}

}  // namespace detail

inline constexpr int kGridPointCount = detail::CountGridPoints();  // 1705

// The grid frequencies in pass order. Every one is a whole number of hertz.
inline constexpr std::array<float, kGridPointCount> kGridFrequencies = [] {
  std::array<float, kGridPointCount> points{};
  int i = 0;
  detail::WalkGrid([&](float f) { points[static_cast<std::size_t>(i++)] = f; });
  return points;
}();

// Whole hertz of grid point i (the table column the frequency is stored under).
constexpr int GridHz(int i) {
  return static_cast<int>(kGridFrequencies[static_cast<std::size_t>(i)]);
}

// The grid point of a whole-hertz frequency, or nullopt when no point lies there.
std::optional<int> GridIndexOfHz(int hz);

}  // namespace talvex::graph
