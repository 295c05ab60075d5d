#include "editor/dialogs/preset_file_flow.h"

#include <QPointer>
#include <filesystem>

#include "editor/dialogs/frm_vmeter.h"
#include "editor/dialogs/preset_folder.h"
#include "editor/toolbar_commands.h"
#include "params/captions.h"

namespace talvex::editor {

namespace {

// The load's message: exclamation icon, OK only.
class BoxReporter final : public presets::PresetReporter {
 public:
  explicit BoxReporter(UserDialogs& dialogs) : dialogs_(dialogs) {}
  void Warn(std::string_view title, std::string_view text) override {
    dialogs_.ShowMessage(std::string(title), std::string(text), DialogIcon::Exclamation);
  }

 private:
  UserDialogs& dialogs_;
};

std::string Filter() {
  return std::string(presets::kPresetFileFilter);
}

void SendLoadedPreset(CommandContext& context, presets::PresetTransfer transfer,
                      const std::string& fileTitle) {
  auto* meter = new FrmVMeter(kLoadProgressTitle, presets::kProgressPoints, &context.window);
  meter->show();
  const QPointer<FrmVMeter> shown(meter);
  const int id = context.DeviceId();
  RunLongJob<presets::TransferOutcome>(
      context,
      [id, transfer = std::move(transfer)](link::Link& link, const DeviceJob::Progress& progress) {
        return presets::SendPresetTransfer(link, id, transfer, [&progress](int point) {
          progress(point, presets::kProgressPoints);
        });
      },
      [shown](int value, int) {
        if (shown) shown->SetValue(value);
      },
      [&context, shown, fileTitle](presets::TransferOutcome outcome) {
        delete shown.data();
        // A transfer that stopped has been reported by the link, and the editor closes.
        if (outcome.end == presets::TransferEnd::Stopped) return;
        context.setCaption(params::LoadedFromPcCaption(
            context.DeviceId(), fileTitle, context.device.image[params::kSystemTypeByte]));
      },
      FileNotSent(id, fileTitle));
}

}  // namespace

void LoadPresetFromPc(CommandContext& context) {
  DeviceRecords records = context.Records();
  const auto path = context.dialogs.ChooseOpenFile(PresetFolder(records).string(), Filter());
  if (path) {
    BoxReporter reporter(context.dialogs);
    const params::DeviceParams before = context.device;
    presets::PresetLoadResult loaded =
        presets::LoadPresetFile(*path, records.scratch, context.device, records.presetState,
                                context.model, reporter, context.model.Mark());
    if (loaded.outcome == presets::PresetLoad::Loaded) {
      const std::string title = std::filesystem::path(*path).filename().string();
      context.memory.RecordSettingsStep(
          std::string(ToolbarCommandOf(WindowCommand::LoadPresetFromPc).caption), before);
      context.memory.FileMarked(title, false);
      SendLoadedPreset(context, std::move(loaded.transfer),
                       std::filesystem::path(*path).filename().string());
    } else if (loaded.outcome == presets::PresetLoad::Refused) {
      context.dialogs.ShowMessage(std::string(presets::kLoadPresetTitle), loaded.error,
                                  DialogIcon::Exclamation);
    }
  }
  context.finished();
}

bool SaveToChosenFile(CommandContext& context) {
  const auto path =
      context.dialogs.ChooseSaveFile(PresetFolder(context.Records()).string(), Filter());
  if (!path) return false;
  const std::string error = presets::SavePresetFile(*path, context.device);
  if (!error.empty()) {
    context.dialogs.ShowMessage(kSaveFailedTitle, error, DialogIcon::Warning);
    return false;
  }
  context.memory.FileMarked(std::filesystem::path(*path).filename().string(), true);
  return true;
}

void SavePresetToPc(CommandContext& context) {
  SaveToChosenFile(context);
  context.finished();
}

}  // namespace talvex::editor
