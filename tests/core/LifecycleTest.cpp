#include <string>
#include <vector>

#include "tests/core/HostFixture.h"

namespace tavrin {
namespace {

class Lifecycle : public HostFixture {};

using Names = std::vector<std::string>;

TEST_F(Lifecycle, ALaunchByTheUserShowsTheWindowAfterItsDelay) {
  launch();
  system_.mainLoop.advance(0.39);
  EXPECT_EQ(window_.made, 0);
  system_.mainLoop.advance(0.02);
  EXPECT_TRUE(window_.visible);
  EXPECT_TRUE(window_.movable);
  EXPECT_GE(system_.application.activations, 2);
}

TEST_F(Lifecycle, ALaunchForARequestShowsNoWindowAndDoesNotPayForIt) {
  launch();
  host().applicationOpen("/no/such/request");
  system_.mainLoop.advance(1);
  EXPECT_TRUE(host().opened());
  EXPECT_EQ(window_.made, 0);
}

TEST_F(Lifecycle, ReopeningShowsTheWindowAgainAndClosingItLeavesTheHostRunning) {
  launch();
  system_.mainLoop.advance(1);
  window_.visible = false;
  EXPECT_FALSE(host().applicationShouldTerminateAfterLastWindowClosed());
  EXPECT_TRUE(host().applicationShouldHandleReopen(false));
  EXPECT_TRUE(window_.visible);
  EXPECT_EQ(window_.made, 1);
}

TEST_F(Lifecycle, OpeningTheWindowStartsTheTextService) {
  launch();
  host().openPreferences();
  system_.mainLoop.runPending();
  EXPECT_EQ(system_.workspace.launched, Names{"/opt/tavrin/lib/tavrin/TavrinService Pro.service"});
}

TEST_F(Lifecycle, TheStatusItemFollowsItsSetting) {
  standard_->setObject(true, settings_key::hiddenIconInStatusBar);
  launch();
  EXPECT_TRUE(system_.statusBar.items.empty());
  standard_->setObject(false, settings_key::hiddenIconInStatusBar);
  host().updateStatusBarItem();
  ASSERT_EQ(system_.statusBar.items.size(), 1U);
  const auto item = system_.statusBar.items.front();
  EXPECT_EQ(item->image, "menuIcon");
  EXPECT_TRUE(item->visible);
  standard_->setObject("YES", settings_key::hiddenIconInStatusBar);
  host().updateStatusBarItem();
  EXPECT_FALSE(item->visible);
  EXPECT_EQ(system_.statusBar.items.size(), 1U);
}

TEST_F(Lifecycle, ASettingChangedElsewhereReachesTheStatusItem) {
  launch();
  ASSERT_TRUE(system_.statusBar.items.front()->visible);
  system_.userDefaults.changeFromElsewhere(FakeUserDefaultsProvider::standardDomain,
                                           settings_key::hiddenIconInStatusBar, true);
  system_.userDefaults.processChanges();
  EXPECT_FALSE(system_.statusBar.items.front()->visible);
}

TEST_F(Lifecycle, TheMenuLeadsToTheWindowAndToTheEnd) {
  launch();
  const auto menu = system_.statusBar.items.front()->menu;
  menu.front().action();
  EXPECT_TRUE(window_.visible);
  menu.back().action();
  EXPECT_EQ(system_.application.terminations, 1);
}

TEST_F(Lifecycle, TheBackgroundFollowsTheAppearanceWhereTheSystemHasOne) {
  const std::vector<double> light = {1, 1, 1};
  const std::vector<double> dark = {0.11, 0.12, 0.13};
  const auto change = [&](const std::optional<PropertyList>& style) {
    standard_->setVolatileObject(style, "AppleInterfaceStyle");
    system_.distributedNotifications.postNotificationName("AppleInterfaceThemeChangedNotification");
  };
  launch();
  change("Dark");
  EXPECT_EQ(window_.made, 0);
  host().openPreferences();
  EXPECT_EQ(window_.background, dark);
  change(std::nullopt);
  EXPECT_EQ(window_.background, light);
  system_.capabilities.darkAppearance = false;
  change("Dark");
  EXPECT_EQ(window_.background, light);
}

TEST_F(Lifecycle, TheLoginItemIsSpokenOfOnceHoweverOftenTheWindowIsAskedFor) {
  system_.loginItems.items = {{"entry", system_.bundle.programPath}};
  launch();
  system_.alerts.whileShown = [this] { host().applicationShouldHandleReopen(false); };
  system_.alerts.answers = {0};
  system_.mainLoop.advance(1);
  EXPECT_EQ(system_.alerts.shown.size(), 1U);
  EXPECT_TRUE(system_.loginItems.items.empty());
  EXPECT_EQ(window_.made, 1);
}

TEST_F(Lifecycle, SleepEndsTheProcessAtOnce) {
  launch();
  try {
    system_.workspace.sleep();
    FAIL() << "the process went on";
  } catch (const FakeApplication::Exited& exited) {
    EXPECT_EQ(exited.status, 0);
  }
}

TEST_F(Lifecycle, QuittingAsksTheTextServiceToExitAndNamesWhatItLeavesUndone) {
  launch();
  host().applicationOpen("/waiting");
  host().applicationWillTerminate();
  EXPECT_EQ(system_.distributedNotifications.posted, Names{"ExitService"});
  EXPECT_EQ(system_.log.lines(), Names{"the program ends before the request /waiting"});
  system_.mainLoop.runPending();
  EXPECT_FALSE(host().opened());
}

TEST_F(Lifecycle, MissingSoundsAreSilent) {
  system_.bundle.resources.clear();
  serve({{"Action", "copyFilesTo"}, {"ToPath", "/x"}});
  EXPECT_TRUE(system_.sounds.played.empty());
}

class RootAuthorization : public HostFixture {
 protected:
  void click(bool on) {
    window_.rootAuthorized = on;
    window_.clicked();
  }
};

TEST_F(RootAuthorization, TheCheckBoxShowsWhetherTheRootIsTheFirstKey) {
  host().openPreferences();
  EXPECT_FALSE(window_.rootAuthorized);

  host_.reset();
  grant("/");
  host().openPreferences();
  EXPECT_TRUE(window_.rootAuthorized);

  host_.reset();
  standard_->setObject(PropertyList::Dictionary{}, "cachedBookmarks");
  host().openPreferences();
  EXPECT_FALSE(window_.rootAuthorized);
}

TEST_F(RootAuthorization, TurningItOnAsksForTheRootAndStoresIt) {
  host().openPreferences();
  system_.panels.answerWithPath("/");
  click(true);
  EXPECT_TRUE(window_.rootAuthorized);
  EXPECT_EQ(standard_->dictionaryForKey("cachedBookmarks").count("/"), 1U);
  EXPECT_EQ(system_.panels.shown.front().accessoryText,
            "\nPlease click \"Authorization\". no authorization needed in the future.\n");
}

TEST_F(RootAuthorization, CancellingTurnsItOffAgain) {
  host().openPreferences();
  click(true);
  EXPECT_FALSE(window_.rootAuthorized);
}

TEST_F(RootAuthorization, TurningItOffForgetsEveryGrant) {
  system_.fileManager.addFolder("/home/ada");
  grant("/home/ada");
  host().openPreferences();
  click(false);
  EXPECT_FALSE(standard_->objectForKey("cachedBookmarks").has_value());
}

}  // namespace
}  // namespace tavrin
