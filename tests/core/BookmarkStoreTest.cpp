#include <gtest/gtest.h>

#include <set>
#include <string>

#include "sandbox/AppSandboxFileAccessOpenSavePanelDelegate.h"
#include "sandbox/AppSandboxFileAccessPersist.h"
#include "tests/support/FakeUserDefaults.h"

namespace tavrin {
namespace {

FileURL urlOf(const std::string& path) {
  return FileURL::fileURLWithPath(path);
}

PropertyList::Data dataOf(const std::string& text) {
  return {text.begin(), text.end()};
}

class BookmarkStore : public testing::Test {
 protected:
  std::string lookUp(const std::string& path) const {
    const auto data = store_.bookmarkDataForURL(urlOf(path));
    return data ? std::string(data->begin(), data->end()) : "(nothing)";
  }

  void store(const std::string& path) { store_.setBookmarkData(dataOf(path), urlOf(path)); }

  std::set<std::string> storedPaths(const char* key) const {
    std::set<std::string> paths;
    for (const auto& [path, data] : defaults_->dictionaryForKey(key)) paths.insert(path);
    return paths;
  }

  FakeUserDefaultsProvider provider_;
  std::unique_ptr<UserDefaults> defaults_ = provider_.standardUserDefaults();
  AppSandboxFileAccessPersist store_{*defaults_};
};

using Paths = std::set<std::string>;

TEST_F(BookmarkStore, FindsTheNearestStoredAncestor) {
  EXPECT_EQ(lookUp("/a/b/c"), "(nothing)");
  store("/a");
  EXPECT_EQ(lookUp("/a"), "/a");
  EXPECT_EQ(lookUp("/a/b/c"), "/a");
  EXPECT_EQ(lookUp("/ab"), "(nothing)");
  EXPECT_EQ(lookUp("/A"), "(nothing)");
  store("/a/b");
  EXPECT_EQ(lookUp("/a/b/c"), "/a/b");
  EXPECT_EQ(lookUp("/a/c"), "/a");
}

TEST_F(BookmarkStore, LooksUpTheRootBeforeItGivesUp) {
  store("/");
  EXPECT_EQ(lookUp("/any/where"), "/");
  EXPECT_EQ(lookUp("/"), "/");
}

TEST_F(BookmarkStore, DropsWhatIsBelowAStoredFolder) {
  for (const char* path : {"/a", "/a/b", "/a/b/c", "/ab", "/b"}) store(path);
  store("/a");
  EXPECT_EQ(storedPaths("cachedBookmarks"), (Paths{"/a", "/ab", "/b"}));
  store("/");
  EXPECT_EQ(storedPaths("cachedBookmarks"), Paths{"/"});
}

TEST_F(BookmarkStore, ClearsOnlyUnderTheKeyThatNobodyReads) {
  store("/a");
  store("/b");
  store_.clearBookmarkDataForURL(urlOf("/a"));
  EXPECT_EQ(storedPaths("cachedBookmarks"), (Paths{"/a", "/b"}));
  EXPECT_EQ(storedPaths("cacheBookmarks"), Paths{"/b"});
}

TEST_F(BookmarkStore, TakesAnythingElseThanADictionaryForEmpty) {
  defaults_->setObject("no dictionary", "cachedBookmarks");
  EXPECT_EQ(lookUp("/a"), "(nothing)");
  defaults_->setObject(PropertyList::Dictionary{{"/a", "no data"}, {"/", dataOf("root")}},
                       "cachedBookmarks");
  EXPECT_EQ(lookUp("/a/b"), "root");
}

TEST_F(BookmarkStore, KeepsPathsThatAreNoUTF8) {
  store("/\xff\xfe");
  EXPECT_EQ(lookUp("/\xff\xfe/a"), "/\xff\xfe");
}

TEST_F(BookmarkStore, NamesAURLByItsWrittenForm) {
  EXPECT_EQ(AppSandboxFileAccessPersist::keyForBookmarkDataForURL(urlOf("/tmp")), "file:///tmp");
}

TEST(PanelRule, EnablesTheItemAndItsAncestorsOnly) {
  const AppSandboxFileAccessOpenSavePanelDelegate rule(urlOf("/home/ann/docs"));
  for (const char* path : {"/", "/home", "/home/ann", "/home/ann/docs"}) {
    EXPECT_TRUE(rule.panelShouldEnableURL(urlOf(path))) << path;
  }
  for (const char* path : {"/home/ann/docs/a", "/home/ann/Docs", "/home/bob", "/hom", "/home/an"}) {
    EXPECT_FALSE(rule.panelShouldEnableURL(urlOf(path))) << path;
  }
}

}  // namespace
}  // namespace tavrin
