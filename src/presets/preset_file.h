// Preset files ("*.tvx"): the raw 1155-byte record of one device, no header. These are the
// plain reads and writes; the load rules of the editor (short files, the system-type check,
// which bytes are taken over) sit on top of them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "params/image_layout.h"

namespace talvex::presets {

// Reads the file into a whole record. A file shorter than 1155 bytes fills only its own
// length; the rest of the record is the default record of the system type the file names in
// byte 298 (type 0 when the file is too short to say or names none). Bytes beyond 1155 are not
// read. Returns an empty text on success, else why it failed; `record` is untouched then.
std::string ReadPresetFile(const std::string& path, params::ParamImage& record);

// The first 1155 bytes of a regular file (all of a shorter one) and the file's whole length;
// nullopt when it is missing or cannot be read.
std::optional<std::vector<std::uint8_t>> ReadPresetBytes(const std::string& path,
                                                         std::uintmax_t& fileSize);

// Writes all 1155 bytes atomically: to a temporary file beside `path`, renamed over it only
// once everything is on disk, so a crash or a full disk never leaves half a file. Returns an
// empty text on success, else why it failed (the old file is then unchanged).
std::string WritePresetFile(const std::string& path, const params::ParamImage& record);

}  // namespace talvex::presets
