#include <gtest/gtest.h>

#include <QCoreApplication>

int main(int argc, char** argv) {
  QCoreApplication app(argc, argv);  // QProcess and the Qt transports want one
  ::testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
