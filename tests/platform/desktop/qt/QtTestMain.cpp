#include <gtest/gtest.h>

#include <QApplication>

int main(int argc, char** argv) {
  // Before the application, which chooses its platform once.
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  const QApplication application(argc, argv);
  QApplication::setApplicationName(QStringLiteral("Tavrin"));
  QApplication::setQuitOnLastWindowClosed(false);
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
