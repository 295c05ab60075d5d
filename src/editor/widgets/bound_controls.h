// Thin widgets over the editor's model: each is bound to one parameter, shows what the model
// says it holds, and hands the user's edit to the model. None holds a rule of its own. A
// control is rebound when the window shows another channel; it then takes that channel's
// parameter and accessible name ("Out 3 EQ 2 Frequency").
#pragma once

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QRadioButton>
#include <QSlider>
#include <QWidget>

#include "editor/model/device_editor.h"
#include "editor/user_dialogs.h"

class QToolButton;

namespace talvex::editor {

// What every bound control needs: the window's model and its message boxes.
struct EditorContext {
  DeviceEditor& model;
  UserDialogs& dialogs;
};

class BoundControl {
 public:
  BoundControl(EditorContext& context, ControlRole role) : context_(context), role_(role) {}
  virtual ~BoundControl() = default;
  BoundControl(const BoundControl&) = delete;
  BoundControl& operator=(const BoundControl&) = delete;

  const ParamRef& Ref() const { return ref_; }
  ControlId Id() const { return {ref_, role_, choice_}; }
  // Takes `ref` (and, for an option, the choice it stands for), its name, and shows its value.
  void Bind(const ParamRef& ref, int choice = 0);
  // Shows the parameter's value as the model has it, without sending, and enables the control
  // while the model takes edits of it (the enable routine).
  void Refresh();

 protected:
  virtual QWidget& Widget() = 0;
  virtual void Show() = 0;
  void Choose(int choice);
  // The control takes a new parameter: its range, its choices.
  virtual void Rebound() {}
  DeviceEditor& Model() const { return context_.model; }
  // Shows the outcome's message titled "Warning" when there is one.
  void Report(const EditOutcome& outcome) const;
  void Warn(std::string_view message) const;

 private:
  EditorContext& context_;
  ControlRole role_;
  ParamRef ref_;
  int choice_ = 0;
};

// An entry box: its keys go through the model's key filter; Enter commits. A refused key shows
// the box's message and types "?". Leaving the box without Enter puts back what the device
// holds: a box never shows a value that was not sent.
class ValueEntry final : public QLineEdit, public BoundControl {
 public:
  explicit ValueEntry(EditorContext& context, QWidget* parent = nullptr);

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  QWidget& Widget() override { return *this; }
  void Show() override;

 private:
  void Commit();
};

// A slider or scroll bar over the rule's positions. Level and gain sliders stand the device's
// way (position 0 is the highest value); they are drawn and keyed so that up and right raise
// the value. Every position moved to is sent (the link keeps the newest); a drag is one step of
// the history, each key or wheel step one of its own.
class RuleSlider final : public QSlider, public BoundControl {
 public:
  RuleSlider(EditorContext& context, Qt::Orientation orientation, QWidget* parent = nullptr);

 protected:
  QWidget& Widget() override { return *this; }
  void Show() override;
  void Rebound() override;
};

// Up-down buttons: the arrows, or Up / Down (Page Up / Page Down for ten steps) while focused.
class UpDown final : public QWidget, public BoundControl {
 public:
  UpDown(EditorContext& context, ControlRole role, QWidget* parent = nullptr);

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  QWidget& Widget() override { return *this; }
  void Show() override;

 private:
  void Step(int steps);
  QToolButton* up_;
  QToolButton* down_;
};

// A list of the parameter's choices ("-12dB/oct Bw", "BELL", " Clip" ...).
class ChoiceList final : public QComboBox, public BoundControl {
 public:
  explicit ChoiceList(EditorContext& context, QWidget* parent = nullptr);

 protected:
  QWidget& Widget() override { return *this; }
  void Show() override;
  void Rebound() override;
};

// A check box for a two-way choice (mute, polarity, bypass, delay unit, output link).
class ChoiceCheck final : public QCheckBox, public BoundControl {
 public:
  ChoiceCheck(EditorContext& context, const QString& caption, QWidget* parent = nullptr);

 protected:
  QWidget& Widget() override { return *this; }
  void Show() override;
};

// One option button of a choice ("+ InA", "+ InB").
class ChoiceOption final : public QRadioButton, public BoundControl {
 public:
  explicit ChoiceOption(EditorContext& context, QWidget* parent = nullptr);

 protected:
  QWidget& Widget() override { return *this; }
  void Show() override;
  void Rebound() override;
};

}  // namespace talvex::editor
