#include "params/param_edit.h"

#include <algorithm>
#include <stdexcept>

#include "params/image_decode.h"
#include "params/limiter.h"

namespace talvex::params {

namespace {

// A bell chosen for a band that was a shelf gets the factory width "0.30".
constexpr int kDefaultBellWidth = 9;
constexpr int kBellChoice = 4;          // EqTypeNames: the four shelves, then "BELL"
constexpr int kTemperatureOffset = 20;  // scroll-bar position = degrees C + 20

std::size_t Index(int value) {
  return static_cast<std::size_t>(value);
}

// A value as its rule left it, ready for the sender.
struct Ruled {
  double value = 0;
  int position = 0;
  int choice = 0;
  std::string name;
  bool clamped = false;
};

Ruled FromRuledValue(const RuledValue& ruled) {
  return {ruled.value, ruled.position, 0, {}, ruled.clamped};
}

DelayView ViewOf(const DeviceParams& device, const EditOptions& options) {
  return options.delayView.value_or(DelayView::Of(device));
}

EqBandSetting BandSetting(const ParamImage& image, int band) {
  return {BandFrequency(image, band), BandWidthIndex(image, band), BandGainDb(image, band)};
}

int WidthForChoice(const ParamImage& image, int band, int choice) {
  if (choice < kBellChoice) return choice;
  const int current = BandWidthIndex(image, band);
  return current >= kFirstBellWidth ? current : kDefaultBellWidth;
}

// Runs the parameter's sender with a ruled value. Temperature is no sender: it is kept beside
// the image and the delays are sent again (RunTemperature).
ParamEdit Send(DeviceParams& device, const ParamRef& ref, const Ruled& v, DecimalMark mark) {
  Senders senders(device, mark);
  const ParamImage& image = device.image;
  const int ch = ref.channel;
  EqBandSetting band = IsEqBandKind(ref.kind) ? BandSetting(image, ref.band) : EqBandSetting{};
  switch (ref.kind) {
    case ParamKind::InputSource:
      return senders.InputSource(v.choice);
    case ParamKind::Level:
      return senders.Level(ch, v.value);
    case ParamKind::Mute:
      return senders.Mute(ch, v.choice != 0);
    case ParamKind::Polarity:
      return senders.Polarity(ch, v.choice != 0);
    case ParamKind::Delay:
      return senders.Delay(ch, DelaySteps::FromSamples(v.position));
    case ParamKind::Limiter:
      return senders.Limiter(ch, v.choice);
    case ParamKind::EqFrequency:
      band.frequencyHz = v.value;
      return senders.EqBand(ref.band, band);
    case ParamKind::EqQ:
      band.width = v.position;
      return senders.EqBand(ref.band, band);
    case ParamKind::EqGain:
      band.gainDb = v.value;
      return senders.EqBand(ref.band, band);
    case ParamKind::EqType:
      band.width = WidthForChoice(image, ref.band, v.choice);
      return senders.EqBand(ref.band, band);
    case ParamKind::EqBypass:
      return senders.EqBypass(ch, v.choice != 0);
    case ParamKind::OutputSource:
      return senders.OutputSource(ch, v.choice);
    case ParamKind::HighPassFrequency:
    case ParamKind::LowPassFrequency:
      return senders.Crossover(FilterOf(ref), v.value, CrossoverType(image, FilterOf(ref)));
    case ParamKind::HighPassType:
    case ParamKind::LowPassType:
      return senders.Crossover(FilterOf(ref), CrossoverFrequency(image, FilterOf(ref)), v.choice);
    case ParamKind::Threshold:
      return senders.LimiterThreshold(ch, v.value);
    case ParamKind::Attack:
      return senders.LimiterAttack(ch, v.position);
    case ParamKind::Release:
      return senders.LimiterRelease(ch, v.position);
    case ParamKind::Name:
      return senders.OutputName(ch, v.name);
    case ParamKind::DelayUnit:
      return senders.DelayUnit(v.choice);
    case ParamKind::OutputLink:
      return senders.OutputLink(v.choice != 0);
    case ParamKind::Temperature:
      break;
  }
  throw std::logic_error("temperature has no sender of its own");
}

// Changing the temperature sends every delay of the device again: the shown delays change,
// the device's do not.
void RunTemperature(DeviceParams& device, const Ruled& v, DecimalMark mark, EditResult& result) {
  device.values.Temperature() = v.position;
  Senders senders(device, mark);
  for (int ch = 0; ch < kChannelCount; ++ch) {
    result.changed.push_back({ParamKind::Delay, ch, 0});
    result.edits.push_back(senders.Delay(ch, DelayStepsOf(device.image, ch)));
  }
}

std::string ShownText(const DeviceParams& device, const ParamRef& ref, const Ruled& v,
                      const EditOptions& options) {
  const DecimalMark mark = options.mark;
  switch (ref.kind) {
    case ParamKind::Delay: {
      const DelayView view = ViewOf(device, options);
      return FormatNumber(
          ShownDelay(DelaySteps::FromSamples(v.position), view.unit, view.temperaturePosition), 3,
          mark);
    }
    case ParamKind::EqQ:  // the width label: "0.30", or a shelf's text
      return std::string(QTextTable(mark)[Index(v.position)]);
    case ParamKind::Name:
      return FitName(v.name);
    default:
      break;
  }
  if (const ValueRule* rule = RuleOf(ref)) return FormatRuled(*rule, v.value, mark);
  return ChoiceText(ref, v.choice);
}

EditResult Run(DeviceParams& device, const ParamRef& ref, const Ruled& v,
               const EditOptions& options) {
  EditResult result;
  result.value = v.value;
  result.position = v.position;
  result.choice = v.choice;
  result.clamped = v.clamped;
  if (ref.kind == ParamKind::Temperature) {
    RunTemperature(device, v, options.mark, result);
  } else {
    result.changed.push_back(ref);
    result.edits.push_back(Send(device, ref, v, options.mark));
    if (options.followLinks && FollowsLink(ref.kind)) {
      for (int twin : LinkedOutputs(device, ref.channel)) {
        result.changed.push_back(TwinOf(ref, twin));
        result.edits.push_back(Send(device, result.changed.back(), v, options.mark));
      }
    }
  }
  result.shown = ShownText(device, ref, v, options);
  return result;
}

bool IsNameText(std::string_view text) {
  return text.size() <= kNameLength &&
         std::all_of(text.begin(), text.end(), [](char c) { return c >= 32 && c <= 126; });
}

Ruled Choice(int choice) {
  Ruled v;
  v.choice = choice;
  v.value = choice;
  v.position = choice;
  return v;
}

}  // namespace

DelayView DelayView::Of(const DeviceParams& device) {
  return {device.values.Option() != 0 ? kDelayUnitMetres : kDelayUnitMs,
          static_cast<int>(device.values.Temperature())};
}

const ValueRule* RuleOf(const ParamRef& ref) {
  switch (ref.kind) {
    case ParamKind::Level:
      return &LevelRule(ref.channel);
    case ParamKind::EqFrequency:
      return &rule::kBandFrequency;
    case ParamKind::EqQ:
      return &rule::kBandQ;
    case ParamKind::EqGain:
      return &rule::kBandGain;
    case ParamKind::HighPassFrequency:
    case ParamKind::LowPassFrequency:
      return &rule::kCrossoverFrequency;
    case ParamKind::Threshold:
      return &rule::kLimiterThreshold;
    case ParamKind::Attack:
      return &rule::kAttack;
    case ParamKind::Release:
      return &rule::kRelease;
    case ParamKind::Temperature:
      return &rule::kTemperature;
    default:
      return nullptr;
  }
}

int ChoiceCount(const ParamRef& ref) {
  switch (ref.kind) {
    case ParamKind::InputSource:
    case ParamKind::Mute:
    case ParamKind::Polarity:
    case ParamKind::EqBypass:
    case ParamKind::OutputSource:
    case ParamKind::DelayUnit:
    case ParamKind::OutputLink:
      return 2;
    case ParamKind::Limiter:
      return LimiterLevelCount(ref.channel);
    case ParamKind::EqType:
      return static_cast<int>(EqTypeNames.size());
    case ParamKind::HighPassType:
    case ParamKind::LowPassType:
      return static_cast<int>(CrossoverTypeNames.size());
    default:
      return 0;
  }
}

std::string ChoiceText(const ParamRef& ref, int choice) {
  CheckIndex(choice, ChoiceCount(ref) - 1, "choice");
  const std::size_t i = Index(choice);
  switch (ref.kind) {
    case ParamKind::InputSource:
      return std::string(InputTypeNames[i]);
    case ParamKind::Mute:
      return std::string(choice != 0 ? kUnmuteCaption : kMuteCaption);
    case ParamKind::Polarity:
      return std::string(PolarityLabels[i]);
    case ParamKind::Limiter:
      return std::string(LimiterLevelTexts[i]);
    case ParamKind::EqType:
      return std::string(EqTypeNames[i]);
    case ParamKind::OutputSource:
      return std::string(OutputSourceLabels[i]);
    case ParamKind::HighPassType:
    case ParamKind::LowPassType:
      return std::string(CrossoverTypeNames[i]);
    case ParamKind::DelayUnit:
      return std::string(DelayUnits[i]);
    default:  // on/off switches: the check box carries the caption
      return choice != 0 ? "on" : "off";
  }
}

std::vector<int> LinkedOutputs(const DeviceParams& device, int channel) {
  CheckIndex(channel, kChannelCount - 1, "channel");
  if (channel < kInputCount || device.values.Switch() == 0) return {};
  return {channel ^ 1};  // 2 with 3, 4 with 5, 6 with 7
}

bool FollowsLink(ParamKind kind) {
  return kind != ParamKind::OutputSource && kind != ParamKind::Name && !IsDeviceWide(kind);
}

ParamRef TwinOf(const ParamRef& ref, int channel) {
  ParamRef twin = ref;
  twin.channel = channel;
  if (IsEqBandKind(ref.kind)) twin.band = GlobalBand(channel, BandInChannel(ref.band));
  return twin;
}

EditResult EditText(DeviceParams& device, const ParamRef& ref, std::string_view text,
                    const EditOptions& options) {
  EditResult refused;
  if (ref.kind == ParamKind::Name) {
    if (!IsNameText(text)) {
      refused.refusal =
          "a name holds up to " + std::to_string(kNameLength) + " printable ASCII characters";
      return refused;
    }
    Ruled v;
    v.name = std::string(text);
    return Run(device, ref, v, options);
  }
  if (ref.kind == ParamKind::Delay) {
    const DelayView view = ViewOf(device, options);
    const RuledDelay delay = CommitDelayText(text, view.unit, view.temperaturePosition);
    refused.message = delay.error;
    if (!delay.Ok()) return refused;
    Ruled v;
    v.value = delay.value;
    v.position = delay.steps.Samples();
    v.clamped = delay.clamped;
    return Run(device, ref, v, options);
  }
  const ValueRule* rule = RuleOf(ref);
  if (!rule) throw std::logic_error("this parameter is chosen, not typed");
  const RuledValue ruled = CommitText(*rule, text);
  refused.message = ruled.error;
  if (!ruled.Ok()) return refused;
  return Run(device, ref, FromRuledValue(ruled), options);
}

EditResult EditPosition(DeviceParams& device, const ParamRef& ref, int position,
                        const EditOptions& options) {
  if (ref.kind == ParamKind::Delay) {
    const DelaySteps steps = DelaySteps::FromSamples(position);
    const DelayView view = ViewOf(device, options);
    Ruled v;
    v.position = steps.Samples();
    v.value = ShownDelay(steps, view.unit, view.temperaturePosition);
    return Run(device, ref, v, options);
  }
  const ValueRule* rule = RuleOf(ref);
  if (!rule) throw std::logic_error("this parameter has no control position");
  const RuledValue ruled = ApplyRule(*rule, ValueAtPosition(*rule, position));
  return Run(device, ref, FromRuledValue(ruled), options);
}

EditResult EditChoice(DeviceParams& device, const ParamRef& ref, int choice,
                      const EditOptions& options) {
  CheckIndex(choice, ChoiceCount(ref) - 1, "choice");
  return Run(device, ref, Choice(choice), options);
}

EditResult FlattenEq(DeviceParams& device, int channel, const EditOptions& options) {
  EditResult result;
  for (int band = GlobalBand(channel, 0); band < GlobalBand(channel, 0) + BandsOf(channel);
       ++band) {
    EditResult one = Run(device, {ParamKind::EqGain, channel, band},
                         FromRuledValue(ApplyRule(rule::kBandGain, 0)), options);
    result.changed.insert(result.changed.end(), one.changed.begin(), one.changed.end());
    result.edits.insert(result.edits.end(), one.edits.begin(), one.edits.end());
    result.shown = one.shown;
    result.position = one.position;
  }
  return result;
}

EditResult EditBand(DeviceParams& device, int band, const EqBandSetting& setting,
                    const EditOptions& options) {
  const ParamRef ref{ParamKind::EqType, ChannelOfBand(band), band};
  std::vector<ParamRef> members = {ref};
  if (options.followLinks)
    for (int twin : LinkedOutputs(device, ref.channel))
      members.push_back(TwinOf(ref, twin));
  Senders senders(device, options.mark);  // checks the whole setting before it writes a byte
  EditResult result;
  for (const ParamRef& member : members) {
    result.changed.push_back(member);
    result.edits.push_back(senders.EqBand(member.band, setting));
  }
  result.value = setting.gainDb;
  result.position = setting.width;
  result.choice = std::min(setting.width, kBellChoice);
  result.shown = std::string(QTextTable(options.mark)[Index(setting.width)]);
  return result;
}

ShownParam ShowParam(const DeviceParams& device, const ParamRef& ref, const EditOptions& options) {
  const ParamImage& image = device.image;
  const int ch = ref.channel;
  Ruled v;
  const auto byRule = [&](double value) {
    const RuledValue ruled = ApplyRule(*RuleOf(ref), value);
    v.value = ruled.value;
    v.position = ruled.position;
  };
  switch (ref.kind) {
    case ParamKind::InputSource:
      v = Choice(device.values.InputSource() != 0 ? 1 : 0);
      break;
    case ParamKind::Level:
      byRule(LevelDb(image, ch));
      break;
    case ParamKind::Mute:
      v = Choice(device.values.Mute(ch) != 0 ? 1 : 0);
      break;
    case ParamKind::Polarity: {
      const bool inverted =
          ch < kInputCount ? device.values.Polarity(ch) != 0 : PolarityInverted(image, ch);
      v = Choice(inverted ? 1 : 0);
      break;
    }
    case ParamKind::Delay:
      v.position = DelaySamples(image, ch);
      break;
    case ParamKind::Limiter:
      v = Choice(LimiterLevel(image, ch));
      break;
    case ParamKind::EqFrequency:
      byRule(BandFrequency(image, ref.band));
      break;
    case ParamKind::EqQ: {
      const int width = BandWidthIndex(image, ref.band);
      v.position = width;
      v.value = width >= kFirstBellWidth ? BellWidths[Index(width - kFirstBellWidth)] : 0;
      break;
    }
    case ParamKind::EqGain:
      byRule(BandGainDb(image, ref.band));
      break;
    case ParamKind::EqType:
      v = Choice(std::min(BandWidthIndex(image, ref.band), kBellChoice));
      break;
    case ParamKind::EqBypass:
      v = Choice(EqBypassed(image, ch) ? 1 : 0);
      break;
    case ParamKind::OutputSource:
      v = Choice(OutputSource(image, ch));
      break;
    case ParamKind::HighPassFrequency:
    case ParamKind::LowPassFrequency:
      byRule(CrossoverFrequency(image, FilterOf(ref)));
      break;
    case ParamKind::HighPassType:
    case ParamKind::LowPassType:
      v = Choice(CrossoverType(image, FilterOf(ref)));
      break;
    case ParamKind::Threshold:
      byRule(ThresholdDbu(image, ch));
      break;
    case ParamKind::Attack:
      byRule(AttackTimesMs[Index(AttackIndex(image, ch))]);
      break;
    case ParamKind::Release:
      byRule(ReleaseTimesMs[Index(ReleaseIndex(image, ch))]);
      break;
    case ParamKind::Name:
      v.name = OutputName(image, ch);
      break;
    case ParamKind::DelayUnit:
      v = Choice(device.values.Option() != 0 ? 1 : 0);
      break;
    case ParamKind::OutputLink:
      v = Choice(device.values.Switch() != 0 ? 1 : 0);
      break;
    case ParamKind::Temperature:
      v.position = static_cast<int>(device.values.Temperature());
      v.value = v.position - kTemperatureOffset;
      break;
  }
  if (ref.kind == ParamKind::Delay) {
    const DelayView view = ViewOf(device, options);
    v.value = ShownDelay(DelaySteps::FromSamples(v.position), view.unit, view.temperaturePosition);
  }
  return {ShownText(device, ref, v, options), v.value, v.position, v.choice};
}

}  // namespace talvex::params
