#include "config/config_files.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <fstream>
#include <functional>

#include "testlib/file_size_limit.h"

namespace talvex::config {
namespace {

namespace fs = std::filesystem;

class TempFolder {
 public:
  TempFolder()
      : path_(fs::temp_directory_path() /
              ("talvex-config-" +
               std::to_string(::testing::UnitTest::GetInstance()->random_seed()) + "-" +
               ::testing::UnitTest::GetInstance()->current_test_info()->name())) {
    fs::remove_all(path_);
    fs::create_directories(path_);
  }
  ~TempFolder() { fs::remove_all(path_); }
  const fs::path& Path() const { return path_; }

 private:
  fs::path path_;
};

std::vector<std::uint8_t> Bytes(std::size_t count, std::uint8_t fill) {
  return std::vector<std::uint8_t>(count, fill);
}

TEST(ConfigFilesTest, shouldReadIdTablesOfEveryLengthWithoutGarbage) {
  DeviceIdTable ids{};
  for (int i = 0; i < kIdListCount; ++i)
    ids[i] = static_cast<std::int16_t>(i + 5);
  const auto full = EncodeDeviceIdTable(ids);
  ASSERT_EQ(full.size(), 40u);
  for (std::size_t length = 0; length <= full.size() + 2; ++length) {
    auto bytes = full;
    bytes.resize(length, 0x07);  // one record too long at the end
    const auto result = ParseDeviceIdTable(bytes);
    for (std::size_t i = 0; i < kIdListCount; ++i) {
      const std::int16_t expected = 2 * i + 1 < length ? ids[i] : 0;
      ASSERT_EQ(result.value[i], expected) << "length " << length << " list " << i;
    }
    EXPECT_EQ(result.complete, length >= 40) << length;
  }
}

TEST(ConfigFilesTest, shouldKeepZeroForIdsOutsideTheLists) {
  std::vector<std::uint8_t> bytes = Bytes(40, 0);
  bytes[0] = 33;    // list 0: 33
  bytes[3] = 0xFF;  // list 1: negative
  bytes[4] = 32;    // list 2: 32 is the last ID
  const auto result = ParseDeviceIdTable(bytes);
  EXPECT_EQ(result.value[0], 0);
  EXPECT_EQ(result.value[1], 0);
  EXPECT_EQ(result.value[2], 32);
  EXPECT_FALSE(result.complete);
}

TEST(ConfigFilesTest, shouldReadSpeakerRecordsOfEveryLength) {
  SpeakerRecords records{};
  for (int r = 0; r < kSpeakerRecordCount; ++r) {
    records[r].id = static_cast<std::int16_t>(r);
    records[r].name = "Rack " + std::to_string(r);
    records[r].present = r % 3 == 0;
  }
  const auto full = EncodeSpeakerRecords(records);
  ASSERT_EQ(full.size(), 33u * 22u);
  for (std::size_t length = 0; length <= full.size() + kSpeakerRecordSize; ++length) {
    auto bytes = full;
    bytes.resize(length, 0x01);
    const auto result = ParseSpeakerRecords(bytes);
    const std::size_t whole =
        std::min<std::size_t>(length / kSpeakerRecordSize, kSpeakerRecordCount);
    for (std::size_t r = 0; r < kSpeakerRecordCount; ++r) {
      const bool read = r < whole;
      ASSERT_EQ(result.value[r].id, read ? records[r].id : 0) << length << " " << r;
      ASSERT_EQ(result.value[r].present, read && records[r].present) << length << " " << r;
      ASSERT_EQ(result.value[r].name, read ? records[r].name : "") << length << " " << r;
    }
  }
}

TEST(ConfigFilesTest, shouldIgnoreRecordsWithImpossibleIdsAndShowOddNameBytesPlainly) {
  SpeakerRecords records{};
  records[0] = {40, "Ghost", true};
  records[1] = {7, "Main L", true};
  auto bytes = EncodeSpeakerRecords(records);
  bytes[22 + 2] = 0x01;  // a control character in record 1's name
  const auto result = ParseSpeakerRecords(bytes);
  EXPECT_FALSE(result.value[0].present);
  EXPECT_EQ(result.value[1].name, "?ain L");
  EXPECT_EQ(PresentDeviceIds(result.value), (std::vector<int>{7}));
  EXPECT_FALSE(result.complete);
}

TEST(ConfigFilesTest, shouldFindThePortAgainByName) {
  const InitSettings written{3, "/dev/ttyUSB1"};
  const auto parsed = ParseInitSettings(EncodeInitSettings(written));
  EXPECT_EQ(parsed.value.PortNumber, 3);
  EXPECT_EQ(parsed.value.portName, "/dev/ttyUSB1");
  EXPECT_TRUE(parsed.complete);

  const auto numberOnly = ParseInitSettings({2, 0});  // as the device's tools wrote it
  EXPECT_EQ(numberOnly.value.PortNumber, 2);
  EXPECT_EQ(numberOnly.value.portName, "");

  const auto cut = ParseInitSettings({2, 0, 10, 0, 'C', 'O', 'M'});  // name longer than the file
  EXPECT_EQ(cut.value.PortNumber, 2);
  EXPECT_EQ(cut.value.portName, "");
  EXPECT_FALSE(cut.complete);

  EXPECT_EQ(ParseInitSettings({0xFE, 0xFF}).value.PortNumber, 0);  // negative: no such position
  EXPECT_EQ(ParseInitSettings({}).value.PortNumber, 0);
}

TEST(ConfigFilesTest, shouldTreatAMissingFileAsZeroesAndRoundTripTheOthers) {
  TempFolder folder;
  EXPECT_FALSE(ReadDeviceIdTable(folder.Path()).found);
  EXPECT_EQ(ReadDeviceIdTable(folder.Path()).value, DeviceIdTable{});
  EXPECT_FALSE(ReadSpeakerRecords(folder.Path()).found);

  DeviceIdTable ids{};
  ids[19] = 32;
  ASSERT_EQ(WriteDeviceIdTable(folder.Path(), ids), "");
  EXPECT_EQ(ReadDeviceIdTable(folder.Path()).value, ids);
  EXPECT_EQ(fs::file_size(folder.Path() / "TenDev.cfg"), 40u);
  ASSERT_EQ(WriteInitSettings(folder.Path(), {1, "COM2"}), "");
  EXPECT_EQ(ReadInitSettings(folder.Path()).value.portName, "COM2");
}

TEST(ConfigFilesTest, shouldLeaveTheOldFileWholeWhenAWriteFails) {
  TempFolder folder;
  DeviceIdTable ids{};
  ids[0] = 9;
  ASSERT_EQ(WriteDeviceIdTable(folder.Path(), ids), "");
  // The temporary file's place is taken by a folder: the write cannot happen.
  fs::create_directory(folder.Path() / "TenDev.cfg.saving");
  ids[0] = 10;
  EXPECT_NE(WriteDeviceIdTable(folder.Path(), ids), "");
  EXPECT_EQ(ReadDeviceIdTable(folder.Path()).value[0], 9);
}

TEST(ConfigFilesTest, shouldReadNothingFromAPathThatIsNoSmallReadableFile) {
  struct Case {
    const char* what;
    std::function<void(const fs::path&)> make;
  };
  const Case cases[] = {
      {"a folder", [](const fs::path& p) { fs::create_directory(p); }},
      // Opening a pipe would wait for a writer forever; it is refused unopened.
      {"a pipe", [](const fs::path& p) { ASSERT_EQ(::mkfifo(p.c_str(), 0600), 0); }},
      {"a dangling link", [](const fs::path& p) { fs::create_symlink(p.string() + ".gone", p); }},
      {"a huge file",
       [](const fs::path& p) {
         std::ofstream(p, std::ios::binary) << std::string(200'000, '\x01');
       }},
      {"a sparse 4 GiB file",
       [](const fs::path& p) {
         std::ofstream(p, std::ios::binary).put('\x01');
         fs::resize_file(p, 4ull << 30);
       }},
  };
  for (const Case& c : cases) {
    TempFolder folder;
    c.make(folder.Path() / kDeviceIdFile);
    c.make(folder.Path() / kInitFile);
    c.make(folder.Path() / kSpeakersFile);
    const auto ids = ReadDeviceIdTable(folder.Path());
    const auto init = ReadInitSettings(folder.Path());
    const auto speakers = ReadSpeakerRecords(folder.Path());
    EXPECT_FALSE(ids.found || init.found || speakers.found) << c.what;
    EXPECT_EQ(ids.value, DeviceIdTable{}) << c.what;
    EXPECT_EQ(init.value.PortNumber, 0) << c.what;
    EXPECT_TRUE(PresentDeviceIds(speakers.value).empty()) << c.what;
  }
}

TEST(ConfigFilesTest, shouldKeepTheOldFileWholeWhenTheDiskIsFull) {
  TempFolder folder;
  SpeakerRecords records{};
  records[3] = {3, "Left", true};
  ASSERT_EQ(WriteSpeakerRecords(folder.Path(), records), "");
  records[4] = {4, "Right", true};
  std::string error;
  {
    testing::FileSizeLimit fullDisk(500);  // the 726 bytes do not fit
    error = WriteSpeakerRecords(folder.Path(), records);
  }
  EXPECT_EQ(error, "cannot write " + (folder.Path() / kSpeakersFile).string());
  EXPECT_EQ(fs::file_size(folder.Path() / kSpeakersFile), 33u * kSpeakerRecordSize);
  EXPECT_EQ(PresentDeviceIds(ReadSpeakerRecords(folder.Path()).value), std::vector<int>{3});
  EXPECT_FALSE(fs::exists(folder.Path() / "Speakers.cfg.saving"));
}

TEST(ConfigFilesTest, shouldSpotDuplicateIds) {
  DeviceIdTable ids{};
  for (int i = 0; i < kIdListCount; ++i)
    ids[i] = static_cast<std::int16_t>(i);
  EXPECT_FALSE(HasDuplicateIds(ids));
  ids[19] = 3;
  EXPECT_TRUE(HasDuplicateIds(ids));
}

}  // namespace
}  // namespace talvex::config
