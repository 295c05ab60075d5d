#include "presets/preset_file.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "params/device_params.h"

namespace talvex::presets {
namespace {

namespace fs = std::filesystem;

class PresetFileTest : public ::testing::Test {
 protected:
  PresetFileTest() { fs::create_directories(dir_); }
  ~PresetFileTest() override { fs::remove_all(dir_); }

  std::string Path(const char* name) const { return (dir_ / name).string(); }

  void WriteRaw(const std::string& path, const std::vector<std::uint8_t>& bytes) const {
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<long>(bytes.size()));
  }

  fs::path dir_ = fs::temp_directory_path() / ("talvex_presets_" + std::to_string(::getpid()));
};

TEST_F(PresetFileTest, shouldWriteAndReadBackAllBytesOfTheRecord) {
  params::ParamImage record{};
  for (std::size_t i = 0; i < record.size(); ++i)
    record[i] = static_cast<std::uint8_t>(i * 7);
  ASSERT_EQ(WritePresetFile(Path("a.tvx"), record), "");
  EXPECT_EQ(fs::file_size(Path("a.tvx")), params::kImageSize);
  params::ParamImage read{};
  ASSERT_EQ(ReadPresetFile(Path("a.tvx"), read), "");
  EXPECT_EQ(read, record);
}

TEST_F(PresetFileTest, shouldFillWhatAShortFileLacksFromTheDefaultRecordOfItsType) {
  std::vector<std::uint8_t> bytes(400, 9);
  bytes[params::kSystemTypeByte] = 2;
  WriteRaw(Path("short.tvx"), bytes);
  params::ParamImage read{};
  ASSERT_EQ(ReadPresetFile(Path("short.tvx"), read), "");
  const params::ParamImage defaults = params::DefaultRecord(2);
  EXPECT_TRUE(std::equal(bytes.begin(), bytes.end(), read.begin()));
  EXPECT_TRUE(std::equal(read.begin() + 400, read.end(), defaults.begin() + 400));
}

TEST_F(PresetFileTest, shouldLeaveTheRecordAloneWhenTheFileCannotBeRead) {
  params::ParamImage record = params::DefaultRecord(0);
  const params::ParamImage before = record;
  EXPECT_NE(ReadPresetFile(Path("missing.tvx"), record), "");
  WriteRaw(Path("empty.tvx"), {});
  EXPECT_NE(ReadPresetFile(Path("empty.tvx"), record), "");
  EXPECT_EQ(record, before);
  EXPECT_NE(WritePresetFile(Path("no/such/folder/x.tvx"), record), "");
}

}  // namespace
}  // namespace talvex::presets
