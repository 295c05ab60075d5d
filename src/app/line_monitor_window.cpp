#include "app/line_monitor_window.h"

#include <QFontDatabase>
#include <QHBoxLayout>
#include <QScrollBar>
#include <QVBoxLayout>

#include "config/config_files.h"
#include "protocol/frame.h"

namespace talvex::app {

LineMonitorWindow::LineMonitorWindow(LineTap& tap, editor::UserDialogs& dialogs,
                                     std::filesystem::path folder, QWidget* parent)
    : QWidget(parent, Qt::Window),
      tap_(&tap),
      dialogs_(dialogs),
      folder_(std::move(folder)),
      filter_(new QComboBox),
      pause_(new QCheckBox("&Pause")),
      clear_(new QPushButton("C&lear")),
      save_(new QPushButton("&Save...")),
      count_(new QLabel),
      view_(new QPlainTextEdit) {
  setWindowTitle(kLineMonitorTitle);
  filter_->addItem("All devices");
  for (int id = 0; id <= kMaxDeviceId; ++id)
    filter_->addItem(QString("ID %1").arg(id));
  filter_->setAccessibleName("Line monitor: device");
  pause_->setAccessibleName("Line monitor: pause");
  clear_->setAccessibleName("Line monitor: clear");
  save_->setAccessibleName("Line monitor: save to a text file");
  view_->setAccessibleName("Line monitor: frames");
  view_->setReadOnly(true);
  view_->setLineWrapMode(QPlainTextEdit::NoWrap);
  view_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  view_->setTabChangesFocus(true);

  auto* deviceLabel = new QLabel("&Device:");
  deviceLabel->setBuddy(filter_);
  auto* bar = new QHBoxLayout;
  bar->addWidget(deviceLabel);
  bar->addWidget(filter_);
  bar->addWidget(pause_);
  bar->addWidget(clear_);
  bar->addWidget(save_);
  bar->addStretch(1);
  bar->addWidget(count_);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(bar);
  layout->addWidget(view_, 1);
  resize(820, 420);

  connect(tap_, &LineTap::frameSeen, this, &LineMonitorWindow::Take);
  connect(filter_, &QComboBox::currentIndexChanged, this, &LineMonitorWindow::Rebuild);
  connect(pause_, &QCheckBox::toggled, this, [this](bool paused) {
    if (!paused) Resume();
    UpdateCount();
  });
  connect(clear_, &QPushButton::clicked, this, [this] {
    log_.Clear();
    Rebuild();
  });
  connect(save_, &QPushButton::clicked, this, &LineMonitorWindow::Save);
  UpdateCount();
}

LineMonitorWindow::~LineMonitorWindow() {
  if (tap_) tap_->SetListening(false);
}

void LineMonitorWindow::showEvent(QShowEvent* event) {
  if (tap_) tap_->SetListening(true);
  QWidget::showEvent(event);
}

void LineMonitorWindow::hideEvent(QHideEvent* event) {
  if (tap_) tap_->SetListening(false);
  QWidget::hideEvent(event);
}

std::optional<int> LineMonitorWindow::Filter() const {
  const int index = filter_->currentIndex();
  return index <= 0 ? std::nullopt : std::optional<int>(index - 1);
}

void LineMonitorWindow::Take(const LoggedFrame& frame) {
  const bool full = log_.Size() == kMaxFrames;
  log_.Add(frame);
  if (full && shownUpTo_ > 0) --shownUpTo_;  // the oldest frame went
  if (!pause_->isChecked()) Resume();
  UpdateCount();
}

// Appends what came since the view was last brought up to date, and follows the newest line.
void LineMonitorWindow::Resume() {
  const QStringList lines = log_.Lines(Filter(), shownUpTo_);
  shownUpTo_ = log_.Size();
  QScrollBar* bar = view_->verticalScrollBar();
  const bool following = bar->value() == bar->maximum();
  for (const QString& line : lines)
    view_->appendPlainText(line);
  if (following) bar->setValue(bar->maximum());
}

void LineMonitorWindow::Rebuild() {
  view_->clear();
  shownUpTo_ = 0;
  if (!pause_->isChecked()) Resume();
  UpdateCount();
}

void LineMonitorWindow::UpdateCount() {
  const std::size_t waiting = log_.Size() - std::min(shownUpTo_, log_.Size());
  count_->setText(pause_->isChecked() && waiting > 0
                      ? QString("%1 frames, %2 new while paused").arg(log_.Size()).arg(waiting)
                      : QString("%1 frames").arg(log_.Size()));
}

bool LineMonitorWindow::Save() {
  const auto path = dialogs_.ChooseSaveFile(folder_.string(), kMonitorFileFilter);
  if (!path) return false;
  const QByteArray text = (log_.Lines(Filter()).join('\n') + '\n').toUtf8();
  const std::string why =
      config::WriteFileAtomically(*path, std::vector<std::uint8_t>(text.begin(), text.end()));
  if (!why.empty()) {
    dialogs_.ShowMessage(kLineMonitorTitle, why, editor::DialogIcon::Warning);
    return false;
  }
  return true;
}

}  // namespace talvex::app
