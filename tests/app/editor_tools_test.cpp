// The editor's Tools menu in the whole program on a simulated line: a measurement program's
// filter text onto Out 1 with its report before anything is sent, the export, the comparison
// with a preset file, and a backup restored onto another device.
#include <gtest/gtest.h>

#include <QAction>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QTreeWidget>

#include "editor/dialogs/device_tools.h"
#include "editor/dialogs/eq_import_dialog.h"
#include "editor/dialogs/preset_diff_dialog.h"
#include "editor/editor_menus.h"
#include "params/eq_text.h"
#include "params/image_decode.h"
#include "presets/device_backup.h"
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

// A room-measurement program's output, decimal commas, one filter off and one type the bands
// lack.
constexpr const char* kRoomText =
    "Preamp: -3,5 dB\n"
    "Filter  1: ON  PK       Fc   45,80 Hz  Gain   3,00 dB  Q  1,000\n"
    "Filter  2: ON  LS 6dB   Fc  120,0 Hz   Gain  -2,5 dB\n"
    "Filter  3: OFF None\n"
    "Filter  4: ON  HP       Fc   30 Hz\n";

class EditorToolsTest : public ::testing::Test {
 protected:
  AppHarness& Start(const std::string& port, std::function<void(sim::SimLine&)> prepare = {}) {
    app_ = std::make_unique<AppHarness>(port, std::move(prepare));
    app_->Start(Choice(SearchMode::AllIds));
    return *app_;
  }
  std::string PathOf(const char* name) const { return (app_->Folder() / name).string(); }
  void Do(editor::CtrlWindow& editor, EditorAction action) {
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    editor.Menus().Action(action).trigger();
    app_->Settle();
  }
  std::unique_ptr<AppHarness> app_;
};

// The report shows before anything is sent; Cancel sends nothing; Send sets Out 1's seven bands
// (one command each) as the plan says, and the export of Out 1 reads the same bands back.
TEST_F(EditorToolsTest, shouldImportAFilterTextAfterItsReportAndExportIt) {
  AppHarness& app = Start("sim:0");
  editor::CtrlWindow& editor = OpenEditor(app, 0);
  editor.SelectChannel(2);
  std::ofstream(PathOf("room.txt")) << kRoomText;
  app.dialogs.file = PathOf("room.txt");
  EXPECT_EQ(editor.Menus().Action(EditorAction::ImportEq).text(),
            "&Import equaliser onto Out 1 ...");
  const params::EqImportPlan plan =
      params::PlanEqImport(kRoomText, app.Session().Device(0).params.image, 2);

  for (bool send : {false, true}) {
    const FrameCount before = CountFrames(app, 0);
    Do(editor, EditorAction::ImportEq);
    auto* report = editor.findChild<editor::EqImportDialog*>();
    ASSERT_NE(report, nullptr);
    EXPECT_TRUE(report->isVisible());
    EXPECT_EQ(app.dialogs.fileDialogs.back().second, "filter text (*.txt)|*.txt");
    ASSERT_EQ(report->Report().count(), static_cast<int>(plan.notes.size()));
    EXPECT_EQ(report->Report().item(1)->text().toStdString(),
              "rounded: " + params::DescribeNote(plan.notes[1]));
    EXPECT_EQ(report->Summary().text().toStdString(), "Out 1: " + params::EqPlanSummary(plan));
    EXPECT_EQ(CountFrames(app, 0).total, before.total);
    EXPECT_TRUE(editor.CommandBusy());
    (send ? report->SendButton() : report->CancelButton()).click();
    app.Settle();
    EXPECT_FALSE(editor.CommandBusy());
    if (!send) {
      EXPECT_EQ(CountFrames(app, 0).total, before.total);
      continue;
    }
    EXPECT_EQ(FramesSince(app, 0, before), (std::map<int, int>{{code::kEqBand, 7}}));
  }
  const params::ParamImage& image = app.Session().Device(0).params.image;
  for (const params::EqPlannedBand& band : plan.bands) {
    EXPECT_EQ(params::BandGainDb(image, band.band), band.setting.gainDb) << band.band;
    EXPECT_EQ(params::BandWidthIndex(image, band.band), band.setting.width) << band.band;
  }
  EXPECT_EQ(PresetBytes(app.simulator->Device(0).LiveImage()), PresetBytes(image));

  app.dialogs.file = PathOf("out1.txt");
  Do(editor, EditorAction::ExportEq);
  std::ifstream in(PathOf("out1.txt"));
  const std::string exported{std::istreambuf_iterator<char>(in), {}};
  EXPECT_EQ(exported, params::ExportEqText(image, 2, "Out 1 of ID:0"));
  const params::EqImportPlan back = params::PlanEqImport(exported, image, 2);
  for (std::size_t i = 0; i < back.bands.size(); ++i)
    EXPECT_EQ(back.bands[i].setting.gainDb, plan.bands[i].setting.gainDb) << i;
}

