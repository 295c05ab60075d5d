#include "params/eq_text.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <optional>

#include "params/image_decode.h"

namespace talvex::params {

namespace {

// Width codes of the shelves (QTextTable 0..3) and the slopes they stand for, in dB per octave.
constexpr int kHighShelf12 = 0;
constexpr int kHighShelf6 = 1;
constexpr int kLowShelf12 = 2;
constexpr int kLowShelf6 = 3;
constexpr double kSteepSlope = 12;
constexpr double kGentleSlope = 6;
constexpr std::size_t kQuotedLength = 40;  // of an ignored line, in its note

std::size_t Index(int value) {
  return static_cast<std::size_t>(value);
}

std::string Lower(std::string_view text) {
  std::string lower(text);
  for (char& c : lower)
    c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return lower;
}

bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\v' || c == '\f';
}

std::string_view Trim(std::string_view text) {
  while (!text.empty() && IsBlank(text.front()))
    text.remove_prefix(1);
  while (!text.empty() && IsBlank(text.back()))
    text.remove_suffix(1);
  return text;
}

std::vector<std::string_view> Words(std::string_view text) {
  std::vector<std::string_view> words;
  std::size_t at = 0;
  while (at < text.size()) {
    while (at < text.size() && IsBlank(text[at]))
      ++at;
    const std::size_t start = at;
    while (at < text.size() && !IsBlank(text[at]))
      ++at;
    if (at > start) words.push_back(text.substr(start, at - start));
  }
  return words;
}

// A number as the text wrote it: its value, the text itself, and the digits after its mark,
// which say how closely the writer meant it.
struct Written {
  double value = 0;
  std::string text;
  int decimals = 0;
  double scale = 1;  // 1000 for a frequency written in kHz

  double Value() const { return value * scale; }
  // A value on the device's grid that the written text already names, to its last digit.
  bool Names(double deviceValue) const {
    const double halfDigit = 0.5 * std::pow(10.0, -decimals) * scale;
    return std::fabs(Value() - deviceValue) <= halfDigit * (1 + 1e-9);
  }
};

// "45.80", "-3,00", "12dB": the number at the front of a word and what follows it.
std::optional<Written> ReadNumber(std::string_view word, std::string_view& unit) {
  std::size_t end = 0;
  while (end < word.size() &&
         (std::isdigit(static_cast<unsigned char>(word[end])) || word[end] == '.' ||
          word[end] == ',' || ((word[end] == '-' || word[end] == '+') && end == 0)))
    ++end;
  const std::optional<double> value = ParseNumber(word.substr(0, end));
  if (!value || !std::isfinite(*value)) return std::nullopt;
  Written written{*value, std::string(word.substr(0, end)), 0, 1};
  const std::size_t mark = written.text.find_first_of(".,");
  if (mark != std::string::npos)
    written.decimals = static_cast<int>(written.text.size() - mark - 1);
  unit = word.substr(end);
  return written;
}

enum class FilterType { Bell, LowShelf, HighShelf, Empty, Lacking, Unknown };

struct TypeWord {
  std::string_view word;
  FilterType type;
  std::string_view lacking;  // what the device lacks, for the Lacking types
};

constexpr std::array<TypeWord, 17> kTypeWords = {{
    {"pk", FilterType::Bell, {}},
    {"peq", FilterType::Bell, {}},
    {"peak", FilterType::Bell, {}},
    {"ls", FilterType::LowShelf, {}},
    {"lsc", FilterType::LowShelf, {}},
    {"lsq", FilterType::LowShelf, {}},
    {"hs", FilterType::HighShelf, {}},
    {"hsc", FilterType::HighShelf, {}},
    {"hsq", FilterType::HighShelf, {}},
    {"none", FilterType::Empty, {}},
    {"no", FilterType::Lacking, "a notch filter"},
    {"ap", FilterType::Lacking, "an all-pass filter"},
    {"bp", FilterType::Lacking, "a band-pass filter"},
    {"hp", FilterType::Lacking, "a high-pass filter"},
    {"hpq", FilterType::Lacking, "a high-pass filter"},
    {"lp", FilterType::Lacking, "a low-pass filter"},
    {"lpq", FilterType::Lacking, "a low-pass filter"},
}};

const TypeWord* FindType(std::string_view word) {
  const std::string lower = Lower(word);
  for (const TypeWord& type : kTypeWords)
    if (type.word == lower) return &type;
  return nullptr;
}

// One filter line as read.
struct ReadFilter {
  std::string what;  // "Filter 1", or "Filter" when the line numbers none
  bool on = false;
  std::string typeText;
  FilterType type = FilterType::Unknown;
  std::string_view lacking;
  std::optional<Written> slope, fc, gain, q, bandwidth;
  std::string error;  // why the line cannot be read
};

// The words after the type, each key with its number: "Fc 45.80 Hz", "Gain -3 dB", "Q 1.0",
// "BW Oct 1.0"; a unit may stand apart or stick to the number.
class ValueReader {
 public:
  explicit ValueReader(std::vector<std::string_view> words) : words_(std::move(words)) {}

