// The channel editor window, timed on whole runs of the real program (the main window, its
// session and link worker, simulated devices), offscreen:
//  - open: from the call that creates an editor window (a CtrlWindow on a device's stores, put
//    in the main window's area as the main window does) until its response graph has painted
//    once; and the same through the device list's connect (the device's reads included);
//  - step: a key on a band's gain slider until the graph has painted the recomputed curves;
//  - sweep: a 3-second mouse drag of that slider over a line paced at 9600 baud, one position
//    every 16 ms, then the release: the frames sent, and the time from the release until the
//    device holds the final value;
//  - drag: a band's handle dragged on the graph with the mouse, one 0.5 dB position a move, the
//    acoustic sum of two outputs and the cursor shown, from each move until the graph has
//    painted;
//  - memory: the resident size of the program idle, and with 11 editors open;
//  - abswitch: the Edit menu's A/B switch over a line paced at 9600 baud, from the menu entry
//    until the editor has taken the end of the switch's job, for one band changed and for a
//    whole other preset.
// Every device holds a preset on which every band, crossover filter and delay works, so each
// curve is computed for real. Prints medians (and the worst where a frame is at stake).
//   editor_bench [REPETITIONS] [open|step|sweep|drag|memory|abswitch]
#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QMdiSubWindow>
#include <QMouseEvent>
#include <QStyle>
#include <QStyleOptionSlider>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <algorithm>
#include <array>
#include <atomic>
#include <cstdio>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <string>
#include <unordered_map>
#include <vector>

#include "app/editor_link.h"
#include "app/main_window.h"
#include "editor/editor_menus.h"
#include "editor/widgets/channel_page.h"
#include "editor/widgets/graph_panel.h"
#include "editor/widgets/response_graph.h"
#include "editor/widgets/status_line.h"
#include "params/param_edit.h"
#include "whole_run.h"

