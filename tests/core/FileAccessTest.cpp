#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "sandbox/AppSandboxFileAccess.h"
#include "sandbox/NSAlertSynchronousSheet.h"
#include "sandbox/NSPanels.h"
#include "tests/support/FakePlatform.h"

namespace tavrin {
namespace {

FileURL urlOf(const std::string& path) {
  return FileURL::fileURLWithPath(path);
}

class FileAccess : public testing::Test {
 protected:
  void SetUp() override {
    system_.fileManager.addFile("/home/ada/docs/a.txt", "a");
    system_.fileManager.addFolder("/home/ada/music");
  }

  /// Whether access to a path is obtained without any panel.
  bool accessWithoutPanel(const std::string& path) {
    const std::size_t shownBefore = system_.panels.shown.size();
    bool ran = false;
    const bool obtained = access_.accessFilePath(path, PersistPermission::Yes, [&] { ran = true; });
    EXPECT_EQ(obtained, ran);
    return obtained && system_.panels.shown.size() == shownBefore;
  }

  void grant(const std::string& path) {
    system_.panels.answerWithPath(path);
    ASSERT_TRUE(access_.accessFilePath(path, PersistPermission::Yes, [] {}));
  }

  PropertyList::Dictionary stored(const char* key = "cachedBookmarks") const {
    return defaults_->dictionaryForKey(key);
  }

