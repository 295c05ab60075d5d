#include "sim/posix_serve.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netdb.h>
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
#include <string>
#include <vector>

namespace talvex::sim {

namespace {

using Clock = std::chrono::steady_clock;

volatile sig_atomic_t stopRequested = 0;

void OnStopSignal(int) {
  stopRequested = 1;
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

// Listens on `address` (IPv4 or IPv6, numeric), port `port` (0: the system picks one, written
// back). Returns the socket.
int Listen(const std::string& address, int& port) {
  addrinfo hints{};
  hints.ai_family = AF_UNSPEC;
  hints.ai_socktype = SOCK_STREAM;
  hints.ai_flags = AI_NUMERICHOST | AI_NUMERICSERV | AI_PASSIVE;
  addrinfo* found = nullptr;
  if (getaddrinfo(address.c_str(), std::to_string(port).c_str(), &hints, &found) != 0 || !found)
    SystemError("cannot listen on " + address + ": not a numeric IPv4 or IPv6 address");
  const int fd = socket(found->ai_family, SOCK_STREAM, 0);
  if (fd < 0) SystemError("cannot make a socket");
  const int yes = 1;
  setsockopt(fd, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
  const bool listening = bind(fd, found->ai_addr, found->ai_addrlen) == 0 && listen(fd, 1) == 0;
  freeaddrinfo(found);
  if (!listening) SystemError("cannot listen on " + address + ":" + std::to_string(port));
  sockaddr_storage bound{};
  socklen_t length = sizeof bound;
  getsockname(fd, reinterpret_cast<sockaddr*>(&bound), &length);
  port =
      ntohs(bound.ss_family == AF_INET6 ? reinterpret_cast<const sockaddr_in6*>(&bound)->sin6_port
                                        : reinterpret_cast<const sockaddr_in*>(&bound)->sin_port);
  return fd;
}

class Server {
 public:
  explicit Server(SimLine& line) : line_(line) {}

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

void Serve(SimLine& line, const ServeTarget& target) {
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
  if (target.mode == ServeTarget::Mode::Pty) {
    std::string path;
    const int master = OpenPty(path, keepOpen);
    std::cout << path << std::endl;
    server.Run(master, -1, unblocked);
  } else if (target.mode == ServeTarget::Mode::Device) {
    const int fd = open(target.device.c_str(), O_RDWR | O_NOCTTY);
    if (fd < 0) SystemError("cannot open " + target.device);
    MakeRaw(fd);
    std::cout << target.device << std::endl;
    server.Run(fd, -1, unblocked);
  } else {
    int port = target.tcpPort;
    const int listener = Listen(target.bindAddress, port);
    const bool v6 = target.bindAddress.find(':') != std::string::npos;
    std::cout << "tcp:" << (v6 ? "[" + target.bindAddress + "]" : target.bindAddress) << ":" << port
              << std::endl;
    server.Run(-1, listener, unblocked);
  }
  if (keepOpen >= 0) close(keepOpen);
}

}  // namespace talvex::sim