namespace {

using namespace talvex;
using bench::Clock;
using bench::Median;
using bench::Ms;
using bench::Worst;
using params::ParamKind;

constexpr int kOut3 = params::kInputCount + 2;
constexpr int kSweepBandInChannel = 2;  // "EQ 3"
constexpr auto kSweepLength = std::chrono::seconds(3);
constexpr int kDragIntervalMs = 16;  // a drag's mouse moves: one a frame at 60 Hz

// The screen of a desktop the program is used on; the offscreen default (800 x 600) would make
// the main window and its editors smaller than users see them.
void UseDesktopScreen(const QTemporaryDir& folder) {
  if (!qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) return;
  const std::string path = folder.filePath("screen.json").toStdString();
  std::ofstream(path) << R"({"screens": [{"name": "bench", "x": 0, "y": 0, "width": 1920,)"
                      << R"( "height": 1080, "logicalDpi": 96, "logicalBaseDpi": 96, "dpr": 1}]})";
  qputenv("QT_QPA_PLATFORM", ("offscreen:configfile=" + path).c_str());
}

void Check(bool ok, const char* what) {
  if (!ok) throw std::runtime_error(what);
}

// Runs the event loop, sleeping between events, until `done`; at most `limitMs`.
void WaitFor(const std::function<bool()>& done, int limitMs = 20000) {
  QTimer wake;
  wake.start(1);
  const auto end = Clock::now() + std::chrono::milliseconds(limitMs);
  while (!done()) {
    Check(Clock::now() < end, "a wait of the benchmark timed out");
    QApplication::processEvents(QEventLoop::WaitForMoreEvents);
  }
}

void RunEventLoopFor(int milliseconds) {
  QEventLoop loop;
  QTimer::singleShot(milliseconds, Qt::PreciseTimer, &loop, &QEventLoop::quit);
  loop.exec();
}

// Every band of every channel set (a low shelf, bells of varied width, a high shelf; -10 ..
// +10 dB, never 0 dB), a 4th-order high-pass and low-pass on every output, a delay on every
// channel and every other polarity inverted: the response maths' dearest case, as a user would
// set it, through the one edit path.
params::DeviceParams BusyDevice() {
  params::DeviceParams device = params::DeviceParams::FromDefault(1);  // "2x3 WAY XOVER"
  const auto text = [&](ParamKind kind, int channel, const std::string& value, int band = 0) {
    Check(params::EditText(device, {kind, channel, band}, value).Ok(), "a preset value refused");
  };
  const auto choose = [&](ParamKind kind, int channel, int choice, int band = 0) {
    params::EditChoice(device, {kind, channel, band}, choice);
  };
  for (int channel = 0; channel < params::kChannelCount; ++channel) {
    const int count = params::BandsOf(channel);
    for (int k = 0; k < count; ++k) {
      const int band = params::GlobalBand(channel, k);
      const int step = 10 + (7 * band) % 41;  // 0.5 dB steps from -15 dB
      const double gain = (step == 30 ? 34 : step) / 2.0 - 15.0;
      text(ParamKind::EqFrequency, channel, std::to_string(40 << k), band);
      const int type = k == 0 ? 2 : (k == count - 1 ? 1 : 4);  // LoSHF -12dB, BELL, HiSHF -6dB
      choose(ParamKind::EqType, channel, type, band);
      if (type == 4)
        text(ParamKind::EqQ, channel, std::string(params::QTextTablePoint[4 + 9 * k]), band);
      text(ParamKind::EqGain, channel, std::to_string(gain), band);
    }
    params::EditPosition(device, {ParamKind::Delay, channel, 0}, 37 * channel);
    choose(ParamKind::Polarity, channel, channel % 2);
  }
  for (int output = params::kInputCount; output < params::kChannelCount; ++output) {
    const int type = output % 2 == 0 ? 8 : 6;  // "-24dB/oct Bs", "-24dB/oct Bw"
    text(ParamKind::HighPassFrequency, output, "80");
    choose(ParamKind::HighPassType, output, type);
    text(ParamKind::LowPassFrequency, output, "2500");
    choose(ParamKind::LowPassType, output, type);
  }
  return device;
}

// The simulated device takes the type, then the preset, as a device that was set up earlier.
void LoadBusyPreset(sim::SimLine& line, int id) {
  static const params::DeviceParams busy = BusyDevice();
  protocol::Command setType;
  setType.code = protocol::code::kSetSystemType;
  setType.p(1) = 1;
  line.Device(id).Handle(protocol::BuildFrame(id, setType));
  auto& live = line.Device(id).LiveImage();
  std::copy_n(busy.image.begin(), live.size(), live.begin());
}

// The preset must give every channel's curve a shape: a flat one would cost the maths nothing.
void CheckCurvesHaveShape(editor::CtrlWindow& editor) {
  for (int channel = 0; channel < params::kChannelCount; ++channel) {
    const auto& points = editor.Model().Tables().ChannelMagnitude(channel).Points();
    const auto [low, high] = std::minmax_element(points.begin(), points.end());
    Check(*high - *low > 6.0f, "a curve of the preset is flat");
  }
}

// Counts the paints of every response graph (installed on the application, so that a graph is
// seen from its first paint, even one made inside the event loop).
class GraphPaints final : public QObject {
 public:
  GraphPaints() { qApp->installEventFilter(this); }
  ~GraphPaints() override { qApp->removeEventFilter(this); }
  int Of(const QWidget& graph) const {
    const auto found = counts_.find(&graph);
    return found == counts_.end() ? 0 : found->second;
  }
  // A new graph may sit where a deleted one was.
  void Forget(const QWidget& graph) { counts_.erase(&graph); }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() == QEvent::Paint && dynamic_cast<editor::ResponseGraph*>(watched))
      ++counts_[watched];
    return false;
  }

 private:
  std::unordered_map<const QObject*, int> counts_;
};

