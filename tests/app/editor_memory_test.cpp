// The editor's memory of its settings in the whole program on a simulated line: undo and redo
// of each kind of step through the Edit menu and its keys, the A/B compare, the save state and
// the close questions.
#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>
#include <QStatusBar>
#include <QTest>

#include "editor/dialogs/copy_dialog.h"
#include "editor/dialogs/eq_import_dialog.h"
#include "editor/dialogs/frm_read.h"
#include "editor/dialogs/frm_sys_type.h"
#include "editor/editor_menus.h"
#include "editor/widgets/status_line.h"
#include "params/image_decode.h"
#include "params/param_edit.h"
#include "presets/preset_file.h"
#include "presets/settings_switch.h"
#include "protocol/memory_map.h"
#include "toolbar_harness.h"

namespace talvex::testing {
namespace {

using app::SearchMode;
using editor::Answer;
using editor::EditorAction;
using params::ParamKind;
namespace code = protocol::code;
namespace mem = protocol::memory;

std::string Shown(const QAction& action) {
  return action.text().remove('&').toStdString();
}

class EditorMemoryTest : public ::testing::Test {
 protected:
  AppHarness& Start(const std::string& port = "sim:0",
                    std::function<void(sim::SimLine&)> prepare = {}) {
    app_ = std::make_unique<AppHarness>(port, std::move(prepare));
    app_->window->show();
    app_->Start(Choice(SearchMode::AllIds));
    return *app_;
  }
  std::string PathOf(const char* name) const { return (app_->Folder() / name).string(); }

  void Do(editor::CtrlWindow& editor, EditorAction action) {
    editor.Menus().Action(action).trigger();
    app_->Settle();
  }

  // The device's live image, type and mutes against the editor's settings `setting`.
  ::testing::AssertionResult DeviceHolds(int id, const params::DeviceParams& setting) {
    const sim::SimDevice& device = app_->simulator->Device(id);
    if (PresetBytes(device.LiveImage()) != PresetBytes(setting.image))
      return ::testing::AssertionFailure() << "the live image differs";
    if (device.SystemType() != setting.image[params::kSystemTypeByte])
      return ::testing::AssertionFailure() << "the system type differs";
    for (int ch = 0; ch < params::kChannelCount; ++ch)
      if (device.State().mute[static_cast<std::size_t>(ch)] != (setting.values.Mute(ch) ? 1 : 0))
        return ::testing::AssertionFailure() << "the mute of channel " << ch << " differs";
    return ::testing::AssertionSuccess();
  }

  int EditFrames(const FrameCount& before) const {
    int frames = 0;
    for (const auto& [frameCode, count] : FramesSince(*app_, 0, before))
      if (frameCode != code::kMeterPoll) frames += count;
    return frames;
  }

  const params::DeviceParams& Stores(int id = 0) { return app_->Session().Device(id).params; }

  // The keys as a user presses them with the focus in the editor (its channel tabs).
  void Press(editor::CtrlWindow& editor, Qt::Key key, Qt::KeyboardModifiers modifiers) {
    QApplication::setActiveWindow(app_->window.get());
    editor.Tabs().setFocus();
    QTest::keyClick(QApplication::focusWidget(), key, modifiers);
    app_->Settle();
  }

