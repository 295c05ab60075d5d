// Copying every setting of one channel onto another channel of the same device ("Input Copy"
// between In A and In B, "Output Copy" between two of Out 1..Out 6), each value sent through
// the sender a single edit of it uses.
//
// Split for the desktop program: the copy functions change the stores on the UI thread and
// return the senders' results in sending order; the commands go out as one job on the link
// worker thread (SendCommandList with CommandsOf(copy.edits)).
#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "params/device_params.h"
#include "params/senders.h"

namespace talvex::presets {

inline constexpr std::string_view kInputCopyCaption = "Input Copy";
inline constexpr std::string_view kOutputCopyCaption = "Output Copy";
inline constexpr std::string_view kCopyInputTitle = "Copy Input";
inline constexpr std::string_view kCopyOutputTitle = "Copy Output";
// Shown with the critical-stop icon, OK only; the dialog stays open.
inline constexpr std::string_view kSameChannelText = "Copy not possible, Source=Destination";

// kSameChannelText when source and destination are one channel (nothing may change or be
// sent), nullopt when the copy may go (after kAreYouSureText, No the default button).
// IndexError unless both are inputs (0, 1) or both outputs (2..7).
std::optional<std::string_view> CheckCopy(int source, int destination);

struct ChannelCopy {
  int source = 0;
  int destination = 0;
  // The senders' results in sending order; their labels are the destination's new texts.
  std::vector<params::ParamEdit> edits;
};

// In A onto In B, and In B onto In A, in this order: level (code 1); the destination's bit of
// byte 299 set as the source's (code 29, the whole byte); each of the five equaliser bands,
// type, frequency, width and gain (code 5); delay (code 2). 8 commands.
ChannelCopy CopyInputAToB(params::DeviceParams& device,
                          params::DecimalMark mark = params::DecimalMark::Point);
ChannelCopy CopyInputBToA(params::DeviceParams& device,
                          params::DecimalMark mark = params::DecimalMark::Point);

// Output `source` onto output `destination` (ChannelIndex 2..7), in this order:
//   level (code 1);
//   crossover slope and type: the high-pass, then the low-pass filter takes the source's
//     filter type at its own frequency as it stands (code 4, twice);
//   limiter threshold, attack and release (code 7, three times);
//   the high-pass, then the low-pass filter at the source's frequency (code 4, twice; the
//     editor recomputes the crossover response after each);
//   the destination's bit of byte 299 (code 29);
//   each of the seven equaliser bands (code 5);
//   polarity (code 3) and delay (code 2).
// 18 commands. Output source, mute, name and the code-35 limiter level are not copied.
ChannelCopy CopyOutput(params::DeviceParams& device, int source, int destination,
                       params::DecimalMark mark = params::DecimalMark::Point);

// The copy the dialogs run for a checked pair: an input copy by its direction, else
// CopyOutput. Every copy works on a copy of the stores first: a source byte that no sender
// takes throws IndexError with `device` unchanged.
ChannelCopy CopyChannel(params::DeviceParams& device, int source, int destination,
                        params::DecimalMark mark = params::DecimalMark::Point);

}  // namespace talvex::presets
