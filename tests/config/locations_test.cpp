#include "config/locations.h"

#include <gtest/gtest.h>

#include <fstream>
#include <map>

namespace talvex::config {
namespace {

namespace fs = std::filesystem;

class LocationsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    root =
        fs::temp_directory_path() /
        ("talvex-locations-" + std::to_string(::testing::UnitTest::GetInstance()->random_seed()) +
         "-" + ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::remove_all(root);
    fs::create_directories(root);
  }
  void TearDown() override { fs::remove_all(root); }

  const UserFolders user{"/home/u/.config/talvex", "/home/u/.local/share/talvex/preset"};
  fs::path root;
};

TEST_F(LocationsTest, shouldKeepFilesInAWritableProgramFolderAndInTheUsersFoldersWhenInstalled) {
  const fs::path portable = root / "portable";
  const fs::path installed = root / "usr" / "bin";
  fs::create_directories(portable);
  fs::create_directories(installed);
  fs::create_directories(root / "usr" / "share" / "talvex");
  const fs::path lonelyBin = root / "opt" / "bin";  // a bin folder of no installation of ours
  fs::create_directories(lonelyBin);

  const struct {
    fs::path program;
    std::optional<fs::path> configDir;
    fs::path config;
    fs::path presets;
    Placement placement;
  } cases[] = {
      {portable, std::nullopt, portable, portable / "preset", Placement::ProgramFolder},
      {lonelyBin, std::nullopt, lonelyBin, lonelyBin / "preset", Placement::ProgramFolder},
      // Writable here (the tests may run as root), and still an installation.
      {installed, std::nullopt, user.config, user.presets, Placement::UserFolders},
      // A folder no one can write to, not even root.
      {"/proc", std::nullopt, user.config, user.presets, Placement::UserFolders},
      {installed, root / "mine", root / "mine", root / "mine" / "preset", Placement::Override},
      {portable, root / "mine", root / "mine", root / "mine" / "preset", Placement::Override},
  };
  for (const auto& c : cases) {
    const Locations found = FindLocations(c.program, c.configDir, user);
    EXPECT_EQ(found.configFolder, c.config) << c.program;
    EXPECT_EQ(found.presetFolder, c.presets) << c.program;
    EXPECT_EQ(found.placement, c.placement) << c.program;
  }
  EXPECT_TRUE(fs::is_empty(portable));  // the write test left nothing behind
}

TEST_F(LocationsTest, shouldTellAWritableFolderByWritingInIt) {
  std::ofstream(root / "file") << "x";
  EXPECT_TRUE(IsWritableFolder(root));
  EXPECT_FALSE(IsWritableFolder(root / "missing"));
  EXPECT_FALSE(IsWritableFolder(root / "file"));  // a file, not a folder
  EXPECT_FALSE(IsWritableFolder("/proc"));
}

TEST_F(LocationsTest, shouldFollowTheXdgVariablesAndFallBackToHome) {
  using Env = std::map<std::string, std::string>;
  const struct {
    Env env;
    fs::path config;
    fs::path presets;
  } cases[] = {
      {{{"HOME", "/home/ann"}}, "/home/ann/.config/talvex", "/home/ann/.local/share/talvex/preset"},
      {{{"HOME", "/home/ann"}, {"XDG_CONFIG_HOME", "/cfg"}, {"XDG_DATA_HOME", "/data"}},
       "/cfg/talvex",
       "/data/talvex/preset"},
  };
  for (const auto& c : cases) {
    const UserFolders folders = StandardUserFolders([&](const char* name) {
      const auto it = c.env.find(name);
      return it == c.env.end() ? std::nullopt : std::optional<std::string>(it->second);
    });
    EXPECT_EQ(folders.config, c.config);
    EXPECT_EQ(folders.presets, c.presets);
  }
}

TEST_F(LocationsTest, shouldMakeBothFoldersOrSayWhyNot) {
  const Locations locations{root / "a" / "b", root / "c" / "preset", Placement::UserFolders};
  EXPECT_EQ(CreateFolders(locations), "");
  EXPECT_TRUE(fs::is_directory(root / "a" / "b"));
  EXPECT_TRUE(fs::is_directory(root / "c" / "preset"));
  std::ofstream(root / "plain") << "x";
  const std::string why = CreateFolders({root / "plain" / "sub", root / "p", Placement::Override});
  EXPECT_NE(why.find("cannot make the folder " + (root / "plain" / "sub").string()),
            std::string::npos)
      << why;
}

}  // namespace
}  // namespace talvex::config
