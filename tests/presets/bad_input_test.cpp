// Bad input where presets enter: preset paths that are folders, pipes, dangling links or huge
// files; a full disk while saving; and a live image that came garbled on the line.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <functional>

#include "link/line.h"
#include "presets/live_image.h"
#include "presets/preset_file.h"
#include "presets/preset_load.h"
#include "testlib/file_size_limit.h"

namespace talvex::presets {
namespace {

namespace fs = std::filesystem;

class SilentReporter final : public PresetReporter {
 public:
  void Warn(std::string_view title, std::string_view text) override {
    messages.push_back(std::string(title) + "|" + std::string(text));
  }
  std::vector<std::string> messages;
};

class PresetBadInputTest : public ::testing::Test {
 protected:
  PresetBadInputTest() { fs::create_directories(dir_); }
  ~PresetBadInputTest() override { fs::remove_all(dir_); }
  std::string Path(const char* name) const { return (dir_ / name).string(); }

  fs::path dir_ = fs::temp_directory_path() / ("talvex_preset_bad_" + std::to_string(::getpid()));
};

TEST_F(PresetBadInputTest, shouldLoadNothingFromAPathThatIsNoPresetFile) {
  struct Case {
    const char* name;
    std::function<void(const std::string&)> make;
    PresetLoad outcome;
  };
  const Case cases[] = {
      {"folder.tvx", [](const std::string& p) { fs::create_directory(p); }, PresetLoad::Unreadable},
      // Opening a pipe would wait for a writer forever: it is refused unopened.
      {"pipe.tvx", [](const std::string& p) { ASSERT_EQ(::mkfifo(p.c_str(), 0600), 0); },
       PresetLoad::Unreadable},
      {"dangling.tvx", [](const std::string& p) { fs::create_symlink(p + ".gone", p); },
       PresetLoad::Unreadable},
  };
  for (const Case& c : cases) {
    const std::string path = Path(c.name);
    c.make(path);
    ScratchRecord scratch;
    params::DeviceParams device = params::DeviceParams::FromDefault(0);
    const params::ParamImage before = device.image;
    PresetState state{3, 1};
    PresetView view;
    SilentReporter reporter;
    const PresetLoadResult result = LoadPresetFile(path, scratch, device, state, view, reporter);
    EXPECT_EQ(result.outcome, c.outcome) << c.name << ": " << result.error;
    EXPECT_EQ(result.error.rfind(path + ": ", 0), 0u) << result.error;
    EXPECT_TRUE(result.transfer.steps.empty()) << c.name;
    EXPECT_EQ(device.image, before) << c.name;
    EXPECT_EQ(state.loadedPresetNumber, 3) << c.name;
    EXPECT_TRUE(reporter.messages.empty()) << c.name;
    EXPECT_TRUE(fs::exists(fs::symlink_status(path))) << c.name << " is not deleted";
  }
}

TEST_F(PresetBadInputTest, shouldReadOnlyTheRecordOfAHugeFile) {
  const std::string path = Path("huge.tvx");
  ASSERT_EQ(WritePresetFile(path, params::DefaultRecord(0)), "");
  fs::resize_file(path, 4ull << 30);  // 4 GiB, sparse: the rest reads as zeros
  ScratchRecord scratch;
  params::DeviceParams device = params::DeviceParams::FromDefault(0);
  PresetState state;
  PresetView view;
  SilentReporter reporter;
  const PresetLoadResult result = LoadPresetFile(path, scratch, device, state, view, reporter);
  EXPECT_EQ(result.outcome, PresetLoad::Loaded) << result.error;
  EXPECT_EQ(scratch.bytes, params::DefaultRecord(0));
}

TEST_F(PresetBadInputTest, shouldKeepTheOldFileWholeWhenTheDiskIsFull) {
  const std::string path = Path("show.tvx");
  params::DeviceParams device = params::DeviceParams::FromDefault(1);
  ASSERT_EQ(SavePresetFile(path, device), "");
  params::DeviceParams changed = params::DeviceParams::FromDefault(2);
  std::string error;
  {
    testing::FileSizeLimit fullDisk(1000);  // 1155 bytes do not fit
    error = SavePresetFile(path, changed);
  }
  EXPECT_EQ(error, "cannot write " + path + " (the old file, if any, is unchanged)");
  params::ParamImage read{};
  ASSERT_EQ(ReadPresetFile(path, read), "");
  EXPECT_EQ(read, device.image);
  EXPECT_EQ(fs::file_size(path), params::kImageSize);
  EXPECT_FALSE(fs::exists(path + ".saving"));
}

TEST(LiveImageTest, shouldRefuseAGarbledImageButStillCloseTheBlockTransfer) {
  link::Line line = link::MakeLine(link::ParsePortSpec("sim:4"));
  link::Link link(*line.transport, *line.clock);
  ASSERT_TRUE(link.OpenPort());
  // Line noise in a block shows as a byte no device keeps: here a frequency byte of 255.
  line.simulator->Device(4).LiveImage().fill(0xFF);
  const params::ParamImage before = params::DefaultRecord(2);
  params::ParamImage image = before;
  EXPECT_EQ(ReadLiveImage(link, 4, image), LiveRead::Garbled);
  EXPECT_EQ(image, before);
  EXPECT_EQ(line.simulator->Device(4).FramesHandled(protocol::code::kPoll), 1);
}

TEST(LiveImageTest, shouldTellAReadableImageFromOneWithAByteNoDeviceKeeps) {
  params::ParamImage image = params::DefaultRecord(1);
  EXPECT_TRUE(IsReadableImage(image));
  image[params::EqBandStart[17]] = 246;  // frequency bytes run 0..240 (found by link_fuzz)
  EXPECT_FALSE(IsReadableImage(image));
}

}  // namespace
}  // namespace talvex::presets
