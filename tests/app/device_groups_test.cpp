// Device groups in the whole program on a simulated line of three devices: grouped from each
// editor's Group menu, an edit in one reaches every member's device, the caption names the
// group, and a member that vanishes mid-drag is reported once while the others go on.
#include <gtest/gtest.h>

#include <QAction>
#include <QMenu>
#include <QSlider>

#include "editor/editor_menus.h"
#include "toolbar_harness.h"

namespace talvex::testing {
namespace {

using app::SearchMode;
using params::ParamKind;

void ChooseInGroupMenu(editor::CtrlWindow& editor, const QString& text) {
  editor.Menus().FillGroupMenu();
  for (QAction* action : editor.Menus().GroupMenu().actions())
    if (action->text().remove('&') == text) return action->trigger();
  throw std::runtime_error("no entry " + text.toStdString());
}

std::uint8_t LevelByte(const AppHarness& app, int id, int channel) {
  return app.simulator->Device(id)
      .LiveImage()[params::ChannelBase[static_cast<std::size_t>(channel)]];
}

TEST(DeviceGroupsAppTest, shouldSendAGroupEditToEveryMemberAndGoOnWithoutOneThatVanishes) {
  AppHarness app("sim:0,1,2");
  app.window->show();
  app.Start(Choice(SearchMode::AllIds));
  editor::CtrlWindow& first = OpenEditor(app, 0);
  editor::CtrlWindow& second = OpenEditor(app, 1);
  editor::CtrlWindow& third = OpenEditor(app, 2);
  ChooseInGroupMenu(first, "New group");
  ChooseInGroupMenu(second, "Join Group 1 (ID 0)");
  ChooseInGroupMenu(third, "Join Group 1 (ID 0, 1)");
  EXPECT_EQ(first.windowTitle(), "ID:0 - Type: 2x2 WAY XOVER + SUB - Group 1 (ID 0, 1, 2)");
  EXPECT_EQ(third.windowTitle(), "ID:2 - Type: 2x2 WAY XOVER + SUB - Group 1 (ID 0, 1, 2)");

  // The level of three devices at once, from one editor.
  second.Model().Commit({ParamKind::Level, 4, 0}, "-7.5");
  app.Settle();
  for (int id = 0; id < 3; ++id)
    EXPECT_EQ(LevelByte(app, id, 4), 45) << id;  // 120 - 10 x 7.5

  // Device 1 stops answering; a drag in the first editor goes on to devices 0 and 2.
  app.simulator->Faults(1).vanishAfterFrames = 0;
  QSlider* level = nullptr;
  for (QSlider* slider : first.findChildren<QSlider*>())
    if (slider->accessibleName() == "In A Level [dB] slider") level = slider;
  ASSERT_NE(level, nullptr);
  level->setSliderDown(true);
  for (int position = 150; position >= 90; position -= 10) {
    level->setValue(position);
    app.Settle();
  }
  level->setSliderDown(false);
  app.Settle();
  int failures = 0;
  for (const Shown& shown : app.dialogs.shown)
    if (shown.title == "Communication problem") ++failures;
  EXPECT_EQ(failures, 1);
  EXPECT_EQ(app.window->Editor(1), nullptr);  // the vanished device's editor closed
  for (int id : {0, 2}) {
    EXPECT_EQ(app.Session().Device(id).params.image[params::ChannelBase[0] + 1], 210) << id;
    EXPECT_EQ(app.simulator->Device(id).LiveImage()[params::ChannelBase[0] + 1], 210) << id;
  }
  EXPECT_EQ(first.windowTitle(), "ID:0 - Type: 2x2 WAY XOVER + SUB - Group 1 (ID 0, 2)");
  // The drag is one step on each member that took it, and undo takes it back on both.
  EXPECT_EQ(third.Memory().History().UndoText(), "Undo In A level");
  first.Memory().Undo();
  app.Settle();
  for (int id : {0, 2})
    EXPECT_EQ(app.simulator->Device(id).LiveImage()[params::ChannelBase[0] + 1], 150) << id;

  ChooseInGroupMenu(third, "Leave Group 1 (ID 0, 2)");
  EXPECT_EQ(third.windowTitle(), "ID:2 - Type: 2x2 WAY XOVER + SUB");
  first.Model().Commit({ParamKind::Level, 4, 0}, "0");
  app.Settle();
  EXPECT_EQ(LevelByte(app, 0, 4), 120);
  EXPECT_EQ(LevelByte(app, 2, 4), 45);
}

}  // namespace
}  // namespace talvex::testing
