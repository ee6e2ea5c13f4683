#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QTest>

#include "platform/linux/LinuxBundle.h"
#include "platform/linux/QtWindows.h"
#include "settings/window/QtPreferencesWindow.h"

namespace tavrin {
namespace {

class PreferencesWindowTest : public testing::Test {
 protected:
  QCheckBox& box() { return *window_.findChild<QCheckBox*>(QStringLiteral("authorizeRootButton")); }

  LinuxBundle bundle_;
  QtPreferencesWindow window_{bundle_};
};

TEST_F(PreferencesWindowTest, isTheMainWindowUnderItsName) {
  EXPECT_EQ(window_.objectName(), QStringLiteral("Prefswindow"));
  EXPECT_EQ(window_.windowTitle(), QStringLiteral("Tavrin"));
  EXPECT_EQ(mainWindowWidget(), nullptr);
  window_.makeKeyAndOrderFront();
  EXPECT_TRUE(QTest::qWaitForWindowActive(&window_));
  PreferencesWindow& seenByTheProgram = window_;
  EXPECT_TRUE(seenByTheProgram.isVisible());
  EXPECT_EQ(widgetOfWindow(&seenByTheProgram), mainWindowWidget());
}

TEST_F(PreferencesWindowTest, closingHidesItAndItComesBack) {
  window_.makeKeyAndOrderFront();
  window_.close();
  EXPECT_FALSE(window_.isVisible());
  window_.makeKeyAndOrderFront();
  EXPECT_TRUE(window_.isVisible());
}

TEST_F(PreferencesWindowTest, onlyTheUserCallsTheActionOfTheCheckBox) {
  int calls = 0;
  bool stateInAction = false;
  window_.setAuthorizeRootButtonAction([&] {
    ++calls;
    stateInAction = window_.authorizeRootButtonState();
  });
  window_.setAuthorizeRootButtonState(true);
  window_.setAuthorizeRootButtonState(false);
  EXPECT_EQ(calls, 0);
  window_.makeKeyAndOrderFront();
  box().setFocus();
  QTest::keyClick(&box(), Qt::Key_Space);
  EXPECT_EQ(calls, 1);
  EXPECT_TRUE(stateInAction);
  window_.setAuthorizeRootButtonAction(nullptr);
  QTest::keyClick(&box(), Qt::Key_Space);
  EXPECT_FALSE(window_.authorizeRootButtonState());
}

TEST_F(PreferencesWindowTest, textsCanBeReadOnEveryBackground) {
  struct Background {
    double red, green, blue;
  };
  for (const Background& background : {Background{1.0, 1.0, 1.0}, Background{0.11, 0.12, 0.13}}) {
    window_.setBackgroundColor(background.red, background.green, background.blue);
    const QColor shown = window_.grab().toImage().pixelColor(2, 2);
    EXPECT_NEAR(shown.redF(), background.red, 0.005);
    EXPECT_NEAR(shown.blueF(), background.blue, 0.005);
    for (const QWidget* widget : window_.findChildren<QWidget*>()) {
      const QColor text = widget->palette().color(QPalette::WindowText);
      EXPECT_GT(std::abs(text.lightnessF() - shown.lightnessF()), 0.6F)
          << widget->objectName().toStdString();
    }
  }
}

}  // namespace
}  // namespace tavrin
