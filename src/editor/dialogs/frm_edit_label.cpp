#include "editor/dialogs/frm_edit_label.h"

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "editor/model/controls.h"
#include "presets/channel_names.h"

namespace talvex::editor {

FrmEditLabel::FrmEditLabel(CommandContext& context)
    : QDialog(&context.window),
      context_(context),
      hint_(new QLabel),
      ok_(new QPushButton("OK")),
      cancel_(new QPushButton("Cancel")) {
  setObjectName("FrmEditLabel");
  setWindowTitle(QtText(presets::kEditNamesTitle));
  // The input names are the editor's own; the output names are the ones the image holds.
  before_ = context.Records().names;
  const presets::ChannelNames fromImage = presets::NamesFromImage(context.device.image);
  std::copy(fromImage.begin() + params::kInputCount, fromImage.end(),
            before_.begin() + params::kInputCount);
  auto* grid = new QGridLayout;
  for (int channel = 0; channel < params::kChannelCount; ++channel) {
    auto* box = new QLineEdit(QtText(before_[static_cast<std::size_t>(channel)]).trimmed());
    box->setMaxLength(static_cast<int>(params::kNameLength));
    box->setAccessibleName(QString::fromStdString(ChannelControlName(channel, "Name")));
    box->setMinimumWidth(box->fontMetrics().horizontalAdvance("WWWWWW") + 16);
    auto* label = new QLabel(QString::fromStdString(ChannelCaption(channel)) + ":");
    label->setBuddy(box);
    const int column = channel < params::kInputCount ? 0 : 2;
    const int row = channel < params::kInputCount ? channel : channel - params::kInputCount;
    grid->addWidget(label, row, column);
    grid->addWidget(box, row, column + 1);
    connect(box, &QLineEdit::textEdited, this, &FrmEditLabel::CheckTyped);
    boxes_[static_cast<std::size_t>(channel)] = box;
  }
  hint_->setWordWrap(true);
  hint_->setAccessibleName("Hint");
  hint_->setMinimumWidth(hint_->fontMetrics().averageCharWidth() * 48);
  ok_->setAccessibleName("OK");
  cancel_->setAccessibleName("Cancel");
  ok_->setDefault(true);
  auto* buttons = new QDialogButtonBox;
  buttons->addButton(ok_, QDialogButtonBox::AcceptRole);
  buttons->addButton(cancel_, QDialogButtonBox::RejectRole);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(grid);
  layout->addWidget(hint_);
  layout->addWidget(buttons);
  connect(ok_, &QPushButton::clicked, this, &FrmEditLabel::Ok);
  connect(cancel_, &QPushButton::clicked, this, &FrmEditLabel::reject);
}

QLineEdit& FrmEditLabel::Text1(int channel) const {
  CheckIndex(channel, params::kChannelCount - 1, "channel");
  return *boxes_[static_cast<std::size_t>(channel)];
}

QPushButton& FrmEditLabel::Command1(int index) const {
  CheckIndex(index, 1, "button");
  return index == 0 ? *ok_ : *cancel_;
}

void FrmEditLabel::CheckTyped(const QString& text) {
  const auto hint = text.isEmpty() ? std::nullopt : presets::NameHint(Std(text));
  hint_->setText(hint ? QtText(*hint) : QString());
}

// A box whose text is still the name it opened with gives that name back as it was, blanks
// and all (the boxes show names without the blanks that centre them).
presets::ChannelNames FrmEditLabel::Texts() const {
  presets::ChannelNames texts;
  for (std::size_t channel = 0; channel < texts.size(); ++channel) {
    const QString typed = boxes_[channel]->text();
    texts[channel] = typed == QtText(before_[channel]).trimmed() ? before_[channel] : Std(typed);
  }
  return texts;
}

void FrmEditLabel::Ok() {
  const presets::ChannelNames texts = Texts();
  const std::string title(presets::kEditNamesTitle);
  if (const auto refusal = presets::CheckChannelNames(texts)) {
    context_.dialogs.ShowMessage(title, std::string(*refusal), DialogIcon::Information);
    return;
  }
  if (context_.dialogs.AskYesNo(title, std::string(presets::kAreYouSureText), DialogIcon::None,
                                Answer::Yes) == Answer::No)
    return;
  DeviceRecords records = context_.Records();
  const params::DeviceParams before = context_.device;
  const auto edits = presets::ApplyChannelNames(context_.device, records.names, texts);
  context_.memory.RecordSettingsStep(title, before);
  context_.model.SetInputNames(records.names);
  context_.refresh();
  SendCommands(context_, presets::CommandsOf(edits));
  accept();
}

}  // namespace talvex::editor
