#include <sys/syscall.h>

#include <cerrno>
#include <limits>

#include "platform/linux/FileCreation.h"
#include "tests/platform/files/EngineFixture.h"
#include "tests/support/ChildProcess.h"

namespace tavrin::testing {
namespace {

class FileCreation : public EngineFixture {
 protected:
  const PropertyList::Data bytes = {0, 1, 2, 0xff};
};

TEST_F(FileCreation, WritesWhatIsReadBack) {
  const PropertyList::Data large(300'000, 7);
  ASSERT_TRUE(createFile(item("small"), bytes));
  ASSERT_TRUE(createFile(item("large"), large));
  ASSERT_TRUE(createFile(item("empty"), {}));
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
    EXPECT_EQ(causeOf(createFile(item(taken), bytes)), std::errc::file_exists);
  }
  const MountedFolder small("size=64k");
  if (small.isMounted()) {
    EXPECT_EQ(causeOf(createFile(OpenItem(small / "new"), PropertyList::Data(200'000, 1))),
              std::errc::no_space_on_device);
    EXPECT_TRUE(namesIn(small.path()).empty());
  }
  EXPECT_EQ(snapshotOf(scratch.path()), before);
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
