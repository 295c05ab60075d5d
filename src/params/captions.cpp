#include "params/captions.h"

#include "params/image_layout.h"
#include "params/value_tables.h"
#include "protocol/frame.h"

namespace talvex::params {

namespace {

std::string Id(int deviceId) {
  return "ID:" + std::to_string(deviceId);
}

std::string TypeSuffix(int systemType) {
  return " - Type: " + std::string(SystemTypeName(systemType));
}

}  // namespace

std::string_view SystemTypeName(int systemType) {
  CheckIndex(systemType, kSystemTypeCount - 1, "system type");
  return SystemTypeNames[static_cast<std::size_t>(systemType)];
}

std::string SystemTypeText(int systemTypeByte) {
  if (systemTypeByte < 0 || systemTypeByte >= kSystemTypeCount)
    return "unknown type " + std::to_string(systemTypeByte);
  return std::string(SystemTypeName(systemTypeByte));
}

std::string EditorCaption(int deviceId, int systemTypeByte) {
  return Id(deviceId) + " - Type: " + SystemTypeText(systemTypeByte);
}

std::string LoadedFromPcCaption(int deviceId, std::string_view fileTitle, int systemType) {
  return Id(deviceId) + " TALVEX - Last preset loaded: come from PC - " + std::string(fileTitle) +
         TypeSuffix(systemType);
}

std::string LoadedFromDeviceCaption(int deviceId, std::string_view slotName, int systemType) {
  return Id(deviceId) + " TALVEX - Last preset loaded: come from DEVICE - " +
         std::string(slotName) + TypeSuffix(systemType);
}

std::string DefaultLoadedCaption(int deviceId, int systemType) {
  return Id(deviceId) + " TALVEX - Preset loaded from device: " + std::string(kDefaultPresetName) +
         TypeSuffix(systemType);
}

}  // namespace talvex::params
