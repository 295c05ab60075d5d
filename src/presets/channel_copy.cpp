#include "presets/channel_copy.h"

#include "params/image_decode.h"

namespace talvex::presets {

using params::kInputCount;

namespace {

bool IsInput(int channel) {
  return channel >= 0 && channel < kInputCount;
}

// Every band of the source onto the same band of the destination.
void CopyBands(params::Senders& senders, const params::ParamImage& image, int source,
               int destination, std::vector<params::ParamEdit>& edits) {
  for (int i = 0; i < params::BandsOf(source); ++i) {
    const int from = params::GlobalBand(source, i);
    edits.push_back(
        senders.EqBand(params::GlobalBand(destination, i),
                       {params::BandFrequency(image, from), params::BandWidthIndex(image, from),
                        params::BandGainDb(image, from)}));
  }
}

ChannelCopy CopyInput(params::DeviceParams& device, int source, int destination,
                      params::DecimalMark mark) {
  params::DeviceParams work = device;
  params::Senders senders(work, mark);
  const params::ParamImage& image = work.image;
  ChannelCopy copy{source, destination, {}};
  copy.edits.push_back(senders.Level(destination, params::LevelDb(image, source)));
  copy.edits.push_back(senders.EqBypass(destination, params::EqBypassed(image, source)));
  CopyBands(senders, image, source, destination, copy.edits);
  copy.edits.push_back(senders.Delay(destination, params::DelayStepsOf(image, source)));
  device = work;
  return copy;
}

}  // namespace

std::optional<std::string_view> CheckCopy(int source, int destination) {
  CheckIndex(source, params::kChannelCount - 1, "channel");
  CheckIndex(destination, params::kChannelCount - 1, "channel");
  if (IsInput(source) != IsInput(destination))
    throw IndexError("a copy goes from an input to an input or from an output to an output");
  if (source == destination) return kSameChannelText;
  return std::nullopt;
}

ChannelCopy CopyInputAToB(params::DeviceParams& device, params::DecimalMark mark) {
  return CopyInput(device, 0, 1, mark);
}

ChannelCopy CopyInputBToA(params::DeviceParams& device, params::DecimalMark mark) {
  return CopyInput(device, 1, 0, mark);
}

ChannelCopy CopyOutput(params::DeviceParams& device, int source, int destination,
                       params::DecimalMark mark) {
  CheckIndex(source - kInputCount, params::kOutputCount - 1, "output channel");
  CheckIndex(destination - kInputCount, params::kOutputCount - 1, "output channel");
  params::DeviceParams work = device;
  params::Senders senders(work, mark);
  const params::ParamImage& image = work.image;
  const int fromFilter = 2 * (source - kInputCount);
  const int toFilter = 2 * (destination - kInputCount);
  ChannelCopy copy{source, destination, {}};
  auto& edits = copy.edits;
  edits.push_back(senders.Level(destination, params::LevelDb(image, source)));
  for (int f = 0; f < 2; ++f)
    edits.push_back(senders.Crossover(toFilter + f, params::CrossoverFrequency(image, toFilter + f),
                                      params::CrossoverType(image, fromFilter + f)));
  edits.push_back(senders.LimiterThreshold(destination, params::ThresholdDbu(image, source)));
  edits.push_back(senders.LimiterAttack(destination, params::AttackIndex(image, source)));
  edits.push_back(senders.LimiterRelease(destination, params::ReleaseIndex(image, source)));
  for (int f = 0; f < 2; ++f)
    edits.push_back(senders.Crossover(toFilter + f,
                                      params::CrossoverFrequency(image, fromFilter + f),
                                      params::CrossoverType(image, fromFilter + f)));
  edits.push_back(senders.EqBypass(destination, params::EqBypassed(image, source)));
  CopyBands(senders, image, source, destination, edits);
  edits.push_back(senders.Polarity(destination, params::PolarityInverted(image, source)));
  edits.push_back(senders.Delay(destination, params::DelayStepsOf(image, source)));
  device = work;
  return copy;
}

ChannelCopy CopyChannel(params::DeviceParams& device, int source, int destination,
                        params::DecimalMark mark) {
  if (CheckCopy(source, destination)) throw IndexError("a channel cannot be copied onto itself");
  if (!IsInput(source)) return CopyOutput(device, source, destination, mark);
  return source == 0 ? CopyInputAToB(device, mark) : CopyInputBToA(device, mark);
}

}  // namespace talvex::presets
