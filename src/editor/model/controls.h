// The editor window's controls as the model knows them: which parameter each edits, with what
// kind of control, the names the device's tools gave them, the message of each entry box, and
// the accessible name every control carries (its channel and its caption, e.g.
// "Out 3 EQ 2 Frequency"), so that screen readers and automation reach each one.
#pragma once

#include <string>
#include <string_view>

#include "params/param_edit.h"

namespace talvex::editor {

using params::ParamKind;
using params::ParamRef;

enum class ControlRole {
  Box,         // an entry box: typed, committed with Enter
  Slider,      // a slider, or the temperature's scroll bar
  UpDown,      // up-down buttons (the band frequency's steps, the delay's coarse steps)
  FineUpDown,  // the delay's fine steps
  List,        // a drop-down list
  Check,       // a check box
  Option,      // one option button of a group; `choice` is the one it stands for
};

struct ControlId {
  ParamRef ref;
  ControlRole role = ControlRole::Box;
  int choice = 0;
  friend bool operator==(const ControlId&, const ControlId&) = default;
};

// "In A", "In B", "Out 1" .. "Out 6".
std::string ChannelCaption(int channel);

// The name of the entry box of a typed kind in the device's tools ("Text1" .. "Text60").
std::string_view BoxName(ParamKind kind);
// The message a box shows, titled "Warning", for a text that is no number and for a refused key.
std::string_view BoxMessage(const ParamRef& ref);

// The caption of a control without its channel ("EQ 2 Frequency", "Level [dB] slider").
std::string ControlCaption(const ControlId& control);
// The channel's caption and the control's ("Out 3 EQ 2 Frequency"); device-wide controls
// carry their caption alone ("Temperature ['C]").
std::string AccessibleName(const ControlId& control);
// A control that edits no single parameter ("Flat Eq", a meter) of a channel.
std::string ChannelControlName(int channel, std::string_view caption);

// Up-down steps: a band frequency moves one step of FrequencyTable, a delay's coarse steps
// 48 samples (1 ms at 48 kHz), its fine steps one sample.
int PositionsPerStep(ControlRole role);

}  // namespace talvex::editor
