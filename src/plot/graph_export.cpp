#include "plot/graph_export.h"

#include <QBuffer>
#include <QFont>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QPalette>
#include <QSvgGenerator>
#include <algorithm>
#include <cctype>
#include <cmath>
#include <sstream>

#include "config/config_files.h"

namespace talvex::plot {

namespace {

constexpr double kMetresPerInch = 0.0254;

// An image whose text metrics are those of a display of `dpi` dots per inch.
QImage ImageAtDpi(QSize size, int dpi) {
  QImage image(size, QImage::Format_RGB32);
  const int dotsPerMeter = static_cast<int>(std::lround(dpi / kMetresPerInch));
  image.setDotsPerMeterX(dotsPerMeter);
  image.setDotsPerMeterY(dotsPerMeter);
  return image;
}

std::vector<std::uint8_t> Bytes(const QByteArray& data) {
  return {data.begin(), data.end()};
}

void PaintPicture(QPainter& painter, const GraphPicture& picture) {
  GraphPainter().Paint(painter, graph::GraphGeometry(picture.dpi), picture.scene, picture.font,
                       picture.palette);
}

}  // namespace

std::optional<GraphFileKind> GraphFileKindOf(const std::filesystem::path& path) {
  std::string extension = path.extension().string();
  std::transform(extension.begin(), extension.end(), extension.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  if (extension == ".png") return GraphFileKind::Png;
  if (extension == ".svg") return GraphFileKind::Svg;
  if (extension == ".csv") return GraphFileKind::Csv;
  return std::nullopt;
}

QSize GraphPictureSize(const GraphPicture& picture) {
  const QImage probe = ImageAtDpi(QSize(1, 1), picture.dpi);
  return LayoutGraph(graph::GraphGeometry(picture.dpi), QFontMetricsF(picture.font, &probe)).size;
}

std::vector<std::uint8_t> GraphPng(const GraphPicture& picture) {
  QImage image = ImageAtDpi(GraphPictureSize(picture), picture.dpi);
  {
    QPainter painter(&image);
    PaintPicture(painter, picture);
  }
  QByteArray data;
  QBuffer buffer(&data);
  buffer.open(QIODevice::WriteOnly);
  image.save(&buffer, "PNG");
  return Bytes(data);
}

std::vector<std::uint8_t> GraphSvg(const GraphPicture& picture) {
  const QSize size = GraphPictureSize(picture);
  QByteArray data;
  QBuffer buffer(&data);
  buffer.open(QIODevice::WriteOnly);
  QSvgGenerator generator;
  generator.setOutputDevice(&buffer);
  generator.setResolution(picture.dpi);
  generator.setSize(size);
  generator.setViewBox(QRect(QPoint(0, 0), size));
  generator.setTitle("Response graph");
  {
    QPainter painter(&generator);
    PaintPicture(painter, picture);
  }
  return Bytes(data);
}

std::string WriteGraphFile(const std::filesystem::path& path, const GraphPicture& picture,
                           const std::array<std::string, graph::kChannelCount>& names) {
  const std::optional<GraphFileKind> kind = GraphFileKindOf(path);
  if (!kind)
    return "the file name " + path.filename().string() + " does not end in .png, .svg or .csv";
  std::vector<std::uint8_t> bytes;
  if (*kind == GraphFileKind::Png) bytes = GraphPng(picture);
  if (*kind == GraphFileKind::Svg) bytes = GraphSvg(picture);
  if (*kind == GraphFileKind::Csv) {
    std::ostringstream csv;
    graph::WriteCurvesCsv(csv, graph::CsvOfShown(picture.scene.curves, names));
    const std::string text = csv.str();
    bytes.assign(text.begin(), text.end());
  }
  if (bytes.empty()) return "cannot draw the graph";
  return config::WriteFileAtomically(path, bytes);
}

std::string WriteGraphFile(const std::filesystem::path& path, const GraphScene& scene, int dpi,
                           const std::array<std::string, graph::kChannelCount>& names) {
  if (!qobject_cast<QGuiApplication*>(QCoreApplication::instance()))
    return "drawing the graph needs Qt's graphics, which this program did not start";
  const QFont font = QGuiApplication::font();
  const QPalette palette = QGuiApplication::palette();
  return WriteGraphFile(path, {scene, dpi, font, palette}, names);
}

std::unique_ptr<QCoreApplication> MakeDrawingApplication(int& argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  return std::make_unique<QGuiApplication>(argc, argv);
}

}  // namespace talvex::plot
