#include "editor/model/save_marks.h"

#include <algorithm>

namespace talvex::editor {

namespace {

bool SamePreset(const params::ParamImage& a, const params::ParamImage& b) {
  return std::equal(a.begin(), a.begin() + params::kPresetSize, b.begin());
}

// What a preset file's load takes back beside the preset.
bool SameFileSetting(const params::ParamImage& a, const params::ParamImage& b) {
  return SamePreset(a, b) && a[params::kInputSourceByte] == b[params::kInputSourceByte] &&
         a[params::kOptionByte] == b[params::kOptionByte];
}

std::string WithoutPadding(std::string name) {
  name.erase(name.find_last_not_of(' ') + 1);
  return name;
}

}  // namespace

void SaveMarks::Opened(const params::ParamImage& record) {
  opened_ = Kept{{}, false, record};
}

void SaveMarks::FileMarked(std::string title, bool saved, const params::ParamImage& record) {
  file_ = Kept{std::move(title), saved, record};
}

void SaveMarks::SlotMarked(int slot, std::string name, bool stored,
                           const params::ParamImage& record) {
  slot_ = Kept{std::to_string(slot) + " " + WithoutPadding(std::move(name)), stored, record};
}

SaveMarks::Mark SaveMarks::File(const params::ParamImage& now) const {
  if (!file_) return Mark::None;
  return SameFileSetting(file_->record, now) ? Mark::Same : Mark::Differs;
}

SaveMarks::Mark SaveMarks::Slot(const params::ParamImage& now) const {
  if (!slot_) return Mark::None;
  return SamePreset(slot_->record, now) ? Mark::Same : Mark::Differs;
}

std::string SaveMarks::FileText(const params::ParamImage& now) const {
  if (!file_) return "File: none";
  return "File: " + file_->where + (File(now) == Mark::Same ? ", unchanged" : ", changed") +
         (file_->written ? " since saved" : " since loaded");
}

std::string SaveMarks::SlotText(const params::ParamImage& now) const {
  if (!slot_) return "Slot: none";
  return "Slot: " + slot_->where + (Slot(now) == Mark::Same ? ", unchanged" : ", changed") +
         (slot_->written ? " since stored" : " since read");
}

bool SaveMarks::Unsaved(const params::ParamImage& now) const {
  if (opened_ && SameFileSetting(opened_->record, now)) return false;
  return File(now) != Mark::Same && Slot(now) != Mark::Same;
}

}  // namespace talvex::editor
