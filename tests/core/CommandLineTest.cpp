#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/CommandLine.h"

namespace tavrin {
namespace {

using Paths = std::vector<std::string>;

TEST(CommandLine, ResolvesFilesAgainstTheFolderOfTheStart) {
  const CommandLine line =
      parseCommandLine({"a b", "/abs", "file:///u%20v", "FILE:/w", "a:b", "--", "-x"}, "/home/ann");
  EXPECT_EQ(line.mode, CommandLine::Mode::Run);
  EXPECT_EQ(line.files,
            (Paths{"/home/ann/a b", "/abs", "/u v", "/w", "/home/ann/a:b", "/home/ann/-x"}));
}

TEST(CommandLine, RefusesWhatIsNoFile) {
  for (const char* argument : {"http://x/y", "sftp://host/a", "file:///%zz", "", "--unknown"}) {
    EXPECT_EQ(parseCommandLine({argument}, "/").mode, CommandLine::Mode::Invalid) << argument;
  }
}

}  // namespace
}  // namespace tavrin
