// The editor's tools beside the system's twelve toolbar commands, in its "Tools" menu: the
// selected channel's equaliser from and to a filter text, the comparison with a preset file,
// and the device's backup and restore. Each runs like a toolbar command: the window is busy
// from its start until `context.finished()`, and a job it starts keeps it busy until the job
// ends.
#pragma once

#include "editor/dialogs/command_context.h"

namespace talvex::editor {

inline constexpr const char* kEqTextFilter = "filter text (*.txt)|*.txt";
inline constexpr const char* kBackupFilter = "device backup (*.tvb)|*.tvb";
inline constexpr const char* kExportEqTitle = "Export equaliser";
inline constexpr const char* kBackupTitle = "Back up device";
inline constexpr const char* kRestoreTitle = "Restore device";

// A filter text chosen, read and planned onto `channel`; its report (EqImportDialog) shows
// before anything is sent. A file that cannot be read, or that holds no filter line, is told
// and nothing changes.
void ImportEqualiser(CommandContext& context, int channel);
// `channel`'s bands written as a filter text ("# TALVEX equaliser: Out 1 of ID:3").
void ExportEqualiser(CommandContext& context, int channel);
// A preset file chosen and compared with what the editor holds (PresetDiffDialog).
void CompareWithFile(CommandContext& context);
// Everything the device keeps read into a backup file, with progress; the file is written only
// once all is read.
void BackupDevice(CommandContext& context);
// A backup file chosen, read and checked whole (a damaged file sends nothing), the user asked,
// then put on the device with progress; the editor then holds what the device holds, and its
// history is cleared (undo cannot give back the device's memory).
void RestoreDevice(CommandContext& context);

}  // namespace talvex::editor