  std::unique_ptr<AppHarness> app_;
};

// A user takes back three edits (a typed value, a slider dragged from press to release, a check
// box) with Ctrl+Z and redoes one with Ctrl+Shift+Z: each undo sends exactly the commands of the
// parameters the step changed, with their old values, and the menu names each change.
TEST_F(EditorMemoryTest, shouldTakeBackThreeEditsAndRedoOne) {
  AppHarness& app = Start();
  editor::CtrlWindow& editor = OpenEditor(app, 0);
  QAction& undo = editor.Menus().Action(EditorAction::Undo);
  EXPECT_EQ(Shown(undo), "Undo");
  EXPECT_FALSE(undo.isEnabled());
  std::vector<params::DeviceParams> settings{Stores()};

  editor.Model().Commit({ParamKind::EqGain, 4, params::GlobalBand(4, 1)}, "-6");
  app.Settle();
  settings.push_back(Stores());
  EXPECT_EQ(Shown(undo), "Undo Out 3 EQ 2 gain");

  QSlider* level = nullptr;
  for (QSlider* slider : editor.findChildren<QSlider*>())
    if (slider->accessibleName() == "In A Level [dB] slider") level = slider;
  ASSERT_NE(level, nullptr);
  level->setSliderDown(true);  // pressed
  for (int position = 140; position >= 100; position -= 5)
    level->setValue(position);
  level->setSliderDown(false);  // released
  app.Settle();
  settings.push_back(Stores());
  EXPECT_EQ(editor.Memory().History().UndoCount(), 2u);
  EXPECT_EQ(Shown(undo), "Undo In A level");

  editor.Model().Choose({ParamKind::Polarity, 5, 0}, 1);
  app.Settle();
  settings.push_back(Stores());
  ASSERT_TRUE(DeviceHolds(0, settings.back()));

  // Each undo: the step's command alone (the drag's level once), the device as before it.
  const std::uint8_t undoneCode[] = {code::kPolarity, code::kChannelLevel, code::kEqBand};
  for (int step = 0; step < 3; ++step) {
    const FrameCount before = CountFrames(app, 0);
    Press(editor, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(FramesSince(app, 0, before), (std::map<int, int>{{undoneCode[step], 1}})) << step;
    EXPECT_TRUE(DeviceHolds(0, settings[2 - static_cast<std::size_t>(step)])) << step;
  }
  EXPECT_FALSE(undo.isEnabled());
  EXPECT_EQ(Shown(editor.Menus().Action(EditorAction::Redo)), "Redo Out 3 EQ 2 gain");
  Press(editor, Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_TRUE(DeviceHolds(0, settings[1]));
  EXPECT_EQ(editor.Model().Show({ParamKind::EqGain, 4, params::GlobalBand(4, 1)}).text, "-6");
  EXPECT_EQ(Shown(editor.Menus().Action(EditorAction::Redo)), "Redo In A level");
  EXPECT_EQ(editor.Status().Message().text().toStdString(), "Redo Out 3 EQ 2 gain");
}

struct WholeStep {
  const char* name;  // in the Edit menu
  std::function<void(AppHarness&, editor::CtrlWindow&)> make;
  std::function<void(AppHarness&, editor::CtrlWindow&)> prepare = {};  // steps before it
};

// Every step that replaces the whole setting is one step; undoing it sends only the commands of
// the transfer that differ (command 21 and the whole setting across a type change) and leaves
// the device as it was before the step.
TEST_F(EditorMemoryTest, shouldUndoEachWholeSettingStepThroughTheTransfer) {
  const WholeStep steps[] = {
      {"Load Preset from PC",
       [this](AppHarness& app, editor::CtrlWindow& editor) {
         ASSERT_EQ(presets::WritePresetFile(PathOf("show.tvx"), MovedPreset().image), "");
         app.dialogs.file = PathOf("show.tvx");
         Trigger(app, editor, WindowCommand::LoadPresetFromPc);
       }},
      {"Read Preset from device",
       [](AppHarness& app, editor::CtrlWindow& editor) {
         auto& read = OpenDialog<editor::FrmRead>(app, editor, WindowCommand::ReadPreset);
         read.List1().setCurrentRow(2);
         read.Command1(1).click();
         app.Settle();
       }},
      {"Output Copy",
       [](AppHarness& app, editor::CtrlWindow& editor) {
         auto& copy = OpenDialog<editor::CopyDialog>(app, editor, WindowCommand::OutputCopy);
         copy.Combo1(0).setCurrentIndex(1);
         copy.Combo1(1).setCurrentIndex(4);
         copy.Command1(0).click();
         app.Settle();
       }},
      {"A/B switch to A",
       [this](AppHarness&, editor::CtrlWindow& editor) { Do(editor, EditorAction::SwitchSide); },
       [this](AppHarness& app, editor::CtrlWindow& editor) {
         Do(editor, EditorAction::SwitchSide);
         editor.Model().Commit({ParamKind::Delay, 6, 0}, "3");
         editor.Model().Commit({ParamKind::EqGain, 7, params::GlobalBand(7, 6)}, "12");
         app.Settle();
       }},
      {"System Setup",
       [](AppHarness& app, editor::CtrlWindow& editor) {
         auto& setup = OpenDialog<editor::FrmSysType>(app, editor, WindowCommand::SystemSetup);
         setup.Option1(1).setChecked(true);
         setup.Command1(0).click();
         app.Settle();
       }},
  };
  for (const WholeStep& step : steps) {
    AppHarness& app = Start("sim:0", [](sim::SimLine& line) {
      sim::Memory& memory = line.Device(0).DeviceMemory();
      memory[mem::kUsedMarks + 2] = mem::kUsedMark;
      std::copy_n(MovedPreset().image.begin(), params::kPresetSize,
                  memory.begin() + mem::SlotDataAddress(2));
      line.Device(0).LiveImage()[params::EqBandStart[20] + 2] = 44;  // a band the others lack
    });
    editor::CtrlWindow& editor = OpenEditor(app, 0);
    if (step.prepare) step.prepare(app, editor);
    const params::DeviceParams before = Stores();
    step.make(app, editor);
    const params::DeviceParams after = Stores();
    ASSERT_TRUE(DeviceHolds(0, after)) << step.name;
    ASSERT_EQ(Shown(editor.Menus().Action(EditorAction::Undo)), std::string("Undo ") + step.name);

    const presets::SettingsSwitch plan = presets::PlanSettingsSwitch(after, before);
    const FrameCount sent = CountFrames(app, 0);
    Do(editor, EditorAction::Undo);
    EXPECT_EQ(EditFrames(sent), static_cast<int>(plan.Size())) << step.name;
    EXPECT_TRUE(DeviceHolds(0, before)) << step.name;
    EXPECT_TRUE(presets::SameSettings(Stores(), before)) << step.name;
    EXPECT_FALSE(editor.CommandBusy()) << step.name;

    Do(editor, EditorAction::Redo);
    EXPECT_TRUE(DeviceHolds(0, after)) << step.name;
  }
}

// An import onto Out 1 is one step too, and comes back band by band through the transfer.
TEST_F(EditorMemoryTest, shouldUndoAnEqualiserImport) {
  AppHarness& app = Start();
  editor::CtrlWindow& editor = OpenEditor(app, 0);
  editor.SelectChannel(2);
  const params::DeviceParams before = Stores();
  std::ofstream(PathOf("room.txt")) << "Filter  1: ON  PK  Fc 45,80 Hz  Gain 3,00 dB  Q 1,000\n";
  app.dialogs.file = PathOf("room.txt");
  Do(editor, EditorAction::ImportEq);
  auto* report = editor.findChild<editor::EqImportDialog*>();
  ASSERT_NE(report, nullptr);
  report->SendButton().click();
  app.Settle();
  EXPECT_EQ(Shown(editor.Menus().Action(EditorAction::Undo)), "Undo Import equaliser onto Out 1");
  const FrameCount sent = CountFrames(app, 0);
  Do(editor, EditorAction::Undo);
  EXPECT_EQ(FramesSince(app, 0, sent), (std::map<int, int>{{code::kEqBand, 1}}));
  EXPECT_TRUE(DeviceHolds(0, before));
}

// One band changed between A and B: the switch sends that band's command alone, and the status
// bars say how long the line took.
TEST_F(EditorMemoryTest, shouldSwitchAAndBWithOnlyTheDifferingParameters) {
  AppHarness& app = Start();
  editor::CtrlWindow& editor = OpenEditor(app, 0);
  EXPECT_EQ(editor.Status().Side().text(), "A/B: A (B not set)");
  EXPECT_EQ(Shown(editor.Menus().Action(EditorAction::SwitchSide)), "Switch to B");
  const params::DeviceParams a = Stores();
  Do(editor, EditorAction::CopyAToB);
  EXPECT_EQ(editor.Status().Message().text(), "B is now a copy of A");
  Press(editor, Qt::Key_B, Qt::ControlModifier);
  EXPECT_EQ(editor.Status().Side().text(), "A/B: B");
  editor.Model().Commit({ParamKind::EqFrequency, 6, params::GlobalBand(6, 2)}, "2500");
  app.Settle();
  const params::DeviceParams b = Stores();

  for (const auto& [side, setting] : {std::pair{"A", &a}, std::pair{"B", &b}}) {
    const FrameCount before = CountFrames(app, 0);
    Do(editor, EditorAction::SwitchSide);
    EXPECT_EQ(FramesSince(app, 0, before), (std::map<int, int>{{code::kEqBand, 1}})) << side;
    EXPECT_TRUE(DeviceHolds(0, *setting)) << side;
    const std::string said = editor.Status().Message().text().toStdString();
    EXPECT_EQ(said.rfind(std::string("Switched to ") + side + ": 1 command in ", 0), 0u) << said;
    EXPECT_EQ(app.window->statusBar()->currentMessage().toStdString(), said);
  }
}

// Disconnecting the device clears its editor's history with a word in the status bar.
TEST_F(EditorMemoryTest, shouldClearTheHistoryWithAWordWhenTheDeviceGoes) {
  AppHarness& app = Start();
  editor::CtrlWindow& editor = OpenEditor(app, 0);
  editor.Model().Commit({ParamKind::Level, 2, 0}, "-2");
  app.dialogs.WillAnswer({Answer::Yes});
  Trigger(app, editor, WindowCommand::Disconnect);
  EXPECT_EQ(app.window->Editor(0), nullptr);
  EXPECT_EQ(app.window->statusBar()->currentMessage(),
            "ID:0: undo history cleared, the device was disconnected");
}

// The status line tells whether the settings differ from the last file and the last slot; an
// editor closed with settings kept nowhere asks ours after the system's question: Cancel keeps
// it, Yes saves a file first, No closes. Leaving the program asks the same after "Exit".
TEST_F(EditorMemoryTest, shouldAskBeforeLeavingSettingsKeptNowhere) {
  struct Case {
    const char* why;
    Answer ours;
    bool closes;
    bool fileWritten;
  };
  const Case cases[] = {
      {"cancel", Answer::Cancel, false, false},
      {"save", Answer::Yes, true, true},
      {"do not save", Answer::No, true, false},
  };
  for (const Case& c : cases) {
    AppHarness& app = Start();
    editor::CtrlWindow& editor = OpenEditor(app, 0);
    EXPECT_EQ(editor.Status().File().text(), "File: none");
    EXPECT_EQ(editor.Status().Slot().text(), "Slot: none");
    editor.Model().Commit({ParamKind::Level, 2, 0}, "-2");
    app.Settle();
    const std::string path = PathOf("kept.tvx");
    app.dialogs.file = path;
    app.dialogs.shown.clear();
    app.dialogs.WillAnswer({Answer::Yes, c.ours});
    auto* sub = qobject_cast<QMdiSubWindow*>(editor.parentWidget());
    sub->close();
    app.Settle();
    ASSERT_EQ(app.dialogs.shown.size(), 2u) << c.why;
    EXPECT_EQ(app.dialogs.shown[0].title, "ID:0 - Close window");
    EXPECT_EQ(app.dialogs.shown[0].text, "               Are you sure ? ");
    EXPECT_EQ(app.dialogs.shown[1].kind, "three-way question");
    EXPECT_EQ(app.dialogs.shown[1].title, "ID:0 - Close window");
    EXPECT_EQ(app.dialogs.shown[1].text,
              "ID:0: these settings are kept neither in a preset file nor in a device slot "
              "(File: none; Slot: none). Save them to a preset file before closing?");
    EXPECT_EQ(app.window->Editor(0) == nullptr, c.closes) << c.why;
    EXPECT_EQ(std::filesystem::exists(path), c.fileWritten) << c.why;
  }

  // Saved: the system's question alone. Changed again: the program's exit asks ours after it.
  AppHarness& app = Start();
  editor::CtrlWindow& editor = OpenEditor(app, 0);
  editor.Model().Commit({ParamKind::Level, 2, 0}, "-2");
  app.dialogs.file = PathOf("show.tvx");
  Trigger(app, editor, WindowCommand::SavePresetToPc);
  EXPECT_EQ(editor.Status().File().text(), "File: show.tvx, unchanged since saved");
  editor.Model().Commit({ParamKind::Level, 2, 0}, "-3");
  app.Settle();
  EXPECT_EQ(editor.Status().File().text(), "File: show.tvx, changed since saved");
  app.dialogs.shown.clear();
  app.dialogs.WillAnswer({Answer::Yes, Answer::Cancel});
  app.window->close();
  app.Settle();
  ASSERT_EQ(app.dialogs.shown.size(), 2u);
  EXPECT_EQ(app.dialogs.shown[0].title, "Exit");
  EXPECT_EQ(app.dialogs.shown[1].title, "Exit");
  EXPECT_EQ(app.dialogs.shown[1].text,
            "ID:0: these settings are kept neither in a preset file nor in a device slot (File: "
            "show.tvx, changed since saved; Slot: none). Save them to a preset file before "
            "leaving?");
  EXPECT_TRUE(app.quits->isEmpty());
  editor.Model().Commit({ParamKind::Level, 2, 0}, "-2");  // as saved
  app.dialogs.shown.clear();
  app.window->close();
  app.Settle();
  EXPECT_EQ(app.dialogs.shown.size(), 1u);
}

}  // namespace
}  // namespace talvex::testing