// The whole program on a simulated line whose devices hold the busy preset, started and
// showing its device list with the names read.
class Program {
 public:
  Program(const std::string& port, app::SearchMode mode) {
    link::Line line = link::MakeLine(link::ParsePortSpec(port));
    simulator_ = line.simulator;
    for (int id : simulator_->DeviceIds())
      LoadBusyPreset(*simulator_, id);
    window_ = std::make_unique<app::MainWindow>(
        std::make_unique<app::Session>(std::move(line), dialogs_, folder_.path().toStdString()),
        dialogs_);
    window_->show();
    bool started = false;
    QObject::connect(window_.get(), &app::MainWindow::startupFinished,
                     [&started](app::StartupOutcome) { started = true; });
    app::StartupChoice choice;
    choice.port = port;
    choice.mode = mode;
    for (int i = 0; i < config::kIdListCount; ++i)
      choice.ids[static_cast<std::size_t>(i)] = static_cast<std::int16_t>(i);
    window_->Start(choice);
    WaitFor([&] { return started && Session().Outstanding() == 0; }, 60000);
    Check(window_->DeviceList() != nullptr, "the program did not find its devices");
  }

  app::MainWindow& Window() { return *window_; }
  app::Session& Session() { return window_->CurrentSession(); }
  sim::SimLine& Simulator() { return *simulator_; }
  bench::SilentDialogs& Dialogs() { return dialogs_; }

  editor::CtrlWindow* EditorOf(int deviceId) const {
    for (int slot = 0; slot < app::kWindowSlotCount; ++slot)
      if (editor::CtrlWindow* editor = window_->Editor(slot);
          editor && editor->DeviceId() == deviceId)
        return editor;
    return nullptr;
  }

  // The device list's connect, as a user's double click: the device's reads, then its editor,
  // until its graph has painted. Milliseconds from the request.
  double Connect(int deviceId, const GraphPaints& paints) {
    const auto start = Clock::now();
    window_->ConnectDevice(deviceId);
    WaitFor([&] {
      const editor::CtrlWindow* editor = EditorOf(deviceId);
      return editor && paints.Of(editor->Graph()) > 0;
    });
    return Ms(Clock::now() - start);
  }

  // As the main window closes an editor itself: no question, the slot is given back.
  void Close(int deviceId, GraphPaints& paints) {
    editor::CtrlWindow* editor = EditorOf(deviceId);
    paints.Forget(editor->Graph());
    auto* sub = qobject_cast<QMdiSubWindow*>(editor->parentWidget());
    editor->CloseWithoutAsking();
    sub->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    WaitFor([&] { return EditorOf(deviceId) == nullptr; });
  }

  // Lets the line fall silent: every job done and its result taken.
  void Settle() {
    WaitFor([&] { return Session().Outstanding() == 0; }, 60000);
    RunEventLoopFor(50);
  }

 private:
  QTemporaryDir folder_;
  bench::SilentDialogs dialogs_;
  std::shared_ptr<sim::SimLine> simulator_;
  std::unique_ptr<app::MainWindow> window_;
};

// ---- open -------------------------------------------------------------------------------------

// Where MainWindow places an editor: at its size hint within the area, right of the device list,
// each slot a title bar further, held inside the area.
void Place(const app::MainWindow& window, QMdiSubWindow& sub, int slot) {
  const QRect room = window.Area()->viewport()->rect();
  const QSize size = sub.sizeHint().expandedTo({320, 280}).boundedTo(room.size());
  const int step = sub.style()->pixelMetric(QStyle::PM_TitleBarHeight) + 4;
  const QPoint at = QPoint(window.DeviceList()->parentWidget()->geometry().right() + 12, 8) +
                    QPoint(step, step) * slot;
  sub.resize(size);
  sub.move(std::clamp(at.x(), 0, std::max(0, room.width() - size.width())),
           std::clamp(at.y(), 0, std::max(0, room.height() - size.height())));
}

struct Opened {
  double ms = 0;
  QSize window;      // the editor window as placed
  QSize graphShown;  // how much of its graph the area shows
};

