// The desktop program when the line goes wrong under it: an editor closed while its job still
// waits, the port gone and reopened, the program left while a pass over the devices runs.
#include <gtest/gtest.h>

#include <QEventLoop>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QTimer>
#include <future>

#include "editor/dialogs/command_context.h"
#include "editor/dialogs/frm_store.h"
#include "toolbar_harness.h"

namespace talvex::testing {
namespace {

using app::SearchMode;
using params::ParamKind;
namespace code = protocol::code;

// Holds the link worker in a job until released, so that what the interface queues meanwhile
// waits, as it does behind another device's long job on a slow line.
class WorkerGate {
 public:
  explicit WorkerGate(AppHarness& app) {
    app.Session().Worker().Enqueue(
        link::kAnyDevice, [opened = opened_.get_future().share()](link::Link&) { opened.wait(); });
  }
  ~WorkerGate() { Open(); }
  void Open() {
    if (!std::exchange(done_, true)) opened_.set_value();
  }

 private:
  std::promise<void> opened_;
  bool done_ = false;
};

std::vector<std::string> Messages(const AppHarness& app) {
  std::vector<std::string> texts;
  for (const Shown& shown : app.dialogs.shown)
    if (shown.kind == "message") texts.push_back(shown.title + ": " + shown.text);
  return texts;
}

void Pump() {
  for (int i = 0; i < 5; ++i)
    QCoreApplication::processEvents();
}

// The user stores or loads a file, an edit queues behind it, and the editor is closed before
// the worker gets to them: nothing goes to the device afterwards, and the user learns that the
// store or the file's transfer did not happen (once).
TEST(FaultHandlingTest, shouldSendNothingForAClosedEditorAndTellWhatDidNotBegin) {
  struct Case {
    WindowCommand command;
    editor::Unfinished told;
  };
  const Case cases[] = {
      {WindowCommand::StorePreset, editor::StoreNotDone(0, 0)},
      {WindowCommand::LoadPresetFromPc, editor::FileNotSent(0, "show.tvx")},
  };
  for (const Case& c : cases) {
    AppHarness app("sim:0,1");
    app.Start(Choice(SearchMode::AllIds));
    editor::CtrlWindow& editor = OpenEditor(app, 0);
    app.dialogs.file = (app.Folder() / "show.tvx").string();
    Trigger(app, editor, WindowCommand::SavePresetToPc);
    const FrameCount before = CountFrames(app, 0);
    {
      WorkerGate gate(app);
      editor.Command2(static_cast<int>(c.command)).trigger();
      Pump();
      if (auto* store = editor.findChild<editor::FrmStore*>()) store->Command1(1).click();
      editor.Model().Commit({ParamKind::Level, 2, 0}, "-3");
      editor.close();  // "Are you sure ?" answered Yes
      Pump();
      ASSERT_EQ(app.window->Editor(0), nullptr);
    }
    app.Settle();
    EXPECT_EQ(CountFrames(app, 0).total, before.total) << c.told.title;
    EXPECT_EQ(Messages(app), std::vector<std::string>{c.told.title + ": " + c.told.text});
  }
}

// The adapter is pulled out: whichever device fails first, the port's loss is told once, every
// editor closes and a block read that ends that way does not end the program. Connecting says
// the port is gone; File > Reopen port opens it again and the devices connect as before.
TEST(FaultHandlingTest, shouldTellALostPortOnceAndReopenItFromTheMainWindow) {
  AppHarness app("sim:0,1");
  app.Start(Choice(SearchMode::AllIds));
  editor::CtrlWindow& first = OpenEditor(app, 0);
  editor::CtrlWindow& second = OpenEditor(app, 1);
  ASSERT_TRUE(app.window->ReopenPortAction().isEnabled());
  app.Session().Worker().Enqueue(link::kAnyDevice, [](link::Link& link) { link.Line().Close(); });
  first.Model().Commit({ParamKind::Level, 2, 0}, "-3");
  second.Model().Commit({ParamKind::Level, 3, 0}, "-4");
  app.Settle();
  const std::string lost = "Communication problem: " + app.Session().PortLostMessage();
  EXPECT_EQ(Messages(app), std::vector<std::string>{lost});
  EXPECT_EQ(app.window->Editor(0), nullptr);
  EXPECT_EQ(app.window->Editor(1), nullptr);
  EXPECT_EQ(app.window->DeviceList()->RowTexts().front().toStdString(), " Disconnected      ID:0");

  app.Session().Worker().Enqueue(link::kAnyDevice, [](link::Link& link) {
    link.ReadBlock(0, protocol::Command{code::kReadBlock, {255, 255}});
  });
  app.Settle();
  EXPECT_TRUE(app.quits->isEmpty());
  app.window->ConnectDevice(0);
  app.Settle();
  EXPECT_EQ(Messages(app), (std::vector<std::string>{lost, lost}));
  EXPECT_FALSE(app.window->Slots().SlotOfDevice(0).has_value());

  app.window->ReopenPortAction().trigger();
  app.Settle();
  EXPECT_EQ(Messages(app).size(), 2u);
  EXPECT_FALSE(app.Session().PortLost());
  editor::CtrlWindow& again = OpenEditor(app, 0);
  const int levels = app.Frames(0, code::kChannelLevel);
  again.Model().Commit({ParamKind::Level, 2, 0}, "-5");
  app.Settle();
  EXPECT_EQ(app.Frames(0, code::kChannelLevel), levels + 1);
  EXPECT_EQ(Messages(app).size(), 2u);
}

// Runs `during` inside an event loop that stays up a little, as a message box's does: what is
// posted meanwhile (a device lost, a window deleted later) happens under the box.
void UnderABox(const std::function<void()>& during) {
  QEventLoop box;
  QTimer::singleShot(0, &box, during);
  QTimer::singleShot(30, &box, &QEventLoop::quit);
  box.exec();
}

// A device is lost while the user answers a question of its editor (the close question, or
// "Do you want unconnect this device"), and meanwhile another device connects: the editor does
// not close (nor is it deleted) under the box, the code that asked goes on with a live window,
// and the other device's editor keeps its slot and its line.
TEST(FaultHandlingTest, shouldNotCloseAnEditorUnderAnOpenBox) {
  for (const bool viaDisconnect : {false, true}) {
    AppHarness app("sim:0,1");
    app.Start(Choice(SearchMode::AllIds));
    editor::CtrlWindow& editor = OpenEditor(app, 0);
    bool once = false;
    app.dialogs.onQuestion = [&] {
      if (std::exchange(once, true)) return;
      UnderABox([&] {
        emit app.Session().deviceLost(0);
        app.window->ConnectDevice(1);
        app.Settle();
      });
    };
    if (viaDisconnect) {
      editor.Command2(static_cast<int>(WindowCommand::Disconnect)).trigger();
    } else {
      qobject_cast<QMdiSubWindow*>(editor.parentWidget())->close();
    }
    app.Settle();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    app.dialogs.onQuestion = nullptr;
    EXPECT_FALSE(app.window->Slots().SlotOfDevice(0).has_value()) << viaDisconnect;
    const auto slot = app.window->Slots().SlotOfDevice(1);
    ASSERT_TRUE(slot.has_value()) << viaDisconnect;
    editor::CtrlWindow* other = app.window->Editor(*slot);
    ASSERT_NE(other, nullptr) << viaDisconnect;
    const int levels = app.Frames(1, code::kChannelLevel);
    other->Model().Commit({ParamKind::Level, 2, 0}, "-2");
    app.Settle();
    EXPECT_EQ(app.Frames(1, code::kChannelLevel), levels + 1) << viaDisconnect;
  }
}

// The user leaves while a name refresh walks the devices: command 143 is the last frame; the
// pass does not go on to the next device after it.
TEST(FaultHandlingTest, shouldPutNothingOnTheLineAfterTheLeaveCommand) {
  AppHarness app("sim:0,1,2");
  app.Start(Choice(SearchMode::AllIds));
  const int reads = app.Frames(1, code::kMemoryRead);
  app.Session().RefreshNames();
  app.window->close();  // "Are you sure ?" answered Yes: 143 goes after what is queued
  app.Settle();
  ASSERT_EQ(app.quits->size(), 1);
  EXPECT_EQ(app.Frames(0, code::kLeaveProgram), 1);
  EXPECT_EQ(app.Frames(1, code::kMemoryRead), reads);
}

}  // namespace
}  // namespace talvex::testing
