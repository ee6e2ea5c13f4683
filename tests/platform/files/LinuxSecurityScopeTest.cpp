#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <functional>
#include <set>
#include <thread>

#include "platform/linux/Bookmark.h"
#include "platform/linux/LinuxSecurityScope.h"
#include "tests/platform/files/PickedItem.h"
#include "tests/support/FakeLog.h"
#include "tests/support/ScratchFolder.h"

namespace tavrin {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
namespace fs = std::filesystem;

class LinuxSecurityScopeTest : public ::testing::Test {
 protected:
  LinuxSecurityScopeTest() { fs::create_directory(grant()); }

  std::string grant() const { return scratch_ / "grant"; }
  FileURL grantURL() const { return FileURL::fileURLWithPath(grant()); }
  std::string keys() const { return scratch_ / "config/keys"; }
  std::string keyFile() const { return keys() + "/bookmark.key"; }

  std::unique_ptr<LinuxSecurityScope> launch() {
    return std::make_unique<LinuxSecurityScope>(LinuxSecurityScope::Locations{keys(), "", ""},
                                                log_);
  }

  PropertyList::Data bookmarkOfGrant() {
    const auto scope = launch();
    EXPECT_TRUE(grantByPicking(*scope, grant()));
    const auto bookmark = scope->bookmarkDataForURL(grantURL());
    EXPECT_TRUE(bookmark);
    return bookmark ? bookmark.value() : PropertyList::Data();
  }

  static mode_t modeOf(const std::string& path) {
    struct stat status {};
    EXPECT_EQ(::lstat(path.c_str(), &status), 0);
    return status.st_mode & 07777;
  }

  static FileIdentity identityOf(const std::string& path) {
    const auto identity = identityAtPath(path);
    EXPECT_TRUE(identity);
    return identity ? identity.value() : FileIdentity();
  }

