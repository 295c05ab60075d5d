// talvexctl's words for parameters ("out2.level", "inA.eq3.gain", "delay.unit") and their values
// ("on", "bell", "spdif"): parsing and printing them. Setting a parameter goes through the one
// edit path of the parameter model (params/param_edit.h); reading one decodes the image.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "params/param_edit.h"

namespace talvex::cli {

using params::ParamKind;
using params::ParamRef;

std::optional<ParamRef> ParseParamName(std::string_view name);
std::string ParamName(const ParamRef& ref);
// The valid name forms, for a usage message.
std::string ParamNameForms();

struct ShownValue {
  enum class Type { Number, Text, None } type = Type::Text;
  std::string text;  // "." as the decimal mark
};

// The value as a JSON value: a number, null, or a string.
std::string JsonValue(const ShownValue& value);

// The parameter as `image` holds it. Throws IndexError for a parameter the image does not hold
// (StorageOf NotStored) or a byte the device would never hold.
ShownValue GetParam(const params::ParamImage& image, const ParamRef& ref);

struct SetOutcome {
  std::string_view badText;  // the system's message: the text is not a number; nothing changed
  std::string badChoice;     // the text is not one of the parameter's words; nothing changed
  params::EditResult edit;   // the edit: its commands (one per member of a link group)
  ShownValue shown;          // the value as it was snapped
  bool clamped = false;
  bool Ok() const { return badText.empty() && badChoice.empty(); }
};

// Sets the parameter from a word or a number on `device` (whose values must agree with its
// image: DeviceParams::FromImage). Delays are read and shown in ms at 20 degrees C.
SetOutcome SetParam(params::DeviceParams& device, const ParamRef& ref, std::string_view text);

// "2x3 WAY XOVER" or 1 for system type 1; blanks and case do not count.
std::optional<int> ParseSystemType(std::string_view text);
// The channel words inA, inB, out1 .. out6 (read in any case) and ChannelIndex.
std::string_view ChannelWord(int channel);
std::optional<int> ParseChannelWord(std::string_view text);

// A word compared ignoring case and blanks ("-24dB/oct Lz" matches "-24db/oct lz").
std::string Folded(std::string_view text);
// A name without the blanks that centre it.
std::string Trimmed(std::string_view text);

}  // namespace talvex::cli