  void ReadInto(ReadFilter& filter) {
    ReadSlope(filter);
    while (filter.error.empty() && at_ < words_.size()) {
      const std::string key = Lower(words_[at_++]);
      if (key == "fc") {
        filter.fc = Number(filter, "Fc", {"hz", "khz"});
      } else if (key == "gain") {
        filter.gain = Number(filter, "Gain", {"db", {}});
      } else if (key == "q") {
        filter.q = Number(filter, "Q", {});
      } else if (key == "bw") {
        if (at_ < words_.size() && Lower(words_[at_]) == "oct") ++at_;
        filter.bandwidth = Number(filter, "BW", {"oct", {}});
      } else {
        filter.error = "\"" + std::string(words_[at_ - 1]) + "\" is no value of a filter";
      }
    }
  }

 private:
  struct Units {
    std::string_view plain;  // the unit as written, lower case
    std::string_view kilo;   // a unit worth a thousand of it
  };

  static bool IsKey(std::string_view word) {
    const std::string lower = Lower(word);
    return lower == "fc" || lower == "gain" || lower == "q" || lower == "bw";
  }

  static bool IsSlopeUnit(std::string_view word) {
    const std::string lower = Lower(word);
    return lower == "db" || lower == "db/oct";
  }

  // "LS 6dB", "LSC 12 dB": a slope in dB per octave right after a shelf's type.
  void ReadSlope(ReadFilter& filter) {
    if (at_ >= words_.size()) return;
    std::string_view unit;
    const std::optional<Written> slope = ReadNumber(words_[at_], unit);
    if (!slope || slope->text.empty()) return;
    ++at_;
    if (unit.empty() && at_ < words_.size() && IsSlopeUnit(words_[at_])) unit = words_[at_++];
    if (!unit.empty() && !IsSlopeUnit(unit))
      filter.error = "\"" + std::string(unit) + "\" is no unit of a slope";
    filter.slope = slope;
  }

  std::optional<Written> Number(ReadFilter& filter, std::string_view key, Units units) {
    std::string_view unit;
    std::optional<Written> number;
    if (at_ < words_.size()) number = ReadNumber(words_[at_++], unit);
    if (!number || number->text.empty()) {
      filter.error = "no number after " + std::string(key);
      return std::nullopt;
    }
    // A word after the number that is no key of the next value is this value's unit.
    if (unit.empty() && at_ < words_.size() && !IsKey(words_[at_])) unit = words_[at_++];
    const std::string lowerUnit = Lower(unit);
    if (!units.kilo.empty() && lowerUnit == units.kilo) {
      number->scale = 1000;
    } else if (!lowerUnit.empty() && lowerUnit != units.plain) {
      filter.error = "\"" + std::string(unit) + "\" is no unit of " + std::string(key);
    }
    return number;
  }

