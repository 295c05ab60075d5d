#include "params/image_decode.h"

#include "params/frequency.h"
#include "params/image_layout.h"
#include "params/limiter.h"
#include "protocol/frame.h"

namespace talvex::params {

namespace {

std::uint8_t At(ImageBytes image, std::size_t offset) {
  if (offset >= image.size())
    throw IndexError("image offset " + std::to_string(offset) + " is beyond the image");
  return image[offset];
}

std::size_t Channel(int channel) {
  CheckIndex(channel, kChannelCount - 1, "channel");
  return static_cast<std::size_t>(channel);
}

std::size_t Output(int channel) {
  CheckIndex(channel - kInputCount, kOutputCount - 1, "output channel");
  return static_cast<std::size_t>(channel);
}

std::size_t BandStart(int band) {
  CheckIndex(band, kBandCount - 1, "band");
  return EqBandStart[static_cast<std::size_t>(band)];
}

std::size_t Filter(int filter) {
  CheckIndex(filter, kCrossoverCount - 1, "crossover filter");
  return CrossoverOffset[static_cast<std::size_t>(filter)];
}

int Checked(int value, int max, const char* what) {
  CheckIndex(value, max, what);
  return value;
}

}  // namespace

int LevelStep(ImageBytes image, int channel) {
  const std::size_t base = ChannelBase[Channel(channel)];
  if (channel < kInputCount)
    return Checked(At(image, base) << 8 | At(image, base + 1), 300, "input level step");
  return Checked(At(image, base), 180, "output level step");
}

double LevelDb(ImageBytes image, int channel) {
  const ValueRule& rule = LevelRule(channel);
  return (rule.lo * rule.stepsPerUnit + LevelStep(image, channel)) / rule.stepsPerUnit;
}

bool PolarityInverted(ImageBytes image, int channel) {
  return At(image, PolarityOffset[Output(channel)]) != 0;
}

DelaySteps DelayStepsOf(ImageBytes image, int channel) {
  const std::size_t t = DelayOffset[Channel(channel)];
  return {At(image, t) << 8 | At(image, t + 1), At(image, t + 2)};
}

int DelaySamples(ImageBytes image, int channel) {
  return DelayStepsOf(image, channel).Samples();
}

int BandFrequencyByte(ImageBytes image, int band) {
  return Checked(At(image, BandStart(band)), static_cast<int>(kFrequencyCount) - 1,
                 "frequency byte");
}

double BandFrequency(ImageBytes image, int band) {
  return ByteToFrequency(BandFrequencyByte(image, band));
}

int BandWidthIndex(ImageBytes image, int band) {
  return Checked(At(image, BandStart(band) + 1), 63, "band width");
}

int BandGainStep(ImageBytes image, int band) {
  return Checked(At(image, BandStart(band) + 2), 60, "band gain step");
}

double BandGainDb(ImageBytes image, int band) {
  return BandGainStep(image, band) / 2.0 - 15;
}

int CrossoverFrequencyByte(ImageBytes image, int filter) {
  return Checked(At(image, Filter(filter)), static_cast<int>(kFrequencyCount) - 1,
                 "frequency byte");
}

double CrossoverFrequency(ImageBytes image, int filter) {
  return ByteToFrequency(CrossoverFrequencyByte(image, filter));
}

int CrossoverType(ImageBytes image, int filter) {
  return Checked(At(image, Filter(filter) + 1), static_cast<int>(CrossoverTypeNames.size()) - 1,
                 "crossover type");
}

int OutputSource(ImageBytes image, int channel) {
  return Checked(At(image, OutputSourceOffset[Output(channel) - kInputCount]), 1, "output source");
}

int ThresholdStep(ImageBytes image, int channel) {
  return Checked(At(image, OutputPlus2[Output(channel)] + 2), 150, "threshold step");
}

double ThresholdDbu(ImageBytes image, int channel) {
  return (ThresholdStep(image, channel) - 50) / 5.0;
}

int AttackIndex(ImageBytes image, int channel) {
  return Checked(At(image, OutputPlus2[Output(channel)]),
                 static_cast<int>(AttackTimesMs.size()) - 1, "attack index");
}

int ReleaseIndex(ImageBytes image, int channel) {
  return Checked(At(image, OutputPlus2[Output(channel)] + 1),
                 static_cast<int>(ReleaseTimesMs.size()) - 1, "release index");
}

std::string OutputName(ImageBytes image, int channel) {
  const std::size_t first = NameOffset[Output(channel)];
  std::string name;
  for (std::size_t i = 0; i < kNameLength; ++i)
    name += static_cast<char>(At(image, first + i));
  return name;
}

int LimiterLevel(ImageBytes image, int channel) {
  return Checked(LimiterLevelOfByte(At(image, LimiterOffset[Channel(channel)])),
                 LimiterLevelCount(channel) - 1, "limiter level");
}

bool EqBypassed(ImageBytes image, int channel) {
  return (At(image, kChannelBitsByte) & BitValues[Channel(channel)]) != 0;
}

int SystemType(ImageBytes image) {
  return At(image, kSystemTypeByte);
}

}  // namespace talvex::params
