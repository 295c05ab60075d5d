// What a window command of the editor's toolbar (`Command2`) works with, and how it runs the
// device's long jobs. Each dialog and flow in this folder is a thin view over a conversation of
// src/presets: it asks through UserDialogs, changes the stores on the interface thread, and
// sends as one job on the link worker.
#pragma once

#include <QString>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "editor/model/device_editor.h"
#include "editor/model/settings_memory.h"
#include "editor/user_dialogs.h"
#include "presets/conversation.h"

class QDialog;
class QWidget;

namespace talvex::editor {

struct CommandContext {
  QWidget& window;               // the editor window: dialogs open over it
  DeviceEditor& model;           // the view every whole preset is applied to
  params::DeviceParams& device;  // the device's stores, as the model edits them
  EditorLink& link;
  UserDialogs& dialogs;
  // The editor's caption (window title).
  std::function<void(const std::string&)> setCaption;
  // A long job of the device began (true) or ended: the input-suppress flag and the editing
  // controls follow.
  std::function<void(bool running)> jobRunning;
  // The enable routine: every control, the chain and the graph in line with the stores and the
  // lock state.
  std::function<void()> refresh;
  // The command has ended: the window-command-busy flag is cleared. Called once per command.
  std::function<void()> finished;
  // The editor's history, A/B sides and save state: a command that replaces the setting records
  // one step, one that keeps it in a file or a slot marks it.
  SettingsMemory& memory;

  int DeviceId() const { return model.DeviceId(); }
  DeviceRecords Records() const { return link.Records(); }
};

// What the user is told when a job that changes the device never began because its editor
// closed first (the user closed it, or the device was lost or unconnected meanwhile).
struct Unfinished {
  std::string title;
  std::string text;
};
Unfinished StoreNotDone(int deviceId, int slot);
Unfinished FileNotSent(int deviceId, const std::string& fileTitle);

// Runs a conversation returning `Result` as the window's long job: the window is told when it
// begins and ends; `progress` and `done` come on the interface thread while the editor lives.
template <typename Result, typename Work, typename Done>
void RunLongJob(CommandContext& context, Work work, DeviceJob::Progress progress, Done done,
                Unfinished unfinished = {}) {
  context.jobRunning(true);
  DeviceJob job = MakeDeviceJob<Result>(std::move(work), std::move(progress),
                                        [&context, done = std::move(done)](Result result) mutable {
                                          context.jobRunning(false);
                                          done(std::move(result));
                                        });
  job.unfinishedTitle = std::move(unfinished.title);
  job.unfinishedText = std::move(unfinished.text);
  context.link.RunJob(std::move(job));
}

// Sends `commands` in order as the window's long job (stopping at the first one the device does
// not answer); `done` gets how the list ended.
void SendCommands(CommandContext& context, std::vector<protocol::Command> commands,
                  std::function<void(const presets::ListOutcome&)> done = {});

// A toolbar dialog: deleted when closed, modal over the editor without a nested event loop,
// and the command ends with it (a job it started keeps the window busy until it ends).
void OpenCommandDialog(QDialog* dialog, CommandContext& context);

inline QString QtText(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

inline std::string Std(const QString& text) {
  return text.toStdString();
}

}  // namespace talvex::editor
