// The editor's window commands (`Command2`) and the toolbar that stands for them. A command's
// index is its place in the toolbar, in the order the device's tools showed them:
//   0 "Load Preset from PC"       the preset-file load (preset_file_flow.h)
//   1 "Save Preset to PC"         the preset-file save
//   2 "Store Preset to device"    FrmStore
//   3 "Read Preset from device"   FrmRead
//   4 "System Setup"              FrmSysType
//   5 "Disconnect device"         the window's own question, then the session's unconnect
//   6 "Edit Names"                FrmEditLabel
//   7 "Input Copy"                FrmCopyInput
//   8 "Output Copy"               FrmCopyOut
//   9 "Lock unit"                 FrmPassword, opened on its lock
//  10 "Password"                  FrmPassword, opened on its new password
//  11 "Edit name device"          FrmNameDevice (the twelfth button, one past the table of 0..10)
#pragma once

#include <QStyle>
#include <array>
#include <string_view>

namespace talvex::editor {

struct CommandContext;

enum class WindowCommand {
  LoadPresetFromPc = 0,
  SavePresetToPc,
  StorePreset,
  ReadPreset,
  SystemSetup,
  Disconnect,
  EditNames,
  InputCopy,
  OutputCopy,
  LockUnit,
  Password,
  EditDeviceName,
};
inline constexpr int kWindowCommandCount = 12;

struct ToolbarCommand {
  WindowCommand command;
  std::string_view caption;
  std::string_view tooltip;
  QStyle::StandardPixmap icon;
  std::string_view shortcut;  // within the editor window
  // Changes the device's settings: unavailable while the device or the editor is locked (a
  // locked device would take nothing of it).
  bool changesDevice;
};

extern const std::array<ToolbarCommand, kWindowCommandCount> kToolbarCommands;

const ToolbarCommand& ToolbarCommandOf(WindowCommand command);

// Opens the command's dialog or runs its flow; `context.finished` comes once it has ended.
// Disconnect is the window's own.
void RunWindowCommand(WindowCommand command, CommandContext& context);

}  // namespace talvex::editor
