// What "Input Copy" and "Output Copy" share: a source and a destination list (`Combo1` 0 and
// 1) and `Command1` 0 = copy, 1 = cancel. The same channel on both sides is refused with
// "Copy not possible, Source=Destination" (critical icon) and nothing is sent; otherwise, after
// "               Are you sure ? " (No the default), every setting of the source is copied
// onto the destination in the stores, the editor shows it, and the commands go out as one job.
#pragma once

#include <QDialog>
#include <string_view>

#include "editor/dialogs/command_context.h"

class QComboBox;
class QPushButton;

namespace talvex::editor {

class CopyDialog : public QDialog {
  Q_OBJECT

 public:
  QComboBox& Combo1(int index) const;
  QPushButton& Command1(int index) const;

 protected:
  // Channels first .. first + count - 1 in both lists; `title` titles the messages.
  CopyDialog(CommandContext& context, std::string_view caption, std::string_view title,
             int firstChannel, int channelCount);

 private:
  void Copy();
  int Channel(int combo) const;

  CommandContext& context_;
  std::string_view title_;
  int firstChannel_;
  QComboBox* source_;
  QComboBox* destination_;
  QPushButton* copy_;
  QPushButton* cancel_;
};

}  // namespace talvex::editor
