// The editor's own menu bar, above the system's twelve toolbar buttons (which stay as they
// are): "Edit" (undo and redo with the change named, the A/B compare), "Tools" (the selected
// channel's equaliser from and to a filter text, the comparison with a preset file, the
// device's backup and restore) and "Group" (the device groups). Each entry has its accessible
// name in its text, a keyboard way through the menu's mnemonics, and the frequent ones a
// shortcut that works anywhere in this editor.
#pragma once

#include <QObject>
#include <array>
#include <functional>

class QAction;
class QMenu;
class QMenuBar;
class QWidget;

namespace talvex::editor {

struct CommandContext;

enum class EditorAction {
  Undo,         // Ctrl+Z
  Redo,         // Ctrl+Shift+Z
  SwitchSide,   // Ctrl+B: "Switch to B" / "Switch to A"
  CopyAToB,     // "Copy A to B"
  ImportEq,     // "Import equaliser onto Out 1 ..."
  ExportEq,     // "Export equaliser of Out 1 ..."
  CompareFile,  // "Compare with preset file ..."
  Backup,       // "Back up device ..."
  Restore,      // "Restore device ..."
};
inline constexpr int kEditorActionCount = 9;

class EditorMenus final : public QObject {
 public:
  // `runTool` starts a tool as a window command: nothing else starts until it calls
  // `context.finished()`. `window` takes the actions, so that their shortcuts work anywhere in
  // it.
  EditorMenus(CommandContext& context,
              std::function<void(std::function<void(CommandContext&)>)> runTool, QWidget& window);

  QMenuBar& Bar() const { return *bar_; }
  QAction& Action(EditorAction action) const;
  QMenu& GroupMenu() const { return *groupMenu_; }
  // The group menu's entries as they stand: "New group", "Join Group 1 (ID 0, 3)", "Leave
  // Group 2 (ID 5, 7)". Built each time the menu opens.
  void FillGroupMenu();
  // Texts (the change to undo, the side to switch to, the selected channel) and enabled states:
  // nothing that changes the device while it or the editor is locked, no tool while `busy`.
  void Update(bool busy);

 private:
  QAction* Add(QMenu& menu, EditorAction action, const char* shortcut, std::function<void()> run);

  CommandContext& context_;
  std::function<void(std::function<void(CommandContext&)>)> runTool_;
  QWidget& window_;
  QMenuBar* bar_;
  QMenu* groupMenu_ = nullptr;
  std::array<QAction*, kEditorActionCount> actions_{};
};

}  // namespace talvex::editor
