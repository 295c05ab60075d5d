// One edit path for every front end. A parameter takes a typed text (committed with Enter), a
// control position (a slider, scroll bar or up-down) or a choice (a list, an option, a check
// box); the edit reads and rules the value, runs the parameter's sender on the device's stores
// and returns what changed: the value as snapped, the text its box shows, the control position,
// and the commands to send (one per edit; one per member of a link group for linked outputs).
// The desktop editor and talvexctl both call it; neither applies a rule of its own.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "params/decimal_mark.h"
#include "params/param_ref.h"
#include "params/senders.h"

namespace talvex::params {

// How delays are typed and shown: a unit (kDelayUnitMs or kDelayUnitMetres) and the
// temperature position 0..70 the speed of sound is taken from.
struct DelayView {
  int unit = kDelayUnitMs;
  int temperaturePosition = kDefaultTemperature;
  // The device's own: its delay unit and the temperature setting of its editor.
  static DelayView Of(const DeviceParams& device);
};

struct EditOptions {
  DecimalMark mark = DecimalMark::Point;
  // Unset: delays in the device's own view (the editor). talvexctl reads them in ms at 20 C.
  std::optional<DelayView> delayView;
  // Linked outputs take the same value (the device's output link switch is on).
  bool followLinks = true;
};

struct EditResult {
  // The system's text for a value that is no number ("  Incorrect value"), shown titled
  // "Warning"; nothing changed.
  std::string_view message;
  // Why a text is not a value of the parameter (a name that does not fit); nothing changed.
  std::string refusal;
  std::vector<ParamRef> changed;  // the parameter edited, then each linked output's twin
  std::vector<ParamEdit> edits;   // their senders' commands and labels, in sending order
  double value = 0;               // as clamped and snapped; a choice's number for choices
  int position = 0;               // the control position that shows the value
  int choice = 0;                 // for choices: the choice taken
  std::string shown;              // the text the parameter's box or label shows now
  bool clamped = false;           // the value lay outside its range and took a bound
  bool Ok() const { return message.empty() && refusal.empty(); }
};

// Typed kinds: levels, delays, band frequency, Q and gain, crossover frequencies, limiter
// threshold, attack and release, temperature, and names. Other kinds refuse text.
EditResult EditText(DeviceParams& device, const ParamRef& ref, std::string_view text,
                    const EditOptions& options = {});
// Slid kinds (the typed kinds but names): the position of the parameter's control; IndexError
// outside the control's range. A delay's position is its count of samples, 0..48000.
EditResult EditPosition(DeviceParams& device, const ParamRef& ref, int position,
                        const EditOptions& options = {});
// Choice kinds; IndexError for a choice outside 0..ChoiceCount(ref) - 1.
EditResult EditChoice(DeviceParams& device, const ParamRef& ref, int choice,
                      const EditOptions& options = {});
// "Flat Eq": every band of the channel to 0 dB, frequency and width kept; then the linked
// output's bands.
EditResult FlattenEq(DeviceParams& device, int channel, const EditOptions& options = {});
// A whole band at once (frequency, width or shelf, gain), as an imported filter sets it: one
// command for the band, then one for the same band of each linked output. The setting is meant
// to lie on the device's grid already (the rules rule::kBandFrequency and kBandGain, a
// QTextTable index); a value outside the device's range is an IndexError, with nothing changed
// on any member. `changed` holds one ref per command, of kind EqType, standing for the whole
// band; `shown` is the band's width label.
EditResult EditBand(DeviceParams& device, int band, const EqBandSetting& setting,
                    const EditOptions& options = {});

// The value rule of a typed kind (nullptr for delays, names and choices).
const ValueRule* RuleOf(const ParamRef& ref);
// How many choices a choice kind offers (0 for the other kinds).
int ChoiceCount(const ParamRef& ref);
// The text of choice `choice` as its list shows it ("+ InA", "-12dB/oct Bw", " Clip").
std::string ChoiceText(const ParamRef& ref, int choice);

// Output link groups: while the device's output link switch is on, Out 1 goes with Out 2,
// Out 3 with Out 4 and Out 5 with Out 6 (the two sides of one way in the factory types).
// The other members of `channel`'s group; empty for inputs and while the switch is off.
std::vector<int> LinkedOutputs(const DeviceParams& device, int channel);
// Whether an edit of this kind reaches the linked outputs (not sources and names, which set one
// side apart, nor the device-wide kinds).
bool FollowsLink(ParamKind kind);
// `ref` moved to another output: the same band in channel, the same filter of the pair.
ParamRef TwinOf(const ParamRef& ref, int channel);

// The parameter's current value as its control shows it.
struct ShownParam {
  std::string text;  // the box or label text
  double value = 0;
  int position = 0;
  int choice = 0;
};
ShownParam ShowParam(const DeviceParams& device, const ParamRef& ref,
                     const EditOptions& options = {});

}  // namespace talvex::params
