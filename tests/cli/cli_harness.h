// Running talvexctl in a test: on a line of its own, or on simulated devices that stay between
// runs.
#pragma once

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "cli/cli.h"
#include "link/sim_transport.h"

namespace talvex::cli {

// One talvexctl run on the line its --port names; a simulated line stays for the test to look
// into, and `prepare` may set its faults before the run.
struct CliRun {
  explicit CliRun(const std::vector<std::string>& args,
                  std::function<void(sim::SimLine&)> prepare = {}) {
    CliHooks hooks;
    hooks.makeLine = [&](const link::PortSpec& port) {
      link::Line line = link::MakeLine(port);
      simulator = line.simulator;
      if (prepare && simulator) prepare(*simulator);
      return line;
    };
    status = RunCli(args, out, err, hooks);
  }

  // Frames the simulated devices have handled, all IDs together.
  int FramesSeen() const {
    if (!simulator) return 0;
    int frames = 0;
    for (int id : simulator->DeviceIds())
      frames += simulator->Device(id).FramesHandled();
    return frames;
  }

  std::ostringstream out;
  std::ostringstream err;
  int status = -1;
  std::shared_ptr<sim::SimLine> simulator;
};

// A line on simulated devices that outlive it, so that several runs talk to the same devices.
inline link::Line LineOn(const std::shared_ptr<sim::SimLine>& simulator) {
  link::Line line;
  line.clock = std::make_unique<link::VirtualClock>();
  line.simulator = simulator;
  line.transport = std::make_unique<link::SimTransport>(simulator, *line.clock, "sim");
  return line;
}

// One simulated line that outlives the talvexctl runs made on it.
class Bench {
 public:
  explicit Bench(const std::vector<int>& ids) : simulator(std::make_shared<sim::SimLine>(ids)) {
    hooks_.makeLine = [this](const link::PortSpec&) { return LineOn(simulator); };
    std::filesystem::create_directories(dir_);
  }
  ~Bench() { std::filesystem::remove_all(dir_); }

  int Run(std::vector<std::string> args) {
    out.str("");
    err.str("");
    const int before = Frames();
    args.insert(args.begin(), {"--port", "sim"});
    const int status = RunCli(args, out, err, hooks_);
    framesOfLastRun = Frames() - before;
    return status;
  }

  int Frames() const {
    int frames = 0;
    for (int id : simulator->DeviceIds())
      frames += simulator->Device(id).FramesHandled();
    return frames;
  }

  void PutMemory(int id, std::size_t address, std::string_view bytes) {
    std::copy(bytes.begin(), bytes.end(), simulator->Device(id).DeviceMemory().begin() + address);
  }

  std::string Path(const char* name) const { return (dir_ / name).string(); }

  std::vector<std::uint8_t> FileBytes(const std::string& path) const {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
  }

  void WriteFile(const std::string& path, const std::vector<std::uint8_t>& bytes) const {
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<long>(bytes.size()));
  }

  std::shared_ptr<sim::SimLine> simulator;
  std::ostringstream out;
  std::ostringstream err;
  int framesOfLastRun = 0;

 private:
  CliHooks hooks_;
  // A folder of its own, even beside another bench of the same test.
  static int NextNumber() {
    static int number = 0;
    return ++number;
  }
  std::filesystem::path dir_ =
      std::filesystem::temp_directory_path() /
      ("talvex_cli_" + std::to_string(::getpid()) + "_" + std::to_string(NextNumber()));
};

}  // namespace talvex::cli
