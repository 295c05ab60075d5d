#include "editor/qt_user_dialogs.h"

#include <QFileDialog>
#include <QMessageBox>

namespace talvex::editor {

namespace {

QMessageBox::Icon QtIcon(DialogIcon icon) {
  switch (icon) {
    case DialogIcon::Information:
      return QMessageBox::Information;
    case DialogIcon::Warning:
    case DialogIcon::Exclamation:
      return QMessageBox::Warning;
    case DialogIcon::Critical:
      return QMessageBox::Critical;
    case DialogIcon::None:
      break;
  }
  return QMessageBox::NoIcon;
}

}  // namespace

Answer QtUserDialogs::AskYesNo(const std::string& title, const std::string& text, DialogIcon icon,
                               Answer defaultAnswer) {
  QMessageBox box(QtIcon(icon), QString::fromStdString(title), QString::fromStdString(text),
                  QMessageBox::Yes | QMessageBox::No, parent_);
  box.setDefaultButton(defaultAnswer == Answer::Yes ? QMessageBox::Yes : QMessageBox::No);
  return box.exec() == QMessageBox::Yes ? Answer::Yes : Answer::No;
}

void QtUserDialogs::ShowMessage(const std::string& title, const std::string& text,
                                DialogIcon icon) {
  QMessageBox box(QtIcon(icon), QString::fromStdString(title), QString::fromStdString(text),
                  QMessageBox::Ok, parent_);
  box.exec();
}

QString QtFilter(const std::string& filter) {
  const auto bar = filter.find('|');
  return QString::fromStdString(bar == std::string::npos ? filter : filter.substr(0, bar));
}

std::optional<std::string> QtUserDialogs::ChooseOpenFile(const std::string& folder,
                                                         const std::string& filter) {
  const QString file =
      QFileDialog::getOpenFileName(parent_, {}, QString::fromStdString(folder), QtFilter(filter));
  if (file.isEmpty()) return std::nullopt;
  return file.toStdString();
}

// The dialog asks before overwriting a file (the device's tools set the same flag).
std::optional<std::string> QtUserDialogs::ChooseSaveFile(const std::string& folder,
                                                         const std::string& filter) {
  const QString file =
      QFileDialog::getSaveFileName(parent_, {}, QString::fromStdString(folder), QtFilter(filter));
  if (file.isEmpty()) return std::nullopt;
  return file.toStdString();
}

}  // namespace talvex::editor
