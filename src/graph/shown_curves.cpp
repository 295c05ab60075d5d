#include "graph/shown_curves.h"

#include <algorithm>
#include <cstdio>
#include <ostream>
#include <string_view>

#include "graph/frequency_grid.h"

namespace talvex::graph {

namespace {

// Two decimals, and never "-0.00".
std::string Decimal(float value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.2f", static_cast<double>(value));
  const std::string_view shown(text);
  if (shown == "-0.00") return "0.00";
  return std::string(shown);
}

std::string CsvField(const std::string& text) {
  if (text.find_first_of(",\"\n") == std::string::npos) return text;
  std::string quoted = "\"";
  for (char c : text) {
    if (c == '"') quoted += '"';
    quoted += c;
  }
  return quoted + '"';
}

std::string ColumnName(const std::string& name, const char* quantity) {
  return CsvField(name.empty() ? quantity : name + " " + quantity);
}

}  // namespace

void ShownCurves::Show(const ResponseTables& tables, int channel, float level) {
  const auto at = static_cast<std::size_t>(channel);
  magnitude.at(at) = &tables.ChannelMagnitude(channel);
  phase.at(at) = &tables.ChannelPhase(channel);
  levelDb.at(at) = level;
}

bool ShownCurves::Shows(int channel) const {
  const auto at = static_cast<std::size_t>(channel);
  return magnitude.at(at) && phase.at(at);
}

int NearestGridPoint(double hz) {
  const auto& grid = kGridFrequencies;
  auto above = std::lower_bound(grid.begin(), grid.end(), static_cast<float>(hz));
  if (above == grid.end()) --above;
  if (above != grid.begin() && hz - *(above - 1) < *above - hz) --above;
  return static_cast<int>(above - grid.begin());
}

CursorReading ReadAt(const ShownCurves& curves, double hz) {
  const int point = NearestGridPoint(hz);
  CursorReading reading;
  reading.hz = GridHz(point);
  for (int channel = 0; channel < kChannelCount; ++channel) {
    const auto at = static_cast<std::size_t>(channel);
    if (curves.Shows(channel))
      reading.channels[at] = CurveReading{(*curves.magnitude[at])[point] + curves.levelDb[at],
                                          (*curves.phase[at])[point]};
  }
  if (curves.ShowsSum())
    reading.sum = CurveReading{(*curves.sumMagnitude)[point], (*curves.sumPhase)[point]};
  return reading;
}

void WriteCurvesCsv(std::ostream& out, const std::vector<CsvCurve>& curves) {
  out << "hz";
  for (const CsvCurve& curve : curves)
    out << ',' << ColumnName(curve.name, "magnitude_db") << ','
        << ColumnName(curve.name, "phase_deg");
  out << '\n';
  for (int i = 0; i < kGridPointCount; ++i) {
    out << GridHz(i);
    for (const CsvCurve& curve : curves) {
      const float magnitude = curve.magnitude ? (*curve.magnitude)[i] + curve.levelDb : 0.0f;
      out << ',' << Decimal(magnitude) << ',' << Decimal((*curve.phase)[i]);
    }
    out << '\n';
  }
}

std::vector<CsvCurve> CsvOfShown(const ShownCurves& curves,
                                 const std::array<std::string, kChannelCount>& names) {
  std::vector<CsvCurve> columns;
  for (int channel = 0; channel < kChannelCount; ++channel) {
    const auto at = static_cast<std::size_t>(channel);
    if (curves.Shows(channel))
      columns.push_back({names[at], curves.magnitude[at], curves.phase[at], curves.levelDb[at]});
  }
  if (curves.ShowsSum()) columns.push_back({kSumName, curves.sumMagnitude, curves.sumPhase, 0});
  return columns;
}

}  // namespace talvex::graph
