#include "editor/model/graph_handles.h"

#include <gtest/gtest.h>

#include <memory>

#include "recording_link.h"

namespace talvex::editor {
namespace {

constexpr int kOut3 = 4;

class GraphHandlesTest : public ::testing::Test {
 protected:
  GraphHandlesTest() {
    editor_ = std::make_unique<DeviceEditor>(4, device_, params::DecimalMark::Point, link_);
    editor_->Load();
  }

  std::string Shown(ParamKind kind, int channel, int band = 0) {
    return editor_->Show({kind, channel, band}).text;
  }

  GraphHandle HandleOf(int band) {
    for (const GraphHandle& handle : GraphHandles(*editor_))
      if (handle.kind == GraphHandle::Kind::Band && handle.band == band) return handle;
    throw std::runtime_error("no handle");
  }

  params::DeviceParams device_ = params::DeviceParams::FromDefault(1);
  RecordingLink link_;
  std::unique_ptr<DeviceEditor> editor_;
};

// A band's handle stands at its frequency and gain (not lifted by the level), hollow while the
// band is flat; a bypassed equaliser has none; a corner sits on the drawn curve, none for
// "  No cut-off".
TEST_F(GraphHandlesTest, shouldShowAHandleForEachBandAndCorner) {
  editor_->SelectChannel(kOut3);
  const int band = params::GlobalBand(kOut3, 1);
  editor_->Commit({ParamKind::EqFrequency, kOut3, band}, "800");
  editor_->Commit({ParamKind::EqGain, kOut3, band}, "-5");
  editor_->Commit({ParamKind::Level, kOut3, 0}, "-2.5");
  editor_->Commit({ParamKind::HighPassFrequency, kOut3, 0}, "250");
  editor_->Choose({ParamKind::HighPassType, kOut3, 0}, 7);
  std::vector<GraphHandle> handles = GraphHandles(*editor_);
  ASSERT_EQ(handles.size(), 8u);  // 7 bands and the high-pass corner; the low-pass has none
  EXPECT_EQ(handles[1].hz, 800.0);
  EXPECT_EQ(handles[1].db, -5.0);
  EXPECT_FALSE(handles[1].hollow);
  EXPECT_TRUE(handles[0].hollow);
  const GraphHandle& corner = handles.back();
  EXPECT_EQ(corner.kind, GraphHandle::Kind::HighPass);
  EXPECT_EQ(corner.filter, 4);
  EXPECT_EQ(corner.hz, 250.0);
  EXPECT_FLOAT_EQ(corner.db, editor_->Magnitude(kOut3).AtHz(250) - 2.5f);  // on the curve
  EXPECT_NEAR(editor_->Tables().CrossoverMagnitude(5).AtHz(250), -6.02, 0.01);
  EXPECT_EQ(HandleText(*editor_, handles[1]), "Out 3 EQ 2: 800 Hz, Q 0.30, -5 dB");
  EXPECT_EQ(HandleText(*editor_, corner), "Out 3 X-over high-pass: 250 Hz, -24dB/oct Lz");
  editor_->Choose({ParamKind::EqType, kOut3, band}, 2);
  EXPECT_EQ(HandleText(*editor_, GraphHandles(*editor_)[1]),
            "Out 3 EQ 2: 800 Hz, -12 Lo-Sh, -5 dB");

  editor_->Choose({ParamKind::EqBypass, kOut3, 0}, 1);
  handles = GraphHandles(*editor_);
  ASSERT_EQ(handles.size(), 1u);
  EXPECT_EQ(handles[0].kind, GraphHandle::Kind::HighPass);
  editor_->SelectChannel(0);
  EXPECT_EQ(GraphHandles(*editor_).size(), 5u);  // In A: five bands, no corners
}

struct MoveCase {
  double hz, db;
  DragKeys keys;
  const char* frequency;  // the boxes afterwards
  const char* gain;
  const char* frame;  // the command sent, or nullptr for none
};

// Every position of a drag is snapped to FrequencyTable and the 0.5 dB grid and sent as one
// band command; a position that snaps to what the device holds sends nothing; Shift keeps the
// frequency and Ctrl the gain the band had when the drag began. The drag is one gesture.
TEST_F(GraphHandlesTest, shouldSendEachSnappedPositionOfADragAsOneBandCommand) {
  editor_->SelectChannel(kOut3);
  const int band = params::GlobalBand(kOut3, 2);
  const MoveCase moves[] = {
      {2010.0, 6.1, {}, "2000", "6", "F0 81 04 05 04 02 00 00 00 A0 09 2A F7"},
      {2020.0, 6.2, {}, "2000", "6", nullptr},
      {505.0, -4.6, {}, "500", "-4.5", "F0 81 04 05 04 02 00 00 00 70 09 15 F7"},
      {3000.0, 9.0, {true, false}, "1000", "9", "F0 81 04 05 04 02 00 00 00 88 09 30 F7"},
      {100.0, 2.0, {false, true}, "100", "0", "F0 81 04 05 04 02 00 00 00 38 09 1E F7"},
      {5.0, 40.0, {}, "20", "15", "F0 81 04 05 04 02 00 00 00 00 09 3C F7"},
  };
  {
    HandleDrag drag(*editor_, HandleOf(band));
    EXPECT_EQ(editor_->Gesture(), drag.Gesture());
    for (const MoveCase& move : moves) {
      const std::size_t before = link_.frames.size();
      const EditOutcome outcome = drag.MoveTo(move.hz, move.db, move.keys);
      EXPECT_EQ(Shown(ParamKind::EqFrequency, kOut3, band), move.frequency) << move.hz;
      EXPECT_EQ(Shown(ParamKind::EqGain, kOut3, band), move.gain) << move.hz;
      if (!move.frame) {
        EXPECT_EQ(link_.frames.size(), before) << move.hz;
        continue;
      }
      ASSERT_EQ(link_.frames.size(), before + 1) << move.hz;
      EXPECT_EQ(link_.frames.back(), move.frame) << move.hz;
      EXPECT_EQ(outcome.gesture, drag.Gesture());
    }
  }
  EXPECT_EQ(editor_->Gesture(), 0);
  // The drag is one step of the history, however many positions it sent.
  EXPECT_EQ(editor_->History().UndoCount(), 1u);
  EXPECT_EQ(editor_->History().UndoText(), "Undo Out 3 EQ 3");
  EXPECT_EQ(editor_->Commit({ParamKind::EqGain, kOut3, band}, "1").gesture, 0);
  EXPECT_EQ(editor_->History().UndoCount(), 2u);
  HandleDrag second(*editor_, HandleOf(band));
  EXPECT_GT(second.Gesture(), 1);
}

TEST_F(GraphHandlesTest, shouldMoveACornerAcrossAndTheLinkedOutputWithIt) {
  editor_->Choose({ParamKind::OutputLink, 0, 0}, 1);  // Out 3 goes with Out 4
  editor_->SelectChannel(kOut3);
  editor_->Choose({ParamKind::LowPassType, kOut3, 0}, 6);
  const std::size_t before = link_.frames.size();
  GraphHandle corner = GraphHandles(*editor_).back();
  ASSERT_EQ(corner.kind, GraphHandle::Kind::LowPass);
  HandleDrag drag(*editor_, corner);
  drag.MoveTo(2010.0, -20.0);
  ASSERT_EQ(link_.frames.size(), before + 2);  // Out 3 and Out 4
  EXPECT_EQ(link_.frames[before], "F0 81 04 04 04 01 00 00 00 00 A0 06 F7");
  EXPECT_EQ(link_.frames[before + 1], "F0 81 04 04 05 01 00 00 00 00 A0 06 F7");
  EXPECT_EQ(Shown(ParamKind::LowPassFrequency, kOut3), "2000");
  EXPECT_EQ(Shown(ParamKind::LowPassFrequency, kOut3 + 1), "2000");
  drag.MoveTo(2010.0, 10.0, {true, false});  // Shift keeps the corner where it began
  EXPECT_EQ(Shown(ParamKind::LowPassFrequency, kOut3), "20000");
}

// The wheel steps a bell's Q through QTextTable and stops at its ends; a shelf takes none; a
// locked editor takes nothing from the graph.
TEST_F(GraphHandlesTest, shouldStepTheQWithTheWheelWithinTheBellWidths) {
  editor_->SelectChannel(0);
  const struct {
    int steps;
    const char* q;
    bool sent;
  } steps[] = {{1, "0.35", true},   {3, "0.50", true},  {-9, "0.05", true},
               {-1, "0.05", false}, {70, "3.00", true}, {1, "3.00", false}};
  for (const auto& s : steps) {
    const std::size_t before = link_.frames.size();
    StepBandQ(*editor_, HandleOf(0), s.steps);
    EXPECT_EQ(Shown(ParamKind::EqQ, 0, 0), s.q) << s.steps;
    EXPECT_EQ(link_.frames.size(), before + (s.sent ? 1 : 0)) << s.steps;
  }
  editor_->Choose({ParamKind::EqType, 0, 1}, 0);  // a shelf
  const std::size_t before = link_.frames.size();
  EXPECT_FALSE(StepBandQ(*editor_, HandleOf(1), 1).Applied());
  const GraphHandle first = HandleOf(0);
  editor_->SetEditorLock(true);
  EXPECT_TRUE(GraphHandles(*editor_).empty());
  EXPECT_FALSE(StepBandQ(*editor_, first, -1).Applied());
  EXPECT_FALSE(HandleDrag(*editor_, first).MoveTo(5000, 3).Applied());
  EXPECT_EQ(link_.frames.size(), before);
  editor_->SetEditorLock(false);
  editor_->SetInputSuppressed(true);  // a preset being sent
  EXPECT_TRUE(GraphHandles(*editor_).empty());
}

}  // namespace
}  // namespace talvex::editor
