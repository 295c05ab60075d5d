// talvexctl backup and restore, and the progress of push, on simulated devices.
#include <gtest/gtest.h>

#include "cli_harness.h"

namespace talvex::cli {
namespace {

TEST(BackupCommandsTest, shouldRestoreABackupOntoAnotherDeviceWithProgress) {
  Bench bench({0, 6});
  ASSERT_EQ(bench.Run({"--id", "0", "type", "1"}), kExitOk);
  ASSERT_EQ(bench.Run({"--id", "0", "set", "out4.eq2.gain", "7.5"}), kExitOk);
  ASSERT_EQ(bench.Run({"--id", "0", "store", "11", "Festival"}), kExitOk);
  ASSERT_EQ(bench.Run({"--id", "0", "set", "out4.name", "Fill"}), kExitOk);
  ASSERT_EQ(bench.Run({"--id", "0", "name", "FOH rack 2"}), kExitOk);

  ASSERT_EQ(bench.Run({"--id", "0", "backup", bench.Path("foh.tvb")}), kExitOk) << bench.err.str();
  EXPECT_EQ(bench.out.str(),
            bench.Path("foh.tvb") + ": \"FOH rack 2\", 2x3 WAY XOVER, 1 of 24 preset slots used\n");
  EXPECT_TRUE(bench.err.str().ends_with("backup 100 %\n")) << bench.err.str();

  ASSERT_EQ(bench.Run({"--id", "6", "restore", bench.Path("foh.tvb")}), kExitOk) << bench.err.str();
  EXPECT_EQ(bench.out.str(), "restored " + bench.Path("foh.tvb") +
                                 ": \"FOH rack 2\", 2x3 WAY XOVER, 1 of 24 preset slots used\n");
  EXPECT_TRUE(bench.err.str().starts_with("restore 0 %\n")) << bench.err.str();
  EXPECT_TRUE(bench.err.str().ends_with("restore 100 %\n"));
  const sim::SimDevice& source = bench.simulator->Device(0);
  const sim::SimDevice& target = bench.simulator->Device(6);
  EXPECT_EQ(target.SystemType(), 1);
  EXPECT_EQ(target.LiveImage(), source.LiveImage());
  EXPECT_EQ(target.DeviceMemory(), source.DeviceMemory());
}

TEST(BackupCommandsTest, shouldCheckTheWholeFileAndSendNothingWhenItIsDamaged) {
  Bench bench({0});
  ASSERT_EQ(bench.Run({"backup", bench.Path("one.tvb")}), kExitOk);
  std::vector<std::uint8_t> bytes = bench.FileBytes(bench.Path("one.tvb"));
  bytes[4000] ^= 0x40;
  bench.WriteFile(bench.Path("bad.tvb"), bytes);
  ASSERT_EQ(bench.Run({"--file", bench.Path("show.tvx"), "new"}), kExitOk);
  const struct {
    const char* file;
    std::string error;
  } cases[] = {
      {"bad.tvb", " is damaged: its checksum does not match its contents; nothing sent\n"},
      {"show.tvx", " is not a TALVEX backup (it does not begin with \"TVXBACK\"); nothing sent\n"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(bench.Run({"restore", bench.Path(c.file)}), kExitFailure);
    EXPECT_EQ(bench.err.str(), "talvexctl: " + bench.Path(c.file) + c.error);
    EXPECT_EQ(bench.framesOfLastRun, 0) << c.file;
  }
}

TEST(BackupCommandsTest, shouldShowThePushsProgressOnStderr) {
  Bench bench({0});
  ASSERT_EQ(bench.Run({"--file", bench.Path("show.tvx"), "new"}), kExitOk);
  ASSERT_EQ(bench.Run({"push", bench.Path("show.tvx")}), kExitOk);
  // 18 points of the transfer, each a whole percent of its own
  std::string expected;
  for (int point = 1; point <= 18; ++point)
    expected += "push " + std::to_string(100 * point / 18) + " %\n";
  EXPECT_EQ(bench.err.str(), expected);
}

}  // namespace
}  // namespace talvex::cli
