// The toolbar's preset commands from the button to the frames on the simulated line: preset
// files, the device's preset memory, the system type, and a device vanishing mid-job.
#include <gtest/gtest.h>

#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>

#include "editor/dialogs/frm_read.h"
#include "editor/dialogs/frm_store.h"
#include "editor/dialogs/frm_sys_type.h"
#include "editor/dialogs/frm_vmeter.h"
#include "editor/dialogs/preset_folder.h"
#include "params/captions.h"
#include "params/default_image.h"
#include "params/param_edit.h"
#include "presets/conversation.h"
#include "presets/device_memory.h"
#include "presets/preset_load.h"
#include "presets/system_type.h"
#include "toolbar_harness.h"

namespace talvex::testing {
namespace {

using app::SearchMode;
using editor::Answer;
using editor::DialogIcon;
using params::ParamKind;
namespace code = protocol::code;
namespace mem = protocol::memory;

void PutLive(sim::SimLine& line, int id, const params::DeviceParams& device) {
  std::copy_n(device.image.begin(), params::kPresetSize, line.Device(id).LiveImage().begin());
}

class PresetDialogsTest : public ::testing::Test {
 protected:
  std::string PathOf(const char* name) const { return (app_->Folder() / name).string(); }
  AppHarness& Start(const std::string& port, std::function<void(sim::SimLine&)> prepare = {}) {
    app_ = std::make_unique<AppHarness>(port, std::move(prepare));
    app_->Start(Choice(SearchMode::AllIds));
    return *app_;
  }
  std::unique_ptr<AppHarness> app_;
};

// Saved, then loaded on the same device: the file comes back byte for byte, every parameter
// goes out again (mutes first and last), and the caption names the file. Loaded on a second
// device of the same type, that device ends up holding exactly what its editor shows.
TEST_F(PresetDialogsTest, shouldSaveAndLoadAPresetFileAndSendEveryParameter) {
  AppHarness& app = Start("sim:0,1", [](sim::SimLine& line) { PutLive(line, 0, MovedPreset(0)); });
  editor::CtrlWindow& first = OpenEditor(app, 0);
  app.dialogs.file = PathOf("show.tvx");
  Trigger(app, first, WindowCommand::SavePresetToPc);
  const std::vector<std::uint8_t> saved = FileBytes(PathOf("show.tvx"));
  const params::ParamImage& record = app.Session().Device(0).params.image;
  EXPECT_EQ(saved, std::vector<std::uint8_t>(record.begin(), record.end()));

  FrameCount before = CountFrames(app, 0);
  Trigger(app, first, WindowCommand::LoadPresetFromPc);
  const std::map<int, int> sent = FramesSince(app, 0, before);
  EXPECT_EQ(sent.at(code::kMute), 2 * params::kChannelCount);
  EXPECT_EQ(sent.at(code::kEqBand), params::kBandCount);
  EXPECT_EQ(sent.at(code::kCrossover), params::kCrossoverCount);
  EXPECT_EQ(sent.at(code::kChannelLevel), 2 * params::kChannelCount);
  EXPECT_EQ(sent.at(code::kChannelName), params::kOutputCount);
  EXPECT_EQ(first.windowTitle().toStdString(), params::LoadedFromPcCaption(0, "show.tvx", 0));
  app.dialogs.file = PathOf("again.tvx");
  Trigger(app, first, WindowCommand::SavePresetToPc);
  EXPECT_EQ(FileBytes(PathOf("again.tvx")), saved);

  editor::CtrlWindow& second = OpenEditor(app, 1);
  app.dialogs.file = PathOf("show.tvx");
  before = CountFrames(app, 1);
  Trigger(app, second, WindowCommand::LoadPresetFromPc);
  EXPECT_GT(CountFrames(app, 1).total - before.total, 150);
  const params::ParamImage& loaded = app.Session().Device(1).params.image;
  EXPECT_EQ(PresetBytes(app.simulator->Device(1).LiveImage()), PresetBytes(loaded));
  EXPECT_EQ(PresetBytes(loaded), PresetBytes(app.Session().Device(0).params.image));
  EXPECT_EQ(second.windowTitle().toStdString(), params::LoadedFromPcCaption(1, "show.tvx", 0));
  EXPECT_TRUE(app.dialogs.shown.empty());
  EXPECT_FALSE(second.CommandBusy());
  EXPECT_EQ(second.findChild<editor::FrmVMeter*>(), nullptr);
}

// A file of another type, a file under 20 bytes, a cancelled dialog: nothing changes, nothing
// is sent, and only the other type is told, in the system's words.
TEST_F(PresetDialogsTest, shouldRefuseFilesThatAreNoPresetOfTheDevice) {
  struct Case {
    const char* why;
    std::vector<std::uint8_t> file;  // empty: the dialog is cancelled
    std::vector<std::string> texts;
    bool fileKept;
  };
  std::vector<std::uint8_t> otherType(params::kImageSize, 0);
  std::copy(params::DefaultImage[1].begin(), params::DefaultImage[1].end(), otherType.begin());
  const Case cases[] = {
      {"other type",
       otherType,
       {"The new preset is for 2x3 WAY XOVER, please change Xover-Type from System Setup button"},
       true},
      {"19 bytes", std::vector<std::uint8_t>(19, 7), {}, false},
      {"cancelled", {}, {}, true},
  };
  AppHarness& app = Start("sim:0");
  editor::CtrlWindow& editor = OpenEditor(app, 0);
  const params::ParamImage imageBefore = app.Session().Device(0).params.image;
  const QString captionBefore = editor.windowTitle();
  for (const Case& c : cases) {
    app.dialogs.shown.clear();
    const std::string path = PathOf("refused.tvx");
    app.dialogs.file = c.file.empty() ? std::nullopt : std::optional(path);
    if (!c.file.empty())
      std::ofstream(path, std::ios::binary)
          .write(reinterpret_cast<const char*>(c.file.data()),
                 static_cast<std::streamsize>(c.file.size()));
    const FrameCount before = CountFrames(app, 0);
    Trigger(app, editor, WindowCommand::LoadPresetFromPc);
    EXPECT_EQ(CountFrames(app, 0).total, before.total) << c.why;
    EXPECT_EQ(app.dialogs.Texts(), c.texts) << c.why;
    if (!c.texts.empty()) {
      EXPECT_EQ(app.dialogs.shown[0].title, "Load Preset");
      EXPECT_EQ(app.dialogs.shown[0].icon, DialogIcon::Exclamation);
    }
    if (!c.file.empty()) {
      EXPECT_EQ(std::filesystem::exists(path), c.fileKept) << c.why;
    }
    EXPECT_EQ(app.Session().Device(0).params.image, imageBefore) << c.why;
    EXPECT_EQ(editor.windowTitle(), captionBefore) << c.why;
    EXPECT_FALSE(editor.CommandBusy()) << c.why;
    std::filesystem::remove(path);
  }
}

// Both file dialogs open in the program's preset folder (made when missing) with the filter.
TEST_F(PresetDialogsTest, shouldOfferThePresetFolderWithTheTvxFilter) {
  AppHarness& app = Start("sim:0");
  editor::CtrlWindow& editor = OpenEditor(app, 0);
  const std::filesystem::path folder = app.Folder() / "elsewhere" / "preset";
  app.Session().SetPresetFolder(folder);
  app.dialogs.file.reset();  // the user cancels each dialog
  for (WindowCommand command : {WindowCommand::LoadPresetFromPc, WindowCommand::SavePresetToPc}) {
    app.dialogs.fileDialogs.clear();
    Trigger(app, editor, command);
    ASSERT_EQ(app.dialogs.fileDialogs.size(), 1u);
    EXPECT_EQ(app.dialogs.fileDialogs[0].first, folder.string());
    EXPECT_EQ(app.dialogs.fileDialogs[0].second, "file preset (*.tvx)|*.tvx");
  }
  EXPECT_TRUE(std::filesystem::is_directory(folder));
}

// Slot 3 under "Chorus": the question, then the mark and 80 writes, ProgressBar1 shown over
// its 84 while they go out, the slot's name in the list, and the device holding the preset.
TEST_F(PresetDialogsTest, shouldStoreThePresetInASlotWithItsProgress) {
  AppHarness& app = Start("sim:0", [](sim::SimLine& line) { PutLive(line, 0, MovedPreset(0)); });
  editor::CtrlWindow& editor = OpenEditor(app, 0);
  auto& store = OpenDialog<editor::FrmStore>(app, editor, WindowCommand::StorePreset);
  EXPECT_TRUE(editor.CommandBusy());
  EXPECT_EQ(store.List1().count(), 24);
  store.List1().setCurrentRow(3);
  store.NameBox().setText("Chorus");
  std::vector<std::pair<int, bool>> progress;  // value, bar shown
  QObject::connect(&store.ProgressBar1(), &QProgressBar::valueChanged, [&](int value) {
    progress.emplace_back(value, store.ProgressBar1().isVisibleTo(&store));
  });

  app.dialogs.WillAnswer({Answer::No});
  FrameCount before = CountFrames(app, 0);
  store.Command1(1).click();
  app.Settle();
  EXPECT_EQ(CountFrames(app, 0).total, before.total);

  store.Command1(1).click();
  app.Settle();
  EXPECT_EQ(FramesSince(app, 0, before),
            (std::map<int, int>{{code::kMemoryWrite, 1}, {code::kStoreData, 80}}));
  ASSERT_EQ(app.dialogs.shown.size(), 2u);
  for (const Shown& shown : app.dialogs.shown) {
    EXPECT_EQ(shown.title, "Store Preset");
    EXPECT_EQ(shown.text, "               Are you sure ? ");
  }
  ASSERT_FALSE(progress.empty());
  EXPECT_EQ(progress.back(), std::make_pair(presets::kStoreCommandCount, true));
  EXPECT_EQ(store.ProgressBar1().maximum(), 84);
  EXPECT_FALSE(store.ProgressBar1().isVisibleTo(&store));
  EXPECT_TRUE(store.List1().item(3)->text().endsWith("Chorus"));

  const sim::Memory& memory = app.simulator->Device(0).DeviceMemory();
  EXPECT_EQ(memory[mem::kUsedMarks + 3], mem::kUsedMark);
  EXPECT_EQ(std::string(memory.begin() + mem::SlotNameAddress(3),
                        memory.begin() + mem::SlotNameAddress(3) + 16),
            "Chorus          ");
  EXPECT_EQ(std::vector<std::uint8_t>(memory.begin() + mem::SlotDataAddress(3),
                                      memory.begin() + mem::SlotDataAddress(3) + 304),
            PresetBytes(app.Session().Device(0).params.image));
  store.Command1(0).click();
  EXPECT_FALSE(editor.CommandBusy());
}

// Slot 5 unused: "Preset empty" and not a frame. Slot 2 used: the question, one block read and
// its closing command, the editor showing the slot's preset, and the caption naming the slot.
TEST_F(PresetDialogsTest, shouldReadAStoredPresetAndRefuseAnEmptySlot) {
  const params::DeviceParams stored = MovedPreset(0);
  AppHarness& app = Start("sim:0", [&](sim::SimLine& line) {
    sim::Memory& memory = line.Device(0).DeviceMemory();
    memory[mem::kUsedMarks + 2] = mem::kUsedMark;
    const std::string name = "Late show       ";
    std::copy(name.begin(), name.end(), memory.begin() + mem::SlotNameAddress(2));
    std::copy_n(stored.image.begin(), 304, memory.begin() + mem::SlotDataAddress(2));
  });
  editor::CtrlWindow& editor = OpenEditor(app, 0);
  auto& read = OpenDialog<editor::FrmRead>(app, editor, WindowCommand::ReadPreset);
  read.List1().setCurrentRow(5);
  FrameCount before = CountFrames(app, 0);
  read.Command1(1).click();
  app.Settle();
  EXPECT_EQ(CountFrames(app, 0).total, before.total);
  ASSERT_EQ(app.dialogs.shown.size(), 1u);
  EXPECT_EQ(app.dialogs.shown[0].title, "Read Preset");
  EXPECT_EQ(app.dialogs.shown[0].text, "Preset empty");

  read.List1().setCurrentRow(2);
  app.dialogs.WillAnswer({Answer::No});
  read.Command1(1).click();
  app.Settle();
  EXPECT_EQ(CountFrames(app, 0).total, before.total);
  read.Command1(1).click();
  app.Settle();
  EXPECT_EQ(FramesSince(app, 0, before),
            (std::map<int, int>{{code::kReadBlock, 1}, {code::kPoll, 1}}));
  ASSERT_EQ(app.dialogs.shown.size(), 3u);
  EXPECT_EQ(app.dialogs.shown[2].title, "Read Preset");
  EXPECT_EQ(app.dialogs.shown[2].text, "Overwrite current editing, are you sure ? ");
  EXPECT_EQ(PresetBytes(app.Session().Device(0).params.image), PresetBytes(stored.image));
  EXPECT_EQ(PresetBytes(app.simulator->Device(0).LiveImage()), PresetBytes(stored.image));
  EXPECT_EQ(editor.windowTitle().toStdString(),
            params::LoadedFromDeviceCaption(0, "Late show       ", 0));
  EXPECT_FALSE(editor.CommandBusy());
  EXPECT_EQ(editor.Model().LevelDb(3), -4.5f);
}

// The type in force: nothing asked or sent. Another type declined: nothing. Accepted: command
// 21 alone, the factory image of the new type in the editor and the device, "Default".
TEST_F(PresetDialogsTest, shouldSwitchTheSystemTypeAndShowItsFactoryPreset) {
  AppHarness& app = Start("sim:0");
  editor::CtrlWindow& editor = OpenEditor(app, 0);
  auto& setup = OpenDialog<editor::FrmSysType>(app, editor, WindowCommand::SystemSetup);
  EXPECT_TRUE(setup.Option1(0).isChecked());
  EXPECT_EQ(setup.windowTitle(), "System Setup");
  const FrameCount before = CountFrames(app, 0);
  setup.Command1(0).click();  // the type in force
  app.Settle();
  EXPECT_TRUE(app.dialogs.shown.empty());
  setup.Option1(2).setChecked(true);
  app.dialogs.WillAnswer({Answer::No});
  setup.Command1(0).click();
  app.Settle();
  EXPECT_EQ(CountFrames(app, 0).total, before.total);
  EXPECT_EQ(app.Session().Device(0).params.image[params::kSystemTypeByte], 0);

  setup.Command1(0).click();
  app.Settle();
  EXPECT_EQ(FramesSince(app, 0, before), (std::map<int, int>{{code::kSetSystemType, 1}}));
  ASSERT_EQ(app.dialogs.shown.size(), 2u);
  EXPECT_EQ(app.dialogs.shown[1].title, "System Setup");
  EXPECT_EQ(app.dialogs.shown[1].text, "Change Xover Type, are you sure ? ");
  EXPECT_EQ(PresetBytes(app.Session().Device(0).params.image),
            PresetBytes(params::DefaultImage[2]));
  EXPECT_EQ(PresetBytes(app.simulator->Device(0).LiveImage()),
            PresetBytes(params::DefaultImage[2]));
  EXPECT_EQ(editor.windowTitle(),
            "ID:0 TALVEX - Preset loaded from device: Default - Type: 6 WAY XOVER");
  EXPECT_FALSE(editor.CommandBusy());
}

// A device that stops answering in the middle of a store or of a file's transfer: reported
// once, its editor closed, nothing sent after the unanswered frame, the file untouched.
TEST_F(PresetDialogsTest, shouldEndCleanlyWhenTheDeviceVanishesMidJob) {
  struct Case {
    const char* why;
    WindowCommand command;
    int answered;  // frames the device still answers
  };
  const Case cases[] = {
      {"store", WindowCommand::StorePreset, 10},
      {"file load", WindowCommand::LoadPresetFromPc, 40},
  };
  for (const Case& c : cases) {
    AppHarness& app = Start("sim:0");
    editor::CtrlWindow& editor = OpenEditor(app, 0);
    app.dialogs.file = PathOf("vanish.tvx");
    Trigger(app, editor, WindowCommand::SavePresetToPc);
    const std::vector<std::uint8_t> file = FileBytes(PathOf("vanish.tvx"));
    const FrameCount before = CountFrames(app, 0);
    app.simulator->Faults(0).vanishAfterFrames = c.answered;
    if (c.command == WindowCommand::StorePreset) {
      auto& store = OpenDialog<editor::FrmStore>(app, editor, c.command);
      store.Command1(1).click();
    } else {
      Trigger(app, editor, c.command);
    }
    app.Settle();
    EXPECT_EQ(CountFrames(app, 0).total - before.total, c.answered) << c.why;
    std::vector<std::string> messages;
    for (const Shown& shown : app.dialogs.shown)
      if (shown.kind == "message") messages.push_back(shown.title);
    EXPECT_EQ(messages, std::vector<std::string>{"Communication problem"}) << c.why;
    EXPECT_EQ(app.window->Editor(0), nullptr) << c.why;
    EXPECT_EQ(FileBytes(PathOf("vanish.tvx")), file) << c.why;
  }
}

}  // namespace
}  // namespace talvex::testing
