#include "editor/model/settings_memory.h"

#include <gtest/gtest.h>

#include <functional>

#include "editor/model/device_groups.h"
#include "presets/system_type.h"
#include "sim_editor_link.h"

namespace talvex::editor {
namespace {

using params::ParamKind;
using params::ParamRef;

// A setting that differs from the factory's in many kinds of parameter; Out 1 band 2 is a bell
// of width 20 and Out 2 band 1 a shelf.
params::DeviceParams ShowSetting() {
  params::DeviceParams device = params::DeviceParams::FromDefault(1);
  params::Senders senders(device);
  senders.EqBand(params::GlobalBand(2, 1), {250, 20, 6});
  senders.EqBand(params::GlobalBand(3, 0), {80, 2, -4.5});
  senders.EqBand(params::GlobalBand(2, 4), {4000, 30, 3});
  senders.Level(4, -4.5);
  senders.Delay(5, {3, 11});
  senders.Crossover(2, 120, 4);
  senders.OutputName(4, "Kick");
  senders.LimiterThreshold(6, 12);
  return device;
}

class SettingsMemoryTest : public ::testing::Test {
 protected:
  static constexpr int kId = 4;

  void Open(const params::DeviceParams& setting) {
    memory_.reset();  // it works on the editor, which goes first
    device_ = setting;
    link_.Push(setting);
    editor_ = std::make_unique<DeviceEditor>(kId, device_, params::DecimalMark::Point, link_);
    editor_->Load();
    memory_ = std::make_unique<SettingsMemory>(*editor_, device_, link_);
    memory_->status = [this](const std::string& text) { told_.push_back(text); };
  }

  // The device holds `setting` in every byte and setting it keeps.
  ::testing::AssertionResult DeviceHolds(const params::DeviceParams& setting) {
    sim::SimDevice& device = link_.Device();
    if (!std::equal(device.LiveImage().begin(), device.LiveImage().end(), setting.image.begin()))
      return ::testing::AssertionFailure() << "the live image differs";
    for (int channel = 0; channel < params::kChannelCount; ++channel)
      if (device.State().mute[static_cast<std::size_t>(channel)] !=
          (setting.values.Mute(channel) != 0 ? 1 : 0))
        return ::testing::AssertionFailure() << "the mute of channel " << channel << " differs";
    if (device.SystemType() != setting.image[params::kSystemTypeByte])
      return ::testing::AssertionFailure() << "the system type differs";
    return ::testing::AssertionSuccess();
  }

  // Each command is one that the whole-preset transfer of `setting` sends: it carries that
  // setting's values and no other.
  static ::testing::AssertionResult AllOldValues(const std::vector<protocol::Command>& commands,
                                                 params::DeviceParams setting) {
    presets::PresetView view;
    const presets::PresetTransfer transfer =
        presets::ApplyPreset(setting, view, presets::TransferFlags::EditorLoad());
    for (const protocol::Command& command : commands) {
      const auto same = [&](const presets::PresetStep& step) {
        return step.edit.command == command;
      };
      if (std::none_of(transfer.steps.begin(), transfer.steps.end(), same))
        return ::testing::AssertionFailure() << "a command of code " << int{command.code}
                                             << " carries a value the setting does not hold";
    }
    return ::testing::AssertionSuccess();
  }

