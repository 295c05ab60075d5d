// The key filter every entry box of the editor applies, as a pure function. It sees the keys
// that type a character (the platform's navigation keys, Tab, the arrows, Home, End, Delete,
// never reach it), in this order:
//   1. while the input-suppress flag is set every key is ignored;
//   2. "0".."9", Backspace, "-", "+" and the editing keys Ctrl+C, Ctrl+V, Ctrl+X, Ctrl+Z pass;
//   3. "," and "." are both replaced by the locale's decimal mark;
//   4. Enter commits the box;
//   5. any other key is refused: the box's message is shown titled "Warning" and a "?" is
//      typed instead, so that pressing Enter shows the message again. This is wanted as it is.
#pragma once

#include "params/decimal_mark.h"

namespace talvex::editor {

enum class KeyAction {
  Ignore,   // nothing happens
  Pass,     // the key is typed (or edits) as it is
  Replace,  // `typed` is typed instead of the key
  Commit,   // the box's text is committed
  Refuse,   // the box's message is shown, then `typed` ("?") is typed
};

struct KeyOutcome {
  KeyAction action = KeyAction::Pass;
  char typed = 0;  // for Replace and Refuse
  friend bool operator==(const KeyOutcome&, const KeyOutcome&) = default;
};

// Key codes as the keyboard delivers them to a box: the character typed, or a control code.
inline constexpr int kKeyBackspace = 8;
inline constexpr int kKeyEnter = 13;
inline constexpr int kKeyCopy = 3;    // Ctrl+C
inline constexpr int kKeyPaste = 22;  // Ctrl+V
inline constexpr int kKeyCut = 24;    // Ctrl+X
inline constexpr int kKeyUndo = 26;   // Ctrl+Z
inline constexpr char kRefusedKeyMark = '?';

KeyOutcome FilterKey(int key, params::DecimalMark mark, bool inputSuppressed);

}  // namespace talvex::editor
