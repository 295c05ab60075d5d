// Whether what an editor holds is kept anywhere: the setting last saved to or loaded from a
// preset file, and the one last stored in or read from a device slot, each compared with what
// the editor holds now. A file keeps (and a load takes back) the preset with the input source
// and the delay unit; a slot keeps the preset alone.
#pragma once

#include <optional>
#include <string>

#include "params/image_layout.h"

namespace talvex::editor {

class SaveMarks {
 public:
  enum class Mark { None, Same, Differs };

  // The setting the editor found on the device when it opened: nothing of it is lost yet.
  void Opened(const params::ParamImage& record);
  // `saved`: written to the file; otherwise loaded from it. Likewise stored in or read from a
  // slot (numbered 0..23; `name` as the slot keeps it, 16 characters).
  void FileMarked(std::string title, bool saved, const params::ParamImage& record);
  void SlotMarked(int slot, std::string name, bool stored, const params::ParamImage& record);

  Mark File(const params::ParamImage& now) const;
  Mark Slot(const params::ParamImage& now) const;
  // "File: show.tvx, unchanged since saved", "File: show.tvx, changed since loaded",
  // "File: none".
  std::string FileText(const params::ParamImage& now) const;
  // "Slot: 3 Chorus live, unchanged since stored", "Slot: 3 Chorus live, changed since read",
  // "Slot: none".
  std::string SlotText(const params::ParamImage& now) const;
  // Changed since the editor opened, and kept neither in the last file nor in the last slot:
  // closing would leave it nowhere but on the device.
  bool Unsaved(const params::ParamImage& now) const;

 private:
  struct Kept {
    std::string where;  // "show.tvx", "3 Chorus live"
    bool written = false;
    params::ParamImage record{};
  };
  std::optional<Kept> opened_;
  std::optional<Kept> file_;
  std::optional<Kept> slot_;
};

}  // namespace talvex::editor
