#include "editor/widgets/signal_chain.h"

#include <QButtonGroup>
#include <QGridLayout>
#include <QLabel>
#include <QToolButton>

#include "editor/widgets/meter_bar.h"
#include "params/image_decode.h"

namespace talvex::editor {

namespace {

using params::kInputCount;

QString Text(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())).trimmed();
}

// "HP 80 Hz" / "LP 2500 Hz" for a filter that cuts, nothing for one that does not.
QString FilterText(const params::ParamImage& image, int filter, const char* name) {
  if (params::CrossoverType(image, filter) == 0) return {};
  return QString("%1 %2").arg(name).arg(params::CrossoverFrequency(image, filter));
}

QString CrossoverText(const params::ParamImage& image, int channel) {
  const int highPass = 2 * (channel - kInputCount);
  QStringList parts;
  for (const QString& part :
       {FilterText(image, highPass, "HP"), FilterText(image, highPass + 1, "LP")})
    if (!part.isEmpty()) parts << part;
  return parts.isEmpty() ? QString("full range") : parts.join("  ");
}

// The channel and its name; an input that still carries its own caption as name shows it once.
QString ChannelText(const DeviceEditor& model, int channel) {
  const QString caption = QString::fromStdString(ChannelCaption(channel));
  const QString name = QString::fromStdString(model.ChannelName(channel));
  if (channel < kInputCount && name.trimmed() == caption) return caption;
  return caption + "  " + name;
}

}  // namespace

SignalChain::SignalChain(const DeviceEditor& model, QWidget* parent)
    : QWidget(parent), model_(model), buttons_(new QButtonGroup(this)) {
  auto* grid = new QGridLayout(this);
  grid->setContentsMargins(0, 0, 0, 0);
  grid->setHorizontalSpacing(8);
  grid->setVerticalSpacing(3);
  const QStringList headers = {"", "", "Gain", "Delay", "X-over", "Level"};
  for (int column = 0; column < headers.size(); ++column) {
    auto* header = new QLabel(headers[column]);
    QFont bold = header->font();
    bold.setBold(true);
    header->setFont(bold);
    grid->addWidget(header, 0, column);
  }
  for (int channel = 0; channel < params::kChannelCount; ++channel) {
    Row& row = rows_[static_cast<std::size_t>(channel)];
    const int line = channel + 1;
    row.source = new QLabel;
    row.button = new QToolButton;
    row.button->setCheckable(true);
    row.button->setToolButtonStyle(Qt::ToolButtonTextOnly);
    row.button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    row.button->setAccessibleName(QString::fromStdString(ChannelCaption(channel)));
    row.button->setToolTip(QString("Show the controls of %1").arg(row.button->accessibleName()));
    buttons_->addButton(row.button, channel);
    row.gain = new QLabel;
    row.delay = new QLabel;
    row.meter = new MeterBar;
    row.meter->setAccessibleName(QString::fromStdString(ChannelControlName(channel, "meter")));
    grid->addWidget(row.source, line, 0);
    grid->addWidget(row.button, line, 1);
    grid->addWidget(row.gain, line, 2, Qt::AlignRight);
    grid->addWidget(row.delay, line, 3, Qt::AlignRight);
    if (channel >= kInputCount) {
      row.crossover = new QLabel;
      grid->addWidget(row.crossover, line, 4);
    }
    grid->addWidget(row.meter, line, 5);
  }
  grid->setColumnStretch(5, 1);
  grid->setRowStretch(params::kChannelCount + 1, 1);
  connect(buttons_, &QButtonGroup::idClicked, this, &SignalChain::channelSelected);
  Refresh();
}

void SignalChain::Refresh() {
  const params::ParamImage& image = model_.Device().image;
  const int inputSource = model_.Show({params::ParamKind::InputSource, 0, 0}).choice;
  for (int channel = 0; channel < params::kChannelCount; ++channel) {
    Row& row = rows_[static_cast<std::size_t>(channel)];
    row.source->setText(channel < kInputCount
                            ? Text(params::InputLabel(inputSource, channel))
                            : QString::fromStdString(
                                  model_.Show({params::ParamKind::OutputSource, channel, 0}).text));
    row.button->setText(ChannelText(model_, channel));
    row.gain->setText(
        QString::fromStdString(model_.Show({params::ParamKind::Level, channel, 0}).text) + " dB");
    const params::ParamRef delay{params::ParamKind::Delay, channel, 0};
    const int unit = model_.Show({params::ParamKind::DelayUnit, 0, 0}).choice;
    row.delay->setText(QString::fromStdString(model_.Show(delay).text) +
                       Text(params::DelayUnits[static_cast<std::size_t>(unit)]).prepend(' '));
    if (row.crossover) row.crossover->setText(CrossoverText(image, channel));
  }
}

void SignalChain::Select(int channel) {
  Button(channel).setChecked(true);
}

void SignalChain::SetMeters(const EditorLink::MeterLevels& levels) {
  for (int channel = 0; channel < params::kChannelCount; ++channel)
    Meter(channel).SetLevel(levels[static_cast<std::size_t>(channel)]);
}

}  // namespace talvex::editor
