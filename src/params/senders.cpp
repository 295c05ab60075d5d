#include "params/senders.h"

#include <cmath>

#include "params/frequency.h"
#include "params/image_decode.h"
#include "params/limiter.h"
#include "protocol/memory_map.h"

namespace talvex::params {

namespace code = protocol::code;

namespace {

void CheckChannel(int channel) {
  CheckIndex(channel, kChannelCount - 1, "channel");
}

void CheckOutput(int channel) {
  CheckIndex(channel - kInputCount, kOutputCount - 1, "output channel");
}

// Frequencies above 20000 Hz would convert to byte 0: the value rules clamp them first, and a
// sender refuses them.
void CheckFrequency(double hz) {
  if (!(hz >= FrequencyTable.front() && hz <= FrequencyTable.back()))
    throw IndexError("frequency " + std::to_string(hz) + " Hz is outside 20..20000 Hz");
}

std::size_t Index(int value) {
  return static_cast<std::size_t>(value);
}

// A step count from a value on a grid, rounded the way the device's tools round before
// splitting a number into bytes (to nearest, ties to even), then range-checked.
int StepOf(double value, double lo, int stepsPerUnit, int maxStep, const char* what) {
  const double steps = (value - lo) * stepsPerUnit;
  CheckIndex(std::llround(steps), maxStep, what);
  const std::array<std::uint8_t, 4> bytes = protocol::SplitToBytes(steps);
  return bytes[2] << 8 | bytes[3];
}

}  // namespace

std::string_view InputLabel(int source, int input) {
  CheckIndex(input, kInputCount - 1, "input");
  return source == 0 ? AnalogInputLabels[Index(input)] : kSpdifInputLabel;
}

std::string FitName(std::string_view name) {
  name = name.substr(0, kNameLength);
  static constexpr int kLeading[] = {6, 3, 2, 2, 1, 1, 0};
  const int leading = kLeading[name.size()];
  std::string fitted(static_cast<std::size_t>(leading), ' ');
  fitted += name;
  fitted.resize(kNameLength, ' ');
  return fitted;
}

std::string_view EqCaption(const ParamImage& image, int channel) {
  CheckChannel(channel);
  const int first = GlobalBand(channel, 0);
  for (int band = first; band < first + BandsOf(channel); ++band)
    if (BandGainStep(image, band) != 30) return kEqShapedCaption;
  return kEqFlatCaption;
}

std::string CrossoverLabel(const ParamImage& image, int channel, DecimalMark mark) {
  CheckOutput(channel);
  const int highPass = 2 * (channel - kInputCount);
  const auto part = [&](int filter) {
    return FormatNumber(CrossoverFrequency(image, filter), 1, mark) + " Hz, " +
           std::string(CrossoverTypeNames[Index(CrossoverType(image, filter))]);
  };
  return "HP: " + part(highPass) + " -- LP: " + part(highPass + 1);
}

std::string Senders::Number(double value, int decimals) const {
  return FormatNumber(value, decimals, mark_);
}

ParamEdit Senders::ChannelCommand(std::uint8_t commandCode, int channel) const {
  ParamEdit edit;
  edit.command.code = commandCode;
  edit.command.p(1) = static_cast<std::uint8_t>(channel);
  return edit;
}

ParamEdit Senders::InputSource(int source) {
  CheckIndex(source, 1, "input source");
  device_.values.InputSource() = source;
  device_.image[kInputSourceByte] = static_cast<std::uint8_t>(source);
  ParamEdit edit;
  edit.command.code = code::kInputSource;
  edit.command.p(8) = static_cast<std::uint8_t>(device_.values.InputSource());
  for (int input = 0; input < kInputCount; ++input)
    edit.labels.emplace_back(InputLabel(source, input));
  return edit;
}

ParamEdit Senders::OutputSource(int channel, int source) {
  CheckOutput(channel);
  CheckIndex(source, 1, "output source");
  const std::size_t offset = OutputSourceOffset[Index(channel - kInputCount)];
  device_.image[offset] = static_cast<std::uint8_t>(source);
  ParamEdit edit = ChannelCommand(code::kOutputSource, channel);
  edit.command.p(8) = device_.image[offset];
  edit.labels.emplace_back(OutputSourceLabels[Index(source)]);
  return edit;
}

ParamEdit Senders::Mute(int channel, bool muted) {
  CheckChannel(channel);
  device_.values.Mute(channel) = muted ? 1 : 0;
  ParamEdit edit = ChannelCommand(code::kMute, channel);
  edit.command.p(8) = static_cast<std::uint8_t>(device_.values.Mute(channel));
  edit.labels.emplace_back(muted ? kUnmuteCaption : kMuteCaption);
  return edit;
}

// Inputs keep their polarity in ParamValues only: the image has no byte for it (the polarity
// table's input entries are 0, which is In A's level byte and must not be written).
ParamEdit Senders::Polarity(int channel, bool inverted) {
  CheckChannel(channel);
  device_.values.Polarity(channel) = inverted ? 1 : 0;
  if (channel >= kInputCount) device_.image[PolarityOffset[Index(channel)]] = inverted ? 1 : 0;
  ParamEdit edit = ChannelCommand(code::kPolarity, channel);
  edit.command.p(7) = inverted ? 1 : 0;
  edit.command.p(8) = device_.image[ChannelBase[Index(channel)]];
  edit.labels.emplace_back(PolarityLabels[inverted ? 1 : 0]);
  return edit;
}

// Inputs: g 0..300 in two bytes, high then low, sent in p6 and p8 with p7 = 0 (the image has
// no input polarity byte). Outputs: g 0..180 in p8, the polarity byte in p7.
ParamEdit Senders::Level(int channel, double db) {
  const ValueRule& rule = LevelRule(channel);
  const int step = StepOf(db, rule.lo, rule.stepsPerUnit, MaxPosition(rule), "level step");
  const std::size_t base = ChannelBase[Index(channel)];
  device_.values.LevelDb(channel) = db;
  ParamEdit edit = ChannelCommand(code::kChannelLevel, channel);
  if (channel < kInputCount) {
    device_.image[base] = static_cast<std::uint8_t>(step >> 8);
    device_.image[base + 1] = static_cast<std::uint8_t>(step & 0xFF);
    edit.command.p(6) = device_.image[base];
    edit.command.p(8) = device_.image[base + 1];
  } else {
    device_.image[base] = static_cast<std::uint8_t>(step);
    edit.command.p(7) = device_.image[PolarityOffset[Index(channel)]];
    edit.command.p(8) = device_.image[base];
  }
  edit.labels.push_back(Number(db, 1) + " dB");
  return edit;
}

// Output +2 attack, +3 release, +4 threshold: the three limiter senders all send code 7 with
// the three bytes in p6, p7, p8.
ParamEdit Senders::LimiterBytes(int channel) const {
  ParamEdit edit = ChannelCommand(code::kDbuLevel, channel);
  const std::size_t first = OutputPlus2[Index(channel)];
  edit.command.p(6) = device_.image[first];
  edit.command.p(7) = device_.image[first + 1];
  edit.command.p(8) = device_.image[first + 2];
  return edit;
}

ParamEdit Senders::LimiterThreshold(int channel, double dbu) {
  CheckOutput(channel);
  const ValueRule& rule = rule::kLimiterThreshold;
  const int v = StepOf(dbu, rule.lo, rule.stepsPerUnit, MaxPosition(rule), "threshold step");
  device_.values.DbuLevel(channel) = v;
  device_.image[OutputPlus2[Index(channel)] + 2] = static_cast<std::uint8_t>(v);
  ParamEdit edit = LimiterBytes(channel);
  edit.labels.push_back(Number(v / 5.0 - 10, 1) + " dBu");
  return edit;
}

ParamEdit Senders::LimiterAttack(int channel, int attackIndex) {
  CheckOutput(channel);
  CheckIndex(attackIndex, static_cast<long long>(AttackTimesMs.size()) - 1, "attack index");
  device_.image[OutputPlus2[Index(channel)]] = static_cast<std::uint8_t>(attackIndex);
  ParamEdit edit = LimiterBytes(channel);
  edit.labels.emplace_back(SmallNumberList[Index(attackIndex)]);
  return edit;
}

ParamEdit Senders::LimiterRelease(int channel, int releaseIndex) {
  CheckOutput(channel);
  CheckIndex(releaseIndex, static_cast<long long>(ReleaseTimesMs.size()) - 1, "release index");
  device_.image[OutputPlus2[Index(channel)] + 1] = static_cast<std::uint8_t>(releaseIndex);
  ParamEdit edit = LimiterBytes(channel);
  edit.labels.emplace_back(HundredsList[Index(releaseIndex)]);
  return edit;
}

// Three bytes at T: coarse count high and low, then the fine count; byte 322 (device-wide,
// carried as the device gave it) rides along in p5.
ParamEdit Senders::Delay(int channel, DelaySteps steps) {
  CheckChannel(channel);
  CheckIndex(steps.fine, kFineStepsPerCoarse - 1, "fine delay steps");
  CheckIndex(steps.Samples(), kMaxDelaySamples, "delay in samples");
  const std::size_t t = DelayOffset[Index(channel)];
  CheckIndex(static_cast<long long>(t) + 2, static_cast<long long>(kPresetSize), "delay offset");
  device_.image[t] = static_cast<std::uint8_t>(steps.coarse >> 8);
  device_.image[t + 1] = static_cast<std::uint8_t>(steps.coarse & 0xFF);
  device_.image[t + 2] = static_cast<std::uint8_t>(steps.fine);
  ParamEdit edit = ChannelCommand(code::kDelay, channel);
  edit.command.p(5) = device_.image[kDeviceWideByte];
  edit.command.p(6) = device_.image[t];
  edit.command.p(7) = device_.image[t + 1];
  edit.command.p(8) = device_.image[t + 2];
  const int unit = device_.values.Option() != 0 ? kDelayUnitMetres : kDelayUnitMs;
  const int temperature = static_cast<int>(device_.values.Temperature());
  edit.labels.push_back(Number(ShownDelay(steps, unit, temperature), 3) +
                        std::string(DelayUnits[Index(unit)]));
  return edit;
}

// A write of one byte of device memory: the delay unit lives at 0x12 (p1, p2 = the address).
ParamEdit Senders::DelayUnit(int unit) {
  CheckIndex(unit, 1, "delay unit");
  device_.values.Option() = unit;
  device_.image[kOptionByte] = static_cast<std::uint8_t>(unit);
  ParamEdit edit;
  edit.command.code = code::kMemoryWrite;
  edit.command.p(2) = protocol::memory::kOption;
  edit.command.p(5) = device_.image[kOptionByte];
  edit.labels.emplace_back(DelayUnits[Index(unit)]);
  return edit;
}

ParamEdit Senders::Limiter(int channel, int level) {
  const std::uint8_t frameByte = LimiterFrameByte(channel, level);
  device_.image[LimiterOffset[Index(channel)]] = static_cast<std::uint8_t>(level);
  ParamEdit edit;
  edit.command.code = code::kLimiter;
  edit.command.p(1) = frameByte;
  edit.labels.push_back(std::string(kLimitLabel) + std::string(LimiterLevelTexts[Index(level)]));
  return edit;
}

// The record keeps the switch beside the value (byte 328, where the state read puts the
// device's own), so a preset file holds the switch last set.
ParamEdit Senders::OutputLink(bool on) {
  device_.values.Switch() = on ? 1 : 0;
  device_.image[kOutputLinkByte] = on ? 1 : 0;
  ParamEdit edit;
  edit.command.code = code::kSwitch;
  edit.command.p(1) = static_cast<std::uint8_t>(device_.values.Switch());
  return edit;
}

ParamEdit Senders::EqBand(int band, EqBandSetting setting) {
  const int channel = ChannelOfBand(band);
  CheckIndex(setting.width, 63, "band width");
  CheckFrequency(setting.frequencyHz);
  const int gain = StepOf(setting.gainDb, -15, 2, 60, "band gain step");
  const std::size_t first = EqBandStart[Index(band)];
  device_.values.BandFrequency(band) = setting.frequencyHz;
  device_.image[first] = FrequencyToByte(setting.frequencyHz);
  device_.image[first + 1] = static_cast<std::uint8_t>(setting.width);
  device_.image[first + 2] = static_cast<std::uint8_t>(gain);
  ParamEdit edit = ChannelCommand(code::kEqBand, channel);
  edit.command.p(2) = static_cast<std::uint8_t>(BandInChannel(band));
  edit.command.p(5) = device_.image[EqChannelByte[Index(channel)]];
  edit.command.p(6) = device_.image[first];
  edit.command.p(7) = device_.image[first + 1];
  edit.command.p(8) = device_.image[first + 2];
  edit.labels.push_back(Number(ByteToFrequency(device_.image[first]), 1));
  edit.labels.emplace_back(QTextTable(mark_)[Index(setting.width)]);
  edit.labels.push_back(Number(gain / 2.0 - 15, 1));
  edit.labels.emplace_back(EqCaption(device_.image, channel));
  return edit;
}

ParamEdit Senders::Crossover(int filter, double frequencyHz, int type) {
  CheckIndex(filter, kCrossoverCount - 1, "crossover filter");
  CheckIndex(type, static_cast<long long>(CrossoverTypeNames.size()) - 1, "crossover type");
  CheckFrequency(frequencyHz);
  const std::size_t offset = CrossoverOffset[Index(filter)];
  const int channel = filter / 2 + kInputCount;
  device_.image[offset] = FrequencyToByte(frequencyHz);
  device_.image[offset + 1] = static_cast<std::uint8_t>(type);
  ParamEdit edit = ChannelCommand(code::kCrossover, channel);
  edit.command.p(2) = static_cast<std::uint8_t>(filter & 1);
  edit.command.p(7) = device_.image[offset];
  edit.command.p(8) = device_.image[offset + 1];
  edit.labels.push_back(Number(ByteToFrequency(device_.image[offset]), 1));
  edit.labels.push_back(CrossoverLabel(device_.image, channel, mark_));
  return edit;
}

// p1 = the channel, p2 = 0, p3..p8 = the six name bytes, first character first. Input names
// are not part of the image and are not sent.
ParamEdit Senders::OutputName(int channel, std::string_view name) {
  CheckOutput(channel);
  const std::string fitted = FitName(name);
  const std::size_t first = NameOffset[Index(channel)];
  for (std::size_t i = 0; i < kNameLength; ++i)
    device_.image[first + i] = static_cast<std::uint8_t>(fitted[i]);
  ParamEdit edit = ChannelCommand(code::kChannelName, channel);
  for (std::size_t i = 0; i < kNameLength; ++i)
    edit.command.params[2 + i] = device_.image[first + i];
  edit.labels.push_back(fitted);
  return edit;
}

// The whole bit field goes in p1: the device takes every channel's bit at once.
ParamEdit Senders::EqBypass(int channel, bool bypassed) {
  CheckChannel(channel);
  std::uint8_t& bits = device_.image[kChannelBitsByte];
  const std::uint8_t bit = BitValues[Index(channel)];
  bits = static_cast<std::uint8_t>(bypassed ? bits | bit : bits & ~bit);
  ParamEdit edit;
  edit.command.code = code::kChannelBits;
  edit.command.p(1) = bits;
  return edit;
}

}  // namespace talvex::params
