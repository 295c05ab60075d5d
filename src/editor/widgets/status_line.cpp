#include "editor/widgets/status_line.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>

#include "editor/model/settings_memory.h"

namespace talvex::editor {

namespace {

constexpr int kLongestPart = 48;  // characters of a file's or a slot's part

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
  // The message takes what room is left and is cut at the window's edge rather than widening
  // the editor; the whole of it is in the tooltip.
  message_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
}

void StatusLine::ShowState(const SettingsMemory& memory) {
  side_->setText(QString::fromStdString(memory.SideText()));
  Show(*file_, QString::fromStdString(memory.FileText()));
  Show(*slot_, QString::fromStdString(memory.SlotText()));
}

void StatusLine::ShowMessage(const QString& text) {
  Show(*message_, text);
}

// A long file or slot name is elided in the middle; the tooltip has it whole.
void StatusLine::Show(QLabel& part, const QString& text) {
  const int room = part.fontMetrics().averageCharWidth() * kLongestPart;
  part.setText(&part == message_ ? text
                                 : part.fontMetrics().elidedText(text, Qt::ElideMiddle, room));
  part.setToolTip(text);
}

}  // namespace talvex::editor
