#include "presets/preset_file.h"

#include <QFile>
#include <QSaveFile>
#include <algorithm>

#include "params/device_params.h"

namespace talvex::presets {

namespace {

QString PathOf(const std::string& path) {
  return QString::fromStdString(path);
}

std::string Why(const std::string& path, const QString& error) {
  return path + ": " + error.toStdString();
}

}  // namespace

std::string ReadPresetFile(const std::string& path, params::ParamImage& record) {
  QFile file(PathOf(path));
  if (!file.open(QIODevice::ReadOnly)) return Why(path, file.errorString());
  const QByteArray bytes = file.read(static_cast<qint64>(params::kImageSize));
  if (file.error() != QFileDevice::NoError) return Why(path, file.errorString());
  if (bytes.isEmpty()) return path + ": the file is empty";
  const auto named = static_cast<std::size_t>(bytes.size()) > params::kSystemTypeByte
                         ? static_cast<std::uint8_t>(bytes[params::kSystemTypeByte])
                         : 0;
  params::ParamImage read = params::DefaultRecord(named < params::kSystemTypeCount ? named : 0);
  std::transform(bytes.begin(), bytes.end(), read.begin(),
                 [](char byte) { return static_cast<std::uint8_t>(byte); });
  record = read;
  return {};
}

std::string WritePresetFile(const std::string& path, const params::ParamImage& record) {
  QSaveFile file(PathOf(path));
  if (!file.open(QIODevice::WriteOnly)) return Why(path, file.errorString());
  const auto size = static_cast<qint64>(record.size());
  if (file.write(reinterpret_cast<const char*>(record.data()), size) != size) {
    const std::string why = Why(path, file.errorString());
    file.cancelWriting();
    return why;
  }
  if (!file.commit()) return Why(path, file.errorString());
  return {};
}

}  // namespace talvex::presets
