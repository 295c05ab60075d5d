// Helper programs for end-to-end tests: started, read line by line, and stopped with SIGTERM
// when the test ends.
#pragma once

#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>
#include <memory>
#include <string>
#include <vector>

namespace talvex::testing {

class ChildProcess {
 public:
  ChildProcess(const QString& program, const QStringList& args);
  ~ChildProcess();

  bool Started() const { return started_; }
  // The next line the program prints on `channel`, waiting at most `timeoutMs`; empty if none.
  std::string ReadLine(QProcess::ProcessChannel channel, int timeoutMs = 5000);
  // SIGTERM, then waits for the exit; returns the exit code (-1 if it had to be killed).
  int Terminate();
  std::string AllStderr();
  qint64 Pid() const { return process_->processId(); }

 private:
  std::unique_ptr<QProcess> process_;
  bool started_ = false;
};

// A pair of connected pseudo-terminals made by socat, as a null-modem cable would join two
// serial ports.
class PtyPair {
 public:
  PtyPair();
  bool Ready() const { return !first_.empty() && !second_.empty(); }
  const std::string& First() const { return first_; }
  const std::string& Second() const { return second_; }

 private:
  std::unique_ptr<ChildProcess> socat_;
  std::string first_;
  std::string second_;
};

// A socat pair whose ends are symbolic links with fixed names (`dir`/sim and `dir`/port), so that
// a pair made again after this one was stopped has the same names: an adapter unplugged and
// plugged back comes back under its old name.
class NamedPtyPair {
 public:
  explicit NamedPtyPair(const QString& dir);
  bool Ready() const { return ready_; }
  std::string SimEnd() const { return (dir_ + "/sim").toStdString(); }
  std::string PortEnd() const { return (dir_ + "/port").toStdString(); }

 private:
  QString dir_;
  std::unique_ptr<ChildProcess> socat_;
  bool ready_ = false;
};

// The sockets process `pid` listens on: TCP sockets in the LISTEN state and every UDP socket,
// each as "tcp ADDRESS:PORT" in the kernel's hexadecimal notation (127.0.0.1:2000 is
// "0100007F:07D0").
std::vector<std::string> ListeningSockets(qint64 pid);

// A TCP port that was free a moment ago.
int FreeTcpPort();

// Tries to connect to 127.0.0.1:port until it works or `timeoutMs` passes.
bool WaitForListener(int port, int timeoutMs = 5000);

// Runs a program to its end; returns exit code, stdout, stderr.
struct Finished {
  int status = -1;
  std::string out;
  std::string err;
};
Finished RunToEnd(const QString& program, const QStringList& args, int timeoutMs = 60000);

}  // namespace talvex::testing
