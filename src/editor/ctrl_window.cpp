#include "editor/ctrl_window.h"

#include <QCloseEvent>
#include <QToolBar>
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
      summary_(new QLabel) {
  setAttribute(Qt::WA_DeleteOnClose);
  auto* toolbar = new QToolBar;
  toolbar->addAction(kDisconnectAction, this, [this] { emit disconnectRequested(deviceId_); });
  summary_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
  summary_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(toolbar);
  layout->addWidget(summary_, 1);
  setMinimumSize(420, 220);
}

void CtrlWindow::ShowDevice(const std::string& name, const params::DeviceParams& device) {
  const int type = device.image[params::kSystemTypeByte];
  setWindowTitle(QString::fromStdString(EditorCaption(deviceId_, type)));
  QString text = QString("<b>%1</b><br>Device ID %2<br>")
                     .arg(QString::fromStdString(name).toHtmlEscaped())
                     .arg(deviceId_);
  text += "System type: " + QString::fromStdString(SystemTypeText(type)) + "<br>";
  text += "Outputs:";
  for (int channel = 2; channel < params::kChannelCount; ++channel)
    text +=
        QString(" &nbsp;Out %1 \"%2\"")
            .arg(channel - 1)
            .arg(QString::fromStdString(params::OutputName(device.image, channel)).toHtmlEscaped());
  summary_->setText(text);
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
