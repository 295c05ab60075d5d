// What the whole-run timers of the desktop program share: dialogs that answer without a window,
// the clock, and the figures taken over repetitions.
#pragma once

#include <algorithm>
#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "editor/user_dialogs.h"

namespace talvex::bench {

using Clock = std::chrono::steady_clock;

// Every question answered Yes, every message taken, no file chosen.
class SilentDialogs final : public editor::UserDialogs {
 public:
  editor::Answer AskYesNo(const std::string&, const std::string&, editor::DialogIcon,
                          editor::Answer) override {
    return editor::Answer::Yes;
  }
  void ShowMessage(const std::string&, const std::string&, editor::DialogIcon) override {
    ++messages;
  }
  std::optional<std::string> ChooseOpenFile(const std::string&, const std::string&) override {
    return {};
  }
  std::optional<std::string> ChooseSaveFile(const std::string&, const std::string&) override {
    return {};
  }

  int messages = 0;  // a benchmark whose run showed a message did not run as intended
};

inline double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

inline double Worst(const std::vector<double>& values) {
  return *std::max_element(values.begin(), values.end());
}

inline double Ms(Clock::duration d) {
  return std::chrono::duration<double, std::milli>(d).count();
}

}  // namespace talvex::bench
