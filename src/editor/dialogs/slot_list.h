// The list of the device's 24 preset slots (`List1`) that the store and read dialogs share.
#pragma once

#include <QListWidget>
#include <string>

#include "presets/device_state.h"

namespace talvex::editor {

// "3   Chorus live": the slot number as talvexctl counts it (0..23) and its name; an unused
// slot reads "(empty)".
QString SlotRowText(const presets::DeviceState& state, int slot);

// The list, one row per slot, with the first row selected.
QListWidget* MakeSlotList(const presets::DeviceState& state);
void RefreshSlotList(QListWidget& list, const presets::DeviceState& state);

// A name as the box shows it: without the blanks that pad it to 16 characters.
QString ShownSlotName(const std::string& name);

}  // namespace talvex::editor