  testing::ScratchFolder scratch_;
  FakeLog log_;
};

TEST_F(LinuxSecurityScopeTest, LogsWhyABookmarkDoesNotResolve) {
  const auto bookmark = bookmarkOfGrant();
  const auto scope = launch();
  auto forged = bookmark;
  forged[forged.size() / 2] ^= 1U;
  EXPECT_FALSE(scope->urlByResolvingBookmarkData({}).url);
  EXPECT_FALSE(scope->urlByResolvingBookmarkData({'T', 'v', 'B', 'm', 2, 0}).url);
  EXPECT_FALSE(scope->urlByResolvingBookmarkData({'T', 'v', 'B', 'm', 1, 0}).url);
  EXPECT_FALSE(scope->urlByResolvingBookmarkData(forged).url);
  fs::remove(grant());
  EXPECT_FALSE(scope->urlByResolvingBookmarkData(bookmark).url);
  EXPECT_THAT(log_.lines(), ElementsAre(HasSubstr("not a bookmark"), HasSubstr("unknown version"),
                                        HasSubstr("too short"), HasSubstr("forged"),
                                        HasSubstr(grant() + ": No such file")));
}

TEST_F(LinuxSecurityScopeTest, TellsAFolderFromAnEarlierOneWithItsInodeNumber) {
  struct statx status {};
  ASSERT_EQ(::statx(AT_FDCWD, grant().c_str(), 0, STATX_BTIME, &status), 0);
  if ((status.stx_mask & STATX_BTIME) == 0) GTEST_SKIP() << "no birth times here";
  const FileIdentity present = identityOf(grant());
  EXPECT_EQ(present.birthTime / 1'000'000'000, status.stx_btime.tv_sec);
  // When a file system uses a number again is up to it: the bookmark of the earlier folder is made
  // by hand.
  FileIdentity earlier = present;
  earlier.birthTime -= 1;
  const auto key = BookmarkKey(keys(), log_).bytes();
  ASSERT_TRUE(key);
  const auto scope = launch();
  EXPECT_FALSE(
      scope->urlByResolvingBookmarkData(sealBookmark({grant(), present}, key.value())).isStale);
  const ResolvedBookmark resolved =
      scope->urlByResolvingBookmarkData(sealBookmark({grant(), earlier}, key.value()));
  EXPECT_EQ(resolved.url, grantURL());
  EXPECT_TRUE(resolved.isStale);
}

TEST_F(LinuxSecurityScopeTest, ResolvesStaleWhenTheFolderWasDeletedAndMadeAgain) {
  const auto bookmark = bookmarkOfGrant();
  const FileIdentity before = identityOf(grant());
  // The clock of a file system ticks every few milliseconds only.
  for (int attempt = 0; attempt < 10'000; ++attempt) {
    fs::remove(grant());
    fs::create_directory(grant());
    if (identityOf(grant()) != before) break;
  }
  EXPECT_TRUE(launch()->urlByResolvingBookmarkData(bookmark).isStale);
}

TEST_F(LinuxSecurityScopeTest, FollowsNoLinkThatCameIntoThePathOfABookmark) {
  const std::string parent = scratch_ / "parent";
  fs::create_directories(parent + "/folder");
  const FileURL url = FileURL::fileURLWithPath(parent + "/folder");
  auto scope = launch();
  ASSERT_TRUE(grantByPicking(*scope, url.path()));
  const auto bookmark = scope->bookmarkDataForURL(url);
  ASSERT_TRUE(bookmark);
  fs::rename(parent, scratch_ / "moved");
  fs::create_directory_symlink("moved", parent);
  scope = launch();
  const ResolvedBookmark resolved = scope->urlByResolvingBookmarkData(bookmark.value());
  EXPECT_FALSE(resolved.url);
  EXPECT_FALSE(resolved.isStale);
  EXPECT_THAT(log_.lines(), ElementsAre(HasSubstr("bookmark does not resolve")));
}

TEST_F(LinuxSecurityScopeTest, GrantsTheItemThatWasTakenAndNotWhatCameToItsPath) {
  const std::string outside = scratch_ / "outside";
  fs::create_directory(outside);
  const auto picked = ScopeGrant::open(grant());
  ASSERT_TRUE(picked);
  fs::rename(grant(), scratch_ / "moved");
  fs::create_directory_symlink("outside", grant());
  const auto scope = launch();
  scope->grantByPicking(picked.value());
  for (const std::string& folder : {grant(), outside}) {
    const auto located = scope->startedScopes().locate(folder + "/new", ScopeAccess::Change);
    ASSERT_FALSE(located) << folder;
    EXPECT_EQ(located.error().code, std::errc::permission_denied);
  }
  EXPECT_FALSE(scope->bookmarkDataForURL(grantURL()));
  fs::remove(grant());
  fs::rename(scratch_ / "moved", grant());
  EXPECT_TRUE(scope->startedScopes().locate(grant() + "/new", ScopeAccess::Change));
  EXPECT_TRUE(scope->bookmarkDataForURL(grantURL()));
}

TEST_F(LinuxSecurityScopeTest, KeepsTheKeyForTheUserAlone) {
  bookmarkOfGrant();
  EXPECT_EQ(modeOf(keyFile()), 0600U);
  EXPECT_EQ(modeOf(keys()), 0700U);
  EXPECT_EQ(fs::file_size(keyFile()), 32U);
  EXPECT_EQ(std::distance(fs::directory_iterator(keys()), fs::directory_iterator()), 1);
}

TEST_F(LinuxSecurityScopeTest, SetsADamagedKeyAside) {
  const std::string other = scratch_ / "other";
  const std::vector<std::function<void()>> damages = {
      [&] { fs::resize_file(keyFile(), 31); },
      [&] { fs::resize_file(keyFile(), 33); },
      [&] { fs::resize_file(keyFile(), 0); },
      [&] { fs::permissions(keyFile(), fs::perms::group_read, fs::perm_options::add); },
      [&] {
        fs::rename(keyFile(), other);
        fs::create_symlink(other, keyFile());
      },
      [&] {
        fs::remove(keyFile());
        ASSERT_EQ(::mkfifo(keyFile().c_str(), 0600), 0);
      },
  };
  for (const auto& damage : damages) {
    const auto bookmark = bookmarkOfGrant();
    damage();
    const std::size_t linesBefore = log_.lines().size();
    EXPECT_FALSE(launch()->urlByResolvingBookmarkData(bookmark).url);
    ASSERT_EQ(log_.lines().size(), linesBefore + 2);
    EXPECT_THAT(log_.lines()[linesBefore], HasSubstr("damaged"));
    EXPECT_TRUE(fs::exists(fs::symlink_status(keyFile() + ".damaged")));
    EXPECT_EQ(fs::file_size(keyFile()), 32U);
    EXPECT_TRUE(launch()->urlByResolvingBookmarkData(bookmarkOfGrant()).url);
  }
}

TEST_F(LinuxSecurityScopeTest, MakesNoBookmarkWithoutAPlaceForTheKey) {
  std::ofstream(scratch_ / "config") << "a file where a folder should be";
  const auto scope = launch();
  ASSERT_TRUE(grantByPicking(*scope, grant()));
  const auto bookmark = scope->bookmarkDataForURL(grantURL());
  ASSERT_FALSE(bookmark);
  EXPECT_EQ(bookmark.error().code, std::errc::not_a_directory);
  EXPECT_FALSE(scope->urlByResolvingBookmarkData({1, 2, 3}).url);
  EXPECT_EQ(log_.lines().size(), 1U);
}

TEST_F(LinuxSecurityScopeTest, LetsProcessesThatMakeTheKeyAtOnceAgree) {
  constexpr int rounds = 20;
  constexpr int processes = 6;
  for (int round = 0; round < rounds; ++round) {
    const std::string folder = keys() + std::to_string(round);
    int gate[2] = {-1, -1};
    int answers[2] = {-1, -1};
    ASSERT_EQ(::pipe(gate), 0);
    ASSERT_EQ(::pipe(answers), 0);
    for (int process = 0; process < processes; ++process) {
      if (::fork() != 0) continue;
      ::close(gate[1]);
      char end = 0;
      // All wait until the last writer of the gate has closed it.
      [[maybe_unused]] const ssize_t count = ::read(gate[0], &end, 1);
      const auto key = BookmarkKey(folder, log_).bytes();
      const bool isTold = key && ::write(answers[1], key.value().data(), key.value().size()) ==
                                     static_cast<ssize_t>(key.value().size());
      ::_exit(isTold ? 0 : 1);
    }
    ::close(gate[0]);
    ::close(gate[1]);
    for (int process = 0; process < processes; ++process) {
      int status = -1;
      ::wait(&status);
      EXPECT_EQ(status, 0);
    }
    ::close(answers[1]);
    std::set<BookmarkKey::Bytes> keysMade;
    BookmarkKey::Bytes key{};
    while (::read(answers[0], key.data(), key.size()) == static_cast<ssize_t>(key.size())) {
      keysMade.insert(key);
    }
    ::close(answers[0]);
    EXPECT_EQ(keysMade.size(), 1U);
    EXPECT_EQ(BookmarkKey(folder, log_).bytes().value(), key);
  }
}

TEST_F(LinuxSecurityScopeTest, MayBeUsedOnSeveralThreads) {
  const auto bookmark = bookmarkOfGrant();
  const auto scope = launch();
  std::array<std::thread, 4> threads;
  for (std::thread& thread : threads) {
    thread = std::thread([&] {
      for (int round = 0; round < 100; ++round) {
        EXPECT_EQ(scope->urlByResolvingBookmarkData(bookmark).url, grantURL());
        EXPECT_TRUE(scope->startAccessingSecurityScopedResource(grantURL()));
        EXPECT_TRUE(scope->startedScopes().locate(grant() + "/new", ScopeAccess::Change));
        EXPECT_TRUE(scope->bookmarkDataForURL(grantURL()));
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
}

}  // namespace
}  // namespace tavrin
