#include "editor/model/device_groups.h"

#include <algorithm>

namespace talvex::editor {

namespace {

// Raised while a group runs a member's edit (or undo) on the others.
class Spreading {
 public:
  explicit Spreading(bool& flag) : flag_(flag) { flag_ = true; }
  ~Spreading() { flag_ = false; }
  Spreading(const Spreading&) = delete;
  Spreading& operator=(const Spreading&) = delete;

 private:
  bool& flag_;
};

}  // namespace

DeviceGroups::~DeviceGroups() {
  for (SettingsMemory* memory : attached_)
    memory->groups_ = nullptr;
}

void DeviceGroups::Attach(SettingsMemory& memory) {
  attached_.insert(&memory);
  memory.groups_ = this;
}

void DeviceGroups::Detach(SettingsMemory& memory) {
  Leave(memory);
  attached_.erase(&memory);
  memory.groups_ = nullptr;
}

int DeviceGroups::Start(SettingsMemory& member) {
  const std::vector<int> used = Numbers();
  int group = 1;
  while (std::find(used.begin(), used.end(), group) != used.end())
    ++group;
  Join(group, member);
  return group;
}

void DeviceGroups::Join(int group, SettingsMemory& member) {
  const int before = GroupOf(member);
  groupOf_[&member] = group;
  Attach(member);
  Notify({before, group});
}

void DeviceGroups::Leave(SettingsMemory& member) {
  const int before = GroupOf(member);
  if (before == 0) return;
  groupOf_.erase(&member);
  member.Changed();
  Notify({before});
}

int DeviceGroups::GroupOf(const SettingsMemory& member) const {
  const auto found = groupOf_.find(const_cast<SettingsMemory*>(&member));
  return found == groupOf_.end() ? 0 : found->second;
}

std::vector<int> DeviceGroups::Numbers() const {
  std::vector<int> numbers;
  for (const auto& [member, group] : groupOf_)
    if (std::find(numbers.begin(), numbers.end(), group) == numbers.end()) numbers.push_back(group);
  std::sort(numbers.begin(), numbers.end());
  return numbers;
}

std::vector<SettingsMemory*> DeviceGroups::Members(int group) const {
  std::vector<SettingsMemory*> members;
  for (const auto& [member, number] : groupOf_)
    if (number == group) members.push_back(member);
  std::sort(members.begin(), members.end(), [](const SettingsMemory* a, const SettingsMemory* b) {
    return a->DeviceId() < b->DeviceId();
  });
  return members;
}

std::string DeviceGroups::Name(int group) const {
  std::string name = "Group " + std::to_string(group) + " (ID ";
  const char* separator = "";
  for (const SettingsMemory* member : Members(group)) {
    name += separator + std::to_string(member->DeviceId());
    separator = ", ";
  }
  return name + ")";
}

void DeviceGroups::Spread(SettingsMemory& source, const EditOperation& operation, int tag) {
  const int group = GroupOf(source);
  if (spreading_ || group == 0) return;
  const Spreading spreading(spreading_);
  const std::string name =
      source.History().CanUndo() ? source.History().NextUndo().name : ChangeName(operation);
  std::string refused;
  for (SettingsMemory* member : Members(group)) {
    if (member == &source) continue;
    EditHistory& history = member->History();
    history.JoinGroup(tag, name);
    const EditOutcome outcome = member->Model().Perform(operation);
    history.EndGroup();
    if (outcome.Applied()) continue;
    refused += (refused.empty() ? "ID " : ", ID ") + std::to_string(member->DeviceId());
    if (!member->Model().EditsEnabled()) refused += " (locked)";
  }
  if (!refused.empty()) source.Tell(Name(group) + ": " + name + " did not reach " + refused);
}

void DeviceGroups::UndoTagged(SettingsMemory& source, int tag) {
  const int group = GroupOf(source);
  if (spreading_ || group == 0) return;
  const Spreading spreading(spreading_);
  for (SettingsMemory* member : Members(group))
    if (member != &source && member->CanUndo() && member->History().NextUndo().tag == tag)
      member->UndoHere();
}

void DeviceGroups::RedoTagged(SettingsMemory& source, int tag) {
  const int group = GroupOf(source);
  if (spreading_ || group == 0) return;
  const Spreading spreading(spreading_);
  for (SettingsMemory* member : Members(group))
    if (member != &source && member->CanRedo() && member->History().NextRedo().tag == tag)
      member->RedoHere();
}

// Every member of the groups named sees its caption change.
void DeviceGroups::Notify(const std::vector<int>& groups) const {
  for (const auto& [member, group] : groupOf_)
    if (std::find(groups.begin(), groups.end(), group) != groups.end()) member->Changed();
}

}  // namespace talvex::editor
