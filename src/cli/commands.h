// The table of talvexctl commands. Each group of commands lives in its own file and adds its
// entries here.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "cli/cli_context.h"
#include "graph/output_response.h"
#include "params/device_params.h"

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
void AddEqCommands(std::vector<CommandSpec>& commands);
void AddDiffCommands(std::vector<CommandSpec>& commands);
void AddBackupCommands(std::vector<CommandSpec>& commands);
void AddPlotCommands(std::vector<CommandSpec>& commands);
// What get and set do, and the parameter names, for the usage text.
std::string ParamUsage();

const std::vector<CommandSpec>& AllCommands();

// A command on several devices (--id 0,3,7 or --id all): its words checked once, then the
// command on each device in turn, one result line per device, exit 0 only when all succeeded.
// UsageError for a command that works on one device only.
int RunOnManyDevices(const CommandSpec& command, CliContext& context);

// The record a command works on: with --file the preset file as a whole, else the live image
// of the device of --port and --id (bytes 0..303 read from it, the rest a default record).
// CommandFailed when the file or the device cannot be read.
params::ParamImage LoadRecord(CliContext& context);
// The stores a command edits: with --file the file's record (the output link switch as it keeps
// it), else the device's live image and its state read (its output link switch among them),
// as the editor connects a device.
params::DeviceParams LoadParams(CliContext& context);
// A channel word (inA, inB, out1 .. out6) as ChannelIndex; UsageError for any other.
int ChannelArg(const std::string& text);
// The outputs of --sum: different output words separated by commas ("out1,out3").
graph::OutputSet ParseOutputList(const std::string& text);

}  // namespace talvex::cli
