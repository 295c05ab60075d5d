#include "graph/response_math.h"

#include <array>
#include <cmath>

#include "graph/frequency_grid.h"
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

constexpr double kSineThreshold = 0.6;

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

// A section's tangent ratio: t = -(f/fc)/Q over d = 1 - (f/fc)^2, a zero d guarded.
double SectionRatio(float q, float f, float fc) {
  const double x = static_cast<double>(f) / static_cast<double>(fc);
  const double t = -x / static_cast<double>(q);
  const double d = GuardZero(1.0 - x * x);
  return t / d;
}

// 20 log10 of a Butterworth of order n: fc^n (low-pass) or f^n (high-pass) over
// sqrt(f^2n + fc^2n).
double ButterworthDb(bool highPass, int order, double f, double fc) {
  const double numerator = Power(highPass ? f : fc, order);
  return 20.0 * Log10(numerator / std::sqrt(Power(f, 2 * order) + Power(fc, 2 * order)));
}

// The second-order Bessel magnitude term. Low-pass: 3 / sqrt((3 - x^2)^2 + (3x)^2) with
// x = f / (fc * scale). High-pass: 3 f^2 / sqrt((fh^2 - 3 f^2)^2 + (3 f fh)^2) with
// fh = fc / scale. The two forms scale the corner in opposite directions; kept so.
double BesselDb(bool highPass, double scale, double f, double fc) {
  if (!highPass) {
    const double x = f / (fc * scale);
    const double d = std::sqrt((3.0 - x * x) * (3.0 - x * x) + (3.0 * x) * (3.0 * x));
    return 20.0 * Log10(3.0 / d);
  }
  const double fh = fc / scale;
  const double d = std::sqrt((fh * fh - 3.0 * f * f) * (fh * fh - 3.0 * f * f) +
                             (3.0 * f * fh) * (3.0 * f * fh));
  return 20.0 * Log10(3.0 * f * f / d);
}

// First-order section: arctan(-f/fc), plus a quarter turn for the high-pass form.
double FirstOrderPhase(bool highPass, double f, double fc) {
  const double angle = std::atan(-f / fc) + (highPass ? kPi / 2.0 : 0.0);
  return angle * kRadiansToDegrees;
}

double SectionPhase(bool highPass, float q, float f, float fc, PhaseUnwrapState& state) {
  return highPass ? HighPassSectionPhase(q, f, fc, state) : LowPassSectionPhase(q, f, fc, state);
}

}  // namespace

double Log10(double x) {
  return std::log(x) / std::log(10.0);
}

float WrapDegrees(float& angle) {
  if (std::isnan(angle) || std::isinf(angle)) return angle;
  // Stepping by 360 is exact in single precision below 2^27 degrees, so the whole number of
  // turns is taken at once, which gives the same value as stepping and keeps a long delay at
  // 20 kHz from costing millions of steps. Beyond that range stepping would no longer change the
  // value; the one-step fold still ends inside the range.
  const double x = angle;
  double turns = 0.0;
  if (x > 180.0) turns = std::ceil((x - 180.0) / 360.0);
  if (x < -180.0) turns = -std::ceil((-180.0 - x) / 360.0);
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
  const double s = std::sin(std::atan(r));
  if (s > kSineThreshold && state.previousSign < 0 && state.sign >= 1) {
    ++counter;
  } else if (s < -kSineThreshold && state.previousSign >= 1 && state.sign < 0) {
    --counter;
  }
  state.previousSign = state.sign;
  return counter;
}

float LowPassSectionPhase(float q, float f, float fc, PhaseUnwrapState& state) {
  const double r = SectionRatio(q, f, fc);
  const int turns = UpdateUnwrap(f, r, state.sectionTurns, state);
  return ToFloat((std::atan(r) - turns * kPi) * kRadiansToDegrees);
}

float HighPassSectionPhase(float q, float f, float fc, PhaseUnwrapState& state) {
  const double r = SectionRatio(q, f, fc);
  const int turns = UpdateUnwrap(f, r, state.sectionTurns, state);
  return ToFloat((std::atan(r) - turns * kPi + kPi) * kRadiansToDegrees);
}

