// The device's own preset memory: storing the editor's preset into one of the device's 24
// slots under a name ("Store Preset to device"), and reading a stored one back into the
// editor ("Read Preset from device").
//
// Both are split so that the desktop program's UI thread never waits on the wire: the model
// changes run on the UI thread (PrepareStore / FinishStore, ApplyDevicePreset), the exchanges
// as one job on the link worker thread (SendPresetStore, ReadPresetSlot).
#pragma once

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "link/link.h"
#include "params/device_params.h"
#include "presets/conversation.h"
#include "presets/device_state.h"
#include "presets/preset_transfer.h"

namespace talvex::presets {

inline constexpr std::string_view kStorePresetTitle = "Store Preset";
inline constexpr std::string_view kReadPresetTitle = "Read Preset";
inline constexpr std::string_view kPresetEmptyText = "Preset empty";
inline constexpr std::string_view kOverwriteEditingText =
    "Overwrite current editing, are you sure ? ";

inline constexpr std::size_t kSlotNameLength = 16;
// The store's progress bar runs to 304 / 4 + 32 / 4 = 84, as it always did, although a store
// takes 81 steps (one mark, four name writes, 76 data writes): the bar stops short of its end
// and is hidden.
inline constexpr int kStoreProgressMaximum = 84;
inline constexpr int kStoreCommandCount = 1 + 4 + 76;

// Command 17 that writes `mark` as slot `slot`'s used mark: p1, p2 = address 32 + slot (high,
// low), p5 = the mark (85: the slot holds a preset; anything else: it is empty).
protocol::Command SlotMarkCommand(int slot, std::uint8_t mark);
// The same with 85: marks the slot used.
protocol::Command MarkSlotUsedCommand(int slot);

// Command 24, four bytes of device memory from `address` on. p1, p2 = the address, high byte
// first: bytes 2 and 3 of the split buffer that SplitToBytes fills (the "command-prefix" bytes
// of the device's tools are nothing else). p3..p6 = the four bytes, lowest address first.
// p7, p8 = the address once more, split the same way (high byte in p7), as the device's tools
// always sent it; the device stores from the address in p1, p2.
protocol::Command StoreDataCommand(std::size_t address, std::span<const std::uint8_t, 4> bytes);

// A slot name padded with blanks on the right to exactly 16 characters. std::invalid_argument
// for a longer one (the store dialog's name box takes no more).
std::string PadSlotName(std::string_view name);

// A store ready to go: the padded name and its 81 commands in sending order.
struct PresetStore {
  int slot = 0;
  std::string name;
  std::vector<protocol::Command> commands;
};

// The model half of a store (UI thread), after the user answered kAreYouSureText ("Store
// Preset") with Yes: pads the name, keeps it as the slot's name in `state` and puts its 16
// character codes into image bytes 305..320, then builds the commands from the image:
//   1. command 17 marking the slot used (85 at 32 + s);
//   2. four commands 24 with image bytes 305 + i .. 308 + i to 384 + 16 s + i, i = 0, 4, 8, 12;
//   3. 76 commands 24 with image bytes i .. i + 3 to 768 + 304 s + i, i = 0, 4, .. 300.
// IndexError for a slot above 23, std::invalid_argument for a name above 16 characters;
// nothing is changed then.
PresetStore PrepareStore(params::DeviceParams& device, DeviceState& state, int slot,
                         std::string_view name);

struct StoreOutcome {
  ListEnd end = ListEnd::Completed;
  int written = 0;      // commands acknowledged
  bool marked = false;  // the mark went through (acknowledged, or the link sends nothing)
};

// Progress of a store: (0, 84) when the bar is shown, then (k, 84) after each step k.
using StoreProgress = std::function<void(int value, int maximum)>;

// The exchange half (link worker thread): sends the store's commands in order, stopping at the
// first unanswered one; what was written stays written, the rest is not sent.
StoreOutcome SendPresetStore(link::Link& link, int deviceId, const PresetStore& store,
                             const StoreProgress& progress = {});

// Back on the UI thread: the slot is marked used (85) once the mark went through.
void FinishStore(DeviceState& state, const PresetStore& store, const StoreOutcome& outcome);

// Reading: kPresetEmptyText (title "Read Preset") when the slot's used mark is not 85, and
// nothing may be sent; nullopt when the slot can be read. IndexError for a slot above 23.
std::optional<std::string_view> CheckPresetReadable(const DeviceState& state, int slot);

enum class SlotRead {
  Received,  // `preset` holds the slot's 304 bytes
  Skipped,   // the link sends nothing: `preset` unchanged
  Failed,    // the block ("Time out") or the closing command went unanswered
};

// The exchange half of a read (link worker thread), once the user answered
// kOverwriteEditingText with Yes: a block read with command 11, p1 = slot, p2 = 0, with the
// link's read progress shown, then command 0 with all parameters 0, which closes the block
// transfer. The device runs the preset it was asked for from then on.
SlotRead ReadPresetSlot(link::Link& link, int deviceId, int slot, params::PresetImage& preset);

// The model half (UI thread): the 304 bytes replace image bytes 0..303 and the whole-preset
// transfer runs with TransferFlags::DeviceRead() (controls and graph only: the device already
// runs the preset, so the returned transfer sends nothing). A byte no sender takes throws
// IndexError with `device` unchanged.
PresetTransfer ApplyDevicePreset(params::DeviceParams& device, const params::PresetImage& preset,
                                 PresetView& view,
                                 params::DecimalMark mark = params::DecimalMark::Point);

}  // namespace talvex::presets
