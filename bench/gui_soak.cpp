// The GUI soak: the whole desktop program, driven through its own widgets by a seeded random
// user, with three devices on a faulty simulated line (frames dropped, replies corrupted and
// late, one device vanishing and coming back). The line runs on a virtual clock, so the
// protocol's waits cost no wall time while the interface runs in real time.
//
// A user action is a value typed into an entry box (valid, out of range or garbage), a slider
// or up-down moved with its keys, a list, check box, option or button of the channel page, a
// channel tab, a toolbar command with its dialog driven at random (boxes typed into, lists
// picked, buttons pressed, Escape), an editor closed or disconnected, a device connected, a
// preset file saved or loaded, or a pause while the line works. Every question is answered Yes
// or No at random, and, as a real message box does, runs the event loop while it is up.
//
// Checks: no crash (and, in the sanitizer build, no sanitizer report); no stall of the interface
// thread over 100 ms (a 5 ms heartbeat timer measures it); every final failure of the link
// reported to the user exactly once, and no job error; at the end each connected device's live
// image equal to its editor's image, bytes 0..303. Figures go to stdout as the core soak prints
// them; the exit status is 1 when a check fails.
//
//   talvex_gui_soak [ACTIONS] [SEED] [STALL_LIMIT_MS]   (defaults: 5000 actions, seed 1, 100 ms)
//
// Graph drags are not in the mix yet: the response graph takes no drags on this branch.
#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QLineEdit>
#include <QListWidget>
#include <QMdiSubWindow>
#include <QMouseEvent>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>
#include <QTabBar>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QToolButton>
#include <QWheelEvent>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "app/main_window.h"
#include "editor/toolbar_commands.h"
#include "editor/widgets/channel_page.h"
#include "editor/widgets/response_graph.h"
#include "link/line.h"

namespace {

using namespace talvex;
using namespace std::chrono_literals;
using editor::Answer;
using editor::DialogIcon;
using editor::WindowCommand;

constexpr int kVanishingDevice = 2;
// The longest the interface thread may stay away from its event loop. The sanitizer build runs
// every instruction several times slower (and at -O0): it is given its own limit on the command
// line, which a real stall (a wait on the line: 100 ms a poll, 5 s a reply) still breaks.
constexpr double kStallLimitMs = 100;

double Ms(std::chrono::steady_clock::duration d) {
  return std::chrono::duration<double, std::milli>(d).count();
}

// Answers at random and runs the event loop while each box is up, as a modal box does: results
// of the link worker arrive meanwhile, as they do while a user reads a message.
class SoakDialogs final : public editor::UserDialogs {
 public:
  SoakDialogs(std::uint32_t seed, std::filesystem::path folder)
      : random_(seed), folder_(std::move(folder)) {}

  Answer AskYesNo(const std::string&, const std::string&, DialogIcon, Answer) override {
    ++questions;
    Linger();
    return Chance(0.75) ? Answer::Yes : Answer::No;
  }
  void ShowMessage(const std::string& title, const std::string& text, DialogIcon) override {
    ++shown[title + ": " + text];
    Linger();
  }
  std::optional<std::string> ChooseOpenFile(const std::string&, const std::string&) override {
    return PickFile();
  }
  std::optional<std::string> ChooseSaveFile(const std::string&, const std::string&) override {
    return PickFile();
  }

  int Count(const std::string& titleAndText) const {
    const auto at = shown.find(titleAndText);
    return at == shown.end() ? 0 : at->second;
  }
  int CountTitled(const std::string& title) const {
    int count = 0;
    for (const auto& [text, times] : shown)
      if (text.rfind(title + ": ", 0) == 0) count += times;
    return count;
  }

  std::map<std::string, int> shown;
  int questions = 0;
  int depth = 0;  // boxes up at once (a box's event loop can bring another)
  int deepest = 0;

