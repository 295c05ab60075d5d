// The line monitor: every frame the program sends and every reply it takes, time-stamped, with
// the device ID and the command's name. It can show one device only, stop scrolling (pause)
// while frames keep being kept, and save what it shows to a text file. It listens only while it
// is open.
#pragma once

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QWidget>
#include <filesystem>

#include "app/line_log.h"
#include "app/line_tap.h"
#include "editor/user_dialogs.h"

namespace talvex::app {

inline constexpr const char* kLineMonitorTitle = "Line monitor";
inline constexpr const char* kMonitorFileFilter = "text file (*.txt)|*.txt";

class LineMonitorWindow : public QWidget {
  Q_OBJECT

 public:
  LineMonitorWindow(LineTap& tap, editor::UserDialogs& dialogs, std::filesystem::path folder,
                    QWidget* parent = nullptr);
  ~LineMonitorWindow() override;

  // Exposed for tests: the controls a user works, and what the view shows.
  QComboBox* DeviceFilter() const { return filter_; }
  QCheckBox* PauseBox() const { return pause_; }
  QPlainTextEdit* View() const { return view_; }
  const LineLog& Log() const { return log_; }
  // Asks for a file and writes the lines the view shows (every frame of the filter, those that
  // came during a pause included). False when nothing was written.
  bool Save();

 protected:
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;

 private:
  void Take(const LoggedFrame& frame);
  void Rebuild();
  void Resume();
  void UpdateCount();
  std::optional<int> Filter() const;

  QPointer<LineTap> tap_;  // the session's, which may go first when the program ends
  editor::UserDialogs& dialogs_;
  std::filesystem::path folder_;
  LineLog log_;
  std::size_t shownUpTo_ = 0;  // frames of the log already considered for the view
  QComboBox* filter_;
  QCheckBox* pause_;
  QPushButton* clear_;
  QPushButton* save_;
  QLabel* count_;
  QPlainTextEdit* view_;
};

}  // namespace talvex::app
