// The channel editor window on a simulated line: typed values, sliders, check boxes and up-downs
// driven through the real widgets, and the frames that reach the device.
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QComboBox>
#include <QEventLoop>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>
#include <QTabBar>
#include <QTest>
#include <QTimer>
#include <algorithm>
#include <future>
#include <set>

#include "app_harness.h"
#include "editor/ctrl_window.h"
#include "editor/widgets/channel_page.h"

namespace talvex::testing {
namespace {

using app::SearchMode;
namespace code = protocol::code;

// The codes an edit can send; the meters (18) are read on their timer meanwhile.
constexpr std::uint8_t kEditCodes[] = {1, 2, 3, 4, 5, 7, 8, 9, 13, 14, 17, 29, 34, 35};

class EditorWindowTest : public ::testing::Test {
 protected:
  explicit EditorWindowTest(const std::string& port = "sim:0,1",
                            const app::StartupChoice& choice = Choice(SearchMode::AllIds))
      : app_(port) {
    app_.window->show();  // offscreen; the meters and the mouse want a window that is shown
    app_.Start(choice);
  }

  editor::CtrlWindow& Open(int id) {
    app_.window->ConnectDevice(id);
    app_.Settle();
    editor::CtrlWindow* window = app_.window->Editor(*app_.window->Slots().SlotOfDevice(id));
    if (!window) throw std::runtime_error("no editor opened");
    return *window;
  }

  template <typename Widget = QWidget>
  Widget* Find(editor::CtrlWindow& window, const std::string& name) {
    for (Widget* widget : window.findChildren<Widget*>())
      if (widget->accessibleName().toStdString() == name) return widget;
    throw std::runtime_error("no control named " + name);
  }

  // Selects everything in the box with the keys a user has (Home, Shift+End), types, Enter.
  void Type(QWidget* box, const std::string& text) {
    box->setFocus();
    QTest::keyClick(box, Qt::Key_Home);
    QTest::keyClick(box, Qt::Key_End, Qt::ShiftModifier);
    QTest::keyClicks(box, QString::fromStdString(text));
    QTest::keyClick(box, Qt::Key_Return);
    app_.Settle();
  }

  // On the box itself, where a user clicks (a check box takes clicks on its box and its text).
  void Click(QWidget* box) {
    QTest::mouseClick(box, Qt::LeftButton, {}, QPoint(6, box->height() / 2));
    app_.Settle();
  }

  int EditFrames(int id) const {
    int frames = 0;
    for (std::uint8_t editCode : kEditCodes)
      frames += app_.Frames(id, editCode);
    return frames;
  }

  std::string LastFrame(int id, std::uint8_t commandCode) const {
    const auto frame = app_.simulator->Device(id).LastFrame(commandCode);
    return frame ? protocol::FormatHex(*frame) : "none";
  }

