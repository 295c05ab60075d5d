#include "presets/conversation.h"

#include "params/value_tables.h"

namespace talvex::presets {

ListOutcome SendCommandList(link::Link& link, int deviceId,
                            std::span<const protocol::Command> commands, const StepDone& stepDone) {
  CheckIndex(deviceId, kMaxDeviceId, "device ID");
  ListOutcome outcome;
  int through = 0;
  for (const protocol::Command& command : commands) {
    const link::SendResult result = link.SendCommand(deviceId, command);
    if (result == link::SendResult::Replied) {
      ++outcome.acknowledged;
    } else if (result == link::SendResult::Skipped) {
      outcome.end = ListEnd::Skipped;
    } else {
      outcome.end = ListEnd::Stopped;
      return outcome;
    }
    if (stepDone) stepDone(++through);
  }
  return outcome;
}

std::vector<protocol::Command> CommandsOf(std::span<const params::ParamEdit> edits) {
  std::vector<protocol::Command> commands;
  commands.reserve(edits.size());
  for (const params::ParamEdit& edit : edits)
    commands.push_back(edit.command);
  return commands;
}

}  // namespace talvex::presets
