#include "presets/preset_load.h"

#include <algorithm>
#include <filesystem>

#include "params/captions.h"
#include "params/value_tables.h"
#include "presets/preset_file.h"

namespace talvex::presets {

namespace {

// The parts of a file a load takes over; everything else of the record stays the device's.
constexpr std::size_t kTakenTailFirst = 1074;

void TakeOver(const params::ParamImage& from, params::ParamImage& to) {
  std::copy_n(from.begin(), params::kPresetSize, to.begin());
  to[params::kInputSourceByte] = from[params::kInputSourceByte];
  to[params::kOptionByte] = from[params::kOptionByte];
  std::copy(from.begin() + kTakenTailFirst, from.end(), to.begin() + kTakenTailFirst);
}

PresetLoadResult Ended(PresetLoad outcome, std::string error = {}) {
  PresetLoadResult result;
  result.outcome = outcome;
  result.error = std::move(error);
  return result;
}

}  // namespace

std::string OtherTypeMessage(int systemType) {
  return std::string(kOtherTypeText) + std::string(params::SystemTypeName(systemType)) +
         std::string(kOtherTypeAdvice);
}

PresetLoadResult LoadPresetFile(const std::string& path, ScratchRecord& scratch,
                                params::DeviceParams& device, PresetState& state, PresetView& view,
                                PresetReporter& reporter, params::DecimalMark mark) {
  std::uintmax_t fileSize = 0;
  const auto bytes = ReadPresetBytes(path, fileSize);
  if (!bytes) return Ended(PresetLoad::Unreadable, path + ": cannot be read");
  std::copy(bytes->begin(), bytes->end(), scratch.bytes.begin());

  if (fileSize < kShortestPresetFile) {
    std::error_code ignored;
    std::filesystem::remove(path, ignored);
    return Ended(PresetLoad::DeletedShort);
  }

  const int fileType = scratch.bytes[params::kSystemTypeByte];
  if (fileType != device.image[params::kSystemTypeByte]) {
    if (fileType >= params::kSystemTypeCount)
      return Ended(PresetLoad::Refused, path + ": byte 298 holds " + std::to_string(fileType) +
                                            ", which names no system type");
    reporter.Warn(kLoadPresetTitle, OtherTypeMessage(fileType));
    return Ended(PresetLoad::OtherType);
  }

  const params::DeviceParams before = device;
  const PresetState stateBefore = state;
  TakeOver(scratch.bytes, device.image);
  state = {};
  PresetLoadResult result;
  try {
    result.transfer = ApplyPreset(device, view, TransferFlags::PresetFileLoad(), mark);
  } catch (const IndexError& error) {
    device = before;
    state = stateBefore;
    return Ended(PresetLoad::Refused, path + ": " + error.what());
  }
  result.outcome = PresetLoad::Loaded;
  return result;
}

std::string SavePresetFile(const std::string& path, const params::DeviceParams& device) {
  return WritePresetFile(path, device.image);
}

}  // namespace talvex::presets
