// plot: the response graph as the editor draws it, written as a PNG picture, an SVG drawing or
// a CSV table, without a display. The curves come from the editor's own model (loaded as an
// editor opens, sending nothing) and are drawn by the editor's own painter, so the file is the
// one the editor's "Export..." writes for the same device and view.
#include <cmath>
#include <memory>
#include <optional>

#include "cli/commands.h"
#include "cli/param_words.h"
#include "editor/model/controls.h"
#include "editor/model/shown_graph.h"
#include "plot/graph_export.h"

namespace talvex::cli {

namespace {

constexpr int kMinDpi = 48;
constexpr int kMaxDpi = 480;
constexpr int kDefaultDpi = 96;

struct PlotArgs {
  // The curves an editor shows when it opens: the selected In A, and Out 1 .. Out 6.
  std::array<bool, params::kChannelCount> channels{true, false, true, true, true, true, true, true};
  editor::GraphView view;
  std::optional<double> cursorHz;
  std::optional<std::pair<double, double>> hz;
  std::optional<std::pair<double, double>> db;
  int dpi = kDefaultDpi;
  std::string file;
};

std::array<bool, params::kChannelCount> ChannelList(const std::string& text) {
  std::array<bool, params::kChannelCount> channels{};
  for (std::size_t start = 0; start <= text.size();) {
    const std::size_t comma = std::min(text.find(',', start), text.size());
    const std::optional<int> channel = ParseChannelWord(text.substr(start, comma - start));
    if (!channel)
      throw UsageError("--channel \"" + text + "\" is not a list of inA, inB and out1..out6");
    channels[static_cast<std::size_t>(*channel)] = true;
    start = comma + 1;
  }
  return channels;
}

double Number(const std::string& option, const std::string& text) {
  const std::optional<double> value = params::ParseNumber(text);
  if (!value) throw UsageError(option + " \"" + text + "\" is not a number");
  return *value;
}

// LOW:HIGH within [min, max], LOW below HIGH.
std::pair<double, double> Span(const std::string& option, const std::string& text, double min,
                               double max) {
  const std::size_t colon = text.find(':');
  const auto bad = [&] {
    return UsageError(option + " \"" + text + "\" is not LOW:HIGH within " +
                      params::FormatNumber(min, 0) + ".." + params::FormatNumber(max, 0));
  };
  if (colon == std::string::npos) throw bad();
  const std::optional<double> low = params::ParseNumber(text.substr(0, colon));
  const std::optional<double> high = params::ParseNumber(text.substr(colon + 1));
  if (!low || !high || *low < min || *high > max || *low >= *high) throw bad();
  return {*low, *high};
}

PlotArgs ParseArgs(const std::vector<std::string>& args) {
  PlotArgs parsed;
  for (std::size_t i = 0; i < args.size(); ++i) {
    const std::string& option = args[i];
    if (option == "--whole") {
      parsed.view.outPlusInput = true;
      continue;
    }
    if (!option.starts_with("--")) {
      if (!parsed.file.empty()) throw UsageError("unexpected argument \"" + option + "\"");
      parsed.file = option;
      continue;
    }
    if (i + 1 >= args.size()) throw UsageError(option + " needs a value");
    const std::string& value = args[++i];
    if (option == "--channel") {
      parsed.channels = ChannelList(value);
    } else if (option == "--sum") {
      parsed.view.sumOutputs = ParseOutputList(value);
    } else if (option == "--cursor") {
      parsed.cursorHz = Number(option, value);
    } else if (option == "--hz") {
      parsed.hz = Span(option, value, 20, 20000);
    } else if (option == "--db") {
      parsed.db = Span(option, value, -30, 30);
    } else if (option == "--dpi") {
      const std::optional<int> dpi = ParseInt(value, kMinDpi, kMaxDpi);
      if (!dpi) throw UsageError("--dpi \"" + value + "\" is not a whole number from 48 to 480");
      parsed.dpi = *dpi;
    } else {
      throw UsageError("unexpected argument \"" + option + "\"");
    }
  }
  if (parsed.file.empty()) throw UsageError("plot needs a file: FILE.png, FILE.svg or FILE.csv");
  if (!plot::GraphFileKindOf(parsed.file))
    throw UsageError("\"" + parsed.file + "\" does not end in .png, .svg or .csv");
  return parsed;
}

// The part of the plot --hz and --db ask for, in fractions of the whole plot (which the
// display scale does not change).
graph::PlotRange RangeOf(const PlotArgs& args) {
  const graph::GraphGeometry geometry(kDefaultDpi);
  const graph::PlotMapping whole(geometry, {});
  graph::PlotRange range;
  if (args.hz) {
    range.left = whole.XOf(args.hz->first) / whole.Width();
    range.width = whole.XOf(args.hz->second) / whole.Width() - range.left;
  }
  if (args.db) {
    range.top = std::max(0.0, whole.MagnitudeY(args.db->second) / whole.Height());
    range.height = std::min(1.0, whole.MagnitudeY(args.db->first) / whole.Height()) - range.top;
  }
  return graph::Zoomed(range, 1, 1, 0, 0);  // held to the whole plot, at most 16 times
}

// The editor's model on the device's stores, with a link that sends nothing.
class NoLink final : public editor::EditorLink {
 public:
  void Send(std::span<const params::ParamEdit>) override {}
};

int Plot(CliContext& context) {
  const PlotArgs args = ParseArgs(context.Args());
  if (context.Options().json) throw UsageError("plot writes a file; --json does not apply");
  params::DeviceParams device = LoadParams(context);
  NoLink link;
  editor::DeviceEditor model(context.Options().id, device, params::DecimalMark::Point, link);
  model.Load();
  model.SetView(args.view);
  plot::GraphScene scene;
  scene.curves = editor::ShownCurvesOf(model, args.channels);
  scene.range = RangeOf(args);
  scene.cursorHz = args.cursorHz;
  std::array<std::string, params::kChannelCount> names;
  for (int channel = 0; channel < params::kChannelCount; ++channel)
    names[static_cast<std::size_t>(channel)] = editor::ChannelCaption(channel);
  const std::string why = plot::WriteGraphFile(args.file, scene, args.dpi, names);
  if (!why.empty()) throw CommandFailed(why);
  return kExitOk;
}

}  // namespace

void AddPlotCommands(std::vector<CommandSpec>& commands) {
  commands.push_back(
      {kPlotCommand,
       "[--channel CH,...] [--whole] [--sum OUT,...] [--cursor HZ] [--hz LO:HI] [--db LO:HI] "
       "[--dpi N] FILE.png|FILE.svg|FILE.csv",
       "write the response graph as the editor draws it (by default In A and Out 1..Out 6; "
       "--whole: outputs from their input) as a picture, a drawing or a table, without a display",
       Plot});
}

}  // namespace talvex::cli
