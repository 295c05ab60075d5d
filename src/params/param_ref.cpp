#include "params/param_ref.h"

#include <array>

#include "params/image_layout.h"
#include "protocol/frame.h"

namespace talvex::params {

namespace {

// Per channel, in listing order; outputs have them all, inputs the first five and the bypass.
constexpr std::array<ParamKind, 14> kChannelKinds = {ParamKind::Level,
                                                     ParamKind::Mute,
                                                     ParamKind::Polarity,
                                                     ParamKind::Delay,
                                                     ParamKind::Limiter,
                                                     ParamKind::OutputSource,
                                                     ParamKind::HighPassFrequency,
                                                     ParamKind::HighPassType,
                                                     ParamKind::LowPassFrequency,
                                                     ParamKind::LowPassType,
                                                     ParamKind::Threshold,
                                                     ParamKind::Attack,
                                                     ParamKind::Release,
                                                     ParamKind::Name};
constexpr std::array<ParamKind, 4> kBandKinds = {ParamKind::EqFrequency, ParamKind::EqQ,
                                                 ParamKind::EqGain, ParamKind::EqType};
constexpr std::array<ParamKind, 4> kDeviceKinds = {ParamKind::InputSource, ParamKind::DelayUnit,
                                                   ParamKind::OutputLink, ParamKind::Temperature};

}  // namespace

bool IsEqBandKind(ParamKind kind) {
  return kind == ParamKind::EqFrequency || kind == ParamKind::EqQ || kind == ParamKind::EqGain ||
         kind == ParamKind::EqType;
}

bool IsCrossoverKind(ParamKind kind) {
  return kind == ParamKind::HighPassFrequency || kind == ParamKind::HighPassType ||
         kind == ParamKind::LowPassFrequency || kind == ParamKind::LowPassType;
}

bool IsOutputOnly(ParamKind kind) {
  return IsCrossoverKind(kind) || kind == ParamKind::OutputSource || kind == ParamKind::Threshold ||
         kind == ParamKind::Attack || kind == ParamKind::Release || kind == ParamKind::Name;
}

bool IsDeviceWide(ParamKind kind) {
  for (ParamKind deviceKind : kDeviceKinds)
    if (kind == deviceKind) return true;
  return false;
}

int FilterOf(const ParamRef& ref) {
  CheckIndex(ref.channel - kInputCount, kOutputCount - 1, "output channel");
  const bool lowPass =
      ref.kind == ParamKind::LowPassFrequency || ref.kind == ParamKind::LowPassType;
  return 2 * (ref.channel - kInputCount) + (lowPass ? 1 : 0);
}

ParamRef CrossoverFrequencyRef(int filter) {
  CheckIndex(filter, kCrossoverCount - 1, "crossover filter");
  const ParamKind kind =
      filter % 2 == 0 ? ParamKind::HighPassFrequency : ParamKind::LowPassFrequency;
  return {kind, filter / 2 + kInputCount, 0};
}

ParamRef CrossoverTypeRef(int filter) {
  ParamRef ref = CrossoverFrequencyRef(filter);
  ref.kind =
      ref.kind == ParamKind::HighPassFrequency ? ParamKind::HighPassType : ParamKind::LowPassType;
  return ref;
}

Storage StorageOf(const ParamRef& ref) {
  switch (ref.kind) {
    case ParamKind::InputSource:
    case ParamKind::DelayUnit:
    case ParamKind::OutputLink:
      return Storage::Record;
    case ParamKind::Mute:
    case ParamKind::Temperature:
      return Storage::NotStored;
    case ParamKind::Polarity:
      return ref.channel < kInputCount ? Storage::NotStored : Storage::Preset;
    default:
      return Storage::Preset;
  }
}

std::vector<ParamRef> AllParams() {
  std::vector<ParamRef> all;
  for (ParamKind kind : kDeviceKinds)
    all.push_back({kind, 0, 0});
  for (int channel = 0; channel < kChannelCount; ++channel) {
    for (ParamKind kind : kChannelKinds)
      if (!IsOutputOnly(kind) || channel >= kInputCount) all.push_back({kind, channel, 0});
    all.push_back({ParamKind::EqBypass, channel, 0});
    for (int k = 0; k < BandsOf(channel); ++k)
      for (ParamKind kind : kBandKinds)
        all.push_back({kind, channel, GlobalBand(channel, k)});
  }
  return all;
}

}  // namespace talvex::params
