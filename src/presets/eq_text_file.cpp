#include "presets/eq_text_file.h"

#include <filesystem>

#include "config/config_files.h"

namespace talvex::presets {

EqTextRead ReadEqTextFile(const std::string& path) {
  namespace fs = std::filesystem;
  EqTextRead read;
  std::error_code error;
  if (!fs::is_regular_file(path, error)) {
    read.error = path + " is not a file that can be read";
    return read;
  }
  const auto bytes = config::ReadSmallFile(path, kLargestFilterText);
  if (!bytes) {
    const bool large = fs::file_size(path, error) > kLargestFilterText && !error;
    read.error = path + (large ? " is larger than 1 MiB: not a filter text" : " cannot be read");
    return read;
  }
  read.text.assign(bytes->begin(), bytes->end());
  return read;
}

std::string NoFilterLineText(std::string_view name) {
  return std::string(name) +
         " holds no filter line (such as \"Filter  1: ON  PK  Fc 100 Hz  Gain -3 dB  Q 1\"); "
         "nothing sent";
}

}  // namespace talvex::presets