 private:
  bool Chance(double p) { return std::bernoulli_distribution(p)(random_); }
  void Linger() {
    deepest = std::max(deepest, ++depth);
    const BoxUp up(*this);
    QEventLoop loop;
    QTimer::singleShot(std::uniform_int_distribution<int>(0, 30)(random_), &loop,
                       &QEventLoop::quit);
    loop.exec();
    --depth;
  }
  // Three files in the preset folder, and sometimes none chosen (Cancel).
  std::optional<std::string> PickFile() {
    Linger();
    const int pick = std::uniform_int_distribution<int>(0, 3)(random_);
    if (pick == 3) return std::nullopt;
    return (folder_ / ("soak" + std::to_string(pick) + ".tvx")).string();
  }

  std::mt19937 random_;
  std::filesystem::path folder_;
};

// Times every event the interface thread delivers at the outermost level, so that a stall can
// be put down to what caused it.
class TimedApplication final : public QApplication {
 public:
  using QApplication::QApplication;
  bool notify(QObject* receiver, QEvent* event) override {
    if (depth_++ > 0) {
      const bool handled = QApplication::notify(receiver, event);
      --depth_;
      return handled;
    }
    // Taken before: the event may delete its receiver (and itself).
    const char* receiverClass = receiver ? receiver->metaObject()->className() : "?";
    const int type = static_cast<int>(event->type());
    const auto start = std::chrono::steady_clock::now();
    const bool handled = QApplication::notify(receiver, event);
    --depth_;
    const double ms = Ms(std::chrono::steady_clock::now() - start);
    if (ms > longestMs) {
      longestMs = ms;
      longest = std::string(receiverClass) + " event " + std::to_string(type);
    }
    return handled;
  }
  double longestMs = 0;
  std::string longest;

 private:
  int depth_ = 0;
};

struct Figures {
  std::map<std::string, long> actions;
  long linkFailuresBefore = 0;  // before the first editor: unreported by design
  link::LinkStats stats;
  double longestStallMs = 0;
  std::string longestStallAfter;  // the action that ran last before it
  double longestActionMs = 0;
  std::string longestActionKind;
  int devicesCompared = 0;
  int bytesDiffering = 0;
  int vanishes = 0;
};

class Driver {
 public:
  Driver(app::MainWindow& window, SoakDialogs& dialogs, std::uint32_t seed)
      : window_(window), dialogs_(dialogs), random_(seed) {}

  void Act(Figures& figures) {
    const std::string kind = Choose();
    detail.clear();
    lastAction = kind;
    const auto start = std::chrono::steady_clock::now();
    Do(kind);
    const double ms = Ms(std::chrono::steady_clock::now() - start);
    ++figures.actions[kind];
    if (!detail.empty()) lastAction += " " + detail;
    if (kind != "pause" && ms > figures.longestActionMs) {  // a pause runs the event loop
      figures.longestActionMs = ms;
      figures.longestActionKind = detail.empty() ? kind : kind + " " + detail;
    }
  }

  // Until the device that vanished has failed in front of the user, it stays gone; then it
  // comes back, as a device switched on again does.
  bool VanishArmed() const { return vanishArmed_; }
  int vanishes = 0;
  std::string detail;      // what the last action did, beyond its kind
  std::string lastAction;  // its kind and detail

  std::vector<editor::CtrlWindow*> Editors() const {
    std::vector<editor::CtrlWindow*> open;
    for (int slot = 0; slot < app::kWindowSlotCount; ++slot)
      if (editor::CtrlWindow* editor = window_.Editor(slot)) open.push_back(editor);
    return open;
  }

 private:
  std::string Choose() {
    if (OpenDialog() && Chance(0.85)) return "dialog";
    static const std::vector<std::pair<const char*, int>> kMix = {
        {"type", 30},    {"slider", 12}, {"choice", 10}, {"tab", 5},
        {"toolbar", 14}, {"drag", 8},    {"close", 3},   {"disconnect", 2},
        {"connect", 10}, {"vanish", 2},  {"pause", 8},
    };
    int total = 0;
    for (const auto& [name, weight] : kMix)
      total += weight;
    int pick = Uniform(0, total - 1);
    for (const auto& [name, weight] : kMix) {
      if (pick < weight) return name;
      pick -= weight;
    }
    return "pause";
  }

