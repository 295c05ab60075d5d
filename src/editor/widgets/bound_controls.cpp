#include "editor/widgets/bound_controls.h"

#include <QKeyEvent>
#include <QSignalBlocker>
#include <QToolButton>
#include <QVBoxLayout>

#include "params/value_rules.h"

namespace talvex::editor {

namespace {

QString Text(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

// The key code a box sees: the character typed, or the control code of Ctrl and a letter
// (Ctrl+C is 3, Ctrl+V 22). Keys that type nothing (arrows, Home, End, Delete, Tab) give -1:
// they edit the box as always and never reach the key filter.
int KeyCode(const QKeyEvent& event) {
  switch (event.key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
      return kKeyEnter;
    case Qt::Key_Backspace:
      return kKeyBackspace;
    case Qt::Key_Delete:
      return -1;
    default:
      break;
  }
  if ((event.modifiers() & Qt::ControlModifier) && event.key() >= Qt::Key_A &&
      event.key() <= Qt::Key_Z)
    return event.key() - Qt::Key_A + 1;
  const QString text = event.text();
  if (text.isEmpty()) return -1;
  const QChar typed = text.at(0);
  if (typed.unicode() >= 32 && !typed.isPrint()) return -1;  // types nothing
  return typed.unicode();
}

// Level, gain and threshold sliders hold the device's positions: 0 is the highest value.
bool HighestFirst(const ParamRef& ref) {
  const params::ValueRule* rule = params::RuleOf(ref);
  return rule && rule->kind == params::ValueRule::Kind::Grid;
}

}  // namespace

void BoundControl::Bind(const ParamRef& ref, int choice) {
  ref_ = ref;
  choice_ = choice;
  Widget().setAccessibleName(QString::fromStdString(AccessibleName(Id())));
  Rebound();
  Refresh();
}

// A refused choice (the editor is locked) leaves the control showing what the device holds.
void BoundControl::Choose(int choice) {
  Report(Model().Choose(ref_, choice));
  Refresh();
}

void BoundControl::Refresh() {
  Widget().setEnabled(Model().EditsEnabled() && Model().Applies(ref_));
  Show();
}

void BoundControl::Report(const EditOutcome& outcome) const {
  if (!outcome.message.empty()) Warn(outcome.message);
}

void BoundControl::Warn(std::string_view message) const {
  context_.dialogs.ShowMessage(std::string(params::kWarningTitle), std::string(message),
                               DialogIcon::Warning);
}

ValueEntry::ValueEntry(EditorContext& context, QWidget* parent)
    : QLineEdit(parent), BoundControl(context, ControlRole::Box) {}

void ValueEntry::Show() {
  setText(QString::fromStdString(Model().Show(Ref()).text));
}

void ValueEntry::keyPressEvent(QKeyEvent* event) {
  const int key = KeyCode(*event);
  if (key < 0) return QLineEdit::keyPressEvent(event);
  const KeyOutcome outcome = Model().Key(key);
  switch (outcome.action) {
    case KeyAction::Ignore:
      event->accept();
      return;
    case KeyAction::Pass:
      return QLineEdit::keyPressEvent(event);
    case KeyAction::Replace:
      insert(QString(QChar(outcome.typed)));
      return;
    case KeyAction::Commit:
      Commit();
      return;
    case KeyAction::Refuse:
      Warn(BoxMessage(Ref()));
      insert(QString(QChar(outcome.typed)));
      return;
  }
}

void ValueEntry::focusOutEvent(QFocusEvent* event) {
  QLineEdit::focusOutEvent(event);
  // A message box takes the focus while the typed text still stands; it comes back after.
  if (event->reason() != Qt::PopupFocusReason && event->reason() != Qt::ActiveWindowFocusReason)
    Refresh();
}

void ValueEntry::Commit() {
  const EditOutcome outcome = Model().Commit(Ref(), text().toStdString());
  Report(outcome);
  if (outcome.Applied()) {
    setText(QString::fromStdString(outcome.shown));
    selectAll();
  }
}

RuleSlider::RuleSlider(EditorContext& context, Qt::Orientation orientation, QWidget* parent)
    : QSlider(orientation, parent), BoundControl(context, ControlRole::Slider) {
  setTracking(true);
  connect(this, &QSlider::valueChanged, this,
          [this](int position) { Report(Model().Move(Ref(), position)); });
  // A drag from press to release is one step of the history, however many positions it sent.
  connect(this, &QSlider::sliderPressed, this, [this] { Model().History().BeginGroup(); });
  connect(this, &QSlider::sliderReleased, this, [this] { Model().History().EndGroup(); });
}

void RuleSlider::Rebound() {
  const QSignalBlocker quiet(this);
  const int max = params::MaxPosition(*params::RuleOf(Ref()));
  const params::ValueRule& rule = *params::RuleOf(Ref());
  setRange(rule.kind == params::ValueRule::Kind::Table ? rule.firstIndex : 0, max);
  const bool highestFirst = HighestFirst(Ref());
  setInvertedAppearance(highestFirst != (orientation() == Qt::Vertical));
  setInvertedControls(highestFirst);
  setPageStep(std::max(1, max / 10));
}

void RuleSlider::Show() {
  const QSignalBlocker quiet(this);
  setValue(Model().Show(Ref()).position);
}

UpDown::UpDown(EditorContext& context, ControlRole role, QWidget* parent)
    : QWidget(parent),
      BoundControl(context, role),
      up_(new QToolButton(this)),
      down_(new QToolButton(this)) {
  setFocusPolicy(Qt::StrongFocus);
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  for (auto [button, arrow, steps] :
       {std::tuple{up_, Qt::UpArrow, 1}, {down_, Qt::DownArrow, -1}}) {
    button->setArrowType(arrow);
    button->setAutoRepeat(true);
    button->setFocusPolicy(Qt::NoFocus);
    // Two arrows as tall as an entry box together.
    button->setFixedSize(16, fontMetrics().height() / 2 + 4);
    layout->addWidget(button);
    connect(button, &QToolButton::clicked, this, [this, steps = steps] { Step(steps); });
  }
}

void UpDown::Show() {}

void UpDown::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Up:
      return Step(1);
    case Qt::Key_Down:
      return Step(-1);
    case Qt::Key_PageUp:
      return Step(10);
    case Qt::Key_PageDown:
      return Step(-10);
    default:
      QWidget::keyPressEvent(event);
  }
}

