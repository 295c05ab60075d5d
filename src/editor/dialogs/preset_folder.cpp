#include "editor/dialogs/preset_folder.h"

#include <QCoreApplication>

namespace talvex::editor {

std::filesystem::path PresetFolder() {
  const std::filesystem::path folder =
      std::filesystem::path(QCoreApplication::applicationDirPath().toStdString()) / "preset";
  std::error_code ignored;
  std::filesystem::create_directories(folder, ignored);
  return folder;
}

}  // namespace talvex::editor
