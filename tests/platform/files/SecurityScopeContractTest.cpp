#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/platform/files/FileWorld.h"

namespace tavrin {
namespace {

class SecurityScopeContract : public ::testing::TestWithParam<Implementation> {
 protected:
  SecurityScopeContract() { world_->addFile("grant/file", "text"); }

  SecurityScope& scopes() { return world_->scopes(); }
  std::string at(std::string_view path) const { return world_->at(path); }
  FileURL url(std::string_view path) const { return FileURL::fileURLWithPath(at(path)); }

  bool covers(const std::string& file) {
    return static_cast<bool>(world_->files().contentsAtPath(at(file)));
  }

  /// The bookmark of a picked item; the program has been started again since.
  PropertyList::Data bookmarkOf(const std::string& path) {
    EXPECT_TRUE(world_->pick(at(path)));
    const auto bookmark = scopes().bookmarkDataForURL(url(path));
    EXPECT_TRUE(bookmark);
    world_->relaunch(FileWorld::User::Same);
    return bookmark ? bookmark.value() : PropertyList::Data();
  }

  void expectNoResolution(const PropertyList::Data& bookmark) {
    const ResolvedBookmark resolved = scopes().urlByResolvingBookmarkData(bookmark);
    EXPECT_FALSE(resolved.url);
    EXPECT_FALSE(resolved.isStale);
    EXPECT_FALSE(scopes().startAccessingSecurityScopedResource(url("grant")));
    EXPECT_FALSE(covers("grant/file"));
  }

