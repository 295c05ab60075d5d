// eq import CH FILE [--dry-run] and eq export CH: a channel's equaliser bands from and to the
// filter text that room-measurement programs and system-wide equalisers write, on a device or
// on a preset file (--file). The report of the import comes before anything is sent.
#include <algorithm>
#include <filesystem>
#include <ostream>

#include "cli/commands.h"
#include "cli/param_words.h"
#include "params/eq_text.h"
#include "presets/conversation.h"
#include "presets/eq_text_file.h"
#include "presets/preset_file.h"

namespace talvex::cli {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kDryRun = "--dry-run";

std::string ReadFilterText(const std::string& path) {
  presets::EqTextRead read = presets::ReadEqTextFile(path);
  if (!read.Ok()) throw CommandFailed(read.error);
  return std::move(read.text);
}

void PrintText(CliContext& context, const params::EqImportPlan& plan, const std::string& result) {
  std::ostream& out = context.Out();
  for (const params::EqNote& note : plan.notes)
    out << params::NoteKindWord(note.kind) << ": " << params::DescribeNote(note) << '\n';
  out << ChannelWord(plan.channel) << ": " << params::EqPlanSummary(plan) << '\n' << result << '\n';
}

void PrintJson(CliContext& context, const params::EqImportPlan& plan, bool sent, int commands) {
  std::ostream& out = context.Out();
  out << "{\"channel\": " << JsonString(std::string(ChannelWord(plan.channel))) << ", \"notes\": [";
  const char* separator = "";
  for (const params::EqNote& note : plan.notes) {
    out << separator << "{\"kind\": " << JsonString(std::string(params::NoteKindWord(note.kind)))
        << ", \"line\": " << note.firstLine
        << ", \"text\": " << JsonString(params::DescribeNote(note)) << '}';
    separator = ", ";
  }
  out << "], \"summary\": " << JsonString(params::EqPlanSummary(plan))
      << ", \"sent\": " << (sent ? "true" : "false") << ", \"commands\": " << commands << "}\n";
}

// Sends the bands, or writes them into the preset file; returns the line that says so.
std::string Apply(CliContext& context, params::DeviceParams& device,
                  const params::EqImportPlan& plan, int& commands) {
  const params::EditResult result = params::ApplyEqImport(device, plan);
  commands = static_cast<int>(result.edits.size());
  if (context.Options().file) {
    const std::string error = presets::WritePresetFile(*context.Options().file, device.image);
    if (!error.empty()) throw CommandFailed(error);
    return "written to " + *context.Options().file;
  }
  const auto list = presets::CommandsOf(result.edits);
  const presets::ListOutcome sent =
      presets::SendCommandList(context.Link(), context.Options().id, list);
  if (sent.end == presets::ListEnd::Skipped) throw CommandFailed("nothing was sent");
  if (sent.end == presets::ListEnd::Stopped)
    throw CommandFailed("the bands stopped after " + std::to_string(sent.acknowledged) + " of " +
                            std::to_string(list.size()) + " commands: the device stopped answering",
                        context.LinkFailedOnce());
  return std::to_string(list.size()) + " band commands sent";
}

int Import(CliContext& context, std::vector<std::string> words) {
  const auto dryRun = std::find(words.begin(), words.end(), kDryRun);
  const bool dry = dryRun != words.end();
  if (dry) words.erase(dryRun);
  if (words.size() != 2) throw UsageError("eq import takes CH FILE [--dry-run]");
  const int channel = ChannelArg(words[0]);
  const std::string text = ReadFilterText(words[1]);
  if (!params::PlanEqImport(text, params::DefaultRecord(0), channel).HasFilters())
    throw CommandFailed(presets::NoFilterLineText(words[1]));
  params::DeviceParams device = LoadParams(context);
  const params::EqImportPlan plan = params::PlanEqImport(text, device.image, channel);
  int commands = 0;
  const std::string result =
      dry ? "nothing sent (--dry-run)" : Apply(context, device, plan, commands);
  if (context.Options().json) {
    PrintJson(context, plan, !dry, commands);
  } else {
    PrintText(context, plan, result);
  }
  return kExitOk;
}

int Export(CliContext& context, const std::vector<std::string>& words) {
  if (words.size() != 1) throw UsageError("eq export takes CH");
  if (context.Options().json)
    throw UsageError("eq export writes filter text; --json is not for it");
  const int channel = ChannelArg(words[0]);
  const params::ParamImage record = LoadRecord(context);
  const std::string source = context.Options().file
                                 ? fs::path(*context.Options().file).filename().string()
                                 : "ID " + std::to_string(context.Options().id);
  context.Out() << params::ExportEqText(record, channel,
                                        std::string(ChannelWord(channel)) + " of " + source);
  return kExitOk;
}

int Eq(CliContext& context) {
  RequireArgCount(context, 1, 4);
  const std::vector<std::string>& args = context.Args();
  const std::vector<std::string> words(args.begin() + 1, args.end());
  if (args[0] == "import") return Import(context, words);
  if (args[0] == "export") return Export(context, words);
  throw UsageError("eq takes import or export, not \"" + args[0] + "\"");
}

}  // namespace

void AddEqCommands(std::vector<CommandSpec>& commands) {
  commands.push_back(
      {"eq", "import CH FILE [--dry-run] | export CH",
       "read a measurement program's filter text onto a channel's bands (the report of what was "
       "rounded, does not fit or was skipped comes first; --dry-run sends nothing), or print the "
       "channel's bands as such text",
       Eq});
}

}  // namespace talvex::cli
