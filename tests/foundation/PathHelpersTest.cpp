#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "foundation/PathHelpers.h"

namespace tavrin {
namespace {

std::string uniqueAmong(const std::set<std::string>& present, const std::string& wanted) {
  return uniquePathForPath(wanted,
                           [&](const std::string& path) { return present.count(path) != 0; });
}

TEST(UniquePath, NumbersBeforeTheLastExtensionFromTwo) {
  EXPECT_EQ(uniqueAmong({"/a 2.txt"}, "/a.txt"), "/a.txt");
  EXPECT_EQ(uniqueAmong({"/a.txt"}, "/a.txt"), "/a 2.txt");
  EXPECT_EQ(uniqueAmong({"/a.txt", "/a 2.txt"}, "/a.txt"), "/a 3.txt");
  EXPECT_EQ(uniqueAmong({"/a.txt", "/a 3.txt"}, "/a.txt"), "/a 2.txt");
  EXPECT_EQ(uniqueAmong({"/notes"}, "/notes"), "/notes 2");
  EXPECT_EQ(uniqueAmong({"/archive.tar.gz"}, "/archive.tar.gz"), "/archive.tar 2.gz");
  EXPECT_EQ(uniqueAmong({"/Project.app"}, "/Project.app"), "/Project 2.app");
  EXPECT_EQ(uniqueAmong({"/.bashrc"}, "/.bashrc"), "/.bashrc 2");
  EXPECT_EQ(uniqueAmong({"/v1.5/notes"}, "/v1.5/notes"), "/v1.5/notes 2");
  EXPECT_EQ(uniqueAmong({"/\xff.\xfe"}, "/\xff.\xfe"), "/\xff 2.\xfe");
}

TEST(UniquePath, GoesOnPastTenWithoutALimit) {
  std::set<std::string> present = {"/a.txt"};
  for (int number = 2; number < 1200; ++number) {
    present.insert("/a " + std::to_string(number) + ".txt");
  }
  EXPECT_EQ(uniqueAmong(present, "/a.txt"), "/a 1200.txt");
}

TEST(HomeRule, ReplacesALeadingTildeOnly) {
  EXPECT_EQ(expandingHome("~/Documents", "/home/ann"), "/home/ann/Documents");
  EXPECT_EQ(expandingHome("~", "/home/ann"), "/home/ann");
  EXPECT_EQ(expandingHome("/a/~/b", "/home/ann"), "/a/~/b");
  EXPECT_EQ(expandingHome("", "/home/ann"), "");
  EXPECT_EQ(abbreviatingHome("/home/ann/x", "/home/ann"), "~/x");
  EXPECT_EQ(abbreviatingHome("/home/anna/x", "/home/ann"), "/home/anna/x");
}

TEST(DisplayName, KnowsTheFoldersOfTheHomeByExactPath) {
  const auto shout = [](const std::string& key) { return "<" + key + ">"; };
  const auto name = [&](const std::string& path) {
    return displayNameOfFolder(path, "/home/ann", shout);
  };
  for (const char* folder : {"Downloads", "Pictures", "Music", "Movies", "Desktop", "Documents"}) {
    EXPECT_EQ(name(std::string("/home/ann/") + folder), "<" + std::string(folder) + ">");
  }
  EXPECT_EQ(name("Undefined"), "<Undefined>");
  EXPECT_EQ(name("/home/ann/Desktop/"), "Desktop");
  EXPECT_EQ(name("/home/bob/Desktop"), "Desktop");
  EXPECT_EQ(name("/srv/Undefined"), "Undefined");
}

TEST(InstalledApplication, NeedsAtLeastOne) {
  EXPECT_TRUE(isApplicationInstalled("a.b", [](const std::string&) { return 2U; }));
  EXPECT_FALSE(isApplicationInstalled("a.b", [](const std::string&) { return 0U; }));
}

}  // namespace
}  // namespace tavrin
