#include "editor/dialogs/frm_read.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QListWidget>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

#include "editor/dialogs/slot_list.h"
#include "editor/toolbar_commands.h"
#include "params/captions.h"

namespace talvex::editor {

FrmRead::FrmRead(CommandContext& context)
    : QDialog(&context.window),
      context_(context),
      list_(MakeSlotList(context.Records().state)),
      cancel_(new QPushButton("Cancel")),
      read_(new QPushButton("Read")),
      progress_(new QProgressBar) {
  setObjectName("FrmRead");
  setWindowTitle(kReadDialogTitle);
  cancel_->setAccessibleName("Cancel");
  read_->setAccessibleName("Read");
  read_->setDefault(true);
  progress_->setAccessibleName("Read progress");
  progress_->setRange(0, link::kProgressEnd);
  progress_->setTextVisible(false);
  progress_->setVisible(false);
  auto* slotsLabel = new QLabel("&Preset slots:");
  slotsLabel->setBuddy(list_);
  auto* buttons = new QDialogButtonBox;
  buttons->addButton(read_, QDialogButtonBox::AcceptRole);
  buttons->addButton(cancel_, QDialogButtonBox::RejectRole);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(slotsLabel);
  layout->addWidget(list_);
  layout->addWidget(progress_);
  layout->addWidget(buttons);
  setTabOrder(list_, read_);
  setTabOrder(read_, cancel_);
  connect(read_, &QPushButton::clicked, this, &FrmRead::Read);
  connect(cancel_, &QPushButton::clicked, this, &FrmRead::reject);
  connect(list_, &QListWidget::itemActivated, this, &FrmRead::Read);
}

QPushButton& FrmRead::Command1(int index) const {
  CheckIndex(index, 1, "button");
  return index == 0 ? *cancel_ : *read_;
}

void FrmRead::reject() {
  if (!reading_) QDialog::reject();
}

void FrmRead::SetReading(bool reading) {
  reading_ = reading;
  for (QWidget* widget : std::initializer_list<QWidget*>{list_, read_, cancel_})
    widget->setEnabled(!reading);
  progress_->setValue(0);
  progress_->setVisible(reading);
}

void FrmRead::Read() {
  const int slot = list_->currentRow();
  if (reading_ || slot < 0) return;
  if (const auto refusal = presets::CheckPresetReadable(context_.Records().state, slot)) {
    context_.dialogs.ShowMessage(std::string(presets::kReadPresetTitle), std::string(*refusal),
                                 DialogIcon::Information);
    return;
  }
  if (context_.dialogs.AskYesNo(std::string(presets::kReadPresetTitle),
                                std::string(presets::kOverwriteEditingText), DialogIcon::None,
                                Answer::Yes) == Answer::No)
    return;
  SetReading(true);
  const QPointer<FrmRead> self(this);
  const int id = context_.DeviceId();
  RunLongJob<SlotReadResult>(
      context_,
      [id, slot](link::Link& link, const DeviceJob::Progress&) {
        SlotReadResult result;
        result.read = presets::ReadPresetSlot(link, id, slot, result.preset);
        return result;
      },
      [self](int value, int maximum) {
        if (!self) return;
        self->progress_->setMaximum(maximum);
        self->progress_->setValue(value);
      },
      [self, slot](SlotReadResult result) {
        if (self) self->Apply(slot, result);
      });
}

// Failed: the link has reported it and the editor closes. Skipped (demo mode): the PC holds no
// copy of the slot, so nothing changes.
void FrmRead::Apply(int slot, const SlotReadResult& result) {
  SetReading(false);
  if (result.read != presets::SlotRead::Received) return;
  const params::DeviceParams before = context_.device;
  try {
    presets::ApplyDevicePreset(context_.device, result.preset, context_.model,
                               context_.model.Mark());
  } catch (const IndexError&) {
    context_.dialogs.ShowMessage(std::string(presets::kReadPresetTitle), kGarbledPresetText,
                                 DialogIcon::Warning);
    return;
  }
  const std::string& name = context_.Records().state.slotNames[static_cast<std::size_t>(slot)];
  context_.memory.RecordSettingsStep(
      std::string(ToolbarCommandOf(WindowCommand::ReadPreset).caption), before);
  context_.memory.SlotMarked(slot, name, false);
  context_.setCaption(params::LoadedFromDeviceCaption(
      context_.DeviceId(), name, context_.device.image[params::kSystemTypeByte]));
  accept();
}

}  // namespace talvex::editor
