#include <sys/syscall.h>

#include <cerrno>
#include <limits>
#include <set>

#include "platform/linux/FileCreation.h"
#include "tests/platform/files/EngineFixture.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/FakeLog.h"

namespace tavrin::testing {
namespace {

class FileCreation : public EngineFixture {
 protected:
  static bool holdsOnly(const std::string& folder, const std::set<std::string>& names) {
    std::set<std::string> found;
    for (const auto& [name, ignored] : namesIn(folder)) found.insert(name);
    return found == names;
  }

  const PropertyList::Data bytes = {0, 1, 2, 0xff};
};

TEST_F(FileCreation, WritesWhatIsReadBack) {
  const PropertyList::Data large(300'000, 7);
  ASSERT_TRUE(createFile(item("small"), bytes, &partials));
  ASSERT_TRUE(createFile(item("large"), large, &partials));
  ASSERT_TRUE(createFile(item("empty"), {}, &partials));
  const std::size_t any = std::numeric_limits<std::size_t>::max();
  EXPECT_EQ(readFile(item("small"), any).value(), bytes);
  EXPECT_EQ(readFile(item("large"), large.size()).value(), large);
  EXPECT_EQ(readFile(item("empty"), 0).value(), PropertyList::Data());
  EXPECT_EQ(readFile(item("large"), large.size() - 1).error().code, std::errc::file_too_large);
}

TEST_F(FileCreation, ReplacesNothingAndLeavesNothing) {
  build().file("file", "old").folder("folder").symbolicLink("link", "/nowhere");
  const TreeSnapshot before = snapshotOf(scratch.path());
  for (const char* taken : {"file", "folder", "link"}) {
    EXPECT_EQ(causeOf(createFile(item(taken), bytes, &partials)), std::errc::file_exists);
  }
  const MountedFolder small("size=64k");
  if (small.isMounted()) {
    EXPECT_EQ(
        causeOf(createFile(OpenItem(small / "new"), PropertyList::Data(200'000, 1), &partials)),
        std::errc::no_space_on_device);
    EXPECT_TRUE(namesIn(small.path()).empty());
  }
  EXPECT_EQ(snapshotOf(scratch.path()), before);
}

TEST_F(FileCreation, WhatItCannotReplaceStaysAndNothingIsLeft) {
  build().folder("folder").file("folder/inside", "x").pipe("pipe");
  const TreeSnapshot before = snapshotOf(at("folder"));
  EXPECT_EQ(causeOf(createOrReplaceFile(item("folder"), bytes, partials)),
            std::errc::is_a_directory);
  EXPECT_EQ(snapshotOf(at("folder")), before);
  EXPECT_TRUE(createOrReplaceFile(item("pipe"), bytes, partials));
  EXPECT_EQ(readFile(item("pipe"), bytes.size()).value(), bytes);

  const MountedFolder small("size=64k");
  if (small.isMounted()) {
    TreeBuilder(small.path()).file("old", "old");
    EXPECT_EQ(causeOf(createOrReplaceFile(OpenItem(small / "old"), PropertyList::Data(200'000, 1),
                                          partials)),
              std::errc::no_space_on_device);
    EXPECT_TRUE(holdsOnly(small.path(), {"old"}));
    EXPECT_EQ(readFile(OpenItem(small / "old"), 10).value(), (PropertyList::Data{'o', 'l', 'd'}));
  }
  EXPECT_TRUE(holdsOnly(scratch.path(), {"folder", "pipe"}));
  EXPECT_TRUE(hasNoRecords());
}

TEST_F(FileCreation, AFileIsWholeWheneverItsReplacementIsKilled) {
  const PropertyList::Data old(400'000, 'o');
  const PropertyList::Data young(400'000, 'y');
  for (unsigned round = 0; round < 25; ++round) {
    ASSERT_TRUE(createOrReplaceFile(item("file"), old, partials));
    killAfter(round * 200U, [&] {
      while (createOrReplaceFile(item("file"), young, partials)) continue;
    });
    const auto read = readFile(item("file"), young.size());
    ASSERT_TRUE(read);
    EXPECT_TRUE(read.value() == old || read.value() == young);
    FakeLog log;
    partials.clearLeftovers(log, clearing);
    EXPECT_TRUE(log.lines().empty());
    EXPECT_TRUE(hasNoRecords());
    EXPECT_TRUE(holdsOnly(scratch.path(), {"file"}));
  }
}

TEST_F(FileCreation, ReadsOnlyRegularFilesWithoutWaiting) {
  build().folder("folder").pipe("pipe").file("file", "x").symbolicLink("link", "file");
  EXPECT_EQ(readFile(item("folder"), 10).error().code, std::errc::is_a_directory);
  EXPECT_EQ(readFile(item("pipe"), 10).error().code, std::errc::invalid_argument);
  EXPECT_EQ(readFile(item("link"), 10).error().code, std::errc::too_many_symbolic_link_levels);
  EXPECT_EQ(readFile(item("missing"), 10).error().code, std::errc::no_such_file_or_directory);
}

}  // namespace
}  // namespace tavrin::testing
