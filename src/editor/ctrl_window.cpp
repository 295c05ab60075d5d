#include "editor/ctrl_window.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include "params/image_decode.h"
#include "params/value_tables.h"

namespace talvex::editor {

std::string SystemTypeText(int systemTypeByte) {
  const bool known =
      systemTypeByte >= 0 && systemTypeByte < static_cast<int>(params::SystemTypeNames.size());
  return known ? std::string(params::SystemTypeNames[static_cast<std::size_t>(systemTypeByte)])
               : std::to_string(systemTypeByte);
}

std::string EditorCaption(int deviceId, int systemTypeByte) {
  return "ID:" + std::to_string(deviceId) + " - Type: " + SystemTypeText(systemTypeByte);
}

CtrlWindow::CtrlWindow(int deviceId, int slot, std::function<bool()> mayClose, QWidget* parent)
    : QWidget(parent),
      deviceId_(deviceId),
      slot_(slot),
      mayClose_(std::move(mayClose)),
      summary_(new QFormLayout) {
  setAttribute(Qt::WA_DeleteOnClose);
  auto* disconnect = new QPushButton(kDisconnectAction);
  connect(disconnect, &QPushButton::clicked, this, [this] { emit disconnectRequested(deviceId_); });
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(disconnect);
  buttons->addStretch(1);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(buttons);
  layout->addLayout(summary_);
  layout->addStretch(1);
}

void CtrlWindow::ShowDevice(const std::string& name, const params::DeviceParams& device) {
  const int type = device.image[params::kSystemTypeByte];
  setWindowTitle(QString::fromStdString(EditorCaption(deviceId_, type)));
  while (summary_->rowCount() > 0)
    summary_->removeRow(0);
  summary_->addRow("Name:", new QLabel(QString::fromStdString(name)));
  summary_->addRow("System type:", new QLabel(QString::fromStdString(SystemTypeText(type))));
  for (int channel = 2; channel < params::kChannelCount; ++channel) {
    summary_->addRow(QString("Out %1:").arg(channel - 1),
                     new QLabel(QString::fromStdString(params::OutputName(device.image, channel))));
  }
}

void CtrlWindow::CloseWithoutAsking() {
  asked_ = true;
  close();
}

void CtrlWindow::closeEvent(QCloseEvent* event) {
  if (!asked_ && mayClose_ && !mayClose_()) {
    event->ignore();
    return;
  }
  asked_ = true;
  emit closed(slot_);
  event->accept();
}

}  // namespace talvex::editor