float DelayPhase(float f, std::int32_t samples) {
  return ToFloat(static_cast<double>(f) * kPi * samples / kDelayPhaseDivisor * kRadiansToDegrees);
}

float ChannelPhasePoint(float phaseSum, bool polarityInverted) {
  float phase = polarityInverted ? phaseSum - kPolarityShift : phaseSum;
  return WrapDegrees(phase);
}

float BellMagnitude(const BandSettings& band, float f) {
  return EqBandModel(band).Magnitude(f);
}

float BellPhase(const BandSettings& band, float f) {
  PhaseUnwrapState unused;  // bells are not unwrapped
  return EqBandModel(band).Phase(f, unused);
}

float ShelfMagnitude(const BandSettings& band, float f) {
  return EqBandModel(band).Magnitude(f);
}

float ShelfPhase(const BandSettings& band, float f, PhaseUnwrapState& state) {
  return EqBandModel(band).Phase(f, state);
}

EqBandModel::EqBandModel(const BandSettings& band)
    : gainDb_(band.gainDb), f0_(band.frequencyHz), a_(GainFactor(band.gainDb)) {
  CheckIndex(band.widthIndex, kWidthCount - 1, "band width index");
  CheckIndex(band.gainStep, kGainStepMax, "band gain step");
  if (band.widthIndex >= kShelfCodeCount) {
    const double q = params::QValueTable[static_cast<std::size_t>(band.widthIndex - 4)];
    qm_ = q / static_cast<double>(BellQFactor(band.gainDb));
    return;
  }
  shelfCode_ = band.widthIndex;
  const bool twelve = shelfCode_ == 0 || shelfCode_ == 2;
  const bool high = shelfCode_ <= 1;
  const double corner = twelve ? kShelfCorner12 : kShelfCorner6;
  phaseCorner_ = high ? f0_ * corner : f0_ / corner;
  shelfQ_ = twelve ? kShelfQ12 : kShelfQ6;
  slope_ = twelve ? kShelfSlope12 : kShelfSlope6;
  const auto step = static_cast<std::size_t>(band.gainStep);
  const double correction = twelve ? params::T12[step] : params::T6[step];
  if (shelfCode_ == 0) {
    magnitudeCorner_ = f0_ / (static_cast<double>(kHighShelf12Extra) * correction);
  } else {
    magnitudeCorner_ = high ? f0_ / correction : f0_ * correction;
  }
}

PointResponse EqBandModel::At(float f, PhaseUnwrapState& state) const {
  return {Magnitude(f), Phase(f, state)};
}

float EqBandModel::Magnitude(float f) const {
  const double fd = f;
  if (!IsShelf()) {
    // A resonance curve in the dB domain, not a peaking biquad's exact magnitude.
    const double detune = f0_ / fd - fd / f0_;
    return ToFloat(gainDb_ / (1.0 + qm_ * qm_ * detune * detune));
  }
  const double w = fd / magnitudeCorner_;
  const double ww = w * w;
  const double cross = a_ * ww / slope_;
  const double low = std::sqrt((a_ - ww) * (a_ - ww) + cross);
  const double high = std::sqrt((1.0 - a_ * ww) * (1.0 - a_ * ww) + cross);
  const bool lowShelf = shelfCode_ >= 2;
  const double n = a_ * (lowShelf ? low : high);
  const double d = lowShelf ? high : low;
  return ToFloat(20.0 * Log10(n / d));
}

float EqBandModel::Phase(float f, PhaseUnwrapState& state) const {
  const double fd = f;
  if (!IsShelf()) {
    // The analog peaking section folded into one arc tangent, not unwrapped: -90..+90.
    const double w = fd / f0_;
    const double wq = w / qm_;
    const double num = (1.0 - w * w) * wq * (a_ * a_ - 1.0) / a_;
    const double den = GuardZero((1.0 - w * w) * (1.0 - w * w) + wq * wq);
    return ToFloat(std::atan(num / den) * kRadiansToDegrees);
  }
  const double w = fd / phaseCorner_;
  const double ww = w * w;
  const double wq = w / shelfQ_;
  const double shape = shelfCode_ <= 1 ? a_ - ww - 1.0 + ww * a_ : 1.0 - ww * a_ - ww + a_;
  const double num = std::sqrt(a_) * wq * shape;
  const double den = GuardZero(wq * wq * a_ + (1.0 - ww * a_) * (a_ - ww));
  const double r = num / den;
  const int turns = UpdateUnwrap(f, r, state.shelfTurns, state);
  return ToFloat((std::atan(r) - turns * kPi) * kRadiansToDegrees);
}

