// The link and talvexctl on real lines: a pseudo-terminal pair made by socat, and ser2net
// serving a talvex-sim pseudo-terminal over TCP.
#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>
#include <QTextStream>

#include "link/line.h"
#include "link/link.h"
#include "link/search.h"
#include "params/default_image.h"
#include "process.h"

namespace talvex::testing {
namespace {

protocol::Command Command(std::uint8_t code, std::array<std::uint8_t, 8> params = {}) {
  protocol::Command command;
  command.code = code;
  command.params = params;
  return command;
}

class RealLine {
 public:
  explicit RealLine(const std::string& port)
      : line_(link::MakeLine(link::ParsePortSpec(port))), link_(*line_.transport, *line_.clock) {}
  link::Link& Link() { return link_; }

 private:
  link::Line line_;
  link::Link link_;
};

void ExpectAFullConversation(link::Link& link) {
  ASSERT_TRUE(link.OpenPort()) << link.LastOpenError();
  EXPECT_TRUE(link.PollDevice(3, link::PollCommand(3)));
  EXPECT_FALSE(link.PollDevice(4, link::PollCommand(4)));
  ASSERT_EQ(link.SendCommand(3, Command(17, {0x01, 0x70, 0, 0, 'Z'})), link::SendResult::Replied);
  ASSERT_EQ(link.SendCommand(3, Command(16, {0x01, 0x70})), link::SendResult::Replied);
  EXPECT_EQ(link.RxBuffer()[8], 'Z');
  ASSERT_EQ(link.ReadBlock(3, Command(11, {255, 255})), link::BlockResult::Received);
  EXPECT_TRUE(std::equal(params::DefaultImage[0].begin(), params::DefaultImage[0].end(),
                         link.RxBuffer().begin()));
}

TEST(RealLineTest, shouldTalkToTheSimulatorThroughAPseudoTerminalPair) {
  PtyPair pty;
  ASSERT_TRUE(pty.Ready()) << "socat must be installed";
  ChildProcess sim(TALVEX_SIM_PATH, {"--ids", "0,3", "--device", QString::fromStdString(pty.First())});
  ASSERT_EQ(sim.ReadLine(QProcess::StandardOutput), pty.First());
  RealLine line(pty.Second());
  ExpectAFullConversation(line.Link());
  EXPECT_EQ(sim.Terminate(), 0);
  EXPECT_NE(sim.AllStderr().find("talvex-sim: stopped after"), std::string::npos);
}

TEST(RealLineTest, shouldRetransmitToASilentDeviceOverARealLine) {
  PtyPair pty;
  ASSERT_TRUE(pty.Ready());
  ChildProcess sim(TALVEX_SIM_PATH, {"--ids", "2", "--silent", "1", "--garbage", "5", "--device",
                                     QString::fromStdString(pty.First())});
  ASSERT_FALSE(sim.ReadLine(QProcess::StandardOutput).empty());
  RealLine line(pty.Second());
  link::Link& link = line.Link();
  ASSERT_TRUE(link.OpenPort());
  EXPECT_EQ(link.SendCommand(2, Command(9, {3, 0, 0, 0, 0, 0, 0, 1})), link::SendResult::Replied);
  EXPECT_EQ(link.Stats().transmissions, 2);
  // The noise after that reply must not spoil the next exchange.
  ASSERT_EQ(link.SendCommand(2, Command(16, {0, 34})), link::SendResult::Replied);
  EXPECT_EQ(link.RxBuffer()[0], protocol::kFrameStart);
  EXPECT_EQ(link.RxBuffer()[3], 16);
}

TEST(RealLineTest, shouldTalkThroughSer2netOverTcp) {
  ChildProcess sim(TALVEX_SIM_PATH, {"--ids", "0,3", "--pty"});
  const std::string pty = sim.ReadLine(QProcess::StandardOutput);
  ASSERT_FALSE(pty.empty());
  QTemporaryDir dir;
  const int port = FreeTcpPort();
  QFile config(dir.filePath("ser2net.yaml"));
  ASSERT_TRUE(config.open(QIODevice::WriteOnly));
  QTextStream(&config) << "%YAML 1.1\n---\nconnection: &talvex\n"
                       << "    accepter: tcp,127.0.0.1," << port << "\n"
                       << "    connector: serialdev," << QString::fromStdString(pty) << ",9600n81,local\n"
                       << "    options:\n      kickolduser: true\n";
  config.close();
  ChildProcess gateway("ser2net", {"-n", "-d", "-c", config.fileName()});
  ASSERT_TRUE(gateway.Started()) << "ser2net must be installed";
  ASSERT_TRUE(WaitForListener(port));
  {
    RealLine line("tcp:127.0.0.1:" + std::to_string(port));
    ExpectAFullConversation(line.Link());
  }
  const Finished ping = RunToEnd(TALVEXCTL_PATH, {"--port", QString("tcp:127.0.0.1:%1").arg(port),
                                                  "--id", "3", "ping"});
  EXPECT_EQ(ping.status, 0) << ping.err;
  EXPECT_EQ(ping.out, "ID 3 answers\n");
}

TEST(RealLineTest, shouldShowTheFramesOfARealSearch) {
  PtyPair pty;
  ASSERT_TRUE(pty.Ready());
  ChildProcess sim(TALVEX_SIM_PATH, {"--ids", "0,1,31", "--device", QString::fromStdString(pty.First())});
  ASSERT_FALSE(sim.ReadLine(QProcess::StandardOutput).empty());
  const Finished scan =
      RunToEnd(TALVEXCTL_PATH, {"--port", QString::fromStdString(pty.Second()), "--trace", "scan"});
  EXPECT_EQ(scan.status, 0) << scan.err;
  EXPECT_EQ(scan.out, "ID 0\nID 1\nID 31\n");
  EXPECT_NE(scan.err.find("> F0 81 1F 00 00 00 00 00 00 00 00 1F F7\n"
                          "< F0 81 1F 00 81 00 00 00 00 00 00 00 F7\n"),
            std::string::npos);
  // A silent ID is polled twice before the search moves on.
  EXPECT_NE(scan.err.find("> F0 81 02 00 00 00 00 00 00 00 00 02 F7\n"
                          "> F0 81 02 00 00 00 00 00 00 00 00 02 F7\n"),
            std::string::npos);
}

}  // namespace
}  // namespace talvex::testing
