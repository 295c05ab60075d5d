// Where preset files live. This is the one place that decides it, so that an installed
// program can point it elsewhere.
#pragma once

#include <filesystem>

namespace talvex::editor {

// The folder "preset" below the program's own folder, created when missing (a folder that
// cannot be created is still returned: the file dialog then opens where the platform puts it).
std::filesystem::path PresetFolder();

}  // namespace talvex::editor
