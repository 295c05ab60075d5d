#include "cli/param_words.h"

#include <algorithm>
#include <array>
#include <cctype>

#include "cli/cli_context.h"
#include "params/image_decode.h"
#include "params/limiter.h"

namespace talvex::cli {

namespace {

using namespace params;

constexpr std::array<std::string_view, kChannelCount> kChannelWords = {
    "inA", "inB", "out1", "out2", "out3", "out4", "out5", "out6"};

// Delays on the command line: shown in ms, at 20 degrees C (temperature position 40).
constexpr DelayView kCliDelayView{kDelayUnitMs, kDefaultTemperature};

struct KindWord {
  ParamKind kind;
  std::string_view word;
};
// Device-wide names stand alone; channel names are CH.word; band names CH.eqK.word.
constexpr std::array<KindWord, 4> kDeviceWords = {{{ParamKind::InputSource, "input.source"},
                                                   {ParamKind::DelayUnit, "delay.unit"},
                                                   {ParamKind::OutputLink, "output.link"},
                                                   {ParamKind::Temperature, "temperature"}}};
constexpr std::array<KindWord, 15> kChannelKindWords = {{
    {ParamKind::Level, "level"},
    {ParamKind::Mute, "mute"},
    {ParamKind::Polarity, "polarity"},
    {ParamKind::Delay, "delay"},
    {ParamKind::Limiter, "limiter"},
    {ParamKind::EqBypass, "eq.bypass"},
    {ParamKind::OutputSource, "source"},
    {ParamKind::HighPassFrequency, "hp.freq"},
    {ParamKind::HighPassType, "hp.type"},
    {ParamKind::LowPassFrequency, "lp.freq"},
    {ParamKind::LowPassType, "lp.type"},
    {ParamKind::Threshold, "limiter.threshold"},
    {ParamKind::Attack, "limiter.attack"},
    {ParamKind::Release, "limiter.release"},
    {ParamKind::Name, "name"},
}};
constexpr std::array<KindWord, 4> kBandWords = {{{ParamKind::EqFrequency, "freq"},
                                                 {ParamKind::EqQ, "q"},
                                                 {ParamKind::EqGain, "gain"},
                                                 {ParamKind::EqType, "type"}}};

// The words of each two-way choice, choice 0 first.
struct ChoiceWords {
  ParamKind kind;
  std::string_view off;
  std::string_view on;
};
constexpr std::array<ChoiceWords, 7> kTwoWayWords = {{{ParamKind::InputSource, "analog", "spdif"},
                                                      {ParamKind::Mute, "off", "on"},
                                                      {ParamKind::Polarity, "0", "180"},
                                                      {ParamKind::EqBypass, "off", "on"},
                                                      {ParamKind::OutputSource, "inA", "inB"},
                                                      {ParamKind::DelayUnit, "ms", "m"},
                                                      {ParamKind::OutputLink, "off", "on"}}};
// EqTypeNames order: the four shelves, then the bell.
constexpr std::array<std::string_view, 5> kEqTypeWords = {"hs12", "hs6", "ls12", "ls6", "bell"};

std::size_t Index(int value) {
  return static_cast<std::size_t>(value);
}

ShownValue Number(double value, int decimals) {
  return {ShownValue::Type::Number, FormatNumber(value, decimals)};
}

ShownValue Text(std::string_view text) {
  return {ShownValue::Type::Text, std::string(text)};
}

const ChoiceWords* TwoWay(ParamKind kind) {
  for (const ChoiceWords& words : kTwoWayWords)
    if (words.kind == kind) return &words;
  return nullptr;
}

ShownValue LimiterValue(int level) {
  if (level == 0) return Text("clip");
  return Number(LimiterLevelDbu[Index(level)], 0);
}

// The word of a choice as get and set print it.
ShownValue ChoiceValue(const ParamRef& ref, int choice) {
  if (const ChoiceWords* words = TwoWay(ref.kind)) {
    const std::string_view word = choice == 0 ? words->off : words->on;
    return ref.kind == ParamKind::Polarity ? Number(choice * 180, 0) : Text(word);
  }
  switch (ref.kind) {
    case ParamKind::Limiter:
      return LimiterValue(choice);
    case ParamKind::EqType:
      return Text(kEqTypeWords[Index(choice)]);
    default:  // crossover types print as their number: their texts carry blanks
      return Number(choice, 0);
  }
}

std::optional<int> MatchLimiter(int channel, std::string_view text) {
  if (Folded(text) == "clip") return 0;
  const std::optional<double> dbu = ParseNumber(text);
  if (!dbu) return std::nullopt;
  for (int level = 1; level < LimiterLevelCount(channel); ++level)
    if (*dbu == LimiterLevelDbu[Index(level)]) return level;
  return std::nullopt;
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

std::optional<int> MatchChoice(const ParamRef& ref, std::string_view text) {
  if (const ChoiceWords* words = TwoWay(ref.kind)) {
    if (Folded(text) == Folded(words->off)) return 0;
    if (Folded(text) == Folded(words->on)) return 1;
    return std::nullopt;
  }
  switch (ref.kind) {
    case ParamKind::Limiter:
      return MatchLimiter(ref.channel, text);
    case ParamKind::EqType:
      for (std::size_t i = 0; i < kEqTypeWords.size(); ++i)
        if (Folded(text) == kEqTypeWords[i]) return static_cast<int>(i);
      return std::nullopt;
    default:
      return MatchCrossoverType(text);
  }
}

// The words a choice accepts, for the message when none matches.
std::string Choices(const ParamRef& ref) {
  if (const ChoiceWords* words = TwoWay(ref.kind))
    return std::string(words->off) + ", " + std::string(words->on);
  switch (ref.kind) {
    case ParamKind::Limiter: {
      std::string choices = "clip";
      for (int level = 1; level < LimiterLevelCount(ref.channel); ++level)
        choices += ", " + FormatNumber(LimiterLevelDbu[Index(level)], 0);
      return choices;
    }
    case ParamKind::EqType:
      return "bell, hs12, hs6, ls12, ls6";
    default:
      return "0..8 or a filter type text";
  }
}

std::string ChoiceError(const ParamRef& ref, std::string_view text, std::string_view choices) {
  return "\"" + std::string(text) + "\" is not a value of " + ParamName(ref) + " (" +
         std::string(choices) + ")";
}

bool Typed(const ParamRef& ref) {
  return ref.kind == ParamKind::Delay || ref.kind == ParamKind::Name || RuleOf(ref) != nullptr;
}

}  // namespace

std::string JsonValue(const ShownValue& value) {
  switch (value.type) {
    case ShownValue::Type::Number:
      return value.text;
    case ShownValue::Type::None:
      return "null";
    case ShownValue::Type::Text:
      break;
  }
  return JsonString(value.text);
}

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

std::string_view ChannelWord(int channel) {
  CheckIndex(channel, kChannelCount - 1, "channel");
  return kChannelWords[Index(channel)];
}

std::optional<int> ParseChannelWord(std::string_view text) {
  for (int channel = 0; channel < kChannelCount; ++channel)
    if (Folded(text) == Folded(kChannelWords[Index(channel)])) return channel;
  return std::nullopt;
}

std::optional<ParamRef> ParseParamName(std::string_view name) {
  for (const KindWord& word : kDeviceWords)
    if (name == word.word) return ParamRef{word.kind, 0, 0};
  const auto dot = name.find('.');
  if (dot == std::string_view::npos) return std::nullopt;
  const auto channelIt = std::find(kChannelWords.begin(), kChannelWords.end(), name.substr(0, dot));
  if (channelIt == kChannelWords.end()) return std::nullopt;
  const int channel = static_cast<int>(channelIt - kChannelWords.begin());
  const std::string_view rest = name.substr(dot + 1);
  for (const KindWord& word : kChannelKindWords) {
    if (rest != word.word) continue;
    if (IsOutputOnly(word.kind) && channel < kInputCount) return std::nullopt;
    return ParamRef{word.kind, channel, 0};
  }
  // eqK.freq, eqK.q, eqK.gain, eqK.type with K from 1
  if (rest.size() < 5 || !rest.starts_with("eq") || rest[3] != '.') return std::nullopt;
  const int k = rest[2] - '0';
  if (k < 1 || k > BandsOf(channel)) return std::nullopt;
  for (const KindWord& word : kBandWords)
    if (rest.substr(4) == word.word)
      return ParamRef{word.kind, channel, GlobalBand(channel, k - 1)};
  return std::nullopt;
}

std::string ParamName(const ParamRef& ref) {
  for (const KindWord& word : kDeviceWords)
    if (word.kind == ref.kind) return std::string(word.word);
  std::string name(kChannelWords[Index(ref.channel)]);
  if (IsEqBandKind(ref.kind)) {
    name += ".eq" + std::to_string(BandInChannel(ref.band) + 1);
    for (const KindWord& word : kBandWords)
      if (word.kind == ref.kind) return name + "." + std::string(word.word);
  }
  for (const KindWord& word : kChannelKindWords)
    if (word.kind == ref.kind) return name + "." + std::string(word.word);
  return name;
}

std::string ParamNameForms() {
  return "parameter names (CH = inA, inB, out1..out6; N = 1..6; K = 1..5 on inputs, 1..7 on "
         "outputs):\n"
         "  input.source                 analog | spdif\n"
         "  delay.unit                   ms | m (how the device's display shows delays)\n"
         "  output.link                  on | off (Out 1+2, 3+4, 5+6 take the same edits)\n"
         "  temperature                  degrees C, -20..50 (delays sent again)\n"
         "  CH.level                     dB (inputs -15..15, outputs -12..6, steps of 0.1)\n"
         "  CH.mute                      on | off\n"
         "  CH.polarity                  0 | 180\n"
         "  CH.delay                     ms (at 20 degrees C)\n"
         "  CH.limiter                   clip | 15 | 9 | 3 | 0 (inputs), and -3..-15 (outputs)\n"
         "  CH.eq.bypass                 on | off\n"
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
      return ChoiceValue(ref, image[kInputSourceByte] != 0 ? 1 : 0);
    case ParamKind::DelayUnit:
      return ChoiceValue(ref, image[kOptionByte] != 0 ? 1 : 0);
    case ParamKind::OutputLink:
      return ChoiceValue(ref, image[kOutputLinkByte] != 0 ? 1 : 0);
    case ParamKind::Level:
      return Number(LevelDb(image, channel), 1);
    case ParamKind::Polarity:
      return ChoiceValue(ref, PolarityInverted(image, channel) ? 1 : 0);
    case ParamKind::Delay:
      return Number(ShownDelay(DelayStepsOf(image, channel), kCliDelayView.unit,
                               kCliDelayView.temperaturePosition),
                    3);
    case ParamKind::Limiter:
      return LimiterValue(LimiterLevel(image, channel));
    case ParamKind::EqBypass:
      return ChoiceValue(ref, EqBypassed(image, channel) ? 1 : 0);
    case ParamKind::EqFrequency:
      return Number(BandFrequency(image, ref.band), 1);
    case ParamKind::EqQ: {
      const int width = BandWidthIndex(image, ref.band);
      if (width < kFirstBellWidth) return {ShownValue::Type::None, "none"};
      return Number(BellWidths[Index(width - kFirstBellWidth)], 2);
    }
    case ParamKind::EqGain:
      return Number(BandGainDb(image, ref.band), 1);
    case ParamKind::EqType:
      return ChoiceValue(ref, std::min(BandWidthIndex(image, ref.band), kFirstBellWidth));
    case ParamKind::OutputSource:
      return ChoiceValue(ref, OutputSource(image, channel));
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
    case ParamKind::Temperature:
      break;
  }
  throw IndexError(ParamName(ref) + " is kept in no image");
}

SetOutcome SetParam(DeviceParams& device, const ParamRef& ref, std::string_view text) {
  SetOutcome outcome;
  const EditOptions options{DecimalMark::Point, kCliDelayView, true};
  if (!Typed(ref)) {
    const std::optional<int> choice = MatchChoice(ref, text);
    if (!choice) {
      outcome.badChoice = ChoiceError(ref, text, Choices(ref));
      return outcome;
    }
    outcome.edit = EditChoice(device, ref, *choice, options);
    outcome.shown = ChoiceValue(ref, *choice);
    return outcome;
  }
  outcome.edit = EditText(device, ref, text, options);
  outcome.badText = outcome.edit.message;
  if (!outcome.edit.refusal.empty())
    outcome.badChoice = ChoiceError(ref, text, "up to 6 printable ASCII characters");
  if (!outcome.Ok()) return outcome;
  outcome.clamped = outcome.edit.clamped;
  if (ref.kind == ParamKind::Name) {
    outcome.shown = Text(Trimmed(outcome.edit.shown));
  } else {
    const ValueRule* rule = RuleOf(ref);
    outcome.shown = Number(outcome.edit.value, rule ? rule->decimals : 3);
  }
  return outcome;
}

std::optional<int> ParseSystemType(std::string_view text) {
  if (const auto number = ParseInt(std::string(text), 0, kSystemTypeCount - 1)) return number;
  for (std::size_t type = 0; type < SystemTypeNames.size(); ++type)
    if (Folded(text) == Folded(SystemTypeNames[type])) return static_cast<int>(type);
  return std::nullopt;
}

}  // namespace talvex::cli
