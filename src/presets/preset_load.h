// The editor's "Load Preset from PC" and "Save Preset to PC" without their file dialog: the
// rules by which a preset file replaces a device's record and goes out to the device.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "params/device_params.h"
#include "presets/preset_transfer.h"

namespace talvex::presets {

inline constexpr std::string_view kLoadPresetTitle = "Load Preset";
inline constexpr std::string_view kOtherTypeText = "The new preset is for ";
inline constexpr std::string_view kOtherTypeAdvice =
    ", please change Xover-Type from System Setup button";
// The file dialogs' filter, written as the device's tools wrote it: the text, a bar, the pattern.
inline constexpr std::string_view kPresetFileFilter = "file preset (*.tvx)|*.tvx";
// A file shorter than this is deleted on load with no message (a name typed into the open
// dialog used to create an empty file; the load removes it again).
inline constexpr std::size_t kShortestPresetFile = 20;

// The record every load reads a file into before anything is taken over; the program owns one,
// shared by all editor windows. A file shorter than 1155 bytes leaves the rest of it as the
// previous load left it, and that rest is taken over (bytes 1074..1154): kept as it always was.
struct ScratchRecord {
  params::ParamImage bytes{};
};

// Two byte-wide flags the program keeps beside each device's record; a file load and a system
// type change clear both.
struct PresetState {
  std::uint8_t loadedPresetNumber = 0;
  std::uint8_t presetChanged = 0;
};

// Where a load's message goes: the desktop program shows a message box (exclamation icon, OK
// only), talvexctl prints it.
class PresetReporter {
 public:
  virtual ~PresetReporter() = default;
  virtual void Warn(std::string_view title, std::string_view text) = 0;
};

enum class PresetLoad {
  Loaded,        // the record holds the file's preset; `transfer` sends every parameter
  Unreadable,    // the file could not be read: nothing changed, no message (as a dialog
                 // error always ended the load)
  DeletedShort,  // under 20 bytes: the file was deleted, nothing else happened, no message
  OtherType,     // for another system type: the message went to the reporter, nothing changed
  Refused,       // the file names no system type, or holds a byte no sender takes: `error`
                 // says which; nothing changed
};

struct PresetLoadResult {
  PresetLoad outcome = PresetLoad::Unreadable;
  std::string error;        // for Unreadable and Refused
  PresetTransfer transfer;  // for Loaded: the commands to send, mutes first and last
};

// "The new preset is for 6 WAY XOVER, please change Xover-Type from System Setup button".
std::string OtherTypeMessage(int systemType);

// Loads the preset file at `path` into `device`, in the device's order:
//   1. read up to 1155 bytes of the file into the scratch record;
//   2. a file under 20 bytes is deleted, and that is all;
//   3. a file whose byte 298 differs from the device's gets OtherTypeMessage, titled
//      "Load Preset", and changes nothing;
//   4. otherwise bytes 0..303, 321, 323 and 1074..1154 of the scratch record replace the
//      device's (nothing else of the file is used), the two preset-state flags are cleared,
//      and ApplyPreset runs with TransferFlags::PresetFileLoad() on `view`.
// The caller sends the result's transfer (SendPresetTransfer) and sets the caption.
PresetLoadResult LoadPresetFile(const std::string& path, ScratchRecord& scratch,
                                params::DeviceParams& device, PresetState& state, PresetView& view,
                                PresetReporter& reporter,
                                params::DecimalMark mark = params::DecimalMark::Point);

// Saves the device's whole 1155-byte record; nothing is sent. The file is replaced whole and
// atomically (written beside it, flushed to the disk, renamed over it), so a crash or a full
// disk never leaves a short or mixed file. Returns an empty text, or why it failed (the old
// file is then as it was).
std::string SavePresetFile(const std::string& path, const params::DeviceParams& device);

}  // namespace talvex::presets
