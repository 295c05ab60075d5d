// Every message box, question and file dialog of the program goes through this interface: the
// windows ask it, the Qt implementation shows the real boxes, tests answer with a script and
// check each text character for character.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace talvex::editor {

enum class DialogIcon { None, Information, Warning, Critical, Exclamation };
enum class Answer { Yes, No, Cancel };

class UserDialogs {
 public:
  virtual ~UserDialogs() = default;
  // A Yes/No question; `defaultAnswer` is the button Enter presses.
  virtual Answer AskYesNo(const std::string& title, const std::string& text, DialogIcon icon,
                          Answer defaultAnswer) = 0;
  // A Yes/No/Cancel question (Escape is Cancel); `defaultAnswer` is the button Enter presses.
  // An implementation without such a box asks Yes/No, its No standing for Cancel (nothing is
  // done that the user did not agree to).
  virtual Answer AskYesNoCancel(const std::string& title, const std::string& text, DialogIcon icon,
                                Answer defaultAnswer) {
    return AskYesNo(title, text, icon, defaultAnswer == Answer::Yes ? Answer::Yes : Answer::No) ==
                   Answer::Yes
               ? Answer::Yes
               : Answer::Cancel;
  }
  // A message with an OK button.
  virtual void ShowMessage(const std::string& title, const std::string& text, DialogIcon icon) = 0;
  // A file to open or to save to, or nothing when the user cancels. `filter` is written as the
  // device's tools write it: "file preset (*.tvx)|*.tvx".
  virtual std::optional<std::string> ChooseOpenFile(const std::string& folder,
                                                    const std::string& filter) = 0;
  virtual std::optional<std::string> ChooseSaveFile(const std::string& folder,
                                                    const std::string& filter) = 0;

  // A box runs the event loop while it is up: a device can fail meanwhile, and the code that
  // opened the box goes on when it closes. So whatever would destroy that code's window (an
  // editor closed after a failure) runs through here: at once while no box is up, else once the
  // last box has closed.
  void AfterBoxes(std::function<void()> then) {
    if (boxesUp_ == 0) return then();
    waiting_.push_back(std::move(then));
  }

 protected:
  // Held by an implementation for as long as one of its boxes is up.
  class BoxUp {
   public:
    explicit BoxUp(UserDialogs& dialogs) : dialogs_(dialogs) { ++dialogs_.boxesUp_; }
    ~BoxUp() {
      if (--dialogs_.boxesUp_ > 0) return;
      for (auto& then : std::exchange(dialogs_.waiting_, {}))
        then();
    }
    BoxUp(const BoxUp&) = delete;
    BoxUp& operator=(const BoxUp&) = delete;

   private:
    UserDialogs& dialogs_;
  };

 private:
  int boxesUp_ = 0;
  std::vector<std::function<void()>> waiting_;
};

}  // namespace talvex::editor
