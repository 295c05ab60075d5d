#include "config/locations.h"

#include <cstdlib>
#include <fstream>
#include <system_error>

namespace talvex::config {

namespace fs = std::filesystem;

std::optional<std::string> ProcessEnvironment(const char* name) {
  const char* value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe): read at start-up
  if (!value || !*value) return std::nullopt;
  return std::string(value);
}

UserFolders StandardUserFolders(const Environment& environment) {
  const fs::path home = environment("HOME").value_or(".");
#if defined(_WIN32)
  const fs::path base = environment("APPDATA").value_or(environment("USERPROFILE").value_or(".") +
                                                        "\\AppData\\Roaming");
  return {base / kUserFolderName, base / kUserFolderName / kPresetFolder};
#elif defined(__APPLE__)
  const fs::path base = home / "Library" / "Application Support" / kUserFolderName;
  return {base, base / kPresetFolder};
#else
  const fs::path config = environment("XDG_CONFIG_HOME").value_or((home / ".config").string());
  const fs::path data = environment("XDG_DATA_HOME").value_or((home / ".local/share").string());
  return {config / kUserFolderName, data / kUserFolderName / kPresetFolder};
#endif
}

bool IsInstalledProgramFolder(const fs::path& folder) {
  std::error_code error;
  const fs::path absolute = fs::weakly_canonical(folder, error);
  if (error || absolute.filename() != "bin") return false;
  return fs::is_directory(absolute.parent_path() / kInstalledDataFolder, error);
}

bool IsWritableFolder(const fs::path& folder) {
  std::error_code error;
  if (!fs::is_directory(folder, error)) return false;
  const fs::path probe = folder / ".talvex-write-test";
  bool made = false;
  {
    std::ofstream file(probe, std::ios::binary | std::ios::trunc);
    made = file.good() && (file << 'x') && file.flush().good();
  }
  fs::remove(probe, error);
  return made;
}

Locations FindLocations(const fs::path& programFolder, const std::optional<fs::path>& configDir,
                        const UserFolders& user) {
  if (configDir) return {*configDir, *configDir / kPresetFolder, Placement::Override};
  if (!IsInstalledProgramFolder(programFolder) && IsWritableFolder(programFolder))
    return {programFolder, programFolder / kPresetFolder, Placement::ProgramFolder};
  return {user.config, user.presets, Placement::UserFolders};
}

std::string CreateFolders(const Locations& locations) {
  for (const fs::path& folder : {locations.configFolder, locations.presetFolder}) {
    std::error_code error;
    fs::create_directories(folder, error);
    if (error) return "cannot make the folder " + folder.string() + ": " + error.message();
  }
  return {};
}

}  // namespace talvex::config
