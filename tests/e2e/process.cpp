#include "process.h"

#include <signal.h>

#include <QDeadlineTimer>
#include <QFile>
#include <QTcpServer>
#include <QTcpSocket>
#include <QThread>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

namespace talvex::testing {

ChildProcess::ChildProcess(const QString& program, const QStringList& args)
    : process_(std::make_unique<QProcess>()) {
  process_->start(program, args);
  started_ = process_->waitForStarted(5000);
}

ChildProcess::~ChildProcess() {
  Terminate();
}

std::string ChildProcess::ReadLine(QProcess::ProcessChannel channel, int timeoutMs) {
  process_->setReadChannel(channel);
  QDeadlineTimer deadline(timeoutMs);
  while (!process_->canReadLine()) {
    if (deadline.hasExpired() ||
        !process_->waitForReadyRead(static_cast<int>(deadline.remainingTime())))
      return {};
  }
  return process_->readLine().trimmed().toStdString();
}

int ChildProcess::Terminate() {
  if (process_->state() == QProcess::NotRunning) {
    return process_->exitStatus() == QProcess::NormalExit ? process_->exitCode() : -1;
  }
  ::kill(static_cast<pid_t>(process_->processId()), SIGTERM);
  if (!process_->waitForFinished(5000)) {
    process_->kill();
    process_->waitForFinished(2000);
    return -1;
  }
  return process_->exitStatus() == QProcess::NormalExit ? process_->exitCode() : -1;
}

std::string ChildProcess::AllStderr() {
  return process_->readAllStandardError().toStdString();
}

PtyPair::PtyPair() {
  socat_ = std::make_unique<ChildProcess>(
      "socat", QStringList{"-d", "-d", "pty,raw,echo=0", "pty,raw,echo=0"});
  if (!socat_->Started()) return;
  // socat -d -d names each end: "... N PTY is /dev/pts/4".
  for (std::string* end : {&first_, &second_}) {
    for (std::string line; (line = socat_->ReadLine(QProcess::StandardError)).size() > 0;) {
      const auto at = line.find("PTY is ");
      if (at != std::string::npos) {
        *end = line.substr(at + 7);
        break;
      }
    }
  }
}

NamedPtyPair::NamedPtyPair(const QString& dir) : dir_(dir) {
  QFile::remove(dir + "/sim");
  QFile::remove(dir + "/port");
  socat_ = std::make_unique<ChildProcess>(
      "socat",
      QStringList{"pty,raw,echo=0,link=" + dir + "/sim", "pty,raw,echo=0,link=" + dir + "/port"});
  QDeadlineTimer deadline(5000);
  while (socat_->Started() && !deadline.hasExpired()) {
    if (QFile::exists(dir + "/sim") && QFile::exists(dir + "/port")) {
      ready_ = true;
      return;
    }
    QThread::msleep(10);
  }
}

std::vector<std::string> ListeningSockets(qint64 pid) {
  const std::string proc = "/proc/" + std::to_string(pid);
  std::set<std::string> inodes;
  std::error_code error;
  for (const auto& fd : std::filesystem::directory_iterator(proc + "/fd", error)) {
    const std::string target = std::filesystem::read_symlink(fd.path(), error).string();
    if (target.rfind("socket:[", 0) == 0) inodes.insert(target.substr(8, target.size() - 9));
  }
  std::vector<std::string> listening;
  for (const char* table : {"tcp", "tcp6", "udp", "udp6"}) {
    std::ifstream in(proc + "/net/" + table);
    std::string line;
    std::getline(in, line);  // the heading
    while (std::getline(in, line)) {
      std::istringstream fields(line);
      std::string slot, local, remote, state, queues, timer, retransmits, uid, timeout, inode;
      fields >> slot >> local >> remote >> state >> queues >> timer >> retransmits >> uid >>
          timeout >> inode;
      const bool tcp = table[0] == 't';
      if (inodes.contains(inode) && (!tcp || state == "0A"))
        listening.push_back(std::string(tcp ? "tcp " : "udp ") + local);
    }
  }
  return listening;
}

int FreeTcpPort() {
  QTcpServer server;
  server.listen(QHostAddress::LocalHost, 0);
  return server.serverPort();
}

bool WaitForListener(int port, int timeoutMs) {
  QDeadlineTimer deadline(timeoutMs);
  while (!deadline.hasExpired()) {
    QTcpSocket socket;
    socket.connectToHost(QHostAddress::LocalHost, static_cast<quint16>(port));
    if (socket.waitForConnected(200)) return true;
    QThread::msleep(20);  // refused at once: the server is still starting
  }
  return false;
}

Finished RunToEnd(const QString& program, const QStringList& args, int timeoutMs) {
  QProcess process;
  process.start(program, args);
  Finished finished;
  if (!process.waitForStarted(5000) || !process.waitForFinished(timeoutMs)) {
    process.kill();
    process.waitForFinished(2000);
    return finished;
  }
  finished.status = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
  finished.out = process.readAllStandardOutput().toStdString();
  finished.err = process.readAllStandardError().toStdString();
  return finished;
}

}  // namespace talvex::testing
