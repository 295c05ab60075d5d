// The table of talvexctl commands. Each group of commands lives in its own file and adds its
// entries here.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "cli/cli_context.h"
#include "params/image_layout.h"

namespace talvex::cli {

struct CommandSpec {
  std::string name;
  std::string synopsis;  // arguments, as shown in the usage
  std::string summary;
  std::function<int(CliContext&)> run;
};

void AddLinkCommands(std::vector<CommandSpec>& commands);
void AddParamCommands(std::vector<CommandSpec>& commands);
void AddSessionCommands(std::vector<CommandSpec>& commands);
void AddResponseCommands(std::vector<CommandSpec>& commands);
void AddUtilityCommands(std::vector<CommandSpec>& commands);
void AddWordsCommands(std::vector<CommandSpec>& commands);
// What get and set do, and the parameter names, for the usage text.
std::string ParamUsage();

const std::vector<CommandSpec>& AllCommands();

// The record a command works on: with --file the preset file as a whole, else the live image
// of the device of --port and --id (bytes 0..303 read from it, the rest a default record).
// CommandFailed when the file or the device cannot be read.
params::ParamImage LoadRecord(CliContext& context);

}  // namespace talvex::cli
