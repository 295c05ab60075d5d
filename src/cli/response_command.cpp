// response: the computed magnitude and phase of a channel, of one element of it, of a whole
// output or of the acoustic sum of outputs, on the response grid, as CSV.
#include <memory>
#include <ostream>
#include <string_view>

#include "cli/commands.h"
#include "cli/param_words.h"
#include "graph/image_settings.h"
#include "graph/output_response.h"
#include "graph/response_tables.h"
#include "graph/shown_curves.h"

namespace talvex::cli {

namespace {

struct ResponseArgs {
  int channel = -1;
  std::string part;  // empty: the whole channel
  std::optional<graph::OutputSet> sum;
};

ResponseArgs ParseArgs(const std::vector<std::string>& args) {
  ResponseArgs parsed;
  for (std::size_t i = 0; i < args.size(); ++i) {
    const std::string& option = args[i];
    if (option != "--channel" && option != "--part" && option != "--sum")
      throw UsageError("unexpected argument \"" + option + "\"");
    if (i + 1 >= args.size()) throw UsageError(option + " needs a value");
    const std::string& value = args[++i];
    if (option == "--part") {
      parsed.part = value;
    } else if (option == "--sum") {
      parsed.sum = ParseOutputList(value);
    } else {
      parsed.channel = ParseChannelWord(value).value_or(-1);
      if (parsed.channel < 0)
        throw UsageError("--channel \"" + value + "\" is not inA, inB or out1..out6");
    }
  }
  if (parsed.sum && (parsed.channel >= 0 || !parsed.part.empty()))
    throw UsageError("--sum takes no --channel or --part");
  if (!parsed.sum && parsed.channel < 0) throw UsageError("response needs --channel CH or --sum");
  return parsed;
}

struct Curves {
  const graph::Curve* magnitude = nullptr;  // null: 0 dB at every point (a delay)
  const graph::Curve& phase;
};

constexpr std::string_view kWholePart = "whole";

// The channel's own curves, or those of one element: eqK (K from 1), hp, lp or delay; "whole"
// (outputs) is worked out apart, from the channel curves.
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
                   std::to_string(bands) + (output ? ", hp, lp, whole" : "") + " or delay");
}

void CheckPart(const ResponseArgs& args) {
  if (args.sum) return;
  if (args.part == kWholePart && args.channel >= 2) return;
  const auto tables = std::make_unique<graph::ResponseTables>();
  (void)Select(*tables, args.channel, args.part);
}

int Response(CliContext& context) {
  const ResponseArgs args = ParseArgs(context.Args());
  if (context.Options().json) throw UsageError("response prints CSV; --json does not apply");
  // A --part the channel lacks is a usage error before anything is read from the device.
  CheckPart(args);
  const graph::ResponseSettings settings = graph::SettingsFromImage(LoadRecord(context));
  const auto tables = std::make_unique<graph::ResponseTables>();
  tables->ComputeAll(settings);
  const auto computed = std::make_unique<graph::ResponseCurves>();
  graph::CsvCurve curve;
  if (args.sum) {
    graph::ComputeAcousticSum(*tables, settings, *args.sum, *computed);
    curve = {{}, &computed->magnitude, &computed->phase, 0};
  } else if (args.part == kWholePart) {
    graph::ComputeWholeOutput(*tables, settings, args.channel, *computed);
    curve = {{}, &computed->magnitude, &computed->phase, 0};
  } else {
    const Curves selected = Select(*tables, args.channel, args.part);
    curve = {{}, selected.magnitude, &selected.phase, 0};
  }
  graph::WriteCurvesCsv(context.Out(), {curve});
  return kExitOk;
}

}  // namespace

graph::OutputSet ParseOutputList(const std::string& text) {
  graph::OutputSet outputs;
  for (std::size_t start = 0; start <= text.size();) {
    const std::size_t comma = std::min(text.find(',', start), text.size());
    const std::optional<int> channel = ParseChannelWord(text.substr(start, comma - start));
    if (!channel || *channel < params::kInputCount ||
        outputs.test(static_cast<std::size_t>(*channel - params::kInputCount)))
      throw UsageError("\"" + text +
                       "\" is not a list of different outputs out1..out6 (out1,out3)");
    outputs.set(static_cast<std::size_t>(*channel - params::kInputCount));
    start = comma + 1;
  }
  return outputs;
}

void AddResponseCommands(std::vector<CommandSpec>& commands) {
  commands.push_back(
      {"response", "--channel CH [--part eqK|hp|lp|delay|whole] | --sum OUT,OUT...",
       "print a channel's computed magnitude and phase, one element's, an output's whole way "
       "from its input (levels included) or the acoustic sum of outputs, as CSV",
       Response});
}

}  // namespace talvex::cli
