// A keyboard monkey: random key sequences, pastes and Enter presses into every entry box of the
// editor and of the toolbar's dialogs. A refused input sends nothing; a valid commit sends one
// command (the temperature one per delay, which it moves); no box the user has left shows a
// value the device does not hold.
#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QFocusEvent>
#include <QLineEdit>
#include <QTest>
#include <random>

#include "editor/widgets/bound_controls.h"
#include "editor/widgets/channel_page.h"
#include "toolbar_harness.h"

namespace talvex::testing {
namespace {

using app::SearchMode;

class Monkey {
 public:
  explicit Monkey(std::uint32_t seed) : random_(seed) {}

  // Up to a dozen keys a hurried user might hit in a number box, a paste among them now and then.
  void Type(QLineEdit* box) {
    static const char kCharacters[] = "0123456789.,-+0123456789 eEaZ?/*";
    box->setFocus();
    for (int key = Uniform(0, 12); key > 0; --key) {
      switch (Uniform(0, 9)) {
        case 0:
          QTest::keyClick(box, Qt::Key_Backspace);
          break;
        case 1:
          QTest::keyClick(box, Uniform(0, 1) ? Qt::Key_Left : Qt::Key_Home);
          break;
        case 2:
          QApplication::clipboard()->setText(Uniform(0, 1) ? "12,5" : "7x");
          QTest::keyClick(box, Qt::Key_V, Qt::ControlModifier);
          break;
        default:
          QTest::keyClicks(box, QString(QChar(kCharacters[Uniform(0, sizeof kCharacters - 2)])));
      }
    }
  }

  int Uniform(int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(random_); }

 private:
  std::mt19937 random_;
};

// Every frame but the meters' (their timer runs meanwhile).
int SentFrames(const AppHarness& app, int id) {
  int frames = 0;
  for (const auto& [code, count] : CountFrames(app, id).byCode)
    if (code != protocol::code::kMeterPoll) frames += count;
  return frames;
}

std::size_t Messages(const AppHarness& app) {
  return static_cast<std::size_t>(
      std::count_if(app.dialogs.shown.begin(), app.dialogs.shown.end(),
                    [](const Shown& shown) { return shown.kind == "message"; }));
}

std::vector<QLineEdit*> Boxes(QWidget& under) {
  std::vector<QLineEdit*> boxes;
  for (QLineEdit* box : under.findChildren<QLineEdit*>())
    if (box->isVisible() && box->isEnabled()) boxes.push_back(box);
  return boxes;
}

// What the device holds, shown as the box shows it: its live image with the values the image
// does not carry (temperature, mutes) taken from the editor.
std::string HeldText(AppHarness& app, const editor::CtrlWindow& editor,
                     const params::ParamRef& ref) {
  params::DeviceParams held = app.Session().Device(editor.DeviceId()).params;
  const auto& live = app.simulator->Device(editor.DeviceId()).LiveImage();
  std::copy_n(live.begin(), params::kPresetSize, held.image.begin());
  held.ValuesFromImage();
  return params::ShowParam(held, ref).text;
}

TEST(KeyboardMonkeyTest, shouldSendOneCommandPerValidCommitAndNothingForARefusedOne) {
  AppHarness app("sim:0");
  app.window->show();
  app.Start(Choice(SearchMode::AllIds));
  editor::CtrlWindow& editor = OpenEditor(app, 0);
  Monkey monkey(17);
  int commits = 0;
  int refusals = 0;
  for (int round = 0; round < 400; ++round) {
    editor.SelectChannel(monkey.Uniform(0, params::kChannelCount - 1));
    const auto boxes = Boxes(editor.Page());
    ASSERT_FALSE(boxes.empty());
    QLineEdit* box =
        boxes[static_cast<std::size_t>(monkey.Uniform(0, static_cast<int>(boxes.size()) - 1))];
    const auto& ref = dynamic_cast<editor::ValueEntry*>(box)->Ref();
    const std::string name = box->accessibleName().toStdString();
    const int before = SentFrames(app, 0);
    monkey.Type(box);
    const std::size_t messages = Messages(app);
    QTest::keyClick(box, Qt::Key_Return);
    app.Settle();
    const int sent = SentFrames(app, 0) - before;
    if (Messages(app) > messages) {
      ++refusals;
      EXPECT_EQ(sent, 0) << name << " refused \"" << box->text().toStdString() << "\"";
    } else {
      ++commits;
      const int expected = ref.kind == params::ParamKind::Temperature ? params::kChannelCount : 1;
      EXPECT_EQ(sent, expected) << name << " took \"" << box->text().toStdString() << "\"";
    }
    // The user tabs away (offscreen windows are never active, so the focus-out is sent as Tab
    // would send it): leaving the box puts back what the device holds.
    QFocusEvent leave(QEvent::FocusOut, Qt::TabFocusReason);
    QApplication::sendEvent(box, &leave);
    for (QLineEdit* shown : Boxes(editor.Page())) {
      const auto& shownRef = dynamic_cast<editor::ValueEntry*>(shown)->Ref();
      ASSERT_EQ(shown->text().toStdString(), HeldText(app, editor, shownRef))
          << shown->accessibleName().toStdString() << " after " << name;
    }
  }
  EXPECT_GT(commits, 100);
  EXPECT_GT(refusals, 50);
}

// The dialogs' boxes: Enter in any of them runs its dialog's checks; a refusal (a message)
// sends nothing, whatever was typed.
TEST(KeyboardMonkeyTest, shouldSendNothingWhenADialogRefusesWhatWasTyped) {
  AppHarness app("sim:0");
  app.window->show();
  app.Start(Choice(SearchMode::AllIds));
  editor::CtrlWindow& editor = OpenEditor(app, 0);
  Monkey monkey(23);
  const WindowCommand commands[] = {WindowCommand::StorePreset, WindowCommand::EditNames,
                                    WindowCommand::Password, WindowCommand::LockUnit,
                                    WindowCommand::EditDeviceName};
  int refusals = 0;
  for (int round = 0; round < 150; ++round) {
    app.dialogs.WillAnswer({editor::Answer::Yes});
    const WindowCommand command = commands[monkey.Uniform(0, std::size(commands) - 1)];
    QDialog* dialog = nullptr;
    for (QDialog* open : editor.findChildren<QDialog*>())
      if (open->isVisible()) dialog = open;
    if (!dialog) {
      if (!editor.Command2(static_cast<int>(command)).isEnabled()) continue;
      Trigger(app, editor, command);
      continue;
    }
    const auto boxes = Boxes(*dialog);
    if (boxes.empty()) {
      QTest::keyClick(dialog, Qt::Key_Escape);
      continue;
    }
    QLineEdit* box =
        boxes[static_cast<std::size_t>(monkey.Uniform(0, static_cast<int>(boxes.size()) - 1))];
    const int before = SentFrames(app, 0);
    const std::size_t messages = Messages(app);
    box->selectAll();
    monkey.Type(box);
    QTest::keyClick(box, Qt::Key_Return);
    app.Settle();
    if (Messages(app) > messages) {
      ++refusals;
      EXPECT_EQ(SentFrames(app, 0), before)
          << dialog->objectName().toStdString() << " " << box->accessibleName().toStdString();
    }
  }
  EXPECT_GT(refusals, 10);
}

}  // namespace
}  // namespace talvex::testing
