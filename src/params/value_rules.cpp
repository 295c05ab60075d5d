#include "params/value_rules.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>

#include "params/frequency.h"
#include "params/image_layout.h"
#include "protocol/frame.h"

namespace talvex::params {

namespace {

// Typed values are decimal; a value that is exactly on a grid point or exactly halfway in
// decimal can miss it by the last bits of a double. Closer than this (in grid steps) counts.
constexpr double kStepTolerance = 1e-9;

std::string_view Trim(std::string_view text) {
  while (!text.empty() && text.front() == ' ')
    text.remove_prefix(1);
  while (!text.empty() && text.back() == ' ')
    text.remove_suffix(1);
  return text;
}

// Grid point i, computed from whole numbers so that 0.2 dB is the double nearest 0.2.
double GridPoint(const ValueRule& rule, int index) {
  return (rule.lo * rule.stepsPerUnit + index) / rule.stepsPerUnit;
}

int GridMaxIndex(const ValueRule& rule) {
  return static_cast<int>(std::lround((rule.hi - rule.lo) * rule.stepsPerUnit));
}

}  // namespace

std::optional<double> ParseNumber(std::string_view text) {
  text = Trim(text);
  std::string plain;
  std::size_t at = 0;
  if (at < text.size() && (text[at] == '-' || text[at] == '+')) {
    if (text[at] == '-') plain += '-';
    ++at;
  }
  bool digits = false;
  bool mark = false;
  for (; at < text.size(); ++at) {
    const char c = text[at];
    if (c >= '0' && c <= '9') {
      digits = true;
      plain += c;
    } else if ((c == '.' || c == ',') && !mark) {
      mark = true;
      plain += '.';
    } else {
      return std::nullopt;
    }
  }
  if (!digits) return std::nullopt;
  if (plain.back() == '.') plain.pop_back();
  double value = 0;
  const auto [end, error] = std::from_chars(plain.data(), plain.data() + plain.size(), value);
  if (error != std::errc() || end != plain.data() + plain.size()) return std::nullopt;
  return value;
}

std::string FormatNumber(double value, int decimals, DecimalMark mark) {
  char buffer[64];
  std::snprintf(buffer, sizeof buffer, "%.*f", decimals, value);
  std::string text = buffer;
  if (text.find('.') != std::string::npos) {
    while (text.back() == '0')
      text.pop_back();
    if (text.back() == '.') text.pop_back();
  }
  if (text == "-0") text = "0";
  std::replace(text.begin(), text.end(), '.', MarkChar(mark));
  return text;
}

int SnapToGrid(double value, double lo, int stepsPerUnit, int maxIndex) {
  const double steps = (value - lo) * stepsPerUnit;
  const double lower = std::floor(steps);
  int index = static_cast<int>(lower);
  if (steps - lower > 0.5 + kStepTolerance) ++index;  // above the midpoint: the upper point
  return std::clamp(index, 0, maxIndex);
}

int SnapToTable(double value, std::span<const double> ascending) {
  for (std::size_t i = 0; i < ascending.size(); ++i) {
    const double entry = ascending[i];
    if (entry < value) continue;
    if (i == 0) return 0;
    const double gap = entry - ascending[i - 1];
    const double tolerance = gap * kStepTolerance;
    if (entry - value <= tolerance) return static_cast<int>(i);
    const double midpoint = ascending[i - 1] + gap / 2;
    return static_cast<int>(value <= midpoint + tolerance ? i - 1 : i);
  }
  return static_cast<int>(ascending.size()) - 1;
}

const ValueRule& LevelRule(int channel) {
  CheckIndex(channel, kChannelCount - 1, "channel");
  return channel < kInputCount ? rule::kInputLevel : rule::kOutputLevel;
}

int MaxPosition(const ValueRule& rule) {
  switch (rule.kind) {
    case ValueRule::Kind::Grid:
      return GridMaxIndex(rule);
    case ValueRule::Kind::Table:
      return rule.firstIndex + static_cast<int>(rule.table.size()) - 1;
    case ValueRule::Kind::Frequency:
      return static_cast<int>(kFrequencyCount) - 1;
    case ValueRule::Kind::AsTyped:
      return static_cast<int>(std::lround(rule.hi)) + rule.positionOffset;
  }
  return 0;
}

RuledValue ApplyRule(const ValueRule& rule, double value) {
  RuledValue result;
  if (std::isnan(value)) {
    result.error = rule.badText;
    return result;
  }
  result.clamped = value < rule.lo || value > rule.hi;
  value = std::clamp(value, rule.lo, rule.hi);
  switch (rule.kind) {
    case ValueRule::Kind::Grid: {
      const int index = SnapToGrid(value, rule.lo, rule.stepsPerUnit, GridMaxIndex(rule));
      result.position = GridMaxIndex(rule) - index;
      result.value = GridPoint(rule, index);
      break;
    }
    case ValueRule::Kind::Table: {
      const int index = SnapToTable(value, rule.table);
      result.position = rule.firstIndex + index;
      result.value = rule.table[static_cast<std::size_t>(index)];
      break;
    }
    case ValueRule::Kind::Frequency:
      result.position = FrequencyToByte(value);
      result.value = FrequencyTable[static_cast<std::size_t>(result.position)];
      break;
    case ValueRule::Kind::AsTyped:
      result.position = static_cast<int>(std::lround(value)) + rule.positionOffset;
      result.value = value;
      break;
  }
  return result;
}

RuledValue CommitText(const ValueRule& rule, std::string_view text) {
  const std::optional<double> number = ParseNumber(text);
  if (!number) {
    RuledValue bad;
    bad.error = rule.badText;
    return bad;
  }
  return ApplyRule(rule, *number);
}

double ValueAtPosition(const ValueRule& rule, int position) {
  CheckIndex(position - (rule.kind == ValueRule::Kind::Table ? rule.firstIndex : 0),
             MaxPosition(rule) - (rule.kind == ValueRule::Kind::Table ? rule.firstIndex : 0),
             "control position");
  switch (rule.kind) {
    case ValueRule::Kind::Grid:
      return GridPoint(rule, GridMaxIndex(rule) - position);
    case ValueRule::Kind::Table:
      return rule.table[static_cast<std::size_t>(position - rule.firstIndex)];
    case ValueRule::Kind::Frequency:
      return FrequencyTable[static_cast<std::size_t>(position)];
    case ValueRule::Kind::AsTyped:
      return position - rule.positionOffset;
  }
  return 0;
}

std::string FormatRuled(const ValueRule& rule, double value, DecimalMark mark) {
  return FormatNumber(value, rule.decimals, mark);
}

DelaySteps DelaySteps::FromSamples(int samples) {
  CheckIndex(samples, kMaxDelaySamples, "delay in samples");
  return {samples / kFineStepsPerCoarse, samples % kFineStepsPerCoarse};
}

double SpeedOfSound(int temperaturePosition) {
  return 331.3 + 0.6 * (temperaturePosition - 20);
}

double ShownDelay(DelaySteps steps, int unit, int temperaturePosition) {
  const double metres = steps.coarse * kCoarseStepMetres + steps.fine * kFineStepMetres;
  const double shown =
      unit == kDelayUnitMs ? metres / (SpeedOfSound(temperaturePosition) / 1000) : metres;
  // Cut to thousandths. The hair keeps a value that is exactly on a thousandth in decimal
  // from falling to the one below through binary rounding.
  return std::floor(shown * 1000 + 1e-7) / 1000;
}

RuledDelay ApplyDelayRule(double value, int unit, int temperaturePosition) {
  RuledDelay result;
  if (std::isnan(value)) {
    result.error = kIncorrectValue;
    return result;
  }
  const auto shownAt = [&](int samples) {
    return ShownDelay(DelaySteps::FromSamples(samples), unit, temperaturePosition);
  };
  const double largest = shownAt(kMaxDelaySamples);
  result.clamped = value < 0 || value > largest;
  value = std::clamp(value, 0.0, largest);
  // Shown values grow with the sample count (47 fine steps stay below one coarse step), so
  // the upward scan is a search for the first count that reaches the value.
  int low = 0;
  int high = kMaxDelaySamples;
  while (low < high) {
    const int middle = low + (high - low) / 2;
    if (shownAt(middle) + 1e-9 >= value)
      high = middle;
    else
      low = middle + 1;
  }
  result.steps = DelaySteps::FromSamples(low);
  result.value = shownAt(low);
  return result;
}

RuledDelay CommitDelayText(std::string_view text, int unit, int temperaturePosition) {
  const std::optional<double> number = ParseNumber(text);
  if (!number) {
    RuledDelay bad;
    bad.error = kIncorrectValue;
    return bad;
  }
  return ApplyDelayRule(*number, unit, temperaturePosition);
}

}  // namespace talvex::params
