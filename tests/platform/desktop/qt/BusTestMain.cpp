// Qt connects to the session bus once, so each program of tests has one bus of its own.

#include <gtest/gtest.h>

#include <QApplication>

#include "tests/platform/desktop/DesktopSession.h"

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  if (testing::GTEST_FLAG(list_tests)) return RUN_ALL_TESTS();
  const tavrin::test::PrivateBus bus("DBUS_SESSION_BUS_ADDRESS");
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  const QApplication application(argc, argv);
  QApplication::setApplicationName(QStringLiteral("Tavrin"));
  return RUN_ALL_TESTS();
}