// A file that cannot be read or holds no filter line is told and changes nothing.
TEST_F(EditorToolsTest, shouldRefuseATextWithoutFilters) {
  AppHarness& app = Start("sim:0");
  editor::CtrlWindow& editor = OpenEditor(app, 0);
  std::ofstream(PathOf("notes.txt")) << "Measured in the hall\n";
  for (const char* name : {"notes.txt", "missing.txt"}) {
    app.dialogs.shown.clear();
    app.dialogs.file = PathOf(name);
    const FrameCount before = CountFrames(app, 0);
    Do(editor, EditorAction::ImportEq);
    ASSERT_EQ(app.dialogs.shown.size(), 1u) << name;
    EXPECT_EQ(app.dialogs.shown[0].title, "Import equaliser");
    EXPECT_EQ(app.dialogs.shown[0].text,
              std::string(name) == "notes.txt"
                  ? "notes.txt holds no filter line (such as \"Filter  1: ON  PK  Fc 100 Hz  Gain "
                    "-3 dB  Q 1\"); nothing sent"
                  : PathOf(name) + " is not a file that can be read");
    EXPECT_EQ(CountFrames(app, 0).total, before.total);
    EXPECT_FALSE(editor.CommandBusy());
  }
}

// The file against the editor: one row per parameter that differs, with both values.
TEST_F(EditorToolsTest, shouldListWhatDiffersFromAPresetFile) {
  AppHarness& app = Start("sim:0");
  editor::CtrlWindow& editor = OpenEditor(app, 0);
  app.dialogs.file = PathOf("show.tvx");
  Trigger(app, editor, WindowCommand::SavePresetToPc);
  editor.Model().Commit({ParamKind::Level, 3, 0}, "-4.5");
  editor.Model().Commit({ParamKind::EqFrequency, 2, params::GlobalBand(2, 1)}, "250");
  Do(editor, EditorAction::CompareFile);
  auto* diff = editor.findChild<editor::PresetDiffDialog*>();
  ASSERT_NE(diff, nullptr);
  EXPECT_EQ(diff->Heading().text(), "show.tvx against ID:0: 2 parameters differ");
  ASSERT_EQ(diff->Differences().topLevelItemCount(), 2);
  const QTreeWidgetItem* level = diff->Differences().topLevelItem(0);
  EXPECT_EQ(level->text(0), "Out 1 EQ 2 Frequency");
  EXPECT_EQ(level->text(1), "1000");
  EXPECT_EQ(level->text(2), "250");
  EXPECT_EQ(diff->Differences().topLevelItem(1)->text(0), "Out 2 Level [dB]");
  diff->CloseButton().click();
  EXPECT_FALSE(editor.CommandBusy());
}