  std::vector<std::string_view> words_;
  std::size_t at_ = 0;
};

// "Filter  1: ON  PK  Fc 45.80 Hz ..." after the colon; `label` is what stood before it.
ReadFilter ReadFilterLine(std::string_view label, std::string_view rest) {
  ReadFilter filter;
  const std::vector<std::string_view> labelWords = Words(label);
  filter.what = labelWords.size() > 1 ? "Filter " + std::string(labelWords[1]) : "Filter";
  std::vector<std::string_view> words = Words(rest);
  if (words.empty() || (Lower(words[0]) != "on" && Lower(words[0]) != "off")) {
    filter.error = "neither ON nor OFF";
    return filter;
  }
  filter.on = Lower(words[0]) == "on";
  if (!filter.on) return filter;
  if (words.size() < 2) {
    filter.error = "no filter type";
    return filter;
  }
  filter.typeText = std::string(words[1]);
  if (const TypeWord* type = FindType(words[1])) {
    filter.type = type->type;
    filter.lacking = type->lacking;
  }
  if (filter.type != FilterType::Bell && filter.type != FilterType::LowShelf &&
      filter.type != FilterType::HighShelf)
    return filter;
  ValueReader(std::vector<std::string_view>(words.begin() + 2, words.end())).ReadInto(filter);
  if (!filter.error.empty()) return filter;
  if (filter.slope && filter.type == FilterType::Bell)
    filter.error = "a number right after PK";
  else if (!filter.fc)
    filter.error = "no Fc";
  else if (!filter.gain)
    filter.error = "no Gain";
  else if (filter.type == FilterType::Bell && !filter.q && !filter.bandwidth)
    filter.error = "no Q";
  else if (filter.q && !(filter.q->Value() > 0))
    filter.error = "Q " + filter.q->text + " is not above 0";
  return filter;
}

std::string Fixed(double value, int decimals, DecimalMark mark) {
  char buffer[32];
  std::snprintf(buffer, sizeof buffer, "%.*f", decimals, value);
  std::string text = buffer;
  if (text.find_first_not_of("-0.") == std::string::npos) text = text.substr(text[0] == '-');
  std::replace(text.begin(), text.end(), '.', MarkChar(mark));
  return text;
}

double BellQ(int width) {
  return QValueTable[Index(width - kFirstBellWidth)];
}

// Builds a band from a filter that fits, noting each value that had to move.
class BandBuilder {
 public:
  BandBuilder(const ReadFilter& filter, DecimalMark mark) : filter_(filter), mark_(mark) {}

  EqBandSetting Build() {
    EqBandSetting setting;
    setting.frequencyHz = Frequency();
    setting.gainDb = Gain();
    setting.width = filter_.type == FilterType::Bell ? BellWidth() : ShelfWidth();
    return setting;
  }

  std::string Changes() const { return changes_; }

 private:
  void Note(const std::string& change) { changes_ += (changes_.empty() ? "" : ", ") + change; }

  void NoteRuled(const char* key, const Written& written, const RuledValue& ruled,
                 std::string_view unit, const char* lowLimit, const char* highLimit) {
    if (!ruled.clamped && written.Names(ruled.value)) return;
    std::string change = std::string(key) + " " + written.text + (written.scale > 1 ? " k" : " ") +
                         std::string(unit) + " -> " + FormatNumber(ruled.value, 1, mark_) + " " +
                         std::string(unit);
    if (ruled.clamped) change += written.Value() < ruled.value ? lowLimit : highLimit;
    Note(change);
  }

  double Frequency() {
    const RuledValue ruled = ApplyRule(rule::kBandFrequency, filter_.fc->Value());
    NoteRuled("Fc", *filter_.fc, ruled, "Hz", " (the device's lowest)", " (the device's highest)");
    return ruled.value;
  }

  double Gain() {
    const RuledValue ruled = ApplyRule(rule::kBandGain, filter_.gain->Value());
    NoteRuled("Gain", *filter_.gain, ruled, "dB", " (the device's limit)", " (the device's limit)");
    return ruled.value;
  }

