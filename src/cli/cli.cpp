#include "cli/cli.h"

#include <algorithm>
#include <ostream>

#include "cli/commands.h"
#include "talvex_version.h"

namespace talvex::cli {

const std::vector<CommandSpec>& AllCommands() {
  static const std::vector<CommandSpec> commands = [] {
    std::vector<CommandSpec> table;
    AddLinkCommands(table);
    AddParamCommands(table);
    AddSessionCommands(table);
    AddResponseCommands(table);
    AddUtilityCommands(table);
    AddWordsCommands(table);
    AddEqCommands(table);
    AddDiffCommands(table);
    AddBackupCommands(table);
    AddPlotCommands(table);
    return table;
  }();
  return commands;
}

namespace {

void PrintUsage(std::ostream& err) {
  err << "usage: talvexctl [--port PORT] [--id N|N,N,...|all] [--trace] [--json] "
         "[--file PRESET.tvx] COMMAND ...\n"
         "       talvexctl --help | --version\n"
         "  PORT: sim (default), sim:ID,ID,... (add @9600 to pace at the line speed),\n"
         "        tcp:HOST:PORT, or a serial port such as /dev/ttyUSB0 or COM3\n"
         "  --id: the device, 0 by default. A list (0,3,7) or all (a search of 0..32 first) runs\n"
         "        get, set, push, store, type, lock or backup on each device in turn: one line\n"
         "        \"ID n: ...\" per device, exit 0 only when every device succeeded\n"
         "  --file: get, set, new and eq work on that preset file and send nothing\n"
         "commands:\n";
  for (const CommandSpec& command : AllCommands()) {
    std::string head =
        "  " + command.name + (command.synopsis.empty() ? "" : " " + command.synopsis);
    head.resize(std::max<std::size_t>(head.size() + 2, 36), ' ');
    err << head << command.summary << '\n';
  }
  err << ParamUsage();
}

struct ParsedLine {
  GlobalOptions options;
  bool help = false;     // --help or -h: the usage on stdout
  bool version = false;  // --version: "talvexctl VERSION" on stdout
  std::string command;
  std::vector<std::string> args;
};

const std::string& OptionValue(const std::vector<std::string>& args, std::size_t& i) {
  if (i + 1 >= args.size()) throw UsageError(args[i] + " needs a value");
  return args[++i];
}

// --id N, --id 0,3,7 (each ID once) or --id all.
void ParseIds(const std::string& value, GlobalOptions& options) {
  options.ids.clear();
  options.allIds = value == "all";
  if (options.allIds) return;
  for (std::size_t start = 0; start <= value.size();) {
    const std::size_t comma = std::min(value.find(',', start), value.size());
    const auto id = ParseInt(value.substr(start, comma - start), 0, kMaxDeviceId);
    if (!id || std::find(options.ids.begin(), options.ids.end(), *id) != options.ids.end())
      throw UsageError("--id \"" + value +
                       "\" is not a device ID from 0 to 32, a list of different ones (0,3,7) "
                       "or all");
    options.ids.push_back(*id);
    start = comma + 1;
  }
  options.id = options.ids.front();
}

// Global options may stand anywhere; everything else is the command and its arguments.
// Only words beginning with "--" are options, so "-3.5" is a value.
ParsedLine ParseCommandLine(const std::vector<std::string>& args) {
  ParsedLine line;
  bool optionsEnded = false;
  for (std::size_t i = 0; i < args.size(); ++i) {
    const std::string& arg = args[i];
    if (!optionsEnded && arg == "--") {
      optionsEnded = true;
    } else if (!optionsEnded && arg == "--port") {
      line.options.port = OptionValue(args, i);
      link::ParsePortSpec(line.options.port);
    } else if (!optionsEnded && arg == "--id") {
      ParseIds(OptionValue(args, i), line.options);
    } else if (!optionsEnded && arg == "--file") {
      line.options.file = OptionValue(args, i);
    } else if (!optionsEnded && arg == "--trace") {
      line.options.trace = true;
    } else if (!optionsEnded && arg == "--json") {
      line.options.json = true;
    } else if (!optionsEnded && (arg == "--help" || arg == "-h")) {
      line.help = true;
    } else if (!optionsEnded && arg == "--version") {
      line.version = true;
    } else if (line.command.empty()) {
      line.command = arg;
    } else {
      line.args.push_back(arg);
    }
  }
  return line;
}

int Run(const std::vector<std::string>& args, std::ostream& out, std::ostream& err,
        const CliHooks& hooks) {
  const ParsedLine line = ParseCommandLine(args);
  if (line.version) {
    out << "talvexctl " << kVersion << '\n';
    return kExitOk;
  }
  if (line.help || line.command == "help") {
    PrintUsage(out);
    return kExitOk;
  }
  if (line.command.empty()) {
    PrintUsage(err);
    return kExitUsage;
  }
  const auto& commands = AllCommands();
  const auto command = std::find_if(commands.begin(), commands.end(),
                                    [&](const CommandSpec& c) { return c.name == line.command; });
  if (command == commands.end()) throw UsageError("unknown command \"" + line.command + "\"");
  CliContext context(line.options, line.args, out, err, hooks);
  if (line.options.ManyDevices()) return RunOnManyDevices(*command, context);
  return command->run(context);
}

}  // namespace

bool DrawsGraph(const std::vector<std::string>& args) {
  try {
    return ParseCommandLine(args).command == kPlotCommand;
  } catch (const std::exception&) {
    return false;  // RunCli reports the bad command line
  }
}

int RunCli(const std::vector<std::string>& args, std::ostream& out, std::ostream& err,
           const CliHooks& hooks) {
  try {
    return Run(args, out, err, hooks);
  } catch (const UsageError& error) {
    err << "talvexctl: " << error.what() << '\n';
    PrintUsage(err);
    return kExitUsage;
  } catch (const link::PortSpecError& error) {
    err << "talvexctl: " << error.what() << '\n';
    PrintUsage(err);
    return kExitUsage;
  } catch (const CommandFailed& error) {
    if (!error.Printed()) err << "talvexctl: " << error.what() << '\n';
    return kExitFailure;
  } catch (const std::exception& error) {
    err << "talvexctl: " << error.what() << '\n';
    return kExitFailure;
  }
}

}  // namespace talvex::cli
