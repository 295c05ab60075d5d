// The response graph as a file: a PNG picture, an SVG drawing (vector, for reports) or a CSV
// table of the shown curves on the response grid. The editor's export and talvexctl's plot both
// write through here; a file is written whole or not at all (config::WriteFileAtomically).
#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "plot/graph_painter.h"

class QCoreApplication;
class QFont;
class QPalette;

namespace talvex::plot {

enum class GraphFileKind { Png, Svg, Csv };

// The kind a file name asks for by its extension, in any case (".png", ".SVG"); nullopt for
// any other extension or none.
std::optional<GraphFileKind> GraphFileKindOf(const std::filesystem::path& path);

// One picture of the graph: what it shows, at which display resolution, in which font and
// colours. The picture is the whole graph (plot and labels) at that resolution's geometry.
struct GraphPicture {
  const GraphScene& scene;
  int dpi = 96;
  const QFont& font;
  const QPalette& palette;
};

// The picture's size in pixels.
QSize GraphPictureSize(const GraphPicture& picture);
std::vector<std::uint8_t> GraphPng(const GraphPicture& picture);
std::vector<std::uint8_t> GraphSvg(const GraphPicture& picture);

// Writes the picture (PNG or SVG) or the scene's shown curves (CSV, each channel's columns
// named by `names`) as the path's extension asks. Empty on success, else why not, in words
// for the user; nothing is left half-written.
std::string WriteGraphFile(const std::filesystem::path& path, const GraphPicture& picture,
                           const std::array<std::string, graph::kChannelCount>& names);

// The same for a program without windows (talvexctl): in the application's default font and
// colours. Needs the application of MakeDrawingApplication; without one it says so.
std::string WriteGraphFile(const std::filesystem::path& path, const GraphScene& scene, int dpi,
                           const std::array<std::string, graph::kChannelCount>& names);

// The application object of a program that draws the graph without a display: Qt's graphics
// on the offscreen platform, so it runs where no display is and opens no window.
std::unique_ptr<QCoreApplication> MakeDrawingApplication(int& argc, char** argv);

}  // namespace talvex::plot