// As MainWindow::OpenEditor: the window on the session's stores of the device and its link,
// in the area, at its size hint within the area; until its graph has painted once.
Opened OpenToFirstPaint(Program& program, GraphPaints& paints, int deviceId, int slot) {
  app::Session& session = program.Session();
  QMdiArea& area = *program.Window().Area();
  const auto start = Clock::now();
  auto* editor = new editor::CtrlWindow(
      deviceId, slot, session.Device(deviceId).params, session.Mark(),
      std::make_unique<app::SessionEditorLink>(session, deviceId), program.Dialogs(), {});
  paints.Forget(editor->Graph());
  QMdiSubWindow* sub = area.addSubWindow(editor);
  sub->setAttribute(Qt::WA_DeleteOnClose);
  sub->show();
  Place(program.Window(), *sub, slot);
  WaitFor([&] { return paints.Of(editor->Graph()) > 0; });
  const Opened opened{Ms(Clock::now() - start), sub->size(),
                      editor->Graph().visibleRegion().boundingRect().size()};
  paints.Forget(editor->Graph());
  editor->CloseWithoutAsking();
  sub->close();
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  return opened;
}

void BenchOpen(int repetitions) {
  GraphPaints paints;
  Program program("sim:0", app::SearchMode::SingleDevice);
  const double firstConnect = program.Connect(0, paints);
  CheckCurvesHaveShape(*program.EditorOf(0));
  program.Settle();
  program.Close(0, paints);
  std::vector<double> connects;
  for (int i = 0; i < repetitions; ++i) {
    connects.push_back(program.Connect(0, paints));
    program.Settle();
    program.Close(0, paints);
  }
  std::vector<double> opens;
  Opened opened;
  for (int i = 0; i < 2 * repetitions; ++i) {
    opened = OpenToFirstPaint(program, paints, 0, 0);
    opens.push_back(opened.ms);
    RunEventLoopFor(20);
  }
  Check(program.Dialogs().messages == 0, "a message was shown");
  std::printf(
      "editor open to first painted graph:        median %.1f ms, worst %.1f ms (goal 30 ms)\n",
      Median(opens), Worst(opens));
  std::printf(
      "  connect (reads on the virtual clock) to painted graph: median %.1f ms;"
      " first of the program %.1f ms\n",
      Median(connects), firstConnect);
  std::printf("  (main window %dx%d, editor window %dx%d, graph %dx%d shown)\n",
              program.Window().width(), program.Window().height(), opened.window.width(),
              opened.window.height(), opened.graphShown.width(), opened.graphShown.height());
}

// ---- step and sweep ---------------------------------------------------------------------------

editor::RuleSlider& GainSlider(editor::CtrlWindow& editor, int channel, int bandInChannel) {
  const int band = params::GlobalBand(channel, bandInChannel);
  for (editor::BoundControl* control : editor.Page().Controls()) {
    auto* slider = dynamic_cast<editor::RuleSlider*>(control);
    if (slider && slider->Ref() == params::ParamRef{ParamKind::EqGain, channel, band})
      return *slider;
  }
  throw std::runtime_error("no gain slider");
}

// Band-gain slider steps by key, as a user holding Up or Down: each from the key's press until
// the graph has painted, the key repeated every 33 ms; turns at the slider's ends.
void BenchStep(Program& program, GraphPaints& paints, int steps) {
  editor::CtrlWindow& editor = *program.EditorOf(0);
  editor::RuleSlider& slider = GainSlider(editor, kOut3, kSweepBandInChannel);
  const QWidget& graph = editor.Graph();
  Qt::Key key = Qt::Key_Up;
  std::vector<double> times;
  int unchanged = 0;
  while (static_cast<int>(times.size()) < steps) {
    const int before = slider.value();
    const int painted = paints.Of(graph);
    const auto start = Clock::now();
    QTest::keyClick(&slider, key);
    if (slider.value() == before) {  // an end of the slider: turn
      key = key == Qt::Key_Up ? Qt::Key_Down : Qt::Key_Up;
      Check(++unchanged < 3, "the slider does not move");
      continue;
    }
    unchanged = 0;
    WaitFor([&] { return paints.Of(graph) > painted; }, 2000);
    times.push_back(Ms(Clock::now() - start));
    RunEventLoopFor(33);
  }
  std::printf(
      "band-gain slider step to repainted graph:  median %.2f ms, worst %.2f ms"
      " (goal 8 ms median, 16 ms worst; %d steps)\n",
      Median(times), Worst(times), steps);
}

