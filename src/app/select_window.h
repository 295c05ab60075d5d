// The selection window: the serial port, how devices are found, and the device IDs. The port
// choice is written to "init.cfg" at once; the 20 IDs to "TenDev.cfg" only once OK has checked
// that they all differ.
#pragma once

#include <QButtonGroup>
#include <QComboBox>
#include <QDialog>
#include <QGroupBox>
#include <QLabel>
#include <array>
#include <filesystem>
#include <optional>
#include <vector>

#include "app/startup_choice.h"
#include "editor/user_dialogs.h"

namespace talvex::app {

using editor::Answer;
using editor::DialogIcon;
using editor::UserDialogs;

inline constexpr const char* kSelectTitle = "TALVEX - Port and devices";
inline constexpr const char* kDuplicateIdsText = "All ID must be different!";
inline constexpr const char* kSimulatedPort = "sim:0,1,2";

// A port the list offers: what the user reads, and the port text the link opens.
struct PortEntry {
  QString label;
  std::string port;
};

// The simulated line, the serial ports the system reports, and `preselected` if it is none of them.
std::vector<PortEntry> AvailablePorts(const std::string& preselected);

class SelectWindow : public QDialog {
  Q_OBJECT

 public:
  SelectWindow(std::vector<PortEntry> ports, std::filesystem::path configFolder,
               UserDialogs& dialogs, const std::string& preselectedPort = {},
               QWidget* parent = nullptr);

  // What the user chose, once the window was accepted.
  StartupChoice Choice() const;

  // Exposed for tests: the widgets a user works.
  QComboBox* PortList() const { return portList_; }
  QComboBox* IdList(int i) const { return idLists_.at(static_cast<std::size_t>(i)); }
  QComboBox* SingleIdList() const { return singleIdList_; }
  // Why the chosen serial port will not open, as far as can be told without opening it.
  QLabel* PortWarning() const { return portWarning_; }
  void ChooseMode(SearchMode mode);
  // OK: the duplicate check, then "TenDev.cfg", then the window closes.
  void Confirm();

 private:
  QGroupBox* BuildModes();
  QGroupBox* BuildIdLists();
  void SelectInitialPort(const std::string& preselectedPort);
  void PortChanged(int position);
  void UpdateEnabling();
  void UpdatePortWarning();

  std::vector<PortEntry> ports_;
  std::filesystem::path configFolder_;
  UserDialogs& dialogs_;
  config::DeviceIdTable ids_{};
  QComboBox* portList_ = nullptr;
  QLabel* portWarning_ = nullptr;
  std::array<QComboBox*, config::kIdListCount> idLists_{};
  QComboBox* singleIdList_ = nullptr;
  QButtonGroup modes_;
  QGroupBox* idFrame_ = nullptr;
};

}  // namespace talvex::app
