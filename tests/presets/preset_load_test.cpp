#include "presets/preset_load.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "presets/preset_file.h"

namespace talvex::presets {
namespace {

namespace fs = std::filesystem;

class RecordingReporter final : public PresetReporter {
 public:
  void Warn(std::string_view title, std::string_view text) override {
    messages.push_back(std::string(title) + "|" + std::string(text));
  }
  std::vector<std::string> messages;
};

class PresetLoadTest : public ::testing::Test {
 protected:
  PresetLoadTest() { fs::create_directories(dir_); }
  ~PresetLoadTest() override { fs::remove_all(dir_); }

  std::string Path(const char* name) const { return (dir_ / name).string(); }

  void WriteRaw(const std::string& path, const std::vector<std::uint8_t>& bytes) const {
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<long>(bytes.size()));
  }

  // A valid preset of `type` whose bytes outside 0..303 are all `fill`.
  std::vector<std::uint8_t> PresetBytes(int type, std::uint8_t fill,
                                        std::size_t size = 1155) const {
    const params::ParamImage record = params::DefaultRecord(type);
    std::vector<std::uint8_t> bytes(size, fill);
    std::copy_n(record.begin(), std::min<std::size_t>(size, 304), bytes.begin());
    if (size > 321) bytes[321] = 1;
    if (size > 323) bytes[323] = 1;
    return bytes;
  }

  PresetLoadResult Load(const std::string& path) {
    return LoadPresetFile(path, scratch, device, state, view, reporter);
  }

  fs::path dir_ = fs::temp_directory_path() / ("talvex_load_" + std::to_string(::getpid()));
  ScratchRecord scratch;
  params::DeviceParams device = params::DeviceParams::FromDefault(1);
  PresetState state{3, 1};
  PresetView view;
  RecordingReporter reporter;
};

TEST_F(PresetLoadTest, shouldTakeOverOnlyThePresetTheTwoBytesAndTheTail) {
  device.image.fill(0xEE);
  std::copy_n(params::DefaultRecord(1).begin(), 304, device.image.begin());
  WriteRaw(Path("show.tvx"), PresetBytes(1, 0x5A));
  const PresetLoadResult result = Load(Path("show.tvx"));
  ASSERT_EQ(result.outcome, PresetLoad::Loaded) << result.error;
  for (std::size_t i = 304; i < 1155; ++i) {
    const bool taken = i == 321 || i == 323 || i >= 1074;
    // 328 holds the output link switch the transfer sent (the editor's, off).
    const std::uint8_t expected = i == 321 || i == 323 ? 1 : i == 328 ? 0 : taken ? 0x5A : 0xEE;
    ASSERT_EQ(device.image[i], expected) << i;
  }
  EXPECT_EQ(state.loadedPresetNumber, 0);
  EXPECT_EQ(state.presetChanged, 0);
  EXPECT_EQ(result.transfer.steps.size(), 155u);
  EXPECT_TRUE(result.transfer.flags.showApplyProgress);
  EXPECT_TRUE(reporter.messages.empty());
}

TEST_F(PresetLoadTest, shouldDeleteFilesUnderTwentyBytesWithoutAWord) {
  const params::ParamImage before = device.image;
  for (std::size_t size : {0, 1, 10, 19}) {
    WriteRaw(Path("short.tvx"), std::vector<std::uint8_t>(size, 0));
    EXPECT_EQ(Load(Path("short.tvx")).outcome, PresetLoad::DeletedShort) << size;
    EXPECT_FALSE(fs::exists(Path("short.tvx"))) << size;
  }
  EXPECT_EQ(device.image, before);
  EXPECT_TRUE(reporter.messages.empty());
  // 20 bytes pass; byte 298 comes from the scratch record (type 0 here), so the type differs.
  WriteRaw(Path("short.tvx"), std::vector<std::uint8_t>(20, 0));
  EXPECT_EQ(Load(Path("short.tvx")).outcome, PresetLoad::OtherType);
  EXPECT_TRUE(fs::exists(Path("short.tvx")));
}

TEST_F(PresetLoadTest, shouldRefuseAPresetOfAnotherTypeWithTheSystemsMessage) {
  const params::ParamImage before = device.image;
  for (int type : {0, 2}) {
    WriteRaw(Path("other.tvx"), PresetBytes(type, 0));
    EXPECT_EQ(Load(Path("other.tvx")).outcome, PresetLoad::OtherType);
  }
  EXPECT_EQ(reporter.messages,
            (std::vector<std::string>{
                "Load Preset|The new preset is for 2x2 WAY XOVER + SUB, please change Xover-Type "
                "from System Setup button",
                "Load Preset|The new preset is for 6 WAY XOVER, please change Xover-Type from "
                "System Setup button"}));
  EXPECT_EQ(device.image, before);
  EXPECT_EQ(state.loadedPresetNumber, 3);
}

TEST_F(PresetLoadTest, shouldKeepTheScratchRecordsEarlierTailForAShortFile) {
  WriteRaw(Path("full.tvx"), PresetBytes(1, 0x11));
  ASSERT_EQ(Load(Path("full.tvx")).outcome, PresetLoad::Loaded);
  WriteRaw(Path("part.tvx"), PresetBytes(1, 0x22, 500));
  ASSERT_EQ(Load(Path("part.tvx")).outcome, PresetLoad::Loaded);
  EXPECT_EQ(device.image[323], 1);      // inside the 500 bytes
  EXPECT_EQ(device.image[1074], 0x11);  // beyond them: left by the first load
  EXPECT_EQ(device.image[1154], 0x11);
}

TEST_F(PresetLoadTest, shouldChangeNothingForAFileItCannotUse) {
  const params::ParamImage before = device.image;
  EXPECT_EQ(Load(Path("missing.tvx")).outcome, PresetLoad::Unreadable);
  EXPECT_FALSE(fs::exists(Path("missing.tvx")));  // no empty file left behind
  std::vector<std::uint8_t> noType = PresetBytes(1, 0);
  noType[298] = 7;
  WriteRaw(Path("notype.tvx"), noType);
  EXPECT_EQ(Load(Path("notype.tvx")).error,
            Path("notype.tvx") + ": byte 298 holds 7, which names no system type");
  std::vector<std::uint8_t> badBand = PresetBytes(1, 0);
  badBand[params::EqBandStart[20]] = 241;
  WriteRaw(Path("bad.tvx"), badBand);
  EXPECT_EQ(Load(Path("bad.tvx")).outcome, PresetLoad::Refused);
  EXPECT_EQ(device.image, before);
  EXPECT_EQ(state.loadedPresetNumber, 3);
}

TEST_F(PresetLoadTest, shouldSaveTheWholeRecordAndLoadItBack) {
  params::Senders(device).EqBand(30, {315, 12, 4});
  device.image[1100] = 9;
  ApplyPreset(device, view, TransferFlags::EditorLoad());  // as the editor holds it
  ASSERT_EQ(SavePresetFile(Path("saved.tvx"), device), "");
  EXPECT_EQ(fs::file_size(Path("saved.tvx")), 1155u);
  EXPECT_FALSE(fs::exists(Path("saved.tvx.saving")));
  const params::ParamImage saved = device.image;
  device = params::DeviceParams::FromDefault(1);
  ASSERT_EQ(Load(Path("saved.tvx")).outcome, PresetLoad::Loaded);
  EXPECT_TRUE(std::equal(saved.begin(), saved.begin() + 304, device.image.begin()));
  EXPECT_EQ(device.image[1100], 9);
  EXPECT_NE(SavePresetFile(Path("no/such/folder/x.tvx"), device), "");
}

}  // namespace
}  // namespace talvex::presets
