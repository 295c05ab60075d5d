#include "editor/dialogs/slot_list.h"

#include "editor/dialogs/command_context.h"
#include "params/image_layout.h"

namespace talvex::editor {

QString ShownSlotName(const std::string& name) {
  const auto end = name.find_last_not_of(' ');
  return QtText(end == std::string::npos ? std::string() : name.substr(0, end + 1));
}

QString SlotRowText(const presets::DeviceState& state, int slot) {
  const QString name = state.SlotUsed(slot)
                           ? ShownSlotName(state.slotNames[static_cast<std::size_t>(slot)])
                           : QString("(empty)");
  return QString("%1   %2").arg(slot, 2).arg(name);
}

QListWidget* MakeSlotList(const presets::DeviceState& state) {
  auto* list = new QListWidget;
  list->setObjectName("List1");
  list->setAccessibleName("Preset slots");
  list->setSelectionMode(QAbstractItemView::SingleSelection);
  for (int slot = 0; slot < params::kSlotCount; ++slot)
    list->addItem(SlotRowText(state, slot));
  list->setCurrentRow(0);
  list->setMinimumHeight(list->sizeHintForRow(0) * 12 + 2 * list->frameWidth());
  list->setMinimumWidth(list->fontMetrics().averageCharWidth() * 28);
  return list;
}

void RefreshSlotList(QListWidget& list, const presets::DeviceState& state) {
  for (int slot = 0; slot < params::kSlotCount; ++slot)
    list.item(slot)->setText(SlotRowText(state, slot));
}

}  // namespace talvex::editor
