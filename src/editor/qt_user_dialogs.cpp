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
  const BoxUp up(*this);
  return box.exec() == QMessageBox::Yes ? Answer::Yes : Answer::No;
}

Answer QtUserDialogs::AskYesNoCancel(const std::string& title, const std::string& text,
                                     DialogIcon icon, Answer defaultAnswer) {
  QMessageBox box(QtIcon(icon), QString::fromStdString(title), QString::fromStdString(text),
                  QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel, parent_);
  const auto button = [](Answer answer) {
    return answer == Answer::Yes  ? QMessageBox::Yes
           : answer == Answer::No ? QMessageBox::No
                                  : QMessageBox::Cancel;
  };
  box.setDefaultButton(button(defaultAnswer));
  box.setEscapeButton(QMessageBox::Cancel);
  const BoxUp up(*this);
  switch (box.exec()) {
    case QMessageBox::Yes:
      return Answer::Yes;
    case QMessageBox::No:
      return Answer::No;
    default:
      return Answer::Cancel;
  }
}

void QtUserDialogs::ShowMessage(const std::string& title, const std::string& text,
                                DialogIcon icon) {
  QMessageBox box(QtIcon(icon), QString::fromStdString(title), QString::fromStdString(text),
                  QMessageBox::Ok, parent_);
  const BoxUp up(*this);
  box.exec();
}

QString QtFilter(const std::string& filter) {
  const auto bar = filter.find('|');
  return QString::fromStdString(bar == std::string::npos ? filter : filter.substr(0, bar));
}

std::optional<std::string> QtUserDialogs::ChooseOpenFile(const std::string& folder,
                                                         const std::string& filter) {
  const BoxUp up(*this);
  const QString file =
      QFileDialog::getOpenFileName(parent_, {}, QString::fromStdString(folder), QtFilter(filter));
  if (file.isEmpty()) return std::nullopt;
  return file.toStdString();
}

// The dialog asks before overwriting a file (the device's tools set the same flag). A name typed
// without an extension takes the filter's ("show" is saved as "show.tvx"), before the question,
// so the file asked about is the file written.
std::optional<std::string> QtUserDialogs::ChooseSaveFile(const std::string& folder,
                                                         const std::string& filter) {
  QFileDialog dialog(parent_, {}, QString::fromStdString(folder), QtFilter(filter));
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  dialog.setFileMode(QFileDialog::AnyFile);
  const auto dot = filter.rfind("*.");
  if (dot != std::string::npos)
    dialog.setDefaultSuffix(QString::fromStdString(filter.substr(dot + 2)));
  const BoxUp up(*this);
  if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return std::nullopt;
  return dialog.selectedFiles().front().toStdString();
}

}  // namespace talvex::editor
