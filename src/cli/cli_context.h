// What a talvexctl command works with: its options, its arguments, the output streams, and,
// opened on first use, the link to the device.
#pragma once

#include <iosfwd>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "cli/cli.h"
#include "link/link.h"

namespace talvex::cli {

// A wrong command line: printed with the usage, exit status 2, nothing sent or written.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The device, the line or a file failed, or the system refused: exit status 1. The message
// (the system's own words) has been printed already when `printed` is true.
class CommandFailed : public std::runtime_error {
 public:
  explicit CommandFailed(const std::string& message, bool printed = false)
      : std::runtime_error(message), printed_(printed) {}
  bool Printed() const { return printed_; }

 private:
  bool printed_;
};

// Thrown by CliContext::Link() while only the words are checked: the command got as far as
// the line, so its words are good. Not an error; derives from nothing a command catches.
struct WordsChecked {};

struct GlobalOptions {
  std::string port = "sim";
  int id = 0;  // the device a command works on (in a run on several devices, the one now)
  // --id 0,3,7 or --id all: the command runs on each device in turn.
  std::vector<int> ids;
  bool allIds = false;
  bool trace = false;
  bool json = false;
  std::optional<std::string> file;

  bool ManyDevices() const { return allIds || ids.size() > 1; }
};

class CliContext : private link::LinkObserver {
 public:
  CliContext(GlobalOptions options, std::vector<std::string> args, std::ostream& out,
             std::ostream& err, const CliHooks& hooks);
  ~CliContext() override;

  const GlobalOptions& Options() const { return options_; }
  const std::vector<std::string>& Args() const { return args_; }
  std::ostream& Out() { return *out_; }
  std::ostream& Err() { return *err_; }

  // A run on several devices turns to the next one on the same line: its ID, where its result
  // and its messages go, and a fresh count of link failures.
  void TurnTo(int deviceId, std::ostream& out, std::ostream& err);
  // While set, Link() throws WordsChecked instead of opening the line: a command run so checks
  // its words (every command checks them before it reads or sends anything) and stops there.
  void CheckWordsOnly(bool only) { wordsOnly_ = only; }

  // The link to the line of --port, opened on first use with failures reported (a failure
  // prints the system's message and is remembered). Throws CommandFailed if the port won't open.
  link::Link& Link();
  // The simulated processors when --port names a simulated line (null otherwise).
  sim::SimLine* Simulator();
  // True once the link has reported a final failure.
  bool LinkFailedOnce() const { return failures_ > 0; }

  // Takes the command's next argument, parsed as a whole number in [min, max]; `what` names it
  // in the usage error.
  int IntArg(std::size_t index, int min, int max, const char* what) const;

 private:
  void LinkFailed(const link::LinkFailure& failure) override;
  void FrameSent(std::span<const std::uint8_t> frame) override;
  void ReplyTaken(std::span<const std::uint8_t> reply) override;

  GlobalOptions options_;
  std::vector<std::string> args_;
  std::ostream* out_;
  std::ostream* err_;
  const CliHooks& hooks_;
  std::optional<link::Line> line_;
  std::unique_ptr<link::Link> link_;
  int failures_ = 0;
  bool wordsOnly_ = false;
};

// The progress of a long job on stderr, "push 45 %", a line each time the whole percent grows
// (at most 101 lines, whatever the job's steps).
class ProgressLines {
 public:
  ProgressLines(std::ostream& err, std::string what) : err_(err), what_(std::move(what)) {}
  void operator()(int done, int total);

 private:
  std::ostream& err_;
  std::string what_;
  int shown_ = -1;
};

// UsageError unless the command has between `min` and `max` arguments.
void RequireArgCount(const CliContext& context, std::size_t min, std::size_t max);

// A device or preset name as talvexctl prints it: trailing blanks dropped; "---" when it
// could not be read (as the device list shows it).
std::string ShownName(const std::optional<std::string>& name);

// `text` as a JSON string, quotes and control characters escaped.
std::string JsonString(const std::string& text);

// Parses a whole decimal number in [min, max]; nullopt for anything else.
std::optional<int> ParseInt(const std::string& text, int min, int max);

}  // namespace talvex::cli
