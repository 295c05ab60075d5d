// The value rules of every typed or slid parameter, in one place for the editor and talvexctl:
// reading a number as typed, the range (values outside are clamped, never refused), the grid
// and its snap (a value exactly halfway between two points goes to the lower one), the
// control position that shows the value, number formatting, and the messages for bad text.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "params/value_tables.h"

namespace talvex::params {

// Shown in a box titled kWarningTitle (OK only) when a text is not a number; nothing changes.
inline constexpr std::string_view kWarningTitle = "Warning";
inline constexpr std::string_view kIncorrectValue = "  Incorrect value";
inline constexpr std::string_view kIncorrectFrequencyValue = "  Incorrect frequency value";
inline constexpr std::string_view kIncorrectQValue = "  Incorrect Q value";
inline constexpr std::string_view kIncorrectFValue = "  Incorrect f value";

// A number as a user types it: blanks around it, an optional sign, digits with at most one
// decimal mark. Either mark is read ("." or ","): the editor's boxes turn both keys into the
// locale's mark anyway, and talvexctl takes both. Anything else (letters, "?", an exponent,
// an empty text) is not a number.
std::optional<double> ParseNumber(std::string_view text);

// `value` rounded to `decimals`, without trailing zeros ("6", "0.2", "-3.5", "20.6"), with
// `mark` as the decimal mark.
std::string FormatNumber(double value, int decimals, DecimalMark mark = DecimalMark::Point);

// Index of the grid point lo + i / stepsPerUnit for `value`: scanning upward, the first point
// not below it is taken when equal; otherwise the value goes to the lower neighbour when it
// lies at or below their midpoint, to the upper one above it. The result is limited to
// 0..maxIndex.
int SnapToGrid(double value, double lo, int stepsPerUnit, int maxIndex);
// The same scan over an ascending table of values.
int SnapToTable(double value, std::span<const double> ascending);

struct ValueRule {
  enum class Kind {
    Grid,       // lo + i / stepsPerUnit; the slider is inverted: position = (hi - value) * steps
    Table,      // nearest entry of `table`; position = firstIndex + table index
    Frequency,  // nearest FrequencyTable entry; position = the frequency byte
    AsTyped,    // no grid; position = value + positionOffset
  };
  Kind kind;
  double lo;
  double hi;
  int stepsPerUnit = 0;
  std::span<const double> table{};
  int firstIndex = 0;
  int positionOffset = 0;
  int decimals = 2;  // digits a value of this kind is shown with, at most
  std::string_view badText = kIncorrectValue;
};

// Q of a bell by its width index 4..63 of QTextTable: 0.05, 0.10 .. 3.00.
inline constexpr std::array<double, 60> BellWidths = [] {
  std::array<double, 60> widths{};
  for (std::size_t n = 0; n < widths.size(); ++n)
    widths[n] = static_cast<double>(n + 1) / 20;  // the double nearest 0.05 (n + 1)
  return widths;
}();
inline constexpr int kFirstBellWidth = 4;  // QTextTable indexes 0..3 are the shelves

namespace rule {
using Kind = ValueRule::Kind;
inline constexpr ValueRule kInputLevel{Kind::Grid, -15, 15, 10, {}, 0, 0, 1};
inline constexpr ValueRule kOutputLevel{Kind::Grid, -12, 6, 10, {}, 0, 0, 1};
inline constexpr ValueRule kBandGain{Kind::Grid, -15, 15, 2, {}, 0, 0, 1};
inline constexpr ValueRule kLimiterThreshold{Kind::Grid, -10, 20, 5, {}, 0, 0, 1};
inline constexpr ValueRule kAttack{Kind::Table, 0.5, 200, 0, AttackTimesMs, 0, 0, 1};
inline constexpr ValueRule kRelease{Kind::Table, 100, 500, 0, ReleaseTimesMs, 0, 0, 0};
// The temperature scroll bar has positions 0..70 for -20 .. +50 degrees C.
inline constexpr ValueRule kTemperature{Kind::AsTyped, -20, 50, 0, {}, 0, 20, 2};
inline constexpr ValueRule kBandFrequency{Kind::Frequency,         20, 20000, 0, {}, 0, 0, 1,
                                          kIncorrectFrequencyValue};
inline constexpr ValueRule kBandQ{Kind::Table,     0.05, 3.0, 0, BellWidths, kFirstBellWidth, 0, 2,
                                  kIncorrectQValue};
inline constexpr ValueRule kCrossoverFrequency{Kind::Frequency, 20, 20000, 0, {}, 0, 0, 1,
                                               kIncorrectFValue};
}  // namespace rule

// The level rule of a channel: inputs -15 .. +15 dB, outputs -12 .. +6 dB.
const ValueRule& LevelRule(int channel);

// A value that went through a rule.
struct RuledValue {
  std::string_view error;  // empty when accepted, else the message to show
  double value = 0;        // clamped and snapped
  int position = 0;        // the slider, scroll bar or up-down position that shows it
  bool clamped = false;    // the value lay outside the range and was replaced by a bound
  bool Ok() const { return error.empty(); }
};

// Text as committed with Enter: read, clamp, snap. Bad text gives the rule's message.
RuledValue CommitText(const ValueRule& rule, std::string_view text);
// A number: clamp and snap.
RuledValue ApplyRule(const ValueRule& rule, double value);
// The value a slider, scroll bar or up-down position stands for (positions outside the
// control's range are an IndexError).
double ValueAtPosition(const ValueRule& rule, int position);
// The number of positions of the rule's control minus one.
int MaxPosition(const ValueRule& rule);
// The value as the box shows it.
std::string FormatRuled(const ValueRule& rule, double value, DecimalMark mark = DecimalMark::Point);

// Delays. A delay is two step counts: coarse steps of 48 samples (1 ms at 48 kHz, taken as
// 0.34 m) and fine steps of one sample (taken as 0.007 m). The device delays by
// 48 * coarse + fine samples, fine 0..47, at most 48000 samples (one second; coarse 1000,
// fine 0).
inline constexpr int kFineStepsPerCoarse = 48;
inline constexpr int kMaxDelaySamples = 48000;
inline constexpr double kCoarseStepMetres = 0.34;
inline constexpr double kFineStepMetres = 0.007;
inline constexpr int kDelayUnitMs = 0;  // the device-wide delay unit (command 17)
inline constexpr int kDelayUnitMetres = 1;

struct DelaySteps {
  int coarse = 0;
  int fine = 0;
  int Samples() const { return kFineStepsPerCoarse * coarse + fine; }
  static DelaySteps FromSamples(int samples);  // IndexError outside 0..48000
  friend bool operator==(const DelaySteps&, const DelaySteps&) = default;
};

// c = 331.3 + 0.6 (t - 20) m/s, with t the temperature setting: the scroll-bar position
// 0..70, not degrees C. The device's tools do it that way, so 20 degrees C (position 40)
// computes with 343.3 m/s.
double SpeedOfSound(int temperaturePosition);
// The delay as the box shows it: the distance coarse * 0.34 + fine * 0.007 m, or in unit 0
// that distance / (c / 1000) ms; cut (not rounded) to thousandths.
double ShownDelay(DelaySteps steps, int unit, int temperaturePosition);
// Typed delay: clamped to 0 .. the largest delay, then the step counts are scanned upward
// and the first whose shown value reaches the typed one is taken.
struct RuledDelay {
  std::string_view error;
  DelaySteps steps;
  double value = 0;  // the shown value of `steps`
  bool clamped = false;
  bool Ok() const { return error.empty(); }
};
RuledDelay ApplyDelayRule(double value, int unit, int temperaturePosition);
RuledDelay CommitDelayText(std::string_view text, int unit, int temperaturePosition);

}  // namespace talvex::params