  int BellWidth() {
    if (filter_.q) {
      const int width = BellWidthForQ(filter_.q->Value());
      const double q = BellQ(width);
      if (!filter_.q->Names(q)) {
        std::string change = "Q " + filter_.q->text + " -> " + Fixed(q, 3, mark_) + " (width " +
                             std::string(QTextTable(mark_)[Index(width)]);
        if (filter_.q->Value() > BellQ(kFirstBellWidth)) change += ", the narrowest bell";
        if (filter_.q->Value() < BellQ(kFirstBellWidth + 59)) change += ", the widest bell";
        Note(change + ")");
      }
      if (filter_.bandwidth) Note("BW ignored: Q taken");
      return width;
    }
    const RuledValue ruled = ApplyRule(rule::kBandQ, filter_.bandwidth->Value());
    if (ruled.clamped || !filter_.bandwidth->Names(ruled.value))
      Note("BW " + filter_.bandwidth->text + " oct -> " + Fixed(ruled.value, 2, mark_) + " oct");
    return ruled.position;
  }

  // The device's shelves are 6 and 12 dB per octave with a fixed shape: a written slope goes to
  // the nearer (9 dB to 6), a shelf without one is taken as 12 dB (the second-order shelf these
  // programs mean by LS and HS), and a shelf's Q or BW cannot be kept.
  int ShelfWidth() {
    double slope = kSteepSlope;
    if (filter_.slope) {
      Written magnitude = *filter_.slope;  // "-12 dB" and "12 dB" are the same slope
      magnitude.value = std::fabs(magnitude.value);
      slope = magnitude.Value() <= (kSteepSlope + kGentleSlope) / 2 ? kGentleSlope : kSteepSlope;
      if (!magnitude.Names(slope))
        Note("slope " + filter_.slope->text + " dB -> " + FormatNumber(slope, 0) + " dB");
    } else {
      Note("no slope: taken as the device's 12 dB shelf");
    }
    if (filter_.q)
      Note("Q " + filter_.q->text + " ignored: the device's shelves have a fixed shape");
    if (filter_.bandwidth) Note("BW ignored: the device's shelves have a fixed shape");
    const bool steep = slope == kSteepSlope;
    if (filter_.type == FilterType::HighShelf) return steep ? kHighShelf12 : kHighShelf6;
    return steep ? kLowShelf12 : kLowShelf6;
  }

  const ReadFilter& filter_;
  DecimalMark mark_;
  std::string changes_;
};

// Collects the notes, making one of each run of OFF filters or of lines that hold no filter.
class NoteList {
 public:
  enum class Run { None, Off, Ignored };

  void Add(EqNoteKind kind, int line, std::string what, std::string text, Run run = Run::None) {
    if (run != Run::None && run == lastRun_ && !notes_.empty()) {
      EqNote& last = notes_.back();
      last.lastLine = line;
      if (!what.empty()) last.what = runFirst_ + " .. " + what;
      return;
    }
    lastRun_ = run;
    runFirst_ = what;
    notes_.push_back({kind, line, line, std::move(what), std::move(text)});
  }

  std::vector<EqNote> Take() { return std::move(notes_); }

