// slots, store, recall, type, copy, names, lock, unlock and password: the device utilities of
// the editor's toolbar, by the same core the desktop program uses. The questions the editor
// asks are taken as answered Yes by the command line; a refusal prints the system's message,
// titled as its box is, and exits 1 without sending the operation.
#include <algorithm>
#include <cctype>
#include <ostream>

#include "cli/commands.h"
#include "cli/connection.h"
#include "cli/param_words.h"
#include "params/captions.h"
#include "params/value_tables.h"
#include "presets/channel_copy.h"
#include "presets/channel_names.h"
#include "presets/device_memory.h"
#include "presets/system_lock.h"
#include "presets/system_type.h"

namespace talvex::cli {

namespace {

using presets::ListEnd;

// The system's refusal: printed to stderr ("Title: text"), exit status 1.
[[noreturn]] void Refuse(CliContext& context, std::string_view title, std::string_view text) {
  context.Err() << title << (title.empty() ? "" : ": ") << text << '\n';
  throw CommandFailed(std::string(text), true);
}

// A connected device as the editor holds it.
struct Connected {
  params::DeviceParams device;
  presets::DeviceState state;
};

Connected Connect(CliContext& context) {
  Connected connected{ReadLive(context), {}};
  connected.state = ReadState(context, connected.device);
  return connected;
}

// The editor's controls are disabled while the device is locked, so nothing that changes the
// device goes out; the lock dialog names the state.
void RefuseIfLocked(CliContext& context, const presets::DeviceState& state) {
  if (state.Locked()) Refuse(context, "", presets::kSystemLockText);
}

// Ends the command after a list of commands went out; what went through stays written.
void RequireSent(ListEnd end, int written, std::size_t total, std::string_view what) {
  if (end == ListEnd::Skipped) throw CommandFailed("nothing was sent");
  if (end == ListEnd::Stopped)
    throw CommandFailed(std::string(what) + " stopped after " + std::to_string(written) + " of " +
                        std::to_string(total) + " commands: the device stopped answering");
}

std::string SlotLine(const presets::DeviceState& state, int slot) {
  const bool used = state.SlotUsed(slot);
  return std::to_string(slot) + "  " + (used ? "used" : "empty") +
         (used ? "  " + ShownName(state.slotNames[static_cast<std::size_t>(slot)]) : "");
}

int Slots(CliContext& context) {
  RequireArgCount(context, 0, 0);
  params::DeviceParams device = params::DeviceParams::FromDefault(0);
  const presets::DeviceState state = ReadState(context, device);
  std::ostream& out = context.Out();
  if (context.Options().json) {
    out << '[';
    for (int slot = 0; slot < params::kSlotCount; ++slot)
      out << (slot ? ", " : "") << "{\"slot\": " << slot
          << ", \"used\": " << (state.SlotUsed(slot) ? "true" : "false") << ", \"name\": "
          << JsonString(ShownName(state.slotNames[static_cast<std::size_t>(slot)])) << '}';
    out << "]\n";
    return kExitOk;
  }
  for (int slot = 0; slot < params::kSlotCount; ++slot)
    out << SlotLine(state, slot) << '\n';
  return kExitOk;
}

// Up to 16 printable ASCII characters, one byte each in the device's memory.
std::string SlotNameArg(const std::string& text) {
  if (text.size() > presets::kSlotNameLength)
    throw UsageError("a preset name has at most 16 characters: \"" + text + "\"");
  if (!std::all_of(text.begin(), text.end(), [](char c) { return c >= 0x20 && c <= 0x7E; }))
    throw UsageError("a preset name takes printable ASCII characters only: \"" + text + "\"");
  return text;
}

int Store(CliContext& context) {
  RequireArgCount(context, 2, 2);
  const int slot = context.IntArg(0, 0, params::kSlotCount - 1, "slot");
  const std::string name = SlotNameArg(context.Args()[1]);
  Connected connected = Connect(context);
  RefuseIfLocked(context, connected.state);
  const presets::PresetStore store =
      presets::PrepareStore(connected.device, connected.state, slot, name);
  const presets::StoreOutcome outcome =
      presets::SendPresetStore(context.Link(), context.Options().id, store);
  presets::FinishStore(connected.state, store, outcome);
  RequireSent(outcome.end, outcome.written, store.commands.size(), "the store");
  context.Out() << SlotLine(connected.state, slot) << '\n';
  return kExitOk;
}

int Recall(CliContext& context) {
  RequireArgCount(context, 1, 1);
  const int slot = context.IntArg(0, 0, params::kSlotCount - 1, "slot");
  Connected connected = Connect(context);
  RefuseIfLocked(context, connected.state);
  if (const auto refusal = presets::CheckPresetReadable(connected.state, slot))
    Refuse(context, presets::kReadPresetTitle, *refusal);
  const int id = context.Options().id;
  params::PresetImage preset{};
  if (presets::ReadPresetSlot(context.Link(), id, slot, preset) != presets::SlotRead::Received)
    throw CommandFailed("the preset could not be read", context.LinkFailedOnce());
  presets::PresetView view;
  presets::ApplyDevicePreset(connected.device, preset, view);
  context.Out() << params::LoadedFromDeviceCaption(
                       id, connected.state.slotNames[static_cast<std::size_t>(slot)],
                       connected.device.image[params::kSystemTypeByte])
                << '\n';
  return kExitOk;
}

int TypeArg(const std::string& text) {
  if (const auto type = ParseSystemType(text)) return *type;
  throw UsageError("\"" + text + "\" is not a system type (0, 1, 2 or its name)");
}

int Type(CliContext& context) {
  RequireArgCount(context, 0, 1);
  const std::optional<int> wanted =
      context.Args().empty() ? std::nullopt : std::optional(TypeArg(context.Args()[0]));
  Connected connected = Connect(context);
  params::DeviceParams& device = connected.device;
  const int current = device.image[params::kSystemTypeByte];
  if (!wanted || !presets::TypeChangeNeeded(device, *wanted)) {
    context.Out() << current << "  " << params::SystemTypeName(current) << '\n';
    return kExitOk;
  }
  RefuseIfLocked(context, connected.state);
  const int id = context.Options().id;
  const protocol::Command command = presets::BeginTypeChange(device, *wanted);
  if (presets::SendSystemType(context.Link(), id, command) == presets::TypeSend::Failed)
    throw CommandFailed("the device did not change its system type", true);
  presets::PresetState presetState;
  presets::PresetView view;
  presets::ApplyFactoryImage(device, presetState, view);
  context.Out() << params::DefaultLoadedCaption(id, *wanted) << '\n';
  return kExitOk;
}

int Copy(CliContext& context) {
  RequireArgCount(context, 2, 2);
  const int source = ChannelArg(context.Args()[0]);
  const int destination = ChannelArg(context.Args()[1]);
  const bool inputs = source < params::kInputCount;
  if (inputs != (destination < params::kInputCount))
    throw UsageError("a copy goes from an input to an input or from an output to an output");
  if (const auto refusal = presets::CheckCopy(source, destination))
    Refuse(context, inputs ? presets::kCopyInputTitle : presets::kCopyOutputTitle, *refusal);
  Connected connected = Connect(context);
  RefuseIfLocked(context, connected.state);
  const presets::ChannelCopy copy = presets::CopyChannel(connected.device, source, destination);
  const auto commands = presets::CommandsOf(copy.edits);
  const presets::ListOutcome sent =
      presets::SendCommandList(context.Link(), context.Options().id, commands);
  RequireSent(sent.end, sent.acknowledged, commands.size(), "the copy");
  context.Out() << ChannelWord(source) << " copied onto " << ChannelWord(destination) << '\n';
  return kExitOk;
}

void PrintOutputNames(CliContext& context, const presets::ChannelNames& names) {
  for (int ch = params::kInputCount; ch < params::kChannelCount; ++ch)
    context.Out() << ChannelWord(ch) << "  " << Trimmed(names[static_cast<std::size_t>(ch)])
                  << '\n';
}

int Names(CliContext& context) {
  // CH=NAME pairs first, all checked before anything is read or sent.
  std::vector<std::pair<int, std::string>> given;
  for (const std::string& arg : context.Args()) {
    const auto equals = arg.find('=');
    if (equals == std::string::npos) throw UsageError("\"" + arg + "\" is not CH=NAME");
    given.emplace_back(ChannelArg(arg.substr(0, equals)), arg.substr(equals + 1));
  }
  for (const auto& [channel, text] : given) {
    presets::ChannelNames one;
    one.fill("x");
    one[static_cast<std::size_t>(channel)] = text;
    if (const auto refusal = presets::CheckChannelNames(one))
      Refuse(context, presets::kEditNamesTitle, *refusal);
  }
  Connected connected = Connect(context);
  presets::ChannelNames names = presets::NamesFromImage(connected.device.image);
  if (given.empty()) {
    PrintOutputNames(context, names);
    return kExitOk;
  }
  RefuseIfLocked(context, connected.state);
  presets::ChannelNames texts = names;
  for (const auto& [channel, text] : given)
    texts[static_cast<std::size_t>(channel)] = text;
  // The names the device holds go back with the new ones, and are checked with them.
  if (const auto refusal = presets::CheckChannelNames(texts))
    Refuse(context, presets::kEditNamesTitle, *refusal);
  const auto edits = presets::ApplyChannelNames(connected.device, names, texts);
  const auto commands = presets::CommandsOf(edits);
  const presets::ListOutcome sent =
      presets::SendCommandList(context.Link(), context.Options().id, commands);
  RequireSent(sent.end, sent.acknowledged, commands.size(), "the names");
  PrintOutputNames(context, names);
  return kExitOk;
}

void SendLockByte(CliContext& context, const protocol::Command& command) {
  const presets::ListOutcome sent =
      presets::SendCommandList(context.Link(), context.Options().id, {&command, 1});
  RequireSent(sent.end, sent.acknowledged, 1, "the lock");
}

int Lock(CliContext& context) {
  RequireArgCount(context, 0, 0);
  Connected connected = Connect(context);
  if (!connected.state.Locked())
    SendLockByte(context, presets::LockDevice(connected.device, connected.state));
  context.Out() << presets::LockText(connected.state.Locked()) << '\n';
  return kExitOk;
}

int Unlock(CliContext& context) {
  RequireArgCount(context, 1, 1);
  Connected connected = Connect(context);
  if (connected.state.Locked()) {
    if (presets::ReadDevicePassword(context.Link(), context.Options().id, connected.state) !=
        presets::StateRead::Received)
      throw CommandFailed("the device's password could not be read", context.LinkFailedOnce());
    if (const auto refusal = presets::CheckUnlock(context.Args()[0], connected.state))
      Refuse(context, presets::kInsertPasswordTitle, *refusal);
    SendLockByte(context, presets::UnlockDevice(connected.device, connected.state));
  }
  context.Out() << presets::LockText(connected.state.Locked()) << '\n';
  return kExitOk;
}

int Password(CliContext& context) {
  RequireArgCount(context, 1, 2);
  const std::string& password = context.Args()[0];
  const std::string& repeated = context.Args().size() > 1 ? context.Args()[1] : password;
  if (const auto refusal = presets::CheckNewPassword(password, repeated))
    Refuse(context, presets::kNewPasswordTitle, *refusal);
  const auto commands = presets::NewPasswordCommands(password);
  const presets::ListOutcome sent =
      presets::SendCommandList(context.Link(), context.Options().id, commands);
  RequireSent(sent.end, sent.acknowledged, commands.size(), "the password");
  context.Out() << "password set\n";
  return kExitOk;
}

}  // namespace

int ChannelArg(const std::string& text) {
  if (const auto channel = ParseChannelWord(text)) return *channel;
  throw UsageError("\"" + text + "\" is not a channel (inA, inB, out1 .. out6)");
}

void AddUtilityCommands(std::vector<CommandSpec>& commands) {
  commands.push_back(
      {"slots", "", "list the device's 24 preset slots: slot, used or empty, name", Slots});
  commands.push_back({"store", "SLOT NAME",
                      "store the device's current preset in slot 0..23 under NAME (up to 16 "
                      "characters)",
                      Store});
  commands.push_back(
      {"recall", "SLOT", "make the device run the preset stored in slot 0..23", Recall});
  commands.push_back({"type", "[0|1|2|NAME]",
                      "print the system type, or change it (the device loads the type's factory "
                      "preset)",
                      Type});
  commands.push_back({"copy", "SRC DST",
                      "copy every setting of a channel onto another: inA, inB, out1 .. out6",
                      Copy});
  commands.push_back({"names", "[CH=NAME ...]",
                      "print the output names, or rename channels (up to 6 characters; inA, inB "
                      "are the editor's own and are not sent)",
                      Names});
  commands.push_back({"lock", "", "lock the device", Lock});
  commands.push_back({"unlock", "PASSWORD", "unlock the device with its password", Unlock});
  commands.push_back({"password", "NEW [REPEAT]",
                      "give the device a new six-character password (blank, 0-9, A-Z, a-z)",
                      Password});
}

}  // namespace talvex::cli
