// Where the preset file dialogs open: the program's preset folder (config/locations.h decides
// it: "preset" below the program's folder, or the user's data folder when installed).
#pragma once

#include <filesystem>

#include "editor/model/device_editor.h"

namespace talvex::editor {

// The records' preset folder, created when missing (a folder that cannot be created is still
// returned: the file dialog then opens where the platform puts it).
std::filesystem::path PresetFolder(const DeviceRecords& records);

}  // namespace talvex::editor
