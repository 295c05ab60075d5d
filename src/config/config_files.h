// The three configuration files kept in the program's folder between runs: raw little-endian
// records without headers. A missing file is not an error; a short, long or corrupt file never
// leaves garbage in the tables: what cannot be read keeps its zero value.
#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace talvex::config {

inline constexpr const char* kDeviceIdFile = "TenDev.cfg";
inline constexpr const char* kInitFile = "init.cfg";
inline constexpr const char* kSpeakersFile = "Speakers.cfg";

inline constexpr int kIdListCount = 20;
inline constexpr int kSpeakerRecordCount = 33;
inline constexpr std::size_t kSpeakerRecordSize = 22;
inline constexpr std::size_t kSpeakerNameLength = 16;

// "TenDev.cfg": the IDs chosen in the 20 ID lists of the selection window.
using DeviceIdTable = std::array<std::int16_t, kIdListCount>;

// "init.cfg": the chosen port. The device's tools kept only the port's position in the list;
// after it we keep the port's name (a 16-bit length, then the UTF-8 bytes), so that the port is
// found again by name when the list of ports changes between runs.
struct InitSettings {
  std::int16_t PortNumber = 0;
  std::string portName;
};

// One record of "Speakers.cfg" (22 bytes): the device ID (16-bit), 18 bytes of device data, and a
// 16-bit present flag. Of the 18 bytes we use the first 16 for the device's name as last read; the
// last two are written as 0 and ignored.
struct SpeakerRecord {
  std::int16_t id = 0;
  std::string name;  // up to 16 characters
  bool present = false;
};
using SpeakerRecords = std::array<SpeakerRecord, kSpeakerRecordCount>;

// Result of a read: the values, and whether the file was there and whole.
template <typename T>
struct ReadResult {
  T value{};
  bool found = false;     // the file exists and could be read
  bool complete = false;  // it held everything, and nothing was out of range
};

ReadResult<DeviceIdTable> ReadDeviceIdTable(const std::filesystem::path& folder);
ReadResult<InitSettings> ReadInitSettings(const std::filesystem::path& folder);
ReadResult<SpeakerRecords> ReadSpeakerRecords(const std::filesystem::path& folder);

// Each write replaces the file whole (write to a temporary file, then rename), so a crash never
// leaves half a file. Returns an empty text on success, otherwise why it failed.
std::string WriteDeviceIdTable(const std::filesystem::path& folder, const DeviceIdTable& ids);
std::string WriteInitSettings(const std::filesystem::path& folder, const InitSettings& settings);
std::string WriteSpeakerRecords(const std::filesystem::path& folder, const SpeakerRecords& records);

// Decoding of file contents, for the readers above and for tests and fuzzing.
ReadResult<DeviceIdTable> ParseDeviceIdTable(const std::vector<std::uint8_t>& bytes);
ReadResult<InitSettings> ParseInitSettings(const std::vector<std::uint8_t>& bytes);
ReadResult<SpeakerRecords> ParseSpeakerRecords(const std::vector<std::uint8_t>& bytes);
std::vector<std::uint8_t> EncodeDeviceIdTable(const DeviceIdTable& ids);
std::vector<std::uint8_t> EncodeInitSettings(const InitSettings& settings);
std::vector<std::uint8_t> EncodeSpeakerRecords(const SpeakerRecords& records);

// The IDs of the present records, in record order (the list of devices to open).
std::vector<int> PresentDeviceIds(const SpeakerRecords& records);

// True when two of the IDs are equal ("All ID must be different!").
bool HasDuplicateIds(const DeviceIdTable& ids);

// Reads a whole file, refusing anything larger than `limit` bytes (a configuration or preset
// file is small; a huge one is not ours). nullopt when it cannot be read.
std::optional<std::vector<std::uint8_t>> ReadSmallFile(const std::filesystem::path& path,
                                                       std::size_t limit);
// Writes a file whole through a temporary file in the same folder and a rename.
std::string WriteFileAtomically(const std::filesystem::path& path,
                                const std::vector<std::uint8_t>& bytes);

}  // namespace talvex::config
