// talvexctl slots, store, recall, type, copy, names, lock, unlock and password on a simulated
// line.
#include <gtest/gtest.h>

#include <sstream>

#include "cli/cli.h"
#include "cli_harness.h"
#include "link/sim_transport.h"
#include "params/default_image.h"

namespace talvex::cli {
namespace {

// Frames of connecting a device with no used slot: the live image and its closing command,
// then the state read.
constexpr int kConnectFrames = 2 + 15;

class UtilityCommandsTest : public ::testing::Test {
 protected:
  UtilityCommandsTest() : simulator(std::make_shared<sim::SimLine>(std::vector<int>{1})) {
    hooks_.makeLine = [this](const link::PortSpec&) { return LineOn(simulator); };
  }

  int Run(std::vector<std::string> args) {
    out.str("");
    err.str("");
    const int before = Device().FramesHandled();
    args.insert(args.begin(), {"--port", "sim", "--id", "1"});
    const int status = RunCli(args, out, err, hooks_);
    frames = Device().FramesHandled() - before;
    return status;
  }

  sim::SimDevice& Device() { return simulator->Device(1); }

  std::shared_ptr<sim::SimLine> simulator;
  std::ostringstream out;
  std::ostringstream err;
  int frames = 0;

 private:
  CliHooks hooks_;
};

TEST_F(UtilityCommandsTest, shouldStoreListAndRecallAPreset) {
  ASSERT_EQ(Run({"set", "out2.level", "-6"}), kExitOk);
  ASSERT_EQ(Run({"store", "7", "Show A"}), kExitOk) << err.str();
  EXPECT_EQ(out.str(), "7  used  Show A\n");
  EXPECT_EQ(frames, kConnectFrames + 81);
  ASSERT_EQ(Run({"slots"}), kExitOk);
  EXPECT_NE(out.str().find("6  empty\n7  used  Show A\n8  empty\n"), std::string::npos);
  ASSERT_EQ(Run({"--json", "slots"}), kExitOk);
  EXPECT_NE(out.str().find("{\"slot\": 7, \"used\": true, \"name\": \"Show A\"}"),
            std::string::npos);

  ASSERT_EQ(Run({"type", "1"}), kExitOk);  // the device now runs the factory preset of type 1
  EXPECT_EQ(out.str(), "ID:1 TALVEX - Preset loaded from device: Default - Type: 2x3 WAY XOVER\n");
  ASSERT_EQ(Run({"type", "2x3 way xover"}), kExitOk);  // in force already: nothing changes
  EXPECT_EQ(out.str(), "1  2x3 WAY XOVER\n");
  EXPECT_EQ(Device().FramesHandled(21), 1);

  ASSERT_EQ(Run({"recall", "7"}), kExitOk) << err.str();
  EXPECT_EQ(out.str(),
            "ID:1 TALVEX - Last preset loaded: come from DEVICE - Show A           - Type: 2x2 WAY "
            "XOVER + SUB\n");
  EXPECT_EQ(Device().LiveImage()[params::ChannelBase[3]], 60);  // -6 dB stored, now run
  EXPECT_EQ(Device().SystemType(), 0);                          // the type the preset was stored in
}

TEST_F(UtilityCommandsTest, shouldPrintTheRefusalAndSendNothing) {
  const struct {
    std::vector<std::string> args;
    std::string message;
    int frames;  // reads before the refusal
  } cases[] = {
      {{"copy", "inA", "ina"}, "Copy Input: Copy not possible, Source=Destination\n", 0},
      {{"copy", "out4", "out4"}, "Copy Output: Copy not possible, Source=Destination\n", 0},
      {{"names", "out3="}, "Edit Names: Please input the Name !\n", 0},
      {{"names", "inB=  "}, "Edit Names: Please input the Name !\n", 0},
      {{"password", "abc12"}, "New Password: Value password wrong\n", 0},
      {{"password", "abc123", "abc124"}, "New Password: Passwords don't match \n", 0},
      {{"recall", "4"}, "Read Preset: Preset empty\n", kConnectFrames},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Run(c.args), kExitFailure) << c.args[0];
    EXPECT_EQ(err.str(), c.message);
    EXPECT_EQ(frames, c.frames) << c.args[0];
  }
  EXPECT_EQ(Device().LiveImage(), params::DefaultImage[0]);
}

TEST_F(UtilityCommandsTest, shouldCopyAndRenameChannels) {
  ASSERT_EQ(Run({"set", "out1.eq3.gain", "4.5"}), kExitOk);
  ASSERT_EQ(Run({"copy", "out1", "out6"}), kExitOk);
  EXPECT_EQ(out.str(), "out1 copied onto out6\n");
  EXPECT_EQ(frames, kConnectFrames + 18);
  ASSERT_EQ(Run({"get", "out6.eq3.gain"}), kExitOk);
  EXPECT_EQ(out.str(), "out6.eq3.gain = 4.5\n");

  ASSERT_EQ(Run({"names", "out3=Bass", "inA=Mic"}), kExitOk);
  EXPECT_EQ(frames, kConnectFrames + 6);
  EXPECT_EQ(out.str(),
            "out1  Low-A\nout2  Low-B\nout3  Bass\nout4  High-B\nout5  Sub-A\nout6  Sub-B\n");
  EXPECT_EQ(Run({"names", "out3=B.ss"}), kExitFailure);
  EXPECT_EQ(err.str().rfind("Edit Names: Please use the following symbols: ", 0), 0u);
}

TEST_F(UtilityCommandsTest, shouldLockRefuseEditsAndUnlockOnlyWithThePassword) {
  ASSERT_EQ(Run({"password", "Ab 9z0", "Ab 9z0"}), kExitOk);
  EXPECT_EQ(frames, 6);
  ASSERT_EQ(Run({"lock"}), kExitOk);
  EXPECT_EQ(out.str(), "System Lock\n");
  EXPECT_TRUE(Device().Locked());

  EXPECT_EQ(Run({"store", "0", "x"}), kExitFailure);
  EXPECT_EQ(err.str(), "System Lock\n");
  EXPECT_EQ(frames, kConnectFrames);
  const int writesBefore = Device().FramesHandled(17);
  EXPECT_EQ(Run({"unlock", "ab 9z0"}), kExitFailure);
  EXPECT_EQ(err.str(), "Insert Password: Password wrong\n");
  EXPECT_EQ(frames, kConnectFrames + 2);  // the password's two reads
  EXPECT_EQ(Device().FramesHandled(17), writesBefore);
  ASSERT_EQ(Run({"unlock", "Ab 9z0"}), kExitOk);
  EXPECT_EQ(out.str(), "System Unlock\n");
  EXPECT_FALSE(Device().Locked());
}

TEST_F(UtilityCommandsTest, shouldSayWhereAStoreStopped) {
  simulator->Faults(1).vanishAfterFrames = kConnectFrames + 10;
  EXPECT_EQ(Run({"store", "3", "Half"}), kExitFailure);
  EXPECT_NE(err.str().find("Communication problem"), std::string::npos);
  EXPECT_NE(err.str().find("the store stopped after 10 of 81 commands"), std::string::npos)
      << err.str();
  EXPECT_EQ(Device().DeviceMemory()[32 + 3], 85);
  EXPECT_EQ(Device().DeviceMemory()[768 + 304 * 3 + 20], 0);  // never written
}

}  // namespace
}  // namespace talvex::cli
