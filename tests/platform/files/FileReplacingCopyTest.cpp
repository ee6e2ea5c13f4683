#include <sys/stat.h>
#include <sys/syscall.h>

#include <array>
#include <cerrno>
#include <filesystem>

#include "platform/linux/TreeCopy.h"
#include "tests/platform/files/EngineFixture.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/FakeLog.h"

namespace tavrin::testing {
namespace {

class FileReplacingCopy : public EngineFixture {
 protected:
  /// The copy fails with `cause`; what stands in the scratch folder stays as it is.
  void expectFailure(const OpenItem& source, const OpenItem& destination, std::errc cause) {
    const TreeSnapshot before = snapshotOf(scratch.path());
    const Status copied = copyFileReplacing(source, destination, partials);
    ASSERT_FALSE(copied);
    EXPECT_EQ(causeOf(copied), cause) << copied.error().describe();
    EXPECT_EQ(snapshotOf(scratch.path()), before);
    EXPECT_TRUE(hasNoRecords());
  }

  void buildFiles() const {
    build().folder("source").folder("target");
    buildEveryKind(at("source"));
    build().file("file", "old", 0600).attribute("file", "user.old", "old");
    build().accessList("target", "default", 4242);
  }
};

constexpr std::array files = {"plain", "run", "secret", "large", "holes", "all hole", "empty file"};

blkcnt_t blocksOf(const std::string& path) {
  struct stat status = {};
  return ::lstat(path.c_str(), &status) == 0 ? status.st_blocks : -1;
}

TEST_F(FileReplacingCopy, KeepsEverythingOfTheFileAndNothingOfTheOldOne) {
  buildFiles();
  for (const char* name : files) {
    SCOPED_TRACE(name);
    const std::string from = std::string("source/") + name;
    // The twin of "plain" is of the source's tree alone.
    const TreeSnapshot expected = snapshotOf(at(from));
    for (const char* to : {"file", "target/free"}) {
      const Status copied = copyFileReplacing(item(from), item(to), partials);
      ASSERT_TRUE(copied) << copied.error().describe();
      EXPECT_EQ(snapshotOf(at(to)), expected) << to;
      EXPECT_EQ(blocksOf(at(to)), blocksOf(at(from))) << to;
    }
    EXPECT_EQ(snapshotOf(at(from)), expected);
    std::filesystem::remove(at("target/free"));
  }
  EXPECT_EQ(namesIn(at("target")).size(), 0U);
  EXPECT_EQ(namesIn(scratch.path()).size(), 3U);
  EXPECT_TRUE(hasNoRecords());
}

TEST_F(FileReplacingCopy, TakesFilesLargerThanTheMemory) {
  constexpr off_t tebibyte = off_t{1} << 40;
  build().file("file", "old").sparseFile("vast", tebibyte, tebibyte - 4096, "the end");
  ASSERT_TRUE(copyFileReplacing(item("vast"), item("file"), partials));
  EXPECT_EQ(std::filesystem::file_size(at("file")), static_cast<std::uintmax_t>(tebibyte));
  EXPECT_EQ(blocksOf(at("file")), blocksOf(at("vast")));
}

TEST_F(FileReplacingCopy, ReplacesLinksAndPipesThemselves) {
  build().file("file", "new").file("target", "old").symbolicLink("link", "target").pipe("pipe");
  for (const char* replaced : {"link", "pipe"}) {
    ASSERT_TRUE(copyFileReplacing(item("file"), item(replaced), partials));
    EXPECT_EQ(snapshotOf(at(replaced)), snapshotOf(at("file")));
  }
  EXPECT_NE(snapshotOf(at("target")), snapshotOf(at("file")));
}

TEST_F(FileReplacingCopy, CopiesAndReplacesNoFoldersAndWaitsForNoPipe) {
  build().file("file", "old").folder("folder").file("folder/inside", "x").pipe("pipe");
  build().symbolicLink("link", "file").symbolicLink("to folder", "folder");
  expectFailure(item("folder"), item("file"), std::errc::is_a_directory);
  expectFailure(item("file"), item("folder"), std::errc::is_a_directory);
  expectFailure(item("pipe"), item("file"), std::errc::invalid_argument);
  expectFailure(item("link"), item("file"), std::errc::too_many_symbolic_link_levels);
  expectFailure(item("to folder"), item("file"), std::errc::too_many_symbolic_link_levels);
  expectFailure(item("missing"), item("file"), std::errc::no_such_file_or_directory);
}

TEST_F(FileReplacingCopy, LeavesTheOldFileOnAFullOrReadOnlyDisk) {
  MountedFolder small("size=64k");
  if (!small.isMounted()) GTEST_SKIP() << "needs the rights to mount";
  build().file("large", std::string(200'000, 'x')).file("little", "x");
  TreeBuilder(small.path()).file("old", "old");
  const TreeSnapshot before = snapshotOf(small.path());
  expectFailure(item("large"), OpenItem(small / "old"), std::errc::no_space_on_device);
  ASSERT_TRUE(small.makeReadOnly());
  expectFailure(item("little"), OpenItem(small / "old"), std::errc::read_only_file_system);
  TreeSnapshot after = snapshotOf(small.path());
  EXPECT_EQ(after.at("old"), before.at("old"));
  EXPECT_EQ(namesIn(small.path()).size(), 1U);
}

TEST_F(FileReplacingCopy, TheOldFileStaysWhenTheNewOneCannotBeMadeDurable) {
  build().file("file", "old").file("source", "new");
  const TreeSnapshot before = snapshotOf(scratch.path());
  const int failed = withoutSystemCall(SYS_fsync, EIO, [this] {
    const Status copied = copyFileReplacing(item("source"), item("file"), partials);
    return causeOf(copied) == std::errc::io_error ? 0 : 1;
  });
  EXPECT_EQ(failed, 0);
  EXPECT_EQ(snapshotOf(scratch.path()).at("file"), before.at("file"));
  EXPECT_EQ(namesIn(scratch.path()).size(), 2U);
  EXPECT_TRUE(hasNoRecords());
}

TEST_F(FileReplacingCopy, AFileIsWholeWheneverTheCopyIsKilled) {
  build().file("old", std::string(400'000, 'o'), 0600).file("new", std::string(400'000, 'n'), 0755);
  const TreeSnapshot old = snapshotOf(at("old"));
  const TreeSnapshot young = snapshotOf(at("new"));
  int leftovers = 0;
  for (unsigned round = 0; round < 25; ++round) {
    ASSERT_TRUE(copyFileReplacing(item("old"), item("file"), partials));
    killAfter(round * 200U, [this] {
      while (copyFileReplacing(item("new"), item("file"), partials)) continue;
    });
    const TreeSnapshot file = snapshotOf(at("file"));
    EXPECT_TRUE(file == old || file == young);
    leftovers += hasNoRecords() ? 0 : 1;
    FakeLog log;
    partials.clearLeftovers(log, clearing);
    EXPECT_TRUE(log.lines().empty());
    EXPECT_TRUE(hasNoRecords());
    EXPECT_EQ(namesIn(scratch.path()).size(), 3U);
  }
  EXPECT_GT(leftovers, 0) << "the kills met no copy in the making";
}

}  // namespace
}  // namespace tavrin::testing
