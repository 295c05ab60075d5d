// The line monitor, the status bar's line, the dark theme and the first run on simulated devices.
#include <gtest/gtest.h>

#include <QApplication>
#include <QFile>
#include <QLabel>
#include <QStatusBar>
#include <algorithm>

#include "app/select_window.h"
#include "app/theme.h"
#include "app_harness.h"

namespace talvex::testing {
namespace {

using app::SearchMode;

QStringList ViewLines(const app::LineMonitorWindow& monitor) {
  return monitor.View()->toPlainText().split('\n', Qt::SkipEmptyParts);
}

bool AnyLine(const QStringList& lines, const QString& part) {
  return std::any_of(lines.begin(), lines.end(),
                     [&](const QString& l) { return l.contains(part); });
}

QString LineState(app::MainWindow& window) {
  QString text;
  for (const QLabel* label : window.statusBar()->findChildren<QLabel*>())
    text += label->text();
  return text;
}

TEST(LineMonitorTest, shouldListNothingWhileClosed) {
  AppHarness app("sim:0,3");
  QSignalSpy seen(&app.Session().Tap(), &app::LineTap::frameSeen);
  app.Start(Choice(SearchMode::AllIds));
  EXPECT_FALSE(app.Session().Tap().Listening());
  EXPECT_EQ(seen.count(), 0);
}

TEST(LineMonitorTest, shouldShowTheSearchAndAConnectWithTimeIdAndCommandName) {
  AppHarness app("sim:0,3");
  app.window->ShowLineMonitor();
  app::LineMonitorWindow& monitor = *app.window->Monitor();
  ASSERT_TRUE(app.Session().Tap().Listening());
  app.Start(Choice(SearchMode::AllIds));
  const QStringList search = ViewLines(monitor);
  // 33 IDs polled, a silent one twice; then the names and images of the two found, each image
  // read closed by a command 0.
  const auto polls = std::count_if(search.begin(), search.end(), [](const QString& l) {
    return l.contains(QRegularExpression(">  ID [ \\d]\\d  poll "));
  });
  EXPECT_EQ(polls, 2 + 31 * 2 + 2);
  const QRegularExpression frame(
      R"(^\d\d:\d\d:\d\d\.\d\d\d  [<>]  ID [ \d]\d  .{17}  F0 81 ([0-9A-F]{2} ){10}F7$)");
  const QRegularExpression block(
      R"(^\d\d:\d\d:\d\d\.\d\d\d  <  ID [ \d]\d  block \(304 bytes\)  ([0-9A-F]{2} ){303}[0-9A-F]{2}$)");
  for (const QString& l : search)
    EXPECT_TRUE(frame.match(l).hasMatch() || block.match(l).hasMatch()) << l.toStdString();
  EXPECT_TRUE(search[0].contains(">  ID  0  poll               F0 81 00 00"))
      << search[0].toStdString();
  EXPECT_TRUE(search[1].contains("<  ID  0  poll               F0 81 00 00 81"))
      << search[1].toStdString();
  EXPECT_TRUE(AnyLine(search, ">  ID  3  memory read        F0 81 03 10 01 70"));

  app.window->ConnectDevice(3);
  app.Settle();
  const QStringList all = ViewLines(monitor);
  EXPECT_TRUE(AnyLine(all, ">  ID  3  read block         F0 81 03 0B"));
  EXPECT_TRUE(AnyLine(all, "<  ID  3  block (304 bytes)  "));
  EXPECT_TRUE(AnyLine(all, ">  ID  3  read state         F0 81 03 17"));
  EXPECT_EQ(static_cast<std::size_t>(all.size()), monitor.Log().Size());
}

TEST(LineMonitorTest, shouldFilterByDevicePauseAndSaveWhatItShows) {
  AppHarness app("sim:0,3");
  app.window->ShowLineMonitor();
  app::LineMonitorWindow& monitor = *app.window->Monitor();
  app.Start(Choice(SearchMode::AllIds));

  monitor.DeviceFilter()->setCurrentIndex(1 + 3);  // "ID 3"
  const QStringList three = ViewLines(monitor);
  ASSERT_FALSE(three.isEmpty());
  for (const QString& l : three)
    EXPECT_TRUE(l.contains("  ID  3  ")) << l.toStdString();

  monitor.PauseBox()->setChecked(true);
  const std::size_t before = monitor.Log().Size();
  app.window->ConnectDevice(3);
  app.Settle();
  EXPECT_GT(monitor.Log().Size(), before);  // kept while paused
  EXPECT_EQ(ViewLines(monitor), three);     // but not shown
  monitor.PauseBox()->setChecked(false);
  EXPECT_GT(ViewLines(monitor).size(), three.size());

  const QString path = app.folder.filePath("line.txt");
  app.dialogs.file = path.toStdString();
  ASSERT_TRUE(monitor.Save());
  QFile saved(path);
  ASSERT_TRUE(saved.open(QIODevice::ReadOnly));
  EXPECT_EQ(QString::fromUtf8(saved.readAll()), monitor.View()->toPlainText() + "\n");

  monitor.close();  // closed: it stops listening, and keeps what it has
  const std::size_t kept = monitor.Log().Size();
  app.Session().RefreshNames();
  app.Settle();
  EXPECT_FALSE(app.Session().Tap().Listening());
  EXPECT_EQ(monitor.Log().Size(), kept);
}

TEST(FirstRunTest, shouldListNamedSimulatedDevicesAndSayTheLineIsSimulated) {
  AppHarness app("sim:0,1,2");
  app.Start(Choice(SearchMode::AllIds));
  EXPECT_EQ(app.Session().RowText(0), "SIM 2x2 00        ID:0");
  EXPECT_EQ(app.Session().RowText(2), "SIM 2x2 02        ID:2");
  app::StartupChoice choice = Choice(SearchMode::AllIds);
  EXPECT_TRUE(LineState(*app.window).contains("Simulated line"))
      << LineState(*app.window).toStdString();
}

TEST(FirstRunTest, shouldSayWhyThePortDidNotOpenBesideTheSystemsQuestion) {
  AppHarness app("/dev/ttyTALVEXmissing");
  app.dialogs.WillAnswer({editor::Answer::No});
  app::StartupChoice choice = Choice(SearchMode::AllIds);
  choice.port = "/dev/ttyTALVEXmissing";
  EXPECT_EQ(app.Start(choice), app::StartupOutcome::Refused);
  ASSERT_EQ(app.dialogs.shown.size(), 1u);
  EXPECT_EQ(app.dialogs.shown[0].text, "COM not found, do you want to continue in demo mode?");
  EXPECT_TRUE(LineState(*app.window).contains("the port does not exist"))
      << LineState(*app.window).toStdString();

  RecordingDialogs dialogs;
  app::SelectWindow select({{"Simulated", "sim:0,1,2"}, {"missing", "/dev/ttyTALVEXmissing"}},
                           app.Folder(), dialogs);
  EXPECT_TRUE(select.PortWarning()->isHidden());
  select.PortList()->setCurrentIndex(1);
  EXPECT_FALSE(select.PortWarning()->isHidden());
  EXPECT_EQ(select.PortWarning()->text().toStdString(),
            "/dev/ttyTALVEXmissing cannot be opened: the port does not exist: is the adapter "
            "plugged in, and is the name right?");
}

TEST(ThemeTest, shouldSwitchToTheDarkPaletteRememberItAndGoBackToTheDesktops) {
  QTemporaryDir folder;
  const std::filesystem::path path = folder.path().toStdString();
  const QColor desktopWindow = QApplication::palette().color(QPalette::Window);
  EXPECT_EQ(app::ReadTheme(path), app::Theme::Desktop);
  std::unique_ptr<QAction> action(app::MakeThemeAction(path, nullptr));
  action->setChecked(true);
  EXPECT_EQ(app::ReadTheme(path), app::Theme::Dark);
  EXPECT_EQ(QApplication::palette().color(QPalette::Window),
            app::DarkPalette().color(QPalette::Window));
  EXPECT_EQ(QApplication::style()->name().toLower(), "fusion");
  EXPECT_LT(QApplication::palette().color(QPalette::Base).lightness(),
            QApplication::palette().color(QPalette::Text).lightness());
  action->setChecked(false);
  EXPECT_EQ(app::ReadTheme(path), app::Theme::Desktop);
  EXPECT_EQ(QApplication::palette().color(QPalette::Window), desktopWindow);
}

}  // namespace
}  // namespace talvex::testing
