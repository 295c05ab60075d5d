// "Load Preset from PC" and "Save Preset to PC": the platform's file dialog over the preset
// folder with the filter "file preset (*.tvx)", then the rules of presets/preset_load.h. A
// loaded file's transfer, which sends every parameter, runs as the window's long job with its
// 18 points shown in FrmVMeter.
#pragma once

#include "editor/dialogs/command_context.h"

namespace talvex::editor {

inline constexpr const char* kLoadProgressTitle = "Load Preset from PC";
inline constexpr const char* kSaveFailedTitle = "Save Preset to PC";

// Cancel ends it silently; a file under 20 bytes is deleted silently; a file of another
// system type shows "The new preset is for ..." titled "Load Preset" and changes nothing; a
// file holding a byte no device keeps is refused with that reason, titled "Load Preset".
// Otherwise the bytes are taken over, the flags cleared, the editor shows the preset, every
// parameter is sent, and the caption names the file.
void LoadPresetFromPc(CommandContext& context);

// Writes the device's 1155 bytes atomically (the old file stays whole if the write fails,
// and the user is told why). Nothing is sent, no caption changes.
void SavePresetToPc(CommandContext& context);
// The save without ending a command: true once the file is written (and the editor's save state
// marks it); false when the user cancelled or the write failed (the user was told why).
bool SaveToChosenFile(CommandContext& context);

}  // namespace talvex::editor
