#include <sys/mount.h>
#include <sys/resource.h>
#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <thread>

#include "platform/linux/TreeRemoval.h"
#include "tests/platform/files/EngineFixture.h"
#include "tests/support/ChildProcess.h"

namespace tavrin::testing {
namespace {

class TreeRemoval : public EngineFixture {};

TEST_F(TreeRemoval, RemovesEveryKindAndFollowsNoLink) {
  build().folder("outside").file("outside/kept", "x").folder("tree");
  buildEveryKind(at("tree"));
  build().symbolicLink("tree/away", at("outside")).symbolicLink("link", at("outside"));
  const TreeSnapshot outside = snapshotOf(at("outside"));
  ASSERT_TRUE(removeItem(item("tree")));
  ASSERT_TRUE(removeItem(item("link")));
  EXPECT_EQ(namesIn(scratch.path()), (std::map<std::string, int>{{"outside", 1}}));
  EXPECT_EQ(snapshotOf(at("outside")), outside);
  EXPECT_EQ(causeOf(removeItem(item("tree"))), std::errc::no_such_file_or_directory);
}

TEST_F(TreeRemoval, NeedsFewHandlesForTenThousandLevels) {
  const ScratchFolder deep(otherFileSystem);
  TreeBuilder(deep.path()).nestedFolders("tree", 10'000, "d");
  const int failed = inChildProcess([&deep] {
    const rlimit limit = {256, 256};
    ::setrlimit(RLIMIT_NOFILE, &limit);
    return removeItem(OpenItem(deep / "tree")) ? 0 : 1;
  });
  EXPECT_EQ(failed, 0);
  EXPECT_TRUE(namesIn(deep.path()).empty());
}

TEST_F(TreeRemoval, RemovesFoldersOfManyNames) {
  for (const char* base : {"", otherFileSystem}) {
    const ScratchFolder folder(base);
    TreeBuilder tree(folder.path());
    tree.folder("many");
    for (int name = 0; name < 5000; ++name) tree.file("many/" + std::to_string(name), "");
    EXPECT_TRUE(removeItem(OpenItem(folder / "many")));
    EXPECT_TRUE(namesIn(folder.path()).empty());
  }
}

TEST_F(TreeRemoval, LeavesAnotherItemThatGetsTheName) {
  build().folder("tree");
  for (int folder = 0; folder < 200; ++folder) {
    const std::string name = "tree/" + std::to_string(folder);
    build().folder(name).file(name + "/1", "x").file(name + "/2", "x");
  }
  FileOperation operation;
  std::atomic<bool> isSwapped = false;
  std::thread swapper([&] {
    while (operation.items() < 100) std::this_thread::yield();
    std::filesystem::rename(at("tree"), at("old"));
    build().folder("tree").file("tree/precious", "kept");
    isSwapped = true;
  });
  const Status removed = tavrin::removeItem(item("tree"), operation);
  swapper.join();
  EXPECT_TRUE(std::filesystem::exists(at("tree/precious")));
  if (std::filesystem::exists(at("old"))) {
    EXPECT_EQ(causeOf(removed), std::errc::device_or_resource_busy);
  }
}

TEST_F(TreeRemoval, EntersNoOtherFileSystem) {
  build().folder("tree").folder("tree/mounted").folder("shared").file("shared/kept", "x");
  // A bind mount is of the same file system: only the mount itself tells.
  if (::mount(at("shared").c_str(), at("tree/mounted").c_str(), nullptr, MS_BIND, nullptr) != 0) {
    GTEST_SKIP() << "needs the rights to mount";
  }
  EXPECT_EQ(causeOf(removeItem(item("tree"))), std::errc::device_or_resource_busy);
  EXPECT_EQ(causeOf(removeItem(item("tree/mounted"))), std::errc::device_or_resource_busy);
  EXPECT_EQ(namesIn(at("shared")).count("kept"), 1U);
  ::umount2(at("tree/mounted").c_str(), MNT_DETACH);
  EXPECT_TRUE(removeItem(item("tree")));
}

TEST_F(TreeRemoval, StopsWhereTheUserMayNot) {
  if (::geteuid() != 0) GTEST_SKIP() << "needs the rights to become another user";
  build().folder("open", 0777).folder("open/locked").file("open/locked/kept", "x");
  std::filesystem::permissions(scratch.path(), std::filesystem::perms(0755));
  const int denied = asNobody([this] {
    const Status removed = removeItem(item("open/locked"));
    const bool namesTheItem = !removed && removed.error().path == at("open/locked/kept");
    return causeOf(removed) == std::errc::permission_denied && namesTheItem ? 0 : 1;
  });
  EXPECT_EQ(denied, 0);
  EXPECT_EQ(namesIn(at("open/locked")).count("kept"), 1U);
}

}  // namespace
}  // namespace tavrin::testing
