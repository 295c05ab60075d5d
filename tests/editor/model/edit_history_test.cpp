#include "editor/model/edit_history.h"

#include <gtest/gtest.h>

#include "params/image_decode.h"

namespace talvex::editor {
namespace {

using params::ParamKind;

params::DeviceParams WithGain(int band, double db) {
  params::DeviceParams device = params::DeviceParams::FromDefault(0);
  params::Senders(device).EqBand(band, {1000, 9, db});
  return device;
}

const params::ParamRef kGain{ParamKind::EqGain, 4, params::GlobalBand(4, 1)};

int RecordGain(EditHistory& history, double from, double to) {
  return history.RecordEdit(EditOperation::Moved(kGain, 0), {kGain}, WithGain(kGain.band, from),
                            WithGain(kGain.band, to));
}

// One edit is one step; a group (a slider's drag) is one step from its first `before` to its
// last `after`, named by its first edit or by the group; a group's tag joined from elsewhere
// (a device group's drag) merges the same way.
TEST(EditHistoryTest, shouldGroupADragIntoOneStep) {
  EditHistory history;
  RecordGain(history, 0, 1);
  RecordGain(history, 1, 2);
  EXPECT_EQ(history.UndoCount(), 2u);
  EXPECT_EQ(history.UndoText(), "Undo Out 3 EQ 2 gain");

  history.BeginGroup();
  const int tag = RecordGain(history, 2, 3);
  RecordGain(history, 3, 4);
  RecordGain(history, 4, 5);
  history.EndGroup();
  ASSERT_EQ(history.UndoCount(), 3u);
  const HistoryStep& drag = history.NextUndo();
  EXPECT_EQ(drag.tag, tag);
  EXPECT_EQ(drag.edits.size(), 3u);
  EXPECT_EQ(params::BandGainDb(drag.before.image, kGain.band), 2);
  EXPECT_EQ(params::BandGainDb(drag.after.image, kGain.band), 5);

  history.BeginGroup("Out 3 EQ 2");
  RecordGain(history, 5, 6);
  history.EndGroup();
  EXPECT_EQ(history.UndoText(), "Undo Out 3 EQ 2");

  EditHistory other;
  other.JoinGroup(tag, "Out 3 EQ 2 gain");
  RecordGain(other, 2, 3);
  other.EndGroup();
  other.JoinGroup(tag);
  RecordGain(other, 3, 4);
  other.EndGroup();
  EXPECT_EQ(other.UndoCount(), 1u);
  EXPECT_EQ(other.NextUndo().tag, tag);
}

// Undo moves a step to the redo side and redo back; a new step clears what could be redone; a
// cleared history says why until the next step.
TEST(EditHistoryTest, shouldUndoRedoAndClearWithAWord) {
  EditHistory history;
  int told = 0;
  history.OnChanged([&told] { ++told; });
  RecordGain(history, 0, 1);
  RecordGain(history, 1, 2);
  history.RecordSettings("Load Preset from PC", WithGain(0, 0), WithGain(0, 3));
  EXPECT_EQ(history.Undo().name, "Load Preset from PC");
  EXPECT_EQ(history.RedoText(), "Redo Load Preset from PC");
  EXPECT_EQ(params::BandGainDb(history.Undo().before.image, kGain.band), 1);
  EXPECT_EQ(history.Redo().kind, HistoryStep::Kind::Edits);
  EXPECT_EQ(history.RedoCount(), 1u);
  RecordGain(history, 2, 7);
  EXPECT_FALSE(history.CanRedo());
  EXPECT_EQ(told, 7);

  history.Clear("the device was disconnected");
  EXPECT_FALSE(history.CanUndo());
  EXPECT_EQ(history.UndoText(), "Undo (history cleared: the device was disconnected)");
  RecordGain(history, 0, 1);
  EXPECT_EQ(history.UndoText(), "Undo Out 3 EQ 2 gain");
  EXPECT_EQ(history.ClearedBecause(), "");
}

TEST(EditHistoryTest, shouldKeepTheNewestStepsOnly) {
  EditHistory history;
  for (std::size_t i = 0; i < kHistorySteps + 5; ++i)
    RecordGain(history, static_cast<double>(i % 20) - 10, static_cast<double>((i + 1) % 20) - 10);
  EXPECT_EQ(history.UndoCount(), kHistorySteps);
  for (std::size_t i = 0; i < kHistorySteps; ++i)
    history.Undo();
  EXPECT_FALSE(history.CanUndo());
  EXPECT_EQ(params::BandGainDb(history.NextRedo().before.image, kGain.band), -5);
}

TEST(EditHistoryTest, shouldNameEveryKindOfChange) {
  const std::pair<EditOperation, const char*> cases[] = {
      {EditOperation::Moved({ParamKind::Level, 0, 0}, 1), "In A level"},
      {EditOperation::Chosen({ParamKind::Mute, 7, 0}, 1), "Out 6 mute"},
      {EditOperation::Typed({ParamKind::EqFrequency, 2, 12}, "80"), "Out 1 EQ 3 frequency"},
      {EditOperation::Chosen({ParamKind::HighPassType, 5, 0}, 1), "Out 4 high-pass slope"},
      {EditOperation::Moved({ParamKind::Temperature, 0, 0}, 10), "temperature"},
      {EditOperation::Chosen({ParamKind::OutputLink, 0, 0}, 1), "output link"},
      {EditOperation::Flatten(3), "Out 2 flat EQ"},
      {EditOperation::WholeBand(45, {}), "Out 6 EQ 1"},
  };
  for (const auto& [operation, name] : cases)
    EXPECT_EQ(ChangeName(operation), name);
}

}  // namespace
}  // namespace talvex::editor
