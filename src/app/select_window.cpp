#include "app/select_window.h"

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QRadioButton>
#include <QSerialPortInfo>
#include <QVBoxLayout>

#include "link/port_problem.h"
#include "link/port_spec.h"
#include "protocol/frame.h"

namespace talvex::app {

namespace {

void FillIds(QComboBox* list) {
  for (int id = 0; id <= kMaxDeviceId; ++id)
    list->addItem(QString::number(id));
}

// A caption that screen readers relate to its control (and that gives it the focus on a click).
QLabel* LabelFor(const QString& text, QWidget* control) {
  auto* label = new QLabel(text);
  label->setBuddy(control);
  return label;
}

}  // namespace

std::vector<PortEntry> AvailablePorts(const std::string& preselected) {
  std::vector<PortEntry> ports{{"Simulated line (3 processors, IDs 0, 1, 2)", kSimulatedPort}};
  for (const QSerialPortInfo& info : QSerialPortInfo::availablePorts()) {
    QString label = info.portName();
    if (!info.description().isEmpty()) label += "  (" + info.description() + ")";
    ports.push_back({label, info.systemLocation().toStdString()});
  }
  const bool listed = std::any_of(ports.begin(), ports.end(),
                                  [&](const PortEntry& p) { return p.port == preselected; });
  if (!preselected.empty() && !listed)
    ports.push_back({QString::fromStdString(preselected), preselected});
  return ports;
}

SelectWindow::SelectWindow(std::vector<PortEntry> ports, std::filesystem::path configFolder,
                           UserDialogs& dialogs, const std::string& preselectedPort,
                           QWidget* parent)
    : QDialog(parent),
      ports_(std::move(ports)),
      configFolder_(std::move(configFolder)),
      dialogs_(dialogs) {
  setWindowTitle(kSelectTitle);
  ids_ = config::ReadDeviceIdTable(configFolder_).value;

  portList_ = new QComboBox;
  portList_->setAccessibleName("Port");
  for (const PortEntry& entry : ports_)
    portList_->addItem(entry.label);
  auto* portRow = new QHBoxLayout;
  portRow->addWidget(LabelFor("Port:", portList_));
  portRow->addWidget(portList_, 1);

  portWarning_ = new QLabel;
  portWarning_->setWordWrap(true);
  portWarning_->setAccessibleName("Port problem");
  portWarning_->setTextInteractionFlags(Qt::TextSelectableByMouse);

  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
  connect(buttons, &QDialogButtonBox::accepted, this, &SelectWindow::Confirm);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

  auto* layout = new QVBoxLayout(this);
  layout->addLayout(portRow);
  layout->addWidget(portWarning_);
  layout->addWidget(BuildModes());
  layout->addWidget(BuildIdLists());
  layout->addWidget(buttons);

  SelectInitialPort(preselectedPort);
  UpdatePortWarning();
  connect(portList_, &QComboBox::currentIndexChanged, this, &SelectWindow::PortChanged);
  ChooseMode(SearchMode::AllIds);
}

QGroupBox* SelectWindow::BuildModes() {
  auto* frame = new QGroupBox("Find devices");
  auto* layout = new QGridLayout(frame);
  const char* texts[] = {"One device, ID:", "Search all IDs (0 to 32)",
                         "Search the IDs listed below"};
  for (int mode = 0; mode < 3; ++mode) {
    auto* option = new QRadioButton(texts[mode]);
    modes_.addButton(option, mode);
    layout->addWidget(option, mode, 0);
  }
  singleIdList_ = new QComboBox;
  singleIdList_->setAccessibleName("One device ID");
  FillIds(singleIdList_);
  singleIdList_->setCurrentIndex(0);
  layout->addWidget(singleIdList_, 0, 1);
  layout->setColumnStretch(2, 1);
  connect(&modes_, &QButtonGroup::idClicked, this, [this] { UpdateEnabling(); });
  return frame;
}

QGroupBox* SelectWindow::BuildIdLists() {
  idFrame_ = new QGroupBox("Device IDs");
  auto* grid = new QGridLayout(idFrame_);
  for (int i = 0; i < config::kIdListCount; ++i) {
    QComboBox* list = idLists_[static_cast<std::size_t>(i)] = new QComboBox;
    list->setAccessibleName(QString("Device ID %1").arg(i + 1));
    FillIds(list);
    list->setCurrentIndex(ids_[static_cast<std::size_t>(i)]);
    connect(list, &QComboBox::currentIndexChanged, this, [this, i](int position) {
      ids_[static_cast<std::size_t>(i)] = static_cast<std::int16_t>(position);
    });
    grid->addWidget(LabelFor(QString::number(i + 1) + ":", list), i / 5, 2 * (i % 5),
                    Qt::AlignRight);
    grid->addWidget(list, i / 5, 2 * (i % 5) + 1);
  }
  return idFrame_;
}

// The port of "init.cfg" is found again by its name when the list of ports has changed; its
// position is the fallback (files from the device's own tools hold nothing else).
void SelectWindow::SelectInitialPort(const std::string& preselectedPort) {
  const config::InitSettings init = config::ReadInitSettings(configFolder_).value;
  auto positionOf = [&](const std::string& port) -> int {
    for (std::size_t i = 0; i < ports_.size(); ++i)
      if (ports_[i].port == port) return static_cast<int>(i);
    return -1;
  };
  int position = positionOf(preselectedPort);
  if (position < 0 && !init.portName.empty()) position = positionOf(init.portName);
  if (position < 0 && init.PortNumber < static_cast<int>(ports_.size())) position = init.PortNumber;
  portList_->setCurrentIndex(std::max(position, 0));
}

void SelectWindow::PortChanged(int position) {
  UpdatePortWarning();
  if (position < 0) return;
  (void)config::WriteInitSettings(configFolder_, {static_cast<std::int16_t>(position),
                                                  ports_[static_cast<std::size_t>(position)].port});
}

// A serial port that is missing or forbidden is named at once, beside the list; the start-up
// still tries it, and "COM not found, ..." follows if it will not open.
void SelectWindow::UpdatePortWarning() {
  const int position = portList_->currentIndex();
  std::string warning;
  if (position >= 0) {
    const std::string& port = ports_[static_cast<std::size_t>(position)].port;
    if (std::holds_alternative<link::SerialPort>(link::ParsePortSpec(port)))
      warning = link::PortWarning(port);
    if (!warning.empty()) warning = port + " cannot be opened: " + warning;
  }
  portWarning_->setText(QString::fromStdString(warning));
  portWarning_->setVisible(!warning.empty());
}

void SelectWindow::ChooseMode(SearchMode mode) {
  modes_.button(static_cast<int>(mode))->setChecked(true);
  UpdateEnabling();
}

void SelectWindow::UpdateEnabling() {
  const auto mode = static_cast<SearchMode>(modes_.checkedId());
  singleIdList_->setEnabled(mode == SearchMode::SingleDevice);
  idFrame_->setEnabled(mode == SearchMode::IdList);
}

void SelectWindow::Confirm() {
  const StartupChoice choice = Choice();
  if (choice.mode == SearchMode::IdList && config::HasDuplicateIds(choice.ids)) {
    dialogs_.ShowMessage(kSelectTitle, kDuplicateIdsText, DialogIcon::Critical);
    return;
  }
  (void)config::WriteDeviceIdTable(configFolder_, choice.ids);
  accept();
}

StartupChoice SelectWindow::Choice() const {
  StartupChoice choice;
  choice.port = ports_.at(static_cast<std::size_t>(std::max(portList_->currentIndex(), 0))).port;
  choice.mode = static_cast<SearchMode>(modes_.checkedId());
  choice.ids = ids_;
  choice.singleDeviceId = singleIdList_->currentIndex();
  return choice;
}

}  // namespace talvex::app
