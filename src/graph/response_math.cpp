#include "graph/response_math.h"

#include <array>
#include <cmath>
#include <optional>

#include "graph/arc_tangent.h"
#include "graph/frequency_grid.h"
#include "graph/natural_log.h"
#include "params/value_tables.h"
#include "protocol/frame.h"

namespace talvex::graph {

namespace {

// Shelves: normalised-frequency factors and Q of the phase model, and the magnitude model's
// slope S, per 12 dB and 6 dB shelf.
constexpr float kShelfCorner12 = 0.75f;
constexpr float kShelfCorner6 = 0.6f;
constexpr float kShelfQ12 = 0.707f;
constexpr float kShelfQ6 = 0.45f;
constexpr float kShelfSlope12 = 1.0f;
constexpr float kShelfSlope6 = 0.3f;
// "HiSHF -12dB" alone moves its magnitude corner by this further factor.
constexpr float kHighShelf12Extra = 0.97f;

// K by |gain| in tenths of a dB: group (tenths + 4) / 5, so 0.1..0.5 dB is group 1 and
// 14.6..15.0 dB group 30. Group 0 (K = 1.0) stands for everything unmatched.
constexpr std::array<float, 31> kBellQFactors = {
    1.0f,  1.05f, 1.1f,  1.15f, 1.2f,  1.25f, 1.3f,  1.35f, 1.4f,  1.45f, 1.5f,
    1.55f, 1.6f,  1.65f, 1.7f,  1.75f, 1.8f,  1.83f, 1.85f, 1.88f, 1.93f, 2.0f,
    2.1f,  2.17f, 2.22f, 2.27f, 2.32f, 2.37f, 2.42f, 2.47f, 2.52f};
constexpr int kMaxGainTenths = 150;
constexpr int kGapTenths = 10;  // 1.0 dB belongs to no group

// Crossover constants: Q of the second-order sections and the Bessel corner scalings.
constexpr float kQ707 = 0.707f;
constexpr float kQ577 = 0.577f;
constexpr float kQ100 = 1.0f;
constexpr float kQ1307 = 1.307f;
constexpr float kQ541 = 0.541f;
constexpr float kQ522 = 0.522f;
constexpr float kQ806 = 0.806f;
constexpr float kBessel12Scale = 0.52f;
constexpr float kBessel24Scale = 0.649f;

// The unwrapper's steepness test sin(arctan r) > 0.6 (about 37 degrees), taken on r itself:
// sin(arctan r) = r / sqrt(1 + r^2), which is 0.6 at r = 0.75.
constexpr double kSteepTangent = 0.75;

float ToFloat(double value) {
  return static_cast<float>(value);
}

double GuardZero(double denominator) {
  return denominator == 0.0 ? static_cast<double>(kZeroGuard) : denominator;
}

std::int16_t Sgn(double value) {
  return value > 0.0 ? 1 : (value < 0.0 ? -1 : 0);
}

double Power(double x, int n) {
  double result = 1.0;
  for (int i = 0; i < n; ++i)
    result *= x;
  return result;
}

double GainFactor(double gainDb) {
  return std::pow(10.0, gainDb / kGainExponentDivisor);
}

using detail::MagnitudeForm;
using detail::ModelPlan;
using detail::PhaseTerm;
using detail::TermKind;

// ---- The models at one frequency. Each returns the dB value of a bell, or the ratio whose
// 20 log10 is the magnitude, or a phase term's tangent ratio.

// A resonance curve in the dB domain, not a peaking biquad's exact magnitude.
// Ratios of f to a corner or centre stay divisions: at the corner they must come out as exactly
// 1, where the zero guard and the flat centre of a bell take over. A bell works from w = f/F0:
// F0/f - f/F0 = 1/w - w, exactly 0 at the centre.
inline double BellDb(const ModelPlan& p, double w) {
  const double detune = 1.0 / w - w;
  return p.gainDb / (1.0 + p.qm * p.qm * detune * detune);
}

// Shelves with W = (f/Fc)^2: a low shelf is A sqrt((A-W)^2 + AW/S) / sqrt((1-AW)^2 + AW/S),
// a high shelf the same with the two roots swapped.
inline double ShelfRatio(const ModelPlan& p, double f) {
  const double w = f / p.magnitudeCorner;
  const double ww = w * w;
  const double cross = p.a * ww / p.slope;
  const double low = std::sqrt((p.a - ww) * (p.a - ww) + cross);
  const double high = std::sqrt((1.0 - p.a * ww) * (1.0 - p.a * ww) + cross);
  const bool lowShelf = p.form == MagnitudeForm::kLowShelf;
  return p.a * (lowShelf ? low : high) / (lowShelf ? high : low);
}

// fc^n (low-pass) or f^n (high-pass) over sqrt(f^2n + fc^2n). The order is a template
// argument so that the powers unroll and the grid loop stays a plain vector loop.
template <int kOrder>
inline double ButterworthRatio(const ModelPlan& p, bool highPass, double f) {
  const double fc = p.magnitudeCorner;
  const double numerator = Power(highPass ? f : fc, kOrder);
  return numerator / std::sqrt(Power(f, 2 * kOrder) + Power(fc, 2 * kOrder));
}

inline double ButterworthRatio(const ModelPlan& p, bool highPass, double f) {
  switch (p.order) {
    case 1:
      return ButterworthRatio<1>(p, highPass, f);
    case 2:
      return ButterworthRatio<2>(p, highPass, f);
    case 3:
      return ButterworthRatio<3>(p, highPass, f);
    default:
      return ButterworthRatio<4>(p, highPass, f);
  }
}

template <int kOrder>
void FillButterworth(const ModelPlan& p, std::array<double, kGridPointCount>& values) {
  for (std::size_t i = 0; i < values.size(); ++i)
    values[i] = ButterworthRatio<kOrder>(p, p.highPass, kGridFrequencies[i]);
}

// The second-order Bessel term. Low-pass: 3 / sqrt((3 - x^2)^2 + (3x)^2) with
// x = f / (fc * scale). High-pass: 3 f^2 / sqrt((fh^2 - 3 f^2)^2 + (3 f fh)^2) with
// fh = fc / scale. The two forms scale the corner in opposite directions; kept so.
inline double BesselLowRatio(const ModelPlan& p, double f) {
  const double x = f / (p.magnitudeCorner * p.besselScale);
  return 3.0 / std::sqrt((3.0 - x * x) * (3.0 - x * x) + (3.0 * x) * (3.0 * x));
}

inline double BesselHighRatio(const ModelPlan& p, double f) {
  const double fh = p.magnitudeCorner / p.besselScale;
  const double d = std::sqrt((fh * fh - 3.0 * f * f) * (fh * fh - 3.0 * f * f) +
                             (3.0 * f * fh) * (3.0 * f * fh));
  return 3.0 * f * f / d;
}

// The analog peaking section folded into one arc tangent:
// (1 - w^2)(w/Qm)(A^2 - 1)/A over (1 - w^2)^2 + (w/Qm)^2, with w = f/F0.
inline double BellTangent(const ModelPlan& p, double w) {
  const double wq = w * p.inverseQm;
  const double u = 1.0 - w * w;
  return u * wq * p.bellTilt / GuardZero(u * u + wq * wq);
}

// Shelves with w = f / phase corner, W = w^2: codes 0, 1 sqrt(A)(w/Qs)(A - W - 1 + WA), codes
// 2, 3 sqrt(A)(w/Qs)(1 - WA - W + A), over (w/Qs)^2 A + (1 - WA)(A - W).
inline double ShelfTangent(const ModelPlan& p, double f) {
  const double w = f / p.terms[0].corner;
  const double ww = w * w;
  const double wq = w * p.inverseShelfQ;
  const double shape = p.lowShelfShape ? 1.0 - ww * p.a - ww + p.a : p.a - ww - 1.0 + ww * p.a;
  const double den = GuardZero(wq * wq * p.a + (1.0 - ww * p.a) * (p.a - ww));
  return std::sqrt(p.a) * wq * shape / den;
}

// A second-order section: t = -(f/fc)/Q over d = 1 - (f/fc)^2, a zero d guarded.
inline double SectionTangent(const PhaseTerm& term, double f) {
  const double x = f / term.corner;
  return -x * term.inverseQ / GuardZero(1.0 - x * x);
}

inline double FirstOrderTangent(const PhaseTerm& term, double f) {
  return -f / term.corner;
}

inline double TermTangent(const ModelPlan& p, const PhaseTerm& term, double f) {
  switch (term.kind) {
    case TermKind::kBell:
      return BellTangent(p, f / p.f0);
    case TermKind::kShelf:
      return ShelfTangent(p, f);
    case TermKind::kFirstOrder:
      return FirstOrderTangent(term, f);
    case TermKind::kSection:
      return SectionTangent(term, f);
  }
  return 0.0;
}

// The value behind a plan's magnitude: dB for a bell, the ratio to take 20 log10 of otherwise.
inline double MagnitudeValue(const ModelPlan& p, bool highPass, double f) {
  switch (p.form) {
    case MagnitudeForm::kZero:
      return 1.0;
    case MagnitudeForm::kBell:
      return BellDb(p, f / p.f0);
    case MagnitudeForm::kLowShelf:
    case MagnitudeForm::kHighShelf:
      return ShelfRatio(p, f);
    case MagnitudeForm::kButterworth:
      return ButterworthRatio(p, highPass, f);
    case MagnitudeForm::kBesselLow:
      return BesselLowRatio(p, f);
    case MagnitudeForm::kBesselHigh:
      return BesselHighRatio(p, f);
  }
  return 1.0;
}

inline float MagnitudeDb(const ModelPlan& p, double value) {
  if (p.form == MagnitudeForm::kBell) return ToFloat(value);
  if (p.form == MagnitudeForm::kZero) return 0.0f;
  return ToFloat(p.magnitudeScale * Log10(value));
}

inline float Degrees(double angle, int turns, double offset) {
  return ToFloat((angle - turns * kPi + offset) * kRadiansToDegrees);
}

inline bool Unwrapped(const PhaseTerm& term) {
  return term.kind == TermKind::kShelf || term.kind == TermKind::kSection;
}

// A term's phase from its tangent ratio and arc tangent: shelves and sections are unwrapped
// with their counter, n half-turns taken off.
inline float TermDegrees(const PhaseTerm& term, float f, double r, double angle,
                         PhaseUnwrapState& state) {
  int turns = 0;
  if (term.kind == TermKind::kShelf) turns = UpdateUnwrap(f, r, state.shelfTurns, state);
  if (term.kind == TermKind::kSection) turns = UpdateUnwrap(f, r, state.sectionTurns, state);
  return Degrees(angle, turns, term.offset);
}

inline float SumTerms(const ModelPlan& p, float first, float second) {
  if (p.termCount < 2) return first;
  return ToFloat(static_cast<double>(first) + static_cast<double>(second));
}

PhaseTerm Term(TermKind kind, double q, double corner, double offset) {
  PhaseTerm term;
  term.kind = kind;
  term.q = q;
  term.corner = corner;
  term.offset = offset;
  term.inverseQ = 1.0 / q;
  return term;
}

// A section's corner is a single-precision value.
PhaseTerm Section(bool highPass, float q, double corner) {
  return Term(TermKind::kSection, q, static_cast<float>(corner), highPass ? kPi : 0.0);
}

PhaseTerm FirstOrder(bool highPass, double corner) {
  return Term(TermKind::kFirstOrder, 1.0, corner, highPass ? kPi / 2.0 : 0.0);
}

}  // namespace

namespace detail {

PointResponse PlanAt(const ModelPlan& plan, float f, PhaseUnwrapState& state) {
  const bool highPass = plan.highPass;
  PointResponse response;
  response.magnitudeDb = MagnitudeDb(plan, MagnitudeValue(plan, highPass, f));
  float terms[2] = {0.0f, 0.0f};
  for (int t = 0; t < plan.termCount; ++t) {
    const double r = TermTangent(plan, plan.terms[t], f);
    terms[t] = TermDegrees(plan.terms[t], f, r, ArcTan(r), state);
  }
  response.phaseDeg = SumTerms(plan, terms[0], terms[1]);
  return response;
}

// The same arithmetic as PlanAt, loop by loop: the values and the tangents first (no state,
// so every loop has a single operation on independent points), then the unwrapping in grid
// order, which is the only part that depends on the point before.
TALVEX_GRID_LOOPS void FillPlan(const ModelPlan& plan, Curve& magnitude, Curve& phase,
                                PhaseUnwrapState& state) {
  const auto& grid = kGridFrequencies;
  std::array<double, kGridPointCount> values;
  std::array<std::array<double, kGridPointCount>, 2> tangents;
  std::array<std::array<double, kGridPointCount>, 2> angles;
  switch (plan.form) {  // one loop per form, so each loop body is branch-free
    case MagnitudeForm::kZero:
      values.fill(1.0);
      break;
    case MagnitudeForm::kBell:
      for (std::size_t i = 0; i < grid.size(); ++i) {  // the tangents too: they share w
        const double w = grid[i] / plan.f0;
        values[i] = BellDb(plan, w);
        tangents[0][i] = BellTangent(plan, w);
      }
      break;
    case MagnitudeForm::kLowShelf:
    case MagnitudeForm::kHighShelf:
      for (std::size_t i = 0; i < grid.size(); ++i)
        values[i] = ShelfRatio(plan, grid[i]);
      break;
    case MagnitudeForm::kButterworth:
      if (plan.order == 1) FillButterworth<1>(plan, values);
      if (plan.order == 2) FillButterworth<2>(plan, values);
      if (plan.order == 3) FillButterworth<3>(plan, values);
      if (plan.order == 4) FillButterworth<4>(plan, values);
      break;
    case MagnitudeForm::kBesselLow:
      for (std::size_t i = 0; i < grid.size(); ++i)
        values[i] = BesselLowRatio(plan, grid[i]);
      break;
    case MagnitudeForm::kBesselHigh:
      for (std::size_t i = 0; i < grid.size(); ++i)
        values[i] = BesselHighRatio(plan, grid[i]);
      break;
  }
  if (plan.form == MagnitudeForm::kBell) {
    for (std::size_t i = 0; i < grid.size(); ++i)
      magnitude.Points()[i] = ToFloat(values[i]);
  } else if (plan.form == MagnitudeForm::kZero) {
    magnitude.Points().fill(0.0f);
  } else {  // MagnitudeDb's arithmetic, with the logarithms taken for the whole grid at once
    std::array<double, kGridPointCount> logs;
    LogOfEach(values.data(), logs.data(), kGridPointCount);
    const double ln10 = std::log(10.0);
    for (std::size_t i = 0; i < grid.size(); ++i)
      magnitude.Points()[i] = ToFloat(plan.magnitudeScale * (logs[i] / ln10));
  }
  for (int t = 0; t < plan.termCount; ++t) {
    const PhaseTerm& term = plan.terms[t];
    auto& tangent = tangents[static_cast<std::size_t>(t)];
    switch (term.kind) {
      case TermKind::kBell:  // worked out with the magnitude
        break;
      case TermKind::kShelf:
        for (std::size_t i = 0; i < grid.size(); ++i)
          tangent[i] = ShelfTangent(plan, grid[i]);
        break;
      case TermKind::kFirstOrder:
        for (std::size_t i = 0; i < grid.size(); ++i)
          tangent[i] = FirstOrderTangent(term, grid[i]);
        break;
      case TermKind::kSection:
        for (std::size_t i = 0; i < grid.size(); ++i)
          tangent[i] = SectionTangent(term, grid[i]);
        break;
    }
    auto& angle = angles[static_cast<std::size_t>(t)];
    ArcTanOfEach(tangent.data(), angle.data(), kGridPointCount);
  }
  if (plan.termCount == 1 && !Unwrapped(plan.terms[0])) {
    for (std::size_t i = 0; i < grid.size(); ++i)
      phase.Points()[i] = Degrees(angles[0][i], 0, plan.terms[0].offset);
    return;
  }
  for (std::size_t i = 0; i < grid.size(); ++i) {
    float terms[2] = {0.0f, 0.0f};
    for (std::size_t t = 0; t < static_cast<std::size_t>(plan.termCount); ++t)
      terms[t] = TermDegrees(plan.terms[t], grid[i], tangents[t][i], angles[t][i], state);
    phase[static_cast<int>(i)] = SumTerms(plan, terms[0], terms[1]);
  }
}

}  // namespace detail

double Log10(double x) {
  return std::log(x) / std::log(10.0);
}

float FoldTurns(float& angle) {
  if (std::isnan(angle) || std::isinf(angle)) return angle;
  // Below 2^27 degrees every step of 360 is exact in single precision (360 is a multiple of the
  // angle's last place), so stepping ends on the exact remainder, and the whole number of turns
  // can be taken at once: the same value without a long delay's thousands of steps at 20 kHz.
  // Beyond that a step would no longer change the value; the one-step fold still ends in range.
  const double x = angle;
  const double turns =
      x > 180.0 ? std::ceil((x - 180.0) / 360.0) : -std::ceil((-180.0 - x) / 360.0);
  angle = static_cast<float>(x - 360.0 * turns);
  while (angle < -180.0f)
    angle += 360.0f;
  while (angle > 180.0f)
    angle -= 360.0f;
  return angle;
}

float BellQFactor(double gainDb) {
  const double magnitude = std::fabs(gainDb);
  if (!(magnitude <= kMaxGainTenths / 10.0 + 0.05)) return kBellQFactors[0];  // also NaN
  const float g = static_cast<float>(magnitude);
  const long tenths = std::lround(static_cast<double>(g) * 10.0);
  if (tenths < 1 || tenths > kMaxGainTenths || tenths == kGapTenths) return kBellQFactors[0];
  // Equal to the single-precision value of tenths / 10 (a correctly rounded float division).
  if (static_cast<float>(tenths) / 10.0f != g) return kBellQFactors[0];
  return kBellQFactors[static_cast<std::size_t>((tenths + 4) / 5)];
}

int UpdateUnwrap(float f, double r, std::int16_t& counter, PhaseUnwrapState& state) {
  state.sign = Sgn(r);
  if (f == kGridStart) state.previousSign = state.sign;
  if (r > kSteepTangent && state.previousSign < 0 && state.sign >= 1) {
    ++counter;
  } else if (r < -kSteepTangent && state.previousSign >= 1 && state.sign < 0) {
    --counter;
  }
  state.previousSign = state.sign;
  return counter;
}

float LowPassSectionPhase(float q, float f, float fc, PhaseUnwrapState& state) {
  const PhaseTerm term = Section(false, q, fc);
  const double r = SectionTangent(term, f);
  return TermDegrees(term, f, r, ArcTan(r), state);
}

float HighPassSectionPhase(float q, float f, float fc, PhaseUnwrapState& state) {
  const PhaseTerm term = Section(true, q, fc);
  const double r = SectionTangent(term, f);
  return TermDegrees(term, f, r, ArcTan(r), state);
}

float BellMagnitude(const BandSettings& band, float f) {
  PhaseUnwrapState unused;
  return EqBandModel(band).At(f, unused).magnitudeDb;
}

float BellPhase(const BandSettings& band, float f) {
  PhaseUnwrapState unused;  // bells are not unwrapped
  return EqBandModel(band).At(f, unused).phaseDeg;
}

float ShelfMagnitude(const BandSettings& band, float f) {
  PhaseUnwrapState unused;  // a copy: the magnitude leaves the unwrapper alone
  return EqBandModel(band).At(f, unused).magnitudeDb;
}

float ShelfPhase(const BandSettings& band, float f, PhaseUnwrapState& state) {
  return EqBandModel(band).At(f, state).phaseDeg;
}

EqBandModel::EqBandModel(const BandSettings& band) {
  CheckIndex(band.widthIndex, kWidthCount - 1, "band width index");
  CheckIndex(band.gainStep, kGainStepMax, "band gain step");
  ModelPlan& p = plan_;
  p.gainDb = band.gainDb;
  p.f0 = band.frequencyHz;
  p.a = GainFactor(band.gainDb);
  p.termCount = 1;
  if (band.widthIndex >= kShelfCodeCount) {
    const double q = params::QValueTable[static_cast<std::size_t>(band.widthIndex - 4)];
    p.form = MagnitudeForm::kBell;
    p.qm = q / static_cast<double>(BellQFactor(band.gainDb));
    p.bellTilt = (p.a * p.a - 1.0) / p.a;
    p.inverseQm = 1.0 / p.qm;
    p.terms[0] = Term(TermKind::kBell, 1.0, 1.0, 0.0);
    return;
  }
  // Codes 0..3: "HiSHF -12dB", "HiSHF -6dB", "LoSHF -12dB", "LoSHF -6dB".
  const int code = band.widthIndex;
  const bool twelve = code == 0 || code == 2;
  const bool high = code <= 1;
  p.form = high ? MagnitudeForm::kHighShelf : MagnitudeForm::kLowShelf;
  p.lowShelfShape = !high;
  const double corner = twelve ? kShelfCorner12 : kShelfCorner6;
  p.terms[0] = Term(TermKind::kShelf, 1.0, high ? p.f0 * corner : p.f0 / corner, 0.0);
  p.shelfQ = twelve ? kShelfQ12 : kShelfQ6;
  p.inverseShelfQ = 1.0 / p.shelfQ;
  p.slope = twelve ? kShelfSlope12 : kShelfSlope6;
  const auto step = static_cast<std::size_t>(band.gainStep);
  const double correction = twelve ? params::T12[step] : params::T6[step];
  if (code == 0) {
    p.magnitudeCorner = p.f0 / (static_cast<double>(kHighShelf12Extra) * correction);
  } else {
    p.magnitudeCorner = high ? p.f0 / correction : p.f0 * correction;
  }
}

// The magnitude and the sections of each type's phase. Two sections of one cascade share the
// section counter and the tangent signs; both sit at the same corner, so their tangents change
// sign at the same grid point and the cascade turns by whole half-turns together.
CrossoverModel::CrossoverModel(bool highPass, const CrossoverSettings& filter) {
  CheckIndex(filter.type, kCrossoverTypeCount - 1, "crossover type");
  ModelPlan& p = plan_;
  const double fc = filter.frequencyHz;
  p.magnitudeCorner = fc;
  p.highPass = highPass;
  p.form = MagnitudeForm::kButterworth;
  const auto butterworth = [&](int order, double scale) {
    p.order = order;
    p.magnitudeScale = scale;
  };
  const auto terms = [&](PhaseTerm first, std::optional<PhaseTerm> second) {
    p.terms[0] = first;
    p.termCount = 1;
    if (second) {
      p.terms[1] = *second;
      p.termCount = 2;
    }
  };
  switch (static_cast<CrossoverType>(filter.type)) {
    case CrossoverType::kNone:
      p.form = MagnitudeForm::kZero;
      break;
    case CrossoverType::kButterworth6:
      butterworth(1, 20.0);
      terms(FirstOrder(highPass, fc), std::nullopt);
      break;
    case CrossoverType::kButterworth12:
      butterworth(2, 20.0);
      terms(Section(highPass, kQ707, fc), std::nullopt);
      break;
    case CrossoverType::kLinkwitzRiley12:
      butterworth(1, 40.0);
      terms(FirstOrder(highPass, fc), FirstOrder(highPass, fc));
      break;
    case CrossoverType::kBessel12:
      // The phase corner is fc / 0.52 for the low-pass and fc * 0.52 for the high-pass: the
      // opposite of the magnitude's scaling. Kept so.
      p.form = highPass ? MagnitudeForm::kBesselHigh : MagnitudeForm::kBesselLow;
      p.besselScale = kBessel12Scale;
      terms(Section(highPass, kQ577, highPass ? fc * kBessel12Scale : fc / kBessel12Scale),
            std::nullopt);
      break;
    case CrossoverType::kButterworth18:
      butterworth(3, 20.0);
      terms(FirstOrder(highPass, fc), Section(highPass, kQ100, fc));
      break;
    case CrossoverType::kButterworth24:
      butterworth(4, 20.0);
      terms(Section(highPass, kQ1307, fc), Section(highPass, kQ541, fc));
      break;
    case CrossoverType::kLinkwitzRiley24:
      butterworth(2, 40.0);
      terms(Section(highPass, kQ707, fc), Section(highPass, kQ707, fc));
      break;
    case CrossoverType::kBessel24: {
      // Low-pass sections at fc, high-pass sections at fc * 0.649.
      p.form = highPass ? MagnitudeForm::kBesselHigh : MagnitudeForm::kBesselLow;
      p.besselScale = kBessel24Scale;
      p.magnitudeScale = 40.0;
      const double corner = highPass ? fc * kBessel24Scale : fc;
      terms(Section(highPass, kQ522, corner), Section(highPass, kQ806, corner));
      break;
    }
  }
}

}  // namespace talvex::graph
