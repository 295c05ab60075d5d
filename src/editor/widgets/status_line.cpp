#include "editor/widgets/status_line.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>

#include "editor/model/settings_memory.h"

namespace talvex::editor {

namespace {

QLabel* Part(const QString& name) {
  auto* label = new QLabel;
  label->setAccessibleName(name);
  label->setTextInteractionFlags(Qt::TextSelectableByMouse);
  return label;
}

QFrame* Separator() {
  auto* line = new QFrame;
  line->setFrameShape(QFrame::VLine);
  line->setFrameShadow(QFrame::Sunken);
  return line;
}

}  // namespace

StatusLine::StatusLine(QWidget* parent)
    : QWidget(parent),
      side_(Part("A/B side")),
      file_(Part("Preset file state")),
      slot_(Part("Device slot state")),
      message_(Part("Editor message")) {
  auto* layout = new QHBoxLayout(this);
  layout->setContentsMargins(6, 2, 6, 2);
  layout->addWidget(side_);
  layout->addWidget(Separator());
  layout->addWidget(file_);
  layout->addWidget(Separator());
  layout->addWidget(slot_);
  layout->addWidget(Separator());
  layout->addWidget(message_, 1);
}

void StatusLine::ShowState(const SettingsMemory& memory) {
  side_->setText(QString::fromStdString(memory.SideText()));
  file_->setText(QString::fromStdString(memory.FileText()));
  slot_->setText(QString::fromStdString(memory.SlotText()));
}

void StatusLine::ShowMessage(const QString& text) {
  message_->setText(text);
}

}  // namespace talvex::editor
