// What a response graph shows, apart from how it is drawn: each channel's magnitude and phase
// curve (or none), the level added to each magnitude, and the acoustic sum of chosen outputs.
// The cursor's reading and the CSV of the shown curves are taken from it, so the graph, its
// export and talvexctl read the same values.
#pragma once

#include <array>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "graph/curve.h"
#include "graph/response_tables.h"

namespace talvex::graph {

// The curves belong to whoever computed them and must outlive this (or be replaced first).
// levelDb is each channel's level, added to its magnitude curve (a channel's own curve holds
// the filters' shape without it; a whole output holds its levels already: level 0).
struct ShownCurves {
  std::array<const Curve*, kChannelCount> magnitude{};
  std::array<const Curve*, kChannelCount> phase{};
  std::array<float, kChannelCount> levelDb{};
  // The acoustic sum (output_response.h), levels included; null when no sum is shown.
  const Curve* sumMagnitude = nullptr;
  const Curve* sumPhase = nullptr;

  // Shows `channel` with its own curves from `tables`.
  void Show(const ResponseTables& tables, int channel, float level = 0.0f);
  bool Shows(int channel) const;
  bool ShowsSum() const { return sumMagnitude && sumPhase; }
};

// The grid point whose frequency lies nearest `hz` (held to 10 Hz .. 20 kHz).
int NearestGridPoint(double hz);

struct CurveReading {
  float magnitudeDb = 0;  // level included
  float phaseDeg = 0;
};

// Every shown curve's values at the grid point nearest a frequency.
struct CursorReading {
  int hz = 0;  // the grid frequency read
  std::array<std::optional<CurveReading>, kChannelCount> channels{};
  std::optional<CurveReading> sum;
};
CursorReading ReadAt(const ShownCurves& curves, double hz);

// One curve of a CSV table: its name heads its two columns ("Out 1 magnitude_db"); a curve
// without a name gives "magnitude_db" and "phase_deg". A null magnitude is 0 dB at every point
// (a delay's).
struct CsvCurve {
  std::string name;
  const Curve* magnitude = nullptr;
  const Curve* phase = nullptr;
  float levelDb = 0;
};

// A table with a row for each of the 1705 grid points: "hz", then each curve's magnitude (its
// level added) and phase, with two decimals and never "-0.00". Names with a comma or a quote
// are quoted.
void WriteCurvesCsv(std::ostream& out, const std::vector<CsvCurve>& curves);

// The shown curves as CSV columns, in channel order, then the sum; `names` gives each
// channel's column name.
std::vector<CsvCurve> CsvOfShown(const ShownCurves& curves,
                                 const std::array<std::string, kChannelCount>& names);
inline constexpr const char* kSumName = "Sum";

}  // namespace talvex::graph
