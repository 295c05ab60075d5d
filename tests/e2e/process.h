// Helper programs for end-to-end tests: started, read line by line, and stopped with SIGTERM
// when the test ends.
#pragma once

#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>
#include <memory>
#include <string>

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