  void Do(const std::string& kind) {
    if (kind == "dialog") return DriveDialog(*OpenDialog());
    if (kind == "connect") return Connect();
    if (kind == "vanish") return Vanish();
    if (kind == "pause") return Pause(Uniform(1, 30));
    editor::CtrlWindow* editor = AnEditor();
    if (!editor) return Connect();
    if (kind == "type") return TypeInto(*editor);
    if (kind == "slider") return MoveSlider(*editor);
    if (kind == "drag") return DragOnGraph(*editor);
    if (kind == "choice") return Choice(*editor);
    if (kind == "tab") return editor->Tabs().setCurrentIndex(Uniform(0, params::kChannelCount - 1));
    if (kind == "toolbar") return Toolbar(*editor);
    if (kind == "close") {
      if (auto* sub = qobject_cast<QMdiSubWindow*>(editor->parentWidget())) sub->close();
      return;
    }
    if (kind == "disconnect")
      return editor->Command2(static_cast<int>(WindowCommand::Disconnect)).trigger();
  }

  // Mostly a device without an editor; now and then one whose editor is open ("The window is
  // already open").
  void Connect() {
    std::vector<int> ids;
    for (int id : window_.CurrentSession().ListedIds())
      if (!window_.Slots().SlotOfDevice(id) || Chance(0.1)) ids.push_back(id);
    if (ids.empty()) return;
    const int id = Pick(ids);
    // A block read of a device that has vanished ends the program ("Time out"), as it must:
    // the soak does not connect it while it is gone.
    if (id == kVanishingDevice && vanishArmed_) return;
    window_.ConnectDevice(id);
  }

  // The vanishing device, while its editor is open, answers a few more frames and then no more;
  // once its failure has closed the editor it answers again.
  void Vanish() {
    app::Session& session = window_.CurrentSession();
    const auto slot = window_.Slots().SlotOfDevice(kVanishingDevice);
    const bool editorOpen = slot && window_.Editor(*slot);
    if (!vanishArmed_ && editorOpen && !ReadsSlots(*window_.Editor(*slot))) {
      vanishArmed_ = true;
      ++vanishes;
      const int frames = Uniform(0, 12);
      session.Worker().Enqueue(link::kAnyDevice, [sim = session.Simulator(), frames](link::Link&) {
        sim->Faults(kVanishingDevice).vanishAfterFrames = frames;
      });
    } else if (vanishArmed_ && !editorOpen) {
      vanishArmed_ = false;
      session.Worker().Enqueue(link::kAnyDevice, [sim = session.Simulator()](link::Link&) {
        sim->Faults(kVanishingDevice).vanishAfterFrames = -1;
      });
    }
  }

  // A slot read is a block read: the soak keeps it off the device that is about to vanish.
  static bool ReadsSlots(editor::CtrlWindow& editor) {
    return editor.findChild<QDialog*>("FrmRead") != nullptr;
  }

  void TypeInto(editor::CtrlWindow& editor) {
    auto boxes = Usable<QLineEdit>(&editor.Page());
    if (boxes.empty()) return;
    QLineEdit* box = Pick(boxes);
    box->setFocus();
    QTest::keyClick(box, Qt::Key_End);
    QTest::keyClick(box, Qt::Key_Home, Qt::ShiftModifier);
    QTest::keyClicks(box, QString::fromStdString(AValue()));
    if (Chance(0.9)) QTest::keyClick(box, Qt::Key_Return);
    if (Chance(0.2)) QTest::keyClick(box, Qt::Key_Tab);  // leaving puts back the device's value
  }

  void MoveSlider(editor::CtrlWindow& editor) {
    static const Qt::Key kKeys[] = {Qt::Key_Left, Qt::Key_Right,  Qt::Key_Up,
                                    Qt::Key_Down, Qt::Key_PageUp, Qt::Key_PageDown};
    std::vector<QWidget*> controls;
    for (QSlider* slider : Usable<QSlider>(&editor.Page()))
      controls.push_back(slider);
    for (QWidget* widget : Usable<QWidget>(&editor.Page()))
      if (widget->inherits("talvex::editor::UpDown")) controls.push_back(widget);
    if (controls.empty()) return;
    QWidget* control = Pick(controls);
    control->setFocus();
    for (int press = Uniform(1, 4); press > 0; --press)
      QTest::keyClick(control, kKeys[Uniform(0, 5)]);
  }

