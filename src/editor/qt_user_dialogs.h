// The real message boxes and file dialogs, shown modally over `parent`.
#pragma once

#include <QPointer>
#include <QWidget>

#include "editor/user_dialogs.h"

namespace talvex::editor {

class QtUserDialogs final : public UserDialogs {
 public:
  explicit QtUserDialogs(QWidget* parent = nullptr) : parent_(parent) {}
  void SetParent(QWidget* parent) { parent_ = parent; }

  Answer AskYesNo(const std::string& title, const std::string& text, DialogIcon icon,
                  Answer defaultAnswer) override;
  Answer AskYesNoCancel(const std::string& title, const std::string& text, DialogIcon icon,
                        Answer defaultAnswer) override;
  void ShowMessage(const std::string& title, const std::string& text, DialogIcon icon) override;
  std::optional<std::string> ChooseOpenFile(const std::string& folder,
                                            const std::string& filter) override;
  std::optional<std::string> ChooseSaveFile(const std::string& folder,
                                            const std::string& filter) override;

 private:
  QPointer<QWidget> parent_;
};

// "file preset (*.tvx)|*.tvx" -> "file preset (*.tvx)": the device's tools name a filter by its
// text and its pattern; Qt reads the pattern from the text.
QString QtFilter(const std::string& filter);

}  // namespace talvex::editor
