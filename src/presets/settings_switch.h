// Bringing a device from one whole setting to another by sending only what differs: the
// editor's A/B compare and the undo and redo of a whole-preset step (a file load, a preset read
// from device memory, a type change, an import, a copy). Both settings are walked through the
// whole-preset transfer, so every command comes from the same senders in the same order as a
// full push, and only the commands whose bytes differ go out: switching one band costs one
// command instead of 155.
//
// Split like the other conversations: PlanSettingsSwitch on the interface thread, before the
// stores change; SendSettingsSwitch on the link worker.
#pragma once

#include <optional>
#include <vector>

#include "link/link.h"
#include "params/device_params.h"
#include "presets/conversation.h"

namespace talvex::presets {

// A whole setting of a device is what the whole-preset transfer sends from a record: bytes
// 0..303 (the preset, its system type at 298), the input source (321), the delay unit (323),
// the output link switch (328), and the values kept beside the image (mutes, input
// polarities, the temperature delays are shown with). The rest of the record belongs to the
// device, not to a setting: the running preset's name, byte 322, the lock.
void TakeSettings(params::DeviceParams& to, const params::DeviceParams& from);
bool SameSettings(const params::DeviceParams& a, const params::DeviceParams& b);

struct SettingsSwitch {
  // Set when the system types differ: command 21 goes first. The device then runs the new
  // type's factory preset and loses what no image holds (mutes), so every command of the
  // transfer follows it, not only those that differ.
  std::optional<protocol::Command> typeCommand;
  std::vector<protocol::Command> commands;  // in the transfer's order
  int transferCommands = 0;                 // what a full push would send
  std::size_t Size() const { return commands.size() + (typeCommand ? 1 : 0); }
};

// Walks the transfer for both settings (on copies: nothing of `from` or `to` changes) and keeps,
// in the transfer's order, each command of `to` that differs from `from`'s command at the same
// place. A command the transfer repeats (the level sender runs twice, the mutes go first and
// last, the delay unit twice) is kept once: sending it again would change nothing. IndexError
// when either setting holds a byte no sender takes.
SettingsSwitch PlanSettingsSwitch(const params::DeviceParams& from, const params::DeviceParams& to);

struct SwitchOutcome {
  ListEnd end = ListEnd::Completed;
  int sent = 0;                      // commands acknowledged
  link::Clock::Duration lineTime{};  // from the first command out to the last reply in
};

// Sends the plan in order, stopping at the first command the device does not answer (the link
// reports it); `progress` is told after each command that went through.
SwitchOutcome SendSettingsSwitch(link::Link& link, int deviceId, const SettingsSwitch& plan,
                                 const StepDone& progress = {});

}  // namespace talvex::presets
