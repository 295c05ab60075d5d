#include "link/port_spec.h"

#include <gtest/gtest.h>

namespace talvex::link {
namespace {

TEST(PortSpecTest, shouldParseEveryKindOfLine) {
  struct Case {
    std::string text;
    std::string canonical;
  };
  const Case cases[] = {
      {"sim", "sim:0"},
      {"sim:0,3,7", "sim:0,3,7"},
      {"sim:32", "sim:32"},
      {"sim:0,1,2@9600", "sim:0,1,2@9600"},
      {"sim@9600", "sim:0@9600"},
      {"tcp:127.0.0.1:2000", "tcp:127.0.0.1:2000"},
      {"tcp:gateway.local:4001", "tcp:gateway.local:4001"},
      {"tcp:[::1]:2000", "tcp:[::1]:2000"},
      {"/dev/ttyUSB0", "/dev/ttyUSB0"},
      {"COM3", "COM3"},
      {"simulator", "simulator"},  // a serial port that happens to start with "sim"
  };
  for (const Case& c : cases)
    EXPECT_EQ(ToString(ParsePortSpec(c.text)), c.canonical) << c.text;
}

TEST(PortSpecTest, shouldRefuseBadPortsNamingThem) {
  struct Case {
    std::string text;
    std::string reason;
  };
  const Case cases[] = {
      {"", "the port name is empty"},
      {"sim:", "device ID \"\" is not a number from 0 to 32"},
      {"sim:0,40", "device ID \"40\" is not a number from 0 to 32"},
      {"sim:1,,2", "device ID \"\" is not a number from 0 to 32"},
      {"sim:-1", "device ID \"-1\" is not a number from 0 to 32"},
      {"sim:3,3", "device ID 3 is listed twice"},
      {"sim:0@4800", "device ID \"0@4800\" is not a number from 0 to 32"},
      {"tcp:host", "expected tcp:HOST:PORT"},
      {"tcp::2000", "the host is missing"},
      {"tcp:host:0", "the TCP port must be a number from 1 to 65535"},
      {"tcp:host:70000", "the TCP port must be a number from 1 to 65535"},
      {"tcp:host:20x", "the TCP port must be a number from 1 to 65535"},
      {"tcp:[::1]2000", "expected tcp:[ADDRESS]:PORT"},
      {"tcp", "expected tcp:HOST:PORT"},
      {"/dev/tty USB0", "a port name has no blanks"},
  };
  for (const Case& c : cases) {
    try {
      ParsePortSpec(c.text);
      ADD_FAILURE() << "accepted " << c.text;
    } catch (const PortSpecError& error) {
      EXPECT_EQ(std::string(error.what()), "bad port \"" + c.text + "\": " + c.reason);
    }
  }
}

}  // namespace
}  // namespace talvex::link