// What the device holds, read on the link worker between two exchanges (the simulator belongs to
// the worker's thread), and when.
struct DeviceReading {
  Clock::time_point at;
  bool holdsFinal = false;
  int bandFrames = 0;
  int meterFrames = 0;
  int allFrames = 0;
};

DeviceReading ReadOnWorker(Program& program, int band, const params::ParamImage& expected) {
  struct Shared {
    std::atomic<bool> done = false;
    DeviceReading reading;
  };
  auto shared = std::make_shared<Shared>();  // the job may outlive a wait that gave up
  const auto first =
      static_cast<std::ptrdiff_t>(params::EqBandStart[static_cast<std::size_t>(band)]);
  std::array<std::uint8_t, 3> wanted{};
  std::copy_n(expected.begin() + first, wanted.size(), wanted.begin());
  program.Session().Worker().Enqueue(
      link::kAnyDevice, [shared, wanted, first, line = &program.Simulator()](link::Link&) {
        const sim::SimDevice& device = line->Device(0);
        DeviceReading& reading = shared->reading;
        reading.at = Clock::now();
        reading.holdsFinal =
            std::equal(wanted.begin(), wanted.end(), device.LiveImage().begin() + first);
        reading.bandFrames = device.FramesHandled(protocol::code::kEqBand);
        reading.meterFrames = device.FramesHandled(protocol::code::kMeterPoll);
        reading.allFrames = device.FramesHandled();
        shared->done.store(true, std::memory_order_release);
      });
  WaitFor([&] { return shared->done.load(std::memory_order_acquire); });
  return shared->reading;
}

// Mirrors QSlider's own style option, to find its handle and groove as the style draws them.
QStyleOptionSlider SliderOption(const QSlider& slider) {
  QStyleOptionSlider option;
  option.initFrom(&slider);
  option.subControls = QStyle::SC_None;
  option.activeSubControls = QStyle::SC_None;
  option.orientation = slider.orientation();
  option.minimum = slider.minimum();
  option.maximum = slider.maximum();
  option.tickPosition = slider.tickPosition();
  option.tickInterval = slider.tickInterval();
  option.upsideDown = slider.orientation() == Qt::Horizontal
                          ? slider.invertedAppearance() != (option.direction == Qt::RightToLeft)
                          : !slider.invertedAppearance();
  option.sliderPosition = slider.sliderPosition();
  option.sliderValue = slider.value();
  option.singleStep = slider.singleStep();
  option.pageStep = slider.pageStep();
  if (slider.orientation() == Qt::Horizontal) option.state |= QStyle::State_Horizontal;
  return option;
}

// A left-button drag of a horizontal slider's handle: pressed at the handle's centre, moved to
// where a position puts it, released.
class HandleDrag {
 public:
  explicit HandleDrag(QSlider& slider) : slider_(slider) {
    const QStyleOptionSlider option = SliderOption(slider);
    const QRect handle = slider.style()->subControlRect(QStyle::CC_Slider, &option,
                                                        QStyle::SC_SliderHandle, &slider);
    const QRect groove = slider.style()->subControlRect(QStyle::CC_Slider, &option,
                                                        QStyle::SC_SliderGroove, &slider);
    upsideDown_ = option.upsideDown;
    left_ = groove.x();
    span_ = groove.right() - handle.width() + 1 - groove.x();
    at_ = handle.center();
    grip_ = at_.x() - handle.left();
    Send(QEvent::MouseButtonPress, Qt::LeftButton);
  }

  void MoveTo(int position) {
    at_.setX(left_ + grip_ +
             QStyle::sliderPositionFromValue(slider_.minimum(), slider_.maximum(), position, span_,
                                             upsideDown_));
    Send(QEvent::MouseMove, Qt::NoButton);
  }

  void Release() { Send(QEvent::MouseButtonRelease, Qt::LeftButton); }

 private:
  void Send(QEvent::Type type, Qt::MouseButton button) {
    const Qt::MouseButtons held =
        type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent event(type, QPointF(at_), QPointF(slider_.mapToGlobal(at_)), button, held,
                      Qt::NoModifier);
    QApplication::sendEvent(&slider_, &event);
  }

