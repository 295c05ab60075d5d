// response: the computed magnitude and phase of a channel, or of one element of it, on the
// response grid, as CSV.
#include <array>
#include <cstdio>
#include <memory>
#include <ostream>
#include <string_view>

#include "cli/commands.h"
#include "cli/param_words.h"
#include "graph/image_settings.h"
#include "graph/response_tables.h"

namespace talvex::cli {

namespace {

struct ResponseArgs {
  int channel = -1;
  std::string part;  // empty: the whole channel
};

ResponseArgs ParseArgs(const std::vector<std::string>& args) {
  ResponseArgs parsed;
  for (std::size_t i = 0; i < args.size(); ++i) {
    const std::string& option = args[i];
    if (option != "--channel" && option != "--part")
      throw UsageError("unexpected argument \"" + option + "\"");
    if (i + 1 >= args.size()) throw UsageError(option + " needs a value");
    const std::string& value = args[++i];
    if (option == "--part") {
      parsed.part = value;
      continue;
    }
    parsed.channel = ParseChannelWord(value).value_or(-1);
    if (parsed.channel < 0)
      throw UsageError("--channel \"" + value + "\" is not inA, inB or out1..out6");
  }
  if (parsed.channel < 0) throw UsageError("response needs --channel CH");
  return parsed;
}

struct Curves {
  const graph::Curve* magnitude = nullptr;  // null: 0 dB at every point (a delay)
  const graph::Curve& phase;
};

// The channel's own curves, or those of one element: eqK (K from 1), hp, lp or delay.
Curves Select(const graph::ResponseTables& tables, int channel, const std::string& part) {
  if (part.empty()) return {&tables.ChannelMagnitude(channel), tables.ChannelPhase(channel)};
  if (part == "delay") return {nullptr, tables.DelayPhase(channel)};
  const bool output = channel >= 2;
  if (output && (part == "hp" || part == "lp")) {
    const int slot = graph::ResponseSlotOfBox(2 * (channel - 2) + (part == "lp" ? 1 : 0));
    return {&tables.CrossoverMagnitude(slot), tables.CrossoverPhase(slot)};
  }
  const int bands = graph::BandsOf(channel);
  if (part.size() == 3 && part.starts_with("eq") && part[2] >= '1' && part[2] < '1' + bands) {
    const int band = graph::FirstBandOfChannel(channel) + (part[2] - '1');
    return {&tables.BandMagnitude(band), tables.BandPhase(band)};
  }
  const std::string channelName(ChannelWord(channel));
  throw UsageError("--part \"" + part + "\" is not a part of " + channelName + ": eq1..eq" +
                   std::to_string(bands) + (output ? ", hp, lp" : "") + " or delay");
}

// Two decimals, and never "-0.00".
std::string Decimal(float value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.2f", static_cast<double>(value));
  const std::string_view shown(text);
  if (shown == "-0.00") return "0.00";
  return std::string(shown);
}

int Response(CliContext& context) {
  const ResponseArgs args = ParseArgs(context.Args());
  if (context.Options().json) throw UsageError("response prints CSV; --json does not apply");
  const auto tables = std::make_unique<graph::ResponseTables>();
  // A --part the channel lacks is a usage error before anything is read from the device.
  (void)Select(*tables, args.channel, args.part);
  const graph::ResponseSettings settings = graph::SettingsFromImage(LoadRecord(context));
  tables->ComputeAll(settings);
  const Curves curves = Select(*tables, args.channel, args.part);
  std::ostream& out = context.Out();
  out << "hz,magnitude_db,phase_deg\n";
  for (int i = 0; i < graph::kGridPointCount; ++i) {
    const float magnitude = curves.magnitude ? (*curves.magnitude)[i] : 0.0f;
    out << graph::GridHz(i) << ',' << Decimal(magnitude) << ',' << Decimal(curves.phase[i]) << '\n';
  }
  return kExitOk;
}

}  // namespace

void AddResponseCommands(std::vector<CommandSpec>& commands) {
  commands.push_back({"response", "--channel CH [--part eqK|hp|lp|delay]",
                      "print a channel's computed magnitude and phase, or one element's, as CSV",
                      Response});
}

}  // namespace talvex::cli
