// "Compare with preset file": every parameter whose value differs between a preset file and
// what the editor holds, by its name and both values, in the order of the parameters (the
// device-wide ones, then channel by channel).
#pragma once

#include <QDialog>
#include <string>
#include <vector>

#include "editor/dialogs/command_context.h"
#include "params/param_diff.h"

class QLabel;
class QPushButton;
class QTreeWidget;

namespace talvex::editor {

inline constexpr const char* kCompareTitle = "Compare with preset file";

class PresetDiffDialog final : public QDialog {
  Q_OBJECT

 public:
  PresetDiffDialog(CommandContext& context, const std::string& fileTitle,
                   const params::ParamImage& file,
                   const std::vector<params::ParamDifference>& differences);

  QLabel& Heading() const { return *heading_; }
  QTreeWidget& Differences() const { return *list_; }
  QPushButton& CloseButton() const { return *close_; }

 private:
  QLabel* heading_;
  QTreeWidget* list_;
  QPushButton* close_;
};

// "3 parameters differ", "1 parameter differs", "no parameter differs".
std::string DifferenceCount(std::size_t count);

}  // namespace talvex::editor
