// get, set and new: parameters by name, on a device (--port, --id) or offline on a preset
// file (--file).
#include <QFileInfo>
#include <ostream>

#include "cli/commands.h"
#include "cli/connection.h"
#include "cli/param_words.h"
#include "params/captions.h"
#include "presets/live_image.h"
#include "presets/preset_file.h"

namespace talvex::cli {

namespace {

bool Offline(const CliContext& context) {
  return context.Options().file.has_value();
}

ParamRef ParamArg(const std::string& name) {
  const std::optional<ParamRef> ref = ParseParamName(name);
  if (!ref) throw UsageError("unknown parameter \"" + name + "\" (the valid forms follow)");
  return *ref;
}

bool Readable(const CliContext& context, const ParamRef& ref) {
  const params::Storage storage = params::StorageOf(ref);
  return storage == params::Storage::Preset ||
         (storage == params::Storage::Record && Offline(context));
}

void Print(CliContext& context, const std::vector<std::pair<ParamRef, ShownValue>>& values) {
  std::ostream& out = context.Out();
  if (!context.Options().json) {
    for (const auto& [ref, value] : values)
      out << ParamName(ref) << " = " << value.text << '\n';
    return;
  }
  out << '{';
  const char* separator = "";
  for (const auto& [ref, value] : values) {
    out << separator << JsonString(ParamName(ref)) << ": " << JsonValue(value);
    separator = ", ";
  }
  out << "}\n";
}

int Get(CliContext& context) {
  RequireArgCount(context, 0, 1);
  std::optional<ParamRef> one;
  if (!context.Args().empty()) {
    one = ParamArg(context.Args()[0]);
    if (!Readable(context, *one)) {
      const bool kept = params::StorageOf(*one) == params::Storage::Record;
      throw CommandFailed(ParamName(*one) +
                          (kept ? " is not part of a device's image: read it from a preset file"
                                : " is kept in no image: it can be set but not read back"));
    }
  }
  const params::ParamImage record = LoadRecord(context);
  std::vector<std::pair<ParamRef, ShownValue>> values;
  for (const ParamRef& ref : one ? std::vector<ParamRef>{*one} : params::AllParams())
    if (Readable(context, ref)) values.emplace_back(ref, GetParam(record, ref));
  Print(context, values);
  return kExitOk;
}

// True when the parameter does not take the value: the system's message went to stderr (the
// caller exits 2); a word that is not one of the parameter's is a UsageError.
bool RefusesValue(CliContext& context, const SetOutcome& outcome) {
  if (!outcome.badChoice.empty()) throw UsageError(outcome.badChoice);
  if (outcome.badText.empty()) return false;
  context.Err() << outcome.badText << '\n';
  return true;
}

int Set(CliContext& context) {
  RequireArgCount(context, 2, 2);
  const ParamRef ref = ParamArg(context.Args()[0]);
  // Whether the text is a value of the parameter does not depend on the record: it is tried on
  // a factory record first, so that a bad value reads nothing from the device or the file.
  params::DeviceParams trial = params::DeviceParams::FromDefault(0);
  if (RefusesValue(context, SetParam(trial, ref, context.Args()[1]))) return kExitUsage;
  params::DeviceParams device = LoadParams(context);
  const SetOutcome outcome = SetParam(device, ref, context.Args()[1]);
  if (RefusesValue(context, outcome)) return kExitUsage;
  if (Offline(context)) {
    const std::string error = presets::WritePresetFile(*context.Options().file, device.image);
    if (!error.empty()) throw CommandFailed(error);
  } else {
    for (const params::ParamEdit& edit : outcome.edit.edits)
      if (context.Link().SendCommand(context.Options().id, edit.command) ==
          link::SendResult::Failed)
        throw CommandFailed("the device did not take the command", true);
  }
  Print(context, {{ref, outcome.shown}});
  return kExitOk;
}

int SystemTypeArg(const std::string& text) {
  if (const auto type = ParseSystemType(text)) return *type;
  throw UsageError("\"" + text +
                   "\" is not a system type: 0 \"2x2 WAY XOVER + SUB\", 1 \"2x3 WAY XOVER\", "
                   "2 \"6 WAY XOVER\"");
}

int New(CliContext& context) {
  RequireArgCount(context, 0, 1);
  if (!Offline(context)) throw UsageError("new needs --file PRESET.tvx");
  const int type = context.Args().empty() ? 0 : SystemTypeArg(context.Args()[0]);
  const std::string& path = *context.Options().file;
  if (QFileInfo::exists(QString::fromStdString(path)))
    throw CommandFailed(path + " exists: new never overwrites a preset file");
  const std::string error = presets::WritePresetFile(path, params::DefaultRecord(type));
  if (!error.empty()) throw CommandFailed(error);
  context.Out() << path << ": " << params::SystemTypeName(type) << '\n';
  return kExitOk;
}

}  // namespace

params::ParamImage LoadRecord(CliContext& context) {
  params::ParamImage record = params::DefaultRecord(0);
  if (Offline(context)) {
    const std::string error = presets::ReadPresetFile(*context.Options().file, record);
    if (!error.empty()) throw CommandFailed(error);
    return record;
  }
  return ReadLiveRecord(context);
}

params::DeviceParams LoadParams(CliContext& context) {
  if (Offline(context)) {
    params::DeviceParams device = params::DeviceParams::FromImage(LoadRecord(context));
    device.values.Switch() = device.image[params::kOutputLinkByte] != 0 ? 1 : 0;
    return device;
  }
  params::DeviceParams device = ReadLive(context);
  ReadState(context, device);
  return device;
}

void AddParamCommands(std::vector<CommandSpec>& commands) {
  commands.push_back({"get", "[PARAM]", "print PARAM, or every parameter the image holds", Get});
  commands.push_back({"set", "PARAM VALUE", "set PARAM and print its value as snapped", Set});
  commands.push_back(
      {"new", "[TYPE]", "write a factory preset of TYPE (0..2 or its name) to --file", New});
}

std::string ParamUsage() {
  return "get and set work on the device of --port and --id, or offline on --file:\n"
         "  set clamps VALUE to the parameter's range and snaps it to the device's grid (a value\n"
         "  exactly halfway goes down). On a device it first reads the live image and the state,\n"
         "  so that the bytes a command carries beside the value (the polarity beside a level,\n"
         "  the other bytes of a band) are the device's own, then sends the parameter's one\n"
         "  command, and one more for the linked output while output.link is on.\n"
         "  With --file it rewrites the file and sends nothing.\n"
         "  Mutes and input polarities are kept in no image: set sends them, get leaves them\n"
         "  out. input.source is not in a device's image and is read from a --file only.\n"
         "  A VALUE that is not a number is refused with the system's message (exit 2).\n" +
         ParamNameForms();
}

}  // namespace talvex::cli
