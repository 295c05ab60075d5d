#include "editor/dialogs/device_tools.h"

#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QPointer>
#include <QProgressBar>
#include <QVBoxLayout>
#include <filesystem>

#include "config/config_files.h"
#include "editor/dialogs/eq_import_dialog.h"
#include "editor/dialogs/preset_diff_dialog.h"
#include "editor/dialogs/preset_folder.h"
#include "editor/dialogs/slot_list.h"
#include "editor/model/controls.h"
#include "params/captions.h"
#include "presets/device_backup.h"
#include "presets/eq_text_file.h"
#include "presets/preset_file.h"
#include "presets/preset_load.h"
#include "presets/system_lock.h"

namespace talvex::editor {

namespace {

std::string FileTitle(const std::string& path) {
  return std::filesystem::path(path).filename().string();
}

std::string DeviceText(const CommandContext& context) {
  return "ID:" + std::to_string(context.DeviceId());
}

// "\"Stage left\", 2x3 WAY XOVER, 3 of 24 preset slots used"
std::string BackupSummary(const presets::DeviceBackup& backup) {
  return "\"" + Std(ShownSlotName(backup.deviceName)) + "\", " +
         std::string(params::SystemTypeName(backup.systemType)) + ", " +
         std::to_string(backup.UsedSlots()) + " of " + std::to_string(params::kSlotCount) +
         " preset slots used";
}

// A small window with one bar over the editor while a backup or a restore runs; it cannot be
// cancelled half-way (a restore stopped half-way leaves a half-written device).
class JobProgress final : public QDialog {
 public:
  JobProgress(const QString& title, const QString& text, QWidget* parent)
      : QDialog(parent, Qt::Tool | Qt::CustomizeWindowHint | Qt::WindowTitleHint),
        bar_(new QProgressBar) {
    setObjectName("JobProgress");
    setWindowTitle(title);
    bar_->setAccessibleName(title + " progress");
    bar_->setRange(0, 1);
    bar_->setValue(0);
    bar_->setMinimumWidth(bar_->fontMetrics().averageCharWidth() * 40);
    auto* label = new QLabel(text);
    label->setBuddy(bar_);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(label);
    layout->addWidget(bar_);
    QApplication::setOverrideCursor(Qt::BusyCursor);
  }
  ~JobProgress() override { QApplication::restoreOverrideCursor(); }
  JobProgress(const JobProgress&) = delete;
  JobProgress& operator=(const JobProgress&) = delete;

  void Show(int done, int total) {
    if (total <= 0) return;
    bar_->setMaximum(total);
    bar_->setValue(done);
  }
  void reject() override {}

