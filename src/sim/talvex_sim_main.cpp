// talvex-sim: simulated TALVEX processors on a pseudo-terminal, an existing serial device (one
// end of a socat pair), or a loopback TCP port. Prints where it listens, then serves until
// SIGINT or SIGTERM.
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "sim/posix_serve.h"
#include "sim/sim_line.h"
#include "talvex_version.h"

namespace {

using talvex::sim::FaultPlan;
using talvex::sim::ServeTarget;
using talvex::sim::SimLine;

struct Options {
  std::vector<int> ids{0};
  int systemType = 0;
  ServeTarget target;
  bool paced = false;
  bool blankNames = false;
  FaultPlan faults;
};

const char* kUsage =
    "usage: talvex-sim [--ids ID,ID,...] [--type 0|1|2] [--pty | --device PATH | --tcp PORT]\n"
    "                  [--bind ADDRESS]\n"
    "                  [--paced] [--blank-names] [--silent N] [--silent-code CODE]\n"
    "                  [--vanish-after N] [--second-poll] [--wrong-poll]\n"
    "                  [--late MS] [--garbage N] [--corrupt INDEX] [--drop-requests RATE]\n"
    "                  [--drop-replies RATE] [--corrupt-rate RATE] [--max-delay MS] [--seed N]\n"
    "  --pty          serve a new pseudo-terminal and print its path (default)\n"
    "  --device PATH  serve an existing terminal, e.g. one end of a socat pty pair\n"
    "  --tcp PORT     serve raw bytes on 127.0.0.1:PORT (0 picks a free port); prints "
    "tcp:HOST:PORT\n"
    "  --bind ADDRESS listen on this numeric IPv4 or IPv6 address instead of 127.0.0.1\n"
    "  --paced        reply at the speed of a 9600-baud line\n"
    "  --blank-names  devices named with 16 blanks, as from the factory (default: \"SIM 2x2 00\",\n"
    "                 the system type and the ID)\n"
    "  --version      print the version and stop\n";

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
    {"--pty", [](Options& o) { o.target.mode = ServeTarget::Mode::Pty; }},
    {"--paced", [](Options& o) { o.paced = true; }},
    {"--blank-names", [](Options& o) { o.blankNames = true; }},
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
       o.target.mode = ServeTarget::Mode::Device;
       o.target.device = v;
     }},
    {"--tcp",
     [](Options& o, const std::string& n, const std::string& v) {
       o.target.mode = ServeTarget::Mode::Tcp;
       o.target.tcpPort = Int(n, v, 65535);
     }},
    {"--bind",
     [](Options& o, const std::string&, const std::string& v) { o.target.bindAddress = v; }},
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
    if (arg == "--version") {
      std::cout << "talvex-sim " << talvex::kVersion << '\n';
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

}  // namespace

int main(int argc, char** argv) {
  const Options options = ParseOptions(argc, argv);
  SimLine line(options.ids, options.systemType);
  line.SetPaced(options.paced);
  for (int id : options.ids) {
    line.Faults(id) = options.faults;
    if (options.blankNames) line.Device(id).SetName({});
  }
  talvex::sim::Serve(line, options.target);
  int frames = 0;
  for (int id : options.ids)
    frames += line.Device(id).FramesHandled();
  std::cerr << "talvex-sim: stopped after " << frames << " frames\n";
  return 0;
}
