#include "graph/plot_range.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iterator>

namespace talvex::graph {

namespace {

constexpr double kLowestHz = 20.0;
constexpr double kHighestHz = 20000.0;
constexpr double kPlottedDecades = 3.0;
constexpr double kDbLimit = kMagnitudeRangeDb / 2;  // the whole plot shows -30 .. +30 dB
constexpr double kDegreeLimit = 180.0;
// A tick this close to the shown part (a fraction of the part) still counts as shown: the
// whole plot's edges lie a hair inside +-30 dB and +-180 degrees.
constexpr double kEdgeTolerance = 0.01;

// One side of a range: its start and length held inside 0..1, the length at least 1/kMaxZoom.
void Hold(double& start, double& length) {
  length = std::clamp(length, 1.0 / kMaxZoom, 1.0);
  start = std::clamp(start, 0.0, 1.0 - length);
}

PlotRange Held(PlotRange range) {
  Hold(range.left, range.width);
  Hold(range.top, range.height);
  return range;
}

// The multiples of `step` (in the scale's own unit) between low and high, within +-limit.
std::vector<double> Multiples(double low, double high, double step, double limit) {
  const double tolerance = (high - low) * kEdgeTolerance;
  const double from = std::max(-limit, low - tolerance);
  const double to = std::min(limit, high + tolerance);
  std::vector<double> values;
  for (long long k = static_cast<long long>(std::ceil(from / step));
       static_cast<double>(k) * step <= to; ++k)
    values.push_back(static_cast<double>(k) * step);
  return values;
}

// The first step that divides the shown span into at most `most` parts.
double StepFor(double span, std::initializer_list<double> steps, int most) {
  for (double step : steps)
    if (span / step <= most + 1e-9) return step;
  return *(steps.end() - 1);
}

// Frequencies m x 10^d whose mantissa m is a multiple of `tenths` tenths (10: whole multiples),
// or with oneTwoFive only m = 1, 2, 5; between low and high and within 20 Hz .. 20 kHz.
std::vector<double> DecadeMultiples(double low, double high, int tenths, bool oneTwoFive) {
  const double tolerance = std::pow(high / low, kEdgeTolerance);
  const double from = std::max(kLowestHz, low / tolerance);
  const double to = std::min(kHighestHz, high * tolerance);
  std::vector<double> values;
  for (double unit = 1.0; unit <= kHighestHz; unit *= 10.0) {  // a tenth of the decade
    for (int m = 10; m < 100; m += tenths) {
      if (oneTwoFive && m != 10 && m != 20 && m != 50) continue;
      const double hz = m * unit;
      if (hz >= from && hz <= to) values.push_back(hz);
    }
  }
  return values;
}

std::vector<double> Without(const std::vector<double>& values, const std::vector<double>& taken) {
  std::vector<double> rest;
  std::copy_if(values.begin(), values.end(), std::back_inserter(rest),
               [&](double v) { return std::find(taken.begin(), taken.end(), v) == taken.end(); });
  return rest;
}

std::string Trimmed(double value, int decimals) {
  char text[32];
  std::snprintf(text, sizeof text, "%.*f", decimals, value);
  std::string shown(text);
  if (shown.find('.') != std::string::npos) {
    shown.erase(shown.find_last_not_of('0') + 1);
    if (shown.back() == '.') shown.pop_back();
  }
  return shown;
}

}  // namespace

PlotRange Zoomed(const PlotRange& range, double factorX, double factorY, double atX, double atY) {
  PlotRange zoomed = range;
  const auto zoom = [](double& start, double& length, double factor, double at) {
    const double anchor = start + at * length;
    length = std::clamp(length / factor, 1.0 / kMaxZoom, 1.0);
    start = anchor - at * length;
  };
  zoom(zoomed.left, zoomed.width, factorX, atX);
  zoom(zoomed.top, zoomed.height, factorY, atY);
  return Held(zoomed);
}

PlotRange Panned(const PlotRange& range, double dx, double dy) {
  PlotRange panned = range;
  panned.left += dx * range.width;
  panned.top += dy * range.height;
  return Held(panned);
}

PlotMapping::PlotMapping(const GraphGeometry& geometry, const PlotRange& range)
    : geometry_(geometry),
      range_(Held(range)),
      width_(geometry.GraphWidth()),
      height_(geometry.DbScale() * kMagnitudeRangeDb) {}

double PlotMapping::XOfHz(int hz) const {
  return (geometry_.FrequencyX(hz) - range_.left * width_) / range_.width;
}

double PlotMapping::XOf(double hz) const {
  const double x = std::log10(hz / kLowestHz) * width_ / kPlottedDecades;
  return (x - range_.left * width_) / range_.width;
}

double PlotMapping::MagnitudeY(double db) const {
  return (geometry_.MagnitudeY(static_cast<float>(db)) - range_.top * height_) / range_.height;
}

double PlotMapping::PhaseY(double degrees) const {
  return (geometry_.PhaseY(static_cast<float>(degrees)) - range_.top * height_) / range_.height;
}

double PlotMapping::FrequencyAt(double x) const {
  return kLowestHz * std::pow(10.0, UnzoomedX(x) / width_ * kPlottedDecades);
}

double PlotMapping::DbAt(double y) const {
  return (geometry_.ZeroLine() - UnzoomedY(y)) / geometry_.DbScale();
}

double PlotMapping::DegreesAt(double y) const {
  return (geometry_.ZeroLine() - UnzoomedY(y)) / kPhaseScale;
}

AxisTicks FrequencyTicks(double lowHz, double highHz) {
  const double decades = std::log10(highHz / lowHz);
  AxisTicks ticks;
  if (decades > 1.5) {
    ticks.labelled = DecadeMultiples(lowHz, highHz, 10, true);
    ticks.lines = DecadeMultiples(lowHz, highHz, 10, false);
  } else if (decades > 0.5) {
    ticks.labelled = DecadeMultiples(lowHz, highHz, 10, false);
    ticks.lines = DecadeMultiples(lowHz, highHz, 5, false);
  } else if (decades > 0.25) {
    ticks.labelled = DecadeMultiples(lowHz, highHz, 5, false);
    ticks.lines = DecadeMultiples(lowHz, highHz, 1, false);
  } else {
    ticks.labelled = DecadeMultiples(lowHz, highHz, 1, false);
  }
  ticks.lines = Without(ticks.lines, ticks.labelled);
  return ticks;
}

AxisTicks DbTicks(double bottomDb, double topDb) {
  const double step = StepFor(topDb - bottomDb, {1.0, 2.0, 5.0, 10.0}, 6);
  return {Multiples(bottomDb, topDb, step, kDbLimit), {}};
}

AxisTicks DegreeTicks(double bottomDeg, double topDeg) {
  const double step = StepFor(topDeg - bottomDeg, {5.0, 10.0, 15.0, 30.0, 45.0, 90.0}, 4);
  return {Multiples(bottomDeg, topDeg, step, kDegreeLimit), {}};
}

std::string FrequencyLabel(double hz) {
  if (hz < 1000.0) return Trimmed(hz, 1);
  return Trimmed(hz / 1000.0, 2) + "k";
}

}  // namespace talvex::graph