 private:
  std::vector<EqNote> notes_;
  Run lastRun_ = Run::None;
  std::string runFirst_;
};

constexpr std::string_view kPreampText =
    " not applied: the channel's level is left as it is (a preamp keeps a PC's digital path "
    "from clipping; on the processor the level sets the balance between the ways)";

void ReadPreamp(std::string_view rest, int line, DecimalMark mark, NoteList& notes) {
  const std::vector<std::string_view> words = Words(rest);
  std::string_view unit;
  const std::optional<Written> gain = words.empty() ? std::nullopt : ReadNumber(words[0], unit);
  if (!gain || gain->text.empty()) {
    notes.Add(EqNoteKind::Skipped, line, "Preamp", "no number: ignored");
    return;
  }
  notes.Add(EqNoteKind::Skipped, line, "Preamp",
            FormatNumber(gain->Value(), 2, mark) + " dB" + std::string(kPreampText));
}

std::string DescribeLacking(const ReadFilter& filter) {
  std::string text = std::string(filter.lacking) + " (" + filter.typeText +
                     "): the device's bands are bells and shelves";
  const std::string type = Lower(filter.typeText);
  if (type.starts_with("hp") || type.starts_with("lp"))
    text += "; an output's crossover has high-pass and low-pass filters";
  return text;
}

std::string BandRange(int first, int last) {
  if (first == last) return "band " + std::to_string(first);
  return "bands " + std::to_string(first) + " .. " + std::to_string(last);
}

// Reads one line; a filter that fits takes the next band.
class PlanReader {
 public:
  PlanReader(EqImportPlan& plan, DecimalMark mark) : plan_(plan), mark_(mark) {}

  void ReadLine(std::string_view raw, int line) {
    const std::string_view text = Trim(raw);
    if (text.empty() || text.front() == '#' || text.front() == ';' || text.starts_with("//"))
      return;
    const std::size_t colon = text.find(':');
    const std::string_view label = colon == std::string_view::npos ? text : text.substr(0, colon);
    const std::vector<std::string_view> labelWords = Words(label);
    const std::string head = labelWords.empty() ? std::string() : Lower(labelWords[0]);
    if (colon != std::string_view::npos && head == "preamp" && labelWords.size() == 1) {
      ReadPreamp(text.substr(colon + 1), line, mark_, notes_);
    } else if (colon != std::string_view::npos && head == "filter" && labelWords.size() <= 2) {
      ++plan_.filterLines;
      TakeFilter(ReadFilterLine(label, text.substr(colon + 1)), line);
    } else {
      std::string quoted(text.substr(0, kQuotedLength));
      notes_.Add(EqNoteKind::Skipped, line, {}, "no filter settings, ignored (\"" + quoted + "\")",
                 NoteList::Run::Ignored);
    }
  }

  std::vector<EqNote> TakeNotes() { return notes_.Take(); }

 private:
  void TakeFilter(const ReadFilter& filter, int line) {
    if (!filter.error.empty()) {
      notes_.Add(EqNoteKind::DoesNotFit, line, filter.what, filter.error + ": not read");
    } else if (!filter.on) {
      notes_.Add(EqNoteKind::Skipped, line, filter.what, "OFF, skipped", NoteList::Run::Off);
    } else if (filter.type == FilterType::Empty) {
      notes_.Add(EqNoteKind::Skipped, line, filter.what, "no filter (None), skipped");
    } else if (filter.type == FilterType::Lacking) {
      notes_.Add(EqNoteKind::DoesNotFit, line, filter.what, DescribeLacking(filter));
    } else if (filter.type == FilterType::Unknown) {
      notes_.Add(EqNoteKind::DoesNotFit, line, filter.what,
                 "type \"" + filter.typeText + "\" is unknown");
    } else if (plan_.bandsFromText >= static_cast<int>(plan_.bands.size())) {
      notes_.Add(EqNoteKind::DoesNotFit, line, filter.what,
                 "no band left: the channel has " + std::to_string(plan_.bands.size()));
    } else {
      BandBuilder builder(filter, mark_);
      EqPlannedBand& band = plan_.bands[Index(plan_.bandsFromText++)];
      band.setting = builder.Build();
      band.line = line;
      if (!builder.Changes().empty())
        notes_.Add(EqNoteKind::Rounded, line, filter.what, builder.Changes());
    }
  }

  EqImportPlan& plan_;
  DecimalMark mark_;
  NoteList notes_;
};

}  // namespace

std::string_view NoteKindWord(EqNoteKind kind) {
  switch (kind) {
    case EqNoteKind::Rounded:
      return "rounded";
    case EqNoteKind::DoesNotFit:
      return "does not fit";
    case EqNoteKind::Skipped:
      break;
  }
  return "skipped";
}

