#include "editor/dialogs/eq_import_dialog.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

#include "editor/model/controls.h"
#include "presets/conversation.h"

namespace talvex::editor {

std::string EqImportStepName(int channel) {
  return "Import equaliser onto " + ChannelCaption(channel);
}

EqImportDialog::EqImportDialog(CommandContext& context, params::EqImportPlan plan,
                               std::string fileTitle)
    : QDialog(&context.window),
      context_(context),
      plan_(std::move(plan)),
      report_(new QListWidget),
      summary_(new QLabel),
      send_(new QPushButton("Send")),
      cancel_(new QPushButton("Cancel")) {
  setObjectName("EqImportDialog");
  setWindowTitle(kEqImportTitle);
  auto* heading = new QLabel(QtText(fileTitle + " onto " + ChannelCaption(plan_.channel) +
                                    " of ID:" + std::to_string(context.DeviceId()) +
                                    ". Nothing is sent before Send."));
  heading->setWordWrap(true);
  auto* reportLabel = new QLabel("&What was rounded, does not fit or was skipped:");
  reportLabel->setBuddy(report_);
  report_->setAccessibleName("Import report");
  for (const params::EqNote& note : plan_.notes)
    report_->addItem(
        QtText(std::string(params::NoteKindWord(note.kind)) + ": " + params::DescribeNote(note)));
  if (plan_.notes.empty()) report_->addItem("Every filter fits as written.");
  // Each note whole, wrapped: a report read sideways is a report half read.
  report_->setWordWrap(true);
  report_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  report_->setMinimumSize(report_->fontMetrics().averageCharWidth() * 90,
                          report_->fontMetrics().lineSpacing() * 12);
  summary_->setText(QtText(ChannelCaption(plan_.channel) + ": " + params::EqPlanSummary(plan_)));
  summary_->setWordWrap(true);
  summary_->setAccessibleName("Import summary");
  send_->setAccessibleName("Send");
  send_->setDefault(true);
  cancel_->setAccessibleName("Cancel");
  auto* buttons = new QDialogButtonBox;
  buttons->addButton(send_, QDialogButtonBox::AcceptRole);
  buttons->addButton(cancel_, QDialogButtonBox::RejectRole);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(heading);
  layout->addWidget(reportLabel);
  layout->addWidget(report_);
  layout->addWidget(summary_);
  layout->addWidget(buttons);
  setTabOrder(report_, send_);
  setTabOrder(send_, cancel_);
  connect(send_, &QPushButton::clicked, this, &EqImportDialog::Send);
  connect(cancel_, &QPushButton::clicked, this, &EqImportDialog::reject);
}

void EqImportDialog::Send() {
  const params::DeviceParams before = context_.device;
  params::EditOptions options;
  options.mark = context_.model.Mark();
  const params::EditResult result = params::ApplyEqImport(context_.device, plan_, options);
  context_.model.StoresReplaced();
  context_.memory.RecordSettingsStep(EqImportStepName(plan_.channel), before);
  SendCommands(context_, presets::CommandsOf(result.edits));
  accept();
}

}  // namespace talvex::editor
