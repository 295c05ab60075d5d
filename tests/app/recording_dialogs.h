// Answers the program's questions as a test scripts them, and records every text shown.
#pragma once

#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "editor/user_dialogs.h"

namespace talvex::testing {

struct Shown {
  std::string kind;  // "question", "three-way question" or "message"
  std::string title;
  std::string text;
  editor::DialogIcon icon;
  editor::Answer defaultAnswer = editor::Answer::Yes;
};

class RecordingDialogs final : public editor::UserDialogs {
 public:
  // Answers for the next questions, in order; after them every question is answered Yes.
  void WillAnswer(std::initializer_list<editor::Answer> answers) {
    answers_.insert(answers_.end(), answers);
  }

  editor::Answer AskYesNo(const std::string& title, const std::string& text,
                          editor::DialogIcon icon, editor::Answer defaultAnswer) override {
    shown.push_back({"question", title, text, icon, defaultAnswer});
    if (onQuestion) onQuestion();
    if (answers_.empty()) return editor::Answer::Yes;
    const editor::Answer answer = answers_.front();
    answers_.pop_front();
    return answer;
  }
  editor::Answer AskYesNoCancel(const std::string& title, const std::string& text,
                                editor::DialogIcon icon, editor::Answer defaultAnswer) override {
    shown.push_back({"three-way question", title, text, icon, defaultAnswer});
    if (onQuestion) onQuestion();
    if (answers_.empty()) return editor::Answer::Yes;
    const editor::Answer answer = answers_.front();
    answers_.pop_front();
    return answer;
  }
  void ShowMessage(const std::string& title, const std::string& text,
                   editor::DialogIcon icon) override {
    shown.push_back({"message", title, text, icon});
    // A real box runs the event loop while it is up: a test can do the same, once.
    if (auto whileUp = std::exchange(whileNextMessageIsUp, {})) {
      const BoxUp up(*this);
      whileUp();
    }
  }
  std::optional<std::string> ChooseOpenFile(const std::string& folder,
                                            const std::string& filter) override {
    fileDialogs.emplace_back(folder, filter);
    return file;
  }
  std::optional<std::string> ChooseSaveFile(const std::string& folder,
                                            const std::string& filter) override {
    fileDialogs.emplace_back(folder, filter);
    return file;
  }

  std::vector<std::string> Texts() const {
    std::vector<std::string> texts;
    for (const Shown& s : shown)
      texts.push_back(s.text);
    return texts;
  }

  std::vector<Shown> shown;
  std::optional<std::string> file;
  std::function<void()> whileNextMessageIsUp;
  std::vector<std::pair<std::string, std::string>> fileDialogs;  // folder, filter
  // Runs while a question is on the screen: what else the user sees then.
  std::function<void()> onQuestion;

 private:
  std::deque<editor::Answer> answers_;
};

}  // namespace talvex::testing
