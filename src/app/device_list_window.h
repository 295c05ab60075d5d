// The device list: one row per device found (or, in demo mode, per device of "Speakers.cfg") with
// its name and ID. Connecting a row opens the device's editor.
#pragma once

#include <QPushButton>
#include <QTableWidget>
#include <QWidget>

namespace talvex::app {

class Session;

inline constexpr const char* kDeviceListTitle = "Devices";

class DeviceListWindow : public QWidget {
  Q_OBJECT

 public:
  explicit DeviceListWindow(Session& session, QWidget* parent = nullptr);

  QTableWidget* Grid() const { return grid_; }
  // The row texts as shown: the name (or the state in its place), "  ID:", the ID.
  QStringList RowTexts() const;
  // Asks for the row's device to be connected (the main window applies the slot rules first).
  void ConnectRow(int row);

 signals:
  void connectRequested(int deviceId);

 public slots:
  void Redraw();

 private:
  Session& session_;
  QTableWidget* grid_;
  QPushButton* connectButton_;
};

}  // namespace talvex::app
