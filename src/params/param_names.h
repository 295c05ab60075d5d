// Parameters by name, as talvexctl addresses them ("out2.level", "inA.eq3.gain"): parsing the
// names, reading a parameter out of an image, and setting one from text through the value
// rules and its sender. The command-line tool only prints and parses words.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "params/senders.h"

namespace talvex::params {

enum class ParamKind {
  InputSource,        // input.source: analog, spdif
  Level,              // CH.level: dB
  Mute,               // CH.mute: on (muted), off
  Polarity,           // CH.polarity: 0, 180
  Delay,              // CH.delay: ms (at 20 degrees C)
  Limiter,            // CH.limiter: clip or the dBu of a level text
  EqFrequency,        // CH.eqK.freq: Hz
  EqQ,                // CH.eqK.q: 0.05 .. 3 (a shelf becomes a bell)
  EqGain,             // CH.eqK.gain: dB
  EqType,             // CH.eqK.type: bell, hs12, hs6, ls12, ls6
  OutputSource,       // outN.source: inA, inB
  HighPassFrequency,  // outN.hp.freq: Hz
  HighPassType,       // outN.hp.type: 0..8 or its text
  LowPassFrequency,   // outN.lp.freq
  LowPassType,        // outN.lp.type
  Threshold,          // outN.limiter.threshold: dBu
  Attack,             // outN.limiter.attack: ms
  Release,            // outN.limiter.release: ms
  Name,               // outN.name: up to six characters
};

struct ParamRef {
  ParamKind kind = ParamKind::Level;
  int channel = 0;  // ChannelIndex (unused for input.source)
  int band = 0;     // global band number 0..51 for the equaliser kinds
  friend bool operator==(const ParamRef&, const ParamRef&) = default;
};

// Where a parameter is kept in a device's record.
enum class Storage {
  Preset,     // bytes 0..303: a device's live image and a preset file both hold it
  Record,     // beyond byte 303 (input source 321): a preset file holds it, a device's image not
  NotStored,  // in no image (mutes, input polarity): it can be set but never read back
};

std::optional<ParamRef> ParseParamName(std::string_view name);
std::string ParamName(const ParamRef& ref);
Storage StorageOf(const ParamRef& ref);
// Every parameter, in listing order.
std::vector<ParamRef> AllParams();
// The valid name forms, for a usage message.
std::string ParamNameForms();

struct ShownValue {
  enum class Type { Number, Text, None } type = Type::Text;
  std::string text;  // "." as the decimal mark
};

// The parameter as `image` holds it. Throws IndexError for a parameter that is NotStored or a
// byte the device would never hold.
ShownValue GetParam(const ParamImage& image, const ParamRef& ref);

struct SetOutcome {
  std::string_view badText;  // the system's message: the text is not a number; nothing changed
  std::string badChoice;     // the text is not one of the parameter's words; nothing changed
  ParamEdit edit;            // the one command of the parameter's sender
  ShownValue shown;          // the value as it was snapped
  bool clamped = false;
  bool Ok() const { return badText.empty() && badChoice.empty(); }
};

// Sets the parameter from text: reads and clamps and snaps it by its value rule, runs its
// sender on `device` (whose values must agree with its image: DeviceParams::FromImage), and
// returns the sender's command. Delays are read and shown in ms at 20 degrees C.
SetOutcome SetParam(DeviceParams& device, const ParamRef& ref, std::string_view text);

}  // namespace talvex::params
