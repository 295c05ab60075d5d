#include "link/port_spec.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <set>
#include <string_view>

#include "protocol/frame.h"

namespace talvex::link {

namespace {

constexpr std::string_view kSimPrefix = "sim";
constexpr std::string_view kTcpPrefix = "tcp:";
constexpr std::string_view kPacedSuffix = "@9600";

[[noreturn]] void Refuse(const std::string& text, const std::string& why) {
  throw PortSpecError("bad port \"" + text + "\": " + why);
}

bool ParseNumber(std::string_view digits, int& value) {
  if (digits.empty() || !std::all_of(digits.begin(), digits.end(), [](char c) {
        return std::isdigit(static_cast<unsigned char>(c));
      }))
    return false;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  return error == std::errc() && end == digits.data() + digits.size();
}

SimPort ParseSim(const std::string& text, std::string_view rest) {
  SimPort sim;
  if (rest.ends_with(kPacedSuffix)) {
    sim.paced = true;
    rest.remove_suffix(kPacedSuffix.size());
  }
  if (rest.empty()) return sim;
  if (rest.front() != ':') Refuse(text, "expected sim, sim:ID,ID,... or sim:IDS@9600");
  rest.remove_prefix(1);
  sim.ids.clear();
  std::set<int> seen;
  while (true) {
    const std::size_t comma = rest.find(',');
    const std::string_view item = rest.substr(0, comma);
    int id = 0;
    if (!ParseNumber(item, id) || id > kMaxDeviceId)
      Refuse(text, "device ID \"" + std::string(item) + "\" is not a number from 0 to 32");
    if (!seen.insert(id).second)
      Refuse(text, "device ID " + std::to_string(id) + " is listed twice");
    sim.ids.push_back(id);
    if (comma == std::string_view::npos) break;
    rest.remove_prefix(comma + 1);
  }
  return sim;
}

TcpPort ParseTcp(const std::string& text, std::string_view rest) {
  std::string_view host;
  std::string_view port;
  if (rest.starts_with('[')) {  // [::1]:2000
    const std::size_t close = rest.find("]:");
    if (close == std::string_view::npos) Refuse(text, "expected tcp:[ADDRESS]:PORT");
    host = rest.substr(1, close - 1);
    port = rest.substr(close + 2);
  } else {
    const std::size_t colon = rest.rfind(':');
    if (colon == std::string_view::npos) Refuse(text, "expected tcp:HOST:PORT");
    host = rest.substr(0, colon);
    port = rest.substr(colon + 1);
  }
  TcpPort tcp;
  tcp.host = std::string(host);
  if (tcp.host.empty()) Refuse(text, "the host is missing");
  if (!ParseNumber(port, tcp.port) || tcp.port < 1 || tcp.port > 65535)
    Refuse(text, "the TCP port must be a number from 1 to 65535");
  return tcp;
}

}  // namespace

PortSpec ParsePortSpec(const std::string& text) {
  const std::string_view view(text);
  if (view.empty()) Refuse(text, "the port name is empty");
  if (std::any_of(view.begin(), view.end(),
                  [](char c) { return std::isspace(static_cast<unsigned char>(c)) || c == '\0'; }))
    Refuse(text, "a port name has no blanks");
  if (view == kSimPrefix || (view.starts_with(kSimPrefix) &&
                             (view[kSimPrefix.size()] == ':' || view[kSimPrefix.size()] == '@')))
    return ParseSim(text, view.substr(kSimPrefix.size()));
  if (view.starts_with(kTcpPrefix)) return ParseTcp(text, view.substr(kTcpPrefix.size()));
  if (view.starts_with("tcp")) Refuse(text, "expected tcp:HOST:PORT");
  return SerialPort{text};
}

std::string ToString(const PortSpec& spec) {
  if (const auto* sim = std::get_if<SimPort>(&spec)) {
    std::string text(kSimPrefix);
    for (std::size_t i = 0; i < sim->ids.size(); ++i) {
      text += i == 0 ? ':' : ',';
      text += std::to_string(sim->ids[i]);
    }
    if (sim->paced) text += kPacedSuffix;
    return text;
  }
  if (const auto* tcp = std::get_if<TcpPort>(&spec)) {
    const bool v6 = tcp->host.find(':') != std::string::npos;
    return std::string(kTcpPrefix) + (v6 ? "[" + tcp->host + "]" : tcp->host) + ":" +
           std::to_string(tcp->port);
  }
  return std::get<SerialPort>(spec).name;
}

}  // namespace talvex::link
