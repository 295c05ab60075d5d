#include "cli/cli.h"

#include <gtest/gtest.h>

#include <sstream>

#include "cli_harness.h"
#include "talvex_version.h"

namespace talvex::cli {
namespace {

TEST(CliTest, shouldListTheDevicesFoundInIdOrderWithProgressOnStderr) {
  CliRun run({"--port", "sim:7,0,3", "scan"});
  EXPECT_EQ(run.status, kExitOk);
  // Simulated devices are named after their system type and ID.
  EXPECT_EQ(run.out.str(), "ID 0  SIM 2x2 00\nID 3  SIM 2x2 03\nID 7  SIM 2x2 07\n");
  EXPECT_NE(run.err.str().find("0 %\n3.1 %\n6.2 %\n9.3 %\n"), std::string::npos);
  EXPECT_NE(run.err.str().find("\n100 %\n"), std::string::npos);
}

TEST(CliTest, shouldAnswerHelpVersionAndWordsWithoutTouchingTheLine) {
  const struct {
    std::vector<std::string> args;
    int status;
    std::string outStart;
  } cases[] = {
      {{"--version"}, kExitOk, std::string("talvexctl ") + kVersion + "\n"},
      {{"--help"}, kExitOk, "usage: talvexctl"},
      {{"-h", "scan"}, kExitOk, "usage: talvexctl"},
      {{"words", "channels"}, kExitOk, "inA\ninB\nout1\nout2\nout3\nout4\nout5\nout6\n"},
      {{"words", "commands"}, kExitOk, "scan\nping\nsend\n"},
      {{"words", "params"}, kExitOk, "input.source\ndelay.unit\n"},
      {{"words", "ports"}, kExitUsage, ""},
  };
  for (const auto& c : cases) {
    CliRun run(c.args);
    EXPECT_EQ(run.status, c.status) << c.args[0];
    EXPECT_EQ(run.out.str().substr(0, c.outStart.size()), c.outStart) << c.args[0];
    EXPECT_EQ(run.FramesSeen(), 0) << c.args[0];
  }
}

TEST(CliTest, shouldSayWhyTheSerialPortDidNotOpen) {
  CliRun run({"--port", "/dev/ttyTALVEXmissing", "scan"});
  EXPECT_EQ(run.status, kExitFailure);
  EXPECT_EQ(
      run.err.str().rfind("talvexctl: cannot open serial port /dev/ttyTALVEXmissing: the port "
                          "does not exist: is the adapter plugged in, and is the name right? (",
                          0),
      0u)
      << run.err.str();
}

TEST(CliTest, shouldExitByWhetherTheDeviceAnswersAPing) {
  EXPECT_EQ(CliRun({"--port", "sim:4", "--id", "4", "ping"}).status, kExitOk);
  EXPECT_EQ(CliRun({"--port", "sim:4", "--id", "5", "ping"}).status, kExitFailure);
  CliRun slow({"--port", "sim:4", "--id", "4", "ping"},
              [](sim::SimLine& line) { line.Faults(4).answerSecondPollOnly = true; });
  EXPECT_EQ(slow.status, kExitOk);
}

TEST(CliTest, shouldTraceEachFrameAndPrintTheReply) {
  CliRun run({"--port", "sim:0,3", "--id", "3", "--trace", "send", "16", "1", "112"});
  EXPECT_EQ(run.status, kExitOk);
  // Memory 368 and 369 hold the first two characters of the name, "SI" of "SIM 2x2 03".
  EXPECT_EQ(run.out.str(), "F0 81 03 10 01 70 00 00 53 49 00 00 F7\n");
  EXPECT_EQ(run.err.str(),
            "> F0 81 03 10 01 70 00 00 00 00 00 00 F7\n"
            "< F0 81 03 10 01 70 00 00 53 49 00 00 F7\n");
}

TEST(CliTest, shouldReportAFinalFailureInTheSystemsWordsAndExit1) {
  CliRun run({"--port", "sim:0", "--id", "9", "--trace", "send", "1", "2", "0", "0", "0", "0", "0",
              "0", "120"});
  EXPECT_EQ(run.status, kExitFailure);
  EXPECT_EQ(run.out.str(), "");
  const std::string err = run.err.str();
  EXPECT_EQ(std::count(err.begin(), err.end(), '>'), 5);  // five transmissions
  EXPECT_NE(
      err.find(
          "Communication problem:  The system will be close the communication with this device\n"),
      std::string::npos);
}

TEST(CliTest, shouldPrintTheEightMeterLevelsOnOneLine) {
  const auto muteOut6 = [](sim::SimLine& line) {
    line.Device(2).Handle(
        protocol::BuildFrame(2, {protocol::code::kMute, {7, 0, 0, 0, 0, 0, 0, 1}}));
  };
  CliRun run({"--port", "sim:2", "--id", "2", "meters"}, muteOut6);
  EXPECT_EQ(run.status, kExitOk);
  EXPECT_EQ(run.out.str(), "-20.0 -20.0 -20.0 -20.0 -20.0 -20.0 -20.0 -60.0\n");
  CliRun json({"--port", "sim:2", "--id", "2", "--json", "meters"});
  EXPECT_EQ(json.out.str(), "[-20.0, -20.0, -20.0, -20.0, -20.0, -20.0, -20.0, -20.0]\n");
  CliRun absent({"--port", "sim:2", "--id", "3", "meters"});
  EXPECT_EQ(absent.status, kExitFailure);
  EXPECT_EQ(absent.out.str(), "");
}

TEST(CliTest, shouldSendTheUnacknowledgedCodesWithoutWaiting) {
  CliRun run({"--port", "sim:0", "send", "143"});
  EXPECT_EQ(run.status, kExitOk);
  EXPECT_EQ(run.out.str(), "");
  EXPECT_EQ(run.simulator->Device(0).FramesHandled(143), 1);
}

TEST(CliTest, shouldSayWhyAPortWillNotOpen) {
  CliRun run({"--port", "/dev/talvex-no-such-port", "ping"});
  EXPECT_EQ(run.status, kExitFailure);
  EXPECT_NE(run.err.str().find("cannot open serial port /dev/talvex-no-such-port"),
            std::string::npos);
}

}  // namespace
}  // namespace talvex::cli
