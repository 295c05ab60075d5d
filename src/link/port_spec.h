// How a user names a line: "sim" or "sim:0,3,7" (simulated processors in this process, with
// "@9600" appended to pace them at the real line speed), "tcp:HOST:PORT" (a serial-over-TCP
// gateway such as ser2net), or the name of a serial port ("/dev/ttyUSB0", "COM3").
#pragma once

#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

namespace talvex::link {

struct SimPort {
  std::vector<int> ids{0};
  bool paced = false;  // replies take the time they take on a 9600-baud line, in real time
};

struct TcpPort {
  std::string host;
  int port = 0;
};

struct SerialPort {
  std::string name;
};

using PortSpec = std::variant<SimPort, TcpPort, SerialPort>;

class PortSpecError : public std::invalid_argument {
 public:
  using std::invalid_argument::invalid_argument;
};

// Throws PortSpecError with a message naming the text when it is not a port.
PortSpec ParsePortSpec(const std::string& text);

// The canonical text of a spec (ParsePortSpec(ToString(s)) == s).
std::string ToString(const PortSpec& spec);

}  // namespace talvex::link
