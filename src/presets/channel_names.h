// The eight channel names of a device ("Edit Names"): In A, In B and Out 1..Out 6, six
// characters each on the device, centred by FitName. Only the output names are part of the
// preset (image bytes at NameOffset, six per output) and only they are sent, one command 14
// per output; the input names are the editor's own.
//
// Split for the desktop program: CheckChannelNames and ApplyChannelNames on the UI thread, the
// six commands as one job on the link worker thread (SendCommandList with CommandsOf(edits)).
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "params/device_params.h"
#include "params/senders.h"

namespace talvex::presets {

inline constexpr std::string_view kEditNamesTitle = "Edit Names";
// Information icon; the dialog stays open.
inline constexpr std::string_view kNameMissingText = "Please input the Name !";
// Shown while the user types a character the names do not take. The pairs "£¬" belong to it.
inline constexpr std::string_view kNameSymbolsHint =
    "Please use the following symbols: 0 - 9£¬A - Z£¬a - z£¬< >£¬()£¬-_+=... ASCII Chars";
// The symbols the hint names beside the letters and digits of NameCharSet. Names take them
// too: the factory names carry "-" (" Low-A", "Sub-B "), and a name the device came with must
// go back unchanged.
inline constexpr std::string_view kNameSymbols = "<>()-_+=";

using ChannelNames = std::array<std::string, params::kChannelCount>;

// The editor's names before the user edits any: "In A" and "In B" fitted, and the output names
// the image holds.
ChannelNames NamesFromImage(const params::ParamImage& image);

// True for a character of NameCharSet (blank, digits, letters) or of kNameSymbols.
bool IsNameCharacter(char c);

// The check of one box while the user types: kNameSymbolsHint for a text longer than six
// characters (the boxes take six) or with a character names do not take; nullopt otherwise.
std::optional<std::string_view> NameHint(std::string_view text);

// The OK button's check, box by box in index order: kNameMissingText for the first box that
// holds no name (nothing, or blanks only), kNameSymbolsHint for the first name the boxes would
// not take; nullopt when the names may go (after kAreYouSureText, title "Edit Names").
std::optional<std::string_view> CheckChannelNames(const ChannelNames& texts);

// The model half (UI thread): `names` take the eight texts fitted to six characters, the
// output names go into the image at their NameOffset, character 1 first, and the six sender
// results (code 14 for Out 1..Out 6: p1 = channel, p2 = 0, p3..p8 the name) come back in that
// order. Input names change no image byte and are not sent. std::invalid_argument, with
// nothing changed, when CheckChannelNames refuses the texts.
std::vector<params::ParamEdit> ApplyChannelNames(params::DeviceParams& device, ChannelNames& names,
                                                 const ChannelNames& texts);

}  // namespace talvex::presets
