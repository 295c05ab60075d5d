// Editor windows, their slots, link failures, unconnecting, and leaving the program.
#include <gtest/gtest.h>

#include <QMdiSubWindow>

#include "app_harness.h"

namespace talvex::testing {
namespace {

using app::SearchMode;
using editor::Answer;

std::string Ids(int count) {
  std::string port = "sim:0";
  for (int id = 1; id < count; ++id)
    port += "," + std::to_string(id);
  return port;
}

int FramesOnLine(const AppHarness& app) {
  int frames = 0;
  for (int id : app.simulator->DeviceIds())
    frames += app.simulator->Device(id).FramesHandled();
  return frames;
}

class MainWindowTest : public ::testing::Test {
 protected:
  void Open(AppHarness& app, int deviceId) {
    app.window->ConnectDevice(deviceId);
    app.Settle();
  }
};

TEST_F(MainWindowTest, shouldOpenOneEditorPerDeviceWithItsCaption) {
  AppHarness app("sim:0,1,2", [](sim::SimLine& line) { line.Device(1).LiveImage()[298] = 1; });
  app.Start(Choice(SearchMode::AllIds));
  Open(app, 1);
  Open(app, 2);
  ASSERT_NE(app.window->Editor(0), nullptr);
  EXPECT_EQ(app.window->Editor(0)->windowTitle(), "ID:1 - Type: 2x3 WAY XOVER");
  EXPECT_EQ(app.window->Editor(1)->windowTitle(), "ID:2 - Type: 2x2 WAY XOVER + SUB");
  EXPECT_EQ(app.window->Slots().OpenWindowCount(), 1);
  EXPECT_TRUE(app.dialogs.shown.empty());
}

// The slot rules come before anything goes on the line: a refused connect sends not one frame
// (no poll, no name, no image, no state read) and leaves the count as it was.
TEST_F(MainWindowTest, shouldRefuseAConnectBeforeSendingAnything) {
  struct Case {
    const char* why;
    int editorsOpen;  // devices 0.. connected first
    int device;       // then this one
    const char* title;
    const char* text;
    int countAfter;
  };
  const Case cases[] = {
      {"already open", 2, 1, "Speakers Edit", "The window is already open", 1},
      {"no free slot", 11, 11, "Out of memory", "Out of memory: max number of window open is 32",
       10},
      {"no free slot, open device", 11, 3, "Out of memory",
       "Out of memory: max number of window open is 32", 10},
  };
  for (const Case& c : cases) {
    AppHarness app(Ids(12));
    app.Start(Choice(SearchMode::AllIds));
    for (int id = 0; id < c.editorsOpen; ++id)
      Open(app, id);
    ASSERT_TRUE(app.dialogs.shown.empty()) << c.why;
    const int framesBefore = FramesOnLine(app);
    Open(app, c.device);
    EXPECT_EQ(FramesOnLine(app), framesBefore) << c.why;
    ASSERT_EQ(app.dialogs.shown.size(), 1u) << c.why;
    EXPECT_EQ(app.dialogs.shown[0].title, c.title) << c.why;
    EXPECT_EQ(app.dialogs.shown[0].text, c.text) << c.why;
    EXPECT_EQ(app.window->Slots().OpenWindowCount(), c.countAfter) << c.why;
    EXPECT_EQ(app.window->Area()->subWindowList().size(), 1 + c.editorsOpen) << c.why;
  }
}

// A connect that fails gives its slot back: after it exactly as many windows can open as before.
TEST_F(MainWindowTest, shouldGiveTheSlotBackWhenAConnectFails) {
  AppHarness app(Ids(12));
  app.Start(Choice(SearchMode::AllIds));
  for (int id = 0; id < 10; ++id)
    Open(app, id);
  app.simulator->Faults(10).silentFrames = 2;  // both polls of the connect go unanswered
  Open(app, 10);
  ASSERT_EQ(app.dialogs.Texts(), (std::vector<std::string>{"Device disconnected"}));
  EXPECT_EQ(app.window->Slots().OpenWindowCount(), 9);
  Open(app, 11);  // the eleventh window still fits
  EXPECT_EQ(app.window->Slots().OpenWindowCount(), 10);
  EXPECT_EQ(app.window->Editor(10)->windowTitle().left(6), "ID:11 ");
  EXPECT_EQ(app.dialogs.shown.size(), 1u);
}

// A second request while the device is still being read is not a second connect.
TEST_F(MainWindowTest, shouldIgnoreAConnectOfADeviceBeingConnected) {
  AppHarness app("sim:0,1");
  app.Start(Choice(SearchMode::AllIds));
  const int imageReadsBefore = app.Frames(1, protocol::code::kReadBlock);
  app.window->ConnectDevice(1);
  app.window->DeviceList()->ConnectRow(1);
  app.Settle();
  EXPECT_EQ(app.Frames(1, protocol::code::kReadBlock), imageReadsBefore + 1);
  EXPECT_TRUE(app.dialogs.shown.empty());
  EXPECT_EQ(app.window->Slots().OpenWindowCount(), 0);
  EXPECT_NE(app.window->Editor(0), nullptr);
}

TEST_F(MainWindowTest, shouldAskBeforeClosingAnEditorAndFreeItsSlot) {
  AppHarness app("sim:0,1");
  app.Start(Choice(SearchMode::AllIds));
  Open(app, 1);
  app.dialogs.WillAnswer({Answer::No, Answer::Yes});
  auto* sub = qobject_cast<QMdiSubWindow*>(app.window->Editor(0)->parentWidget());
  sub->close();
  EXPECT_EQ(app.window->Slots().OpenWindowCount(), 0);
  sub->close();
  EXPECT_EQ(app.window->Slots().OpenWindowCount(), -1);
  ASSERT_EQ(app.dialogs.shown.size(), 2u);
  EXPECT_EQ(app.dialogs.shown[0].title, "ID:1 - Close window");
  EXPECT_EQ(app.dialogs.shown[0].text, "               Are you sure ? ");
}

TEST_F(MainWindowTest, shouldReportAFailedDeviceOnceAndCloseItsEditor) {
  AppHarness app("sim:0,1");
  app.Start(Choice(SearchMode::AllIds));
  Open(app, 1);
  app.simulator->Faults(1).silentFrames = 1000;
  for (int i = 0; i < 3; ++i) {  // three edits queued: the first fails, the others are dropped
    app.Session().Submit(
        1, "mute" + std::to_string(i),
        [](link::Link& link) {
          protocol::Command mute;
          mute.code = protocol::code::kMute;
          return link.SendCommand(1, mute);
        },
        [](link::SendResult) {});
  }
  app.Settle();
  ASSERT_EQ(app.dialogs.shown.size(), 1u);
  EXPECT_EQ(app.dialogs.shown[0].title, "Communication problem");
  EXPECT_EQ(app.dialogs.shown[0].text,
            " The system will be close the communication with this device");
  EXPECT_EQ(app.window->Slots().OpenWindowCount(), -1);
  EXPECT_EQ(app.window->DeviceList()->RowTexts()[1], " Disconnected      ID:1");
  EXPECT_TRUE(app.Session().Device(1).disconnected);
  // The other device is unaffected.
  link::SendResult other = link::SendResult::Skipped;
  app.Session().Submit(
      0, {},
      [](link::Link& link) {
        protocol::Command mute;
        mute.code = protocol::code::kMute;
        return link.SendCommand(0, mute);
      },
      [&](link::SendResult result) { other = result; });
  app.Settle();
  EXPECT_EQ(other, link::SendResult::Replied);
  EXPECT_EQ(app.dialogs.shown.size(), 1u);
}

TEST_F(MainWindowTest, shouldUnconnectWithCommand15AndMarkTheRow) {
  AppHarness app("sim:0,1");
  app.Start(Choice(SearchMode::AllIds));
  Open(app, 1);
  app.window->Unconnect(1);
  app.Settle();
  ASSERT_EQ(app.dialogs.shown.size(), 1u);  // no close question for a disconnected device
  EXPECT_EQ(app.dialogs.shown[0].title, "Unconnect device");
  EXPECT_EQ(app.dialogs.shown[0].text, "Do you want unconnect this device, are you sure ? ");
  EXPECT_EQ(app.Frames(1, 15), 1);
  EXPECT_EQ(app.window->DeviceList()->RowTexts()[1], " disconnected      ID:1");
  EXPECT_EQ(app.window->Slots().OpenWindowCount(), -1);

  const int framesBefore = app.simulator->Device(1).FramesHandled();
  app.dialogs.WillAnswer({Answer::No});  // not wanted after all: nothing sent, no slot kept
  Open(app, 1);
  EXPECT_EQ(app.simulator->Device(1).FramesHandled(), framesBefore);
  EXPECT_EQ(app.window->Slots().OpenWindowCount(), -1);

  app.simulator->Faults(1).silentFrames = 1000;  // reconnecting asks, then finds it gone
  Open(app, 1);
  ASSERT_EQ(app.dialogs.shown.size(), 4u);
  EXPECT_EQ(app.dialogs.shown[1].title, "Connect device");
  EXPECT_EQ(app.dialogs.shown[2].text, "Do you want connect this device, are you sure ? ");
  EXPECT_EQ(app.dialogs.shown[3].title, "Communication problem");
  EXPECT_EQ(app.dialogs.shown[3].text, "Device disconnected");
  EXPECT_EQ(app.window->Slots().OpenWindowCount(), -1);
}

TEST_F(MainWindowTest, shouldSayWhenADeviceAnswersPollsButNotReads) {
  AppHarness app("sim:0,1");
  app.Start(Choice(SearchMode::AllIds));
  app.simulator->Faults(1).silentFrames = 1000;
  app.simulator->Faults(1).silentCode = protocol::code::kMemoryRead;
  Open(app, 1);
  ASSERT_EQ(app.dialogs.shown.size(), 1u);
  EXPECT_EQ(app.dialogs.shown[0].text, "Time-Out: Communication problem with device ID:1");
  EXPECT_EQ(app.window->DeviceList()->RowTexts()[1], "---  ID:1");
  EXPECT_EQ(app.window->Slots().OpenWindowCount(), -1);
}

TEST_F(MainWindowTest, shouldNotOpenAnEditorOnAnImageThatStaysGarbled) {
  AppHarness app("sim:0,1");
  app.Start(Choice(SearchMode::AllIds));
  app.simulator->Device(1).LiveImage()[5] = 246;  // a frequency byte no device keeps
  Open(app, 1);
  EXPECT_EQ(app.Frames(1, 11), 1 + 3);  // the name pass's read, then three at the connect
  ASSERT_EQ(app.dialogs.shown.size(), 1u);
  EXPECT_EQ(app.dialogs.shown[0].text, "Time-Out: Communication problem with device ID:1");
  EXPECT_EQ(app.window->Slots().OpenWindowCount(), -1);
}

TEST_F(MainWindowTest, shouldSendCommand143OnlyWhenLeavingIsConfirmed) {
  AppHarness app("sim:0,1");
  app.Start(Choice(SearchMode::AllIds));
  app.window->show();
  app.dialogs.WillAnswer({Answer::No});
  app.window->close();
  app.Settle();
  EXPECT_TRUE(app.window->isVisible());
  EXPECT_EQ(app.Frames(0, 143), 0);
  EXPECT_EQ(app.quits->size(), 0);
  ASSERT_EQ(app.dialogs.shown.size(), 1u);
  EXPECT_EQ(app.dialogs.shown[0].title, "Exit");
  EXPECT_EQ(app.dialogs.shown[0].text, "               Are you sure ? ");
  EXPECT_EQ(app.dialogs.shown[0].defaultAnswer, Answer::No);

  app.window->ConnectDevice(1);  // an open editor must not ask again as the program ends
  app.Settle();
  app.window->close();  // Yes this time
  app.Settle();
  app.window.reset();
  EXPECT_EQ(app.dialogs.shown.size(), 2u);
  EXPECT_EQ(app.Frames(0, 143), 1);
  EXPECT_EQ(app.Frames(1, 143), 0);
  ASSERT_EQ(app.quits->size(), 1);
  EXPECT_EQ(app.quits->front().front().toInt(), 0);
}

}  // namespace
}  // namespace talvex::testing