  AppHarness app_;
};

TEST_F(EditorWindowTest, shouldSendNothingWhenItOpens) {
  editor::CtrlWindow& window = Open(0);
  QTest::qWait(2 * editor::kMeterIntervalMs);
  app_.Settle();
  EXPECT_EQ(EditFrames(0), 0);
  EXPECT_GT(app_.Frames(0, code::kMeterPoll), 0);  // the meters run meanwhile
  EXPECT_EQ(Find<QLineEdit>(window, "In A EQ 1 Frequency")->text().toStdString(), "1000");
}

struct BoxCase {
  int channel;
  const char* box;
  const char* typed;
  const char* shown;
  std::uint8_t code;
  const char* frame;
};

TEST_F(EditorWindowTest, shouldSendExactlyTheFrameOfEachKindOfBox) {
  const BoxCase cases[] = {
      {0, "In A Level [dB]", "3", "3", 1, "F0 81 00 01 00 00 00 00 00 00 00 B4 F7"},
      {2, "Out 1 Level [dB]", "-3,5", "-3.5", 1, "F0 81 00 01 02 00 00 00 00 00 00 55 F7"},
      {3, "Out 2 Delay", "10", "10.005", 2, "F0 81 00 02 03 00 00 00 00 00 0A 05 F7"},
      {2, "Out 1 EQ 2 Frequency", "1015", "1000", 5, "F0 81 00 05 02 01 00 00 00 88 09 1E F7"},
      {1, "In B EQ 1 Q", "1,5", "1.50", 5, "F0 81 00 05 01 00 00 00 00 88 21 1E F7"},
      {4, "Out 3 EQ 3 Gain", "0.26", "0.5", 5, "F0 81 00 05 04 02 00 00 00 88 09 1F F7"},
      {2, "Out 1 X-over high-pass frequency", "80", "80", 4,
       "F0 81 00 04 02 00 00 00 00 00 30 00 F7"},
      {7, "Out 6 X-over low-pass frequency", "30000", "20000", 4,
       "F0 81 00 04 07 01 00 00 00 00 F0 00 F7"},
      {2, "Out 1 Limiter threshold [dBu]", "0.3", "0.2", 7,
       "F0 81 00 07 02 00 00 00 00 13 00 33 F7"},
      {2, "Out 1 Limiter attack [ms]", "0.5", "0.5", 7, "F0 81 00 07 02 00 00 00 00 00 00 33 F7"},
      {2, "Out 1 Limiter release [ms]", "136", "140", 7, "F0 81 00 07 02 00 00 00 00 00 04 33 F7"},
  };
  editor::CtrlWindow& window = Open(0);
  for (const BoxCase& c : cases) {
    window.Tabs().setCurrentIndex(c.channel);
    const int before = EditFrames(0);
    auto* box = Find<QLineEdit>(window, c.box);
    Type(box, c.typed);
    EXPECT_EQ(EditFrames(0), before + 1) << c.box;
    EXPECT_EQ(LastFrame(0, c.code), c.frame) << c.box;
    EXPECT_EQ(box->text().toStdString(), c.shown) << c.box;
  }
  EXPECT_TRUE(app_.dialogs.shown.empty());
}

// A refused key shows the box's message and types "?"; Enter then shows it again; nothing is sent.
TEST_F(EditorWindowTest, shouldRefuseAKeyWithTheBoxMessageAndAQuestionMark) {
  editor::CtrlWindow& window = Open(0);
  window.Tabs().setCurrentIndex(2);
  auto* box = Find<QLineEdit>(window, "Out 1 EQ 2 Frequency");
  box->setFocus();
  QTest::keyClick(box, Qt::Key_End);
  QTest::keyClick(box, Qt::Key_A);
  EXPECT_EQ(box->text().toStdString(), "1000?");
  QTest::keyClick(box, Qt::Key_Return);
  app_.Settle();
  ASSERT_EQ(app_.dialogs.shown.size(), 2u);
  for (const Shown& shown : app_.dialogs.shown) {
    EXPECT_EQ(shown.title, "Warning");
    EXPECT_EQ(shown.text, "  Incorrect frequency value");
  }
  EXPECT_EQ(EditFrames(0), 0);
}

TEST_F(EditorWindowTest, shouldCoalesceTheSliderPositionsThatWaitAndSendTheLast) {
  editor::CtrlWindow& window = Open(0);
  window.Tabs().setCurrentIndex(2);
  auto* slider = Find<QSlider>(window, "Out 1 EQ 1 Gain slider");
  // The line is busy with something else while the user moves the slider five positions.
  std::promise<void> release;
  std::shared_future<void> gate = release.get_future().share();
  app_.Session().Submit(
      0, {}, [gate](link::Link&) { return (gate.wait(), 0); }, [](int) {});
  slider->setFocus();
  for (int step = 0; step < 5; ++step)
    QTest::keyClick(slider, Qt::Key_Right);
  release.set_value();
  app_.Settle();
  EXPECT_EQ(app_.Frames(0, code::kEqBand), 1);
  EXPECT_EQ(LastFrame(0, code::kEqBand), "F0 81 00 05 02 00 00 00 00 88 09 23 F7");  // +2.5 dB
  EXPECT_EQ(Find<QLineEdit>(window, "Out 1 EQ 1 Gain")->text().toStdString(), "2.5");
}

TEST_F(EditorWindowTest, shouldSendOnceForEachOutputOfALinkedPair) {
  editor::CtrlWindow& window = Open(1);
  window.Tabs().setCurrentIndex(4);
  Click(Find<QCheckBox>(window, "Link outputs"));
  app_.Settle();
  EXPECT_EQ(LastFrame(1, code::kSwitch), "F0 81 01 22 01 00 00 00 00 00 00 00 F7");
  Type(Find<QLineEdit>(window, "Out 3 Level [dB]"), "-6");
  EXPECT_EQ(app_.Frames(1, code::kChannelLevel), 2);
  EXPECT_EQ(LastFrame(1, code::kChannelLevel), "F0 81 01 01 05 00 00 00 00 00 00 3C F7");
  Click(Find<QCheckBox>(window, "Out 3 Mute"));
  app_.Settle();
  EXPECT_EQ(app_.Frames(1, code::kMute), 2);
  EXPECT_EQ(app_.simulator->Device(1).State().mute[5], 1);
}

TEST_F(EditorWindowTest, shouldStepTheDelayAndTheBandFrequencyFromTheKeyboard) {
  editor::CtrlWindow& window = Open(0);
  window.Tabs().setCurrentIndex(5);
  QWidget* coarse = Find(window, "Out 4 Delay steps");
  coarse->setFocus();
  QTest::keyClick(coarse, Qt::Key_Up);
  QTest::keyClick(coarse, Qt::Key_Up);
  QWidget* fine = Find(window, "Out 4 Delay fine steps");
  QTest::keyClick(fine, Qt::Key_Down);
  app_.Settle();
  EXPECT_EQ(LastFrame(0, code::kDelay), "F0 81 00 02 05 00 00 00 00 00 01 2F F7");  // 95 samples
  QWidget* steps = Find(window, "Out 4 EQ 7 Frequency steps");
  QTest::keyClick(steps, Qt::Key_PageUp);
  app_.Settle();
  EXPECT_EQ(Find<QLineEdit>(window, "Out 4 EQ 7 Frequency")->text().toStdString(), "1330");
}

// The editor's own lock keeps every control from editing; the device's lock too.
TEST_F(EditorWindowTest, shouldDisableEveryControlWhileLocked) {
  editor::CtrlWindow& window = Open(0);
  Click(&window.Page().EditorLockBox());
  for (editor::BoundControl* control : window.Page().Controls())
    EXPECT_FALSE(dynamic_cast<QWidget*>(control)->isEnabled())
        << editor::AccessibleName(control->Id());
  Click(&window.Page().EditorLockBox());
  EXPECT_TRUE(Find(window, "In A Level [dB]")->isEnabled());
}

// Every control carries its channel and caption, and Tab walks the page in the order the signal
// meets the controls: level before delay, delay before the equaliser, the equaliser before the
// crossover and the limiter.
TEST_F(EditorWindowTest, shouldNameEveryControlAndTabAlongTheSignal) {
  editor::CtrlWindow& window = Open(0);
  window.Tabs().setCurrentIndex(2);
  std::set<std::string> names;
  for (editor::BoundControl* control : window.Page().Controls()) {
    const std::string name = dynamic_cast<QWidget*>(control)->accessibleName().toStdString();
    EXPECT_FALSE(name.empty());
    EXPECT_TRUE(names.insert(name).second) << name << " twice";
  }
  std::vector<std::string> walked;
  QWidget* first = Find(window, "Out 1 + InA");
  QWidget* at = first;
  do {
    if (!at->isHidden() && (at->focusPolicy() & Qt::TabFocus))
      walked.push_back(at->accessibleName().toStdString());
    at = at->nextInFocusChain();
  } while (at != first);
  const auto position = [&](const std::string& name) {
    return std::find(walked.begin(), walked.end(), name) - walked.begin();
  };
  EXPECT_LT(position("Out 1 Level [dB]"), position("Out 1 Delay"));
  EXPECT_LT(position("Out 1 Delay"), position("Out 1 EQ 1 Type"));
  EXPECT_LT(position("Out 1 EQ 7 Gain slider"), position("Out 1 X-over high-pass frequency"));
  EXPECT_LT(position("Out 1 X-over low-pass slope"), position("Out 1 Limiter threshold [dBu]"));
}

// A refused key's box is up when the device's failure comes in: the failure is told, the editor
// closes under the box, and nothing touches the closed editor once the box is gone.
TEST_F(EditorWindowTest, shouldLetItsEditorCloseUnderAWarning) {
  editor::CtrlWindow& window = Open(1);
  auto* box = Find<QLineEdit>(window, "In A Level [dB]");
  app_.simulator->Faults(1).vanishAfterFrames = 0;
  window.Model().Commit({params::ParamKind::Level, 0, 0}, "2");
  app_.Session().Worker().WaitIdle();  // the failure waits to be told
  app_.dialogs.whileNextMessageIsUp = [] {
    QEventLoop modal;  // as a modal box does
    QTimer::singleShot(50, &modal, &QEventLoop::quit);
    modal.exec();
  };
  box->setFocus();
  QTest::keyClick(box, Qt::Key_A);
  app_.Settle();
  ASSERT_EQ(app_.dialogs.shown.size(), 2u);
  EXPECT_EQ(app_.dialogs.shown[0].text, "  Incorrect value");
  EXPECT_EQ(app_.dialogs.shown[1].title, "Communication problem");
  EXPECT_FALSE(app_.window->Slots().SlotOfDevice(1));
}

TEST_F(EditorWindowTest, shouldReportAVanishedDeviceOnceAndCloseItsEditor) {
  editor::CtrlWindow& window = Open(1);
  app_.simulator->Faults(1).vanishAfterFrames = 0;
  // Two edits go out before the first has failed: the failure is reported once.
  auto* box = Find<QLineEdit>(window, "In A Level [dB]");
  box->setFocus();
  for (const char* typed : {"2", "3"}) {
    QTest::keyClick(box, Qt::Key_End);
    QTest::keyClick(box, Qt::Key_Home, Qt::ShiftModifier);
    QTest::keyClicks(box, typed);
    QTest::keyClick(box, Qt::Key_Return);
  }
  app_.Settle();
  ASSERT_EQ(app_.dialogs.shown.size(), 1u);
  EXPECT_EQ(app_.dialogs.shown[0].title, "Communication problem");
  EXPECT_FALSE(app_.window->Slots().SlotOfDevice(1));
  EXPECT_TRUE(app_.Session().RowText(1).starts_with(app::kLinkFailedRowName));
}

}  // namespace
}  // namespace talvex::testing