void UpDown::Step(int steps) {
  Report(Model().Step(Id(), steps));
}

ChoiceList::ChoiceList(EditorContext& context, QWidget* parent)
    : QComboBox(parent), BoundControl(context, ControlRole::List) {
  connect(this, &QComboBox::activated, this, [this](int index) { Choose(index); });
}

void ChoiceList::Rebound() {
  const QSignalBlocker quiet(this);
  clear();
  for (int choice = 0; choice < params::ChoiceCount(Ref()); ++choice)
    addItem(QString::fromStdString(params::ChoiceText(Ref(), choice)));
}

void ChoiceList::Show() {
  const QSignalBlocker quiet(this);
  setCurrentIndex(Model().Show(Ref()).choice);
}

ChoiceCheck::ChoiceCheck(EditorContext& context, const QString& caption, QWidget* parent)
    : QCheckBox(caption, parent), BoundControl(context, ControlRole::Check) {
  connect(this, &QCheckBox::clicked, this, [this](bool checked) { Choose(checked ? 1 : 0); });
}

void ChoiceCheck::Show() {
  const QSignalBlocker quiet(this);
  setChecked(Model().Show(Ref()).choice != 0);
}

ChoiceOption::ChoiceOption(EditorContext& context, QWidget* parent)
    : QRadioButton(parent), BoundControl(context, ControlRole::Option) {
  setAutoExclusive(false);  // the model says which is on
  connect(this, &QRadioButton::clicked, this, [this] { Choose(Id().choice); });
}

void ChoiceOption::Rebound() {
  setText(Text(params::ChoiceText(Ref(), Id().choice)));
}

void ChoiceOption::Show() {
  const QSignalBlocker quiet(this);
  setChecked(Model().Show(Ref()).choice == Id().choice);
}

}  // namespace talvex::editor
