// talvexctl: the command-line tool on the same core as the desktop program.
#pragma once

#include <functional>
#include <iosfwd>
#include <string>
#include <vector>

#include "link/line.h"

namespace talvex::cli {

inline constexpr int kExitOk = 0;
inline constexpr int kExitFailure = 1;  // the device or the line failed, or it refused
inline constexpr int kExitUsage = 2;    // the command line was wrong; nothing was sent

struct CliHooks {
  // Builds the line for a port (tests hand in simulated lines they keep an eye on).
  std::function<link::Line(const link::PortSpec&)> makeLine = link::MakeLine;
};

// The command that draws the response graph: the only one that needs Qt's graphics.
inline constexpr const char* kPlotCommand = "plot";
// Whether a command line runs the plot command.
bool DrawsGraph(const std::vector<std::string>& args);

// Runs one talvexctl command line (without the program name). Never throws.
int RunCli(const std::vector<std::string>& args, std::ostream& out, std::ostream& err,
           const CliHooks& hooks = {});

}  // namespace talvex::cli
