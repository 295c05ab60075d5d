// backup FILE and restore FILE: everything a processor keeps, in one checked file, and back
// onto a device. The restore reads and checks the whole file before it opens the line.
#include <filesystem>
#include <ostream>

#include "cli/commands.h"
#include "params/captions.h"
#include "presets/device_backup.h"
#include "presets/system_lock.h"

namespace talvex::cli {

namespace {

// With several devices each gets its own file: "rack.tvb" becomes "rack-ID3.tvb".
std::string BackupPath(const CliContext& context, const std::string& given) {
  if (!context.Options().ManyDevices()) return given;
  std::filesystem::path path(given);
  path.replace_filename(path.stem().string() + "-ID" + std::to_string(context.Options().id) +
                        path.extension().string());
  return path.string();
}

// "rack.tvb: "Stage left", 2x3 WAY XOVER, 3 of 24 preset slots used", after `lead`.
void PrintSummary(CliContext& context, std::string_view lead, const std::string& path,
                  const presets::DeviceBackup& backup) {
  const std::string name = ShownName(backup.deviceName);
  const std::string type(params::SystemTypeName(backup.systemType));
  if (context.Options().json) {
    context.Out() << "{\"file\": " << JsonString(path) << ", \"name\": " << JsonString(name)
                  << ", \"type\": " << backup.systemType << ", \"typeName\": " << JsonString(type)
                  << ", \"slotsUsed\": " << backup.UsedSlots() << "}\n";
    return;
  }
  context.Out() << lead << path << ": \"" << name << "\", " << type << ", " << backup.UsedSlots()
                << " of " << params::kSlotCount << " preset slots used\n";
}

int Backup(CliContext& context) {
  RequireArgCount(context, 1, 1);
  const std::string path = BackupPath(context, context.Args()[0]);
  presets::DeviceBackup backup;
  ProgressLines progress(context.Err(), "backup");
  switch (presets::ReadDeviceBackup(context.Link(), context.Options().id, backup, progress)) {
    case presets::BackupEnd::Completed:
      break;
    case presets::BackupEnd::Skipped:
      throw CommandFailed("nothing was read");
    case presets::BackupEnd::Garbled:
      throw CommandFailed(
          "the device's image came garbled three times (a byte no device keeps); try again");
    case presets::BackupEnd::Failed:
      throw CommandFailed("the backup stopped: the device stopped answering; no file written",
                          context.LinkFailedOnce());
  }
  if (const std::string error = presets::WriteBackupFile(path, backup); !error.empty())
    throw CommandFailed(error);
  PrintSummary(context, "", path, backup);
  return kExitOk;
}

int Restore(CliContext& context) {
  RequireArgCount(context, 1, 1);
  const std::string& path = context.Args()[0];
  const presets::BackupCheck check = presets::ReadBackupFile(path);
  if (!check.backup) throw CommandFailed(check.error + "; nothing sent");
  ProgressLines progress(context.Err(), "restore");
  const presets::RestoreOutcome outcome =
      presets::RestoreDeviceBackup(context.Link(), context.Options().id, *check.backup, progress);
  switch (outcome.end) {
    case presets::RestoreEnd::Completed:
      break;
    case presets::RestoreEnd::Skipped:
      throw CommandFailed("nothing was sent");
    case presets::RestoreEnd::Locked:
      context.Err() << presets::kSystemLockText << '\n';
      throw CommandFailed(std::string(presets::kSystemLockText), true);
    case presets::RestoreEnd::Failed:
      // Where it stopped matters beside the link's own message: what went before stays written.
      throw CommandFailed("the restore stopped at " + outcome.stoppedAt +
                          ": the device stopped answering; what went before it stays written");
  }
  PrintSummary(context, "restored ", path, *check.backup);
  return kExitOk;
}

}  // namespace

void AddBackupCommands(std::vector<CommandSpec>& commands) {
  commands.push_back({"backup", "FILE",
                      "save everything the device keeps (running preset, 24 slots with names, "
                      "device name, system type, settings) to FILE (several devices: one file "
                      "each, rack.tvb giving rack-ID3.tvb); progress on stderr",
                      Backup});
  commands.push_back({"restore", "FILE",
                      "check a backup file whole, then put it on the device (progress on "
                      "stderr); a damaged file sends nothing",
                      Restore});
}

}  // namespace talvex::cli
