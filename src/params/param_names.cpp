#include "params/param_names.h"

#include <algorithm>
#include <array>
#include <cctype>

#include "params/image_decode.h"
#include "params/limiter.h"

namespace talvex::params {

namespace {

constexpr std::array<std::string_view, kChannelCount> kChannelNames = {
    "inA", "inB", "out1", "out2", "out3", "out4", "out5", "out6"};

// Band widths by type word: the four shelves are QTextTable 0..3, a bell any of 4..63.
struct EqTypeWord {
  std::string_view word;
  int width;
};
constexpr std::array<EqTypeWord, 5> kEqTypeWords = {
    {{"bell", -1}, {"hs12", 0}, {"hs6", 1}, {"ls12", 2}, {"ls6", 3}}};
// A shelf turned into a bell gets the factory width "0.30".
constexpr int kDefaultBellWidth = 9;

// Delays on the command line: shown in ms, at 20 degrees C (temperature position 40).
constexpr int kCliTemperature = 40;

struct Suffix {
  std::string_view text;
  ParamKind kind;
  bool outputsOnly;
};
constexpr std::array<Suffix, 14> kSuffixes = {{
    {"level", ParamKind::Level, false},
    {"mute", ParamKind::Mute, false},
    {"polarity", ParamKind::Polarity, false},
    {"delay", ParamKind::Delay, false},
    {"limiter", ParamKind::Limiter, false},
    {"source", ParamKind::OutputSource, true},
    {"hp.freq", ParamKind::HighPassFrequency, true},
    {"hp.type", ParamKind::HighPassType, true},
    {"lp.freq", ParamKind::LowPassFrequency, true},
    {"lp.type", ParamKind::LowPassType, true},
    {"limiter.threshold", ParamKind::Threshold, true},
    {"limiter.attack", ParamKind::Attack, true},
    {"limiter.release", ParamKind::Release, true},
    {"name", ParamKind::Name, true},
}};

struct EqSuffix {
  std::string_view text;
  ParamKind kind;
};
constexpr std::array<EqSuffix, 4> kEqSuffixes = {{{"freq", ParamKind::EqFrequency},
                                                  {"q", ParamKind::EqQ},
                                                  {"gain", ParamKind::EqGain},
                                                  {"type", ParamKind::EqType}}};

std::size_t Index(int value) {
  return static_cast<std::size_t>(value);
}

bool IsEqKind(ParamKind kind) {
  return kind == ParamKind::EqFrequency || kind == ParamKind::EqQ || kind == ParamKind::EqGain ||
         kind == ParamKind::EqType;
}

// Compares two words ignoring case and blanks ("-24dB/oct Lz" matches "-24db/oct lz").
std::string Folded(std::string_view text) {
  std::string folded;
  for (char c : text)
    if (c != ' ') folded += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return folded;
}

std::string Trimmed(std::string_view text) {
  const auto first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return std::string(text.substr(first, text.find_last_not_of(' ') - first + 1));
}

ShownValue Number(double value, int decimals) {
  return {ShownValue::Type::Number, FormatNumber(value, decimals)};
}

ShownValue Text(std::string_view text) {
  return {ShownValue::Type::Text, std::string(text)};
}

int FilterOf(const ParamRef& ref) {
  const bool lowPass =
      ref.kind == ParamKind::LowPassFrequency || ref.kind == ParamKind::LowPassType;
  return 2 * (ref.channel - kInputCount) + (lowPass ? 1 : 0);
}

ShownValue LimiterValue(int level) {
  if (level == 0) return Text("clip");
  return Number(LimiterLevelDbu[Index(level)], 0);
}

ShownValue EqQValue(int width) {
  if (width < kFirstBellWidth) return {ShownValue::Type::None, "none"};
  return Number(BellWidths[Index(width - kFirstBellWidth)], 2);
}

std::string_view EqTypeOf(int width) {
  for (const EqTypeWord& type : kEqTypeWords)
    if (type.width == width) return type.word;
  return "bell";
}

// The words a choice accepts, for the message when none matches.
std::string ChoiceError(const ParamRef& ref, std::string_view text, std::string_view choices) {
  return "\"" + std::string(text) + "\" is not a value of " + ParamName(ref) + " (" +
         std::string(choices) + ")";
}

std::optional<int> MatchWord(std::string_view text, std::initializer_list<std::string_view> words) {
  int index = 0;
  for (std::string_view word : words) {
    if (Folded(text) == Folded(word)) return index;
    ++index;
  }
  return std::nullopt;
}

std::optional<int> MatchLimiter(int channel, std::string_view text) {
  if (Folded(text) == "clip") return 0;
  const std::optional<double> dbu = ParseNumber(text);
  if (!dbu) return std::nullopt;
  for (int level = 1; level < LimiterLevelCount(channel); ++level)
    if (*dbu == LimiterLevelDbu[Index(level)]) return level;
  return std::nullopt;
}

std::string LimiterChoices(int channel) {
  std::string choices = "clip";
  for (int level = 1; level < LimiterLevelCount(channel); ++level)
    choices += ", " + FormatNumber(LimiterLevelDbu[Index(level)], 0);
  return choices;
}

std::optional<int> MatchCrossoverType(std::string_view text) {
  if (const std::optional<double> number = ParseNumber(text)) {
    const double type = *number;
    if (type >= 0 && type < static_cast<double>(CrossoverTypeNames.size()) &&
        type == static_cast<int>(type))
      return static_cast<int>(type);
    return std::nullopt;
  }
  for (std::size_t type = 0; type < CrossoverTypeNames.size(); ++type)
    if (Folded(text) == Folded(CrossoverTypeNames[type])) return static_cast<int>(type);
  return std::nullopt;
}

bool IsNameText(std::string_view text) {
  return text.size() <= kNameLength &&
         std::all_of(text.begin(), text.end(), [](char c) { return c >= 32 && c <= 126; });
}

// A number through a rule: the outcome carries the rule's message for bad text.
struct Ruled {
  SetOutcome outcome;
  RuledValue value;
};

Ruled RuleText(const ValueRule& rule, std::string_view text) {
  Ruled ruled{{}, CommitText(rule, text)};
  ruled.outcome.badText = ruled.value.error;
  ruled.outcome.clamped = ruled.value.clamped;
  return ruled;
}

SetOutcome SetChoice(const ParamRef& ref, DeviceParams& device, std::string_view text) {
  Senders senders(device);
  SetOutcome outcome;
  const ParamImage& image = device.image;
  switch (ref.kind) {
    case ParamKind::InputSource:
      if (auto source = MatchWord(text, {"analog", "spdif"})) {
        outcome.edit = senders.InputSource(*source);
        outcome.shown = Text(*source == 0 ? "analog" : "spdif");
        return outcome;
      }
      outcome.badChoice = ChoiceError(ref, text, "analog, spdif");
      return outcome;
    case ParamKind::Mute:
      if (auto state = MatchWord(text, {"off", "on"})) {
        outcome.edit = senders.Mute(ref.channel, *state == 1);
        outcome.shown = Text(*state == 1 ? "on" : "off");
        return outcome;
      }
      outcome.badChoice = ChoiceError(ref, text, "on, off");
      return outcome;
    case ParamKind::Polarity:
      if (auto polarity = MatchWord(text, {"0", "180"})) {
        outcome.edit = senders.Polarity(ref.channel, *polarity == 1);
        outcome.shown = Number(*polarity == 1 ? 180 : 0, 0);
        return outcome;
      }
      outcome.badChoice = ChoiceError(ref, text, "0, 180");
      return outcome;
    case ParamKind::OutputSource:
      if (auto source = MatchWord(text, {"inA", "inB"})) {
        outcome.edit = senders.OutputSource(ref.channel, *source);
        outcome.shown = Text(kChannelNames[Index(*source)]);
        return outcome;
      }
      outcome.badChoice = ChoiceError(ref, text, "inA, inB");
      return outcome;
    case ParamKind::Limiter:
      if (auto level = MatchLimiter(ref.channel, text)) {
        outcome.edit = senders.Limiter(ref.channel, *level);
        outcome.shown = LimiterValue(*level);
        return outcome;
      }
      outcome.badChoice = ChoiceError(ref, text, LimiterChoices(ref.channel));
      return outcome;
    case ParamKind::EqType: {
      const auto word = MatchWord(text, {"bell", "hs12", "hs6", "ls12", "ls6"});
      if (!word) {
        outcome.badChoice = ChoiceError(ref, text, "bell, hs12, hs6, ls12, ls6");
        return outcome;
      }
      const int current = BandWidthIndex(image, ref.band);
      int width = kEqTypeWords[Index(*word)].width;
      if (width < 0) width = current >= kFirstBellWidth ? current : kDefaultBellWidth;
      outcome.edit = senders.EqBand(
          ref.band, {BandFrequency(image, ref.band), width, BandGainDb(image, ref.band)});
      outcome.shown = Text(EqTypeOf(width));
      return outcome;
    }
    case ParamKind::HighPassType:
    case ParamKind::LowPassType:
      if (auto type = MatchCrossoverType(text)) {
        const int filter = FilterOf(ref);
        outcome.edit = senders.Crossover(filter, CrossoverFrequency(image, filter), *type);
        outcome.shown = Number(*type, 0);
        return outcome;
      }
      outcome.badChoice = ChoiceError(ref, text, "0..8 or a filter type text");
      return outcome;
    case ParamKind::Name:
      if (IsNameText(text)) {
        outcome.edit = senders.OutputName(ref.channel, text);
        outcome.shown = Text(Trimmed(outcome.edit.labels.front()));
        return outcome;
      }
      outcome.badChoice = ChoiceError(ref, text, "up to 6 printable ASCII characters");
      return outcome;
    default:
      throw std::logic_error("not a choice parameter");
  }
}

// A number through its rule, then the one sender with the ruled value, shown with `decimals`.
template <typename Send>
SetOutcome SetRuled(const ValueRule& rule, std::string_view text, int decimals, Send send) {
  Ruled ruled = RuleText(rule, text);
  if (!ruled.value.Ok()) return ruled.outcome;
  ruled.outcome.edit = send(ruled.value);
  ruled.outcome.shown = Number(ruled.value.value, decimals);
  return ruled.outcome;
}

SetOutcome SetDelay(const ParamRef& ref, DeviceParams& device, std::string_view text) {
  const RuledDelay delay = CommitDelayText(text, kDelayUnitMs, kCliTemperature);
  SetOutcome outcome;
  outcome.badText = delay.error;
  if (!delay.Ok()) return outcome;
  outcome.clamped = delay.clamped;
  device.values.Temperature() = kCliTemperature;
  outcome.edit = Senders(device).Delay(ref.channel, delay.steps);
  outcome.shown = Number(delay.value, 3);
  return outcome;
}

SetOutcome SetNumber(const ParamRef& ref, DeviceParams& device, std::string_view text) {
  Senders senders(device);
  const ParamImage& image = device.image;
  const int band = ref.band;
  const int channel = ref.channel;
  switch (ref.kind) {
    case ParamKind::Level: {
      const ValueRule& rule = LevelRule(channel);
      return SetRuled(rule, text, rule.decimals,
                      [&](const RuledValue& v) { return senders.Level(channel, v.value); });
    }
    case ParamKind::Delay:
      return SetDelay(ref, device, text);
    case ParamKind::EqFrequency:
      return SetRuled(rule::kBandFrequency, text, 1, [&](const RuledValue& v) {
        return senders.EqBand(band,
                              {v.value, BandWidthIndex(image, band), BandGainDb(image, band)});
      });
    case ParamKind::EqQ:
      return SetRuled(rule::kBandQ, text, 2, [&](const RuledValue& v) {
        return senders.EqBand(band,
                              {BandFrequency(image, band), v.position, BandGainDb(image, band)});
      });
    case ParamKind::EqGain:
      return SetRuled(rule::kBandGain, text, 1, [&](const RuledValue& v) {
        return senders.EqBand(band,
                              {BandFrequency(image, band), BandWidthIndex(image, band), v.value});
      });
    case ParamKind::HighPassFrequency:
    case ParamKind::LowPassFrequency: {
      const int filter = FilterOf(ref);
      return SetRuled(rule::kCrossoverFrequency, text, 1, [&](const RuledValue& v) {
        return senders.Crossover(filter, v.value, CrossoverType(image, filter));
      });
    }
    case ParamKind::Threshold:
      return SetRuled(rule::kLimiterThreshold, text, 1, [&](const RuledValue& v) {
        return senders.LimiterThreshold(channel, v.value);
      });
    case ParamKind::Attack:
      return SetRuled(rule::kAttack, text, 1, [&](const RuledValue& v) {
        return senders.LimiterAttack(channel, v.position);
      });
    case ParamKind::Release:
      return SetRuled(rule::kRelease, text, 0, [&](const RuledValue& v) {
        return senders.LimiterRelease(channel, v.position);
      });
    default:
      return SetChoice(ref, device, text);
  }
}

}  // namespace

std::optional<ParamRef> ParseParamName(std::string_view name) {
  if (name == "input.source") return ParamRef{ParamKind::InputSource, 0, 0};
  const auto dot = name.find('.');
  if (dot == std::string_view::npos) return std::nullopt;
  const auto channelIt = std::find(kChannelNames.begin(), kChannelNames.end(), name.substr(0, dot));
  if (channelIt == kChannelNames.end()) return std::nullopt;
  const int channel = static_cast<int>(channelIt - kChannelNames.begin());
  const std::string_view rest = name.substr(dot + 1);
  for (const Suffix& suffix : kSuffixes) {
    if (rest != suffix.text) continue;
    if (suffix.outputsOnly && channel < kInputCount) return std::nullopt;
    return ParamRef{suffix.kind, channel, 0};
  }
  // eqK.freq, eqK.q, eqK.gain, eqK.type with K from 1
  if (!rest.starts_with("eq")) return std::nullopt;
  const auto eqDot = rest.find('.');
  if (eqDot == std::string_view::npos || eqDot < 3 || eqDot > 3) return std::nullopt;
  const int k = rest[2] - '0';
  if (k < 1 || k > BandsOf(channel)) return std::nullopt;
  for (const EqSuffix& suffix : kEqSuffixes)
    if (rest.substr(eqDot + 1) == suffix.text)
      return ParamRef{suffix.kind, channel, GlobalBand(channel, k - 1)};
  return std::nullopt;
}

std::string ParamName(const ParamRef& ref) {
  if (ref.kind == ParamKind::InputSource) return "input.source";
  std::string name(kChannelNames[Index(ref.channel)]);
  if (IsEqKind(ref.kind)) {
    name += ".eq" + std::to_string(BandInChannel(ref.band) + 1);
    for (const EqSuffix& suffix : kEqSuffixes)
      if (suffix.kind == ref.kind) return name + "." + std::string(suffix.text);
  }
  for (const Suffix& suffix : kSuffixes)
    if (suffix.kind == ref.kind) return name + "." + std::string(suffix.text);
  return name;
}

Storage StorageOf(const ParamRef& ref) {
  switch (ref.kind) {
    case ParamKind::InputSource:
      return Storage::Record;
    case ParamKind::Mute:
      return Storage::NotStored;
    case ParamKind::Polarity:
      return ref.channel < kInputCount ? Storage::NotStored : Storage::Preset;
    default:
      return Storage::Preset;
  }
}

std::vector<ParamRef> AllParams() {
  std::vector<ParamRef> all{{ParamKind::InputSource, 0, 0}};
  for (int channel = 0; channel < kChannelCount; ++channel) {
    for (const Suffix& suffix : kSuffixes)
      if (!suffix.outputsOnly || channel >= kInputCount) all.push_back({suffix.kind, channel, 0});
    for (int k = 0; k < BandsOf(channel); ++k)
      for (const EqSuffix& suffix : kEqSuffixes)
        all.push_back({suffix.kind, channel, GlobalBand(channel, k)});
  }
  return all;
}

std::string ParamNameForms() {
  return "parameter names (CH = inA, inB, out1..out6; N = 1..6; K = 1..5 on inputs, 1..7 on "
         "outputs):\n"
         "  input.source                 analog | spdif\n"
         "  CH.level                     dB (inputs -15..15, outputs -12..6, steps of 0.1)\n"
         "  CH.mute                      on | off\n"
         "  CH.polarity                  0 | 180\n"
         "  CH.delay                     ms (at 20 degrees C)\n"
         "  CH.limiter                   clip | 15 | 9 | 3 | 0 (inputs), and -3..-15 (outputs)\n"
         "  CH.eqK.freq                  Hz, 20..20000\n"
         "  CH.eqK.q                     0.05..3 (a shelf becomes a bell)\n"
         "  CH.eqK.gain                  dB, -15..15 in steps of 0.5\n"
         "  CH.eqK.type                  bell | hs12 | hs6 | ls12 | ls6\n"
         "  outN.source                  inA | inB\n"
         "  outN.hp.freq, outN.lp.freq   Hz, 20..20000\n"
         "  outN.hp.type, outN.lp.type   0..8 or its text (0 = no cut-off)\n"
         "  outN.limiter.threshold       dBu, -10..20 in steps of 0.2\n"
         "  outN.limiter.attack          ms, 0.5..200\n"
         "  outN.limiter.release         ms, 100..500\n"
         "  outN.name                    up to 6 characters\n";
}

ShownValue GetParam(const ParamImage& image, const ParamRef& ref) {
  if (StorageOf(ref) == Storage::NotStored)
    throw IndexError(ParamName(ref) + " is kept in no image");
  const int channel = ref.channel;
  switch (ref.kind) {
    case ParamKind::InputSource:
      return Text(image[kInputSourceByte] == 0 ? "analog" : "spdif");
    case ParamKind::Level:
      return Number(LevelDb(image, channel), 1);
    case ParamKind::Polarity:
      return Number(PolarityInverted(image, channel) ? 180 : 0, 0);
    case ParamKind::Delay:
      return Number(ShownDelay(DelayStepsOf(image, channel), kDelayUnitMs, kCliTemperature), 3);
    case ParamKind::Limiter:
      return LimiterValue(LimiterLevel(image, channel));
    case ParamKind::EqFrequency:
      return Number(BandFrequency(image, ref.band), 1);
    case ParamKind::EqQ:
      return EqQValue(BandWidthIndex(image, ref.band));
    case ParamKind::EqGain:
      return Number(BandGainDb(image, ref.band), 1);
    case ParamKind::EqType:
      return Text(EqTypeOf(BandWidthIndex(image, ref.band)));
    case ParamKind::OutputSource:
      return Text(kChannelNames[Index(OutputSource(image, channel))]);
    case ParamKind::HighPassFrequency:
    case ParamKind::LowPassFrequency:
      return Number(CrossoverFrequency(image, FilterOf(ref)), 1);
    case ParamKind::HighPassType:
    case ParamKind::LowPassType:
      return Number(CrossoverType(image, FilterOf(ref)), 0);
    case ParamKind::Threshold:
      return Number(ThresholdDbu(image, channel), 1);
    case ParamKind::Attack:
      return Number(AttackTimesMs[Index(AttackIndex(image, channel))], 1);
    case ParamKind::Release:
      return Number(ReleaseTimesMs[Index(ReleaseIndex(image, channel))], 0);
    case ParamKind::Name:
      return Text(Trimmed(OutputName(image, channel)));
    case ParamKind::Mute:
      break;
  }
  throw IndexError(ParamName(ref) + " is kept in no image");
}

SetOutcome SetParam(DeviceParams& device, const ParamRef& ref, std::string_view text) {
  return SetNumber(ref, device, text);
}

}  // namespace talvex::params
