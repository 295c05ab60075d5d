#include "editor/dialogs/copy_dialog.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "editor/model/controls.h"
#include "presets/channel_copy.h"

namespace talvex::editor {

CopyDialog::CopyDialog(CommandContext& context, std::string_view caption, std::string_view title,
                       int firstChannel, int channelCount)
    : QDialog(&context.window),
      context_(context),
      title_(title),
      firstChannel_(firstChannel),
      source_(new QComboBox),
      destination_(new QComboBox),
      copy_(new QPushButton("Copy")),
      cancel_(new QPushButton("Cancel")) {
  setWindowTitle(QtText(caption));
  for (int channel = firstChannel; channel < firstChannel + channelCount; ++channel) {
    source_->addItem(QString::fromStdString(ChannelCaption(channel)));
    destination_->addItem(QString::fromStdString(ChannelCaption(channel)));
  }
  destination_->setCurrentIndex(1);
  source_->setAccessibleName("Source");
  destination_->setAccessibleName("Destination");
  copy_->setAccessibleName("Copy");
  cancel_->setAccessibleName("Cancel");
  copy_->setDefault(true);
  auto* form = new QFormLayout;
  auto* sourceLabel = new QLabel("&Source:");
  sourceLabel->setBuddy(source_);
  auto* destinationLabel = new QLabel("&Destination:");
  destinationLabel->setBuddy(destination_);
  form->addRow(sourceLabel, source_);
  form->addRow(destinationLabel, destination_);
  auto* buttons = new QDialogButtonBox;
  buttons->addButton(copy_, QDialogButtonBox::AcceptRole);
  buttons->addButton(cancel_, QDialogButtonBox::RejectRole);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(form);
  layout->addWidget(buttons);
  connect(copy_, &QPushButton::clicked, this, &CopyDialog::Copy);
  connect(cancel_, &QPushButton::clicked, this, &CopyDialog::reject);
}

QComboBox& CopyDialog::Combo1(int index) const {
  CheckIndex(index, 1, "list");
  return index == 0 ? *source_ : *destination_;
}

QPushButton& CopyDialog::Command1(int index) const {
  CheckIndex(index, 1, "button");
  return index == 0 ? *copy_ : *cancel_;
}

int CopyDialog::Channel(int combo) const {
  return firstChannel_ + Combo1(combo).currentIndex();
}

void CopyDialog::Copy() {
  const int source = Channel(0);
  const int destination = Channel(1);
  const std::string title(title_);
  if (const auto refusal = presets::CheckCopy(source, destination)) {
    context_.dialogs.ShowMessage(title, std::string(*refusal), DialogIcon::Critical);
    return;
  }
  if (context_.dialogs.AskYesNo(title, std::string(presets::kAreYouSureText), DialogIcon::None,
                                Answer::No) == Answer::No)
    return;
  const params::DeviceParams before = context_.device;
  presets::ChannelCopy copy;
  try {
    copy = presets::CopyChannel(context_.device, source, destination, context_.model.Mark());
  } catch (const IndexError& error) {  // the source holds a byte no sender takes
    context_.dialogs.ShowMessage(title, error.what(), DialogIcon::Warning);
    return;
  }
  // The pointer is the busy one until the copy has gone out.
  QWidget* window = &context_.window;
  window->setCursor(Qt::BusyCursor);
  context_.model.StoresReplaced();
  context_.memory.RecordSettingsStep(Std(windowTitle()), before);
  SendCommands(context_, presets::CommandsOf(copy.edits),
               [window](const presets::ListOutcome&) { window->unsetCursor(); });
  accept();
}

}  // namespace talvex::editor
