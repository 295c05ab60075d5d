// The controls of the selected channel, in the order the signal meets them: its source, "Level
// [dB]" with its slider and mute, "Phase", "Delay" with its up-downs and the temperature, the
// equaliser bands with "Bypass Eq" and "Flat Eq", the crossover ("X-over") and the "Limiter" of
// an output, the limiter level of command 35, and the "Noise Gate". One set of controls is
// rebound to each channel the user selects.
#pragma once

#include <QWidget>
#include <functional>
#include <vector>

#include "editor/widgets/bound_controls.h"

class QCheckBox;
class QGroupBox;
class QLabel;
class QPushButton;

namespace talvex::editor {

class ChannelPage final : public QWidget {
 public:
  ChannelPage(EditorContext& context, QWidget* parent = nullptr);

  // Shows `channel`'s controls: every control takes that channel's parameter and name.
  void Bind(int channel);
  // Shows what the model holds in every control and label, and enables the controls by the
  // lock (the enable routine).
  void Refresh();

  // The controls bound to a channel's parameters, for tests and tab order.
  const std::vector<BoundControl*>& Controls() const { return controls_; }
  QCheckBox& EditorLockBox() const { return *editorLock_; }

 private:
  // A control and how it finds its parameter on the selected channel.
  struct Binding {
    BoundControl* control;
    std::function<params::ParamRef(int channel)> ref;
    int choice = 0;
  };

  template <typename Control, typename... Args>
  Control* Add(std::function<params::ParamRef(int)> ref, Args&&... args);
  template <typename Control, typename... Args>
  Control* AddChoice(std::function<params::ParamRef(int)> ref, int choice, Args&&... args);

  QWidget* BuildLevel();
  QWidget* BuildPhase();
  QWidget* BuildDelay();
  QWidget* BuildRouting();
  QWidget* BuildEqualiser();
  QWidget* BuildCrossover();
  QWidget* BuildLimiter();
  QWidget* BuildNoiseGate();
  void RefreshLabels();
  void OrderTabs();

  EditorContext& context_;
  int channel_ = 0;
  std::vector<Binding> bindings_;
  std::vector<BoundControl*> controls_;
  std::vector<QWidget*> outputOnly_;  // hidden on inputs
  std::vector<QWidget*> inputOnly_;   // hidden on outputs
  std::vector<QWidget*> extraBands_;  // bands 6 and 7: outputs only
  std::vector<QWidget*> tabOrder_;
  QGroupBox* equaliser_ = nullptr;
  QLabel* crossoverLabel_ = nullptr;
  QLabel* limiterLabel_ = nullptr;
  QLabel* delayUnit_ = nullptr;
  QCheckBox* editorLock_ = nullptr;
  QPushButton* flat_ = nullptr;
};

}  // namespace talvex::editor
