// Every control of the shell's windows has an accessible name, and the captions beside them are
// related to them as their labels, so that screen readers and GUI automation reach them.
#include <gtest/gtest.h>

#include <QAccessible>
#include <QProgressBar>
#include <QTemporaryDir>

#include "app/select_window.h"
#include "app_harness.h"

namespace talvex::testing {
namespace {

struct Named {
  QWidget* widget;
  QString name;
  QString label;  // the caption beside it that labels it ("" when it has none)
};

// What labels the widget for assistive tools: its buddy captions and the title of its frame.
QStringList LabelsOf(QWidget* widget) {
  QStringList texts;
  QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(widget);
  for (const auto& [label, relation] : accessible->relations(QAccessible::Label))
    texts << label->text(QAccessible::Name);
  return texts;
}

// The name is checked as set: on Linux a combo box reports its current entry as its name to the
// accessibility bus and leaves the naming to its label relation.
void ExpectNamed(const std::vector<Named>& widgets) {
  for (const Named& n : widgets) {
    ASSERT_NE(n.widget, nullptr) << n.name.toStdString();
    EXPECT_EQ(n.widget->accessibleName(), n.name);
    if (!n.label.isEmpty()) {
      EXPECT_TRUE(LabelsOf(n.widget).contains(n.label))
          << n.name.toStdString() << ": " << LabelsOf(n.widget).join(", ").toStdString();
    }
  }
}

TEST(AccessibilityTest, shouldNameThePortAndEveryIdListOfTheSelectionWindow) {
  QTemporaryDir folder;
  RecordingDialogs dialogs;
  app::SelectWindow window({{"Simulated", "sim:0,1,2"}}, folder.path().toStdString(), dialogs);
  std::vector<Named> widgets = {{window.PortList(), "Port", "Port:"},
                                {window.SingleIdList(), "One device ID", ""}};
  for (int i = 0; i < config::kIdListCount; ++i)
    widgets.push_back(
        {window.IdList(i), QString("Device ID %1").arg(i + 1), QString("%1:").arg(i + 1)});
  ExpectNamed(widgets);
}

TEST(AccessibilityTest, shouldNameTheDeviceTableAndTheSearchProgress) {
  AppHarness app("sim:0");
  app.Start(Choice(app::SearchMode::AllIds));
  ASSERT_NE(app.window->Search(), nullptr);
  ExpectNamed({{app.window->DeviceList()->Grid(), "Devices", ""},
               {app.window->Search()->findChild<QProgressBar*>(), "Search progress", ""}});
}

}  // namespace
}  // namespace talvex::testing
