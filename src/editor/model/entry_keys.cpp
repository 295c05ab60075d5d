#include "editor/model/entry_keys.h"

namespace talvex::editor {

KeyOutcome FilterKey(int key, params::DecimalMark mark, bool inputSuppressed) {
  if (inputSuppressed) return {KeyAction::Ignore};
  const bool digit = key >= '0' && key <= '9';
  if (digit || key == kKeyBackspace || key == '-' || key == '+' || key == kKeyCopy ||
      key == kKeyPaste || key == kKeyCut || key == kKeyUndo)
    return {KeyAction::Pass};
  if (key == ',' || key == '.') return {KeyAction::Replace, params::MarkChar(mark)};
  if (key == kKeyEnter) return {KeyAction::Commit};
  return {KeyAction::Refuse, kRefusedKeyMark};
}

}  // namespace talvex::editor
