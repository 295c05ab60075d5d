#include <gtest/gtest.h>

#include <QApplication>

int main(int argc, char** argv) {
  // No display needed, also when CTest lists the tests.
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication app(argc, argv);
  ::testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
