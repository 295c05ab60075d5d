#include "editor/dialogs/command_context.h"

#include <QDialog>

namespace talvex::editor {

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
