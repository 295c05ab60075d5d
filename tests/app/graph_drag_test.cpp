// The editor's graph dragged with the mouse in the whole program, on a simulated device paced
// at 9600 baud: a band pulled onto a peak and a crossover corner slid to a new frequency, faster
// than the line carries them; the boxes follow every move and the device ends holding exactly
// what was dragged.
#include <gtest/gtest.h>

#include <QApplication>
#include <QLineEdit>
#include <QMouseEvent>
#include <QSlider>
#include <QTest>

#include "app_harness.h"
#include "editor/ctrl_window.h"
#include "editor/widgets/response_graph.h"

namespace talvex::testing {
namespace {

constexpr int kOut3 = 4;

class GraphDragTest : public ::testing::Test {
 protected:
  GraphDragTest() : app_("sim:0@9600") {
    app_.window->show();
    app_.Start(Choice(app::SearchMode::SingleDevice, 0));
    app_.window->ConnectDevice(0);
    app_.Settle();
    window_ = app_.window->Editor(*app_.window->Slots().SlotOfDevice(0));
    if (!window_) throw std::runtime_error("no editor opened");
  }

  editor::ResponseGraph& Graph() { return window_->Graph(); }

  template <typename Widget>
  Widget* Find(const std::string& name) {
    for (Widget* widget : window_->findChildren<Widget*>())
      if (widget->accessibleName().toStdString() == name) return widget;
    throw std::runtime_error("no control named " + name);
  }

  QPointF At(double hz, double db) {
    const graph::PlotMapping mapping = Graph().Mapping();
    return QPointF(Graph().PlotRect().topLeft()) + QPointF(mapping.XOf(hz), mapping.MagnitudeY(db));
  }

  void Mouse(QEvent::Type type, QPointF at) {
    const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
    const Qt::MouseButtons held =
        type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::MouseButtons(Qt::LeftButton);
    QMouseEvent event(type, at, Graph().mapToGlobal(at), button, held, Qt::NoModifier);
    QApplication::sendEvent(&Graph(), &event);
  }

  // Drags from one point to another in `steps` moves, one every 5 ms (faster than the line,
  // which takes 27 ms an exchange), checking after each move that the boxes show the band.
  void Drag(QPointF from, QPointF to, int steps, const std::function<void()>& eachMove) {
    Mouse(QEvent::MouseButtonPress, from);
    for (int i = 1; i <= steps; ++i) {
      Mouse(QEvent::MouseMove, from + (to - from) * i / steps);
      eachMove();
      QTest::qWait(5);
    }
    Mouse(QEvent::MouseButtonRelease, to);
    app_.Settle();
  }

  std::string Text(const std::string& box) { return Find<QLineEdit>(box)->text().toStdString(); }

  void Type(const std::string& box, const std::string& text) {
    QLineEdit* edit = Find<QLineEdit>(box);
    edit->setFocus();
    QTest::keyClick(edit, Qt::Key_Home);
    QTest::keyClick(edit, Qt::Key_End, Qt::ShiftModifier);
    QTest::keyClicks(edit, QString::fromStdString(text));
    QTest::keyClick(edit, Qt::Key_Return);
    app_.Settle();
  }

  int HandleNamed(const std::string& start) {
    const auto& handles = Graph().Handles();
    for (std::size_t i = 0; i < handles.size(); ++i)
      if (handles[i].text.toStdString().starts_with(start)) return static_cast<int>(i);
    throw std::runtime_error("no handle " + start);
  }

  AppHarness app_;
  editor::CtrlWindow* window_ = nullptr;
};

TEST_F(GraphDragTest, shouldEndWithTheDeviceHoldingTheDraggedBandAndCorner) {
  window_->SelectChannel(kOut3);
  window_->Model().Choose({params::ParamKind::LowPassType, kOut3, 0}, 7);  // "-24dB/oct Lz"
  Type("Out 3 X-over low-pass frequency", "1000");
  const int band = params::GlobalBand(kOut3, 1);
  // EQ 1 was pulled away first; EQ 2 is then the first of the flat bands at 1 kHz.
  Drag(At(1000, 0), At(5000, -6), 6, [] {});
  Drag(At(1000, 0), At(150, 9), 24, [&] {
    const params::ShownParam gain = window_->Model().Show({params::ParamKind::EqGain, kOut3, band});
    EXPECT_EQ(Text("Out 3 EQ 2 Gain"), gain.text);
    EXPECT_EQ(Find<QSlider>("Out 3 EQ 2 Gain slider")->value(),
              30 - static_cast<int>(2 * gain.value));
  });
  EXPECT_EQ(Text("Out 3 EQ 2 Frequency"), "151");  // the table's nearest to 150 Hz
  EXPECT_EQ(Text("Out 3 EQ 2 Gain"), "9");
  EXPECT_EQ(Text("Out 3 EQ 1 Frequency"), "5000");
  EXPECT_EQ(Text("Out 3 EQ 1 Gain"), "-6");
  Drag(Graph().HandleCentre(HandleNamed("Out 3 X-over low-pass")), At(3000, 0), 20, [] {});
  EXPECT_EQ(Text("Out 3 X-over low-pass frequency"), "2980");

  const sim::SimDevice& device = app_.simulator->Device(0);
  const params::ParamImage& shown = window_->Model().Device().image;
  for (std::size_t i = 0; i < params::kPresetSize; ++i)
    ASSERT_EQ(device.LiveImage()[i], shown[i]) << "byte " << i;
  EXPECT_LT(app_.Frames(0, protocol::code::kEqBand), 30);  // the line dropped waiting positions
  EXPECT_TRUE(app_.dialogs.shown.empty());
}

// The editor closed while the mouse still holds a handle (its device was disconnected, or the
// user closed it by the keyboard): the drag ends with the window, which sends nothing more.
TEST_F(GraphDragTest, shouldCloseCleanlyUnderADrag) {
  Mouse(QEvent::MouseButtonPress, At(1000, 0));
  Mouse(QEvent::MouseMove, At(2000, 6));
  app_.Settle();
  const int frames = app_.simulator->Device(0).FramesHandled();
  window_->CloseWithoutAsking();
  app_.Settle();
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  EXPECT_FALSE(app_.window->Slots().SlotOfDevice(0));
  EXPECT_EQ(app_.simulator->Device(0).FramesHandled(), frames);
}

}  // namespace
}  // namespace talvex::testing
