// Builds the line a port text names: the transport and the clock the link must use with it.
#pragma once

#include <memory>

#include "link/clock.h"
#include "link/port_spec.h"
#include "link/transport.h"
#include "sim/sim_line.h"

namespace talvex::link {

struct Line {
  std::unique_ptr<Clock> clock;  // declared first: the transport refers to it
  std::unique_ptr<Transport> transport;
  // The simulated processors when the port is "sim...", else null.
  std::shared_ptr<sim::SimLine> simulator;
};

// Unpaced simulated lines run on a virtual clock: the waits of the protocol are kept in full,
// but nobody has to sit through them. Every other line runs on the steady clock.
Line MakeLine(const PortSpec& spec);

}  // namespace talvex::link
