#include "editor/widgets/channel_page.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>
#include <algorithm>

#include "params/image_layout.h"
#include "params/senders.h"

namespace talvex::editor {

namespace {

using params::kInputCount;
using params::kOutputBands;

QString Text(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

std::function<ParamRef(int)> Channel(ParamKind kind) {
  return [kind](int channel) { return ParamRef{kind, channel, 0}; };
}

std::function<ParamRef(int)> DeviceWide(ParamKind kind) {
  return [kind](int) { return ParamRef{kind, 0, 0}; };
}

// Band k of the channel; an input's bands 6 and 7 do not exist, so they stay on band 5.
std::function<ParamRef(int)> Band(ParamKind kind, int k) {
  return [kind, k](int channel) {
    return ParamRef{kind, channel,
                    params::GlobalBand(channel, std::min(k, params::BandsOf(channel) - 1))};
  };
}

// The crossover filter of an output; on an input the controls are hidden and stay on Out 1.
std::function<ParamRef(int)> Filter(ParamKind kind) {
  return [kind](int channel) { return ParamRef{kind, std::max(channel, kInputCount), 0}; };
}

// Output-only parameters on an input: the controls are hidden and stay on Out 1.
std::function<ParamRef(int)> Output(ParamKind kind) {
  return Filter(kind);
}

QGroupBox* Group(const QString& title, QLayout* layout) {
  auto* group = new QGroupBox(title);
  group->setLayout(layout);
  return group;
}

QWidget* Column(std::initializer_list<QWidget*> widgets) {
  auto* column = new QWidget;
  auto* layout = new QVBoxLayout(column);
  layout->setContentsMargins(0, 0, 0, 0);
  for (QWidget* widget : widgets)
    layout->addWidget(widget);
  layout->addStretch(1);
  return column;
}

void Narrow(QWidget* widget, int characters) {
  widget->setFixedWidth(widget->fontMetrics().horizontalAdvance('0') * characters + 12);
}

}  // namespace

ChannelPage::ChannelPage(EditorContext& context, QWidget* parent)
    : QWidget(parent), context_(context) {
  auto* layout = new QHBoxLayout(this);
  layout->setContentsMargins(4, 4, 4, 4);
  // Built in the order the signal meets them, which is the order Tab walks.
  QWidget* routing = BuildRouting();
  QWidget* level = BuildLevel();
  QWidget* phase = BuildPhase();
  QWidget* delay = BuildDelay();
  QWidget* equaliser = BuildEqualiser();
  QWidget* crossover = BuildCrossover();
  QWidget* limiter = BuildLimiter();
  layout->addWidget(Column({routing, level}));
  layout->addWidget(Column({delay, phase, BuildNoiseGate()}));
  layout->addWidget(equaliser, 0, Qt::AlignTop);
  layout->addWidget(Column({crossover, limiter}));
  layout->addStretch(1);
  OrderTabs();
  Bind(0);
}

template <typename Control, typename... Args>
Control* ChannelPage::Add(std::function<ParamRef(int)> ref, Args&&... args) {
  return AddChoice<Control>(std::move(ref), 0, std::forward<Args>(args)...);
}

template <typename Control, typename... Args>
Control* ChannelPage::AddChoice(std::function<ParamRef(int)> ref, int choice, Args&&... args) {
  auto* control = new Control(context_, std::forward<Args>(args)...);
  bindings_.push_back({control, std::move(ref), choice});
  controls_.push_back(control);
  tabOrder_.push_back(control);
  return control;
}

QWidget* ChannelPage::BuildRouting() {
  auto* grid = new QGridLayout;
  auto* inputType = Add<ChoiceList>(DeviceWide(ParamKind::InputSource));
  auto* inputLabel = new QLabel("Input type");
  inputLabel->setBuddy(inputType);
  grid->addWidget(inputLabel, 0, 0);
  grid->addWidget(inputType, 0, 1);
  inputOnly_.insert(inputOnly_.end(), {inputLabel, inputType});
  auto* fromA = AddChoice<ChoiceOption>(Output(ParamKind::OutputSource), 0);
  auto* fromB = AddChoice<ChoiceOption>(Output(ParamKind::OutputSource), 1);
  grid->addWidget(fromA, 1, 0);
  grid->addWidget(fromB, 1, 1);
  outputOnly_.insert(outputOnly_.end(), {fromA, fromB});
  grid->addWidget(Add<ChoiceCheck>(DeviceWide(ParamKind::OutputLink), "Link outputs"), 2, 0, 1, 2);
  editorLock_ = new QCheckBox("Lock unit");
  editorLock_->setToolTip("Keep every control of this editor from changing the device");
  connect(editorLock_, &QCheckBox::clicked, this, [this](bool locked) {
    context_.model.SetEditorLock(locked);
    Refresh();
  });
  tabOrder_.push_back(editorLock_);
  grid->addWidget(editorLock_, 3, 0, 1, 2);
  return Group("Routing", grid);
}

QWidget* ChannelPage::BuildLevel() {
  auto* layout = new QVBoxLayout;
  auto* box = Add<ValueEntry>(Channel(ParamKind::Level));
  Narrow(box, 5);
  auto* slider = Add<RuleSlider>(Channel(ParamKind::Level), Qt::Vertical);
  slider->setMinimumHeight(110);
  layout->addWidget(box, 0, Qt::AlignHCenter);
  layout->addWidget(slider, 1, Qt::AlignHCenter);
  layout->addWidget(Add<ChoiceCheck>(Channel(ParamKind::Mute), "Mute"));
  return Group("Level [dB]", layout);
}

QWidget* ChannelPage::BuildPhase() {
  auto* phase = new QVBoxLayout;
  phase->addWidget(Add<ChoiceCheck>(Channel(ParamKind::Polarity), "180 '"));
  return Group("Phase", phase);
}

QWidget* ChannelPage::BuildDelay() {
  auto* grid = new QGridLayout;
  auto* box = Add<ValueEntry>(Channel(ParamKind::Delay));
  Narrow(box, 8);
  delayUnit_ = new QLabel;
  auto* row = new QHBoxLayout;
  row->addWidget(box);
  row->addWidget(Add<UpDown>(Channel(ParamKind::Delay), ControlRole::UpDown));
  row->addWidget(Add<UpDown>(Channel(ParamKind::Delay), ControlRole::FineUpDown));
  row->addWidget(delayUnit_);
  row->addStretch(1);
  grid->addLayout(row, 0, 0, 1, 2);
  auto* temperature = Add<ValueEntry>(DeviceWide(ParamKind::Temperature));
  Narrow(temperature, 4);
  auto* temperatureLabel = new QLabel("Temperature ['C]");
  temperatureLabel->setBuddy(temperature);
  grid->addWidget(temperatureLabel, 1, 0);
  grid->addWidget(temperature, 1, 1);
  grid->addWidget(Add<RuleSlider>(DeviceWide(ParamKind::Temperature), Qt::Horizontal), 2, 0, 1, 2);
  grid->addWidget(Add<ChoiceCheck>(DeviceWide(ParamKind::DelayUnit), "Delay in metres"), 3, 0, 1,
                  2);
  return Group("Delay", grid);
}

QWidget* ChannelPage::BuildEqualiser() {
  auto* grid = new QGridLayout;
  grid->setHorizontalSpacing(4);
  grid->setVerticalSpacing(2);
  const QStringList headers = {"", "Type", "Freq [Hz]", "", "Q", "Gain [dB]", ""};
  for (int column = 0; column < headers.size(); ++column)
    grid->addWidget(new QLabel(headers[column]), 0, column);
  for (int k = 0; k < kOutputBands; ++k) {
    const int line = k + 1;
    auto* name = new QLabel(QString("EQ %1").arg(k + 1));
    auto* type = Add<ChoiceList>(Band(ParamKind::EqType, k));
    auto* frequency = Add<ValueEntry>(Band(ParamKind::EqFrequency, k));
    Narrow(frequency, 6);
    auto* steps = Add<UpDown>(Band(ParamKind::EqFrequency, k), ControlRole::UpDown);
    auto* q = Add<ValueEntry>(Band(ParamKind::EqQ, k));
    Narrow(q, 5);
    auto* gain = Add<ValueEntry>(Band(ParamKind::EqGain, k));
    Narrow(gain, 5);
    auto* slider = Add<RuleSlider>(Band(ParamKind::EqGain, k), Qt::Horizontal);
    slider->setMinimumWidth(80);
    const std::initializer_list<QWidget*> row = {name, type, frequency, steps, q, gain, slider};
    int column = 0;
    for (QWidget* widget : row)
      grid->addWidget(widget, line, column++);
    if (k >= params::kInputBands) extraBands_.insert(extraBands_.end(), row);
  }
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(Add<ChoiceCheck>(Channel(ParamKind::EqBypass), "Bypass Eq"));
  flat_ = new QPushButton("Flat Eq");
  flat_->setToolTip("Set every band of this channel to 0 dB");
  connect(flat_, &QPushButton::clicked, this, [this] { context_.model.FlattenEq(channel_); });
  tabOrder_.push_back(flat_);
  buttons->addWidget(flat_);
  buttons->addStretch(1);
  grid->addLayout(buttons, kOutputBands + 1, 0, 1, 7);
  equaliser_ = Group("Equaliser", grid);
  return equaliser_;
}

QWidget* ChannelPage::BuildCrossover() {
  auto* grid = new QGridLayout;
  const struct {
    const char* caption;
    ParamKind frequency;
    ParamKind type;
  } filters[] = {{"High-pass", ParamKind::HighPassFrequency, ParamKind::HighPassType},
                 {"Low-pass", ParamKind::LowPassFrequency, ParamKind::LowPassType}};
  int line = 0;
  for (const auto& filter : filters) {
    auto* box = Add<ValueEntry>(Filter(filter.frequency));
    Narrow(box, 6);
    auto* label = new QLabel(filter.caption);
    label->setBuddy(box);
    grid->addWidget(label, line, 0);
    grid->addWidget(box, line, 1);
    grid->addWidget(new QLabel("Hz"), line, 2);
    grid->addWidget(Add<ChoiceList>(Filter(filter.type)), line, 3);
    ++line;
  }
  crossoverLabel_ = new QLabel;
  crossoverLabel_->setWordWrap(true);
  grid->addWidget(crossoverLabel_, line, 0, 1, 4);
  QWidget* group = Group("X-over", grid);
  outputOnly_.push_back(group);
  return group;
}

QWidget* ChannelPage::BuildLimiter() {
  auto* grid = new QGridLayout;
  const struct {
    const char* caption;
    ParamKind kind;
  } rows[] = {{"Thr       [dBu]", ParamKind::Threshold},
              {"Attack [ms]", ParamKind::Attack},
              {"Release [ms]", ParamKind::Release}};
  int line = 0;
  for (const auto& row : rows) {
    auto* box = Add<ValueEntry>(Output(row.kind));
    Narrow(box, 5);
    auto* label = new QLabel(row.caption);
    label->setBuddy(box);
    auto* slider = Add<RuleSlider>(Output(row.kind), Qt::Horizontal);
    slider->setMinimumWidth(90);
    outputOnly_.insert(outputOnly_.end(), {label, box, slider});
    grid->addWidget(label, line, 0);
    grid->addWidget(box, line, 1);
    grid->addWidget(slider, line, 2);
    ++line;
  }
  auto* level = Add<ChoiceList>(Channel(ParamKind::Limiter));
  limiterLabel_ = new QLabel;
  limiterLabel_->setBuddy(level);
  grid->addWidget(limiterLabel_, line, 0);
  grid->addWidget(level, line, 1, 1, 2);
  return Group("Limiter", grid);
}

// The device keeps no noise-gate setting: the three controls stand as the device's tools had
// them, without handlers, and are shown disabled so that nobody expects them to act.
QWidget* ChannelPage::BuildNoiseGate() {
  auto* grid = new QGridLayout;
  int column = 0;
  for (const char* caption : {"Threshold", "Attack Time", "Release Time"}) {
    auto* upDown = new QSpinBox;
    upDown->setEnabled(false);
    upDown->setAccessibleName(QString("Noise Gate ") + caption);
    upDown->setToolTip("The device has no noise gate to set");
    auto* label = new QLabel(caption);
    label->setBuddy(upDown);
    grid->addWidget(label, 0, column);
    grid->addWidget(upDown, 1, column++);
  }
  return Group("Noise Gate", grid);
}

void ChannelPage::OrderTabs() {
  for (std::size_t i = 1; i < tabOrder_.size(); ++i)
    setTabOrder(tabOrder_[i - 1], tabOrder_[i]);
}

void ChannelPage::Bind(int channel) {
  channel_ = channel;
  context_.model.SelectChannel(channel);
  const bool output = channel >= kInputCount;
  for (QWidget* widget : outputOnly_)
    widget->setVisible(output);
  for (QWidget* widget : inputOnly_)
    widget->setVisible(!output);
  for (QWidget* widget : extraBands_)
    widget->setVisible(output);
  for (const Binding& binding : bindings_)
    binding.control->Bind(binding.ref(channel), binding.choice);
  flat_->setAccessibleName(QString::fromStdString(ChannelControlName(channel, "Flat Eq")));
  RefreshLabels();
}

// Every control, not only the edited ones: the delay unit and the temperature change how every
// delay reads, a band's type whether its Q applies, the lock whether anything may be edited.
// Seventy controls take well under a millisecond.
void ChannelPage::Refresh() {
  for (const Binding& binding : bindings_)
    binding.control->Refresh();
  const DeviceEditor& model = context_.model;
  editorLock_->setChecked(model.EditorLock());
  editorLock_->setEnabled(!model.DeviceLocked());
  flat_->setEnabled(model.EditsEnabled());
  RefreshLabels();
}

void ChannelPage::RefreshLabels() {
  const DeviceEditor& model = context_.model;
  const params::ParamImage& image = model.Device().image;
  equaliser_->setTitle("Equaliser  " + Text(params::EqCaption(image, channel_)));
  const int unit = model.Show({ParamKind::DelayUnit, 0, 0}).choice;
  delayUnit_->setText(Text(params::DelayUnits[static_cast<std::size_t>(unit)]));
  limiterLabel_->setText(Text(params::kLimitLabel));
  if (channel_ >= kInputCount)
    crossoverLabel_->setText(
        QString::fromStdString(params::CrossoverLabel(image, channel_, model.Mark())));
}

}  // namespace talvex::editor
