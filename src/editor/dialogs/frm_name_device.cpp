#include "editor/dialogs/frm_name_device.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpressionValidator>
#include <QVBoxLayout>

#include "editor/dialogs/slot_list.h"
#include "link/device_name.h"

namespace talvex::editor {

FrmNameDevice::FrmNameDevice(CommandContext& context)
    : QDialog(&context.window),
      context_(context),
      name_(new QLineEdit),
      store_(new QPushButton("Store")),
      cancel_(new QPushButton("Cancel")) {
  setObjectName("FrmNameDevice");
  setWindowTitle(kNameDeviceTitle);
  // The device keeps one byte per character: printable ASCII, 16 at most.
  name_->setMaxLength(static_cast<int>(link::kDeviceNameLength));
  name_->setValidator(new QRegularExpressionValidator(QRegularExpression("[ -~]*"), name_));
  name_->setText(ShownSlotName(context.Records().deviceName));
  name_->setAccessibleName("Device name");
  name_->setMinimumWidth(name_->fontMetrics().horizontalAdvance(QString(16, 'W')) + 16);
  store_->setAccessibleName("Store");
  cancel_->setAccessibleName("Cancel");
  store_->setDefault(true);
  auto* label = new QLabel(QString("&Name of device ID:%1:").arg(context.DeviceId()));
  label->setBuddy(name_);
  auto* form = new QFormLayout;
  form->addRow(label, name_);
  auto* buttons = new QDialogButtonBox;
  buttons->addButton(store_, QDialogButtonBox::AcceptRole);
  buttons->addButton(cancel_, QDialogButtonBox::RejectRole);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(form);
  layout->addWidget(buttons);
  connect(store_, &QPushButton::clicked, this, &FrmNameDevice::Store);
  connect(cancel_, &QPushButton::clicked, this, &FrmNameDevice::reject);
}

QPushButton& FrmNameDevice::Command1(int index) const {
  CheckIndex(index, 1, "button");
  return index == 0 ? *store_ : *cancel_;
}

void FrmNameDevice::Store() {
  const std::string text = Std(name_->text());
  const int id = context_.DeviceId();
  EditorLink* editorLink = &context_.link;
  RunLongJob<link::NameWrite>(
      context_,
      [id, text](link::Link& line, const DeviceJob::Progress&) {
        return link::WriteDeviceName(line, id, text);
      },
      {},
      [editorLink, text](link::NameWrite written) {
        // A stop has been reported by the link (the row says so); the name is not known.
        if (written == link::NameWrite::Stopped) return;
        editorLink->Records().deviceName = link::PadDeviceName(text);
        editorLink->DeviceRenamed();
      });
  accept();
}

}  // namespace talvex::editor
