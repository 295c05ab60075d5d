// The start-up paths of the main window: devices found, no port, no devices, demo mode refused or
// taken, single-device mode.
#include <gtest/gtest.h>

#include "app_harness.h"

namespace talvex::testing {
namespace {

using app::SearchMode;
using app::StartupOutcome;
using editor::Answer;
using editor::DialogIcon;

TEST(StartupTest, shouldListTheDevicesFoundWithTheirNames) {
  AppHarness app("sim:0,2,5", [](sim::SimLine& line) {
    NameDevice(line, 0, "Front L");
    NameDevice(line, 2, "Front R");
    NameDevice(line, 5, "Sub");
  });
  EXPECT_EQ(app.Start(Choice(SearchMode::AllIds)), StartupOutcome::DevicesFound);
  EXPECT_EQ(
      app.window->DeviceList()->RowTexts(),
      (QStringList{"Front L           ID:0", "Front R           ID:2", "Sub               ID:5"}));
  EXPECT_EQ(app.window->Search()->ProgressText(), "100 %");
  EXPECT_FALSE(app.window->Search()->isVisible());  // the search is over
  EXPECT_TRUE(app.dialogs.shown.empty());
  const auto records = config::ReadSpeakerRecords(app.Folder());  // for demo mode on a later run
  EXPECT_EQ(config::PresentDeviceIds(records.value), (std::vector<int>{0, 2, 5}));
  EXPECT_EQ(records.value[2].name, "Front R         ");
}

// The search window belongs to a port that opened, and is gone before the question.
TEST(StartupTest, shouldEndWithoutTheExitQuestionWhenDemoModeIsRefused) {
  struct Case {
    const char* port;
    SearchMode mode;
    const char* question;
    bool searched;  // the port opened and several IDs were polled
  };
  const Case cases[] = {
      {"/dev/talvex-no-such-port", SearchMode::AllIds,
       "COM not found, do you want to continue in demo mode?", false},
      {"/dev/talvex-no-such-port", SearchMode::SingleDevice,
       "COM not found, do you want to continue in demo mode?", false},
      {"sim:25", SearchMode::IdList, "Devices disconnected, do you want to continue in demo mode?",
       true},
      {"sim:25", SearchMode::SingleDevice,
       "Devices unconnected, do you want to continue in demo mode?", false},
  };
  for (const Case& c : cases) {
    AppHarness app(c.port);
    app.dialogs.WillAnswer({Answer::No});
    bool searchBehindQuestion = false;
    app.dialogs.onQuestion = [&] {
      searchBehindQuestion = app.window->Search() && app.window->Search()->isVisible();
    };
    EXPECT_EQ(app.Start(Choice(c.mode)), StartupOutcome::Refused) << c.question;
    ASSERT_EQ(app.dialogs.shown.size(), 1u) << c.question;
    EXPECT_EQ(app.dialogs.shown[0].title, "Warning");
    EXPECT_EQ(app.dialogs.shown[0].text, c.question);
    EXPECT_FALSE(searchBehindQuestion) << c.port << " " << c.question;
    EXPECT_EQ(app.window->Search() != nullptr, c.searched) << c.port << " " << c.question;
    EXPECT_TRUE(app.Session().Closing());
    ASSERT_EQ(app.quits->size(), 1);
    app.window->close();  // no "Are you sure ?" after a refusal
    EXPECT_EQ(app.dialogs.shown.size(), 1u) << c.question;
  }
}

TEST(StartupTest, shouldListTheDevicesOfSpeakersCfgInDemoMode) {
  AppHarness app("sim:0", [](sim::SimLine& line) { line.Faults(0).silentFrames = 1000; });
  config::SpeakerRecords records{};
  records[3] = {3, "Stage", true};
  records[7] = {7, "Delay tower", true};
  ASSERT_EQ(config::WriteSpeakerRecords(app.Folder(), records), "");
  EXPECT_EQ(app.Start(Choice(SearchMode::AllIds)), StartupOutcome::DemoMode);
  EXPECT_EQ(
      app.dialogs.Texts(),
      (std::vector<std::string>{"Devices disconnected, do you want to continue in demo mode?"}));
  EXPECT_EQ(app.window->DeviceList()->RowTexts(),
            (QStringList{"  Device Demo     ID:3", "  Device Demo     ID:7"}));
  const int framesBefore = app.simulator->Device(0).FramesHandled();
  app.Session().RefreshNames();
  app.Settle();
  EXPECT_EQ(app.window->DeviceList()->RowTexts(),
            (QStringList{"  Device Demo     ID:3", "  Device Demo     ID:7"}));
  EXPECT_EQ(app.simulator->Device(0).FramesHandled(), framesBefore);  // nothing is sent
  EXPECT_EQ(app.simulator->MalformedFrames(), 0);
}

TEST(StartupTest, shouldEndWhenDemoModeHasNoDeviceToList) {
  AppHarness app("sim:25");
  EXPECT_EQ(app.Start(Choice(SearchMode::IdList)), StartupOutcome::Refused);
  ASSERT_EQ(app.dialogs.shown.size(), 2u);
  EXPECT_EQ(app.dialogs.shown[1].title, "Exit");
  EXPECT_EQ(app.dialogs.shown[1].text, "      Devices not found!");
  EXPECT_EQ(app.dialogs.shown[1].icon, DialogIcon::Critical);
  EXPECT_EQ(app.quits->size(), 1);
}

TEST(StartupTest, shouldAcceptASingleDeviceThatAnswersOnlyTheSecondPoll) {
  AppHarness app("sim:4", [](sim::SimLine& line) { line.Faults(4).answerSecondPollOnly = true; });
  EXPECT_EQ(app.Start(Choice(SearchMode::SingleDevice, 4)), StartupOutcome::DevicesFound);
  EXPECT_EQ(app.Session().ListedIds(), (std::vector<int>{4}));
  EXPECT_EQ(app.window->Search(), nullptr);  // no search window for one device
  EXPECT_TRUE(app.dialogs.shown.empty());
}

TEST(StartupTest, shouldSearchOnlyTheListedIds) {
  AppHarness app("sim:3,25");
  EXPECT_EQ(app.Start(Choice(SearchMode::IdList)), StartupOutcome::DevicesFound);  // lists 0..19
  EXPECT_EQ(app.Session().ListedIds(), (std::vector<int>{3}));
  EXPECT_EQ(app.Frames(25, 0), 0);
}

}  // namespace
}  // namespace talvex::testing
