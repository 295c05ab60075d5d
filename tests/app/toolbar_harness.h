// The editor's toolbar on a simulated line: an editor opened from the device list, its window
// commands triggered as a user clicks them, its dialogs found and driven, the frames each
// device handled counted per code.
#pragma once

#include <QAction>
#include <QDialog>
#include <QPointer>
#include <fstream>
#include <iterator>
#include <map>

#include "app_harness.h"
#include "editor/ctrl_window.h"
#include "params/param_edit.h"

namespace talvex::testing {

using editor::WindowCommand;

// The frames a device has handled, per code, at one moment.
struct FrameCount {
  std::map<int, int> byCode;
  int total = 0;
};

inline FrameCount CountFrames(const AppHarness& app, int id) {
  FrameCount count;
  const sim::SimDevice& device = app.simulator->Device(id);
  for (int code = 0; code < 256; ++code)
    if (const int frames = device.FramesHandled(static_cast<std::uint8_t>(code)))
      count.byCode[code] = frames;
  count.total = device.FramesHandled();
  return count;
}

// The frames handled since `before`, per code; codes without new frames are left out.
inline std::map<int, int> FramesSince(const AppHarness& app, int id, const FrameCount& before) {
  std::map<int, int> since;
  for (const auto& [code, frames] : CountFrames(app, id).byCode) {
    const auto at = before.byCode.find(code);
    const int added = frames - (at == before.byCode.end() ? 0 : at->second);
    if (added) since[code] = added;
  }
  return since;
}

inline editor::CtrlWindow& OpenEditor(AppHarness& app, int deviceId) {
  app.window->ConnectDevice(deviceId);
  app.Settle();
  const auto slot = app.window->Slots().SlotOfDevice(deviceId);
  if (!slot || !app.window->Editor(*slot)) throw std::runtime_error("the editor did not open");
  return *app.window->Editor(*slot);
}

inline void Trigger(AppHarness& app, editor::CtrlWindow& editor, WindowCommand command) {
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);  // dialogs closed before
  editor.Command2(static_cast<int>(command)).trigger();
  app.Settle();
}

// Opens the command's dialog and returns it (the test fails when it does not open).
template <typename Dialog>
Dialog& OpenDialog(AppHarness& app, editor::CtrlWindow& editor, WindowCommand command) {
  Trigger(app, editor, command);
  auto* dialog = editor.findChild<Dialog*>();
  if (!dialog || !dialog->isVisible()) throw std::runtime_error("the dialog did not open");
  return *dialog;
}

// A preset unlike the factory one: levels, a band, a crossover and a delay moved.
inline params::DeviceParams MovedPreset(int systemType = 0) {
  params::DeviceParams device = params::DeviceParams::FromDefault(systemType);
  using params::ParamKind;
  params::EditText(device, {ParamKind::Level, 3, 0}, "-4.5");
  params::EditText(device, {ParamKind::EqGain, 2, params::GlobalBand(2, 1)}, "6");
  params::EditText(device, {ParamKind::LowPassFrequency, 4, 0}, "1200");
  params::EditText(device, {ParamKind::Delay, 6, 0}, "2");
  return device;
}

inline std::vector<std::uint8_t> FileBytes(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

inline std::vector<std::uint8_t> PresetBytes(const params::ParamImage& image) {
  return {image.begin(), image.begin() + params::kPresetSize};
}

inline std::vector<std::uint8_t> PresetBytes(const params::PresetImage& image) {
  return {image.begin(), image.end()};
}

}  // namespace talvex::testing
