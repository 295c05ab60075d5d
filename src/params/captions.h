// The names of the system types and the editor window's captions, built in one place for the
// desktop program and talvexctl.
#pragma once

#include <string>
#include <string_view>

namespace talvex::params {

// The preset name a caption shows after a type change: the device runs its factory preset.
inline constexpr std::string_view kDefaultPresetName = "Default";

// The name of system type 0..2 ("2x3 WAY XOVER"); IndexError for any other number.
std::string_view SystemTypeName(int systemType);
// The same for a byte as a device reported it: a byte no type has reads "unknown type 7".
std::string SystemTypeText(int systemTypeByte);

// "ID:3 - Type: 2x3 WAY XOVER": the caption of an editor that has loaded the device's image.
std::string EditorCaption(int deviceId, int systemTypeByte);
// "ID:3 TALVEX - Last preset loaded: come from PC - show.tvx - Type: 2x3 WAY XOVER": after a
// preset file was loaded; `fileTitle` is the file's name without its folder.
std::string LoadedFromPcCaption(int deviceId, std::string_view fileTitle, int systemType);
// "ID:3 TALVEX - Last preset loaded: come from DEVICE - Chorus live      - Type: 2x3 WAY XOVER":
// after a read from device memory; `slotName` as the slot list holds it.
std::string LoadedFromDeviceCaption(int deviceId, std::string_view slotName, int systemType);
// "ID:3 TALVEX - Preset loaded from device: Default - Type: 6 WAY XOVER": after a type change.
std::string DefaultLoadedCaption(int deviceId, int systemType);

}  // namespace talvex::params
