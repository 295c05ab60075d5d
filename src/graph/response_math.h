// The response models of the device's filters, point by point: EQ bells and shelves, crossover
// filters, delay, and the two phase unwrappers with their shared state. They are models drawn
// from analog prototypes and closed-form approximations, not the device's own filters, and they
// are kept exactly as the device's tools drew them, oddities included (each is marked where it
// is coded).
//
// Precision: values and constants are single precision, arithmetic runs in double, and every
// result is rounded to single precision, as the tables store it.
#pragma once

#include <cmath>
#include <cstdint>
#include <stdexcept>
#include <string>

#include "graph/curve.h"
#include "graph/response_settings.h"

namespace talvex::graph {

inline constexpr double kGainExponentDivisor = 40.0;  // A = 10^(gain / 40)
inline constexpr double kRadiansToDegrees = 57.2957878112793;
inline constexpr double kPi = 3.1415926535;
inline constexpr double kDelayPhaseDivisor = 24000.0;  // f * pi * D / 24000: a 48 kHz clock
// Replaces a zero denominator before a division inside an arc tangent, so a section at its
// corner gives +-90 degrees instead of a fault.
inline constexpr float kZeroGuard = 1e-17f;
inline constexpr float kPolarityShift = 180.0f;

// A floating-point fault inside a pass: a division by zero, an overflow (also beyond single
// precision when a result is stored) or an invalid operation (not a number), anywhere in a
// point's arithmetic, raised by the processor's exception flags. The pass stops at the grid
// point where it happened; the points before it keep what was written, the faulting point and
// those after it keep their old values, the channel sums are not formed, and the caller gets
// this exception. Underflow and inexact results are no faults.
class FloatingPointFault : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The half-turn counters and tangent signs of the two unwrappers. One per editor window; the
// signs are shared by both unwrappers, the section counter by the low-pass and high-pass
// sections, just as the device's tools shared them. The previous sign is re-seeded at the
// first grid point (10 Hz) of every pass.
struct PhaseUnwrapState {
  std::int16_t shelfTurns = 0;
  std::int16_t sectionTurns = 0;
  std::int16_t sign = 0;          // of the current tangent
  std::int16_t previousSign = 0;  // of the previous tangent
};

struct PointResponse {
  float magnitudeDb = 0.0f;
  float phaseDeg = 0.0f;
};

// Log(x) / Log(10), the way every decibel value and the plot's x axis take it.
double Log10(double x);

// The fold of an angle outside -180..+180 (WrapDegrees' slow way).
float FoldTurns(float& angle);

// Folds an angle into -180..+180 by steps of 360 degrees, in place, and returns it. Exactly
// -180 and +180 are kept.
inline float WrapDegrees(float& angle) {
  if (angle >= -180.0f && angle <= 180.0f) return angle;
  return FoldTurns(angle);
}

// The gain-dependent factor K of a bell's Q: by |gain| in 0.5 dB groups, matched by exact
// single-precision equality with 0.1, 0.2 .. 15.0 dB. 1.0 dB is in no group (K = 1.0, the
// same as 0 dB and every value off the 0.1 dB grid); the device's tools had this gap and the
// curves users know keep it.
float BellQFactor(double gainDb);

// Updates an unwrapper from the tangent ratio r at grid frequency f and returns the counter:
// +1 when the tangent jumps from negative to positive through a steep angle (sine above 0.6),
// -1 the other way round. The +-0.6 threshold ignores sign changes near zero phase.
int UpdateUnwrap(float f, double r, std::int16_t& counter, PhaseUnwrapState& state);

// One EQ band at frequency f. A band with width index 0..3 is a shelf, any other a bell.
float BellMagnitude(const BandSettings& band, float f);
float BellPhase(const BandSettings& band, float f);
float ShelfMagnitude(const BandSettings& band, float f);
float ShelfPhase(const BandSettings& band, float f, PhaseUnwrapState& state);

// One second-order section of quality q and corner fc at frequency f, unwrapped with the
// section counter.
float LowPassSectionPhase(float q, float f, float fc, PhaseUnwrapState& state);
float HighPassSectionPhase(float q, float f, float fc, PhaseUnwrapState& state);

// Phase of a delay of `samples` at the 48 kHz sample clock; positive for a positive delay.
inline float DelayPhase(float f, std::int32_t samples) {
  return static_cast<float>(static_cast<double>(f) * kPi * samples / kDelayPhaseDivisor *
                            kRadiansToDegrees);
}

// Subtracts 180 degrees for an inverted polarity, then folds.
inline float ChannelPhasePoint(float phaseSum, bool polarityInverted) {
  float phase = polarityInverted ? phaseSum - kPolarityShift : phaseSum;
  return WrapDegrees(phase);
}

// The pieces of a model worked out once for a pass: how its magnitude is formed and up to two
// phase terms (one per section of a cascade).
namespace detail {

enum class MagnitudeForm {
  kZero,
  kBell,
  kLowShelf,
  kHighShelf,
  kButterworth,
  kBesselLow,
  kBesselHigh
};
enum class TermKind { kBell, kShelf, kFirstOrder, kSection };

struct PhaseTerm {
  TermKind kind = TermKind::kBell;
  double q = 1.0;         // section: its Q (a single-precision constant)
  double corner = 1.0;    // first-order and section: the corner; shelf: the phase corner
  double inverseQ = 1.0;  // 1 / q
  double offset = 0.0;    // radians added before the conversion to degrees (high-pass forms)
};

struct ModelPlan {
  MagnitudeForm form = MagnitudeForm::kZero;
  double magnitudeScale = 20.0;  // dB per decade of the magnitude's ratio; 40 for a doubled term
  double gainDb = 0.0;
  double f0 = 1.0;
  double a = 1.0;                // 10^(gain / 40)
  double qm = 1.0;               // bell: Q / K
  double bellTilt = 0.0;         // bell: (A^2 - 1) / A
  double magnitudeCorner = 1.0;  // shelf Fc, crossover fc
  double slope = 1.0;            // shelf S
  double shelfQ = 1.0;
  bool lowShelfShape = false;  // the phase numerator of the low shelves
  int order = 1;               // Butterworth order
  // Reciprocals of the Q values, so the grid loops multiply instead of dividing.
  double inverseQm = 1.0;
  double inverseShelfQ = 1.0;
  double besselScale = 1.0;
  bool highPass = false;  // crossover: the high-pass form
  int termCount = 0;
  PhaseTerm terms[2];
};

// The magnitude of a plan at f (dB) and the phase of its terms (degrees, unwrapped as the
// terms say), point by point or over the whole grid at once. The grid form gives the same values
// as the point form, faster: its loops run in the processor's vector units.
PointResponse PlanAt(const ModelPlan& plan, float f, PhaseUnwrapState& state);
void FillPlan(const ModelPlan& plan, Curve& magnitude, Curve& phase, PhaseUnwrapState& state);

}  // namespace detail

// A bell or shelf band with its per-band constants worked out once for a pass.
class EqBandModel {
 public:
  explicit EqBandModel(const BandSettings& band);  // IndexError for a bad width or gain step
  bool IsShelf() const { return plan_.form != detail::MagnitudeForm::kBell; }
  // A bell of exactly 0 dB is flat with zero phase at every point.
  bool IsFlatBell() const { return !IsShelf() && plan_.gainDb == 0.0; }
  PointResponse At(float f, PhaseUnwrapState& state) const { return PlanAt(plan_, f, state); }
  void Fill(Curve& magnitude, Curve& phase, PhaseUnwrapState& state) const {
    FillPlan(plan_, magnitude, phase, state);
  }

 private:
  detail::ModelPlan plan_;
};

// A crossover filter of one response slot (low-pass on even, high-pass on odd slots).
class CrossoverModel {
 public:
  CrossoverModel(bool highPass, const CrossoverSettings& filter);  // IndexError for a bad type
  PointResponse At(float f, PhaseUnwrapState& state) const { return PlanAt(plan_, f, state); }
  void Fill(Curve& magnitude, Curve& phase, PhaseUnwrapState& state) const {
    FillPlan(plan_, magnitude, phase, state);
  }

 private:
  detail::ModelPlan plan_;
};

}  // namespace talvex::graph
