#include <gtest/gtest.h>

#include <QApplication>

#include "tests/platform/desktop/DesktopSession.h"

int main(int argc, char** argv) {
  // Before the application, which chooses its platform once.
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  // As in a session: without it, the leak detector itself fails at the exit of some tests.
  const tavrin::test::TemporaryFolder runtimeFolder;
  qputenv("XDG_RUNTIME_DIR", runtimeFolder.path().c_str());
  const QApplication application(argc, argv);
  QApplication::setApplicationName(QStringLiteral("Tavrin"));
  QApplication::setQuitOnLastWindowClosed(false);
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
