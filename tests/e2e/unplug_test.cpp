// The desktop program on real lines whose port goes away under it: a pseudo-terminal pair
// stopped (an adapter pulled out) and a ser2net gateway stopped, each brought back and reopened
// from the main window; and the programs' sockets: nothing listens that should not.
#include <gtest/gtest.h>
#include <unistd.h>

#include <QFile>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QTextStream>
#include <QThread>

#include "../app/toolbar_harness.h"
#include "process.h"

namespace talvex::testing {
namespace {

using params::ParamKind;

std::vector<std::string> Messages(const AppHarness& app) {
  std::vector<std::string> texts;
  for (const Shown& shown : app.dialogs.shown)
    if (shown.kind == "message") texts.push_back(shown.title + ": " + shown.text);
  return texts;
}

// What a line the test can take away and bring back must offer.
class Unpluggable {
 public:
  virtual ~Unpluggable() = default;
  virtual std::string Port() const = 0;
  virtual void Unplug() = 0;
  virtual void PlugBack() = 0;
};

// A socat pair with fixed names; the simulator serves one end, the program opens the other.
class PtyLine final : public Unpluggable {
 public:
  PtyLine() { PlugBack(); }
  std::string Port() const override { return (dir_.path() + "/port").toStdString(); }
  void Unplug() override {
    sim_.reset();
    pair_.reset();
  }
  void PlugBack() override {
    pair_ = std::make_unique<NamedPtyPair>(dir_.path());
    EXPECT_TRUE(pair_->Ready()) << "socat must be installed";
    sim_ = std::make_unique<ChildProcess>(
        TALVEX_SIM_PATH,
        QStringList{"--ids", "3", "--device", QString::fromStdString(pair_->SimEnd())});
    EXPECT_FALSE(sim_->ReadLine(QProcess::StandardOutput).empty());
  }

 private:
  QTemporaryDir dir_;
  std::unique_ptr<NamedPtyPair> pair_;
  std::unique_ptr<ChildProcess> sim_;
};

// The simulator on a pseudo-terminal, ser2net serving it on a loopback TCP port.
class GatewayLine final : public Unpluggable {
 public:
  GatewayLine() : sim_(TALVEX_SIM_PATH, {"--ids", "3", "--pty"}), port_(FreeTcpPort()) {
    const std::string pty = sim_.ReadLine(QProcess::StandardOutput);
    QFile config(dir_.filePath("ser2net.yaml"));
    EXPECT_TRUE(config.open(QIODevice::WriteOnly));
    QTextStream(&config) << "%YAML 1.1\n---\nconnection: &talvex\n"
                         << "    accepter: tcp,127.0.0.1," << port_ << "\n"
                         << "    connector: serialdev," << QString::fromStdString(pty)
                         << ",9600n81,local\n"
                         << "    options:\n      kickolduser: true\n";
    PlugBack();
  }
  std::string Port() const override { return "tcp:127.0.0.1:" + std::to_string(port_); }
  void Unplug() override { gateway_.reset(); }
  void PlugBack() override {
    gateway_ = std::make_unique<ChildProcess>(
        "ser2net", QStringList{"-n", "-d", "-c", dir_.filePath("ser2net.yaml")});
    EXPECT_TRUE(gateway_->Started()) << "ser2net must be installed";
    EXPECT_TRUE(WaitForListener(port_));
  }

 private:
  QTemporaryDir dir_;
  ChildProcess sim_;
  int port_;
  std::unique_ptr<ChildProcess> gateway_;
};

// The port goes away while an editor is open: the next exchange finds it gone, which is told
// once, and the editor closes. The port comes back; File > Reopen port opens it without a
// restart, and the device connects and takes an edit again.
void UnplugAndPlugBack(Unpluggable& line) {
  AppHarness app(line.Port());
  ASSERT_EQ(app.Start(Choice(app::SearchMode::SingleDevice, 3)), app::StartupOutcome::DevicesFound);
  editor::CtrlWindow& editor = OpenEditor(app, 3);
  line.Unplug();
  QThread::msleep(200);
  editor.Model().Commit({ParamKind::Level, 2, 0}, "-3");
  app.Settle();
  const std::vector<std::string> lost{"Communication problem: " + app.Session().PortLostMessage()};
  EXPECT_EQ(Messages(app), lost);
  EXPECT_FALSE(app.window->Slots().SlotOfDevice(3).has_value());
  EXPECT_TRUE(app.quits->isEmpty());

  line.PlugBack();
  app.window->ReopenPortAction().trigger();
  app.Settle();
  EXPECT_FALSE(app.Session().PortLost());
  editor::CtrlWindow& again = OpenEditor(app, 3);
  again.Model().Commit({ParamKind::Level, 2, 0}, "-4");
  app.Settle();
  EXPECT_EQ(Messages(app), lost);
  EXPECT_NE(app.window->Editor(*app.window->Slots().SlotOfDevice(3)), nullptr);
}

TEST(UnplugTest, shouldGoOnAfterAPseudoTerminalWentAwayAndReopenIt) {
  PtyLine line;
  UnplugAndPlugBack(line);
}

TEST(UnplugTest, shouldGoOnAfterTheSer2netGatewayStoppedAndReopenIt) {
  GatewayLine line;
  UnplugAndPlugBack(line);
}

// The simulator listens on the loopback address unless told another; the desktop program (its
// whole start on a gateway, and in this process with editors and the line monitor open) and
// talvexctl listen on nothing.
TEST(ListeningTest, shouldListenOnlyWhereTold) {
  struct Case {
    QStringList args;
    std::string printed;
    std::string listening;  // the kernel's notation, port left out
  };
  const Case cases[] = {
      {{"--tcp", "0"}, "tcp:127.0.0.1:", "tcp 0100007F:"},
      {{"--tcp", "0", "--bind", "127.0.0.2"}, "tcp:127.0.0.2:", "tcp 0200007F:"},
  };
  {
    AppHarness app("sim:0,1,2");
    app.Start(Choice(app::SearchMode::AllIds));
    OpenEditor(app, 0);
    OpenEditor(app, 1);
    app.window->ShowLineMonitor();
    EXPECT_EQ(ListeningSockets(getpid()), std::vector<std::string>{});
  }
  for (const Case& c : cases) {
    ChildProcess sim(TALVEX_SIM_PATH, c.args);
    const std::string printed = sim.ReadLine(QProcess::StandardOutput);
    ASSERT_EQ(printed.rfind(c.printed, 0), 0u) << printed;
    const std::vector<std::string> listening = ListeningSockets(sim.Pid());
    ASSERT_EQ(listening.size(), 1u);
    EXPECT_EQ(listening[0].rfind(c.listening, 0), 0u) << listening[0];
  }

  QTcpServer silent;  // a gateway that takes the connection and never answers
  ASSERT_TRUE(silent.listen(QHostAddress::LocalHost));
  const QString gateway = QString("tcp:127.0.0.1:%1").arg(silent.serverPort());
  QTemporaryDir config;
  for (const auto& [program, args] : std::vector<std::pair<QString, QStringList>>{
           {TALVEXCTL_PATH, {"--port", gateway, "--id", "0", "get", "out1.level"}},
           {TALVEX_PATH, {"--no-splash", "--config-dir", config.path(), "--port", gateway}}}) {
    ChildProcess child(program, args);
    ASSERT_TRUE(child.Started());
    QThread::msleep(1500);
    EXPECT_EQ(ListeningSockets(child.Pid()), std::vector<std::string>{}) << program.toStdString();
  }
}

}  // namespace
}  // namespace talvex::testing
