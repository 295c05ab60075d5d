// Running talvexctl in a test: on a line of its own, or on simulated devices that stay between
// runs.
#pragma once

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

}  // namespace talvex::cli
