#include "editor/dialogs/frm_password.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "presets/system_lock.h"

namespace talvex::editor {

namespace {

QLineEdit* PasswordBox(const char* accessibleName) {
  auto* box = new QLineEdit;
  box->setEchoMode(QLineEdit::Password);
  box->setMaxLength(static_cast<int>(presets::kPasswordLength));
  box->setAccessibleName(accessibleName);
  return box;
}

// Enter in a box runs its own button's checks, never the dialog's default button.
QPushButton* Button(const char* text) {
  auto* button = new QPushButton(text);
  button->setAutoDefault(false);
  button->setAccessibleName(QString(text).remove('&'));
  return button;
}

}  // namespace

FrmPassword::FrmPassword(CommandContext& context, PasswordPart part)
    : QDialog(&context.window),
      context_(context),
      state_(new QLabel),
      password_(PasswordBox("Password")),
      newPassword_(PasswordBox("New password")),
      repeated_(PasswordBox("Repeat new password")),
      lock_(Button("&Lock")),
      setPassword_(Button("&Set password")),
      close_(Button("Close")) {
  setObjectName("FrmPassword");
  setWindowTitle("Password");
  QFont bold = state_->font();
  bold.setBold(true);
  state_->setFont(bold);
  state_->setAccessibleName("Lock state");

  auto* lockGroup = new QGroupBox("Lock");
  auto* lockForm = new QFormLayout(lockGroup);
  lockForm->addRow(state_);
  auto* passwordLabel = new QLabel("&Password:");
  passwordLabel->setBuddy(password_);
  lockForm->addRow(passwordLabel, password_);
  lockForm->addRow(lock_);

  auto* newGroup = new QGroupBox("New password (6 characters: blank, 0-9, A-Z, a-z)");
  auto* newForm = new QFormLayout(newGroup);
  auto* newLabel = new QLabel("&New password:");
  newLabel->setBuddy(newPassword_);
  auto* repeatLabel = new QLabel("&Repeat:");
  repeatLabel->setBuddy(repeated_);
  newForm->addRow(newLabel, newPassword_);
  newForm->addRow(repeatLabel, repeated_);
  newForm->addRow(setPassword_);

  auto* buttons = new QDialogButtonBox;
  buttons->addButton(close_, QDialogButtonBox::RejectRole);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(lockGroup);
  layout->addWidget(newGroup);
  layout->addWidget(buttons);

  connect(lock_, &QPushButton::clicked, this, &FrmPassword::LockOrUnlock);
  connect(password_, &QLineEdit::returnPressed, this, &FrmPassword::LockOrUnlock);
  connect(setPassword_, &QPushButton::clicked, this, &FrmPassword::SetNewPassword);
  connect(newPassword_, &QLineEdit::returnPressed, this, &FrmPassword::SetNewPassword);
  connect(repeated_, &QLineEdit::returnPressed, this, &FrmPassword::SetNewPassword);
  connect(close_, &QPushButton::clicked, this, &FrmPassword::reject);
  ShowLockState();
  if (part == PasswordPart::NewPassword) {
    newPassword_->setFocus();
  } else if (password_->isEnabled()) {
    password_->setFocus();
  } else {
    lock_->setFocus();
  }
}

QPushButton& FrmPassword::Command1(int index) const {
  CheckIndex(index, 2, "button");
  return index == 0 ? *lock_ : index == 1 ? *setPassword_ : *close_;
}

void FrmPassword::ShowLockState() {
  const bool locked = context_.Records().state.Locked();
  state_->setText(QtText(presets::LockText(locked)));
  lock_->setText(locked ? "&Unlock" : "&Lock");
  lock_->setAccessibleName(locked ? "Unlock" : "Lock");
  password_->setEnabled(locked);
}

void FrmPassword::LockOrUnlock() {
  DeviceRecords records = context_.Records();
  protocol::Command command;
  if (records.state.Locked()) {
    if (const auto refusal = presets::CheckUnlock(Std(password_->text()), records.state)) {
      context_.dialogs.ShowMessage(std::string(presets::kInsertPasswordTitle),
                                   std::string(*refusal), DialogIcon::Information);
      password_->selectAll();
      return;
    }
    command = presets::UnlockDevice(context_.device, records.state);
  } else {
    command = presets::LockDevice(context_.device, records.state);
  }
  ShowLockState();
  context_.refresh();
  SendCommands(context_, {command});
  accept();
}

void FrmPassword::SetNewPassword() {
  const std::string password = Std(newPassword_->text());
  if (const auto refusal = presets::CheckNewPassword(password, Std(repeated_->text()))) {
    context_.dialogs.ShowMessage(std::string(presets::kNewPasswordTitle), std::string(*refusal),
                                 DialogIcon::Information);
    return;
  }
  DeviceRecords records = context_.Records();
  SendCommands(context_, presets::NewPasswordCommands(password),
               [records, password](const presets::ListOutcome& outcome) {
                 presets::FinishNewPassword(records.state, password, outcome);
               });
  accept();
}

}  // namespace talvex::editor