// Device 0 backed up with its progress, then restored onto device 1 of another type: device 1
// then keeps what device 0 keeps, byte for byte, and its editor shows it. A damaged file sends
// nothing.
TEST_F(EditorToolsTest, shouldBackUpOneDeviceAndRestoreItOntoAnother) {
  AppHarness& app = Start("sim:0,1", [](sim::SimLine& line) {
    sim::SimDevice& source = line.Device(0);
    source.SetName("Stage left");
    source.DeviceMemory()[mem::kUsedMarks + 4] = mem::kUsedMark;
    const std::string name = "Late show       ";
    std::copy(name.begin(), name.end(), source.DeviceMemory().begin() + mem::SlotNameAddress(4));
    source.DeviceMemory()[mem::SlotDataAddress(4) + 100] = 7;
    source.LiveImage()[params::EqBandStart[20] + 2] = 44;
    line.Device(1).Handle(protocol::BuildFrame(1, {code::kSetSystemType, {2}}));
  });
  editor::CtrlWindow& source = OpenEditor(app, 0);
  app.dialogs.file = PathOf("rack.tvb");
  Do(source, EditorAction::Backup);
  EXPECT_FALSE(source.CommandBusy());
  ASSERT_FALSE(app.dialogs.shown.empty());
  EXPECT_EQ(app.dialogs.shown.back().title, "Back up device");
  EXPECT_EQ(app.dialogs.shown.back().text,
            "ID:0 backed up to rack.tvb: \"Stage left\", 2x2 WAY XOVER + SUB, 1 of 24 preset slots "
            "used");
  const presets::BackupCheck check = presets::ReadBackupFile(PathOf("rack.tvb"));
  ASSERT_TRUE(check.backup) << check.error;
  EXPECT_EQ(app.dialogs.fileDialogs.back().second, "device backup (*.tvb)|*.tvb");

  editor::CtrlWindow& target = OpenEditor(app, 1);
  target.Model().Commit({ParamKind::Level, 2, 0}, "-2");
  app.dialogs.shown.clear();
  app.dialogs.WillAnswer({Answer::Yes});
  Do(target, EditorAction::Restore);
  ASSERT_EQ(app.dialogs.shown.size(), 2u);
  EXPECT_EQ(app.dialogs.shown[0].text,
            "Put the backup rack.tvb (\"Stage left\", 2x2 WAY XOVER + SUB, 1 of 24 preset slots "
            "used) on ID:1? Everything ID:1 keeps is replaced: its running preset, its 24 preset "
            "slots, its name and its system type.");
  EXPECT_EQ(app.dialogs.shown[0].defaultAnswer, Answer::No);
  EXPECT_EQ(app.dialogs.shown[1].text,
            "rack.tvb restored onto ID:1: \"Stage left\", 2x2 WAY XOVER + SUB, 1 of 24 preset "
            "slots used");
  const sim::SimDevice& restored = app.simulator->Device(1);
  EXPECT_EQ(restored.DeviceMemory(), app.simulator->Device(0).DeviceMemory());
  EXPECT_EQ(PresetBytes(restored.LiveImage()), PresetBytes(app.simulator->Device(0).LiveImage()));
  EXPECT_EQ(PresetBytes(app.Session().Device(1).params.image), PresetBytes(restored.LiveImage()));
  EXPECT_EQ(app.Session().Device(1).state.slotNames[4], "Late show       ");
  EXPECT_EQ(target.windowTitle(), "ID:1 - Type: 2x2 WAY XOVER + SUB");
  EXPECT_EQ(target.Memory().History().UndoText(),
            "Undo (history cleared: a backup was restored onto the device)");

  std::vector<std::uint8_t> damaged = FileBytes(PathOf("rack.tvb"));
  damaged[500] ^= 1;
  std::ofstream(PathOf("damaged.tvb"), std::ios::binary)
      .write(reinterpret_cast<const char*>(damaged.data()),
             static_cast<std::streamsize>(damaged.size()));
  app.dialogs.file = PathOf("damaged.tvb");
  app.dialogs.shown.clear();
  const FrameCount before = CountFrames(app, 1);
  Do(target, EditorAction::Restore);
  ASSERT_EQ(app.dialogs.shown.size(), 1u);
  EXPECT_EQ(app.dialogs.shown[0].text,
            PathOf("damaged.tvb") +
                " is damaged: its checksum does not match its contents; nothing sent");
  EXPECT_EQ(CountFrames(app, 1).total, before.total);
}

}  // namespace
}  // namespace talvex::testing
