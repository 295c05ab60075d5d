#include "editor/toolbar_commands.h"

#include "editor/dialogs/command_context.h"
#include "editor/dialogs/frm_copy_input.h"
#include "editor/dialogs/frm_copy_out.h"
#include "editor/dialogs/frm_edit_label.h"
#include "editor/dialogs/frm_name_device.h"
#include "editor/dialogs/frm_password.h"
#include "editor/dialogs/frm_read.h"
#include "editor/dialogs/frm_store.h"
#include "editor/dialogs/frm_sys_type.h"
#include "editor/dialogs/preset_file_flow.h"

namespace talvex::editor {

// Icons are Qt's standard ones, so they follow the platform's style; shortcuts work while the
// focus is anywhere in the editor window.
const std::array<ToolbarCommand, kWindowCommandCount> kToolbarCommands = {{
    {WindowCommand::LoadPresetFromPc, "Load Preset from PC",
     "Load a preset file (*.tvx) and send it to the device", QStyle::SP_DialogOpenButton, "Ctrl+O",
     true},
    {WindowCommand::SavePresetToPc, "Save Preset to PC",
     "Save the device's whole preset to a file (*.tvx)", QStyle::SP_DialogSaveButton, "Ctrl+S",
     false},
    {WindowCommand::StorePreset, "Store Preset to device",
     "Store this preset in one of the device's 24 memories", QStyle::SP_DriveHDIcon, "Ctrl+Shift+S",
     true},
    {WindowCommand::ReadPreset, "Read Preset from device",
     "Recall one of the device's 24 stored presets into this editor", QStyle::SP_BrowserReload,
     "Ctrl+Shift+R", true},
    {WindowCommand::SystemSetup, "System Setup",
     "Change the crossover system type (the device loads its factory preset)",
     QStyle::SP_FileDialogDetailedView, "Ctrl+Shift+T", true},
    {WindowCommand::Disconnect, "Disconnect device",
     "Send the device its release and close this editor", QStyle::SP_DialogCancelButton,
     "Ctrl+Shift+D", false},
    {WindowCommand::EditNames, "Edit Names", "Name the inputs and outputs (six characters each)",
     QStyle::SP_FileDialogInfoView, "Ctrl+Shift+N", true},
    {WindowCommand::InputCopy, "Input Copy", "Copy every setting of one input onto the other",
     QStyle::SP_ArrowRight, "Ctrl+Shift+I", true},
    {WindowCommand::OutputCopy, "Output Copy", "Copy every setting of one output onto another",
     QStyle::SP_ArrowForward, "Ctrl+Shift+U", true},
    {WindowCommand::LockUnit, "Lock unit", "Lock the device against changes, or unlock it",
     QStyle::SP_MessageBoxWarning, "Ctrl+Shift+L", false},
    {WindowCommand::Password, "Password", "Give the device a new six-character password",
     QStyle::SP_DialogApplyButton, "Ctrl+Shift+P", false},
    {WindowCommand::EditDeviceName, "Edit name device",
     "Give the device the name the device list shows (16 characters)", QStyle::SP_ComputerIcon,
     "Ctrl+Shift+E", true},
}};

const ToolbarCommand& ToolbarCommandOf(WindowCommand command) {
  return kToolbarCommands.at(static_cast<std::size_t>(command));
}

void RunWindowCommand(WindowCommand command, CommandContext& context) {
  switch (command) {
    case WindowCommand::LoadPresetFromPc:
      return LoadPresetFromPc(context);
    case WindowCommand::SavePresetToPc:
      return SavePresetToPc(context);
    case WindowCommand::StorePreset:
      return OpenCommandDialog(new FrmStore(context), context);
    case WindowCommand::ReadPreset:
      return OpenCommandDialog(new FrmRead(context), context);
    case WindowCommand::SystemSetup:
      return OpenCommandDialog(new FrmSysType(context), context);
    case WindowCommand::EditNames:
      return OpenCommandDialog(new FrmEditLabel(context), context);
    case WindowCommand::InputCopy:
      return OpenCommandDialog(new FrmCopyInput(context), context);
    case WindowCommand::OutputCopy:
      return OpenCommandDialog(new FrmCopyOut(context), context);
    case WindowCommand::LockUnit:
      return OpenCommandDialog(new FrmPassword(context, PasswordPart::Lock), context);
    case WindowCommand::Password:
      return OpenCommandDialog(new FrmPassword(context, PasswordPart::NewPassword), context);
    case WindowCommand::EditDeviceName:
      return OpenCommandDialog(new FrmNameDevice(context), context);
    case WindowCommand::Disconnect:
      break;
  }
  context.finished();
}

}  // namespace talvex::editor
