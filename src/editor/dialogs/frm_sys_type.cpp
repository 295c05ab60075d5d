#include "editor/dialogs/frm_sys_type.h"

#include <QButtonGroup>
#include <QDialogButtonBox>
#include <QGroupBox>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include "params/captions.h"

namespace talvex::editor {

FrmSysType::FrmSysType(CommandContext& context)
    : QDialog(&context.window),
      context_(context),
      group_(new QButtonGroup(this)),
      apply_(new QPushButton("Apply")),
      close_(new QPushButton("Close")),
      wait_(new QProgressBar) {
  setObjectName("FrmSysType");
  setWindowTitle(QtText(presets::kSystemSetupTitle));
  auto* types = new QGroupBox("Xover type");
  auto* typeLayout = new QVBoxLayout(types);
  const int current = context.device.image[params::kSystemTypeByte];
  for (int type = 0; type < params::kSystemTypeCount; ++type) {
    auto* option = new QRadioButton(QtText(params::SystemTypeName(type)));
    option->setAccessibleName(option->text());
    option->setChecked(type == current);
    group_->addButton(option, type);
    typeLayout->addWidget(option);
    options_[static_cast<std::size_t>(type)] = option;
  }
  apply_->setAccessibleName("Apply");
  apply_->setDefault(true);
  close_->setAccessibleName("Close");
  wait_->setAccessibleName("Waiting for the device");
  wait_->setRange(0, link::kProgressEnd);
  wait_->setTextVisible(false);
  wait_->setVisible(false);
  auto* buttons = new QDialogButtonBox;
  buttons->addButton(apply_, QDialogButtonBox::AcceptRole);
  buttons->addButton(close_, QDialogButtonBox::RejectRole);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(types);
  layout->addWidget(wait_);
  layout->addWidget(buttons);
  connect(apply_, &QPushButton::clicked, this, &FrmSysType::Apply);
  connect(close_, &QPushButton::clicked, this, &FrmSysType::reject);
}

QRadioButton& FrmSysType::Option1(int type) const {
  CheckIndex(type, params::kSystemTypeCount - 1, "system type");
  return *options_[static_cast<std::size_t>(type)];
}

QPushButton& FrmSysType::Command1(int index) const {
  CheckIndex(index, 1, "button");
  return index == 0 ? *apply_ : *close_;
}

void FrmSysType::reject() {
  if (!switching_) QDialog::reject();
}

void FrmSysType::Apply() {
  const int type = group_->checkedId();
  if (switching_ || type < 0 || !presets::TypeChangeNeeded(context_.device, type)) return;
  if (context_.dialogs.AskYesNo(std::string(presets::kSystemSetupTitle),
                                std::string(presets::kChangeTypeText), DialogIcon::None,
                                Answer::Yes) == Answer::No)
    return;
  const params::DeviceParams before = context_.device;
  const protocol::Command command = presets::BeginTypeChange(context_.device, type);
  switching_ = true;
  for (QWidget* widget : std::initializer_list<QWidget*>{apply_, close_})
    widget->setEnabled(false);
  wait_->setVisible(true);
  const QPointer<FrmSysType> self(this);
  const int id = context_.DeviceId();
  RunLongJob<presets::TypeSend>(
      context_,
      [id, command](link::Link& link, const DeviceJob::Progress&) {
        return presets::SendSystemType(link, id, command);
      },
      [self](int value, int maximum) {
        if (!self) return;
        self->wait_->setMaximum(maximum);
        self->wait_->setValue(value);
      },
      [self, type, before](presets::TypeSend sent) {
        if (self) self->Switched(type, sent, before);
      });
}

// Without an acknowledgement the image keeps the new type byte and no defaults are loaded; the
// link has reported the failure and the editor closes.
void FrmSysType::Switched(int systemType, presets::TypeSend sent,
                          const params::DeviceParams& before) {
  switching_ = false;
  wait_->setVisible(false);
  for (QWidget* widget : std::initializer_list<QWidget*>{apply_, close_})
    widget->setEnabled(true);
  if (sent == presets::TypeSend::Failed) return;
  DeviceRecords records = context_.Records();
  presets::ApplyFactoryImage(context_.device, records.presetState, context_.model,
                             context_.model.Mark());
  records.state.systemType = systemType;
  context_.memory.RecordSettingsStep(std::string(presets::kSystemSetupTitle), before);
  context_.setCaption(params::DefaultLoadedCaption(context_.DeviceId(), systemType));
  accept();
}

}  // namespace talvex::editor
