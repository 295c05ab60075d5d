// words: the words talvexctl understands, one a line, for shell completion. They come from the
// tables the commands themselves use, so the completion never falls behind.
#include <ostream>

#include "cli/commands.h"
#include "cli/param_words.h"

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
      out << ParamName(ref) << '\n';
  } else if (kind == "channels") {
    for (int channel = 0; channel < params::kChannelCount; ++channel)
      out << ChannelWord(channel) << '\n';
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
