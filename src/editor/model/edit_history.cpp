#include "editor/model/edit_history.h"

namespace talvex::editor {

namespace {

// Tags are unique in the program, so that a step of one editor and the same group edit in
// another share theirs and nothing else does. Interface thread only.
int NewTag() {
  static int last = 0;
  return ++last;
}

}  // namespace

void EditHistory::BeginGroup(std::string name) {
  group_ = OpenGroup{NewTag(), std::move(name)};
}

void EditHistory::JoinGroup(int tag, std::string name) {
  group_ = OpenGroup{tag, std::move(name)};
}

void EditHistory::EndGroup() {
  group_.reset();
}

int EditHistory::RecordEdit(const EditOperation& operation, std::vector<params::ParamRef> changed,
                            const params::DeviceParams& before, const params::DeviceParams& after) {
  const int tag = group_ ? group_->tag : NewTag();
  RecordedEdit edit{operation, std::move(changed)};
  if (!undo_.empty() && undo_.back().tag == tag && undo_.back().kind == HistoryStep::Kind::Edits) {
    undo_.back().after = after;
    undo_.back().edits.push_back(std::move(edit));
    redo_.clear();
    Changed();
    return tag;
  }
  HistoryStep step;
  step.name = group_ && !group_->name.empty() ? group_->name : ChangeName(operation);
  step.tag = tag;
  step.before = before;
  step.after = after;
  step.edits.push_back(std::move(edit));
  return Push(std::move(step));
}

int EditHistory::RecordSettings(std::string name, const params::DeviceParams& before,
                                const params::DeviceParams& after, int sideBefore, int sideAfter) {
  HistoryStep step;
  step.kind = HistoryStep::Kind::Settings;
  step.name = std::move(name);
  step.tag = NewTag();
  step.before = before;
  step.after = after;
  step.sideBefore = sideBefore;
  step.sideAfter = sideAfter;
  return Push(std::move(step));
}

int EditHistory::Push(HistoryStep step) {
  const int tag = step.tag;
  undo_.push_back(std::move(step));
  while (undo_.size() > kHistorySteps)
    undo_.pop_front();
  redo_.clear();
  cleared_.clear();
  Changed();
  return tag;
}

HistoryStep EditHistory::Undo() {
  EndGroup();
  redo_.push_back(std::move(undo_.back()));
  undo_.pop_back();
  Changed();
  return redo_.back();
}

HistoryStep EditHistory::Redo() {
  EndGroup();
  undo_.push_back(std::move(redo_.back()));
  redo_.pop_back();
  Changed();
  return undo_.back();
}

void EditHistory::Clear(std::string reason) {
  undo_.clear();
  redo_.clear();
  group_.reset();
  cleared_ = std::move(reason);
  Changed();
}

std::string EditHistory::UndoText() const {
  if (CanUndo()) return "Undo " + undo_.back().name;
  if (!cleared_.empty()) return "Undo (history cleared: " + cleared_ + ")";
  return "Undo";
}

std::string EditHistory::RedoText() const {
  return CanRedo() ? "Redo " + redo_.back().name : "Redo";
}

}  // namespace talvex::editor
