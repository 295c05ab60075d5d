// Preset files of any length and content through the editor's load: the file is written to a
// scratch folder, loaded into a device of a chosen system type, and a loaded record goes on as
// the editor takes it: every value decoded, the response settings read, every parameter read
// back by name. The first byte chooses the device's system type and whether the file is read
// once more on its own (talvexctl --file); the rest is the file.
//
// Checked: no crash; a load that is not Loaded leaves the device's record as it was; a file
// under 20 bytes is gone afterwards; and a loaded preset, sent to a simulated device that held
// the file's bytes, leaves that device's live image equal to the program's bytes 0..303 (what
// the editor shows is what the device runs).
#include <algorithm>
#include <fstream>

#include "cli/param_words.h"
#include "fuzz/fuzz_support.h"
#include "graph/image_settings.h"
#include "presets/preset_file.h"
#include "presets/preset_load.h"
#include "sim/sim_device.h"

namespace {

using namespace talvex;

class SilentReporter final : public presets::PresetReporter {
 public:
  void Warn(std::string_view /*title*/, std::string_view /*text*/) override {}
};

void WriteFile(const std::filesystem::path& path, const std::uint8_t* bytes, std::size_t size) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(reinterpret_cast<const char*>(bytes), static_cast<std::streamsize>(size));
  if (!out) fuzz::Fail("cannot write the scratch preset");
}

void ReadEveryParam(const params::ParamImage& record) {
  for (const params::ParamRef& ref : params::AllParams())
    if (params::StorageOf(ref) != params::Storage::NotStored) (void)cli::GetParam(record, ref);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  if (size == 0) return 0;
  const int systemType = bytes[0] % params::kSystemTypeCount;
  const bool readAlone = (bytes[0] & 0x80) != 0;
  const std::filesystem::path path = fuzz::ScratchFolder() / "preset.tvx";
  WriteFile(path, bytes + 1, size - 1);

  if (readAlone) {
    // talvexctl --file get: a byte no device keeps is named in an IndexError, which talvexctl
    // prints (exit 1).
    params::ParamImage record{};
    try {
      if (presets::ReadPresetFile(path.string(), record).empty()) ReadEveryParam(record);
    } catch (const IndexError&) {
    }
  }

  // The scratch record lives as long as the program: what one load leaves, the next may take.
  static presets::ScratchRecord scratch;
  params::DeviceParams device = params::DeviceParams::FromDefault(systemType);
  const params::ParamImage before = device.image;
  presets::PresetState state{3, 1};
  presets::PresetView view;
  SilentReporter reporter;
  const presets::PresetLoadResult result =
      presets::LoadPresetFile(path.string(), scratch, device, state, view, reporter);

  if (result.outcome == presets::PresetLoad::Loaded) {
    sim::SimDevice simulated(0, systemType);
    std::copy_n(scratch.bytes.begin(), params::kPresetSize, simulated.LiveImage().begin());
    for (const presets::PresetStep& step : result.transfer.steps)
      simulated.Handle(protocol::BuildFrame(0, step.edit.command));
    fuzz::Require(std::equal(simulated.LiveImage().begin(), simulated.LiveImage().end(),
                             device.image.begin()),
                  "the device runs what the editor shows");
    (void)graph::SettingsFromImage(device.image);
    ReadEveryParam(device.image);
  } else {
    fuzz::Require(device.image == before, "a refused load changes nothing");
  }
  if (size - 1 < presets::kShortestPresetFile) {
    fuzz::Require(result.outcome == presets::PresetLoad::DeletedShort, "a short file is deleted");
    fuzz::Require(!std::filesystem::exists(path), "the short file is gone");
  }
  std::error_code ignored;
  std::filesystem::remove(path, ignored);
  return 0;
}
