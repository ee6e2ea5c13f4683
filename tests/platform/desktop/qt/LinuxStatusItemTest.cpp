#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QMenu>
#include <QStringList>
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

/// The labels of the one menu that there is.
QList<QAction*> menuItems() {
  for (QWidget* widget : QApplication::topLevelWidgets()) {
    if (const auto* menu = qobject_cast<QMenu*>(widget)) return menu->actions();
  }
  return {};
}

std::vector<std::string> menuLabels() {
  // A menu that was replaced goes with the next turn of the loop.
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  std::vector<std::string> labels;
  for (const QAction* item : menuItems()) labels.push_back(item->text().toStdString());
  return labels;
}

TEST(StatusBarWorkTest, theMenuBeginsWithACancelWhileSomethingRuns) {
  LinuxStatusBar bar{TAVRIN_TEST_ICONS};
  const auto item = bar.statusItem();
  item->setMenu({{"Open", [] {}}});
  int cancels = 0;
  ShownWork work{OperationKind::Remove, "/item"};
  bar.show(work, [&] { ++cancels; });
  EXPECT_THAT(menuLabels(), testing::ElementsAre("Cancel Deleting", "", "Open"));
  QAction* cancel = menuItems().front();
  work.isCancelled = true;
  QObject::connect(cancel, &QAction::triggered, cancel, [&] { bar.show(work, [] {}); });
  cancel->trigger();
  EXPECT_EQ(cancels, 1);
  EXPECT_EQ(menuItems().front(), cancel);
  EXPECT_FALSE(cancel->isEnabled());

  item->setMenu({{"Other", [] {}}});
  EXPECT_THAT(menuLabels(), testing::ElementsAre("Cancel Deleting", "", "Other"));
  bar.end(WorkEnd::Cancelled);
  EXPECT_THAT(menuLabels(), testing::ElementsAre("Other"));
  work.isCancelled = false;
  bar.show(work, [] {});
  EXPECT_TRUE(menuItems().front()->isEnabled());
}

TEST(StatusBarWorkTest, anItemThatComesMeanwhileShowsItToo) {
  LinuxStatusBar bar{TAVRIN_TEST_ICONS};
  bar.show({OperationKind::Copy, "/item"}, [] {});
  {
    const auto item = bar.statusItem();
    item->setMenu({{"Open", [] {}}});
    EXPECT_THAT(menuLabels(), testing::ElementsAre("Cancel Copying", "", "Open"));
  }
  bar.end(WorkEnd::Done);
  EXPECT_THAT(menuLabels(), testing::IsEmpty());
}

}  // namespace
}  // namespace tavrin
