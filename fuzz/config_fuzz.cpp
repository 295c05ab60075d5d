// The three configuration files with any content: "TenDev.cfg", "init.cfg" and "Speakers.cfg".
// The first byte chooses the file; the rest is its content. Each is decoded from memory, and
// written to a scratch folder and read back as the program reads it at start-up.
//
// Checked: no crash; whatever is read is in range (IDs 0..32, a port number not negative, names
// of printable characters); encoding what was read and decoding it again gives the same.
#include <algorithm>
#include <fstream>

#include "config/config_files.h"
#include "fuzz/fuzz_support.h"

namespace {

using namespace talvex;
using Bytes = std::vector<std::uint8_t>;

bool Printable(const std::string& text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return c >= 0x20 && c <= 0x7E; });
}

void CheckIds(const config::DeviceIdTable& ids) {
  for (std::int16_t id : ids)
    fuzz::Require(id >= 0 && id <= 32, "an ID from 0 to 32");
  fuzz::Require(config::ParseDeviceIdTable(config::EncodeDeviceIdTable(ids)).value == ids,
                "ID table round trip");
}

void CheckInit(const config::InitSettings& settings) {
  fuzz::Require(settings.PortNumber >= 0, "a port number not negative");
  fuzz::Require(Printable(settings.portName), "a printable port name");
  const auto again = config::ParseInitSettings(config::EncodeInitSettings(settings)).value;
  fuzz::Require(again.PortNumber == settings.PortNumber && again.portName == settings.portName,
                "init round trip");
}

void CheckSpeakers(const config::SpeakerRecords& records) {
  for (const config::SpeakerRecord& record : records) {
    fuzz::Require(record.id >= 0 && record.id <= 32, "a record's ID from 0 to 32");
    fuzz::Require(record.name.size() <= config::kSpeakerNameLength && Printable(record.name),
                  "a short printable name");
  }
  const auto again = config::ParseSpeakerRecords(config::EncodeSpeakerRecords(records)).value;
  for (std::size_t r = 0; r < records.size(); ++r)
    fuzz::Require(again[r].id == records[r].id && again[r].name == records[r].name &&
                      again[r].present == records[r].present,
                  "speaker records round trip");
  (void)config::PresentDeviceIds(records);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const Bytes content(data + 1, data + size);
  const std::filesystem::path& folder = fuzz::ScratchFolder();
  const char* name = nullptr;
  switch (data[0] % 3) {
    case 0:
      CheckIds(config::ParseDeviceIdTable(content).value);
      name = config::kDeviceIdFile;
      break;
    case 1:
      CheckInit(config::ParseInitSettings(content).value);
      name = config::kInitFile;
      break;
    default:
      CheckSpeakers(config::ParseSpeakerRecords(content).value);
      name = config::kSpeakersFile;
      break;
  }
  {
    std::ofstream out(folder / name, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(content.data()),
              static_cast<std::streamsize>(content.size()));
  }
  switch (data[0] % 3) {
    case 0: {
      const auto read = config::ReadDeviceIdTable(folder);
      fuzz::Require(read.found, "the file is found");
      CheckIds(read.value);
      (void)config::HasDuplicateIds(read.value);
      break;
    }
    case 1:
      CheckInit(config::ReadInitSettings(folder).value);
      break;
    default:
      CheckSpeakers(config::ReadSpeakerRecords(folder).value);
      break;
  }
  std::error_code ignored;
  std::filesystem::remove(folder / name, ignored);
  return 0;
}
