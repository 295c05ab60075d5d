#include "editor/dialogs/preset_folder.h"

namespace talvex::editor {

std::filesystem::path PresetFolder(const DeviceRecords& records) {
  std::error_code ignored;
  std::filesystem::create_directories(records.presetFolder, ignored);
  return records.presetFolder;
}

}  // namespace talvex::editor
