// The editor window of one connected device. Its channel controls come with the channel editor;
// for now it shows what the program knows of the device and lets the user disconnect it.
#pragma once

#include <QFormLayout>
#include <QLabel>
#include <QWidget>
#include <functional>
#include <string>

#include "params/device_params.h"

namespace talvex::editor {

inline constexpr const char* kDisconnectAction = "Disconnect device";

class CtrlWindow : public QWidget {
  Q_OBJECT

 public:
  // `mayClose` is asked before the window closes (the close question); it is not asked when the
  // program closes the window itself (CloseWithoutAsking).
  CtrlWindow(int deviceId, int slot, std::function<bool()> mayClose, QWidget* parent = nullptr);

  int DeviceId() const { return deviceId_; }
  int Slot() const { return slot_; }
  void ShowDevice(const std::string& name, const params::DeviceParams& device);
  void CloseWithoutAsking();

 signals:
  void disconnectRequested(int deviceId);
  void closed(int slot);

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  int deviceId_;
  int slot_;
  std::function<bool()> mayClose_;
  bool asked_ = false;
  QFormLayout* summary_;
};

}  // namespace talvex::editor
