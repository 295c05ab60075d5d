// `FrmEditLabel`, "Edit Names": eight boxes (`Text1` 0..7, In A .. Out 6) of up to six
// characters. While the user types, a text with a character names do not take shows the hint
// "Please use the following symbols: ..." under the boxes. OK refuses an empty box with
// "Please input the Name !", asks "               Are you sure ? ", then the names are fitted,
// the output names go into the image and out to the device (code 14, one job), and the editor's
// channel labels show them.
#pragma once

#include <QDialog>
#include <array>

#include "editor/dialogs/command_context.h"

class QLabel;
class QLineEdit;
class QPushButton;

namespace talvex::editor {

class FrmEditLabel final : public QDialog {
  Q_OBJECT

 public:
  explicit FrmEditLabel(CommandContext& context);

  QLineEdit& Text1(int channel) const;
  // Index 0 = OK, 1 = cancel.
  QPushButton& Command1(int index) const;
  // The hint under the boxes ("" while every text is fine).
  QLabel& Hint() const { return *hint_; }

 private:
  void CheckTyped(const QString& text);
  void Ok();
  presets::ChannelNames Texts() const;

  CommandContext& context_;
  presets::ChannelNames before_;  // the names as the dialog opened, fitted
  std::array<QLineEdit*, params::kChannelCount> boxes_{};
  QLabel* hint_;
  QPushButton* ok_;
  QPushButton* cancel_;
};

}  // namespace talvex::editor
