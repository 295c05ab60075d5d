// Device groups, without widgets: the user groups open editors, and an edit made in one editor
// of a group runs again on every other member, each on its own device's edit path and stores
// and through its own link (its commands queue and coalesce like that device's own edits). A
// member that takes nothing (locked) is said once; a member whose device vanishes is reported
// by the link once, its editor closes and leaves the group, and the others go on.
//
// Each member records the group's edit in its own history under the step's tag, so that a drag
// is one step on every member, and an undo or redo in one editor takes the same step back on
// every member whose next step it is.
#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "editor/model/settings_memory.h"

namespace talvex::editor {

class DeviceGroups {
 public:
  DeviceGroups() = default;
  ~DeviceGroups();  // every editor that knows the groups forgets them
  // An editor that may join groups (it keeps a pointer to them until it goes, Detach).
  void Attach(SettingsMemory& memory);
  void Detach(SettingsMemory& memory);
  DeviceGroups(const DeviceGroups&) = delete;
  DeviceGroups& operator=(const DeviceGroups&) = delete;

  // A new group holding `member` (which leaves the group it was in); returns its number, the
  // lowest one free from 1.
  int Start(SettingsMemory& member);
  // `member` leaves its group (a group left with one member stays, so that others can join it).
  void Join(int group, SettingsMemory& member);
  void Leave(SettingsMemory& member);

  int GroupOf(const SettingsMemory& member) const;        // 0: in none
  std::vector<int> Numbers() const;                       // the groups in use, ascending
  std::vector<SettingsMemory*> Members(int group) const;  // by device ID
  // "Group 1 (ID 0, 3, 7)".
  std::string Name(int group) const;

  // `operation`, made in `source` and recorded there under `tag`, on every other member.
  void Spread(SettingsMemory& source, const EditOperation& operation, int tag);
  // The step `tag`, undone (redone) in `source`, undone (redone) on every other member whose
  // next step it is.
  void UndoTagged(SettingsMemory& source, int tag);
  void RedoTagged(SettingsMemory& source, int tag);

 private:
  void Notify(const std::vector<int>& groups) const;

  std::map<SettingsMemory*, int> groupOf_;
  std::set<SettingsMemory*> attached_;
  bool spreading_ = false;  // a member's own edit or undo is not spread again
};

}  // namespace talvex::editor