 private:
  QProgressBar* bar_;
};

struct BackupRead {
  presets::BackupEnd end = presets::BackupEnd::Skipped;
  presets::DeviceBackup backup;
};

// The backup is on the device: the editor takes what the device now holds, as the restore's
// whole-preset transfer sent it (every channel playing, the editor's temperature kept).
void TakeRestored(CommandContext& context, const presets::DeviceBackup& backup) {
  params::DeviceParams restored = params::DeviceParams::FromImage(backup.Record());
  restored.values.Switch() = backup.outputLink;
  restored.values.Temperature() = context.device.values.Temperature();
  presets::TakeSettings(context.device, restored);
  const params::ParamImage record = backup.Record();
  std::copy_n(record.begin() + params::kPresetNameByte, params::kPresetNameLength,
              context.device.image.begin() + params::kPresetNameByte);
  context.device.image[params::kDeviceWideByte] = backup.deviceWide;
  presets::ApplyPreset(context.device, context.model, presets::TransferFlags::DeviceRead(),
                       context.model.Mark());
  DeviceRecords records = context.Records();
  presets::DeviceState& state = records.state;
  state.systemType = backup.systemType;
  state.inputSource = backup.inputSource;
  state.deviceWide = backup.deviceWide;
  state.option = backup.delayUnit;
  state.outputLink = backup.outputLink;
  for (int slot = 0; slot < params::kSlotCount; ++slot) {
    const auto at = static_cast<std::size_t>(slot);
    state.usedMarks[at] = backup.usedMarks[at];
    state.slotNames[at] = backup.SlotUsed(slot) ? backup.slotNames[at] : std::string();
  }
  const presets::ChannelNames names = presets::NamesFromImage(context.device.image);
  std::copy(names.begin() + params::kInputCount, names.end(),
            records.names.begin() + params::kInputCount);
  records.deviceName = backup.deviceName;
  context.link.DeviceRenamed();
  context.memory.ClearHistory("a backup was restored onto the device");
  context.memory.Reopened();
  context.setCaption(params::EditorCaption(context.DeviceId(), backup.systemType));
  context.refresh();
}

void Restored(CommandContext& context, const presets::DeviceBackup& backup,
              const std::string& fileTitle, const presets::RestoreOutcome& outcome) {
  switch (outcome.end) {
    case presets::RestoreEnd::Completed:
      TakeRestored(context, backup);
      context.dialogs.ShowMessage(
          kRestoreTitle,
          fileTitle + " restored onto " + DeviceText(context) + ": " + BackupSummary(backup),
          DialogIcon::Information);
      return;
    case presets::RestoreEnd::Skipped:
      context.dialogs.ShowMessage(kRestoreTitle, "Demo mode: nothing was sent",
                                  DialogIcon::Information);
      return;
    case presets::RestoreEnd::Locked:
      context.dialogs.ShowMessage(kRestoreTitle,
                                  std::string(presets::kSystemLockText) + ": " +
                                      DeviceText(context) + " is locked; nothing was sent",
                                  DialogIcon::Warning);
      return;
    case presets::RestoreEnd::Failed:
      return;  // the link has reported it, and the editor closes
  }
}

}  // namespace

void ImportEqualiser(CommandContext& context, int channel) {
  const auto path =
      context.dialogs.ChooseOpenFile(PresetFolder(context.Records()).string(), kEqTextFilter);
  if (!path) return context.finished();
  const presets::EqTextRead read = presets::ReadEqTextFile(*path);
  params::EqImportPlan plan;
  if (read.Ok())
    plan = params::PlanEqImport(read.text, context.device.image, channel, context.model.Mark());
  if (!read.Ok() || !plan.HasFilters()) {
    context.dialogs.ShowMessage(
        kEqImportTitle, read.Ok() ? presets::NoFilterLineText(FileTitle(*path)) : read.error,
        DialogIcon::Warning);
    return context.finished();
  }
  OpenCommandDialog(new EqImportDialog(context, std::move(plan), FileTitle(*path)), context);
}

void ExportEqualiser(CommandContext& context, int channel) {
  const auto path =
      context.dialogs.ChooseSaveFile(PresetFolder(context.Records()).string(), kEqTextFilter);
  if (path) {
    const std::string text = params::ExportEqText(
        context.device.image, channel, ChannelCaption(channel) + " of " + DeviceText(context),
        context.model.Mark());
    const std::string error =
        config::WriteFileAtomically(*path, std::vector<std::uint8_t>(text.begin(), text.end()));
    if (!error.empty()) {
      context.dialogs.ShowMessage(kExportEqTitle, error, DialogIcon::Warning);
    } else {
      context.memory.Tell(ChannelCaption(channel) + "'s equaliser written to " + FileTitle(*path));
    }
  }
  context.finished();
}

void CompareWithFile(CommandContext& context) {
  const auto path = context.dialogs.ChooseOpenFile(PresetFolder(context.Records()).string(),
                                                   std::string(presets::kPresetFileFilter));
  if (!path) return context.finished();
  params::ParamImage file{};
  std::string error = presets::ReadPresetFile(*path, file);
  std::vector<params::ParamDifference> differences;
  if (error.empty()) {
    try {
      differences = params::DiffRecords(file, context.device.image, params::DiffScope::Record,
                                        context.model.Mark());
    } catch (const IndexError&) {
      error = *path + " holds a byte no device keeps: it is no preset file";
    }
  }
  if (!error.empty()) {
    context.dialogs.ShowMessage(kCompareTitle, error, DialogIcon::Warning);
    return context.finished();
  }
  OpenCommandDialog(new PresetDiffDialog(context, FileTitle(*path), file, differences), context);
}

void BackupDevice(CommandContext& context) {
  const auto path =
      context.dialogs.ChooseSaveFile(PresetFolder(context.Records()).string(), kBackupFilter);
  if (!path) return context.finished();
  auto* progress = new JobProgress(
      kBackupTitle, QtText("Reading everything " + DeviceText(context) + " keeps ..."),
      &context.window);
  progress->show();
  const QPointer<JobProgress> shown(progress);
  const int id = context.DeviceId();
  RunLongJob<BackupRead>(
      context,
      [id](link::Link& link, const DeviceJob::Progress& step) {
        BackupRead read;
        read.end = presets::ReadDeviceBackup(link, id, read.backup, step);
        return read;
      },
      [shown](int done, int total) {
        if (shown && total != link::kProgressEnd) shown->Show(done, total);
      },
      [&context, shown, file = *path](BackupRead read) {
        delete shown.data();
        std::string text;
        DialogIcon icon = DialogIcon::Warning;
        switch (read.end) {
          case presets::BackupEnd::Completed:
            text = presets::WriteBackupFile(file, read.backup);
            if (text.empty()) {
              text = DeviceText(context) + " backed up to " + FileTitle(file) + ": " +
                     BackupSummary(read.backup);
              icon = DialogIcon::Information;
            }
            break;
          case presets::BackupEnd::Skipped:
            text = "Demo mode: nothing was read; no file written";
            icon = DialogIcon::Information;
            break;
          case presets::BackupEnd::Garbled:
            text =
                "The device's image came garbled three times (a byte no device keeps); no "
                "file written. Try again.";
            break;
          case presets::BackupEnd::Failed:
            break;  // the link has reported it, and the editor closes
        }
        if (!text.empty()) context.dialogs.ShowMessage(kBackupTitle, text, icon);
        context.finished();
      });
}

void RestoreDevice(CommandContext& context) {
  const auto path =
      context.dialogs.ChooseOpenFile(PresetFolder(context.Records()).string(), kBackupFilter);
  if (!path) return context.finished();
  const presets::BackupCheck check = presets::ReadBackupFile(*path);
  if (!check.backup) {
    context.dialogs.ShowMessage(kRestoreTitle, check.error + "; nothing sent", DialogIcon::Warning);
    return context.finished();
  }
  const std::string device = DeviceText(context);
  if (context.dialogs.AskYesNo(kRestoreTitle,
                               "Put the backup " + FileTitle(*path) + " (" +
                                   BackupSummary(*check.backup) + ") on " + device +
                                   "? Everything " + device +
                                   " keeps is replaced: its running preset, its 24 preset "
                                   "slots, its name and its system type.",
                               DialogIcon::Warning, Answer::No) == Answer::No)
    return context.finished();
  auto* progress =
      new JobProgress(kRestoreTitle, QtText("Restoring " + device + " ..."), &context.window);
  progress->show();
  const QPointer<JobProgress> shown(progress);
  const int id = context.DeviceId();
  RunLongJob<presets::RestoreOutcome>(
      context,
      [id, backup = *check.backup](link::Link& link, const DeviceJob::Progress& step) {
        return presets::RestoreDeviceBackup(link, id, backup, step);
      },
      [shown](int done, int total) {
        if (shown && total != link::kProgressEnd) shown->Show(done, total);
      },
      [&context, shown, backup = *check.backup,
       file = FileTitle(*path)](presets::RestoreOutcome outcome) {
        delete shown.data();
        Restored(context, backup, file, outcome);
        context.finished();
      });
}

}  // namespace talvex::editor
