// The editor window's graph and what goes with it: the response graph, its view boxes
// (`Check4`..`Check8` "View Out2" .. "View Out6"), "Show cursor", the options `Option1` "Out"
// and `Option2` "Out + InputB", the "Sum" boxes that choose the outputs whose acoustic sum is
// drawn, "Reset view" and "Export...". It shows what the window's DeviceEditor computed and
// hands the graph's drags and wheel steps to the model (editor/model/graph_handles.h); it holds
// no rule.
#pragma once

#include <QWidget>
#include <array>
#include <filesystem>
#include <functional>
#include <memory>
#include <vector>

#include "editor/model/graph_handles.h"
#include "editor/user_dialogs.h"

class QCheckBox;
class QHBoxLayout;
class QPushButton;
class QRadioButton;

namespace talvex::editor {

class ResponseGraph;

// The title of the export's messages.
inline constexpr const char* kExportTitle = "Export graph";
// The export's file dialog: a picture (PNG), a drawing (SVG) or a table (CSV); a name typed
// without an extension is saved as a PNG picture.
inline constexpr const char* kExportFilter = "graph picture or table (*.png *.svg *.csv)|*.png";

class GraphPanel : public QWidget {
 public:
  // `exportFolder` gives the folder the export's file dialog opens in.
  GraphPanel(DeviceEditor& model, UserDialogs& dialogs,
             std::function<std::filesystem::path()> exportFolder, QWidget* parent = nullptr);
  ~GraphPanel() override;

  ResponseGraph& Graph() const { return *graph_; }
  QCheckBox& ShowCursorBox() const { return *showCursor_; }
  QCheckBox& SumBox(int output) const;  // 0 .. 5: Out 1 .. Out 6
  QPushButton& ResetButton() const { return *reset_; }
  QPushButton& ExportButton() const { return *export_; }

  // Shows the model's curves and the selected channel's handles: after every edit, a change of
  // the shown channels, or a whole preset.
  void Refresh();
  // Asks for a file and writes the graph as its extension says: PNG, SVG or CSV. False when
  // nothing was written (cancelled, or the reason was shown).
  bool Export();

 private:
  QLayout* BuildViewBoxes();
  QLayout* BuildOptions();
  void AddSumBoxes(QHBoxLayout& row);
  void UpdateView();
  void Press(int handle);
  void Drag(int handle, double hz, double db, Qt::KeyboardModifiers keys);
  void Wheel(int handle, int steps);

  DeviceEditor& model_;
  UserDialogs& dialogs_;
  std::function<std::filesystem::path()> exportFolder_;
  ResponseGraph* graph_ = nullptr;
  std::array<QCheckBox*, 5> viewBoxes_{};
  std::array<QCheckBox*, params::kOutputCount> sumBoxes_{};
  QCheckBox* showCursor_ = nullptr;
  QRadioButton* outAlone_ = nullptr;
  QRadioButton* outThroughInput_ = nullptr;
  QPushButton* reset_ = nullptr;
  QPushButton* export_ = nullptr;
  std::vector<GraphHandle> handles_;  // as the graph shows them, in its order
  std::unique_ptr<HandleDrag> drag_;
};

}  // namespace talvex::editor
