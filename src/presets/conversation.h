// What the device utilities (preset memory, system type, copy, names, lock) share: each is a
// short conversation with one device, a list of commands sent in order, each acknowledged
// before the next goes, ending at the first one the device does not answer.
#pragma once

#include <functional>
#include <span>
#include <string_view>
#include <vector>

#include "link/link.h"
#include "params/senders.h"

namespace talvex::presets {

// The question the store, copy and name dialogs ask before they act (Yes/No). Its fifteen
// leading blanks centre it in the box.
inline constexpr std::string_view kAreYouSureText = "               Are you sure ? ";

enum class ListEnd {
  Completed,  // every command was acknowledged
  Skipped,    // the link sends nothing (demo mode, not open, suspended): the PC's copy alone
  Stopped,    // a command went unanswered (reported by the link); nothing was sent after it
};

struct ListOutcome {
  ListEnd end = ListEnd::Completed;
  int acknowledged = 0;  // commands the device acknowledged, from the first on
};

// Called after each command that went through (acknowledged, or skipped by the link) with the
// number of commands through so far.
using StepDone = std::function<void(int done)>;

// Sends `commands` to `deviceId` in order with SendCommand. What the device acknowledged stays
// done; after a final failure, reported ("Communication problem") or not (ReportLinkErrors
// false), nothing more is sent: the device has left the line. A skipped link walks the whole
// list without sending, so that the PC's copy and the progress go on as in demo mode.
ListOutcome SendCommandList(link::Link& link, int deviceId,
                            std::span<const protocol::Command> commands,
                            const StepDone& stepDone = {});

// Raises one of the link's flags (a progress flag, say) for a scope and puts back what it was.
class RaisedFlag {
 public:
  explicit RaisedFlag(bool& flag) : flag_(flag), before_(flag) { flag_ = true; }
  ~RaisedFlag() { flag_ = before_; }
  RaisedFlag(const RaisedFlag&) = delete;
  RaisedFlag& operator=(const RaisedFlag&) = delete;

 private:
  bool& flag_;
  bool before_;
};

// The commands of a list of sender results, in order.
std::vector<protocol::Command> CommandsOf(std::span<const params::ParamEdit> edits);

}  // namespace talvex::presets