  QSlider& slider_;
  bool upsideDown_ = false;
  int left_ = 0;
  int span_ = 0;
  int grip_ = 0;
  QPoint at_;
};

struct SweepFigures {
  int positions = 0;    // positions the slider took (each an edit)
  int missed = 0;       // mouse moves that did not land on the position aimed at
  int bandFrames = 0;   // band commands that went on the line
  int meterFrames = 0;  // meter readings between them
  double releaseToHeld = 0;
  bool held = false;
};

SweepFigures Sweep(Program& program) {
  editor::CtrlWindow& editor = *program.EditorOf(0);
  editor::RuleSlider& slider = GainSlider(editor, kOut3, kSweepBandInChannel);
  const int band = params::GlobalBand(kOut3, kSweepBandInChannel);
  program.Settle();
  const DeviceReading before = ReadOnWorker(program, band, editor.Model().Device().image);

  SweepFigures figures;
  int direction = 1;
  int target = slider.value();
  const QMetaObject::Connection counting =
      QObject::connect(&slider, &QSlider::valueChanged, [&figures] { ++figures.positions; });
  HandleDrag drag(slider);
  QTimer moves;
  moves.setTimerType(Qt::PreciseTimer);
  QObject::connect(&moves, &QTimer::timeout, [&] {
    if (target + direction < slider.minimum() || target + direction > slider.maximum())
      direction = -direction;
    target += direction;
    drag.MoveTo(target);
    if (slider.value() != target) ++figures.missed;
  });
  const auto end = Clock::now() + kSweepLength;
  moves.start(kDragIntervalMs);
  WaitFor([&] { return Clock::now() >= end; });
  moves.stop();
  drag.Release();
  const auto released = Clock::now();
  QObject::disconnect(counting);

  const params::ParamImage final = editor.Model().Device().image;
  DeviceReading after = ReadOnWorker(program, band, final);
  for (int tries = 0; !after.holdsFinal && tries < 100; ++tries) {
    RunEventLoopFor(10);
    after = ReadOnWorker(program, band, final);
  }
  figures.held = after.holdsFinal;
  figures.releaseToHeld = Ms(after.at - released);
  figures.bandFrames = after.bandFrames - before.bandFrames;
  figures.meterFrames = after.meterFrames - before.meterFrames;
  return figures;
}

void BenchStepAndSweep(int repetitions, bool step, bool sweep) {
  GraphPaints paints;
  Program program("sim:0@9600", app::SearchMode::SingleDevice);
  program.Connect(0, paints);
  CheckCurvesHaveShape(*program.EditorOf(0));
  program.EditorOf(0)->SelectChannel(kOut3);
  program.Settle();
  if (step) BenchStep(program, paints, 40 * repetitions);
  if (!sweep) return;
  std::vector<double> releaseToHeld, bandFrames, positions, meterFrames;
  int missed = 0;
  for (int i = 0; i < std::max(3, repetitions / 2); ++i) {
    const SweepFigures figures = Sweep(program);
    Check(figures.held, "the device never held the final value");
    releaseToHeld.push_back(figures.releaseToHeld);
    bandFrames.push_back(figures.bandFrames);
    positions.push_back(figures.positions);
    meterFrames.push_back(figures.meterFrames);
    missed += figures.missed;
    RunEventLoopFor(500);
  }
  std::printf(
      "3-s band-gain sweep at 9600 baud, release to device holding the final value:"
      " median %.1f ms, worst %.1f ms (goal 60 ms)\n",
      Median(releaseToHeld), Worst(releaseToHeld));
  std::printf(
      "  per sweep (medians): %.0f slider positions, %.0f band frames sent,"
      " %.0f meter readings; %d of the drag's moves missed their position\n",
      Median(positions), Median(bandFrames), Median(meterFrames), missed);
}

// ---- drag -------------------------------------------------------------------------------------

