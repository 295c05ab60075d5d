// The table of talvexctl commands. Each group of commands lives in its own file and adds its
// entries here.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "cli/cli_context.h"

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
void AddUtilityCommands(std::vector<CommandSpec>& commands);
// What get and set do, and the parameter names, for the usage text.
std::string ParamUsage();

const std::vector<CommandSpec>& AllCommands();

}  // namespace talvex::cli