namespace talvex::testing {
namespace {

// A session of edits of every kind, by keyboard and by mouse, leaves the device holding what
// the editor shows: its live image, byte for byte, and the settings beside it.
TEST_F(EditorWindowTest, shouldLeaveTheDeviceHoldingWhatTheEditorShows) {
  editor::CtrlWindow& window = Open(1);
  const auto pick = [&](const std::string& name, int steps) {
    auto* list = Find<QComboBox>(window, name);
    list->setFocus();
    for (int i = 0; i < steps; ++i)
      QTest::keyClick(list, Qt::Key_Down);
    app_.Settle();
  };
  const auto slide = [&](const std::string& name, Qt::Key key, int steps) {
    auto* slider = Find<QSlider>(window, name);
    slider->setFocus();
    for (int i = 0; i < steps; ++i)
      QTest::keyClick(slider, key);
    app_.Settle();
  };
  pick("Input type", 1);
  Type(Find<QLineEdit>(window, "In A Level [dB]"), "4,3");
  slide("In A Level [dB] slider", Qt::Key_Down, 7);
  Click(Find<QCheckBox>(window, "In A Phase"));
  Type(Find<QLineEdit>(window, "In A EQ 3 Gain"), "-7");
  pick("In A EQ 2 Type", 2);
  Type(Find<QLineEdit>(window, "Temperature ['C]"), "31");
  window.Tabs().setCurrentIndex(3);
  Click(Find<QRadioButton>(window, "Out 2 + InA"));
  Type(Find<QLineEdit>(window, "Out 2 Delay"), "3.3");
  QTest::keyClick(Find(window, "Out 2 Delay fine steps"), Qt::Key_Up);
  Type(Find<QLineEdit>(window, "Out 2 EQ 5 Frequency"), "6000");
  Type(Find<QLineEdit>(window, "Out 2 EQ 5 Q"), "2.2");
  slide("Out 2 EQ 5 Gain slider", Qt::Key_Left, 9);
  Type(Find<QLineEdit>(window, "Out 2 X-over high-pass frequency"), "95");
  pick("Out 2 X-over high-pass slope", 6);
  Type(Find<QLineEdit>(window, "Out 2 Limiter threshold [dBu]"), "7.4");
  slide("Out 2 Limiter attack [ms] slider", Qt::Key_Right, 3);
  Type(Find<QLineEdit>(window, "Out 2 Limiter release [ms]"), "333");
  pick("Out 2 Limit", 4);
  Click(Find<QCheckBox>(window, "Out 2 Mute"));
  Click(Find<QCheckBox>(window, "Delay in metres"));
  Click(Find<QCheckBox>(window, "Link outputs"));
  window.Tabs().setCurrentIndex(6);
  Type(Find<QLineEdit>(window, "Out 5 EQ 1 Gain"), "9");
  Type(Find<QLineEdit>(window, "Out 5 Level [dB]"), "-4");
  Click(Find<QCheckBox>(window, "Out 5 Bypass Eq"));
  QTest::mouseClick(Find<QPushButton>(window, "Out 5 Flat Eq"), Qt::LeftButton);
  app_.Settle();

  const params::DeviceParams& shown = window.Model().Device();
  const sim::SimDevice& device = app_.simulator->Device(1);
  for (std::size_t i = 0; i < params::kPresetSize; ++i)
    EXPECT_EQ(device.LiveImage()[i], shown.image[i]) << "byte " << i;
  EXPECT_EQ(device.State().inputSource, 1);
  EXPECT_EQ(device.State().mute[3], 1);
  EXPECT_EQ(device.DeviceMemory()[protocol::memory::kOption], 1);  // delays in metres
  EXPECT_EQ(shown.values.Switch(), 1);
  EXPECT_EQ(Find<QLineEdit>(window, "Out 5 EQ 1 Gain")->text().toStdString(), "0");
  EXPECT_TRUE(app_.dialogs.shown.empty());
}

class PacedEditorWindowTest : public EditorWindowTest {
 protected:
  PacedEditorWindowTest() : EditorWindowTest("sim:0@9600", Choice(SearchMode::SingleDevice, 0)) {}
};

// A slider dragged faster than a 9600-baud line can carry its positions: the positions that
// wait are dropped for newer ones, and the device ends holding the last.
TEST_F(PacedEditorWindowTest, shouldEndWithTheDeviceHoldingTheSlidersLastPosition) {
  editor::CtrlWindow& window = Open(0);
  auto* slider = Find<QSlider>(window, "In A EQ 1 Gain slider");
  slider->setFocus();
  for (int i = 0; i < 24; ++i) {
    QTest::keyClick(slider, Qt::Key_Right);
    QTest::qWait(5);
  }
  app_.Settle();
  EXPECT_LT(app_.Frames(0, code::kEqBand), 24);
  EXPECT_EQ(app_.simulator->Device(0).LiveImage()[params::EqBandStart[0] + 2], 54);  // +12 dB
  EXPECT_EQ(Find<QLineEdit>(window, "In A EQ 1 Gain")->text().toStdString(), "12");
}

}  // namespace
}  // namespace talvex::testing
