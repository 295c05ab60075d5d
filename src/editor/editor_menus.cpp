#include "editor/editor_menus.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <QWidget>

#include "editor/dialogs/command_context.h"
#include "editor/dialogs/device_tools.h"
#include "editor/model/controls.h"
#include "editor/model/device_groups.h"

namespace talvex::editor {

namespace {

std::size_t At(EditorAction action) {
  return static_cast<std::size_t>(action);
}

QString Text(const std::string& text) {
  return QString::fromStdString(text);
}

}  // namespace

EditorMenus::EditorMenus(CommandContext& context,
                         std::function<void(std::function<void(CommandContext&)>)> runTool,
                         QWidget& window)
    : QObject(&window),
      context_(context),
      runTool_(std::move(runTool)),
      window_(window),
      bar_(new QMenuBar) {
  bar_->setAccessibleName("Editor menus");
  SettingsMemory& memory = context.memory;
  QMenu* edit = bar_->addMenu("&Edit");
  Add(*edit, EditorAction::Undo, "Ctrl+Z", [&memory] { memory.Undo(); });
  Add(*edit, EditorAction::Redo, "Ctrl+Shift+Z", [&memory] { memory.Redo(); });
  edit->addSeparator();
  Add(*edit, EditorAction::SwitchSide, "Ctrl+B", [&memory] { memory.SwitchSide(); });
  Add(*edit, EditorAction::CopyAToB, nullptr, [&memory] { memory.CopyAToB(); });
  const auto tool = [this](void (*run)(CommandContext&, int)) {
    return [this, run] {
      const int channel = context_.model.SelectedChannel();
      runTool_([run, channel](CommandContext& c) { run(c, channel); });
    };
  };
  const auto wholeDevice = [this](void (*run)(CommandContext&)) {
    return [this, run] { runTool_(run); };
  };
  QMenu* tools = bar_->addMenu("&Tools");
  Add(*tools, EditorAction::ImportEq, nullptr, tool(ImportEqualiser));
  Add(*tools, EditorAction::ExportEq, nullptr, tool(ExportEqualiser));
  tools->addSeparator();
  Add(*tools, EditorAction::CompareFile, nullptr, wholeDevice(CompareWithFile))
      ->setText("&Compare with preset file ...");
  tools->addSeparator();
  Add(*tools, EditorAction::Backup, nullptr, wholeDevice(BackupDevice))
      ->setText("&Back up device ...");
  Add(*tools, EditorAction::Restore, nullptr, wholeDevice(RestoreDevice))
      ->setText("&Restore device ...");
  groupMenu_ = bar_->addMenu("&Group");
  connect(groupMenu_, &QMenu::aboutToShow, this, &EditorMenus::FillGroupMenu);
  Update(false);
}

QAction* EditorMenus::Add(QMenu& menu, EditorAction action, const char* shortcut,
                          std::function<void()> run) {
  QAction* entry = menu.addAction(QString());
  if (shortcut) {
    entry->setShortcut(QKeySequence(shortcut));
    entry->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    window_.addAction(entry);
  }
  connect(entry, &QAction::triggered, this, [run = std::move(run)] { run(); });
  actions_[At(action)] = entry;
  return entry;
}

QAction& EditorMenus::Action(EditorAction action) const {
  return *actions_.at(At(action));
}

void EditorMenus::FillGroupMenu() {
  groupMenu_->clear();
  SettingsMemory& memory = context_.memory;
  DeviceGroups* groups = memory.Groups();
  if (!groups) return;
  const int own = groups->GroupOf(memory);
  groupMenu_->addAction("&New group", this, [groups, &memory] { groups->Start(memory); });
  for (int group : groups->Numbers()) {
    if (group == own) continue;
    groupMenu_->addAction("&Join " + Text(groups->Name(group)), this,
                          [groups, group, &memory] { groups->Join(group, memory); });
  }
  if (own != 0)
    groupMenu_->addAction("&Leave " + Text(groups->Name(own)), this,
                          [groups, &memory] { groups->Leave(memory); });
}

void EditorMenus::Update(bool busy) {
  const SettingsMemory& memory = context_.memory;
  const EditHistory& history = memory.History();
  const bool editable = context_.model.EditsEnabled() && !busy;
  const std::string channel = ChannelCaption(context_.model.SelectedChannel());
  const std::string other = memory.Side() == kSideA ? "B" : "A";
  const std::array<std::pair<std::string, bool>, kEditorActionCount> entries = {{
      {"&" + history.UndoText(), memory.CanUndo() && !busy},
      {"&" + history.RedoText(), memory.CanRedo() && !busy},
      {"&Switch to " + other, editable},
      {"Copy &A to B", editable},
      {"&Import equaliser onto " + channel + " ...", editable},
      {"&Export equaliser of " + channel + " ...", !busy},
      {"", !busy},
      {"", !busy},
      {"", editable},
  }};
  for (std::size_t i = 0; i < entries.size(); ++i) {
    if (!entries[i].first.empty()) actions_[i]->setText(Text(entries[i].first));
    actions_[i]->setEnabled(entries[i].second);
  }
}

}  // namespace talvex::editor
