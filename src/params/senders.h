// One sender per parameter. A sender takes a device's stores and the new value (already
// clamped and snapped by the value rules), writes the value into ParamValues and ParamImage,
// builds the label texts the user reads, and returns exactly one command whose parameter
// bytes are copied from the image after it was updated; unused bytes are 0. Senders know no
// widget and no link: whoever holds the link sends the command (or, offline, nothing).
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "params/device_params.h"
#include "params/value_rules.h"
#include "protocol/frame.h"

namespace talvex::params {

struct ParamEdit {
  protocol::Command command;
  std::vector<std::string> labels;  // in the order each sender documents
};

struct EqBandSetting {
  double frequencyHz = 1000;  // 20 .. 20000
  int width = 9;              // QTextTable index: 0..3 shelves, 4..63 bell widths
  double gainDb = 0;          // -15 .. +15 in 0.5 dB steps
};

// The label of input 0 or 1 for an input source: "Input 1", "Input 2", or " SPDIF " for both.
std::string_view InputLabel(int source, int input);

// A name fitted into the six characters a device keeps, centred with blanks: 0 -> six
// blanks, 1 -> 3 + name + 2, 2 -> 2 + 2, 3 -> 2 + 1, 4 -> 1 + 1, 5 -> 1 + name, 6 as is.
// Longer names are cut to their first six characters (the name box takes no more).
std::string FitName(std::string_view name);

// "Flat" when every band of the channel is at 0 dB (whatever its type, a band at 0 dB leaves
// the signal as it is), "~~~~~~" otherwise.
std::string_view EqCaption(const ParamImage& image, int channel);

// "HP: 20 Hz,   No cut-off -- LP: 20000 Hz,   No cut-off" for output channel 2..7.
std::string CrossoverLabel(const ParamImage& image, int channel,
                           DecimalMark mark = DecimalMark::Point);

// Every method throws IndexError for a channel above 7, a band above 51, a filter above 11,
// an output-only parameter asked of an input, or a value off its device range; nothing is
// changed then.
class Senders {
 public:
  explicit Senders(DeviceParams& device, DecimalMark mark = DecimalMark::Point)
      : device_(device), mark_(mark) {}

  // Code 13; source 0 = analogue, 1 = S/PDIF (image 321). Labels: In A's, In B's.
  ParamEdit InputSource(int source);
  // Code 8; source 0 = In A, 1 = In B. Label: "+ InA" / "+ InB".
  ParamEdit OutputSource(int channel, int source);
  // Code 9. The editor's button passes the opposite of the current state. Label: the
  // button caption ("Unmute" while muted, "Mute" while playing).
  ParamEdit Mute(int channel, bool muted);
  // Code 3; travels with the channel's level byte. Label: "0'" / "180'".
  ParamEdit Polarity(int channel, bool inverted);
  // Code 1; travels with the polarity byte (outputs). Label: "-3.5 dB".
  ParamEdit Level(int channel, double db);
  // Code 7, outputs only; each sends attack, release and threshold together.
  // Labels: "20 dBu"; the attack list text (" 19"); the release list text ("140").
  ParamEdit LimiterThreshold(int channel, double dbu);
  ParamEdit LimiterAttack(int channel, int attackIndex);
  ParamEdit LimiterRelease(int channel, int releaseIndex);
  // Code 2. Label: the shown delay with its unit ("10.005 ms").
  ParamEdit Delay(int channel, DelaySteps steps);
  // Code 17: the device-wide delay unit, 0 = ms, 1 = m (image 323, device memory 0x12).
  // Label: the unit text (" ms" / " m").
  ParamEdit DelayUnit(int unit);
  // Code 35. Label: "  Limit" followed by the level text.
  ParamEdit Limiter(int channel, int level);
  // Code 34: the output link switch (1 = outputs linked). No label.
  ParamEdit OutputLink(bool on);
  // Code 5. Labels: frequency, width text, gain, the channel's caption ("Flat"/"~~~~~~").
  ParamEdit EqBand(int band, EqBandSetting setting);
  // Code 4; filter n = 2(k-1) high-pass, 2(k-1)+1 low-pass of Out k; type 0..8.
  // Labels: the frequency as snapped, the output's crossover label.
  ParamEdit Crossover(int filter, double frequencyHz, int type);
  // Code 14, outputs only. Label: the fitted name.
  ParamEdit OutputName(int channel, std::string_view name);
  // Code 29: byte 299, one bit per channel, set = the channel's equaliser is bypassed.
  // No label.
  ParamEdit EqBypass(int channel, bool bypassed);

 private:
  ParamEdit ChannelCommand(std::uint8_t code, int channel) const;
  ParamEdit LimiterBytes(int channel) const;
  std::string Number(double value, int decimals) const;

  DeviceParams& device_;
  DecimalMark mark_;
};

}  // namespace talvex::params
