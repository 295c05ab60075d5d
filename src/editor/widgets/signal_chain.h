// The signal chain of a device at a glance: "In A" and "In B" fed from their inputs ("Input 1",
// "Input 2" or " SPDIF "), "Out 1" .. "Out 6" each fed "+ InA" or "+ InB", with each channel's
// "Gain", "Delay" and "X-over" and its level meter. Each channel's button selects the channel
// whose controls the window shows.
#pragma once

#include <QWidget>
#include <array>

#include "editor/model/device_editor.h"

class QButtonGroup;
class QLabel;
class QToolButton;

namespace talvex::editor {

class MeterBar;

class SignalChain final : public QWidget {
  Q_OBJECT

 public:
  explicit SignalChain(const DeviceEditor& model, QWidget* parent = nullptr);

  // Shows what the model holds now.
  void Refresh();
  void Select(int channel);
  void SetMeters(const EditorLink::MeterLevels& levels);
  MeterBar& Meter(int channel) const { return *rows_.at(static_cast<std::size_t>(channel)).meter; }
  QToolButton& Button(int channel) const {
    return *rows_.at(static_cast<std::size_t>(channel)).button;
  }

 signals:
  void channelSelected(int channel);

 private:
  struct Row {
    QLabel* source = nullptr;
    QToolButton* button = nullptr;
    QLabel* gain = nullptr;
    QLabel* delay = nullptr;
    QLabel* crossover = nullptr;  // outputs only
    MeterBar* meter = nullptr;
  };

  const DeviceEditor& model_;
  QButtonGroup* buttons_;
  std::array<Row, params::kChannelCount> rows_{};
};

}  // namespace talvex::editor
