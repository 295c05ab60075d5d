// state, name, pull and push: what a device holds, its name, and whole presets between the
// device and preset files, by the same code the desktop program uses.
#include <filesystem>
#include <ostream>

#include "cli/commands.h"
#include "cli/connection.h"
#include "link/device_name.h"
#include "params/captions.h"
#include "params/value_tables.h"
#include "presets/device_state.h"
#include "presets/live_image.h"
#include "presets/preset_load.h"

namespace talvex::cli {

namespace {

std::string PresetName(const params::ParamImage& image) {
  const auto first = image.begin() + params::kPresetNameByte;
  return std::string(first, first + params::kPresetNameLength);
}

void PrintState(CliContext& context, const params::DeviceParams& device,
                const presets::DeviceState& state) {
  std::ostream& out = context.Out();
  const int type = device.image[params::kSystemTypeByte];
  const std::string preset = ShownName(PresetName(device.image));
  if (context.Options().json) {
    out << "{\"type\": " << type << ", \"typeName\": " << JsonString(params::SystemTypeText(type))
        << ", \"locked\": " << (state.Locked() ? "true" : "false")
        << ", \"preset\": " << JsonString(preset) << ", \"slots\": [";
    for (int slot = 0; slot < params::kSlotCount; ++slot)
      out << (slot ? ", " : "")
          << JsonString(ShownName(state.slotNames[static_cast<std::size_t>(slot)]));
    out << "]}\n";
    return;
  }
  out << "type " << type << "  " << params::SystemTypeText(type) << '\n'
      << "lock " << (state.Locked() ? "locked" : "unlocked") << '\n'
      << "preset " << preset << '\n';
  for (int slot = 0; slot < params::kSlotCount; ++slot) {
    const std::string name = ShownName(state.slotNames[static_cast<std::size_t>(slot)]);
    out << "slot " << slot << (name.empty() ? "" : "  " + name) << '\n';
  }
}

int State(CliContext& context) {
  RequireArgCount(context, 0, 0);
  params::DeviceParams device = ReadLive(context);
  const presets::DeviceState state = ReadState(context, device);
  PrintState(context, device, state);
  return kExitOk;
}

// Up to 16 printable ASCII characters: the device keeps one byte per character, and the
// device list shows them as they are.
std::string NameArg(const std::string& text) {
  if (text.size() > link::kDeviceNameLength)
    throw UsageError("a device name has at most 16 characters: \"" + text + "\"");
  for (char c : text)
    if (c < 0x20 || c > 0x7E)
      throw UsageError("a device name takes printable ASCII characters only: \"" + text + "\"");
  return text;
}

int Name(CliContext& context) {
  RequireArgCount(context, 0, 1);
  const int id = context.Options().id;
  link::Link& link = context.Link();
  if (context.Args().empty()) {
    const std::optional<std::string> name = link::ReadDeviceName(link, id);
    if (!name) throw CommandFailed("the device's name could not be read", true);
    context.Out() << ShownName(name) << '\n';
    return kExitOk;
  }
  const std::string name = NameArg(context.Args()[0]);
  if (link::WriteDeviceName(link, id, name) != link::NameWrite::Written)
    throw CommandFailed("the name was not written whole: the device stopped answering", true);
  context.Out() << link::DeviceRowText(link::PadDeviceName(name), id) << '\n';
  return kExitOk;
}

int Pull(CliContext& context) {
  RequireArgCount(context, 1, 1);
  const std::string& path = context.Args()[0];
  params::DeviceParams device = ReadLive(context);
  ReadState(context, device);
  const std::string error = presets::SavePresetFile(path, device);
  if (!error.empty()) throw CommandFailed(error);
  context.Out() << path << ": " << params::SystemTypeText(device.image[params::kSystemTypeByte])
                << '\n';
  return kExitOk;
}

// The load's message goes to stderr, titled as the message box is.
class PrintingReporter final : public presets::PresetReporter {
 public:
  explicit PrintingReporter(std::ostream& err) : err_(err) {}
  void Warn(std::string_view title, std::string_view text) override {
    err_ << title << ": " << text << '\n';
  }

 private:
  std::ostream& err_;
};

int Push(CliContext& context) {
  RequireArgCount(context, 1, 1);
  const std::string& path = context.Args()[0];
  const int id = context.Options().id;
  // As the editor connects a device: its live image (the type check compares the file with
  // the type it runs now) and its state (byte 322 rides with every delay command, the output
  // link switch is sent as the device has it).
  params::DeviceParams device = ReadLive(context);
  ReadState(context, device);
  presets::ScratchRecord scratch;
  presets::PresetState presetState;
  presets::PresetView view;
  PrintingReporter reporter(context.Err());
  const presets::PresetLoadResult loaded =
      presets::LoadPresetFile(path, scratch, device, presetState, view, reporter);
  switch (loaded.outcome) {
    case presets::PresetLoad::Loaded:
      break;
    case presets::PresetLoad::DeletedShort:
      throw CommandFailed(path + ": shorter than 20 bytes, so not a preset; deleted, nothing sent");
    case presets::PresetLoad::OtherType:
      throw CommandFailed("nothing sent", true);
    case presets::PresetLoad::Unreadable:
    case presets::PresetLoad::Refused:
      throw CommandFailed(loaded.error + "; nothing sent");
  }
  ProgressLines progress(context.Err(), "push");
  const presets::TransferOutcome sent =
      presets::SendPresetTransfer(context.Link(), id, loaded.transfer,
                                  [&](int point) { progress(point, presets::kProgressPoints); });
  if (sent.end == presets::TransferEnd::Suspended) throw CommandFailed("nothing was sent");
  if (sent.end == presets::TransferEnd::Stopped) {
    throw CommandFailed("the transfer stopped at the " +
                            std::string(presets::StageName(sent.stoppedAt)) + " after " +
                            std::to_string(sent.commandsSent) + " of " +
                            std::to_string(loaded.transfer.steps.size()) + " commands",
                        false);
  }
  context.Out() << params::LoadedFromPcCaption(id, std::filesystem::path(path).filename().string(),
                                               device.image[params::kSystemTypeByte])
                << '\n';
  return kExitOk;
}

}  // namespace

void AddSessionCommands(std::vector<CommandSpec>& commands) {
  commands.push_back({"state", "",
                      "print the device's system type, lock state, current preset and the "
                      "names of its 24 stored presets",
                      State});
  commands.push_back(
      {"name", "[TEXT]", "print the device's name, or name it TEXT (up to 16 characters)", Name});
  commands.push_back({"pull", "FILE.tvx", "save the device's live preset as a preset file", Pull});
  commands.push_back({"push", "FILE.tvx",
                      "load a preset file onto the device as the editor's load does: same "
                      "checks, same messages, every parameter sent (progress on stderr)",
                      Push});
}

}  // namespace talvex::cli
