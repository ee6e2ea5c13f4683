#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QTest>
#include <memory>

#include "platform/linux/LinuxStatusItem.h"
#include "tests/platform/desktop/qt/FakeDesktopServices.h"

namespace tavrin {
namespace {

using test::FakeStatusNotifierWatcher;

class LinuxStatusItemTest : public testing::Test {
 protected:
  LinuxStatusItemTest() {
    item_.setTemplateImageNamed("menuIcon");
    item_.setMenu({{"Open", [] {}}, {"", nullptr}, {"Quit", [] {}}});
  }

  bool waitForItem(bool isInStatusBar) {
    return QTest::qWaitFor([&] { return item_.isInStatusBar() == isInStatusBar; });
  }
  /// Whether the item is still as it was once the bus has settled.
  bool staysAway() {
    QTest::qWait(150);
    return !item_.isInStatusBar();
  }

  LinuxStatusItem item_{TAVRIN_TEST_ICONS};
};

TEST_F(LinuxStatusItemTest, appearsOnlyOnceTheBarIsThereAndFollowsIt) {
  item_.setVisible(true);
  EXPECT_TRUE(item_.isVisible());
  EXPECT_TRUE(staysAway());
  auto watcher = std::make_unique<FakeStatusNotifierWatcher>(true);
  EXPECT_TRUE(waitForItem(true));
  watcher.reset();
  EXPECT_TRUE(waitForItem(false));
  EXPECT_TRUE(item_.isVisible());
  watcher = std::make_unique<FakeStatusNotifierWatcher>(true);
  EXPECT_TRUE(waitForItem(true));
}

TEST_F(LinuxStatusItemTest, waitsForAHostBesideTheWatcher) {
  FakeStatusNotifierWatcher watcher(false);
  item_.setVisible(true);
  EXPECT_TRUE(staysAway());
  watcher.registerHost();
  EXPECT_TRUE(waitForItem(true));
}

TEST_F(LinuxStatusItemTest, isThereOnlyWhileWanted) {
  const FakeStatusNotifierWatcher watcher(true);
  EXPECT_TRUE(staysAway());
  item_.setVisible(true);
  EXPECT_TRUE(waitForItem(true));
  item_.setVisible(false);
  EXPECT_FALSE(item_.isInStatusBar());
  EXPECT_FALSE(item_.isVisible());
}

}  // namespace
}  // namespace tavrin
