#include <fcntl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <thread>

#include "platform/linux/TreeCopy.h"
#include "platform/linux/TreeMove.h"
#include "platform/linux/TreeRemoval.h"
#include "tests/platform/files/EngineFixture.h"
#include "tests/support/ChildProcess.h"

namespace tavrin::testing {
namespace {

class TreeMove : public EngineFixture {
 protected:
  OpenItem across(const std::string& name) const { return OpenItem(other / name); }

  ScratchFolder other{otherFileSystem};
};

TEST_F(TreeMove, RenamesWithinAFileSystem) {
  build().folder("source");
  buildEveryKind(at("source"));
  const TreeSnapshot before = snapshotOf(at("source"));
  struct stat old = {};
  ASSERT_EQ(::stat(at("source").c_str(), &old), 0);
  ASSERT_TRUE(moveItem(item("source"), item("moved"), partials));
  struct stat now = {};
  ASSERT_EQ(::stat(at("moved").c_str(), &now), 0);
  EXPECT_EQ(now.st_ino, old.st_ino);
  EXPECT_EQ(snapshotOf(at("moved")), before);
  EXPECT_TRUE(snapshotOf(at("source")).empty());
}

TEST_F(TreeMove, KeepsEverythingAcrossFileSystems) {
  build().folder("source");
  buildEveryKind(at("source"));
  const TreeSnapshot before = snapshotOf(at("source"));
  const Status moved = moveItem(item("source"), across("moved"), partials);
  ASSERT_TRUE(moved) << moved.error().describe();
  EXPECT_EQ(snapshotOf(other / "moved"), before);
  EXPECT_TRUE(namesIn(scratch.path()).empty());
  EXPECT_EQ(namesIn(other.path()).size(), 1U);
  EXPECT_TRUE(hasNoRecords());
}

TEST_F(TreeMove, MovesEachKindByItselfAcrossFileSystems) {
  build().folder("source");
  buildEveryKind(at("source"));
  for (const auto& [name, ignored] : namesIn(at("source"))) {
    const TreeSnapshot before = snapshotOf(at("source/" + name));
    const Status moved = moveItem(item("source/" + name), across(name), partials);
    ASSERT_TRUE(moved) << moved.error().describe();
    EXPECT_EQ(snapshotOf(other / name), before) << name;
  }
  EXPECT_TRUE(namesIn(at("source")).empty());
}

TEST_F(TreeMove, MovesDeepTreesAcrossFileSystems) {
  build().nestedFolders("source", 300, "sixteen bytes ok");
  const TreeSnapshot before = snapshotOf(at("source"));
  const Status moved = moveItem(item("source"), across("moved"), partials);
  ASSERT_TRUE(moved) << moved.error().describe();
  EXPECT_EQ(snapshotOf(other / "moved"), before);
  EXPECT_TRUE(namesIn(scratch.path()).empty());
}

TEST_F(TreeMove, ReplacesNothing) {
  build().folder("source").file("source/new", "new").file("taken", "old");
  TreeBuilder(other.path()).file("taken", "old").folder("folder");
  const TreeSnapshot before = snapshotOf(scratch.path());
  const TreeSnapshot beforeAcross = snapshotOf(other.path());
  for (const char* name : {"source", "source/new"}) {
    EXPECT_EQ(causeOf(moveItem(item(name), item("taken"), partials)), std::errc::file_exists);
    EXPECT_EQ(causeOf(moveItem(item(name), across("taken"), partials)), std::errc::file_exists);
    EXPECT_EQ(causeOf(moveItem(item(name), across("folder"), partials)), std::errc::file_exists);
  }
  EXPECT_EQ(snapshotOf(scratch.path()), before);
  EXPECT_EQ(snapshotOf(other.path()), beforeAcross);
}

TEST_F(TreeMove, RefusesToMoveAFolderIntoItself) {
  build().folder("source").folder("source/inner");
  const TreeSnapshot before = snapshotOf(scratch.path());
  EXPECT_EQ(causeOf(moveItem(item("source"), item("source/inner/moved"), partials)),
            std::errc::invalid_argument);
  EXPECT_EQ(snapshotOf(scratch.path()), before);
}

TEST_F(TreeMove, NeverReplacesWhereRenamingCannotRefuse) {
  for (const int cause : {EINVAL, ENOSYS}) {
    build().folder("source").file("source/file", "new").folder("full").file("full/kept", "old");
    const int failed = withoutSystemCall(SYS_renameat2, cause, [this] {
      const bool refused =
          causeOf(moveItem(item("source"), item("full"), partials)) == std::errc::file_exists &&
          causeOf(moveItem(item("source/file"), item("full/kept"), partials)) ==
              std::errc::file_exists &&
          causeOf(moveItem(item("full"), item("full/inside"), partials)) ==
              std::errc::invalid_argument;
      const bool moved = moveItem(item("source/file"), item("file"), partials) &&
                         moveItem(item("source"), item("moved"), partials) &&
                         moveItem(item("full"), across("full"), partials);
      return refused && moved ? 0 : 1;
    });
    EXPECT_EQ(failed, 0);
    EXPECT_EQ(namesIn(scratch.path()), (std::map<std::string, int>{{"file", 1}, {"moved", 1}}));
    EXPECT_EQ(namesIn(other / "full").count("kept"), 1U);
    ASSERT_EQ(runProgram("rm", "-r", at("file"), at("moved")), 0);
    ASSERT_EQ(runProgram("rm", "-r", other / "full"), 0);
  }
}

TEST_F(TreeMove, RemovesOfTheSourceOnlyWhatTheCopyHolds) {
  build().folder("source").folder("source/inner").folder("source/gone").file("source/same", "x");
  build().file("source/longer", "x").file("source/newer", "x").file("source/inner/same", "x");
  build().symbolicLink("source/link", "one").symbolicLink("source/same link", "one");
  ASSERT_TRUE(copyItem(item("source"), item("copy"), partials));
  build().file("source/longer", "xx").modified("source/longer", 1'000'000'000, 0);
  build().file("source/newer", "y").modified("source/newer", 1'000'000'000, 1);
  build().file("source/inner/came", "later").folder("source/inner/new folder");
  ASSERT_EQ(::unlink(at("source/link").c_str()), 0);
  build().symbolicLink("source/link", "two");

  const Status removed = removeCopiedItem(item("source"), item("copy"), 1);
  EXPECT_EQ(causeOf(removed), std::errc::device_or_resource_busy);
  EXPECT_EQ(namesIn(at("source")),
            (std::map<std::string, int>{{"inner", 1}, {"link", 1}, {"longer", 1}, {"newer", 1}}));
  EXPECT_EQ(namesIn(at("source/inner")),
            (std::map<std::string, int>{{"came", 1}, {"new folder", 1}}));
}

TEST_F(TreeMove, ComparesTimesAsExactlyAsTheCopyKeepsThem) {
  constexpr TimeGranularity twoSeconds = 2'000'000'000;
  build().file("source", "x").file("copy", "x").modified("copy", 1'000'000'000, 0);
  build().modified("source", 1'000'000'002, 0);
  EXPECT_FALSE(removeCopiedItem(item("source"), item("copy"), twoSeconds));
  build().modified("source", 1'000'000'001, 999'999'999);
  EXPECT_FALSE(removeCopiedItem(item("source"), item("copy"), 1));
  EXPECT_TRUE(removeCopiedItem(item("source"), item("copy"), twoSeconds));
}

TEST_F(TreeMove, KeepsWhatComesIntoTheSourceDuringTheCopy) {
  build().folder("source");
  for (int file = 0; file < 3000; ++file) build().file("source/" + std::to_string(file), "x");
  build().file("source/changed", "before");
  std::atomic<bool> hasEnded = false;
  std::thread writer([this, &hasEnded] {
    while (namesIn(other.path()).empty() && !hasEnded) std::this_thread::yield();
    std::ofstream(at("source/came")) << "later";
    std::ofstream(at("source/changed"), std::ios::app) << " and after";
  });
  const Status moved = moveItem(item("source"), across("moved"), partials);
  hasEnded = true;
  writer.join();
  // The writer is as fast as the copy at worst: what it wrote is in the source, in the copy, or in
  // both, but never in neither.
  const auto holds = [](const std::string& path, const std::string& text) {
    std::string found;
    std::getline(std::ifstream(path), found);
    return found == text;
  };
  EXPECT_TRUE(holds(at("source/came"), "later") || holds(other / "moved/came", "later"));
  EXPECT_TRUE(holds(at("source/changed"), "before and after") ||
              holds(other / "moved/changed", "before and after"));
  EXPECT_EQ(static_cast<bool>(moved), !std::filesystem::exists(at("source")));
  EXPECT_TRUE(hasNoRecords());
}

TEST_F(TreeMove, LeavesTheSourceOnAFullDisk) {
  const MountedFolder small("size=1m");
  if (!small.isMounted()) GTEST_SKIP() << "needs the rights to mount";
  build().folder("source").file("source/large", std::string(3 << 20, 'x'));
  const TreeSnapshot before = snapshotOf(at("source"));
  EXPECT_EQ(causeOf(moveItem(item("source"), OpenItem(small / "moved"), partials)),
            std::errc::no_space_on_device);
  EXPECT_EQ(snapshotOf(at("source")), before);
  EXPECT_TRUE(namesIn(small.path()).empty());
  EXPECT_TRUE(hasNoRecords());
}

TEST_F(TreeMove, DoesNotCopyASourceWithAnotherFileSystemInside) {
  build().folder("source").folder("source/mounted").file("source/file", "x");
  if (::mount("tmpfs", at("source/mounted").c_str(), "tmpfs", 0, "size=64k") != 0) {
    GTEST_SKIP() << "needs the rights to mount";
  }
  TreeBuilder(at("source/mounted")).file("kept", "x");
  const TreeSnapshot before = snapshotOf(at("source"));
  EXPECT_EQ(causeOf(moveItem(item("source"), across("moved"), partials)),
            std::errc::device_or_resource_busy);
  EXPECT_EQ(snapshotOf(at("source")), before);
  EXPECT_TRUE(namesIn(other.path()).empty());
  ::umount2(at("source/mounted").c_str(), MNT_DETACH);
}

TEST_F(TreeMove, DoesNotCopyASourceThatTheUserMayNotEmpty) {
  if (::geteuid() != 0) GTEST_SKIP() << "needs the rights to become another user";
  build().folder("open", 0777).folder("open/source").file("open/source/file", "x");
  std::filesystem::permissions(scratch.path(), std::filesystem::perms(0755));
  std::filesystem::permissions(other.path(), std::filesystem::perms(0777));
  std::filesystem::permissions(records.path(), std::filesystem::perms(0777));
  const TreeSnapshot before = snapshotOf(scratch.path());
  const int denied = asNobody([this] {
    const Status moved = moveItem(item("open/source"), across("moved"), partials);
    return causeOf(moved) == std::errc::permission_denied ? 0 : 1;
  });
  EXPECT_EQ(denied, 0);
  EXPECT_EQ(snapshotOf(scratch.path()), before);
  EXPECT_TRUE(namesIn(other.path()).empty());
}

}  // namespace
}  // namespace tavrin::testing
