#include "link/line.h"

#include "link/qt_transports.h"
#include "link/sim_transport.h"

namespace talvex::link {

Line MakeLine(const PortSpec& spec) {
  Line line;
  if (const auto* sim = std::get_if<SimPort>(&spec)) {
    if (sim->paced) {
      line.clock = std::make_unique<SteadyClock>();
    } else {
      line.clock = std::make_unique<VirtualClock>();
    }
    line.simulator = std::make_shared<sim::SimLine>(sim->ids);
    line.simulator->SetPaced(sim->paced);
    line.transport = std::make_unique<SimTransport>(line.simulator, *line.clock, ToString(spec));
  } else if (const auto* tcp = std::get_if<TcpPort>(&spec)) {
    line.clock = std::make_unique<SteadyClock>();
    line.transport = std::make_unique<TcpTransport>(tcp->host, tcp->port, *line.clock);
  } else {
    line.clock = std::make_unique<SteadyClock>();
    line.transport =
        std::make_unique<SerialTransport>(std::get<SerialPort>(spec).name, *line.clock);
  }
  return line;
}

}  // namespace talvex::link
