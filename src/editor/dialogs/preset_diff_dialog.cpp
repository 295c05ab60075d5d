#include "editor/dialogs/preset_diff_dialog.h"

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "editor/model/controls.h"
#include "params/captions.h"

namespace talvex::editor {

std::string DifferenceCount(std::size_t count) {
  if (count == 0) return "no parameter differs";
  return std::to_string(count) + (count == 1 ? " parameter differs" : " parameters differ");
}

PresetDiffDialog::PresetDiffDialog(CommandContext& context, const std::string& fileTitle,
                                   const params::ParamImage& file,
                                   const std::vector<params::ParamDifference>& differences)
    : QDialog(&context.window),
      heading_(new QLabel),
      list_(new QTreeWidget),
      close_(new QPushButton("Close")) {
  setObjectName("PresetDiffDialog");
  setWindowTitle(kCompareTitle);
  const std::string device = "ID:" + std::to_string(context.DeviceId());
  std::string heading =
      fileTitle + " against " + device + ": " + DifferenceCount(differences.size());
  const int fileType = file[params::kSystemTypeByte];
  const int deviceType = context.device.image[params::kSystemTypeByte];
  if (fileType != deviceType)
    heading += ". The file is for " + params::SystemTypeText(fileType) + ", " + device + " runs " +
               params::SystemTypeText(deviceType) + ".";
  heading_->setText(QtText(heading));
  heading_->setWordWrap(true);
  heading_->setBuddy(list_);
  list_->setAccessibleName("Differences");
  list_->setRootIsDecorated(false);
  list_->setHeaderLabels({"Parameter", QtText(fileTitle), QtText(device)});
  for (const params::ParamDifference& difference : differences) {
    auto* row = new QTreeWidgetItem(list_);
    row->setText(0, QtText(AccessibleName({difference.ref, ControlRole::Box})));
    row->setText(1, QtText(difference.a.text));
    row->setText(2, QtText(difference.b.text));
  }
  list_->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
  list_->setMinimumWidth(list_->fontMetrics().averageCharWidth() * 64);
  close_->setAccessibleName("Close");
  close_->setDefault(true);
  auto* buttons = new QDialogButtonBox;
  buttons->addButton(close_, QDialogButtonBox::RejectRole);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(heading_);
  layout->addWidget(list_);
  layout->addWidget(buttons);
  connect(close_, &QPushButton::clicked, this, &PresetDiffDialog::reject);
}

}  // namespace talvex::editor
