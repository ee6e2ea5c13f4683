#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "foundation/PathString.h"

namespace tavrin {
namespace {

TEST(PathString, SplitsAPathAtItsLastComponent) {
  struct Case {
    std::string path, last, parent;
  };
  for (const Case& c : std::vector<Case>{{"/a/b/c", "c", "/a/b"},
                                         {"/a/b/c//", "c", "/a/b"},
                                         {"/a", "a", "/"},
                                         {"/", "/", "/"},
                                         {"//", "/", "/"},
                                         {"a", "a", ""},
                                         {"a/b", "b", "a"},
                                         {"", "", ""},
                                         {"/a//b", "b", "/a"},
                                         {"/x/-rf \n", "-rf \n", "/x"},
                                         {"/x/\xff\xfe", "\xff\xfe", "/x"}}) {
    EXPECT_EQ(lastPathComponent(c.path), c.last) << c.path;
    EXPECT_EQ(deletingLastPathComponent(c.path), c.parent) << c.path;
  }
}

TEST(PathString, FindsTheExtensionInTheLastComponentOnly) {
  struct Case {
    std::string path, extension, base;
  };
  for (const Case& c : std::vector<Case>{{"/a/b.txt", "txt", "/a/b"},
                                         {"/a/b.tar.gz", "gz", "/a/b.tar"},
                                         {"/a.d/b", "", "/a.d/b"},
                                         {"/a/.bashrc", "", "/a/.bashrc"},
                                         {"/a/.config.json", "json", "/a/.config"},
                                         {"/a/b.", "", "/a/b"},
                                         {"/a/Project.app/", "app", "/a/Project"},
                                         {".hidden", "", ".hidden"},
                                         {"b.txt", "txt", "b"},
                                         {"/", "", "/"},
                                         {"", "", ""}}) {
    EXPECT_EQ(pathExtension(c.path), c.extension) << c.path;
    EXPECT_EQ(deletingPathExtension(c.path), c.base) << c.path;
  }
}

TEST(PathString, ListsComponentsWithTheRootFirst) {
  using Components = std::vector<std::string>;
  EXPECT_EQ(pathComponents("/a//b/"), (Components{"/", "a", "b"}));
  EXPECT_EQ(pathComponents("/"), Components{"/"});
  EXPECT_EQ(pathComponents("a/b"), (Components{"a", "b"}));
  EXPECT_EQ(pathComponents(""), Components{});
}

TEST(PathString, JoinsWithExactlyOneSeparator) {
  EXPECT_EQ(appendingPathComponent("/a/", "b"), "/a/b");
  EXPECT_EQ(appendingPathComponent("/a", "/b"), "/a/b");
  EXPECT_EQ(appendingPathComponent("/", "b"), "/b");
  EXPECT_EQ(appendingPathComponent("", "b"), "b");
}

TEST(PathString, StandardizesByTextAlone) {
  EXPECT_EQ(standardizingPath("/a/./b//c/../d/"), "/a/b/d");
  EXPECT_EQ(standardizingPath("/../../a"), "/a");
  EXPECT_EQ(standardizingPath("/a/.."), "/");
  EXPECT_EQ(standardizingPath("a/./../b"), "a/../b");
}

TEST(PathString, ComparesAncestorsByWholeComponents) {
  EXPECT_TRUE(isPathAtOrBelow("/a/b", "/a"));
  EXPECT_TRUE(isPathAtOrBelow("/a", "/a"));
  EXPECT_TRUE(isPathAtOrBelow("/anything", "/"));
  EXPECT_FALSE(isPathAtOrBelow("/ab", "/a"));
  EXPECT_FALSE(isPathAtOrBelow("/", "/a"));
}

}  // namespace
}  // namespace tavrin
