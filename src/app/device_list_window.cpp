#include "app/device_list_window.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QVBoxLayout>

#include "app/session.h"

namespace talvex::app {

DeviceListWindow::DeviceListWindow(Session& session, QWidget* parent)
    : QWidget(parent),
      session_(session),
      grid_(new QTableWidget(0, 2)),
      connectButton_(new QPushButton("Connect")) {
  setWindowTitle(kDeviceListTitle);
  grid_->setAccessibleName(kDeviceListTitle);
  grid_->setHorizontalHeaderLabels({"Name", "ID"});
  grid_->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);
  grid_->horizontalHeader()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
  grid_->verticalHeader()->hide();
  grid_->setSelectionBehavior(QAbstractItemView::SelectRows);
  grid_->setSelectionMode(QAbstractItemView::SingleSelection);
  grid_->setEditTriggers(QAbstractItemView::NoEditTriggers);
  QFont fixed("Monospace");
  fixed.setStyleHint(QFont::TypeWriter);
  grid_->setFont(fixed);  // names are 16 characters padded with blanks: keep them aligned

  auto* refresh = new QPushButton("Refresh names");
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(connectButton_);
  buttons->addWidget(refresh);
  buttons->addStretch();
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(grid_);
  layout->addLayout(buttons);

  connect(connectButton_, &QPushButton::clicked, this, [this] { ConnectRow(grid_->currentRow()); });
  connect(grid_, &QTableWidget::cellDoubleClicked, this, [this](int row, int) { ConnectRow(row); });
  connect(refresh, &QPushButton::clicked, this, [this] { session_.RefreshNames(); });
  connect(&session_, &Session::rowsChanged, this, &DeviceListWindow::Redraw);
  Redraw();
}

void DeviceListWindow::Redraw() {
  const std::vector<int>& ids = session_.ListedIds();
  const int selected = grid_->currentRow();
  grid_->setRowCount(static_cast<int>(ids.size()));
  for (std::size_t row = 0; row < ids.size(); ++row) {
    const std::string text = session_.RowText(ids[row]);
    const std::string name = text.substr(0, text.rfind("  ID:"));
    grid_->setItem(static_cast<int>(row), 0, new QTableWidgetItem(QString::fromStdString(name)));
    auto* id = new QTableWidgetItem(QString::number(ids[row]));
    id->setTextAlignment(Qt::AlignCenter);
    grid_->setItem(static_cast<int>(row), 1, id);
  }
  grid_->setCurrentCell(std::clamp(selected, 0, std::max(0, grid_->rowCount() - 1)), 0);
  connectButton_->setEnabled(grid_->rowCount() > 0);
}

QStringList DeviceListWindow::RowTexts() const {
  QStringList texts;
  for (int id : session_.ListedIds())
    texts << QString::fromStdString(session_.RowText(id));
  return texts;
}

void DeviceListWindow::ConnectRow(int row) {
  const std::vector<int>& ids = session_.ListedIds();
  if (row < 0 || row >= static_cast<int>(ids.size())) return;
  emit connectRequested(ids[static_cast<std::size_t>(row)]);
}

}  // namespace talvex::app
