#include "editor/model/device_editor.h"

#include <gtest/gtest.h>

#include <cmath>

#include "recording_link.h"

namespace talvex::editor {
namespace {

using params::DecimalMark;

struct KeyCase {
  int key;
  DecimalMark mark;
  bool suppressed;
  KeyOutcome outcome;
};

TEST(EntryKeysTest, shouldFilterEveryKeyOfAnEntryBox) {
  const KeyCase cases[] = {
      {',', DecimalMark::Point, false, {KeyAction::Replace, '.'}},
      {'.', DecimalMark::Point, false, {KeyAction::Replace, '.'}},
      {'.', DecimalMark::Comma, false, {KeyAction::Replace, ','}},
      {',', DecimalMark::Comma, false, {KeyAction::Replace, ','}},
      {'7', DecimalMark::Point, false, {KeyAction::Pass}},
      {'-', DecimalMark::Point, false, {KeyAction::Pass}},
      {'+', DecimalMark::Point, false, {KeyAction::Pass}},
      {kKeyBackspace, DecimalMark::Point, false, {KeyAction::Pass}},
      {kKeyPaste, DecimalMark::Point, false, {KeyAction::Pass}},
      {kKeyUndo, DecimalMark::Comma, false, {KeyAction::Pass}},
      {kKeyEnter, DecimalMark::Point, false, {KeyAction::Commit}},
      {'a', DecimalMark::Point, false, {KeyAction::Refuse, '?'}},
      {' ', DecimalMark::Point, false, {KeyAction::Refuse, '?'}},
      {1, DecimalMark::Point, false, {KeyAction::Refuse, '?'}},  // Ctrl+A is no editing key
      {'7', DecimalMark::Point, true, {KeyAction::Ignore}},
      {'a', DecimalMark::Comma, true, {KeyAction::Ignore}},
      {kKeyEnter, DecimalMark::Point, true, {KeyAction::Ignore}},
  };
  for (const KeyCase& c : cases)
    EXPECT_EQ(FilterKey(c.key, c.mark, c.suppressed), c.outcome) << c.key;
}

class DeviceEditorTest : public ::testing::Test {
 protected:
  DeviceEditor& Editor(DecimalMark mark = DecimalMark::Point) {
    editor_ = std::make_unique<DeviceEditor>(4, device_, mark, link_);
    editor_->Load();
    return *editor_;
  }