  FakePlatform system_;
  std::unique_ptr<UserDefaults> defaults_ = system_.userDefaults.standardUserDefaults();
  AppSandboxFileAccess access_{system_.platform, *defaults_, "\n%@ asks, %@ waits.\n"};
};

TEST_F(FileAccess, SetsThePanelUpAndTakesTheFirstPlaceholderForTheName) {
  access_.accessFilePath("/home/ada/docs", PersistPermission::Yes, [] {});
  ASSERT_EQ(system_.panels.shown.size(), 1U);
  const PanelSettings& panel = system_.panels.shown.front();
  EXPECT_EQ(panel.title, "Allow Access");
  EXPECT_EQ(panel.prompt, "Authorization");
  EXPECT_EQ(panel.accessoryText, "\nTavrin asks, %@ waits.\n");
  EXPECT_EQ(panel.canCreateDirectories, false);
  EXPECT_EQ(panel.canChooseFiles, true);
  EXPECT_EQ(panel.canChooseDirectories, true);
  EXPECT_EQ(panel.allowsMultipleSelection, false);
  EXPECT_EQ(panel.showsHiddenFiles, false);
  EXPECT_EQ(panel.extensionHidden, false);
  EXPECT_EQ(panel.directory, urlOf("/home/ada/docs"));
  EXPECT_EQ(system_.application.activations, 1);
}

TEST_F(FileAccess, NamesTheBundleWhereThereIsNoDisplayName) {
  system_.bundle.information = {{"CFBundleName", "tavrin-bundle"}};
  EXPECT_EQ(AppSandboxFileAccess(system_.platform, *defaults_, "%@!").message, "tavrin-bundle!");
}

TEST_F(FileAccess, OpensThePanelInTheNearestExistingFolder) {
  for (const auto& [wanted, shown] : std::vector<std::pair<std::string, std::string>>{
           {"/home/ada/docs/new/deep.txt", "/home/ada/docs"},
           {"/nowhere/at/all", "/"},
           {"file:///home/ada", "/"},
           {"/home/ada/docs/a.txt", "/home/ada/docs/a.txt"}}) {
    access_.accessFilePath(wanted, PersistPermission::Yes, [] {});
    EXPECT_EQ(system_.panels.shown.back().directory, urlOf(shown)) << wanted;
  }
}

TEST_F(FileAccess, CancelReturnsFalseAndLeavesEverythingUndone) {
  bool ran = false;
  EXPECT_FALSE(
      access_.accessFilePath("/home/ada/docs", PersistPermission::Yes, [&] { ran = true; }));
  EXPECT_FALSE(ran);
  EXPECT_TRUE(stored().empty());
  EXPECT_TRUE(system_.securityScope.startedPaths().empty());
}

TEST_F(FileAccess, APickIsStoredAndServesTheFolderAndAllBelowLater) {
  system_.panels.answerWithPath("/home/ada");
  FileURL given = urlOf("/");
  EXPECT_TRUE(access_.requestAccessPermissionsForFilePath(
      "/home/ada/docs", PersistPermission::Yes, [&](const FileURL& url, const auto& bookmark) {
        given = url;
        EXPECT_TRUE(bookmark.has_value());
      }));
  EXPECT_EQ(given.path(), "/home/ada");
  EXPECT_EQ(stored().count("/home/ada"), 1U);
  EXPECT_TRUE(accessWithoutPanel("/home/ada/music"));
  EXPECT_FALSE(accessWithoutPanel("/home"));

  access_.requestAccessPermissionsForFilePath(
      "/home/ada/docs", PersistPermission::Yes,
      [&](const FileURL& url, const auto&) { given = url; });
  EXPECT_EQ(given.path(), "/home/ada");
}

TEST_F(FileAccess, TheRootsGrantServesEverything) {
  grant("/");
  EXPECT_TRUE(accessWithoutPanel("/home/ada/docs"));
  EXPECT_TRUE(accessWithoutPanel("file:///home/ada/docs"));
  EXPECT_EQ(stored().size(), 1U);
}

TEST_F(FileAccess, NormalisesThePathBeforeItAsks) {
  system_.fileManager.addSymlink("/link", "/home/ada");
  grant("/home/ada");
  EXPECT_TRUE(accessWithoutPanel("/link/docs"));
  EXPECT_TRUE(accessWithoutPanel("/elsewhere/../home/./ada/docs/"));
}

TEST_F(FileAccess, APathThatIsAbsurdlyLongGetsNoAccess) {
  grant("/");
  std::string path;
  while (path.size() < 10'000'000) path += "/a";
  EXPECT_FALSE(access_.accessFilePath(path, PersistPermission::Yes, [] {}));
  EXPECT_EQ(system_.panels.shown.size(), 1U);
  EXPECT_LT(system_.log.lines().back().size(), 100U);
  EXPECT_TRUE(accessWithoutPanel(path.substr(0, 20'000)));
}

TEST_F(FileAccess, WithTheFlagOffTheBlockRunsWithoutABookmark) {
  system_.panels.answerWithPath("/home/ada/docs");
  bool ran = false;
  EXPECT_TRUE(access_.requestAccessPermissionsForFilePath(
      "/home/ada/docs", PersistPermission::No, [&](const FileURL& url, const auto& bookmark) {
        ran = true;
        EXPECT_EQ(url.path(), "/home/ada/docs");
        EXPECT_FALSE(bookmark.has_value());
      }));
  EXPECT_TRUE(ran);
  EXPECT_TRUE(stored().empty());
}

TEST_F(FileAccess, AStaleBookmarkIsMadeAnewEvenWithTheFlagOff) {
  grant("/home/ada/docs");
  const auto before = stored();
  system_.fileManager.renameItem("/home/ada/docs", "/home/ada/old");
  system_.fileManager.addFolder("/home/ada/docs");

  bool ran = false;
  EXPECT_TRUE(access_.accessFilePath("/home/ada/docs", PersistPermission::No, [&] { ran = true; }));
  EXPECT_TRUE(ran);
  EXPECT_EQ(system_.panels.shown.size(), 1U);
  EXPECT_NE(stored(), before);
  EXPECT_EQ(stored("cacheBookmarks").count("/home/ada/docs"), 0U);
  EXPECT_TRUE(accessWithoutPanel("/home/ada/docs"));
}

TEST_F(FileAccess, AStaleBookmarkThatCannotBeMadeAnewAsksAgain) {
  grant("/home/ada/docs");
  system_.fileManager.renameItem("/home/ada/docs", "/home/ada/old");
  system_.fileManager.addFolder("/home/ada/docs");
  system_.securityScope.failNextBookmark(std::errc::io_error);
  system_.panels.answerWithPath("/home/ada");
  EXPECT_TRUE(access_.accessFilePath("/home/ada/docs", PersistPermission::Yes, [] {}));
  EXPECT_EQ(system_.panels.shown.size(), 2U);
  EXPECT_EQ(stored().count("/home/ada"), 1U);
}

TEST_F(FileAccess, AnUnresolvableBookmarkIsHandedOnAndStays) {
  const PropertyList::Data forged = {'f', 'o', 'r', 'g', 'e', 'd'};
  defaults_->setObject(PropertyList::Dictionary{{"/home/ada", forged}}, "cachedBookmarks");
  system_.panels.answerWithPath("/home/ada/docs");
  EXPECT_TRUE(access_.requestAccessPermissionsForFilePath(
      "/home/ada/docs", PersistPermission::Yes, [&](const FileURL& url, const auto& bookmark) {
        EXPECT_EQ(url.path(), "/home/ada/docs");
        EXPECT_EQ(bookmark, forged);
      }));
  EXPECT_EQ(stored(), (PropertyList::Dictionary{{"/home/ada", forged}}));
}

TEST_F(FileAccess, ABookmarkThatCannotBeMadeStopsNothing) {
  system_.panels.answerWithPath("/home/ada/docs");
  system_.securityScope.failNextBookmark(std::errc::io_error);
  bool ran = false;
  EXPECT_TRUE(
      access_.accessFilePath("/home/ada/docs", PersistPermission::Yes, [&] { ran = true; }));
  EXPECT_TRUE(ran);
  EXPECT_TRUE(stored().empty());
  EXPECT_EQ(system_.log.lines().size(), 1U);
}

TEST_F(FileAccess, TheBlockRunsInsideTheGrantAndItsExceptionPassesThrough) {
  system_.panels.answerWithPath("/home/ada/docs");
  access_.accessFilePath("/home/ada/docs", PersistPermission::Yes, [&] {
    EXPECT_TRUE(bool(system_.fileManager.contentsAtPath("/home/ada/docs/a.txt")));
    EXPECT_FALSE(bool(system_.fileManager.contentsOfDirectoryAtPath("/home/ada/music")));
  });
  EXPECT_THROW(access_.accessFilePath("/home/ada/docs", PersistPermission::Yes,
                                      [] { throw std::runtime_error("block"); }),
               std::runtime_error);
  EXPECT_TRUE(access_.accessFilePath(
      "/home/ada/docs", [] {}, PersistPermission::Yes));
}

TEST_F(FileAccess, AnotherStoreCanTakeThePlaceUntilItIsTakenBackOrGone) {
  struct Store final : AppSandboxFileAccessProtocol {
    std::optional<PropertyList::Data> bookmarkDataForURL(const FileURL& url) const override {
      asked.push_back(url.path());
      return std::nullopt;
    }
    void setBookmarkData(const PropertyList::Data&, const FileURL&) override {}
    void clearBookmarkDataForURL(const FileURL&) override {}
    mutable std::vector<std::string> asked;
  };
  const auto ownStore = access_.bookmarkPersistanceDelegate();
  auto store = std::make_shared<Store>();
  access_.setBookmarkPersistanceDelegate(store);
  access_.accessFilePath("/home/ada/docs", PersistPermission::Yes, [] {});
  EXPECT_EQ(store->asked, std::vector<std::string>{"/home/ada/docs"});
  store.reset();
  EXPECT_EQ(access_.bookmarkPersistanceDelegate(), ownStore);
  access_.setBookmarkPersistanceDelegate(std::make_shared<Store>());
  access_.setBookmarkPersistanceDelegate(nullptr);
  EXPECT_EQ(access_.bookmarkPersistanceDelegate(), ownStore);
}

TEST_F(FileAccess, AFolderPanelReturnsItsPickOnlyOnConfirm) {
  std::vector<FileURL> picked;
  const auto show = [&] {
    NSPanels::openNSOpenPanelAtWindow(system_.panels, system_.bundle, nullptr, "",
                                      AllowsMultipleSelection::No, CanChooseFiles::No,
                                      [&](const std::vector<FileURL>& urls) { picked = urls; });
  };
  show();
  EXPECT_TRUE(system_.panels.shown.empty());
  system_.panels.endBegunPanel();
  EXPECT_TRUE(picked.empty());
  const PanelSettings& panel = system_.panels.shown.front();
  EXPECT_EQ(panel.prompt, "OK");
  EXPECT_EQ(panel.message, "");
  EXPECT_EQ(panel.canChooseDirectories, true);
  EXPECT_EQ(panel.canChooseFiles, false);
  EXPECT_EQ(panel.allowsMultipleSelection, false);

  system_.panels.answerWithPath("/home/ada/music");
  show();
  system_.panels.endBegunPanel();
  EXPECT_EQ(picked, std::vector<FileURL>{urlOf("/home/ada/music")});
}

TEST_F(FileAccess, ASynchronousSheetAnswersWithTheButtonsCode) {
  system_.alerts.answers = {1};
  const auto alert = system_.alerts.alert();
  alert->addButtonWithTitle("OK");
  alert->addButtonWithTitle("Cancel");
  EXPECT_EQ(runModalSheet(*alert, system_.mainLoop), 1001);
  EXPECT_TRUE(system_.alerts.shown.front().isSheet);
}

}  // namespace
}  // namespace tavrin
