// The toolbar's channel and device commands from the button to the frames on the simulated
// line: copies, channel names, lock and password, the device's name; and the toolbar itself.
#include <gtest/gtest.h>

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QToolBar>
#include <QToolButton>

#include "editor/dialogs/frm_copy_input.h"
#include "editor/dialogs/frm_copy_out.h"
#include "editor/dialogs/frm_edit_label.h"
#include "editor/dialogs/frm_name_device.h"
#include "editor/dialogs/frm_password.h"
#include "editor/dialogs/frm_read.h"
#include "editor/dialogs/frm_store.h"
#include "editor/dialogs/frm_sys_type.h"
#include "editor/widgets/channel_page.h"
#include "editor/widgets/signal_chain.h"
#include "params/param_edit.h"
#include "presets/channel_names.h"
#include "toolbar_harness.h"

namespace talvex::testing {
namespace {

using app::SearchMode;
using editor::Answer;
using editor::DialogIcon;
using params::ParamKind;
namespace code = protocol::code;
namespace mem = protocol::memory;

class UtilityDialogsTest : public ::testing::Test {
 protected:
  AppHarness& Start(const std::string& port = "sim:0",
                    std::function<void(sim::SimLine&)> prepare = {}) {
    app_ = std::make_unique<AppHarness>(port, std::move(prepare));
    app_->Start(Choice(SearchMode::AllIds));
    return *app_;
  }
  std::unique_ptr<AppHarness> app_;
};

TEST_F(UtilityDialogsTest, shouldShowTheTwelveCommandsInOrderEachWithIconTooltipAndShortcut) {
  const char* captions[] = {"Load Preset from PC",
                            "Save Preset to PC",
                            "Store Preset to device",
                            "Read Preset from device",
                            "System Setup",
                            "Disconnect device",
                            "Edit Names",
                            "Input Copy",
                            "Output Copy",
                            "Lock unit",
                            "Password",
                            "Edit name device"};
  AppHarness& app = Start();
  editor::CtrlWindow& editor = OpenEditor(app, 0);
  const QList<QAction*> actions = editor.Toolbar().actions();
  ASSERT_EQ(actions.size(), 12);
  QSet<QString> shortcuts;
  for (int index = 0; index < 12; ++index) {
    QAction* action = actions[index];
    EXPECT_EQ(action->text(), captions[index]);
    EXPECT_EQ(&editor.Command2(index), action);
    EXPECT_FALSE(action->icon().isNull()) << captions[index];
    EXPECT_FALSE(action->toolTip().isEmpty()) << captions[index];
    EXPECT_FALSE(action->shortcut().isEmpty()) << captions[index];
    shortcuts.insert(action->shortcut().toString());
    EXPECT_TRUE(action->isEnabled()) << captions[index];
  }
  EXPECT_EQ(shortcuts.size(), 12);
}

// While a command's dialog is open the window is busy and no other command starts; a locked
// device leaves only the commands that change nothing of it (and the lock itself).
TEST_F(UtilityDialogsTest, shouldHoldOtherCommandsWhileBusyOrLocked) {
  AppHarness& app = Start();
  editor::CtrlWindow& editor = OpenEditor(app, 0);
  auto& names = OpenDialog<editor::FrmEditLabel>(app, editor, WindowCommand::EditNames);
  EXPECT_TRUE(editor.CommandBusy());
  for (int index = 0; index < 12; ++index)
    EXPECT_EQ(editor.Command2(index).isEnabled(), index == 5) << index;
  editor.Command2(static_cast<int>(WindowCommand::InputCopy)).trigger();
  EXPECT_EQ(editor.findChild<editor::FrmCopyInput*>(), nullptr);
  names.Command1(1).click();
  EXPECT_FALSE(editor.CommandBusy());

  auto& lock = OpenDialog<editor::FrmPassword>(app, editor, WindowCommand::LockUnit);
  lock.Command1(0).click();
  app.Settle();
  const bool enabledWhileLocked[] = {false, true,  false, false, false, true,
                                     false, false, false, true,  true,  false};
  for (int index = 0; index < 12; ++index)
    EXPECT_EQ(editor.Command2(index).isEnabled(), enabledWhileLocked[index]) << index;

  AppHarness lockedBefore("sim:0", [](sim::SimLine& line) {
    line.Device(0).DeviceMemory()[protocol::memory::kLock] = protocol::memory::kLocked;
  });
  lockedBefore.Start(Choice(SearchMode::AllIds));
  editor::CtrlWindow& opened = OpenEditor(lockedBefore, 0);
  for (int index = 0; index < 12; ++index)
    EXPECT_EQ(opened.Command2(index).isEnabled(), enabledWhileLocked[index]) << index;
}

// Every dialog of the toolbar: a title, and an accessible name on every control the keyboard
// reaches.
TEST_F(UtilityDialogsTest, shouldNameEveryControlOfEveryDialog) {
  const WindowCommand commands[] = {
      WindowCommand::StorePreset, WindowCommand::ReadPreset, WindowCommand::SystemSetup,
      WindowCommand::EditNames,   WindowCommand::InputCopy,  WindowCommand::OutputCopy,
      WindowCommand::LockUnit,    WindowCommand::Password,   WindowCommand::EditDeviceName};
  AppHarness& app = Start();
  editor::CtrlWindow& editor = OpenEditor(app, 0);
  for (WindowCommand command : commands) {
    const int index = static_cast<int>(command);
    auto& dialog = OpenDialog<QDialog>(app, editor, command);
    EXPECT_FALSE(dialog.windowTitle().isEmpty()) << index;
    int reachable = 0;
    for (QWidget* widget : dialog.findChildren<QWidget*>()) {
      if (!(widget->focusPolicy() & Qt::TabFocus) || qobject_cast<QDialog*>(widget)) continue;
      ++reachable;
      EXPECT_FALSE(widget->accessibleName().isEmpty())
          << index << " " << widget->metaObject()->className();
    }
    EXPECT_GE(reachable, 2) << index;
    dialog.reject();
    EXPECT_FALSE(editor.CommandBusy()) << index;
  }
}

// The same channel on both sides is refused and sends nothing; a copy declined sends nothing;
// Out 1 onto Out 2 sends 18 commands, and the device and the editor's curves follow.
TEST_F(UtilityDialogsTest, shouldCopyChannelsAndRefuseTheSameChannel) {
  struct Case {
    const char* why;
    WindowCommand command;
    int source, destination;  // list positions
    std::optional<Answer> answer;
    const char* title;
    std::vector<std::string> texts;
    int frames;
  };
  const Case cases[] = {
      {"In A on In A",
       WindowCommand::InputCopy,
       0,
       0,
       {},
       "Copy Input",
       {"Copy not possible, Source=Destination"},
       0},
      {"Out 4 on Out 4",
       WindowCommand::OutputCopy,
       3,
       3,
       {},
       "Copy Output",
       {"Copy not possible, Source=Destination"},
       0},
      {"declined",
       WindowCommand::OutputCopy,
       0,
       1,
       Answer::No,
       "Copy Output",
       {"               Are you sure ? "},
       0},
      {"In B on In A",
       WindowCommand::InputCopy,
       1,
       0,
       Answer::Yes,
       "Copy Input",
       {"               Are you sure ? "},
       8},
      {"Out 1 on Out 2",
       WindowCommand::OutputCopy,
       0,
       1,
       Answer::Yes,
       "Copy Output",
       {"               Are you sure ? "},
       18},
  };
  for (const Case& c : cases) {
    AppHarness& app = Start();
    editor::CtrlWindow& editor = OpenEditor(app, 0);
    editor.Model().Commit({ParamKind::EqGain, 2, params::GlobalBand(2, 2)}, "-6");
    editor.Model().Commit({ParamKind::EqGain, 1, params::GlobalBand(1, 0)}, "3");
    app.Settle();
    auto& copy = OpenDialog<editor::CopyDialog>(app, editor, c.command);
    const QPointer<editor::CopyDialog> open(&copy);  // a copy that went closes the dialog
    copy.Combo1(0).setCurrentIndex(c.source);
    copy.Combo1(1).setCurrentIndex(c.destination);
    if (c.answer) app.dialogs.WillAnswer({*c.answer});
    const FrameCount before = CountFrames(app, 0);
    copy.Command1(0).click();
    app.Settle();
    EXPECT_EQ(CountFrames(app, 0).total - before.total, c.frames) << c.why;
    EXPECT_EQ(app.dialogs.Texts(), c.texts) << c.why;
    ASSERT_FALSE(app.dialogs.shown.empty()) << c.why;
    EXPECT_EQ(app.dialogs.shown[0].title, c.title) << c.why;
    const Shown& shown = app.dialogs.shown[0];
    if (shown.kind == "message") {
      EXPECT_EQ(shown.icon, DialogIcon::Critical) << c.why;
    } else {
      EXPECT_EQ(shown.defaultAnswer, Answer::No) << c.why;
    }
    EXPECT_EQ(open && open->isVisible(), c.frames == 0) << c.why;
    if (c.frames == 0) continue;
    EXPECT_FALSE(editor.CommandBusy()) << c.why;
    EXPECT_EQ(PresetBytes(app.simulator->Device(0).LiveImage()),
              PresetBytes(app.Session().Device(0).params.image))
        << c.why;
    const int source = c.command == WindowCommand::InputCopy ? c.source : c.source + 2;
    const int destination =
        c.command == WindowCommand::InputCopy ? c.destination : c.destination + 2;
    const graph::ResponseTables& tables = editor.Model().Tables();
    for (int i = 0; i < graph::kGridPointCount; i += 97)
      EXPECT_EQ(tables.ChannelMagnitude(destination)[i], tables.ChannelMagnitude(source)[i])
          << c.why << " point " << i;
  }
}

// An empty box, a refused character (the hint shows while typing), then names that go: six
// commands 14, the device's name bytes, and the chain's labels; an input name changes nothing
// of the image.
TEST_F(UtilityDialogsTest, shouldEditTheChannelNames) {
  AppHarness& app = Start();
  editor::CtrlWindow& editor = OpenEditor(app, 0);
  auto& names = OpenDialog<editor::FrmEditLabel>(app, editor, WindowCommand::EditNames);
  const FrameCount before = CountFrames(app, 0);
  names.Text1(4).clear();
  names.Command1(0).click();
  names.Text1(4).setText("Kick");
  QTest::keyClicks(&names.Text1(2), "#");
  EXPECT_EQ(names.Hint().text().toStdString(), presets::kNameSymbolsHint);
  names.Command1(0).click();
  QTest::keyClick(&names.Text1(2), Qt::Key_Backspace);
  EXPECT_TRUE(names.Hint().text().isEmpty());
  const std::vector<std::string> refusals = {
      "Please input the Name !",
      "Please use the following symbols: 0 - 9£¬A - Z£¬a - z£¬< >£¬()£¬-_+=... ASCII Chars"};
  EXPECT_EQ(app.dialogs.Texts(), refusals);
  for (const Shown& shown : app.dialogs.shown) {
    EXPECT_EQ(shown.title, "Edit Names");
    EXPECT_EQ(shown.icon, DialogIcon::Information);
  }
  EXPECT_EQ(CountFrames(app, 0).total, before.total);

  names.Text1(0).setText("Vox");
  names.Text1(2).setText("AB");
  const params::ParamImage imageBefore = app.Session().Device(0).params.image;
  app.dialogs.shown.clear();
  names.Command1(0).click();
  app.Settle();
  EXPECT_EQ(app.dialogs.Texts(), std::vector<std::string>{"               Are you sure ? "});
  EXPECT_EQ(FramesSince(app, 0, before), (std::map<int, int>{{code::kChannelName, 6}}));
  const auto& live = app.simulator->Device(0).LiveImage();
  const auto nameAt = [&](int channel) {
    const std::size_t at = params::NameOffset[static_cast<std::size_t>(channel)];
    return std::string(live.begin() + at, live.begin() + at + 6);
  };
  EXPECT_EQ(nameAt(2), "  AB  ");
  EXPECT_EQ(nameAt(4), " Kick ");
  const params::ParamImage& image = app.Session().Device(0).params.image;
  int changed = 0;
  for (std::size_t i = 0; i < image.size(); ++i)
    changed += image[i] != imageBefore[i];
  EXPECT_LE(changed, 12);  // Out 1 and Out 3, six bytes each; In A none
  EXPECT_TRUE(editor.Chain().Button(0).text().endsWith("  Vox "));
  EXPECT_TRUE(editor.Chain().Button(2).text().endsWith("  AB  "));
  EXPECT_EQ(app.Session().Device(0).names[0], "  Vox ");
  EXPECT_FALSE(editor.CommandBusy());
}

// Lock without a password; the controls follow. Unlock: a wrong password is refused and sends
// nothing, Enter in the box runs the check, the device's own (six blanks) opens it.
TEST_F(UtilityDialogsTest, shouldLockAndUnlockTheDevice) {
  AppHarness& app = Start();
  editor::CtrlWindow& editor = OpenEditor(app, 0);
  auto& lock = OpenDialog<editor::FrmPassword>(app, editor, WindowCommand::LockUnit);
  EXPECT_EQ(lock.LockState().text(), "System Unlock");
  FrameCount before = CountFrames(app, 0);
  lock.Command1(0).click();
  app.Settle();
  EXPECT_EQ(FramesSince(app, 0, before), (std::map<int, int>{{code::kMemoryWrite, 1}}));
  EXPECT_TRUE(app.simulator->Device(0).Locked());
  EXPECT_FALSE(editor.Page().findChild<QLineEdit*>()->isEnabled());

  auto& unlock = OpenDialog<editor::FrmPassword>(app, editor, WindowCommand::LockUnit);
  EXPECT_EQ(unlock.LockState().text(), "System Lock");
  before = CountFrames(app, 0);
  unlock.Text1().setText("abc");
  QTest::keyClick(&unlock.Text1(), Qt::Key_Return);
  unlock.Command1(0).click();
  EXPECT_EQ(CountFrames(app, 0).total, before.total);
  ASSERT_EQ(app.dialogs.shown.size(), 2u);
  for (const Shown& shown : app.dialogs.shown) {
    EXPECT_EQ(shown.title, "Insert Password");
    EXPECT_EQ(shown.text, "Password wrong");
    EXPECT_EQ(shown.icon, DialogIcon::Information);
  }
  unlock.Text1().clear();
  QTest::keyClick(&unlock.Text1(), Qt::Key_Return);
  app.Settle();
  EXPECT_EQ(FramesSince(app, 0, before), (std::map<int, int>{{code::kMemoryWrite, 1}}));
  EXPECT_FALSE(app.simulator->Device(0).Locked());
  EXPECT_TRUE(editor.Page().findChild<QLineEdit*>()->isEnabled());
  EXPECT_TRUE(editor.Command2(2).isEnabled());
}

// A bad new password sends nothing, whichever box Enter is pressed in; a good one is written
// in six commands and opens the lock from then on.
TEST_F(UtilityDialogsTest, shouldCheckAndSetANewPassword) {
  struct Case {
    const char* password;
    const char* repeated;
    const char* text;
  };
  const Case refused[] = {
      {"abcde", "abcde", "Value password wrong"},
      {"abc#ef", "abc#ef", "Value password wrong"},
      {"", "", "Value password wrong"},
      {"abcdef", "abcdeg", "Passwords don't match "},
  };
  AppHarness& app = Start();
  editor::CtrlWindow& editor = OpenEditor(app, 0);
  auto& dialog = OpenDialog<editor::FrmPassword>(app, editor, WindowCommand::Password);
  const FrameCount before = CountFrames(app, 0);
  for (const Case& c : refused) {
    for (QLineEdit* box : {&dialog.Text2(), &dialog.Text3()}) {
      app.dialogs.shown.clear();
      dialog.Text2().setText(c.password);
      dialog.Text3().setText(c.repeated);
      QTest::keyClick(box, Qt::Key_Enter);
      ASSERT_EQ(app.dialogs.shown.size(), 1u) << c.password;
      EXPECT_EQ(app.dialogs.shown[0].title, "New Password");
      EXPECT_EQ(app.dialogs.shown[0].text, c.text);
    }
  }
  EXPECT_EQ(CountFrames(app, 0).total, before.total);
  dialog.Text2().setText("Ab 3z9");
  dialog.Text3().setText("Ab 3z9");
  dialog.Command1(1).click();
  app.Settle();
  EXPECT_EQ(FramesSince(app, 0, before), (std::map<int, int>{{code::kMemoryWrite, 6}}));
  const sim::Memory& memory = app.simulator->Device(0).DeviceMemory();
  EXPECT_EQ(std::vector<int>(memory.begin() + mem::kPassword, memory.begin() + mem::kPassword + 6),
            (std::vector<int>{11, 14, 0, 4, 62, 10}));

  Trigger(app, editor, WindowCommand::LockUnit);
  editor.findChild<editor::FrmPassword*>()->Command1(0).click();
  app.Settle();
  auto& unlock = OpenDialog<editor::FrmPassword>(app, editor, WindowCommand::LockUnit);
  unlock.Text1().setText("Ab 3z9");
  unlock.Command1(0).click();
  app.Settle();
  EXPECT_FALSE(app.simulator->Device(0).Locked());
}

// The box opens on the device's name; storing sends its sixteen characters and the device
// list's row shows it.
TEST_F(UtilityDialogsTest, shouldNameTheDevice) {
  AppHarness& app = Start("sim:0,4", [](sim::SimLine& line) { NameDevice(line, 4, "Main L"); });
  editor::CtrlWindow& editor = OpenEditor(app, 4);
  auto& name = OpenDialog<editor::FrmNameDevice>(app, editor, WindowCommand::EditDeviceName);
  EXPECT_EQ(name.NameBox().text(), "Main L");
  EXPECT_EQ(name.NameBox().maxLength(), 16);
  const FrameCount before = CountFrames(app, 4);
  name.NameBox().setText("FOH Left");
  name.Command1(0).click();
  app.Settle();
  EXPECT_EQ(FramesSince(app, 4, before), (std::map<int, int>{{code::kMemoryWrite, 16}}));
  const sim::Memory& memory = app.simulator->Device(4).DeviceMemory();
  EXPECT_EQ(std::string(memory.begin() + mem::kDeviceName, memory.begin() + mem::kDeviceName + 16),
            "FOH Left        ");
  EXPECT_TRUE(app.window->DeviceList()->RowTexts().contains("FOH Left          ID:4"));
  EXPECT_FALSE(editor.CommandBusy());
}

}  // namespace
}  // namespace talvex::testing