  params::DeviceParams device_ = params::DeviceParams::FromDefault(1);
  RecordingLink link_;
  std::unique_ptr<DeviceEditor> editor_;
};

struct CommitCase {
  ParamRef ref;
  const char* typed;
  const char* shown;  // the box's text afterwards
  int position;       // the slider's
  const char* frame;
};

// Typed values are clamped and snapped (exactly halfway goes down), the box is rewritten, the
// slider follows, and one command goes out.
TEST_F(DeviceEditorTest, shouldClampSnapRewriteAndSendOnce) {
  const CommitCase cases[] = {
      {{ParamKind::Level, 2, 0}, "100", "6", 0, "F0 81 04 01 02 00 00 00 00 00 00 B4 F7"},
      {{ParamKind::Level, 3, 0}, "-100", "-12", 180, "F0 81 04 01 03 00 00 00 00 00 00 00 F7"},
      {{ParamKind::Level, 0, 0}, "0.27", "0.3", 147, "F0 81 04 01 00 00 00 00 00 00 00 99 F7"},
      {{ParamKind::Level, 1, 0}, "0.25", "0.2", 148, "F0 81 04 01 01 00 00 00 00 00 00 98 F7"},
      {{ParamKind::EqGain, 2, 10}, "0.26", "0.5", 29, "F0 81 04 05 02 00 00 00 00 88 09 1F F7"},
      {{ParamKind::Threshold, 2, 0}, "20", "20", 0, "F0 81 04 07 02 00 00 00 00 13 04 96 F7"},
      {{ParamKind::Threshold, 2, 0}, "-10", "-10", 150, "F0 81 04 07 02 00 00 00 00 13 04 00 F7"},
      {{ParamKind::EqFrequency, 0, 0},
       "1015",
       "1000",
       136,
       "F0 81 04 05 00 00 00 00 00 88 09 1E F7"},
      {{ParamKind::HighPassFrequency, 4, 0},
       "10",
       "20",
       0,
       "F0 81 04 04 04 00 00 00 00 00 00 00 F7"},
      {{ParamKind::Attack, 5, 0}, "33.4", "33", 33, "F0 81 04 07 05 00 00 00 00 21 04 96 F7"},
      {{ParamKind::Temperature, 0, 0}, "60", "50", 70, "F0 81 04 02 00 00 00 00 00 00 00 00 F7"},
  };
  for (const CommitCase& c : cases) {
    device_ = params::DeviceParams::FromDefault(1);
    link_.frames.clear();
    DeviceEditor& editor = Editor();
    const EditOutcome outcome = editor.Commit(c.ref, c.typed);
    ASSERT_TRUE(outcome.Applied()) << c.typed;
    EXPECT_EQ(outcome.shown, c.shown) << c.typed;
    EXPECT_EQ(outcome.position, c.position) << c.typed;
    ASSERT_FALSE(link_.frames.empty());
    EXPECT_EQ(link_.frames.front(), c.frame) << c.typed;
    EXPECT_EQ(link_.frames.size(), c.ref.kind == ParamKind::Temperature ? 8u : 1u);
    EXPECT_EQ(editor.Show(c.ref).text, c.shown) << c.typed;
  }
}

// A refused key leaves "?" in the box; Enter then shows the box's message and sends nothing.
TEST_F(DeviceEditorTest, shouldShowTheBoxMessageForTextThatIsNoNumber) {
  const std::pair<ParamRef, const char*> cases[] = {
      {{ParamKind::Level, 0, 0}, "  Incorrect value"},
      {{ParamKind::Delay, 2, 0}, "  Incorrect value"},
      {{ParamKind::EqFrequency, 0, 1}, "  Incorrect frequency value"},
      {{ParamKind::EqQ, 0, 1}, "  Incorrect Q value"},
      {{ParamKind::LowPassFrequency, 2, 0}, "  Incorrect f value"},
      {{ParamKind::Temperature, 0, 0}, "  Incorrect value"},
  };
  DeviceEditor& editor = Editor();
  for (const auto& [ref, message] : cases) {
    EXPECT_EQ(BoxMessage(ref), message);
    const EditOutcome outcome = editor.Commit(ref, "12?");
    EXPECT_EQ(outcome.message, message);
    EXPECT_FALSE(outcome.Applied());
  }
  EXPECT_TRUE(link_.frames.empty());
}

TEST_F(DeviceEditorTest, shouldSendNothingWhenItOpens) {
  device_.image[params::EqBandStart[12] + 2] = 50;
  Editor();
  EXPECT_TRUE(link_.frames.empty());
  EXPECT_NE(editor_->Tables().ChannelMagnitude(2).AtHz(988), 0.0f);
  EXPECT_EQ(editor_->Show({ParamKind::EqGain, 2, 12}).text, "10");
}

TEST_F(DeviceEditorTest, shouldSendOncePerMemberOfALinkGroup) {
  DeviceEditor& editor = Editor();
  editor.Choose({ParamKind::OutputLink, 0, 0}, 1);
  link_.frames.clear();
  const EditOutcome outcome = editor.Move({ParamKind::EqGain, 6, params::GlobalBand(6, 3)}, 10);
  ASSERT_EQ(link_.frames.size(), 2u);
  EXPECT_EQ(link_.frames[0], "F0 81 04 05 06 03 00 00 00 88 09 32 F7");
  EXPECT_EQ(link_.frames[1], "F0 81 04 05 07 03 00 00 00 88 09 32 F7");
  EXPECT_EQ(outcome.changed.size(), 2u);
  // both curves follow
  EXPECT_FLOAT_EQ(editor.Tables().ChannelMagnitude(7).AtHz(988),
                  editor.Tables().ChannelMagnitude(6).AtHz(988));
}

TEST_F(DeviceEditorTest, shouldStepUpDownsWithinTheirRange) {
  DeviceEditor& editor = Editor();
  const ParamRef delay{ParamKind::Delay, 3, 0};
  editor.Step({delay, ControlRole::UpDown}, 2);
  editor.Step({delay, ControlRole::FineUpDown}, -1);
  EXPECT_EQ(editor.Show(delay).position, 95);
  const ParamRef frequency{ParamKind::EqFrequency, 0, 0};
  editor.Move(frequency, 239);
  editor.Step({frequency, ControlRole::UpDown}, 5);
  EXPECT_EQ(editor.Show(frequency).text, "20000");
  link_.frames.clear();
  EXPECT_FALSE(editor.Step({frequency, ControlRole::UpDown}, 1).Applied());
  EXPECT_TRUE(link_.frames.empty());
}

TEST_F(DeviceEditorTest, shouldRefuseEveryEditWhileLocked) {
  DeviceEditor& editor = Editor();
  editor.SetEditorLock(true);
  EXPECT_FALSE(editor.Commit({ParamKind::Level, 0, 0}, "3").Applied());
  EXPECT_FALSE(editor.Choose({ParamKind::Mute, 0, 0}, 1).Applied());
  editor.SetEditorLock(false);
  device_.image[params::kLockByte] = 1;  // the device's system lock
  EXPECT_TRUE(editor.EditorLock());
  EXPECT_FALSE(editor.Move({ParamKind::Level, 0, 0}, 3).Applied());
  EXPECT_TRUE(link_.frames.empty());
}

TEST_F(DeviceEditorTest, shouldShowOut1TheViewBoxesAndTheSelectedChannel) {
  DeviceEditor& editor = Editor();
  GraphView view;
  view.viewOut = {false, true, false, false, false};
  editor.SetView(view);
  editor.SelectChannel(1);
  const std::array<bool, 8> expected{false, true, true, false, true, false, false, false};
  EXPECT_EQ(editor.ShownChannels(), expected);
}

// "Out + InputB": an output is drawn after the input that feeds it.
// "Out + InputB": an output as its whole way from its input, both levels in its curve; the
// "Sum" boxes add a sum that follows every edit of a way it holds.
TEST_F(DeviceEditorTest, shouldDrawAnOutputThroughItsInputAndTheSumOfChosenOutputs) {
  DeviceEditor& editor = Editor();
  editor.Commit({ParamKind::EqGain, 1, params::GlobalBand(1, 0)}, "6");  // In B, band 1 (1 kHz)
  editor.Commit({ParamKind::EqGain, 3, params::GlobalBand(3, 0)}, "3");  // Out 2, fed by In B
  editor.Commit({ParamKind::Level, 1, 0}, "-2");
  GraphView view;
  view.outPlusInput = true;
  editor.SetView(view);
  EXPECT_NEAR(editor.Magnitude(3).AtHz(1009),
              editor.Tables().ChannelMagnitude(1).AtHz(1009) +
                  editor.Tables().ChannelMagnitude(3).AtHz(1009) - 2.0f,
              1e-4);
  EXPECT_NEAR(editor.Magnitude(3).AtHz(988), 7.0f, 0.2f);
  EXPECT_FLOAT_EQ(editor.LevelDb(3), 0.0f);
  EXPECT_EQ(&editor.Magnitude(1), &editor.Tables().ChannelMagnitude(1));
  EXPECT_EQ(editor.Sum(), nullptr);

  view.sumOutputs.set(1);  // Out 2 alone: its whole output
  editor.SetView(view);
  ASSERT_NE(editor.Sum(), nullptr);
  EXPECT_NEAR(editor.Sum()->magnitude.AtHz(988), editor.Magnitude(3).AtHz(988), 1e-3);
  view.sumOutputs.set(3);  // and Out 4, fed by In B too, flat: the sum at 988 Hz is 20 log(a + 1)
  editor.SetView(view);
  const double amplitude = std::pow(10.0, editor.Magnitude(3).AtHz(988) / 20.0);
  const double inB = std::pow(10.0, editor.Magnitude(5).AtHz(988) / 20.0);
  EXPECT_NEAR(editor.Sum()->magnitude.AtHz(988), 20 * std::log10(amplitude + inB), 0.05);
  editor.Commit({ParamKind::Level, 5, 0}, "-12");  // the sum follows a level of a way
  EXPECT_NEAR(editor.Sum()->magnitude.AtHz(988),
              20 * std::log10(amplitude + inB * std::pow(10.0, -12 / 20.0)), 0.05);
}

TEST_F(DeviceEditorTest, shouldDrawABypassedEqualiserFlat) {
  DeviceEditor& editor = Editor();
  editor.Commit({ParamKind::EqGain, 0, 2}, "12");
  EXPECT_GT(editor.Tables().ChannelMagnitude(0).AtHz(988), 10.0f);
  editor.Choose({ParamKind::EqBypass, 0, 0}, 1);
  EXPECT_FLOAT_EQ(editor.Tables().ChannelMagnitude(0).AtHz(988), 0.0f);
  EXPECT_EQ(link_.frames.back(), "F0 81 04 1D 01 00 00 00 00 00 00 00 F7");
}

TEST(ControlsTest, shouldNameEveryControlByItsChannelAndCaption) {
  const std::pair<ControlId, const char*> cases[] = {
      {{{ParamKind::Level, 0, 0}, ControlRole::Box}, "In A Level [dB]"},
      {{{ParamKind::Level, 0, 0}, ControlRole::Slider}, "In A Level [dB] slider"},
      {{{ParamKind::EqFrequency, 4, params::GlobalBand(4, 1)}, ControlRole::Box},
       "Out 3 EQ 2 Frequency"},
      {{{ParamKind::HighPassFrequency, 2, 0}, ControlRole::Box},
       "Out 1 X-over high-pass frequency"},
      {{{ParamKind::Mute, 3, 0}, ControlRole::Check}, "Out 2 Mute"},
      {{{ParamKind::OutputSource, 7, 0}, ControlRole::Option, 1}, "Out 6 + InB"},
      {{{ParamKind::Delay, 1, 0}, ControlRole::FineUpDown}, "In B Delay fine steps"},
      {{{ParamKind::Temperature, 0, 0}, ControlRole::Box}, "Temperature ['C]"},
  };
  for (const auto& [control, name] : cases)
    EXPECT_EQ(AccessibleName(control), name);
}

}  // namespace
}  // namespace talvex::editor
