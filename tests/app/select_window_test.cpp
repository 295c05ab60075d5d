#include "app/select_window.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "recording_dialogs.h"

namespace talvex::testing {
namespace {

std::vector<app::PortEntry> Ports() {
  return {{"Simulated", "sim:0,1,2"}, {"ttyUSB0", "/dev/ttyUSB0"}, {"ttyUSB1", "/dev/ttyUSB1"}};
}

TEST(SelectWindowTest, shouldRefuseDuplicateIdsAndWriteNothing) {
  QTemporaryDir folder;
  RecordingDialogs dialogs;
  app::SelectWindow window(Ports(), folder.path().toStdString(), dialogs);
  window.ChooseMode(app::SearchMode::IdList);
  for (int i = 0; i < 20; ++i)
    window.IdList(i)->setCurrentIndex(i + 1);
  window.IdList(19)->setCurrentIndex(5);  // the same as list 4
  window.Confirm();
  ASSERT_EQ(dialogs.shown.size(), 1u);
  EXPECT_EQ(dialogs.shown[0].text, "All ID must be different!");
  EXPECT_EQ(dialogs.shown[0].icon, editor::DialogIcon::Critical);
  EXPECT_EQ(window.result(), QDialog::Rejected);
  EXPECT_FALSE(config::ReadDeviceIdTable(folder.path().toStdString()).found);

  window.IdList(19)->setCurrentIndex(32);
  window.Confirm();
  EXPECT_EQ(window.result(), QDialog::Accepted);
  const auto ids = config::ReadDeviceIdTable(folder.path().toStdString());
  ASSERT_TRUE(ids.complete);
  EXPECT_EQ(ids.value[0], 1);
  EXPECT_EQ(ids.value[19], 32);
  EXPECT_EQ(window.Choice().mode, app::SearchMode::IdList);
}

TEST(SelectWindowTest, shouldNotCheckIdsWhenOnlyOneDeviceIsWanted) {
  QTemporaryDir folder;
  RecordingDialogs dialogs;
  app::SelectWindow window(Ports(), folder.path().toStdString(), dialogs);
  window.ChooseMode(app::SearchMode::SingleDevice);
  window.SingleIdList()->setCurrentIndex(12);
  window.Confirm();  // the 20 lists all read 0: fine in this mode
  EXPECT_TRUE(dialogs.shown.empty());
  EXPECT_EQ(window.Choice().singleDeviceId, 12);
  EXPECT_TRUE(config::ReadDeviceIdTable(folder.path().toStdString()).found);
}

TEST(SelectWindowTest, shouldRewriteInitCfgAtOnceAndFindThePortAgainByName) {
  QTemporaryDir folder;
  RecordingDialogs dialogs;
  {
    app::SelectWindow window(Ports(), folder.path().toStdString(), dialogs);
    window.PortList()->setCurrentIndex(2);
    window.reject();  // left without OK: the port choice is kept all the same
  }
  const auto init = config::ReadInitSettings(folder.path().toStdString());
  EXPECT_EQ(init.value.PortNumber, 2);
  EXPECT_EQ(init.value.portName, "/dev/ttyUSB1");

  // The next run lists the ports in another order: the port is found by its name.
  std::vector<app::PortEntry> reordered = {{"ttyUSB1", "/dev/ttyUSB1"}, {"Simulated", "sim:0,1,2"}};
  app::SelectWindow again(reordered, folder.path().toStdString(), dialogs);
  EXPECT_EQ(again.Choice().port, "/dev/ttyUSB1");
  app::SelectWindow preselected(Ports(), folder.path().toStdString(), dialogs, "sim:0,1,2");
  EXPECT_EQ(preselected.Choice().port, "sim:0,1,2");
}

}  // namespace
}  // namespace talvex::testing
