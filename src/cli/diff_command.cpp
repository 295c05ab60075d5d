// diff A.tvx [B.tvx]: every parameter whose value differs between two preset files, or between
// a preset file and the device of --port and --id, by its name and both values.
#include <ostream>

#include "cli/commands.h"
#include "cli/connection.h"
#include "cli/param_words.h"
#include "params/param_diff.h"
#include "presets/preset_file.h"

namespace talvex::cli {

namespace {

params::ParamImage ReadFile(const std::string& path) {
  params::ParamImage record{};
  const std::string error = presets::ReadPresetFile(path, record);
  if (!error.empty()) throw CommandFailed(error);
  return record;
}

// A device's record as far as it keeps one: its live image and its state read.
params::ParamImage ReadDevice(CliContext& context) {
  params::DeviceParams device = ReadLive(context);
  ReadState(context, device);
  return device.image;
}

// A value as get prints it; a text that is empty or holds blanks is quoted.
std::string Shown(const ShownValue& value) {
  const bool quoted = value.type == ShownValue::Type::Text &&
                      (value.text.empty() || value.text.find(' ') != std::string::npos);
  return quoted ? JsonString(value.text) : value.text;
}

int Diff(CliContext& context) {
  RequireArgCount(context, 1, 2);
  if (context.Options().file) throw UsageError("diff names its files itself: diff A.tvx [B.tvx]");
  const std::vector<std::string>& args = context.Args();
  const params::ParamImage a = ReadFile(args[0]);
  const params::ParamImage b = args.size() > 1 ? ReadFile(args[1]) : ReadDevice(context);
  const auto differences = params::DiffRecords(a, b, params::DiffScope::Record);
  std::ostream& out = context.Out();
  const char* separator = "";
  if (context.Options().json) out << '[';
  for (const params::ParamDifference& difference : differences) {
    const ShownValue first = GetParam(a, difference.ref);
    const ShownValue second = GetParam(b, difference.ref);
    if (context.Options().json) {
      out << separator << "{\"name\": " << JsonString(ParamName(difference.ref))
          << ", \"a\": " << JsonValue(first) << ", \"b\": " << JsonValue(second) << '}';
      separator = ", ";
    } else {
      out << ParamName(difference.ref) << ": " << Shown(first) << " -> " << Shown(second) << '\n';
    }
  }
  if (context.Options().json) out << "]\n";
  context.Err() << (differences.empty() ? "no parameter differs"
                                        : std::to_string(differences.size()) +
                                              (differences.size() == 1 ? " parameter differs"
                                                                       : " parameters differ"))
                << '\n';
  return kExitOk;
}

}  // namespace

void AddDiffCommands(std::vector<CommandSpec>& commands) {
  commands.push_back({"diff", "A.tvx [B.tvx]",
                      "print every parameter that differs between two preset files, or between "
                      "A.tvx and the device: \"name: A -> B\"",
                      Diff});
}

}  // namespace talvex::cli
