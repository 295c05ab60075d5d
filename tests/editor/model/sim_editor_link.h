// An editor's link straight onto a simulated device on a virtual clock: each command is sent at
// once and each job runs to its end before the call returns, so a test sees on the device what
// the editor sent, in order, without a link worker.
#pragma once

#include <vector>

#include "editor/model/device_editor.h"
#include "link/line.h"
#include "presets/preset_transfer.h"
#include "presets/system_type.h"
#include "testlib/recording_observer.h"

namespace talvex::editor {

class SimEditorLink final : public EditorLink {
 public:
  explicit SimEditorLink(int id)
      : id_(id),
        line(link::MakeLine(link::ParsePortSpec("sim:" + std::to_string(id)))),
        link(*line.transport, *line.clock, &observer) {
    link.OpenPort();
    link.Flags().ReportLinkErrors = true;
  }

  void Send(std::span<const params::ParamEdit> edits) override {
    for (const params::ParamEdit& edit : edits)
      link.SendCommand(id_, edit.command);
  }
  void RunJob(DeviceJob job) override {
    ++jobs;
    job.work(link, [&job](int value, int maximum) {
      if (job.progress) job.progress(value, maximum);
    });
    if (job.done) job.done();
  }

  sim::SimDevice& Device() { return line.simulator->Device(id_); }
  // The commands sent since `from` (an index into observer.sent).
  std::vector<protocol::Command> SentSince(std::size_t from) const {
    std::vector<protocol::Command> commands;
    for (std::size_t i = from; i < observer.sent.size(); ++i) {
      protocol::Frame frame{};
      std::copy_n(observer.sent[i].begin(), frame.size(), frame.begin());
      commands.push_back(protocol::CommandOf(frame));
    }
    return commands;
  }
  // The device takes `setting` whole: its type, then every parameter as a preset file's load
  // sends it.
  void Push(params::DeviceParams setting) {
    const int type = setting.image[params::kSystemTypeByte];
    if (Device().SystemType() != type) link.SendCommand(id_, presets::SystemTypeCommand(type));
    presets::PresetView view;
    presets::SendPresetTransfer(
        link, id_, presets::ApplyPreset(setting, view, presets::TransferFlags::PresetFileLoad()));
  }

  int jobs = 0;

 private:
  int id_;

 public:
  testing::RecordingObserver observer;
  link::Line line;
  link::Link link;
};

}  // namespace talvex::editor
