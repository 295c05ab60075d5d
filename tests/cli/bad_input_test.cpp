// Bad input at talvexctl's door: every command with malformed arguments, and paths that are
// folders, unreadable or no files at all. A usage error exits 2 with the reason and the usage,
// sends nothing and writes nothing; a path that cannot be used exits 1 and says which.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "cli/cli.h"
#include "cli_harness.h"
#include "params/device_params.h"
#include "presets/preset_file.h"

namespace talvex::cli {
namespace {

namespace fs = std::filesystem;

class BadInputTest : public ::testing::Test {
 protected:
  BadInputTest() {
    fs::create_directories(dir_);
    EXPECT_EQ(presets::WritePresetFile(Path("kept.tvx"), params::DefaultRecord(1)), "");
  }
  ~BadInputTest() override { fs::remove_all(dir_); }

  std::string Path(const char* name) const { return (dir_ / name).string(); }
  std::vector<std::string> Listing() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(dir_))
      names.push_back(entry.path().filename().string() + ":" +
                      std::to_string(entry.is_regular_file() ? fs::file_size(entry) : 0));
    std::sort(names.begin(), names.end());
    return names;
  }
  std::string Kept() const {
    std::ifstream in(Path("kept.tvx"), std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  }

  fs::path dir_ = fs::temp_directory_path() / ("talvex_cli_bad_" + std::to_string(::getpid()));
};

TEST_F(BadInputTest, shouldRefuseMalformedArgumentsOfEveryCommandWithoutSendingOrWriting) {
  struct Case {
    std::vector<std::string> args;
    std::string message;
    bool withUsage = true;  // the system's own value message stands alone
  };
  const std::string kept = Path("kept.tvx");
  const std::string fresh = Path("fresh.tvx");
  const Case cases[] = {
      {{}, "usage: talvexctl"},
      {{"frobnicate"}, "unknown command \"frobnicate\""},
      {{"--id", "33", "ping"}, "--id \"33\" is not a device ID from 0 to 32"},
      {{"--id", "3x", "ping"}, "--id \"3x\" is not a device ID from 0 to 32"},
      {{"--id"}, "--id needs a value"},
      {{"--port"}, "--port needs a value"},
      {{"--file"}, "--file needs a value"},
      {{"--port", "sim:0,99", "scan"}, "bad port \"sim:0,99\""},
      {{"--port", "tcp:host", "scan"}, "bad port \"tcp:host\""},
      {{"scan", "now"}, "unexpected argument \"now\""},
      {{"ping", "3"}, "unexpected argument \"3\""},
      {{"meters", "all"}, "unexpected argument \"all\""},
      {{"send"}, "missing arguments"},
      {{"send", "300"}, "command code \"300\" is not a number from 0 to 255"},
      {{"send", "1", "0x10"}, "parameter \"0x10\" is not a number from 0 to 255"},
      {{"send", "1", "1", "2", "3", "4", "5", "6", "7", "8", "9"}, "unexpected argument \"9\""},
      {{"get", "nope"}, "unknown parameter \"nope\""},
      {{"get", "out1.level", "extra"}, "unexpected argument \"extra\""},
      {{"set", "out1.level"}, "missing arguments"},
      {{"set", "out9.level", "1"}, "unknown parameter \"out9.level\""},
      {{"set", "out1.level", "abc"}, "  Incorrect value\n", false},
      {{"set", "inA.eq2.freq", "1k"}, "  Incorrect frequency value\n", false},
      {{"set", "out1.eq3.type", "round"}, "\"round\" is not a value of out1.eq3.type"},
      {{"set", "inA.limiter", "-3"}, "\"-3\" is not a value of inA.limiter (clip, 15, 9, 3, 0)"},
      {{"set", "out1.name", "toolong"}, "\"toolong\" is not a value of out1.name"},
      {{"--file", kept, "set", "out1.level", "abc"}, "  Incorrect value\n", false},
      {{"--file", kept, "set", "out2.hp.type", "steep"},
       "\"steep\" is not a value of out2.hp.type"},
      {{"new"}, "new needs --file PRESET.tvx"},
      {{"--file", fresh, "new", "7"}, "\"7\" is not a system type"},
      {{"--file", fresh, "new", "0", "1"}, "unexpected argument \"1\""},
      {{"state", "x"}, "unexpected argument \"x\""},
      {{"name", "a", "b"}, "unexpected argument \"b\""},
      {{"name", "a\tb"}, "a device name takes printable ASCII characters only"},
      {{"name", "12345678901234567"}, "a device name has at most 16 characters"},
      {{"pull"}, "missing arguments"},
      {{"pull", fresh, "again"}, "unexpected argument \"again\""},
      {{"push"}, "missing arguments"},
      {{"response"}, "response needs --channel CH"},
      {{"response", "--channel", "out9"}, "--channel \"out9\" is not inA, inB or out1..out6"},
      {{"response", "--channel"}, "--channel needs a value"},
      {{"response", "--channel", "out1", "--part", "x"}, "--part \"x\" is not a part of out1"},
      {{"slots", "x"}, "unexpected argument \"x\""},
      {{"store", "1"}, "missing arguments"},
      {{"store", "24", "Show"}, "slot \"24\" is not a number from 0 to 23"},
      {{"store", "1", "12345678901234567"}, "a preset name has at most 16 characters"},
      {{"recall"}, "missing arguments"},
      {{"recall", "-1"}, "slot \"-1\" is not a number from 0 to 23"},
      {{"type", "3"}, "\"3\" is not a system type (0, 1, 2 or its name)"},
      {{"type", "0", "1"}, "unexpected argument \"1\""},
      {{"copy", "inA"}, "missing arguments"},
      {{"copy", "inA", "out1"}, "a copy goes from an input to an input or from an output to an"},
      {{"copy", "inX", "inB"}, "\"inX\" is not a channel (inA, inB, out1 .. out6)"},
      {{"names", "foo"}, "\"foo\" is not CH=NAME"},
      {{"names", "out9=abc"}, "\"out9\" is not a channel"},
      {{"lock", "x"}, "unexpected argument \"x\""},
      {{"unlock"}, "missing arguments"},
      {{"password", "a", "b", "c"}, "unexpected argument \"c\""},
      {{"--id", "0,0", "get"}, "--id \"0,0\" is not a device ID from 0 to 32, a list of different"},
      {{"--id", "1,", "get"}, "--id \"1,\" is not a device ID"},
      {{"--id", "0,3", "scan"}, "scan works on one device at a time; --id takes a list for get"},
      {{"--id", "all", "restore", kept}, "restore works on one device at a time"},
      {{"--id", "0,3", "--file", kept, "get"}, "--file works on one preset file"},
      {{"--id", "0,3", "set", "out9.level", "1"}, "unknown parameter \"out9.level\""},
      {{"--id", "all", "set", "out1.level", "abc"}, "  Incorrect value\n", false},
      {{"--id", "all", "store", "30", "x"}, "slot \"30\" is not a number from 0 to 23"},
      {{"eq"}, "missing arguments"},
      {{"eq", "flip"}, "eq takes import or export, not \"flip\""},
      {{"eq", "import", "out1"}, "eq import takes CH FILE [--dry-run]"},
      {{"eq", "import", "out9", kept}, "\"out9\" is not a channel"},
      {{"eq", "export"}, "eq export takes CH"},
      {{"eq", "export", "out1", "out2"}, "eq export takes CH"},
      {{"--json", "eq", "export", "out1"}, "eq export writes filter text; --json is not for it"},
      {{"diff"}, "missing arguments"},
      {{"diff", kept, kept, kept}, "unexpected argument"},
      {{"--file", kept, "diff", kept}, "diff names its files itself"},
      {{"backup"}, "missing arguments"},
      {{"restore", kept, "x"}, "unexpected argument \"x\""},
  };
  const std::vector<std::string> before = Listing();
  const std::string keptBefore = Kept();
  for (const Case& c : cases) {
    std::vector<std::string> args = {"--port", "sim:0"};
    args.insert(args.end(), c.args.begin(), c.args.end());
    CliRun run(args);
    const std::string what = c.args.empty() ? "(none)" : c.args.back();
    EXPECT_EQ(run.status, kExitUsage) << what;
    EXPECT_NE(run.err.str().find(c.message), std::string::npos) << what << ": " << run.err.str();
    EXPECT_EQ(run.err.str().find("usage: talvexctl") != std::string::npos, c.withUsage) << what;
    EXPECT_EQ(run.FramesSeen(), 0) << what;
    EXPECT_EQ(run.out.str(), "") << what;
  }
  EXPECT_EQ(Listing(), before);
  EXPECT_EQ(Kept(), keptBefore);
}

TEST_F(BadInputTest, shouldSayWhichPathCannotBeUsedAndChangeNothing) {
  fs::create_directory(Path("folder.tvx"));
  ASSERT_EQ(::mkfifo(Path("pipe.tvx").c_str(), 0600), 0);  // opening it would wait forever
  fs::create_symlink(Path("gone.tvx"), Path("dangling.tvx"));
  struct Case {
    std::vector<std::string> args;
    std::string message;
  };
  const Case cases[] = {
      {{"--file", Path("folder.tvx"), "get"}, Path("folder.tvx") + ": cannot be read"},
      {{"--file", Path("pipe.tvx"), "get"}, Path("pipe.tvx") + ": cannot be read"},
      {{"--file", Path("dangling.tvx"), "get", "out1.level"}, "dangling.tvx: cannot be read"},
      {{"--file", Path("folder.tvx"), "set", "out1.level", "3"}, "folder.tvx: cannot be read"},
      {{"--file", Path("folder.tvx"), "new"}, "folder.tvx exists: new never overwrites"},
      {{"push", Path("folder.tvx")}, "folder.tvx: cannot be read; nothing sent"},
      {{"push", Path("pipe.tvx")}, "pipe.tvx: cannot be read; nothing sent"},
      {{"pull", Path("folder.tvx")}, "cannot replace " + Path("folder.tvx")},
      {{"pull", Path("no-such-folder/p.tvx")}, "cannot write " + Path("no-such-folder/p.tvx")},
      {{"eq", "import", "out1", Path("folder.tvx")},
       Path("folder.tvx") + " is not a file that can be read"},
      {{"eq", "import", "out1", Path("pipe.tvx")}, "pipe.tvx is not a file that can be read"},
      {{"eq", "import", "out1", Path("kept.tvx")}, "kept.tvx holds no filter line"},
      {{"diff", Path("folder.tvx"), Path("kept.tvx")}, "folder.tvx: cannot be read"},
      {{"restore", Path("pipe.tvx")}, "pipe.tvx is not a file that can be read; nothing sent"},
      {{"restore", Path("dangling.tvx")}, "dangling.tvx is not a file that can be read"},
      {{"restore", Path("kept.tvx")}, "kept.tvx is not a TALVEX backup"},
      {{"backup", Path("folder.tvx")}, "cannot replace " + Path("folder.tvx")},
  };
  const std::vector<std::string> before = Listing();
  for (const Case& c : cases) {
    std::vector<std::string> args = {"--port", "sim:0"};
    args.insert(args.end(), c.args.begin(), c.args.end());
    CliRun run(args);
    EXPECT_EQ(run.status, kExitFailure) << c.message;
    EXPECT_NE(run.err.str().find(c.message), std::string::npos) << run.err.str();
    EXPECT_EQ(run.out.str(), "") << c.message;
  }
  EXPECT_EQ(Listing(), before);
  EXPECT_TRUE(fs::is_directory(Path("folder.tvx")));
}

TEST_F(BadInputTest, shouldRefuseALiveImageThatCameGarbled) {
  // A block has no checksum: line noise in it shows as bytes no device keeps (a frequency
  // byte of 255). talvexctl says so instead of reading on.
  CliRun run({"--port", "sim:0", "get", "out1.level"},
             [](sim::SimLine& line) { line.Device(0).LiveImage().fill(0xFF); });
  EXPECT_EQ(run.status, kExitFailure);
  EXPECT_EQ(run.err.str(),
            "talvexctl: the device's image came garbled (a byte no device keeps); try again\n");
  EXPECT_EQ(run.out.str(), "");
}

}  // namespace
}  // namespace talvex::cli
