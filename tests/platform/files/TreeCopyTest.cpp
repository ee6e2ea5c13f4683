#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>

#include "platform/linux/TreeCopy.h"
#include "tests/platform/files/EngineFixture.h"
#include "tests/support/ChildProcess.h"

namespace tavrin::testing {
namespace {

class TreeCopy : public EngineFixture {
 protected:
  /// Copies and expects nothing but a failure with `cause`.
  void expectFailure(const OpenItem& source, const OpenItem& destination, std::errc cause) {
    const Status copied = copyItem(source, destination, partials);
    ASSERT_FALSE(copied);
    EXPECT_EQ(causeOf(copied), cause) << copied.error().describe();
    EXPECT_TRUE(hasNoRecords());
  }
};

blkcnt_t blocksOf(const std::string& path) {
  struct stat status = {};
  return ::lstat(path.c_str(), &status) == 0 ? status.st_blocks : -1;
}

std::string contentsOf(const std::string& path) {
  std::ostringstream text;
  text << std::ifstream(path, std::ios::binary).rdbuf();
  return text.str();
}

/// Links an existing file into the innermost of nested folders, further down than a path reaches.
void linkIntoDeepest(const std::string& existing, const std::string& outermost) {
  const auto open = [](int parent, const char* name) {
    return FileDescriptor(::openat(parent, name, O_PATH | O_DIRECTORY | O_CLOEXEC));
  };
  FileDescriptor deepest = open(AT_FDCWD, outermost.c_str());
  while (FileDescriptor inner = open(deepest.get(), "sixteen bytes ok")) deepest = std::move(inner);
  ASSERT_EQ(::linkat(AT_FDCWD, existing.c_str(), deepest.get(), "twin", 0), 0);
}

void limitOpenFiles(rlim_t count) {
  const rlimit limit = {count, count};
  ::setrlimit(RLIMIT_NOFILE, &limit);
}

/// 20,000 files in 200 folders with the modes, times and extras that trees have.
void buildLargeTree(const std::string& root) {
  TreeBuilder tree(root);
  std::mt19937 random(20);  // NOLINT(cert-msc51-cpp): the same tree at every run
  constexpr mode_t modes[] = {0644, 0600, 0755, 0400, 04755, 02711, 01644, 0666};
  for (int folder = 0; folder < 200; ++folder) {
    const std::string outer = folder % 4 == 0 ? "" : "d" + std::to_string(folder / 4 * 4) + "/";
    const std::string path = outer + "d" + std::to_string(folder);
    tree.folder(path);
    for (int file = 0; file < 100; ++file) {
      const std::string name = path + "/f" + std::to_string(file);
      tree.file(name, std::string(random() % 6000, static_cast<char>('a' + file % 26)),
                modes[random() % std::size(modes)]);
      tree.modified(name, 1'000'000'000 + folder * 1000 + file, file * 9'999'999 + folder);
    }
    tree.attribute(path + "/f1", "user.number", std::to_string(folder));
    tree.accessList(path + "/f2", "access", 1000U + static_cast<unsigned>(folder));
    tree.hardLink(path + "/twin", "d0/f" + std::to_string(folder % 100));
    tree.hardLink(path + "/near twin", path + "/f3").symbolicLink(path + "/link", "f4");
    tree.sparseFile(path + "/holes", 1 << 20, 300'000, "data");
  }
  for (int folder = 199; folder >= 0; --folder) {
    const std::string outer = folder % 4 == 0 ? "" : "d" + std::to_string(folder / 4 * 4) + "/";
    tree.modified(outer + "d" + std::to_string(folder), 1'000'000'000 + folder, folder + 1);
  }
}

TEST_F(TreeCopy, KeepsEverythingOfEveryKindOfItem) {
  build().folder("source");
  buildEveryKind(at("source"));
  const TreeSnapshot before = snapshotOf(at("source"));
  const Status copied = copyItem(item("source"), item("copy"), partials);
  ASSERT_TRUE(copied) << copied.error().describe();
  EXPECT_EQ(snapshotOf(at("copy")), before);
  EXPECT_EQ(snapshotOf(at("source")), before);
  EXPECT_EQ(differencesByRsync(at("source"), at("copy")), "");
  EXPECT_EQ(blocksOf(at("copy/holes")), blocksOf(at("source/holes")));
  EXPECT_EQ(blocksOf(at("copy/all hole")), blocksOf(at("source/all hole")));
  EXPECT_EQ(namesIn(scratch.path()).size(), 2U);
  EXPECT_TRUE(hasNoRecords());
}

TEST_F(TreeCopy, KeepsEverythingOnAnotherFileSystem) {
  const ScratchFolder other(otherFileSystem);
  build().folder("source");
  buildEveryKind(at("source"));
  const Status copied = copyItem(item("source"), OpenItem(other / "copy"), partials);
  ASSERT_TRUE(copied) << copied.error().describe();
  EXPECT_EQ(snapshotOf(other / "copy"), snapshotOf(at("source")));
  EXPECT_EQ(blocksOf(other / "copy/holes"), 8);
}

TEST_F(TreeCopy, CopiesEachKindByItself) {
  build().folder("source").folder("copies");
  buildEveryKind(at("source"));
  for (const auto& [name, ignored] : namesIn(at("source"))) {
    const Status copied = copyItem(item("source/" + name), item("copies/" + name), partials);
    ASSERT_TRUE(copied) << copied.error().describe();
    EXPECT_EQ(snapshotOf(at("copies/" + name)), snapshotOf(at("source/" + name))) << name;
  }
  EXPECT_EQ(namesIn(at("copies")), namesIn(at("source")));
}

TEST_F(TreeCopy, KeepsTwentyThousandFilesAsRsyncSeesThem) {
  build().folder("source");
  buildLargeTree(at("source"));
  const Status copied = copyItem(item("source"), item("copy"), partials);
  ASSERT_TRUE(copied) << copied.error().describe();
  EXPECT_EQ(differencesByRsync(at("source"), at("copy")), "");
  EXPECT_EQ(blocksOf(at("copy/d0/holes")), blocksOf(at("source/d0/holes")));
  EXPECT_GT(snapshotOf(at("copy")).size(), 20'000U);
}

TEST_F(TreeCopy, GoesAsDeepAsFoldersDo) {
  // 255 levels of 16 bytes pass the longest path of the system; rsync ends there, snapshots do not.
  const ScratchFolder deep(otherFileSystem);
  TreeBuilder(deep.path()).nestedFolders("source", 3000, "sixteen bytes ok");
  const Status copied = copyItem(OpenItem(deep / "source"), OpenItem(deep / "copy"), partials);
  ASSERT_TRUE(copied) << copied.error().describe();
  const TreeSnapshot copy = snapshotOf(deep / "copy");
  EXPECT_EQ(copy, snapshotOf(deep / "source"));
  EXPECT_EQ(copy.size(), 3002U);
}

TEST_F(TreeCopy, NeedsFewHandlesForTenThousandLevels) {
  const ScratchFolder deep(otherFileSystem);
  TreeBuilder(deep.path()).nestedFolders("source", 10'000, "d");
  const int failed = inChildProcess([this, &deep] {
    limitOpenFiles(256);
    return copyItem(OpenItem(deep / "source"), OpenItem(deep / "copy"), partials) ? 0 : 1;
  });
  EXPECT_EQ(failed, 0);
  EXPECT_EQ(snapshotOf(deep / "copy").size(), 10'002U);
}

TEST_F(TreeCopy, KeepsHardLinksBetweenDeepFolders) {
  build().folder("source").nestedFolders("source/a", 300, "sixteen bytes ok");
  build().nestedFolders("source/b", 300, "sixteen bytes ok").file("source/first", "shared");
  linkIntoDeepest(at("source/first"), at("source/b"));
  ASSERT_TRUE(copyItem(item("source"), item("copy"), partials));
  EXPECT_EQ(snapshotOf(at("copy")), snapshotOf(at("source")));
  struct stat status = {};
  ASSERT_EQ(::stat(at("copy/first").c_str(), &status), 0);
  EXPECT_EQ(status.st_nlink, 2U);
}

TEST_F(TreeCopy, TakesNothingFromTheDefaultListOfItsFolder) {
  build().folder("source").folder("target");
  buildEveryKind(at("source"));
  build().accessList("target", "default", 4242);
  for (const char* name : {"folder", "plain", "pipe", "secret", "run"}) {
    const std::string from = std::string("source/") + name;
    const std::string to = std::string("target/") + name;
    ASSERT_TRUE(copyItem(item(from), item(to), partials));
    EXPECT_EQ(snapshotOf(at(to)), snapshotOf(at(from))) << name;
  }
}

TEST_F(TreeCopy, ReadsFilesOfTheKernelThatSayTheyAreEmpty) {
  ASSERT_TRUE(copyItem(OpenItem("/proc/cpuinfo"), item("copy"), partials));
  EXPECT_NE(contentsOf(at("copy")).find("processor"), std::string::npos);
}

TEST_F(TreeCopy, ReplacesNothing) {
  build().folder("source").file("source/new", "new").file("file", "old").folder("folder");
  build().file("folder/kept", "old").symbolicLink("link", "/nowhere");
  const TreeSnapshot before = snapshotOf(scratch.path());
  for (const char* taken : {"file", "folder", "link"}) {
    expectFailure(item("source"), item(taken), std::errc::file_exists);
    expectFailure(item("source/new"), item(taken), std::errc::file_exists);
  }
  EXPECT_EQ(snapshotOf(scratch.path()), before);
}

TEST_F(TreeCopy, RefusesToCopyAFolderIntoItself) {
  build().folder("source").folder("source/inner").folder("source/inner/deep");
  const TreeSnapshot before = snapshotOf(scratch.path());
  expectFailure(item("source"), item("source/copy"), std::errc::invalid_argument);
  expectFailure(item("source"), item("source/inner/deep/copy"), std::errc::invalid_argument);
  EXPECT_EQ(snapshotOf(scratch.path()), before);
  EXPECT_TRUE(copyItem(item("source/inner"), item("source/copy"), partials));
}

TEST_F(TreeCopy, LeavesNothingOnAFullDisk) {
  const MountedFolder small("size=1m");
  if (!small.isMounted()) GTEST_SKIP() << "needs the rights to mount";
  build().folder("source").folder("source/inner").file("source/inner/little", "little");
  build().file("source/large", std::string(3 << 20, 'x'));
  expectFailure(item("source"), OpenItem(small / "copy"), std::errc::no_space_on_device);
  expectFailure(item("source/large"), OpenItem(small / "copy"), std::errc::no_space_on_device);
  EXPECT_TRUE(namesIn(small.path()).empty());
  EXPECT_TRUE(copyItem(item("source/inner"), OpenItem(small / "copy"), partials));
}

TEST_F(TreeCopy, LeavesNothingWhenTheDiskHasNoMoreNames) {
  const MountedFolder small("nr_inodes=20");
  if (!small.isMounted()) GTEST_SKIP() << "needs the rights to mount";
  build().folder("source").folder("source/read-only", 0755);
  for (int file = 0; file < 30; ++file) {
    build().file("source/read-only/" + std::to_string(file), "x");
  }
  expectFailure(item("source"), OpenItem(small / "copy"), std::errc::no_space_on_device);
  EXPECT_TRUE(namesIn(small.path()).empty());
}

TEST_F(TreeCopy, ReportsAReadOnlyDestination) {
  MountedFolder frozen("size=1m");
  if (!frozen.isMounted()) GTEST_SKIP() << "needs the rights to mount";
  ASSERT_TRUE(frozen.makeReadOnly());
  build().folder("source").file("source/file", "x");
  expectFailure(item("source"), OpenItem(frozen / "copy"), std::errc::read_only_file_system);
  expectFailure(item("source/file"), OpenItem(frozen / "copy"), std::errc::read_only_file_system);
}

TEST_F(TreeCopy, ReportsMissingItems) {
  expectFailure(item("missing"), item("copy"), std::errc::no_such_file_or_directory);
}

TEST_F(TreeCopy, StopsWhereTheUserMayNotReadAndCleansUpReadOnlyFolders) {
  if (::geteuid() != 0) GTEST_SKIP() << "needs the rights to become another user";
  build().folder("open", 0777).folder("open/source").folder("open/source/read-only", 0755);
  build().file("open/source/read-only/file", "x").file("open/source/secret", "mine", 0600);
  std::filesystem::permissions(scratch.path(), std::filesystem::perms(0755));
  std::filesystem::permissions(records.path(), std::filesystem::perms(0777));
  std::filesystem::permissions(at("open/source/read-only"), std::filesystem::perms(0555));
  const int denied = asNobody([this] {
    const Status copied = copyItem(item("open/source"), item("open/copy"), partials);
    return causeOf(copied) == std::errc::permission_denied ? 0 : 1;
  });
  EXPECT_EQ(denied, 0);
  EXPECT_EQ(namesIn(at("open")).size(), 1U);
  EXPECT_TRUE(hasNoRecords());
}

TEST_F(TreeCopy, DropsSetIdBitsWithAnOwnerThatCannotBeKept) {
  if (::geteuid() != 0) GTEST_SKIP() << "needs the rights to become another user";
  build().folder("open", 0777).file("open/tool", "run", 06755).folder("open/folder", 0555);
  build().file("open/folder/tool", "run", 04711);
  std::filesystem::permissions(scratch.path(), std::filesystem::perms(0755));
  std::filesystem::permissions(records.path(), std::filesystem::perms(0777));
  const int copied = asNobody([this] {
    return copyItem(item("open/tool"), item("open/copy"), partials) &&
                   !copyItem(item("open/folder"), item("open/folder copy"), partials)
               ? 0
               : 1;
  });
  ASSERT_EQ(copied, 0);
  struct stat status = {};
  ASSERT_EQ(::stat(at("open/copy").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777U, 0755U);
  EXPECT_NE(status.st_uid, 0U);
}

TEST_F(TreeCopy, KeepsAttributesAndAccessListsOfReadOnlyFiles) {
  if (::geteuid() != 0) GTEST_SKIP() << "needs the rights to become another user";
  build().folder("open", 0777);
  std::filesystem::permissions(scratch.path(), std::filesystem::perms(0755));
  std::filesystem::permissions(records.path(), std::filesystem::perms(0777));
  const int copied = asNobody([this] {
    build().folder("open/source").file("open/source/file", "x");
    build()
        .accessList("open/source/file", "access", 1)
        .attribute("open/source/file", "user.a", "1");
    std::filesystem::permissions(at("open/source/file"), std::filesystem::perms(0444));
    return copyItem(item("open/source"), item("open/copy"), partials) ? 0 : 1;
  });
  ASSERT_EQ(copied, 0);
  EXPECT_EQ(snapshotOf(at("open/copy")), snapshotOf(at("open/source")));
}

struct MissingCall {
  const char* name;
  int number;
  int cause;
};

class TreeCopyWithout : public TreeCopy, public ::testing::WithParamInterface<MissingCall> {};

TEST_P(TreeCopyWithout, KeepsEverything) {
  build().folder("source");
  buildEveryKind(at("source"));
  const int failed = withoutSystemCall(GetParam().number, GetParam().cause, [this] {
    const Status copied = copyItem(item("source"), item("copy"), partials);
    const Status file = copyItem(item("source/plain"), item("file"), partials);
    return copied && file ? 0 : 1;
  });
  ASSERT_EQ(failed, 0);
  EXPECT_EQ(snapshotOf(at("copy")), snapshotOf(at("source")));
  EXPECT_EQ(namesIn(scratch.path()).size(), 3U);
}

TEST_P(TreeCopyWithout, ReplacesNothing) {
  build().folder("source").file("source/file", "new").folder("folder").file("folder/kept", "old");
  const TreeSnapshot before = snapshotOf(scratch.path());
  const int failed = withoutSystemCall(GetParam().number, GetParam().cause, [this] {
    const bool keptFolder =
        causeOf(copyItem(item("source"), item("folder"), partials)) == std::errc::file_exists;
    const bool keptFile = causeOf(copyItem(item("source/file"), item("folder/kept"), partials)) ==
                          std::errc::file_exists;
    return keptFolder && keptFile ? 0 : 1;
  });
  EXPECT_EQ(failed, 0);
  EXPECT_EQ(snapshotOf(scratch.path()), before);
}

INSTANTIATE_TEST_SUITE_P(Calls, TreeCopyWithout,
                         ::testing::Values(MissingCall{"RenameFlags", SYS_renameat2, EINVAL},
                                           MissingCall{"RenameCall", SYS_renameat2, ENOSYS},
                                           MissingCall{"CopyInKernel", SYS_copy_file_range, ENOSYS},
                                           MissingCall{"CopyAcross", SYS_copy_file_range, EXDEV},
                                           MissingCall{"Reflinks", SYS_ioctl, EOPNOTSUPP},
                                           MissingCall{"HoleSearch", SYS_lseek, EINVAL}),
                         [](const ::testing::TestParamInfo<MissingCall>& call) {
                           return call.param.name;
                         });

}  // namespace
}  // namespace tavrin::testing
