#include "graph/output_response.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <numbers>
#include <vector>

#include "protocol/frame.h"

namespace talvex::graph {

namespace {

constexpr double kDegreesToRadians = std::numbers::pi / 180.0;
constexpr double kRadiansToDegreesExact = 180.0 / std::numbers::pi;
// dB to an amplitude through exp: 10^(dB/20) = e^(dB ln10 / 20).
constexpr double kDbToNepers = std::numbers::ln10 / 20.0;
// Below kSilenceDb the parts have cancelled but for their last bits, whose angle means nothing.
constexpr double kSilenceAmplitude = 1e-10;  // 10^(kSilenceDb / 20)

}  // namespace

// The channel curves already hold each channel's elements summed (magnitudes in dB, phases in
// degrees with the delay and polarity): along the way from input to output those add, and the
// two levels lift the magnitude.
void ComputeWholeOutput(const ResponseTables& tables, const ResponseSettings& settings, int channel,
                        ResponseCurves& whole) {
  CheckIndex(channel - kChannelCount + kOutputCount, kOutputCount - 1, "output");
  const ChannelSettings& output = settings.channels[static_cast<std::size_t>(channel)];
  const int source = output.source;
  CheckIndex(source, kChannelCount - kOutputCount - 1, "output source");
  const double levels =
      output.levelDb + settings.channels[static_cast<std::size_t>(source)].levelDb;
  const Curve& inMagnitude = tables.ChannelMagnitude(source);
  const Curve& inPhase = tables.ChannelPhase(source);
  const Curve& outMagnitude = tables.ChannelMagnitude(channel);
  const Curve& outPhase = tables.ChannelPhase(channel);
  for (int i = 0; i < kGridPointCount; ++i) {
    whole.magnitude[i] =
        static_cast<float>(static_cast<double>(inMagnitude[i]) + outMagnitude[i] + levels);
    float phase = static_cast<float>(static_cast<double>(inPhase[i]) + outPhase[i]);
    whole.phase[i] = WrapDegrees(phase);
  }
}

// Real and imaginary parts gathered over the parts, point by point, then turned back into dB
// and degrees.
void ComputeAcousticSum(std::span<const ResponseCurves* const> wholeOutputs, ResponseCurves& sum) {
  std::array<double, kGridPointCount> re{};
  std::array<double, kGridPointCount> im{};
  for (const ResponseCurves* part : wholeOutputs) {
    for (int i = 0; i < kGridPointCount; ++i) {
      const auto p = static_cast<std::size_t>(i);
      const double amplitude = std::exp(part->magnitude[i] * kDbToNepers);
      const double angle = part->phase[i] * kDegreesToRadians;
      re[p] += amplitude * std::cos(angle);
      im[p] += amplitude * std::sin(angle);
    }
  }
  for (int i = 0; i < kGridPointCount; ++i) {
    const auto p = static_cast<std::size_t>(i);
    const double amplitude = std::hypot(re[p], im[p]);
    if (amplitude < kSilenceAmplitude) {
      sum.magnitude[i] = kSilenceDb;
      sum.phase[i] = 0.0f;
      continue;
    }
    sum.magnitude[i] = static_cast<float>(20.0 * std::log10(amplitude));
    sum.phase[i] = static_cast<float>(std::atan2(im[p], re[p]) * kRadiansToDegreesExact);
  }
}

void ComputeAcousticSum(const ResponseTables& tables, const ResponseSettings& settings,
                        OutputSet outputs, ResponseCurves& sum) {
  std::vector<std::unique_ptr<ResponseCurves>> wholes;
  std::vector<const ResponseCurves*> parts;
  for (int output = 0; output < kOutputCount; ++output) {
    if (!outputs.test(static_cast<std::size_t>(output))) continue;
    wholes.push_back(std::make_unique<ResponseCurves>());
    ComputeWholeOutput(tables, settings, output + kChannelCount - kOutputCount, *wholes.back());
    parts.push_back(wholes.back().get());
  }
  ComputeAcousticSum(parts, sum);
}

}  // namespace talvex::graph
