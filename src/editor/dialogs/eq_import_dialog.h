// The equaliser import's report, shown before anything is sent: every note of what was rounded,
// what does not fit and what was skipped, the plan's summary, and "Send" or "Cancel". Sending
// sets every band of the channel through the edit path (linked outputs follow), as one step of
// the history and one job on the link.
#pragma once

#include <QDialog>
#include <string>

#include "editor/dialogs/command_context.h"
#include "params/eq_text.h"

class QLabel;
class QListWidget;
class QPushButton;

namespace talvex::editor {

inline constexpr const char* kEqImportTitle = "Import equaliser";

class EqImportDialog final : public QDialog {
  Q_OBJECT

 public:
  // `fileTitle` is the file's name without its folder.
  EqImportDialog(CommandContext& context, params::EqImportPlan plan, std::string fileTitle);

  QListWidget& Report() const { return *report_; }
  QLabel& Summary() const { return *summary_; }
  QPushButton& SendButton() const { return *send_; }
  QPushButton& CancelButton() const { return *cancel_; }

 private:
  void Send();

  CommandContext& context_;
  params::EqImportPlan plan_;
  QListWidget* report_;
  QLabel* summary_;
  QPushButton* send_;
  QPushButton* cancel_;
};

// "Import equaliser onto Out 1": the history's name of the step.
std::string EqImportStepName(int channel);

}  // namespace talvex::editor
