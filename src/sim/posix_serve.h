// Serving a simulated line to other programs: on a new pseudo-terminal, on an existing terminal
// (one end of a socat pair), or on a loopback TCP port. This is the one place where the project
// uses what only POSIX systems have (pseudo-terminals, termios, poll, signals); everything else
// builds on Windows and macOS, and the in-process "sim:" line works there without it.
#pragma once

#include <string>

#include "sim/sim_line.h"

namespace talvex::sim {

struct ServeTarget {
  enum class Mode { Pty, Device, Tcp } mode = Mode::Pty;
  std::string device;  // Mode::Device: the terminal's path
  int tcpPort = 0;     // Mode::Tcp: 0 picks a free port
  // Mode::Tcp: the address listened on. The loopback address unless the user names another:
  // a simulator is for this machine's programs, not for the network.
  std::string bindAddress = "127.0.0.1";
};

// Prints where it serves (the terminal's path, or tcp:ADDRESS:PORT) on stdout, then answers
// the frames that arrive until SIGINT or SIGTERM. Ends the program with a message on stderr and
// status 1 when the terminal or the port cannot be opened.
void Serve(SimLine& line, const ServeTarget& target);

}  // namespace talvex::sim
