// talvex-sim: simulated TALVEX processors on a pseudo-terminal, an existing serial device (one
// end of a socat pair), or a loopback TCP port. Prints where it listens, then serves until
// SIGINT or SIGTERM.
#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <signal.h>
#include <sys/socket.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <iostream>
#include <map>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "sim/sim_line.h"

namespace {

using Clock = std::chrono::steady_clock;
using talvex::sim::FaultPlan;
using talvex::sim::SimLine;

volatile sig_atomic_t stopRequested = 0;

void OnStopSignal(int) {
  stopRequested = 1;
}

struct Options {
  std::vector<int> ids{0};
  int systemType = 0;
  enum class Mode { Pty, Device, Tcp } mode = Mode::Pty;
  std::string device;
  int tcpPort = 0;
  bool paced = false;
  FaultPlan faults;
};

const char* kUsage =
    "usage: talvex-sim [--ids ID,ID,...] [--type 0|1|2] [--pty | --device PATH | --tcp PORT]\n"
    "                  [--paced] [--silent N] [--silent-code CODE] [--vanish-after N]\n"
    "                  [--second-poll] [--wrong-poll]\n"
    "                  [--late MS] [--garbage N] [--corrupt INDEX] [--drop-requests RATE]\n"
    "                  [--drop-replies RATE] [--corrupt-rate RATE] [--max-delay MS] [--seed N]\n"
    "  --pty          serve a new pseudo-terminal and print its path (default)\n"
    "  --device PATH  serve an existing terminal, e.g. one end of a socat pty pair\n"
    "  --tcp PORT     serve raw bytes on 127.0.0.1:PORT (0 picks a free port); prints "
    "tcp:HOST:PORT\n"
    "  --paced        reply at the speed of a 9600-baud line\n";

[[noreturn]] void UsageError(const std::string& message) {
  std::cerr << "talvex-sim: " << message << '\n' << kUsage;
  std::exit(2);
}

long long NumberArg(const std::string& option, const std::string& text, long long min,
                    long long max) {
  char* end = nullptr;
  errno = 0;
  const long long value = std::strtoll(text.c_str(), &end, 10);
  if (text.empty() || *end != '\0' || errno != 0 || value < min || value > max)
    UsageError(option + " \"" + text + "\" is not a number from " + std::to_string(min) + " to " +
               std::to_string(max));
  return value;
}

double RateArg(const std::string& option, const std::string& text) {
  char* end = nullptr;
  const double value = std::strtod(text.c_str(), &end);
  if (text.empty() || *end != '\0' || !(value >= 0.0 && value <= 1.0))
    UsageError(option + " \"" + text + "\" is not a rate from 0 to 1");
  return value;
}

std::vector<int> IdsArg(const std::string& text) {
  std::vector<int> ids;
  std::stringstream stream(text);
  for (std::string item; std::getline(stream, item, ',');)
    ids.push_back(static_cast<int>(NumberArg("--ids", item, 0, 32)));
  if (ids.empty()) UsageError("--ids needs at least one ID");
  return ids;
}

// Options that take no value, and options that take one (parsed and stored by their setter).
using Flag = void (*)(Options&);
using Setter = void (*)(Options&, const std::string& option, const std::string& value);

const std::map<std::string, Flag> kFlags = {
    {"--pty", [](Options& o) { o.mode = Options::Mode::Pty; }},
    {"--paced", [](Options& o) { o.paced = true; }},
    {"--second-poll", [](Options& o) { o.faults.answerSecondPollOnly = true; }},
    {"--wrong-poll", [](Options& o) { o.faults.wrongPollByte = true; }},
};

int Int(const std::string& option, const std::string& text, long long max) {
  return static_cast<int>(NumberArg(option, text, 0, max));
}

std::chrono::milliseconds Ms(const std::string& option, const std::string& text) {
  return std::chrono::milliseconds(NumberArg(option, text, 0, 600'000));
}

const std::map<std::string, Setter> kSetters = {
    {"--ids", [](Options& o, const std::string&, const std::string& v) { o.ids = IdsArg(v); }},
    {"--type",
     [](Options& o, const std::string& n, const std::string& v) { o.systemType = Int(n, v, 2); }},
    {"--device",
     [](Options& o, const std::string&, const std::string& v) {
       o.mode = Options::Mode::Device;
       o.device = v;
     }},
    {"--tcp",
     [](Options& o, const std::string& n, const std::string& v) {
       o.mode = Options::Mode::Tcp;
       o.tcpPort = Int(n, v, 65535);
     }},
    {"--silent", [](Options& o, const std::string& n,
                    const std::string& v) { o.faults.silentFrames = Int(n, v, 1'000'000); }},
    {"--silent-code",
     [](Options& o, const std::string& n, const std::string& v) {
       o.faults.silentCode = static_cast<std::uint8_t>(Int(n, v, 255));
     }},
    {"--vanish-after",
     [](Options& o, const std::string& n, const std::string& v) {
       o.faults.vanishAfterFrames = Int(n, v, 1'000'000);
     }},
    {"--late", [](Options& o, const std::string& n,
                  const std::string& v) { o.faults.replyDelay = Ms(n, v); }},
    {"--garbage", [](Options& o, const std::string& n,
                     const std::string& v) { o.faults.garbageBytes = Int(n, v, 1000); }},
    {"--corrupt", [](Options& o, const std::string& n,
                     const std::string& v) { o.faults.corruptIndex = Int(n, v, 303); }},
    {"--drop-requests", [](Options& o, const std::string& n,
                           const std::string& v) { o.faults.dropRequestRate = RateArg(n, v); }},
    {"--drop-replies", [](Options& o, const std::string& n,
                          const std::string& v) { o.faults.dropReplyRate = RateArg(n, v); }},
    {"--corrupt-rate", [](Options& o, const std::string& n,
                          const std::string& v) { o.faults.corruptRate = RateArg(n, v); }},
    {"--max-delay", [](Options& o, const std::string& n,
                       const std::string& v) { o.faults.maxRandomDelay = Ms(n, v); }},
    {"--seed",
     [](Options& o, const std::string& n, const std::string& v) {
       o.faults.seed = static_cast<std::uint32_t>(NumberArg(n, v, 0, 4'294'967'295LL));
     }},
};

Options ParseOptions(int argc, char** argv) {
  Options options;
  for (int i = 1; i < argc; ++i) {
    const std::string arg = argv[i];
    if (arg == "--help" || arg == "-h") {
      std::cout << kUsage;
      std::exit(0);
    }
    if (const auto flag = kFlags.find(arg); flag != kFlags.end()) {
      flag->second(options);
    } else if (const auto setter = kSetters.find(arg); setter != kSetters.end()) {
      if (i + 1 >= argc) UsageError(arg + " needs a value");
      setter->second(options, arg, argv[++i]);
    } else {
      UsageError("unknown option \"" + arg + "\"");
    }
  }
  return options;
}

[[noreturn]] void SystemError(const std::string& what) {
  std::cerr << "talvex-sim: " << what << ": " << std::strerror(errno) << '\n';
  std::exit(1);
}

void MakeRaw(int fd) {
  termios settings{};
  if (tcgetattr(fd, &settings) != 0) return;  // not a terminal: nothing to set
  cfmakeraw(&settings);
  cfsetispeed(&settings, B9600);
  cfsetospeed(&settings, B9600);
  tcsetattr(fd, TCSANOW, &settings);
}

// A new pseudo-terminal. The sim keeps the far end open too, so that the line stays up while
// clients come and go.
int OpenPty(std::string& path, int& keepOpen) {
  const int master = posix_openpt(O_RDWR | O_NOCTTY);
  if (master < 0 || grantpt(master) != 0 || unlockpt(master) != 0)
    SystemError("cannot make a pseudo-terminal");
  path = ptsname(master);
  keepOpen = open(path.c_str(), O_RDWR | O_NOCTTY);
  if (keepOpen < 0) SystemError("cannot open " + path);
  MakeRaw(keepOpen);
  MakeRaw(master);
  return master;
}

int Listen(int& port) {
  const int fd = socket(AF_INET, SOCK_STREAM, 0);
  if (fd < 0) SystemError("cannot make a socket");
  const int yes = 1;
  setsockopt(fd, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(static_cast<std::uint16_t>(port));
  if (bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 || listen(fd, 1) != 0)
    SystemError("cannot listen on 127.0.0.1:" + std::to_string(port));
  socklen_t length = sizeof address;
  getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length);
  port = ntohs(address.sin_port);
  return fd;
}

class Server {
 public:
  Server(SimLine& line) : line_(line) {}

  // Serves until a stop signal. `listener` >= 0 means `peer` comes from accept() on it.
  void Run(int peer, int listener, const sigset_t& unblocked) {
    peer_ = peer;
    while (!stopRequested) {
      pollfd fds[2] = {{peer_, POLLIN, 0}, {listener, POLLIN, 0}};
      const nfds_t count = listener >= 0 ? 2 : 1;
      if (peer_ < 0) fds[0].fd = -1;
      const timespec timeout = NextTimeout();
      const int ready = ppoll(fds, count, outgoing_.empty() ? nullptr : &timeout, &unblocked);
      if (ready < 0 && errno != EINTR) SystemError("poll");
      if (ready > 0 && (fds[0].revents & (POLLIN | POLLHUP | POLLERR))) ReadPeer(listener >= 0);
      if (ready > 0 && count == 2 && (fds[1].revents & POLLIN)) Accept(listener);
      WriteDue();
    }
  }

 private:
  timespec NextTimeout() const {
    if (outgoing_.empty()) return {};
    const auto wait = std::max(Clock::duration::zero(), outgoing_.front().first - Clock::now());
    const auto ns = std::chrono::duration_cast<std::chrono::nanoseconds>(wait).count();
    return {static_cast<time_t>(ns / 1'000'000'000), static_cast<long>(ns % 1'000'000'000)};
  }

  void ReadPeer(bool isSocket) {
    std::uint8_t buffer[512];
    const ssize_t got = read(peer_, buffer, sizeof buffer);
    if (got > 0) {
      const auto now = Clock::now();
      for (const auto& byte : line_.Receive(std::span(buffer, static_cast<std::size_t>(got))))
        outgoing_.emplace_back(now + byte.at, byte.value);
      return;
    }
    if (got == 0 || (errno != EAGAIN && errno != EINTR)) {
      if (isSocket) {
        close(peer_);
        peer_ = -1;
        outgoing_.clear();
      } else {
        usleep(10'000);  // the terminal's other end is closed; wait for the next client
      }
    }
  }

  void Accept(int listener) {
    const int client = accept(listener, nullptr, nullptr);
    if (client < 0) return;
    if (peer_ >= 0) close(peer_);  // one client at a time, like a serial line
    const int yes = 1;
    setsockopt(client, IPPROTO_TCP, 1 /* TCP_NODELAY */, &yes, sizeof yes);
    peer_ = client;
    outgoing_.clear();
  }

  void WriteDue() {
    std::vector<std::uint8_t> due;
    const auto now = Clock::now();
    while (!outgoing_.empty() && outgoing_.front().first <= now) {
      due.push_back(outgoing_.front().second);
      outgoing_.pop_front();
    }
    if (due.empty() || peer_ < 0) return;
    std::size_t written = 0;
    while (written < due.size()) {
      const ssize_t n = write(peer_, due.data() + written, due.size() - written);
      if (n < 0 && errno == EINTR) continue;
      if (n <= 0) return;  // the client went away; what it missed is lost, as on a real line
      written += static_cast<std::size_t>(n);
    }
  }

  SimLine& line_;
  int peer_ = -1;
  std::deque<std::pair<Clock::time_point, std::uint8_t>> outgoing_;
};

}  // namespace

int main(int argc, char** argv) {
  const Options options = ParseOptions(argc, argv);
  SimLine line(options.ids, options.systemType);
  line.SetPaced(options.paced);
  for (int id : options.ids)
    line.Faults(id) = options.faults;

  // Stop signals stay blocked except while waiting in ppoll, so none is lost between checks.
  sigset_t blocked;
  sigset_t unblocked;
  sigemptyset(&blocked);
  sigaddset(&blocked, SIGINT);
  sigaddset(&blocked, SIGTERM);
  sigprocmask(SIG_BLOCK, &blocked, &unblocked);
  struct sigaction action {};
  action.sa_handler = OnStopSignal;
  sigaction(SIGINT, &action, nullptr);
  sigaction(SIGTERM, &action, nullptr);
  signal(SIGPIPE, SIG_IGN);

  Server server(line);
  int keepOpen = -1;
  if (options.mode == Options::Mode::Pty) {
    std::string path;
    const int master = OpenPty(path, keepOpen);
    std::cout << path << std::endl;
    server.Run(master, -1, unblocked);
  } else if (options.mode == Options::Mode::Device) {
    const int fd = open(options.device.c_str(), O_RDWR | O_NOCTTY);
    if (fd < 0) SystemError("cannot open " + options.device);
    MakeRaw(fd);
    std::cout << options.device << std::endl;
    server.Run(fd, -1, unblocked);
  } else {
    int port = options.tcpPort;
    const int listener = Listen(port);
    std::cout << "tcp:127.0.0.1:" << port << std::endl;
    server.Run(-1, listener, unblocked);
  }
  int frames = 0;
  for (int id : options.ids)
    frames += line.Device(id).FramesHandled();
  std::cerr << "talvex-sim: stopped after " << frames << " frames\n";
  if (keepOpen >= 0) close(keepOpen);
  return 0;
}
