// --id 0,3,7 and --id all: one command on several devices of the line in turn, one line of
// result per device ("ID 3: out1.level = -3"), the exit status 0 only when every device
// succeeded. A device that does not answer, fails or vanishes is reported once, on its own
// line, and the run goes on with the next.
#include <algorithm>
#include <array>
#include <ostream>
#include <sstream>
#include <streambuf>

#include "cli/commands.h"
#include "link/search.h"

namespace talvex::cli {

namespace {

constexpr std::array<std::string_view, 7> kManyDeviceCommands = {"get",  "set",  "push",  "store",
                                                                 "type", "lock", "backup"};

// Writes "ID n: " at the start of every line into another stream.
class LinePrefixer final : public std::streambuf {
 public:
  LinePrefixer(std::ostream& target, std::string prefix)
      : target_(target), prefix_(std::move(prefix)) {}
  bool Wrote() const { return wrote_; }

 protected:
  int overflow(int c) override {
    if (c == traits_type::eof()) return traits_type::not_eof(c);
    if (atLineStart_) target_ << prefix_;
    target_.put(static_cast<char>(c));
    atLineStart_ = c == '\n';
    wrote_ = true;
    return c;
  }

 private:
  std::ostream& target_;
  std::string prefix_;
  bool atLineStart_ = true;
  bool wrote_ = false;
};

std::string Prefix(int id) {
  return "ID " + std::to_string(id) + ": ";
}

// The command on the device the context points at, its failures turned into an exit status as
// a run on one device does.
int RunGuarded(const CommandSpec& command, CliContext& context) {
  try {
    return command.run(context);
  } catch (const CommandFailed& error) {
    if (!error.Printed()) context.Err() << error.what() << '\n';
  } catch (const std::exception& error) {
    context.Err() << error.what() << '\n';
  }
  return kExitFailure;
}

void PrintResult(CliContext& context, std::ostream& out, int id, int status,
                 const std::string& result) {
  if (context.Options().json) {
    // Commands that print JSON give it as it is, the others their text as a JSON string.
    const std::string text = result.substr(0, result.find_last_not_of('\n') + 1);
    const bool json = text.starts_with('{') || text.starts_with('[');
    out << "{\"id\": " << id << ", \"status\": " << status << ", \"result\": "
        << (status != kExitOk || text.empty() ? "null"
            : json                            ? text
                                              : JsonString(text))
        << "}\n";
    return;
  }
  std::istringstream lines(result);
  for (std::string line; std::getline(lines, line);)
    out << Prefix(id) << line << '\n';
}

// The command's words, checked once before anything goes on the line: the command runs until
// it wants the line. A usage error (or a refusal that needs no device) ends the whole run here,
// with nothing sent; kExitOk means the words are good.
int CheckWords(const CommandSpec& command, CliContext& context) {
  context.CheckWordsOnly(true);
  struct Reset {
    CliContext& context;
    ~Reset() { context.CheckWordsOnly(false); }
  } reset{context};
  try {
    return command.run(context) == kExitUsage ? kExitUsage : kExitOk;
  } catch (const WordsChecked&) {
    return kExitOk;
  }
}

std::vector<int> DevicesOf(CliContext& context, std::ostream& err) {
  if (!context.Options().allIds) return context.Options().ids;
  std::vector<int> found = link::SearchDevices(
      context.Link(), link::AllDeviceIds(), [&](const std::string& text) { err << text << '\n'; });
  if (found.empty()) throw CommandFailed("no device answers on the line");
  return found;
}

bool RunsOnManyDevices(const std::string& command) {
  return std::find(kManyDeviceCommands.begin(), kManyDeviceCommands.end(), command) !=
         kManyDeviceCommands.end();
}

// The command on one device: its messages on stderr after "ID n: ", its result after them.
// Returns the device's exit status.
int RunOnDevice(const CommandSpec& command, CliContext& context, int id, std::ostream& out,
                std::ostream& err) {
  std::ostringstream result;
  LinePrefixer prefixer(err, Prefix(id));
  std::ostream deviceErr(&prefixer);
  context.TurnTo(id, result, deviceErr);
  int status = kExitFailure;
  // A device that is not there costs two short polls, not a command's five transmissions.
  if (context.Options().allIds || link::PollTwice(context.Link(), id)) {
    status = RunGuarded(command, context);
  } else {
    deviceErr << "does not answer\n";
  }
  if (status != kExitOk && !prefixer.Wrote()) deviceErr << "failed\n";
  PrintResult(context, out, id, status, result.str());
  return status;
}

}  // namespace

int RunOnManyDevices(const CommandSpec& command, CliContext& context) {
  if (!RunsOnManyDevices(command.name))
    throw UsageError(command.name +
                     " works on one device at a time; --id takes a list for get, set, push, "
                     "store, type, lock and backup");
  if (context.Options().file)
    throw UsageError("--file works on one preset file; --id with several devices needs a line");
  std::ostream& out = context.Out();
  std::ostream& err = context.Err();
  // Whatever ends the run, the context writes to the run's own streams again afterwards.
  struct StreamsBack {
    CliContext& context;
    std::ostream& out;
    std::ostream& err;
    ~StreamsBack() { context.TurnTo(context.Options().id, out, err); }
  } streamsBack{context, out, err};
  if (CheckWords(command, context) == kExitUsage) return kExitUsage;
  bool allSucceeded = true;
  for (int id : DevicesOf(context, err))
    allSucceeded = RunOnDevice(command, context, id, out, err) == kExitOk && allSucceeded;
  return allSucceeded ? kExitOk : kExitFailure;
}

}  // namespace talvex::cli
