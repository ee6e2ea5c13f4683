#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <fstream>

#include "platform/linux/LinuxFileManager.h"
#include "tests/platform/files/PickedItem.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/FakeLog.h"
#include "tests/support/ScratchFolder.h"
#include "tests/support/TreeBuilder.h"
#include "tests/support/TreeSnapshot.h"

namespace tavrin {
namespace {

using ::testing::UnorderedElementsAre;
using Intermediates = FileManager::IntermediateDirectories;
namespace fs = std::filesystem;

class LinuxFileManagerTest : public ::testing::Test {
 protected:
  void pick(const std::string& path) { ASSERT_TRUE(grantByPicking(scopes_, path)); }

  /// 40 folders in each other, of 200 bytes each: longer than any path a system call takes.
  static std::string deepPath(const std::string& path) {
    std::string deep = path;
    for (int level = 0; level < 40; ++level) deep += "/" + std::string(200, 'd');
    return deep;
  }

  testing::ScratchFolder scratch_;
  testing::TreeBuilder tree_{scratch_.path()};
  FakeLog log_;
  LinuxSecurityScope scopes_{{scratch_ / "keys", scratch_ / "data/group", ""}, log_};
  LinuxFileManager files_{scopes_, log_, scratch_ / "data"};
};

TEST_F(LinuxFileManagerTest, TakesPathsOfAnyLength) {
  tree_.nestedFolders("top", 40, std::string(200, 'd'));
  tree_.symbolicLink("entrance", "top");
  const std::string deep = deepPath(scratch_ / "top");
  const std::string throughLink = deepPath(scratch_ / "entrance");
  EXPECT_TRUE(files_.fileExistsAtPath(deep));
  EXPECT_TRUE(files_.isDirectoryAtPath(throughLink));
  EXPECT_FALSE(files_.fileExistsAtPath(deep + "/missing"));
  EXPECT_FALSE(files_.fileExistsAtPath("/" + std::string(10'000, 'x')));
  EXPECT_EQ(files_.resolvingSymlinksInPath(throughLink + "/missing"), deep + "/missing");

  EXPECT_EQ(files_.createFileAtPath(deep + "/new", {}, FileManager::Replace::No).error().code,
            std::errc::permission_denied);
  pick(scratch_ / "top");
  EXPECT_TRUE(files_.createFileAtPath(throughLink + "/new", {'n'}, FileManager::Replace::No));
  EXPECT_TRUE(files_.createDirectoryAtPath(throughLink + "/a/b", Intermediates::Create));
  EXPECT_TRUE(files_.moveItemAtPath(deep + "/new", throughLink + "/a/b/moved"));
  EXPECT_TRUE(files_.copyItemAtPath(deep + "/a", scratch_ / "top/copy"));
  EXPECT_EQ(files_.contentsAtPath(scratch_ / "top/copy/b/moved").value(), PropertyList::Data{'n'});
  EXPECT_TRUE(files_.removeItemAtPath(deep + "/a"));
}

TEST_F(LinuxFileManagerTest, GrantsFoldersAtPathsOfAnyLength) {
  tree_.nestedFolders("top", 40, std::string(200, 'd'));
  const std::string deep = deepPath(scratch_ / "top");
  const FileURL url = FileURL::fileURLWithPath(deep);
  pick(deep);
  EXPECT_TRUE(files_.createFileAtPath(deep + "/new", {'n'}, FileManager::Replace::No));
  EXPECT_EQ(files_.contentsAtPath(deep + "/new").value(), PropertyList::Data{'n'});
  const auto bookmark = scopes_.bookmarkDataForURL(url);
  ASSERT_TRUE(bookmark);
  EXPECT_EQ(scopes_.urlByResolvingBookmarkData(bookmark.value()).url, url);
}

TEST_F(LinuxFileManagerTest, StaysBeneathTheGrantOnKernelsWithoutItsHelp) {
  tree_.folder("grant").folder("grant/sub").folder("outside").file("outside/file", "secret");
  tree_.symbolicLink("grant/exit", "../outside");
  pick(scratch_ / "grant");
  const int status = testing::withoutSystemCall(SYS_openat2, ENOSYS, [this] {
    if (!files_.createFileAtPath(scratch_ / "grant/sub/new", {'n'}, FileManager::Replace::No))
      return 1;
    if (!files_.contentsOfDirectoryAtPath(scratch_ / "grant/sub")) return 2;
    if (!files_.createDirectoryAtPath(scratch_ / "grant/a/b", Intermediates::Create)) return 3;
    if (!files_.moveItemAtPath(scratch_ / "grant/sub/new", scratch_ / "grant/a/b/new")) return 4;
    if (files_.contentsAtPath(scratch_ / "grant/exit/file")) return 5;
    if (files_.contentsAtPath(scratch_ / "grant/sub/../../outside/file")) return 6;
    if (files_.createFileAtPath(scratch_ / "grant/exit/new", {}, FileManager::Replace::No))
      return 7;
    if (!grantByPicking(scopes_, scratch_ / "outside")) return 8;
    if (!files_.contentsAtPath(scratch_ / "grant/exit/file")) return 9;
    return 0;
  });
  EXPECT_EQ(status, 0);
  EXPECT_TRUE(fs::exists(scratch_ / "grant/a/b/new"));
  EXPECT_FALSE(fs::exists(scratch_ / "outside/new"));
}

TEST_F(LinuxFileManagerTest, TellsWhenTheSystemRefuses) {
  tree_.folder("grant").folder("grant/closed").file("grant/closed/file", "text");
  fs::permissions(scratch_ / "grant/closed", fs::perms::none);
  fs::permissions(scratch_.path(), fs::perms::all);
  pick(scratch_ / "grant");
  const int status = testing::asNobody([this] {
    const auto isRefused = [](const auto& result) {
      return !result && result.error().code == std::errc::permission_denied;
    };
    if (files_.fileExistsAtPath(scratch_ / "grant/closed/file")) return 1;
    if (!isRefused(files_.contentsAtPath(scratch_ / "grant/closed/file"))) return 2;
    if (!isRefused(files_.contentsOfDirectoryAtPath(scratch_ / "grant/closed"))) return 3;
    if (!isRefused(files_.createFileAtPath(scratch_ / "grant/new", {}, FileManager::Replace::No)))
      return 4;
    if (!isRefused(files_.createDirectoryAtPath(scratch_ / "grant/a/b", Intermediates::Create))) {
      return 5;
    }
    const std::string closed = scratch_ / "grant/closed/link";
    return files_.resolvingSymlinksInPath(closed) == closed ? 0 : 6;
  });
  EXPECT_EQ(status, 0);
}

TEST_F(LinuxFileManagerTest, ReadsRegularFilesOnlyAndNeverWaits) {
  tree_.folder("grant").pipe("grant/pipe").symbolicLink("grant/link", "pipe");
  pick(scratch_ / "grant");
  EXPECT_FALSE(files_.contentsAtPath(scratch_ / "grant/pipe"));
  EXPECT_FALSE(files_.contentsAtPath(scratch_ / "grant/link"));
}

TEST_F(LinuxFileManagerTest, KeepsTheContainerForTheUserAndFindsItWhenMadeAnew) {
  const auto container = files_.containerPathForSecurityApplicationGroupIdentifier("group");
  ASSERT_EQ(container, scratch_ / "data/group");
  struct stat status {};
  ASSERT_EQ(::stat(container->c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777U, 0700U);
  EXPECT_TRUE(files_.createFileAtPath(*container + "/file", {}, FileManager::Replace::No));
  fs::rename(*container, scratch_ / "old");
  EXPECT_FALSE(files_.createFileAtPath(*container + "/file", {}, FileManager::Replace::No));
  ASSERT_TRUE(files_.containerPathForSecurityApplicationGroupIdentifier("group"));
  EXPECT_TRUE(files_.createFileAtPath(*container + "/file", {}, FileManager::Replace::No));
  EXPECT_FALSE(files_.createFileAtPath(scratch_ / "old/new", {}, FileManager::Replace::No));
}

TEST_F(LinuxFileManagerTest, LeavesNoRecordsOfFinishedCopies) {
  tree_.folder("grant").folder("grant/tree").file("grant/tree/file", "text");
  pick(scratch_ / "grant");
  ASSERT_TRUE(files_.copyItemAtPath(scratch_ / "grant/tree", scratch_ / "grant/copy"));
  EXPECT_FALSE(files_.copyItemAtPath(scratch_ / "grant/tree", scratch_ / "grant/copy"));
  EXPECT_THAT(files_.contentsOfDirectoryAtPath(scratch_ / "grant").value(),
              UnorderedElementsAre("tree", "copy"));
  const std::string records = scratch_ / "data/app.tavrin.Tavrin/partials";
  EXPECT_TRUE(!fs::exists(records) || fs::is_empty(records));
  files_.clearLeftovers();
  EXPECT_TRUE(log_.lines().empty());
}

}  // namespace
}  // namespace tavrin
