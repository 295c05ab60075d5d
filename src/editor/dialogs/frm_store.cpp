#include "editor/dialogs/frm_store.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>
#include <QRegularExpressionValidator>
#include <QVBoxLayout>

#include "editor/dialogs/slot_list.h"

namespace talvex::editor {

FrmStore::FrmStore(CommandContext& context)
    : QDialog(&context.window),
      context_(context),
      list_(MakeSlotList(context.Records().state)),
      name_(new QLineEdit),
      cancel_(new QPushButton("Cancel")),
      store_(new QPushButton("Store")),
      progress_(new QProgressBar) {
  setObjectName("FrmStore");
  setWindowTitle(kStoreDialogTitle);
  // One byte per character in the device's memory: printable ASCII, 16 at most.
  name_->setMaxLength(static_cast<int>(presets::kSlotNameLength));
  name_->setValidator(new QRegularExpressionValidator(QRegularExpression("[ -~]*"), name_));
  name_->setAccessibleName("Preset name");
  cancel_->setAccessibleName("Cancel");
  store_->setAccessibleName("Store");
  store_->setDefault(true);
  progress_->setObjectName("ProgressBar1");
  progress_->setAccessibleName("Store progress");
  progress_->setRange(0, presets::kStoreProgressMaximum);
  progress_->setVisible(false);

  auto* slotsLabel = new QLabel("&Preset slots:");
  slotsLabel->setBuddy(list_);
  auto* form = new QFormLayout;
  auto* nameLabel = new QLabel("&Name:");
  nameLabel->setBuddy(name_);
  form->addRow(nameLabel, name_);
  auto* buttons = new QDialogButtonBox;
  buttons->addButton(store_, QDialogButtonBox::AcceptRole);
  buttons->addButton(cancel_, QDialogButtonBox::RejectRole);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(slotsLabel);
  layout->addWidget(list_);
  layout->addLayout(form);
  layout->addWidget(progress_);
  layout->addWidget(buttons);
  setTabOrder(list_, name_);
  setTabOrder(name_, store_);
  setTabOrder(store_, cancel_);

  connect(list_, &QListWidget::currentRowChanged, this, &FrmStore::ShowSlotName);
  connect(store_, &QPushButton::clicked, this, &FrmStore::Store);
  connect(cancel_, &QPushButton::clicked, this, &FrmStore::reject);
  ShowSlotName(0);
}

QPushButton& FrmStore::Command1(int index) const {
  CheckIndex(index, 1, "button");
  return index == 0 ? *cancel_ : *store_;
}

void FrmStore::reject() {
  if (!storing_) QDialog::reject();
}

// A used slot offers its own name, an empty one the name of the preset the editor holds.
void FrmStore::ShowSlotName(int slot) {
  if (slot < 0) return;
  const presets::DeviceState& state = context_.Records().state;
  if (state.SlotUsed(slot)) {
    name_->setText(ShownSlotName(state.slotNames[static_cast<std::size_t>(slot)]));
    return;
  }
  const auto first = context_.device.image.begin() + params::kPresetNameByte;
  name_->setText(ShownSlotName(std::string(first, first + params::kPresetNameLength)));
}

void FrmStore::Store() {
  const int slot = list_->currentRow();
  if (storing_ || slot < 0) return;
  if (context_.dialogs.AskYesNo(std::string(presets::kStorePresetTitle),
                                std::string(presets::kAreYouSureText), DialogIcon::None,
                                Answer::Yes) == Answer::No)
    return;
  DeviceRecords records = context_.Records();
  presets::PresetStore store =
      presets::PrepareStore(context_.device, records.state, slot, Std(name_->text()));
  storing_ = true;
  for (QWidget* widget : std::initializer_list<QWidget*>{list_, name_, store_, cancel_})
    widget->setEnabled(false);
  progress_->setValue(0);
  progress_->setVisible(true);
  const QPointer<FrmStore> self(this);
  const int id = context_.DeviceId();
  RunLongJob<presets::StoreOutcome>(
      context_,
      [id, store](link::Link& link, const DeviceJob::Progress& progress) {
        return presets::SendPresetStore(link, id, store, progress);
      },
      [self](int value, int maximum) {
        if (!self) return;
        self->progress_->setMaximum(maximum);
        self->progress_->setValue(value);
      },
      [self, records, store, &context = context_](presets::StoreOutcome outcome) {
        presets::FinishStore(records.state, store, outcome);
        if (outcome.end != presets::ListEnd::Stopped)
          context.memory.SlotMarked(store.slot, store.name, true);
        if (self) self->Stored(store, outcome);
      },
      StoreNotDone(id, slot));
}

// The slot shows its new name; after a stop the link has reported the failure and the editor
// closes, taking this dialog with it.
void FrmStore::Stored(const presets::PresetStore& store, const presets::StoreOutcome& outcome) {
  storing_ = false;
  progress_->setVisible(false);
  RefreshSlotList(*list_, context_.Records().state);
  for (QWidget* widget : std::initializer_list<QWidget*>{list_, name_, store_, cancel_})
    widget->setEnabled(true);
  if (outcome.end != presets::ListEnd::Stopped) list_->setCurrentRow(store.slot);
  cancel_->setFocus();
}

}  // namespace talvex::editor
