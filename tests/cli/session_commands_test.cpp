// talvexctl scan with names, state, name, pull and push, on simulated lines.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "cli/cli.h"
#include "cli_harness.h"
#include "link/sim_transport.h"
#include "params/senders.h"

namespace talvex::cli {
namespace {

namespace fs = std::filesystem;

TEST(SessionCommandsTest, shouldListEachDeviceWithItsName) {
  Bench bench({7, 0, 3});
  bench.PutMemory(3, 368, "  Stage left    ");
  for (int unnamed : {0, 7})  // 16 blanks, as a device leaves the factory: nothing after the ID
    bench.PutMemory(unnamed, 368, std::string(16, ' '));
  ASSERT_EQ(bench.Run({"scan"}), kExitOk);
  EXPECT_EQ(bench.out.str(), "ID 0\nID 3    Stage left\nID 7\n");
  ASSERT_EQ(bench.Run({"--json", "scan"}), kExitOk);
  EXPECT_EQ(bench.out.str(),
            "[{\"id\": 0, \"name\": \"\"}, {\"id\": 3, \"name\": \"  Stage left\"}, "
            "{\"id\": 7, \"name\": \"\"}]\n");
}

TEST(SessionCommandsTest, shouldReadAndWriteTheDeviceName) {
  Bench bench({4});
  ASSERT_EQ(bench.Run({"--id", "4", "name", "Amp"}), kExitOk);
  EXPECT_EQ(bench.out.str(), "Amp               ID:4\n");
  const auto& memory = bench.simulator->Device(4).DeviceMemory();
  EXPECT_EQ(std::string(memory.begin() + 368, memory.begin() + 384), "Amp             ");
  ASSERT_EQ(bench.Run({"--id", "4", "name"}), kExitOk);
  EXPECT_EQ(bench.out.str(), "Amp\n");
  for (const char* bad : {"Seventeen chars!!", "Tab\there"}) {
    EXPECT_EQ(bench.Run({"--id", "4", "name", bad}), kExitUsage) << bad;
    EXPECT_EQ(bench.framesOfLastRun, 0) << bad;
  }
}

TEST(SessionCommandsTest, shouldPrintTypeLockPresetAndTheTwentyFourSlots) {
  Bench bench({1});
  bench.simulator->Device(1).Handle(protocol::BuildFrame(1, {protocol::code::kSetSystemType, {2}}));
  bench.PutMemory(1, 32 + 3, "\x55");
  bench.PutMemory(1, 384 + 16 * 3, "Church          ");
  bench.PutMemory(1, 0x16, "\x01");
  ASSERT_EQ(bench.Run({"--id", "1", "state"}), kExitOk);
  std::string expected = "type 2  6 WAY XOVER\nlock locked\npreset   Preset Empty\n";
  for (int slot = 0; slot < 24; ++slot)
    expected += "slot " + std::to_string(slot) + (slot == 3 ? "  Church\n" : "\n");
  EXPECT_EQ(bench.out.str(), expected);
}

TEST(SessionCommandsTest, shouldPushAPresetAndPullTheSameBytesBack) {
  Bench bench({0, 2});
  // A preset as a device holds it: every limiter byte names its channel.
  params::DeviceParams show = params::DeviceParams::FromDefault(0);
  params::Senders senders(show);
  for (int ch = 0; ch < 8; ++ch)
    senders.Limiter(ch, ch % 5);
  senders.EqBand(40, {125, 30, -6});
  senders.Level(5, -3);
  senders.OutputName(2, "Bass");
  senders.InputSource(1);
  senders.DelayUnit(1);
  std::vector<std::uint8_t> bytes(show.image.begin(), show.image.end());
  bench.WriteFile(bench.Path("show.tvx"), bytes);

  bench.simulator->Device(2).Handle(
      protocol::BuildFrame(2, {protocol::code::kDelay, {0, 0, 0, 0, 7, 0, 0, 0}}));  // 322 = 7
  ASSERT_EQ(bench.Run({"--id", "2", "push", bench.Path("show.tvx")}), kExitOk) << bench.err.str();
  EXPECT_EQ(bench.simulator->Device(2).State().deviceWide, 7);  // sent back as the device had it
  EXPECT_EQ(
      bench.out.str(),
      "ID:2 TALVEX - Last preset loaded: come from PC - show.tvx - Type: 2x2 WAY XOVER + SUB\n");
  // The live image and its closing command, the state read (no slot in use), the transfer.
  EXPECT_EQ(bench.framesOfLastRun, 2 + 15 + 155);
  ASSERT_EQ(bench.Run({"--id", "2", "pull", bench.Path("back.tvx")}), kExitOk);
  const std::vector<std::uint8_t> back = bench.FileBytes(bench.Path("back.tvx"));
  ASSERT_EQ(back.size(), 1155u);
  EXPECT_TRUE(std::equal(bytes.begin(), bytes.begin() + 304, back.begin()));
  EXPECT_EQ(back[321], 1);
  EXPECT_EQ(back[323], 1);
  EXPECT_EQ(bench.simulator->Device(0).FramesHandled(), 0);
}

TEST(SessionCommandsTest, shouldRefuseAPresetOfAnotherTypeAndSendNothing) {
  Bench bench({0});
  ASSERT_EQ(bench.Run({"--file", bench.Path("six.tvx"), "new", "2"}), kExitOk);
  EXPECT_EQ(bench.Run({"push", bench.Path("six.tvx")}), kExitFailure);
  EXPECT_NE(bench.err.str().find("Load Preset: The new preset is for 6 WAY XOVER, please change "
                                 "Xover-Type from System Setup button\n"),
            std::string::npos);
  EXPECT_EQ(bench.framesOfLastRun, 2 + 15);  // the live image and the state read only
}

TEST(SessionCommandsTest, shouldDeleteATenByteFileAndSendNothing) {
  Bench bench({0});
  bench.WriteFile(bench.Path("ten.tvx"), std::vector<std::uint8_t>(10, 1));
  EXPECT_EQ(bench.Run({"push", bench.Path("ten.tvx")}), kExitFailure);
  EXPECT_FALSE(fs::exists(bench.Path("ten.tvx")));
  EXPECT_EQ(bench.framesOfLastRun, 2 + 15);
  EXPECT_EQ(bench.Run({"push", bench.Path("none.tvx")}), kExitFailure);
  EXPECT_FALSE(fs::exists(bench.Path("none.tvx")));
}

TEST(SessionCommandsTest, shouldSayWhereATransferStopped) {
  Bench bench({0});
  ASSERT_EQ(bench.Run({"--file", bench.Path("zero.tvx"), "new", "0"}), kExitOk);
  bench.simulator->Faults(0).vanishAfterFrames = 2 + 15 + 30;
  EXPECT_EQ(bench.Run({"push", bench.Path("zero.tvx")}), kExitFailure);
  EXPECT_NE(bench.err.str().find("Communication problem"), std::string::npos);
  EXPECT_NE(bench.err.str().find("the transfer stopped at the dBu levels after 30 of 155 commands"),
            std::string::npos)
      << bench.err.str();
}

}  // namespace
}  // namespace talvex::cli
