// `FrmPassword`: locks the device, unlocks it with its six-character password, and gives it a
// new password. It names the lock state ("System Lock" while locked, "System Unlock" while
// not). Locking needs no password; unlocking checks `Text1` ("Password wrong", titled "Insert
// Password"); a new password in `Text2`, repeated in `Text3`, is checked ("Value password
// wrong", "Passwords don't match ", titled "New Password"). Enter in a box runs its button.
// After a change of the lock state the editor's enable routine runs.
#pragma once

#include <QDialog>

#include "editor/dialogs/command_context.h"

class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace talvex::editor {

// Which part has the focus when the dialog opens: the toolbar's "Lock unit" opens it on the
// lock, "Password" on the new password.
enum class PasswordPart { Lock, NewPassword };

class FrmPassword final : public QDialog {
  Q_OBJECT

 public:
  FrmPassword(CommandContext& context, PasswordPart part);

  QLabel& LockState() const { return *state_; }
  QLineEdit& Text1() const { return *password_; }
  QLineEdit& Text2() const { return *newPassword_; }
  QLineEdit& Text3() const { return *repeated_; }
  // 0 = lock or unlock, 1 = set the new password, 2 = close.
  QPushButton& Command1(int index) const;

 private:
  void ShowLockState();
  void LockOrUnlock();
  void SetNewPassword();

  CommandContext& context_;
  QLabel* state_;
  QLineEdit* password_;
  QLineEdit* newPassword_;
  QLineEdit* repeated_;
  QPushButton* lock_;
  QPushButton* setPassword_;
  QPushButton* close_;
};

}  // namespace talvex::editor