  params::DeviceParams device_;
  SimEditorLink link_{kId};
  std::unique_ptr<DeviceEditor> editor_;
  std::unique_ptr<SettingsMemory> memory_;
  std::vector<std::string> told_;
};

struct UndoCase {
  const char* name;  // of the step
  std::function<void(DeviceEditor&)> edit;
  std::size_t commands;  // that undo (and redo) send
  bool linked = false;   // the output link is on and Out 1 and Out 2 differ before the edit
};

// Undo of every kind of edit sends exactly the old values (each command one that a transfer of
// the setting before sends), one command per parameter it changed, and leaves the device as it
// was; redo brings the edit back the same way.
TEST_F(SettingsMemoryTest, shouldUndoAndRedoEveryKindOfEditWithTheOldValues) {
  const auto band = [](int channel, int k) { return params::GlobalBand(channel, k); };
  const UndoCase cases[] = {
      {"Out 3 level",
       [](DeviceEditor& e) {
         e.Commit({ParamKind::Level, 4, 0}, "2.5");
       },
       1},
      {"Out 4 delay",
       [](DeviceEditor& e) {
         e.Move({ParamKind::Delay, 5, 0}, 480);
       },
       1},
      {"In A mute",
       [](DeviceEditor& e) {
         e.Choose({ParamKind::Mute, 0, 0}, 1);
       },
       1},
      // A bell turned into a shelf gets its own width back, not the factory one.
      {"Out 1 EQ 2 type",
       [&](DeviceEditor& e) {
         e.Choose({ParamKind::EqType, 2, band(2, 1)}, 2);
       },
       1},
      {"Out 1 EQ 5 Q",
       [&](DeviceEditor& e) {
         e.Move({ParamKind::EqQ, 2, band(2, 4)}, 50);
       },
       1},
      {"Out 1 flat EQ", [](DeviceEditor& e) { e.FlattenEq(2); }, 7},
      {"Out 3 name",
       [](DeviceEditor& e) {
         e.Commit({ParamKind::Name, 4, 0}, "Snare");
       },
       1},
      {"temperature",
       [](DeviceEditor& e) {
         e.Move({ParamKind::Temperature, 0, 0}, 10);
       },
       8},
      {"Out 1 high-pass slope",
       [](DeviceEditor& e) {
         e.Choose({ParamKind::HighPassType, 2, 0}, 7);
       },
       1},
      {"input type",
       [](DeviceEditor& e) {
         e.Choose({ParamKind::InputSource, 0, 0}, 1);
       },
       1},
      {"Out 5 limiter threshold",
       [](DeviceEditor& e) {
         e.Commit({ParamKind::Threshold, 6, 0}, "-4");
       },
       1},
      // Linked outputs: each member goes back to its own value, not to the edited one's.
      {"Out 1 EQ 2 gain",
       [&](DeviceEditor& e) {
         e.Commit({ParamKind::EqGain, 2, band(2, 1)}, "-9");
       },
       2, true},
  };
  for (const UndoCase& c : cases) {
    params::DeviceParams setting = ShowSetting();
    if (c.linked) params::Senders(setting).OutputLink(true);
    Open(setting);
    const params::DeviceParams before = device_;
    c.edit(*editor_);
    const params::DeviceParams after = device_;
    ASSERT_EQ(memory_->History().UndoText(), std::string("Undo ") + c.name);

    editor_->SetEditorLock(true);  // a locked editor takes nothing back
    memory_->Undo();
    EXPECT_TRUE(DeviceHolds(after)) << c.name;
    editor_->SetEditorLock(false);
    std::size_t mark = link_.observer.sent.size();
    memory_->Undo();
    const auto undone = link_.SentSince(mark);
    EXPECT_EQ(undone.size(), c.commands) << c.name;
    EXPECT_TRUE(AllOldValues(undone, before)) << c.name;
    EXPECT_TRUE(DeviceHolds(before)) << c.name;
    EXPECT_TRUE(presets::SameSettings(device_, before)) << c.name;
    EXPECT_EQ(memory_->History().RedoText(), std::string("Redo ") + c.name);

    mark = link_.observer.sent.size();
    memory_->Redo();
    const auto redone = link_.SentSince(mark);
    EXPECT_EQ(redone.size(), c.commands) << c.name;
    EXPECT_TRUE(AllOldValues(redone, after)) << c.name;
    EXPECT_TRUE(DeviceHolds(after)) << c.name;
    EXPECT_TRUE(presets::SameSettings(device_, after)) << c.name;
    EXPECT_EQ(told_.back(), std::string("Redo ") + c.name);
  }
}

// The A/B switch sends only what differs, as one job, and says how long the line took; B starts
// as a copy of A; "Copy A to B" while B is shown puts A on the device; a switch is one step.
TEST_F(SettingsMemoryTest, shouldSwitchBetweenTwoSettingsSendingOnlyWhatDiffers) {
  Open(ShowSetting());
  const params::DeviceParams a = device_;
  std::size_t mark = link_.observer.sent.size();
  memory_->SwitchSide();
  EXPECT_EQ(memory_->Side(), kSideB);
  EXPECT_EQ(link_.observer.sent.size(), mark);
  EXPECT_EQ(told_.back(), "Switched to B: nothing differs, nothing sent");

  editor_->Commit({ParamKind::EqGain, 5, params::GlobalBand(5, 3)}, "4.5");
  editor_->Commit({ParamKind::Level, 7, 0}, "-2");
  const params::DeviceParams b = device_;
  mark = link_.observer.sent.size();
  const int jobs = link_.jobs;
  memory_->SwitchSide();
  const auto toA = link_.SentSince(mark);
  EXPECT_EQ(link_.jobs, jobs + 1);
  ASSERT_EQ(toA.size(), 3u);  // the band; the level with the polarity command that carries it
  EXPECT_EQ(toA[0].code, protocol::code::kEqBand);
  EXPECT_TRUE(AllOldValues(toA, a));
  EXPECT_TRUE(DeviceHolds(a));
  EXPECT_EQ(memory_->Side(), kSideA);
  EXPECT_EQ(told_.back().rfind("Switched to A: 3 commands in ", 0), 0u) << told_.back();
  EXPECT_NE(told_.back().find("(a full push sends 155)"), std::string::npos);

  memory_->SwitchSide();
  EXPECT_TRUE(DeviceHolds(b));
  memory_->CopyAToB();  // B shown: the device takes A
  EXPECT_TRUE(DeviceHolds(a));
  EXPECT_EQ(memory_->History().UndoText(), "Undo Copy A to B");
  memory_->Undo();
  EXPECT_TRUE(DeviceHolds(b));
  memory_->Undo();  // the switch back to B
  EXPECT_TRUE(DeviceHolds(a));
  EXPECT_EQ(memory_->Side(), kSideA);
  memory_->SwitchSide();  // B is still what was edited on it
  EXPECT_TRUE(DeviceHolds(b));
  memory_->CopyAToB();
  memory_->SwitchSide();
  memory_->SwitchSide();
  EXPECT_TRUE(DeviceHolds(a));
}

// A whole-setting step of another system type goes back with command 21 and the whole setting.
TEST_F(SettingsMemoryTest, shouldUndoATypeChangeThroughTheTypeAndTheWholeTransfer) {
  Open(ShowSetting());
  const params::DeviceParams before = device_;
  const protocol::Command command = presets::BeginTypeChange(device_, 2);
  ASSERT_EQ(presets::SendSystemType(link_.link, kId, command), presets::TypeSend::Switched);
  presets::PresetState flags;
  presets::ApplyFactoryImage(device_, flags, *editor_);
  memory_->RecordSettingsStep("System Setup", before);
  ASSERT_EQ(link_.Device().SystemType(), 2);

  const std::size_t mark = link_.observer.sent.size();
  memory_->Undo();
  const auto undone = link_.SentSince(mark);
  ASSERT_FALSE(undone.empty());
  EXPECT_EQ(undone.front().code, protocol::code::kSetSystemType);
  EXPECT_EQ(undone.front().p(1), 1);
  EXPECT_TRUE(DeviceHolds(before));
  EXPECT_TRUE(presets::SameSettings(device_, before));
}

// The save state follows the settings: a file saved and a slot read, then an edit, then the
// edit taken back.
TEST_F(SettingsMemoryTest, shouldTellWhetherTheSettingsAreKeptAnywhere) {
  Open(ShowSetting());
  EXPECT_FALSE(memory_->Unsaved());  // as found on the device
  EXPECT_EQ(memory_->FileText(), "File: none");
  editor_->Commit({ParamKind::Level, 2, 0}, "-3");
  EXPECT_TRUE(memory_->Unsaved());
  memory_->FileMarked("show.tvx", true);
  EXPECT_EQ(memory_->FileText(), "File: show.tvx, unchanged since saved");
  EXPECT_FALSE(memory_->Unsaved());
  editor_->Commit({ParamKind::Level, 2, 0}, "-4");
  EXPECT_EQ(memory_->FileText(), "File: show.tvx, changed since saved");
  EXPECT_TRUE(memory_->Unsaved());
  memory_->SlotMarked(3, "Chorus live     ", false);
  EXPECT_EQ(memory_->SlotText(), "Slot: 3 Chorus live, unchanged since read");
  editor_->Choose({ParamKind::Mute, 2, 0}, 1);  // a mute is kept in no file and no slot
  EXPECT_FALSE(memory_->Unsaved());
  editor_->Commit({ParamKind::Level, 2, 0}, "-3");
  EXPECT_EQ(memory_->SlotText(), "Slot: 3 Chorus live, changed since read");
  EXPECT_EQ(memory_->FileText(), "File: show.tvx, unchanged since saved");
  EXPECT_FALSE(memory_->Unsaved());
}

// Two editors in a group: an edit of one reaches the other through its own edit path; a drag
// is one step on both; undo in either takes it back on both; a locked member is named.
TEST(DeviceGroupsTest, shouldSpreadEditsAndUndoAcrossTheGroup) {
  struct Member {
    explicit Member(int id)
        : device(params::DeviceParams::FromDefault(0)),
          link(id),
          editor(id, device, params::DecimalMark::Point, link),
          memory(editor, device, link) {
      editor.Load();
    }
    params::DeviceParams device;
    SimEditorLink link;
    DeviceEditor editor;
    SettingsMemory memory;
  };
  DeviceGroups groups;
  Member a(1), b(2), c(3);
  std::vector<std::string> told;
  a.memory.status = [&told](const std::string& text) { told.push_back(text); };
  const int group = groups.Start(a.memory);
  groups.Join(group, b.memory);
  groups.Join(group, c.memory);
  EXPECT_EQ(groups.Name(group), "Group 1 (ID 1, 2, 3)");

  const ParamRef level{ParamKind::Level, 3, 0};
  a.editor.Commit(level, "-6");
  for (Member* m : {&a, &b, &c})
    EXPECT_EQ(m->editor.Show(level).text, "-6") << m->editor.DeviceId();
  EXPECT_EQ(b.link.Device().LiveImage()[params::ChannelBase[3]],
            a.link.Device().LiveImage()[params::ChannelBase[3]]);

  a.memory.History().BeginGroup();
  for (int position = 100; position <= 140; position += 10)
    a.editor.Move(level, position);
  a.memory.History().EndGroup();
  EXPECT_EQ(b.memory.History().UndoCount(), 2u);
  EXPECT_EQ(b.memory.History().NextUndo().edits.size(), 5u);

  b.memory.Undo();  // the drag, on every member
  for (Member* m : {&a, &b, &c})
    EXPECT_EQ(m->editor.Show(level).text, "-6") << m->editor.DeviceId();
  a.memory.Redo();
  for (Member* m : {&a, &b, &c})
    EXPECT_EQ(m->editor.Show(level).position, 140) << m->editor.DeviceId();

  c.editor.SetEditorLock(true);
  a.editor.Commit(level, "1");
  EXPECT_EQ(told.back(), "Group 1 (ID 1, 2, 3): Out 2 level did not reach ID 3 (locked)");
  EXPECT_EQ(b.editor.Show(level).text, "1");
  groups.Leave(b.memory);
  a.editor.Commit(level, "2");
  EXPECT_EQ(b.editor.Show(level).text, "1");
  EXPECT_EQ(groups.Name(group), "Group 1 (ID 1, 3)");
}

}  // namespace
}  // namespace talvex::editor
