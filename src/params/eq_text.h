// Equaliser filters as text, in the form room-measurement programs and system-wide equalisers
// write and read them:
//
//   Preamp: -3.5 dB
//   Filter  1: ON  PK       Fc   45.80 Hz  Gain   3.00 dB  Q  1.000
//   Filter  2: ON  LS 6dB   Fc  120,0 Hz   Gain  -2,5 dB
//   Filter  3: OFF None
//
// Import reads such a text onto one channel's bands in two steps: PlanEqImport puts every value
// on the device's grid and says, before anything is sent, what was rounded, which filters do
// not fit and what was skipped; ApplyEqImport then runs the edit path band by band. Export
// writes a channel's bands in the same form, so that an exported text read back gives the same
// bands. Standard library only.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "params/param_edit.h"

namespace talvex::params {

enum class EqNoteKind {
  Rounded,     // a value moved onto the device's grid or to its limit, or a shelf's slope or Q
  DoesNotFit,  // a filter that takes no band: a type the device lacks, no band left, a filter
               // line that cannot be read
  Skipped,     // left out on purpose: OFF filters, preamps, lines that hold no filter
};

struct EqNote {
  EqNoteKind kind = EqNoteKind::Skipped;
  int firstLine = 0;  // 1-based lines of the text; a run of alike lines makes one note
  int lastLine = 0;
  std::string what;  // "Filter 1", "Filters 6 .. 20", "Preamp", or empty for plain lines
  std::string text;  // "Fc 45.80 Hz -> 46.2 Hz, Q 1.000 -> 0.992 (width 1.60)"
};

// The note as one line of a report: "line 3, Filter 1: Fc 45.80 Hz -> 46.2 Hz".
std::string DescribeNote(const EqNote& note);
// The kind of a note as a report names it: "rounded", "does not fit", "skipped".
std::string_view NoteKindWord(EqNoteKind kind);

struct EqPlannedBand {
  int band = 0;           // global band number
  EqBandSetting setting;  // on the device's grid
  int line = 0;           // the text line of its filter; 0: no filter of the text, flattened
};

struct EqImportPlan {
  int channel = 0;
  std::vector<EqPlannedBand> bands;  // every band of the channel, in order
  std::vector<EqNote> notes;         // in line order
  int filterLines = 0;               // "Filter ..." lines, ON or OFF, read or not
  int bandsFromText = 0;             // bands 1 .. bandsFromText take the text's filters
  // True when the text holds at least one filter line; a text without any (a wrong file) must
  // not be applied: it would only flatten the channel.
  bool HasFilters() const { return filterLines > 0; }
};

// Reads `text` for `channel` of the device whose record is `image`. The filters that fit (ON,
// a bell or a shelf, readable) take the channel's bands in the order of the text; the bands left
// over are flattened: gain 0 dB, their frequency and width kept (as "Flat Eq" does), so that
// nothing of an earlier tuning stays mixed into the imported one. Never throws for the text;
// IndexError for a channel above 7. `mark` is the decimal mark of the report's device values.
EqImportPlan PlanEqImport(std::string_view text, std::span<const std::uint8_t> image, int channel,
                          DecimalMark mark = DecimalMark::Point);

// "Filters onto bands 1 .. 5; bands 6 .. 7 flattened to 0 dB (frequency and width kept)".
std::string EqPlanSummary(const EqImportPlan& plan);

// Sets every band of the plan through the edit path (EditBand: one command per band, and one
// more per linked output's band while the output link is on), in band order.
EditResult ApplyEqImport(DeviceParams& device, const EqImportPlan& plan,
                         const EditOptions& options = {});

// The channel's bands as filter lines, one per band, every band ON (a flat band too: it is a
// band the device holds), after a comment line "# TALVEX equaliser: <title>". Bells are PK
// with the Q the device gives their width, shelves "LS 6dB", "LS 12dB", "HS 6dB" or "HS 12dB".
// A channel whose equaliser is bypassed says so in a second comment line.
std::string ExportEqText(std::span<const std::uint8_t> image, int channel, std::string_view title,
                         DecimalMark mark = DecimalMark::Point);

// The device's bell width (a QTextTable index, 4..63) nearest a filter's Q, on a logarithmic
// scale: each width stands for the Q of QValueTable.
int BellWidthForQ(double q);

}  // namespace talvex::params
