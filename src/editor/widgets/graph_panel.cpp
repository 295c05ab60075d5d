#include "editor/widgets/graph_panel.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include "editor/model/controls.h"
#include "editor/model/shown_graph.h"
#include "editor/widgets/response_graph.h"
#include "plot/graph_export.h"

namespace talvex::editor {

namespace {

std::size_t Index(int value) {
  return static_cast<std::size_t>(value);
}

DragKeys KeysOf(Qt::KeyboardModifiers keys) {
  return {keys.testFlag(Qt::ShiftModifier), keys.testFlag(Qt::ControlModifier)};
}

}  // namespace

GraphPanel::GraphPanel(DeviceEditor& model, UserDialogs& dialogs,
                       std::function<std::filesystem::path()> exportFolder, QWidget* parent)
    : QWidget(parent), model_(model), dialogs_(dialogs), exportFolder_(std::move(exportFolder)) {
  graph_ = new ResponseGraph;
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(graph_);
  layout->addLayout(BuildViewBoxes());
  layout->addLayout(BuildOptions());
  connect(graph_, &ResponseGraph::handlePressed, this, &GraphPanel::Press);
  connect(graph_, &ResponseGraph::handleDragged, this, &GraphPanel::Drag);
  connect(graph_, &ResponseGraph::handleReleased, this, [this] { drag_.reset(); });
  connect(graph_, &ResponseGraph::handleWheeled, this, &GraphPanel::Wheel);
}

GraphPanel::~GraphPanel() = default;

QLayout* GraphPanel::BuildViewBoxes() {
  auto* boxes = new QHBoxLayout;
  const GraphView& view = model_.View();
  for (std::size_t box = 0; box < viewBoxes_.size(); ++box) {
    viewBoxes_[box] = new QCheckBox(QString("View Out%1").arg(box + 2));
    viewBoxes_[box]->setChecked(view.viewOut[box]);
    boxes->addWidget(viewBoxes_[box]);
    connect(viewBoxes_[box], &QCheckBox::toggled, this, &GraphPanel::UpdateView);
  }
  boxes->addStretch(1);
  reset_ = new QPushButton("Reset view");
  reset_->setToolTip("Show the whole graph again after zooming (Home on the graph)");
  export_ = new QPushButton("Export...");
  export_->setToolTip("Save the graph as a PNG picture, an SVG drawing or a CSV table");
  boxes->addWidget(reset_);
  boxes->addWidget(export_);
  connect(reset_, &QPushButton::clicked, graph_, [this] { graph_->SetRange({}); });
  connect(export_, &QPushButton::clicked, this, &GraphPanel::Export);
  return boxes;
}

QLayout* GraphPanel::BuildOptions() {
  auto* options = new QHBoxLayout;
  showCursor_ = new QCheckBox("Show cursor");
  outAlone_ = new QRadioButton("Out");
  outAlone_->setToolTip("Draw each output's own response");
  outThroughInput_ = new QRadioButton("Out + InputB");
  outThroughInput_->setToolTip(
      "Draw each output's whole way from the input that feeds it, levels, delays and polarities "
      "included");
  (model_.View().outPlusInput ? outThroughInput_ : outAlone_)->setChecked(true);
  for (QWidget* widget : std::initializer_list<QWidget*>{showCursor_, outAlone_, outThroughInput_})
    options->addWidget(widget);
  options->addSpacing(options->spacing() * 2);
  AddSumBoxes(*options);
  options->addStretch(1);
  connect(showCursor_, &QCheckBox::toggled, graph_, &ResponseGraph::SetCursorShown);
  connect(outThroughInput_, &QRadioButton::toggled, this, &GraphPanel::UpdateView);
  return options;
}

// "Sum:" and a box per output, captioned by its number to keep the row short; each box is
// named "Sum Out k" for screen readers.
void GraphPanel::AddSumBoxes(QHBoxLayout& row) {
  auto* label = new QLabel("Sum:");
  label->setToolTip("The outputs whose acoustic sum the graph draws");
  row.addWidget(label);
  for (int output = 0; output < params::kOutputCount; ++output) {
    const QString caption = QString::fromStdString(ChannelCaption(output + params::kInputCount));
    auto* box = new QCheckBox(QString::number(output + 1));
    box->setAccessibleName("Sum " + caption);
    box->setToolTip("Add " + caption + " to the acoustic sum drawn on the graph");
    box->setChecked(model_.View().sumOutputs.test(Index(output)));
    row.addWidget(box);
    connect(box, &QCheckBox::toggled, this, &GraphPanel::UpdateView);
    sumBoxes_[Index(output)] = box;
  }
}

QCheckBox& GraphPanel::SumBox(int output) const {
  return *sumBoxes_.at(Index(output));
}

void GraphPanel::UpdateView() {
  GraphView view = model_.View();
  for (std::size_t box = 0; box < viewBoxes_.size(); ++box)
    view.viewOut[box] = viewBoxes_[box]->isChecked();
  view.outPlusInput = outThroughInput_->isChecked();
  for (std::size_t output = 0; output < sumBoxes_.size(); ++output)
    view.sumOutputs.set(output, sumBoxes_[output]->isChecked());
  model_.SetView(view);
  Refresh();
}

void GraphPanel::Refresh() {
  graph_->SetCurves(ShownCurvesOf(model_, model_.ShownChannels()));
  handles_ = GraphHandles(model_);
  std::vector<ResponseGraph::Handle> marks;
  for (const GraphHandle& handle : handles_)
    marks.push_back({{handle.hz, handle.db, handle.channel, handle.hollow, false},
                     QString::fromStdString(HandleText(model_, handle))});
  graph_->SetHandles(std::move(marks));
}

void GraphPanel::Press(int handle) {
  drag_ = std::make_unique<HandleDrag>(model_, handles_.at(Index(handle)));
}

// The model tells the window, which refreshes every control and this panel.
void GraphPanel::Drag(int /*handle*/, double hz, double db, Qt::KeyboardModifiers keys) {
  if (drag_) drag_->MoveTo(hz, db, KeysOf(keys));
}

void GraphPanel::Wheel(int handle, int steps) {
  StepBandQ(model_, handles_.at(Index(handle)), steps);
}

bool GraphPanel::Export() {
  const std::optional<std::string> chosen =
      dialogs_.ChooseSaveFile(exportFolder_().string(), kExportFilter);
  if (!chosen) return false;
  std::filesystem::path path = *chosen;
  if (!path.has_extension()) path += ".png";
  std::array<std::string, params::kChannelCount> names;
  for (int channel = 0; channel < params::kChannelCount; ++channel)
    names[Index(channel)] = ChannelCaption(channel);
  const plot::GraphScene scene = graph_->ExportScene();
  const plot::GraphPicture picture{scene, graph_->Dpi(), graph_->font(), graph_->palette()};
  const std::string why = plot::WriteGraphFile(path, picture, names);
  if (why.empty()) return true;
  dialogs_.ShowMessage(kExportTitle, why, DialogIcon::Warning);
  return false;
}

}  // namespace talvex::editor