  // A handle of the selected channel dragged across the plot with the mouse (Shift or Ctrl held
  // now and then), or the wheel turned over it to step its Q.
  void DragOnGraph(editor::CtrlWindow& editor) {
    editor::ResponseGraph& graph = editor.Graph();
    if (graph.Handles().empty()) return;
    const int handle = Uniform(0, static_cast<int>(graph.Handles().size()) - 1);
    detail = graph.Handles()[static_cast<std::size_t>(handle)].text.toStdString();
    const QPointF from = graph.HandleCentre(handle);
    if (Chance(0.2)) {
      QWheelEvent wheel(from, graph.mapToGlobal(from), {}, {0, Chance(0.5) ? 120 : -120},
                        Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
      QApplication::sendEvent(&graph, &wheel);
      return;
    }
    const QRectF plot = graph.PlotRect();
    const QPointF to(plot.left() + plot.width() * Uniform(0, 100) / 100.0,
                     plot.top() + plot.height() * Uniform(0, 100) / 100.0);
    const Qt::KeyboardModifiers held = Chance(0.15)   ? Qt::ShiftModifier
                                       : Chance(0.15) ? Qt::ControlModifier
                                                      : Qt::NoModifier;
    const auto mouse = [&](QEvent::Type type, QPointF at) {
      const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
      const Qt::MouseButtons buttons =
          type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::MouseButtons(Qt::LeftButton);
      QMouseEvent event(type, at, graph.mapToGlobal(at), button, buttons, held);
      QApplication::sendEvent(&graph, &event);
    };
    // The editor can close under the drag (its device lost while the events run): the drag
    // ends with it.
    const QPointer<editor::ResponseGraph> alive(&graph);
    mouse(QEvent::MouseButtonPress, from);
    const int moves = Uniform(2, 12);
    for (int i = 1; i <= moves && alive; ++i) {
      mouse(QEvent::MouseMove, from + (to - from) * i / moves);
      Pause(Uniform(1, 8));
    }
    if (alive) mouse(QEvent::MouseButtonRelease, to);
  }

  void Choice(editor::CtrlWindow& editor) {
    std::vector<QWidget*> controls;
    for (QComboBox* list : Usable<QComboBox>(&editor.Page()))
      controls.push_back(list);
    for (QAbstractButton* button : Usable<QAbstractButton>(&editor))
      if (!qobject_cast<QToolButton*>(button)) controls.push_back(button);  // not the toolbar
    if (controls.empty()) return;
    QWidget* control = Pick(controls);
    if (auto* list = qobject_cast<QComboBox*>(control)) {
      list->setCurrentIndex(Uniform(0, list->count() - 1));
    } else {
      qobject_cast<QAbstractButton*>(control)->click();
    }
  }

  void Toolbar(editor::CtrlWindow& editor) {
    static const WindowCommand kCommands[] = {
        WindowCommand::LoadPresetFromPc, WindowCommand::SavePresetToPc, WindowCommand::StorePreset,
        WindowCommand::ReadPreset,       WindowCommand::SystemSetup,    WindowCommand::EditNames,
        WindowCommand::InputCopy,        WindowCommand::OutputCopy,     WindowCommand::LockUnit,
        WindowCommand::Password,         WindowCommand::EditDeviceName,
    };
    const WindowCommand command = kCommands[Uniform(0, std::size(kCommands) - 1)];
    detail = std::string(editor::ToolbarCommandOf(command).caption);
    if (command == WindowCommand::ReadPreset && vanishArmed_ &&
        editor.DeviceId() == kVanishingDevice)
      return;
    QAction& action = editor.Command2(static_cast<int>(command));
    if (action.isEnabled()) action.trigger();
  }

  QDialog* OpenDialog() const {
    for (editor::CtrlWindow* editor : Editors())
      for (QDialog* dialog : editor->findChildren<QDialog*>())
        if (dialog->isVisible()) return dialog;
    return nullptr;
  }

  // Boxes typed into, lists and options picked, buttons pressed, Escape.
  void DriveDialog(QDialog& dialog) {
    const int what = Uniform(0, 9);
    if (what == 0) return QTest::keyClick(&dialog, Qt::Key_Escape);
    if (what <= 3) {
      auto boxes = Usable<QLineEdit>(&dialog);
      if (boxes.empty()) return;
      QLineEdit* box = Pick(boxes);
      box->setFocus();
      box->selectAll();
      QTest::keyClicks(box, QString::fromStdString(AName()));
      if (Chance(0.3)) QTest::keyClick(box, Qt::Key_Return);
      return;
    }
    if (what == 4) {
      for (QListWidget* list : Usable<QListWidget>(&dialog))
        list->setCurrentRow(Uniform(0, list->count() - 1));
      for (QComboBox* list : Usable<QComboBox>(&dialog))
        list->setCurrentIndex(Uniform(0, list->count() - 1));
      return;
    }
    auto buttons = Usable<QAbstractButton>(&dialog);
    if (!buttons.empty()) Pick(buttons)->click();
  }

  // A value for an entry box: mostly numbers over (and beyond) the boxes' ranges, written with
  // either decimal mark, sometimes with a sign or a stray letter.
  std::string AValue() {
    const int form = Uniform(0, 9);
    if (form == 0) return std::string(1, "xq?a "[Uniform(0, 4)]);
    if (form == 1) return "";
    const double magnitude =
        std::pow(10.0, std::uniform_real_distribution<double>(-1, 4.5)(random_));
    const double value = Chance(0.3) ? -magnitude : magnitude;
    char text[32];
    std::snprintf(text, sizeof text, "%.*f", Uniform(0, 3), value);
    std::string typed = text;
    if (Chance(0.3))
      for (char& c : typed)
        if (c == '.') c = ',';
    return typed;
  }

  // A name or password: letters, digits, blanks, sometimes a character names do not take.
  std::string AName() {
    static constexpr char kCharacters[] =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789 <>()-_+=#";
    std::string name(static_cast<std::size_t>(Uniform(0, 18)), ' ');
    for (char& c : name)
      c = kCharacters[Uniform(0, static_cast<int>(sizeof kCharacters) - 2)];
    return name;
  }

  void Pause(int ms) {
    QEventLoop loop;
    QTimer::singleShot(ms, &loop, &QEventLoop::quit);
    loop.exec();
  }

  editor::CtrlWindow* AnEditor() {
    const auto open = Editors();
    return open.empty() ? nullptr : Pick(open);
  }

  template <typename Widget>
  static std::vector<Widget*> Usable(QWidget* under) {
    std::vector<Widget*> usable;
    for (Widget* widget : under->findChildren<Widget*>())
      if (widget->isVisible() && widget->isEnabled()) usable.push_back(widget);
    return usable;
  }

  template <typename T>
  T Pick(const std::vector<T>& from) {
    return from[static_cast<std::size_t>(Uniform(0, static_cast<int>(from.size()) - 1))];
  }
  int Uniform(int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(random_); }
  int Uniform(int lo, std::size_t hi) { return Uniform(lo, static_cast<int>(hi)); }
  bool Chance(double p) { return std::bernoulli_distribution(p)(random_); }

  app::MainWindow& window_;
  SoakDialogs& dialogs_;
  std::mt19937 random_;
  bool vanishArmed_ = false;
};

// Runs `work` on the link worker and waits for it: only before and after the measured run.
template <typename Work>
void OnWorker(app::Session& session, Work work) {
  session.Worker().Enqueue(link::kAnyDevice, work);
  session.Worker().WaitIdle();
}

void Settle(app::Session& session) {
  for (int round = 0; round < 100000; ++round) {
    QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    if (session.Outstanding() == 0 && session.Worker().Waiting() == 0) break;
  }
  QCoreApplication::processEvents();
}

void SetFaults(app::Session& session, std::uint32_t seed) {
  OnWorker(session, [sim = session.Simulator(), seed](link::Link&) {
    for (int id : sim->DeviceIds()) {
      sim::FaultPlan& faults = sim->Faults(id);
      faults.dropRequestRate = 0.03;
      faults.dropReplyRate = 0.03;
      faults.corruptRate = 0.01;
      // A block carries no checksum: a corrupt byte that still decodes is taken as it comes
      // (the core soak reads such images twice), so blocks come whole here and the image check
      // stays exact.
      faults.corruptBlocks = false;
      faults.maxRandomDelay = 60ms;  // within a poll's 100 ms
      faults.lateReplyRate = 0.01;   // past the 5 s limit: sent again, the late reply taken
      faults.lateReplyDelay = 5500ms;
      faults.seed = seed * 31 + static_cast<std::uint32_t>(id);
    }
  });
}

}  // namespace

int main(int argc, char** argv) {
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  TimedApplication application(argc, argv);
  const long actions = argc > 1 ? std::stol(argv[1]) : 5000;
  const auto seed = static_cast<std::uint32_t>(argc > 2 ? std::stoul(argv[2]) : 1);
  const double stallLimitMs = argc > 3 ? std::stod(argv[3]) : kStallLimitMs;
  const auto wallStart = std::chrono::steady_clock::now();

  QTemporaryDir folder;
  const std::filesystem::path root = folder.path().toStdString();
  SoakDialogs dialogs(seed, root);
  auto session = std::make_unique<app::Session>(link::MakeLine(link::ParsePortSpec("sim:0,1,2")),
                                                dialogs, root);
  session->SetPresetFolder(root);
  app::MainWindow window(std::move(session), dialogs);
  app::Session& line = window.CurrentSession();
  window.show();
  bool started = false;
  QObject::connect(&window, &app::MainWindow::startupFinished, [&] { started = true; });
  bool ended = false;
  QObject::connect(&window, &app::MainWindow::quitRequested, [&] { ended = true; });
  window.Start(app::StartupChoice{});
  while (!started)
    QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
  Settle(line);
  if (line.ListedIds().size() != 3) {
    std::fprintf(stderr, "the search found %zu devices, not 3\n", line.ListedIds().size());
    return 1;
  }

  Figures figures;
  // The first editor opens before the faults: from then on every final failure is reported.
  window.ConnectDevice(0);
  Settle(line);
  OnWorker(line, [&](link::Link& link) { figures.linkFailuresBefore = link.Stats().failures; });
  SetFaults(line, seed);

  Driver driver(window, dialogs, seed + 1);
  // The heartbeat: the longest gap between its ticks, less its interval, is the longest time
  // the interface thread did not come back to its event loop.
  QElapsedTimer beat;
  QTimer heartbeat;
  heartbeat.setTimerType(Qt::PreciseTimer);
  heartbeat.setInterval(5);
  QObject::connect(&heartbeat, &QTimer::timeout, [&] {
    const double stall = beat.isValid() ? beat.nsecsElapsed() / 1e6 - 5 : 0;
    if (stall > figures.longestStallMs) {
      figures.longestStallMs = stall;
      figures.longestStallAfter = driver.lastAction;
    }
    beat.restart();
  });
  heartbeat.start();
  application.longestMs = 0;

  QTimer user;
  long done = 0;
  QEventLoop run;
  QObject::connect(&user, &QTimer::timeout, [&] {
    if (ended || done >= actions) return run.quit();
    ++done;
    driver.Act(figures);
  });
  user.start(1);
  run.exec();
  user.stop();
  heartbeat.stop();

  // Whatever is still open is cancelled, everything queued goes out, then the devices are read.
  for (QDialog* dialog : window.findChildren<QDialog*>())
    if (dialog->isVisible()) QTest::keyClick(dialog, Qt::Key_Escape);
  Settle(line);
  std::vector<std::pair<int, std::array<std::uint8_t, params::kPresetSize>>> live;
  OnWorker(line, [&](link::Link& link) {
    figures.stats = link.Stats();
    for (editor::CtrlWindow* editor : driver.Editors()) {
      std::array<std::uint8_t, params::kPresetSize> image{};
      const auto& device = line.Simulator()->Device(editor->DeviceId()).LiveImage();
      std::copy_n(device.begin(), image.size(), image.begin());
      live.emplace_back(editor->DeviceId(), image);
    }
  });
  for (const auto& [id, image] : live) {
    ++figures.devicesCompared;
    const params::ParamImage& program = line.Device(id).params.image;
    for (std::size_t i = 0; i < image.size(); ++i) {
      if (image[i] == program[i]) continue;
      ++figures.bytesDiffering;
      std::printf("ID %d byte %zu: device %d, program %d\n", id, i, image[i], program[i]);
    }
  }

  // What reached the devices, by kind of conversation.
  std::map<std::string, int> reached;
  OnWorker(line, [&](link::Link&) {
    static const std::pair<const char*, std::uint8_t> kCodes[] = {
        {"store data", protocol::code::kStoreData},
        {"block reads", protocol::code::kReadBlock},
        {"type changes", protocol::code::kSetSystemType},
        {"channel bits", protocol::code::kChannelBits},
        {"names", protocol::code::kChannelName},
        {"releases", protocol::code::kRelease},
        {"meter polls", protocol::code::kMeterPoll}};
    for (const auto& [name, code] : kCodes)
      for (int id : line.Simulator()->DeviceIds())
        reached[name] += line.Simulator()->Device(id).FramesHandled(code);
  });
  const long finalFailures = figures.stats.failures - figures.linkFailuresBefore;
  const int linkReports = dialogs.Count(std::string(link::kCommunicationProblemTitle) + ": " +
                                        std::string(link::kCommunicationProblemText));
  const int reported = linkReports + dialogs.Count(": " + std::string(link::kTimeOutText));
  // A device that does not answer a connect's polls is told "Device disconnected"; any other box
  // titled "Communication problem" is a job that threw, or a connect's time-out shown beside the
  // link's own report.
  const int unanswered = dialogs.Count(std::string(link::kCommunicationProblemTitle) + ": " +
                                       app::kDeviceDisconnectedText);
  const int otherProblems =
      dialogs.CountTitled(std::string(link::kCommunicationProblemTitle)) - linkReports - unanswered;

  std::printf("actions               %ld", done);
  for (const auto& [kind, count] : figures.actions)
    std::printf(" %s %ld", kind.c_str(), count);
  std::printf("\n");
  std::printf("questions, messages   %d, %zu kinds, boxes up at once %d\n", dialogs.questions,
              dialogs.shown.size(), dialogs.deepest);
  std::printf("frames handled        ");
  for (const auto& [name, count] : reached)
    std::printf("%s %d  ", name.c_str(), count);
  std::printf("\n");
  std::printf("transmissions         %ld\n", figures.stats.transmissions);
  std::printf("retransmissions       %ld\n", figures.stats.retransmissions);
  std::printf("final failures        %ld (reported %d, other problem boxes %d)\n", finalFailures,
              reported, otherProblems);
  std::printf("device vanished       %d times; connects unanswered %d\n", driver.vanishes,
              unanswered);
  std::printf("longest stall         %.1f ms (limit %.0f ms), after %s\n", figures.longestStallMs,
              stallLimitMs, figures.longestStallAfter.c_str());
  std::printf("longest event         %.1f ms (%s)\n", application.longestMs,
              application.longest.c_str());
  std::printf("longest action        %.1f ms (%s)\n", figures.longestActionMs,
              figures.longestActionKind.c_str());
  std::printf("devices compared      %d, bytes 0..303 differing %d\n", figures.devicesCompared,
              figures.bytesDiffering);
  std::printf("wall time             %.1f s\n",
              std::chrono::duration<double>(std::chrono::steady_clock::now() - wallStart).count());
  if (std::getenv("TALVEX_SOAK_MESSAGES"))
    for (const auto& [text, count] : dialogs.shown)
      std::printf("  %4d  %s\n", count, text.c_str());

  const bool ok = !ended && figures.bytesDiffering == 0 && reported == finalFailures &&
                  otherProblems == 0 && figures.longestStallMs <= stallLimitMs;
  std::printf("gui soak: %s\n", ok ? "passed" : "FAILED");
  return ok ? 0 : 1;
}
