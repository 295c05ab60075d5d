// words: the words talvexctl understands, one a line, for shell completion. They come from the
// tables the commands themselves use, so the completion never falls behind.
#include <ostream>
#include <set>

#include "cli/commands.h"
#include "params/param_names.h"

namespace talvex::cli {

namespace {

constexpr const char* kWordKinds = "commands|params|channels";

int Words(CliContext& context) {
  RequireArgCount(context, 1, 1);
  const std::string& kind = context.Args()[0];
  std::ostream& out = context.Out();
  if (kind == "commands") {
    for (const CommandSpec& command : AllCommands())
      out << command.name << '\n';
  } else if (kind == "params") {
    for (const params::ParamRef& ref : params::AllParams())
      out << params::ParamName(ref) << '\n';
  } else if (kind == "channels") {
    // The channel is what stands before the first dot of a channel parameter: inA .. out6.
    std::vector<std::string> channels;
    std::set<std::string> seen;
    for (const params::ParamRef& ref : params::AllParams()) {
      const std::string name = params::ParamName(ref);
      const std::string channel = name.substr(0, name.find('.'));
      if (ref.kind != params::ParamKind::InputSource && seen.insert(channel).second)
        channels.push_back(channel);
    }
    for (const std::string& channel : channels)
      out << channel << '\n';
  } else {
    throw UsageError("words \"" + kind + "\": expected " + kWordKinds);
  }
  return kExitOk;
}

}  // namespace

void AddWordsCommands(std::vector<CommandSpec>& commands) {
  commands.push_back({"words", kWordKinds,
                      "print the command, parameter or channel words, one a line (for completion)",
                      Words});
}

}  // namespace talvex::cli