  std::unique_ptr<FileWorld> world_ = GetParam().make();
};

TEST_P(SecurityScopeContract, GrantsNothingThatWasNotPicked) {
  const auto refused = scopes().bookmarkDataForURL(url("grant"));
  ASSERT_FALSE(refused);
  EXPECT_EQ(refused.error().code, std::errc::permission_denied);
  EXPECT_FALSE(scopes().startAccessingSecurityScopedResource(url("grant")));
  EXPECT_FALSE(covers("grant/file"));
  const auto missing = scopes().bookmarkDataForURL(url("missing"));
  ASSERT_FALSE(missing);
  EXPECT_EQ(missing.error().code, std::errc::no_such_file_or_directory);
  EXPECT_FALSE(world_->pick(at("missing")));
}

TEST_P(SecurityScopeContract, StartsTheScopeOfWhatIsPickedAtOnce) {
  world_->addFile("beside", "text");
  EXPECT_TRUE(world_->pick(at("grant")));
  EXPECT_TRUE(covers("grant/file"));
  EXPECT_FALSE(covers("beside"));
  EXPECT_TRUE(scopes().startAccessingSecurityScopedResource(url("grant")));
  EXPECT_FALSE(scopes().bookmarkDataForURL(url("")));
}

TEST_P(SecurityScopeContract, OpensTheSameFolderAgainByItsBookmark) {
  const auto bookmark = bookmarkOf("grant");
  EXPECT_FALSE(scopes().startAccessingSecurityScopedResource(url("grant")));
  const ResolvedBookmark resolved = scopes().urlByResolvingBookmarkData(bookmark);
  EXPECT_EQ(resolved.url, url("grant"));
  EXPECT_FALSE(resolved.isStale);
  EXPECT_FALSE(covers("grant/file")) << "resolved but not started";
  EXPECT_TRUE(scopes().bookmarkDataForURL(url("grant")));
  EXPECT_TRUE(scopes().startAccessingSecurityScopedResource(url("grant")));
  EXPECT_TRUE(scopes().startAccessingSecurityScopedResource(url("grant")));
  EXPECT_TRUE(covers("grant/file"));
}

TEST_P(SecurityScopeContract, BookmarksFilesAndTheRootToo) {
  world_->addFile("grant/beside", "text");
  const auto bookmark = bookmarkOf("grant/file");
  EXPECT_EQ(scopes().urlByResolvingBookmarkData(bookmark).url, url("grant/file"));
  EXPECT_TRUE(scopes().startAccessingSecurityScopedResource(url("grant/file")));
  EXPECT_TRUE(covers("grant/file"));
  EXPECT_FALSE(covers("grant/beside"));

  const FileURL root = FileURL::fileURLWithPath("/");
  ASSERT_TRUE(world_->pick("/"));
  const auto rootBookmark = scopes().bookmarkDataForURL(root);
  ASSERT_TRUE(rootBookmark);
  world_->relaunch(FileWorld::User::Same);
  const ResolvedBookmark resolved = scopes().urlByResolvingBookmarkData(rootBookmark.value());
  EXPECT_EQ(resolved.url, root);
  EXPECT_FALSE(resolved.isStale);
  EXPECT_TRUE(scopes().startAccessingSecurityScopedResource(root));
  EXPECT_TRUE(covers("grant/beside"));
}

TEST_P(SecurityScopeContract, BookmarksWhatLiesBelowAStartedScope) {
  world_->addFile("grant/sub/file", "text");
  ASSERT_TRUE(world_->pick(at("grant")));
  EXPECT_TRUE(scopes().startAccessingSecurityScopedResource(url("grant/sub")));
  const auto bookmark = scopes().bookmarkDataForURL(url("grant/sub"));
  ASSERT_TRUE(bookmark);
  world_->relaunch(FileWorld::User::Same);
  EXPECT_EQ(scopes().urlByResolvingBookmarkData(bookmark.value()).url, url("grant/sub"));
  EXPECT_TRUE(scopes().startAccessingSecurityScopedResource(url("grant/sub")));
  EXPECT_TRUE(covers("grant/sub/file"));
  EXPECT_FALSE(covers("grant/file"));
}

TEST_P(SecurityScopeContract, GrantsWhereALinkLeads) {
  world_->addSymlink("link", "grant");
  ASSERT_TRUE(world_->pick(at("link")));
  EXPECT_TRUE(covers("grant/file"));
  const auto bookmark = scopes().bookmarkDataForURL(url("link"));
  ASSERT_TRUE(bookmark);
  EXPECT_EQ(scopes().urlByResolvingBookmarkData(bookmark.value()).url, url("grant"));
}

TEST_P(SecurityScopeContract, LetsNoLinkLeadAGrantElsewhere) {
  world_->addFile("parent/grant/file", "text");
  world_->addFile("outside/file", "text");
  for (const char* granted : {"grant", "parent/grant", "outside"}) {
    ASSERT_TRUE(world_->pick(at(granted)));
  }
  world_->renameItem("grant", "away");
  world_->addSymlink("grant", "outside");
  world_->renameItem("parent", "moved");
  world_->addSymlink("parent", "moved");
  for (const char* linked : {"grant", "parent/grant"}) {
    const auto refused = scopes().bookmarkDataForURL(url(linked));
    ASSERT_FALSE(refused) << linked;
    EXPECT_EQ(refused.error().code, std::errc::permission_denied);
    EXPECT_FALSE(scopes().startAccessingSecurityScopedResource(url(linked))) << linked;
  }
  world_->discardItem("grant");
  world_->renameItem("away", "grant");
  EXPECT_TRUE(scopes().bookmarkDataForURL(url("grant")));
  EXPECT_TRUE(scopes().startAccessingSecurityScopedResource(url("grant")));
}

TEST_P(SecurityScopeContract, ResolvesStaleWhenAnotherFolderStandsThere) {
  const auto bookmark = bookmarkOf("grant");
  world_->renameItem("grant", "away");
  world_->addFile("grant/file", "another's");
  const ResolvedBookmark resolved = scopes().urlByResolvingBookmarkData(bookmark);
  EXPECT_EQ(resolved.url, url("grant"));
  EXPECT_TRUE(resolved.isStale);
  const auto fresh = scopes().bookmarkDataForURL(url("grant"));
  ASSERT_TRUE(fresh);
  EXPECT_FALSE(scopes().urlByResolvingBookmarkData(fresh.value()).isStale);
  EXPECT_TRUE(scopes().startAccessingSecurityScopedResource(url("grant")));
  EXPECT_TRUE(covers("grant/file"));
}

TEST_P(SecurityScopeContract, TakesTheNewFolderWhenStartedAgain) {
  ASSERT_TRUE(world_->pick(at("grant")));
  const auto bookmark = scopes().bookmarkDataForURL(url("grant"));
  ASSERT_TRUE(bookmark);
  world_->renameItem("grant", "away");
  EXPECT_FALSE(scopes().startAccessingSecurityScopedResource(url("grant")));
  world_->addFile("grant/file", "new");
  EXPECT_FALSE(scopes().startAccessingSecurityScopedResource(url("grant")));
  EXPECT_FALSE(scopes().bookmarkDataForURL(url("grant")));
  EXPECT_TRUE(scopes().urlByResolvingBookmarkData(bookmark.value()).isStale);
  EXPECT_TRUE(scopes().startAccessingSecurityScopedResource(url("grant")));
  EXPECT_EQ(textOf(world_->files().contentsAtPath(at("grant/file"))), "new");
  EXPECT_FALSE(covers("away/file"));
}

TEST_P(SecurityScopeContract, ResolvesNothingWhenTheFolderIsMissing) {
  const auto bookmark = bookmarkOf("grant");
  world_->renameItem("grant", "away");
  expectNoResolution(bookmark);
  world_->addSymlink("grant", "away");
  expectNoResolution(bookmark);
  world_->discardItem("grant");
  world_->renameItem("away", "grant");
  EXPECT_FALSE(scopes().urlByResolvingBookmarkData(bookmark).isStale);
  EXPECT_TRUE(scopes().startAccessingSecurityScopedResource(url("grant")));
}

TEST_P(SecurityScopeContract, ResolvesNoDamagedBookmark) {
  const auto bookmark = bookmarkOf("grant");
  for (std::size_t length = 0; length < bookmark.size(); ++length) {
    expectNoResolution({bookmark.begin(), bookmark.begin() + static_cast<std::ptrdiff_t>(length)});
    auto changed = bookmark;
    changed[length] = static_cast<std::uint8_t>(changed[length] ^ 1U);
    expectNoResolution(changed);
  }
  auto extended = bookmark;
  extended.push_back(0);
  expectNoResolution(extended);
  extended.insert(extended.end(), bookmark.begin(), bookmark.end());
  expectNoResolution(extended);
  EXPECT_TRUE(scopes().urlByResolvingBookmarkData(bookmark).url);
}

TEST_P(SecurityScopeContract, ResolvesNoBookmarkOfAnotherUser) {
  const auto bookmark = bookmarkOf("grant");
  world_->relaunch(FileWorld::User::Other);
  expectNoResolution(bookmark);
}

INSTANTIATE_TEST_SUITE_P(Scopes, SecurityScopeContract, ::testing::ValuesIn(implementations),
                         ::testing::PrintToStringParamName());

}  // namespace
}  // namespace tavrin
