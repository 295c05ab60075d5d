#include "config/config_files.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <set>
#include <system_error>

#ifdef _WIN32
#include <io.h>
#else
#include <fcntl.h>
#include <unistd.h>
#endif

namespace talvex::config {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kMaxConfigFile = 64 * 1024;
constexpr std::size_t kMaxPortName = 255;
constexpr int kMaxDeviceId = 32;

std::int16_t Int16At(const std::vector<std::uint8_t>& bytes, std::size_t at) {
  return static_cast<std::int16_t>(bytes[at] | bytes[at + 1] << 8);
}

void PutInt16(std::vector<std::uint8_t>& bytes, std::int16_t value) {
  const auto bits = static_cast<std::uint16_t>(value);
  bytes.push_back(static_cast<std::uint8_t>(bits & 0xFF));
  bytes.push_back(static_cast<std::uint8_t>(bits >> 8));
}

bool IsDeviceId(std::int16_t id) {
  return id >= 0 && id <= kMaxDeviceId;
}

// Names are shown in the device list: anything but printable ASCII becomes '?', and the
// padding NULs of a short name are dropped.
std::string ReadableName(const std::uint8_t* bytes, std::size_t length) {
  std::string name(reinterpret_cast<const char*>(bytes), length);
  name.erase(std::find(name.begin(), name.end(), '\0'), name.end());
  for (char& c : name)
    if (c < 0x20 || c > 0x7E) c = '?';
  return name;
}

template <typename T>
ReadResult<T> ReadWith(const fs::path& path,
                       ReadResult<T> (*parse)(const std::vector<std::uint8_t>&)) {
  const auto bytes = ReadSmallFile(path, kMaxConfigFile);
  if (!bytes) return {};
  ReadResult<T> result = parse(*bytes);
  result.found = true;
  return result;
}

}  // namespace

ReadResult<DeviceIdTable> ParseDeviceIdTable(const std::vector<std::uint8_t>& bytes) {
  ReadResult<DeviceIdTable> result;
  result.found = true;
  result.complete = bytes.size() >= 2 * kIdListCount;
  for (std::size_t i = 0; i < kIdListCount && 2 * i + 1 < bytes.size(); ++i) {
    const std::int16_t id = Int16At(bytes, 2 * i);
    if (IsDeviceId(id)) {
      result.value[i] = id;
    } else {
      result.complete = false;  // out of the lists' range: keeps 0
    }
  }
  return result;
}

ReadResult<InitSettings> ParseInitSettings(const std::vector<std::uint8_t>& bytes) {
  ReadResult<InitSettings> result;
  result.found = true;
  if (bytes.size() < 2) return result;
  const std::int16_t number = Int16At(bytes, 0);
  result.value.PortNumber = std::max<std::int16_t>(number, 0);
  result.complete = number >= 0;
  if (bytes.size() < 4) return result;  // a file from the device's own tools: the number alone
  const std::size_t length = static_cast<std::uint16_t>(Int16At(bytes, 2));
  if (length > kMaxPortName || 4 + length > bytes.size()) {
    result.complete = false;
    return result;
  }
  result.value.portName = ReadableName(bytes.data() + 4, length);
  return result;
}

ReadResult<SpeakerRecords> ParseSpeakerRecords(const std::vector<std::uint8_t>& bytes) {
  ReadResult<SpeakerRecords> result;
  result.found = true;
  result.complete = bytes.size() >= kSpeakerRecordCount * kSpeakerRecordSize;
  for (std::size_t r = 0; r < kSpeakerRecordCount; ++r) {
    const std::size_t at = r * kSpeakerRecordSize;
    if (at + kSpeakerRecordSize > bytes.size()) break;  // a cut record is not read at all
    const std::int16_t id = Int16At(bytes, at);
    if (!IsDeviceId(id)) {
      result.complete = false;
      continue;
    }
    SpeakerRecord& record = result.value[r];
    record.id = id;
    record.name = ReadableName(bytes.data() + at + 2, kSpeakerNameLength);
    record.present = Int16At(bytes, at + 20) != 0;
  }
  return result;
}

std::vector<std::uint8_t> EncodeDeviceIdTable(const DeviceIdTable& ids) {
  std::vector<std::uint8_t> bytes;
  for (std::int16_t id : ids)
    PutInt16(bytes, id);
  return bytes;
}

std::vector<std::uint8_t> EncodeInitSettings(const InitSettings& settings) {
  std::vector<std::uint8_t> bytes;
  PutInt16(bytes, settings.PortNumber);
  const std::string name = settings.portName.substr(0, kMaxPortName);
  PutInt16(bytes, static_cast<std::int16_t>(name.size()));
  bytes.insert(bytes.end(), name.begin(), name.end());
  return bytes;
}

