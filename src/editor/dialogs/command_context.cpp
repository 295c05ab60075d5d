#include "editor/dialogs/command_context.h"

#include <QDialog>

#include "presets/device_memory.h"
#include "presets/preset_load.h"

namespace talvex::editor {

Unfinished StoreNotDone(int deviceId, int slot) {
  return {std::string(presets::kStorePresetTitle),
          "ID:" + std::to_string(deviceId) + ": the preset was not stored in slot " +
              std::to_string(slot) + "; its editor was closed before the store began."};
}

Unfinished FileNotSent(int deviceId, const std::string& fileTitle) {
  return {std::string(presets::kLoadPresetTitle),
          "ID:" + std::to_string(deviceId) + ": the preset file " + fileTitle +
              " was not sent; its editor was closed before the transfer began. The device keeps "
              "its former settings."};
}

void SendCommands(CommandContext& context, std::vector<protocol::Command> commands,
                  std::function<void(const presets::ListOutcome&)> done) {
  const int id = context.DeviceId();
  RunLongJob<presets::ListOutcome>(
      context,
      [id, commands = std::move(commands)](link::Link& link, const DeviceJob::Progress&) {
        return presets::SendCommandList(link, id, commands);
      },
      {},
      [done = std::move(done)](presets::ListOutcome outcome) {
        if (done) done(outcome);
      });
}

void OpenCommandDialog(QDialog* dialog, CommandContext& context) {
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  QObject::connect(dialog, &QDialog::finished, dialog, [&context] { context.finished(); });
  dialog->open();
}

}  // namespace talvex::editor
