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
#include "params/image_layout.h"
#include "process.h"
#include "testlib/scripted_transport.h"

namespace talvex::testing {
namespace {

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
  ASSERT_EQ(link.SendCommand(3, testing::MakeCommand(17, {0x01, 0x70, 0, 0, 'Z'})),
            link::SendResult::Replied);
  ASSERT_EQ(link.SendCommand(3, testing::MakeCommand(16, {0x01, 0x70})), link::SendResult::Replied);
  EXPECT_EQ(link.RxBuffer()[8], 'Z');
  ASSERT_EQ(link.ReadBlock(3, testing::MakeCommand(11, {255, 255})), link::BlockResult::Received);
  EXPECT_TRUE(std::equal(params::DefaultImage[0].begin(), params::DefaultImage[0].end(),
                         link.RxBuffer().begin()));
}

TEST(RealLineTest, shouldTalkToTheSimulatorThroughAPseudoTerminalPair) {
  PtyPair pty;
  ASSERT_TRUE(pty.Ready()) << "socat must be installed";
  ChildProcess sim(TALVEX_SIM_PATH,
                   {"--ids", "0,3", "--device", QString::fromStdString(pty.First())});
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
  EXPECT_EQ(link.SendCommand(2, testing::MakeCommand(9, {3, 0, 0, 0, 0, 0, 0, 1})),
            link::SendResult::Replied);
  EXPECT_EQ(link.Stats().transmissions, 2);
  // The noise after that reply must not spoil the next exchange.
  ASSERT_EQ(link.SendCommand(2, testing::MakeCommand(16, {0, 34})), link::SendResult::Replied);
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
                       << "    connector: serialdev," << QString::fromStdString(pty)
                       << ",9600n81,local\n"
                       << "    options:\n      kickolduser: true\n";
  config.close();
  ChildProcess gateway("ser2net", {"-n", "-d", "-c", config.fileName()});
  ASSERT_TRUE(gateway.Started()) << "ser2net must be installed";
  ASSERT_TRUE(WaitForListener(port));
  {
    RealLine line("tcp:127.0.0.1:" + std::to_string(port));
    ExpectAFullConversation(line.Link());
  }
  const Finished ping = RunToEnd(
      TALVEXCTL_PATH, {"--port", QString("tcp:127.0.0.1:%1").arg(port), "--id", "3", "ping"});
  EXPECT_EQ(ping.status, 0) << ping.err;
  EXPECT_EQ(ping.out, "ID 3 answers\n");
}

TEST(RealLineTest, shouldShowTheFramesOfARealSearch) {
  PtyPair pty;
  ASSERT_TRUE(pty.Ready());
  ChildProcess sim(TALVEX_SIM_PATH,
                   {"--ids", "0,1,31", "--device", QString::fromStdString(pty.First())});
  ASSERT_FALSE(sim.ReadLine(QProcess::StandardOutput).empty());
  const Finished scan =
      RunToEnd(TALVEXCTL_PATH, {"--port", QString::fromStdString(pty.Second()), "--trace", "scan"});
  EXPECT_EQ(scan.status, 0) << scan.err;
  EXPECT_EQ(scan.out, "ID 0  SIM 2x2 00\nID 1  SIM 2x2 01\nID 31  SIM 2x2 31\n");
  EXPECT_NE(scan.err.find("> F0 81 1F 00 00 00 00 00 00 00 00 1F F7\n"
                          "< F0 81 1F 00 81 00 00 00 00 00 00 00 F7\n"),
            std::string::npos);
  // A silent ID is polled twice before the search moves on.
  EXPECT_NE(scan.err.find("> F0 81 02 00 00 00 00 00 00 00 00 02 F7\n"
                          "> F0 81 02 00 00 00 00 00 00 00 00 02 F7\n"),
            std::string::npos);
}

TEST(RealLineTest, shouldPushAPresetThroughAPseudoTerminalAndPullTheSameBytesBack) {
  PtyPair pty;
  ASSERT_TRUE(pty.Ready());
  ChildProcess sim(TALVEX_SIM_PATH,
                   {"--ids", "0,3", "--device", QString::fromStdString(pty.First())});
  ASSERT_FALSE(sim.ReadLine(QProcess::StandardOutput).empty());
  const QString port = QString::fromStdString(pty.Second());
  QTemporaryDir dir;
  const QString show = dir.filePath("show.tvx");
  const QString back = dir.filePath("back.tvx");
  // A factory preset with a name and a band: pushed and pulled back, every byte is the same.
  params::PresetImage preset = params::DefaultImage[0];
  std::copy_n("  Bass", 6, preset.begin() + static_cast<long>(params::NameOffset[3]));
  preset[params::EqBandStart[12] + 2] = 42;
  QFile file(show);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  QByteArray bytes(1155, '\0');
  std::copy(preset.begin(), preset.end(), bytes.begin());
  file.write(bytes);
  file.close();

  const Finished push = RunToEnd(TALVEXCTL_PATH, {"--port", port, "--id", "3", "push", show});
  ASSERT_EQ(push.status, 0) << push.err;
  EXPECT_EQ(
      push.out,
      "ID:3 TALVEX - Last preset loaded: come from PC - show.tvx - Type: 2x2 WAY XOVER + SUB\n");
  const Finished pull = RunToEnd(TALVEXCTL_PATH, {"--port", port, "--id", "3", "pull", back});
  ASSERT_EQ(pull.status, 0) << pull.err;
  QFile pulled(back);
  ASSERT_TRUE(pulled.open(QIODevice::ReadOnly));
  const QByteArray got = pulled.readAll();
  ASSERT_EQ(got.size(), 1155);
  EXPECT_EQ(got.left(304), bytes.left(304));

  const Finished other =
      RunToEnd(TALVEXCTL_PATH, {"--port", port, "--file", dir.filePath("six.tvx"), "new", "2"});
  ASSERT_EQ(other.status, 0) << other.err;
  const Finished refused =
      RunToEnd(TALVEXCTL_PATH, {"--port", port, "--id", "3", "push", dir.filePath("six.tvx")});
  EXPECT_EQ(refused.status, 1);
  EXPECT_NE(
      refused.err.find(
          "The new preset is for 6 WAY XOVER, please change Xover-Type from System Setup button"),
      std::string::npos)
      << refused.err;
}

TEST(RealLineTest, shouldStoreAndRecallAPresetAndRefuseThroughAPseudoTerminal) {
  PtyPair pty;
  ASSERT_TRUE(pty.Ready());
  ChildProcess sim(TALVEX_SIM_PATH,
                   {"--ids", "2", "--device", QString::fromStdString(pty.First())});
  ASSERT_FALSE(sim.ReadLine(QProcess::StandardOutput).empty());
  const QStringList device = {"--port", QString::fromStdString(pty.Second()), "--id", "2"};
  const auto run = [&](QStringList args) { return RunToEnd(TALVEXCTL_PATH, device + args); };

  ASSERT_EQ(run({"set", "out4.level", "-3"}).status, 0);
  const Finished store = run({"store", "11", "Live room"});
  ASSERT_EQ(store.status, 0) << store.err;
  EXPECT_EQ(store.out, "11  used  Live room\n");
  ASSERT_EQ(run({"set", "out4.level", "2"}).status, 0);
  const Finished recall = run({"recall", "11"});
  ASSERT_EQ(recall.status, 0) << recall.err;
  EXPECT_EQ(recall.out,
            "ID:2 TALVEX - Last preset loaded: come from DEVICE - Live room        - Type: 2x2 "
            "WAY XOVER + SUB\n");
  const Finished level = run({"get", "out4.level"});
  EXPECT_EQ(level.out, "out4.level = -3\n");

  const Finished empty = run({"recall", "12"});
  EXPECT_EQ(empty.status, 1);
  EXPECT_EQ(empty.err, "Read Preset: Preset empty\n");
  const Finished same = run({"--trace", "copy", "out2", "out2"});
  EXPECT_EQ(same.status, 1);
  EXPECT_EQ(same.err, "Copy Output: Copy not possible, Source=Destination\n");  // no frame traced
}

}  // namespace
}  // namespace talvex::testing
