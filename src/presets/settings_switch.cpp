#include "presets/settings_switch.h"

#include <algorithm>
#include <array>

#include "presets/preset_transfer.h"
#include "presets/system_type.h"

namespace talvex::presets {

namespace {

// The record bytes beyond the preset that a setting holds.
constexpr std::array<std::size_t, 3> kSettingBytes = {params::kInputSourceByte, params::kOptionByte,
                                                      params::kOutputLinkByte};

std::vector<protocol::Command> TransferCommands(const params::DeviceParams& setting) {
  params::DeviceParams walked = setting;
  PresetView nothingShown;
  const PresetTransfer transfer = ApplyPreset(walked, nothingShown, TransferFlags::EditorLoad());
  std::vector<protocol::Command> commands;
  commands.reserve(transfer.steps.size());
  for (const PresetStep& step : transfer.steps)
    commands.push_back(step.edit.command);
  return commands;
}

void KeepOnce(std::vector<protocol::Command>& kept, const protocol::Command& command) {
  if (std::find(kept.begin(), kept.end(), command) == kept.end()) kept.push_back(command);
}

bool Sent(link::SendResult result, ListOutcome& outcome) {
  if (result == link::SendResult::Replied) {
    ++outcome.acknowledged;
    return true;
  }
  if (result == link::SendResult::Skipped) {
    outcome.end = ListEnd::Skipped;
    return true;
  }
  outcome.end = ListEnd::Stopped;
  return false;
}

}  // namespace

void TakeSettings(params::DeviceParams& to, const params::DeviceParams& from) {
  std::copy_n(from.image.begin(), params::kPresetSize, to.image.begin());
  for (std::size_t offset : kSettingBytes)
    to.image[offset] = from.image[offset];
  to.values = from.values;
}

bool SameSettings(const params::DeviceParams& a, const params::DeviceParams& b) {
  if (!std::equal(a.image.begin(), a.image.begin() + params::kPresetSize, b.image.begin()))
    return false;
  for (std::size_t offset : kSettingBytes)
    if (a.image[offset] != b.image[offset]) return false;
  for (int field = 0; field < params::field::kCount; ++field)
    if (a.values.Field(field) != b.values.Field(field)) return false;
  return true;
}

SettingsSwitch PlanSettingsSwitch(const params::DeviceParams& from,
                                  const params::DeviceParams& to) {
  SettingsSwitch plan;
  const std::vector<protocol::Command> target = TransferCommands(to);
  plan.transferCommands = static_cast<int>(target.size());
  const int toType = to.image[params::kSystemTypeByte];
  if (from.image[params::kSystemTypeByte] != toType) {
    plan.typeCommand = SystemTypeCommand(toType);
    for (const protocol::Command& command : target)
      KeepOnce(plan.commands, command);
    return plan;
  }
  // The walk is the same for every setting: command i of one is command i of the other.
  const std::vector<protocol::Command> current = TransferCommands(from);
  for (std::size_t i = 0; i < target.size(); ++i)
    if (target[i] != current[i]) KeepOnce(plan.commands, target[i]);
  return plan;
}

SwitchOutcome SendSettingsSwitch(link::Link& link, int deviceId, const SettingsSwitch& plan,
                                 const StepDone& progress) {
  CheckIndex(deviceId, kMaxDeviceId, "device ID");
  ListOutcome list;
  int through = 0;
  const auto start = link.Time().Now();
  const auto finish = [&] {
    return SwitchOutcome{list.end, list.acknowledged, link.Time().Now() - start};
  };
  if (plan.typeCommand) {
    const RaisedFlag showProgress(link.Flags().ShowSendProgress);
    if (!Sent(link.SendCommand(deviceId, *plan.typeCommand), list)) return finish();
    if (progress) progress(++through);
  }
  for (const protocol::Command& command : plan.commands) {
    if (!Sent(link.SendCommand(deviceId, command), list)) return finish();
    if (progress) progress(++through);
  }
  return finish();
}

}  // namespace talvex::presets