std::vector<std::uint8_t> EncodeSpeakerRecords(const SpeakerRecords& records) {
  std::vector<std::uint8_t> bytes;
  for (const SpeakerRecord& record : records) {
    PutInt16(bytes, record.id);
    std::string name = record.name.substr(0, kSpeakerNameLength);
    name.resize(kSpeakerNameLength, '\0');
    bytes.insert(bytes.end(), name.begin(), name.end());
    PutInt16(bytes, 0);
    PutInt16(bytes, record.present ? std::int16_t{-1} : std::int16_t{0});  // all bits set = true
  }
  return bytes;
}

ReadResult<DeviceIdTable> ReadDeviceIdTable(const fs::path& folder) {
  return ReadWith(folder / kDeviceIdFile, &ParseDeviceIdTable);
}
ReadResult<InitSettings> ReadInitSettings(const fs::path& folder) {
  return ReadWith(folder / kInitFile, &ParseInitSettings);
}
ReadResult<SpeakerRecords> ReadSpeakerRecords(const fs::path& folder) {
  return ReadWith(folder / kSpeakersFile, &ParseSpeakerRecords);
}

std::string WriteDeviceIdTable(const fs::path& folder, const DeviceIdTable& ids) {
  return WriteFileAtomically(folder / kDeviceIdFile, EncodeDeviceIdTable(ids));
}
std::string WriteInitSettings(const fs::path& folder, const InitSettings& settings) {
  return WriteFileAtomically(folder / kInitFile, EncodeInitSettings(settings));
}
std::string WriteSpeakerRecords(const fs::path& folder, const SpeakerRecords& records) {
  return WriteFileAtomically(folder / kSpeakersFile, EncodeSpeakerRecords(records));
}

std::vector<int> PresentDeviceIds(const SpeakerRecords& records) {
  std::vector<int> ids;
  for (const SpeakerRecord& record : records)
    if (record.present) ids.push_back(record.id);
  return ids;
}

bool HasDuplicateIds(const DeviceIdTable& ids) {
  return std::set<std::int16_t>(ids.begin(), ids.end()).size() != ids.size();
}

std::optional<std::vector<std::uint8_t>> ReadSmallFile(const fs::path& path, std::size_t limit) {
  std::error_code error;
  if (!fs::is_regular_file(path, error)) return std::nullopt;
  const auto size = fs::file_size(path, error);
  if (error || size > limit) return std::nullopt;
  std::ifstream in(path, std::ios::binary);
  if (!in) return std::nullopt;
  std::vector<std::uint8_t> bytes(static_cast<std::size_t>(size));
  in.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  if (in.gcount() != static_cast<std::streamsize>(bytes.size())) return std::nullopt;
  return bytes;
}

namespace {

// Writes and flushes to the disk; false on any failure (a full disk included).
bool WriteAndSync(const fs::path& path, const std::vector<std::uint8_t>& bytes) {
#ifdef _WIN32
  FILE* file = _wfopen(path.c_str(), L"wb");
  if (!file) return false;
  const bool written = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size() &&
                       std::fflush(file) == 0 && _commit(_fileno(file)) == 0;
  return std::fclose(file) == 0 && written;
#else
  const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
  if (fd < 0) return false;
  std::size_t done = 0;
  while (done < bytes.size()) {
    const ssize_t n = ::write(fd, bytes.data() + done, bytes.size() - done);
    if (n <= 0) break;
    done += static_cast<std::size_t>(n);
  }
  const bool written = done == bytes.size() && ::fsync(fd) == 0;
  return ::close(fd) == 0 && written;
#endif
}

// Makes a rename in `folder` durable: without it a crash just after the rename may bring back
// the old name on some file systems. Nothing to do on Windows, where the rename is written
// through.
void SyncFolder(const fs::path& folder) {
#ifndef _WIN32
  const int fd = ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (fd < 0) return;
  ::fsync(fd);
  ::close(fd);
#else
  (void)folder;
#endif
}

}  // namespace

// The program's one atomic writer (configuration files, preset files): standard library only,
// so the layers below Qt can use it. The data reach the disk before the rename, and the
// rename replaces the old file in one step: a crash or a full disk leaves either the old file
// or the new one, never a short or mixed one.
std::string WriteFileAtomically(const fs::path& path, const std::vector<std::uint8_t>& bytes) {
  fs::path temporary = path;
  temporary += ".saving";
  std::error_code error;
  if (!WriteAndSync(temporary, bytes)) {
    fs::remove(temporary, error);
    return "cannot write " + path.string();
  }
  fs::rename(temporary, path, error);
  if (error) {
    fs::remove(temporary, error);
    return "cannot replace " + path.string() + ": " + error.message();
  }
  SyncFolder(path.parent_path());
  return {};
}

}  // namespace talvex::config
