// scan, ping, send and meters: the line and the frames themselves.
#include <iomanip>
#include <optional>
#include <ostream>

#include "cli/commands.h"
#include "link/device_name.h"
#include "link/search.h"
#include "presets/meters.h"

namespace talvex::cli {

namespace {

int Scan(CliContext& context) {
  RequireArgCount(context, 0, 0);
  link::Link& link = context.Link();
  const std::vector<int> found = link::SearchDevices(
      link, link::AllDeviceIds(), [&](const std::string& text) { context.Err() << text << '\n'; });
  std::vector<std::pair<int, std::string>> devices;
  for (int id : found)
    devices.emplace_back(id, ShownName(link::ReadDeviceName(link, id)));
  if (context.Options().json) {
    context.Out() << '[';
    for (std::size_t i = 0; i < devices.size(); ++i)
      context.Out() << (i ? ", " : "") << "{\"id\": " << devices[i].first
                    << ", \"name\": " << JsonString(devices[i].second) << '}';
    context.Out() << "]\n";
    return kExitOk;
  }
  for (const auto& [id, name] : devices) {
    std::string row = "ID " + std::to_string(id) + "  " + name;
    context.Out() << row.substr(0, row.find_last_not_of(' ') + 1) << '\n';
  }
  return kExitOk;
}

int Ping(CliContext& context) {
  RequireArgCount(context, 0, 0);
  const int id = context.Options().id;
  if (link::PollTwice(context.Link(), id)) {
    context.Out() << "ID " << id << " answers\n";
    return kExitOk;
  }
  context.Err() << "ID " << id << " does not answer\n";
  return kExitFailure;
}

int Send(CliContext& context) {
  RequireArgCount(context, 1, 9);
  protocol::Command command;
  command.code = static_cast<std::uint8_t>(context.IntArg(0, 0, 255, "command code"));
  for (std::size_t i = 1; i < context.Args().size(); ++i)
    command.params[i - 1] = static_cast<std::uint8_t>(context.IntArg(i, 0, 255, "parameter"));
  link::Link& link = context.Link();
  const link::SendResult result = link.SendCommand(context.Options().id, command);
  if (result == link::SendResult::Failed) throw CommandFailed("no reply", true);
  if (result == link::SendResult::Replied)
    context.Out() << protocol::FormatHex(std::span(link.RxBuffer()).first(protocol::kFrameSize))
                  << '\n';
  return kExitOk;
}

// One line of eight levels in dBFS, In A, In B, Out 1 .. Out 6, to a tenth (the steps are half
// dB); -60.0 is silence or anything below.
int Meters(CliContext& context) {
  RequireArgCount(context, 0, 0);
  const auto levels = presets::ReadMeters(context.Link(), context.Options().id);
  if (!levels)
    throw CommandFailed("the device's meters could not be read", context.LinkFailedOnce());
  const bool json = context.Options().json;
  context.Out() << (json ? "[" : "") << std::fixed << std::setprecision(1);
  for (int channel = 0; channel < params::kChannelCount; ++channel)
    context.Out() << (channel == 0 ? "" : json ? ", " : " ") << levels->Dbfs(channel);
  context.Out() << (json ? "]" : "") << '\n';
  return kExitOk;
}

}  // namespace

void AddLinkCommands(std::vector<CommandSpec>& commands) {
  commands.push_back(
      {"scan", "", "search IDs 0..32; print \"ID n  name\" for each device that answers", Scan});
  commands.push_back({"ping", "", "poll the device of --id; exit 0 when it answers", Ping});
  commands.push_back(
      {"send", "CODE [P1 .. P8]", "send one command to --id and print the reply", Send});
  commands.push_back({"meters", "",
                      "print the levels of In A, In B, Out 1 .. Out 6 in dBFS (-60 = silent)",
                      Meters});
}

}  // namespace talvex::cli
