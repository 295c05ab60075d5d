#include "presets/preset_file.h"

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "config/config_files.h"
#include "params/device_params.h"

namespace talvex::presets {

std::optional<std::vector<std::uint8_t>> ReadPresetBytes(const std::string& path,
                                                         std::uintmax_t& fileSize) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(path, error)) return std::nullopt;
  fileSize = std::filesystem::file_size(path, error);
  if (error) return std::nullopt;
  std::ifstream in(path, std::ios::binary);
  if (!in) return std::nullopt;
  std::vector<std::uint8_t> bytes(
      static_cast<std::size_t>(std::min<std::uintmax_t>(fileSize, params::kImageSize)));
  in.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  if (in.gcount() != static_cast<std::streamsize>(bytes.size())) return std::nullopt;
  return bytes;
}

std::string ReadPresetFile(const std::string& path, params::ParamImage& record) {
  std::uintmax_t size = 0;
  const auto bytes = ReadPresetBytes(path, size);
  if (!bytes) return path + ": cannot be read";
  if (bytes->empty()) return path + ": the file is empty";
  const std::uint8_t named =
      bytes->size() > params::kSystemTypeByte ? (*bytes)[params::kSystemTypeByte] : std::uint8_t{0};
  params::ParamImage read = params::DefaultRecord(named < params::kSystemTypeCount ? named : 0);
  std::copy(bytes->begin(), bytes->end(), read.begin());
  record = read;
  return {};
}

std::string WritePresetFile(const std::string& path, const params::ParamImage& record) {
  const std::string error =
      config::WriteFileAtomically(path, std::vector<std::uint8_t>(record.begin(), record.end()));
  return error.empty() ? error : error + " (the old file, if any, is unchanged)";
}

}  // namespace talvex::presets
