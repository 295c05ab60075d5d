// Where the program keeps its files. The device's tools kept "TenDev.cfg", "init.cfg",
// "Speakers.cfg" and the "preset" folder in the program's own folder; an installed copy cannot
// write there. The rule:
//   1. --config-dir DIR: the configuration files in DIR, the presets in DIR/preset;
//   2. else a program folder that is writable and is not an installation's bin folder (a
//      portable copy, the build folder): everything there, as the device's tools had it;
//   3. else the user's own folders: the configuration files in the platform's per-user
//      configuration folder, the presets in its per-user data folder (see UserFolders).
// Standard library only: the desktop program, the preset dialogs and the tests ask here.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace talvex::config {

// The folder of presets, inside the folder the rule picks.
inline constexpr const char* kPresetFolder = "preset";
// Our own folder name inside the user's configuration and data folders.
inline constexpr const char* kUserFolderName = "talvex";
// Marks an installation: PREFIX/bin holds the programs, PREFIX/share/talvex the shared files.
inline constexpr const char* kInstalledDataFolder = "share/talvex";

enum class Placement {
  Override,       // --config-dir
  ProgramFolder,  // writable program folder: a portable copy or the build folder
  UserFolders,    // an installed or read-only copy
};

struct Locations {
  std::filesystem::path configFolder;  // "TenDev.cfg", "init.cfg", "Speakers.cfg", settings
  std::filesystem::path presetFolder;  // "*.tvx"
  Placement placement = Placement::ProgramFolder;
};

// The user's own folders on this platform: on Linux and other POSIX systems
// $XDG_CONFIG_HOME/talvex (default ~/.config/talvex) and $XDG_DATA_HOME/talvex/preset (default
// ~/.local/share/talvex/preset); on Windows %APPDATA%\talvex and %APPDATA%\talvex\preset; on
// macOS ~/Library/Application Support/talvex and .../talvex/preset.
struct UserFolders {
  std::filesystem::path config;
  std::filesystem::path presets;
};

// Reads an environment variable (nullopt when unset or empty).
using Environment = std::function<std::optional<std::string>(const char* name)>;
std::optional<std::string> ProcessEnvironment(const char* name);

UserFolders StandardUserFolders(const Environment& environment = ProcessEnvironment);

// True when `folder` is PREFIX/bin of an installation (PREFIX/share/talvex exists beside it).
bool IsInstalledProgramFolder(const std::filesystem::path& folder);
// True when a file can be made in `folder`: tried, not guessed from permission bits, which
// say nothing on Windows or for an administrator. Nothing is left behind.
bool IsWritableFolder(const std::filesystem::path& folder);

// The rule above, for the program in `programFolder`.
Locations FindLocations(const std::filesystem::path& programFolder,
                        const std::optional<std::filesystem::path>& configDir,
                        const UserFolders& user = StandardUserFolders());

// Makes the two folders (and their parents). Empty on success, else why not.
std::string CreateFolders(const Locations& locations);

}  // namespace talvex::config