// Out 3 "EQ 3" dragged up and down its gain, a snapped position (0.5 dB) each move, as a mouse
// moving a frame at 60 Hz: each move from the event until the graph has painted, with the
// whole sum of Out 1 and Out 3 and the cursor shown.
void BenchDrag(Program& program, GraphPaints& paints, int steps) {
  editor::CtrlWindow& editor = *program.EditorOf(0);
  editor.SelectChannel(kOut3);
  editor.GraphArea().SumBox(0).setChecked(true);
  editor.GraphArea().SumBox(2).setChecked(true);
  editor.SetCursorShown(true);
  program.Settle();
  editor::ResponseGraph& graph = editor.Graph();
  const auto send = [&](QEvent::Type type, QPointF at) {
    const Qt::MouseButtons held =
        type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::MouseButtons(Qt::LeftButton);
    QMouseEvent event(type, at, graph.mapToGlobal(at),
                      type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton, held,
                      Qt::NoModifier);
    QApplication::sendEvent(&graph, &event);
  };
  const plot::HandleMark start = graph.Handles().at(kSweepBandInChannel).mark;
  const auto at = [&](double db) {
    const graph::PlotMapping mapping = graph.Mapping();
    return QPointF(graph.PlotRect().topLeft()) +
           QPointF(mapping.XOf(start.hz), mapping.MagnitudeY(db));
  };
  send(QEvent::MouseButtonPress, at(start.db));
  Check(graph.Curves().ShowsSum(), "no sum shown");
  std::vector<double> times;
  double db = start.db;
  double step = 0.5;
  while (static_cast<int>(times.size()) < steps) {
    if (db + step > 12 || db + step < -12) step = -step;
    db += step;
    const int painted = paints.Of(graph);
    const auto begin = Clock::now();
    send(QEvent::MouseMove, at(db));
    WaitFor([&] { return paints.Of(graph) > painted; }, 2000);
    times.push_back(Ms(Clock::now() - begin));
    RunEventLoopFor(kDragIntervalMs);
  }
  send(QEvent::MouseButtonRelease, at(db));
  Check(program.Dialogs().messages == 0, "a message was shown");
  std::printf(
      "graph drag step to repainted graph, sum shown: median %.2f ms, worst %.2f ms"
      " (goal 8 ms median; %d moves)\n",
      Median(times), Worst(times), steps);
}

void BenchDragOnPacedLine(int repetitions) {
  GraphPaints paints;
  Program program("sim:0@9600", app::SearchMode::SingleDevice);
  program.Connect(0, paints);
  CheckCurvesHaveShape(*program.EditorOf(0));
  BenchDrag(program, paints, 40 * repetitions);
}

// ---- memory -----------------------------------------------------------------------------------

struct Resident {
  double nowMiB = 0;
  double peakMiB = 0;
};

Resident ReadResident() {
  std::ifstream status("/proc/self/status");
  Resident resident;
  std::string line;
  while (std::getline(status, line)) {
    const auto kib = [&line] { return std::stod(line.substr(line.find(':') + 1)) / 1024.0; };
    if (line.rfind("VmRSS:", 0) == 0) resident.nowMiB = kib();
    if (line.rfind("VmHWM:", 0) == 0) resident.peakMiB = kib();
  }
  return resident;
}

void BenchMemory() {
  GraphPaints paints;
  std::string port = "sim:0";
  for (int id = 1; id < app::kWindowSlotCount; ++id)
    port += "," + std::to_string(id);
  Program program(port, app::SearchMode::AllIds);
  program.Settle();
  RunEventLoopFor(500);
  const Resident idle = ReadResident();
  for (int id = 0; id < app::kWindowSlotCount; ++id) {
    program.Connect(id, paints);
    program.Settle();
  }
  for (int id = 0; id < app::kWindowSlotCount; ++id)
    Check(program.EditorOf(id) != nullptr, "not every editor opened");
  CheckCurvesHaveShape(*program.EditorOf(0));
  Check(program.Dialogs().messages == 0, "a message was shown");
  RunEventLoopFor(1000);  // the meters of every editor read, every window painted
  const Resident open = ReadResident();
  std::printf("resident memory, program idle, no editor:  %.1f MiB\n", idle.nowMiB);
  std::printf("resident memory, 11 editors open:          %.1f MiB (goal 150 MB; peak %.1f MiB)\n",
              open.nowMiB, open.peakMiB);
}

// ---- A/B switch --------------------------------------------------------------------------------