CrossoverModel::CrossoverModel(bool highPass, const CrossoverSettings& filter)
    : highPass_(highPass), type_(CrossoverType::kNone), fc_(filter.frequencyHz) {
  CheckIndex(filter.type, kCrossoverTypeCount - 1, "crossover type");
  type_ = static_cast<CrossoverType>(filter.type);
}

PointResponse CrossoverModel::At(float f, PhaseUnwrapState& state) const {
  if (type_ == CrossoverType::kNone) return {};
  const double magnitude = Magnitude(f);
  return {ToFloat(magnitude), ToFloat(Phase(f, state))};
}

double CrossoverModel::Magnitude(double f) const {
  switch (type_) {
    case CrossoverType::kNone:
      return 0.0;
    case CrossoverType::kButterworth6:
      return ButterworthDb(highPass_, 1, f, fc_);
    case CrossoverType::kButterworth12:
      return ButterworthDb(highPass_, 2, f, fc_);
    case CrossoverType::kLinkwitzRiley12:
      return 2.0 * ButterworthDb(highPass_, 1, f, fc_);
    case CrossoverType::kBessel12:
      return BesselDb(highPass_, kBessel12Scale, f, fc_);
    case CrossoverType::kButterworth18:
      return ButterworthDb(highPass_, 3, f, fc_);
    case CrossoverType::kButterworth24:
      return ButterworthDb(highPass_, 4, f, fc_);
    case CrossoverType::kLinkwitzRiley24:
      return 2.0 * ButterworthDb(highPass_, 2, f, fc_);
    case CrossoverType::kBessel24:
      return 2.0 * BesselDb(highPass_, kBessel24Scale, f, fc_);
  }
  return 0.0;
}

// The sections each type's phase is modelled with. Two sections of one cascade share the
// section counter and the tangent signs; both sit at the same corner, so their tangents
// change sign at the same grid point and the cascade turns by whole half-turns together.
double CrossoverModel::Phase(float f, PhaseUnwrapState& state) const {
  const auto fc = static_cast<float>(fc_);
  const bool hp = highPass_;
  switch (type_) {
    case CrossoverType::kNone:
      return 0.0;
    case CrossoverType::kButterworth6:
      return FirstOrderPhase(hp, f, fc_);
    case CrossoverType::kButterworth12:
      return SectionPhase(hp, kQ707, f, fc, state);
    case CrossoverType::kLinkwitzRiley12:
      return FirstOrderPhase(hp, f, fc_) + FirstOrderPhase(hp, f, fc_);
    case CrossoverType::kBessel12: {
      // The phase corner is fc / 0.52 for the low-pass and fc * 0.52 for the high-pass: the
      // opposite of the magnitude's scaling. Kept so.
      const double corner = hp ? fc_ * kBessel12Scale : fc_ / kBessel12Scale;
      return SectionPhase(hp, kQ577, f, static_cast<float>(corner), state);
    }
    case CrossoverType::kButterworth18: {
      const double first = FirstOrderPhase(hp, f, fc_);
      return first + SectionPhase(hp, kQ100, f, fc, state);
    }
    case CrossoverType::kButterworth24: {
      const double first = SectionPhase(hp, kQ1307, f, fc, state);
      return first + SectionPhase(hp, kQ541, f, fc, state);
    }
    case CrossoverType::kLinkwitzRiley24: {
      const double first = SectionPhase(hp, kQ707, f, fc, state);
      return first + SectionPhase(hp, kQ707, f, fc, state);
    }
    case CrossoverType::kBessel24: {
      // Low-pass sections at fc, high-pass sections at fc * 0.649.
      const auto corner = hp ? static_cast<float>(fc_ * kBessel24Scale) : fc;
      const double first = SectionPhase(hp, kQ522, f, corner, state);
      return first + SectionPhase(hp, kQ806, f, corner, state);
    }
  }
  return 0.0;
}

}  // namespace talvex::graph