std::string DescribeNote(const EqNote& note) {
  std::string text = note.firstLine == note.lastLine ? "line " + std::to_string(note.firstLine)
                                                     : "lines " + std::to_string(note.firstLine) +
                                                           "-" + std::to_string(note.lastLine);
  if (!note.what.empty()) text += ", " + note.what;
  return text + ": " + note.text;
}

int BellWidthForQ(double q) {
  int best = kFirstBellWidth;
  double bestDistance = std::fabs(std::log(q / BellQ(best)));
  for (int width = kFirstBellWidth + 1; width < static_cast<int>(QTextTablePoint.size()); ++width) {
    const double distance = std::fabs(std::log(q / BellQ(width)));
    if (distance < bestDistance) {
      best = width;
      bestDistance = distance;
    }
  }
  return best;
}

EqImportPlan PlanEqImport(std::string_view text, std::span<const std::uint8_t> image, int channel,
                          DecimalMark mark) {
  CheckIndex(channel, kChannelCount - 1, "channel");
  EqImportPlan plan;
  plan.channel = channel;
  for (int k = 0; k < BandsOf(channel); ++k) {
    const int band = GlobalBand(channel, k);
    plan.bands.push_back({band, {BandFrequency(image, band), BandWidthIndex(image, band), 0}, 0});
  }
  PlanReader reader(plan, mark);
  // Programs on Windows often begin a text file with the byte-order mark of UTF-8.
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
  int line = 0;
  while (!text.empty()) {
    const std::size_t end = text.find('\n');
    reader.ReadLine(text.substr(0, end), ++line);
    text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
  }
  plan.notes = reader.TakeNotes();
  return plan;
}

std::string EqPlanSummary(const EqImportPlan& plan) {
  const int total = static_cast<int>(plan.bands.size());
  const int taken = plan.bandsFromText;
  const std::string flattened = " flattened to 0 dB (frequency and width kept)";
  if (taken == 0) return "no filter fits: every band" + flattened;
  std::string summary = "filters onto " + BandRange(1, taken);
  if (taken < total) summary += "; " + BandRange(taken + 1, total) + flattened;
  return summary;
}

EditResult ApplyEqImport(DeviceParams& device, const EqImportPlan& plan,
                         const EditOptions& options) {
  EditResult result;
  for (const EqPlannedBand& band : plan.bands) {
    EditResult one = EditBand(device, band.band, band.setting, options);
    result.changed.insert(result.changed.end(), one.changed.begin(), one.changed.end());
    result.edits.insert(result.edits.end(), one.edits.begin(), one.edits.end());
  }
  return result;
}

std::string ExportEqText(std::span<const std::uint8_t> image, int channel, std::string_view title,
                         DecimalMark mark) {
  CheckIndex(channel, kChannelCount - 1, "channel");
  std::string text = "# TALVEX equaliser: " + std::string(title) + "\n";
  if (EqBypassed(image, channel))
    text += "# bypassed on the device: these bands do not act while the bypass is on\n";
  for (int k = 0; k < BandsOf(channel); ++k) {
    const int band = GlobalBand(channel, k);
    const int width = BandWidthIndex(image, band);
    static constexpr std::array<std::string_view, 4> kShelfWords = {"HS 12dB", "HS 6dB", "LS 12dB",
                                                                    "LS 6dB"};
    const std::string type =
        width < kFirstBellWidth ? std::string(kShelfWords[Index(width)]) : std::string("PK");
    char line[160];
    std::snprintf(line, sizeof line, "Filter %2d: ON  %-7s  Fc %7s Hz  Gain %5s dB", k + 1,
                  type.c_str(), Fixed(BandFrequency(image, band), 1, mark).c_str(),
                  Fixed(BandGainDb(image, band), 1, mark).c_str());
    text += line;
    if (width >= kFirstBellWidth) text += "  Q " + Fixed(BellQ(width), 3, mark);
    text += '\n';
  }
  return text;
}

}  // namespace talvex::params