struct TimedSwitch {
  double uiMs = 0;     // the menu entry's own work on the interface thread
  double totalMs = 0;  // until the job's end came back
  std::string said;
};

// The switch as a user makes it: the menu entry (the plan, the model and the window brought to
// the other setting), then the editor's loop until the job's end has come back (the status line
// gives the switch's line time).
TimedSwitch Switch(editor::CtrlWindow& editor) {
  QLabel& said = editor.Status().Message();
  said.clear();
  TimedSwitch timed;
  const auto start = Clock::now();
  editor.Menus().Action(editor::EditorAction::SwitchSide).trigger();
  timed.uiMs = Ms(Clock::now() - start);
  WaitFor([&] { return said.text().contains("full push"); }, 30000);
  timed.totalMs = Ms(Clock::now() - start);
  timed.said = said.text().toStdString();
  return timed;
}

void ReportSwitches(const char* what, editor::CtrlWindow& editor, int repetitions) {
  std::vector<double> totals, ui;
  std::string said;
  for (int i = 0; i < repetitions; ++i) {
    const TimedSwitch timed = Switch(editor);
    totals.push_back(timed.totalMs);
    ui.push_back(timed.uiMs);
    said = timed.said;
    RunEventLoopFor(50);
  }
  std::printf("A/B switch, %s, at 9600 baud, menu to end: median %.1f ms, worst %.1f ms\n", what,
              Median(totals), Worst(totals));
  std::printf("  the menu entry's work on the interface thread: median %.2f ms, worst %.2f ms\n",
              Median(ui), Worst(ui));
  std::printf("  the editor said: %s\n", said.c_str());
}

void BenchAbSwitch(int repetitions) {
  GraphPaints paints;
  Program program("sim:0@9600", app::SearchMode::SingleDevice);
  program.Connect(0, paints);
  program.Settle();
  editor::CtrlWindow& editor = *program.EditorOf(0);
  editor::DeviceEditor& model = editor.Model();
  editor::SettingsMemory& memory = editor.Memory();
  memory.CopyAToB();
  memory.SwitchSide();  // B, a copy of A: nothing differs
  program.Settle();
  model.Commit({ParamKind::EqGain, kOut3, params::GlobalBand(kOut3, kSweepBandInChannel)}, "9");
  program.Settle();
  ReportSwitches("one band changed (goal 60 ms)", editor, repetitions);
  if (memory.Side() == 0) memory.SwitchSide();
  program.Settle();
  // B becomes a whole other preset: every band flat, no delay, every level and crossover moved.
  for (int channel = 0; channel < params::kChannelCount; ++channel) {
    model.FlattenEq(channel);
    model.Move({ParamKind::Delay, channel, 0}, 0);
    model.Commit({ParamKind::Level, channel, 0}, "-3");
    if (channel >= params::kInputCount) {
      model.Choose({ParamKind::HighPassType, channel, 0}, 0);
      model.Choose({ParamKind::LowPassType, channel, 0}, 0);
    }
  }
  program.Settle();
  ReportSwitches("a whole other preset", editor, std::max(2, repetitions / 4));
  Check(program.Dialogs().messages == 0, "a message was shown");
}

}  // namespace

int main(int argc, char* argv[]) {
  const QTemporaryDir folder;
  UseDesktopScreen(folder);
  QApplication app(argc, argv);
  const int repetitions = argc > 1 ? std::max(1, std::atoi(argv[1])) : 10;
  const std::string part = argc > 2 ? argv[2] : "";
  const auto wanted = [&part](const char* name) { return part.empty() || part == name; };
  try {
    // First, while the process has opened no editor yet.
    if (wanted("memory")) BenchMemory();
    if (wanted("open")) BenchOpen(repetitions);
    if (wanted("step") || wanted("sweep"))
      BenchStepAndSweep(repetitions, wanted("step"), wanted("sweep"));
    if (wanted("drag")) BenchDragOnPacedLine(repetitions);
    if (wanted("abswitch")) BenchAbSwitch(repetitions);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "editor_bench: %s\n", error.what());
    return 1;
  }
  return 0;
}
