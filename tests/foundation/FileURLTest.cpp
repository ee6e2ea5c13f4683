#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "foundation/FileURL.h"

namespace tavrin {
namespace {

std::string pathOf(std::string_view string) {
  const auto url = FileURL::urlWithString(string);
  return url ? url->path() : "(no path)";
}

TEST(FileURL, ReadsWrittenURLs) {
  EXPECT_EQ(pathOf("file:///tmp/a%20b.txt"), "/tmp/a b.txt");
  EXPECT_EQ(pathOf("file:///tmp/%E2%82%AC/%ff"), "/tmp/\xe2\x82\xac/\xff");
  EXPECT_EQ(pathOf("FILE://LocalHost/tmp/a/"), "/tmp/a");
  EXPECT_EQ(pathOf("file:/tmp/a"), "/tmp/a");
  EXPECT_EQ(pathOf("/tmp/a%3Fb"), "/tmp/a?b");
  EXPECT_EQ(pathOf("file:///tmp/a?query#fragment"), "/tmp/a");
  EXPECT_EQ(pathOf("file:///"), "/");
  EXPECT_EQ(pathOf("file:///a%7Cb"), "/a|b");
  EXPECT_EQ(pathOf("file:///a:b"), "/a:b");
}

TEST(FileURL, FindsNoPathInAnythingElse) {
  for (const char* string :
       {"", "file:///a b", "file:///a%2", "file:///a%zz", "file:///a\xc3\xa4", "file:///a\nb",
        "file:///a\"b", "sftp://host/a", "https:///a", "trash:///a", "file://elsewhere/a",
        "file:", "file://", "relative/a", "?a", "file:///a%00b", "file:///a|b", "file:///{a}"}) {
    EXPECT_EQ(pathOf(string), "(no path)") << string;
  }
}

TEST(FileURL, WritesEveryPathSoThatItReadsBack) {
  std::string everyByte = "/";
  for (int byte = 1; byte < 256; ++byte) everyByte += static_cast<char>(byte);
  for (const std::string& path :
       std::vector<std::string>{"/tmp", "/", "/a b/%41;?#|", "/-rf", "/new\nline", everyByte}) {
    const FileURL url = FileURL::fileURLWithPath(path);
    EXPECT_EQ(pathOf(url.absoluteString()), url.path());
  }
  EXPECT_EQ(FileURL::fileURLWithPath("/tmp").absoluteString(), "file:///tmp");
  EXPECT_EQ(FileURL::fileURLWithPath("/a b|c").absoluteString(), "file:///a%20b%7Cc");
}

TEST(FileURL, TakesAPathAsItStands) {
  EXPECT_EQ(FileURL::fileURLWithPath("/tmp/a%20b/").path(), "/tmp/a%20b");
  EXPECT_EQ(FileURL::fileURLWithPath("file:///tmp").path(), "/file:///tmp");
  EXPECT_EQ(FileURL::fileURLWithPath("a", "/folder").path(), "/folder/a");
  EXPECT_EQ(FileURL::fileURLWithPath("").path(), "/");
}

TEST(FileURL, WalksUpToTheRootAndStaysThere) {
  FileURL url = FileURL::fileURLWithPath("/a/b");
  EXPECT_EQ(url.lastPathComponent(), "b");
  url = url.deletingLastPathComponent();
  EXPECT_EQ(url.path(), "/a");
  url = url.deletingLastPathComponent().deletingLastPathComponent();
  EXPECT_EQ(url.path(), "/");
}

TEST(FileList, SplitsAtEveryBarAndJoinsBack) {
  using Pieces = std::vector<std::string_view>;
  EXPECT_EQ(splitFileList("a|b"), (Pieces{"a", "b"}));
  EXPECT_EQ(splitFileList(""), Pieces{""});
  EXPECT_EQ(splitFileList("|a||"), (Pieces{"", "a", "", ""}));

  const std::vector<std::string> paths = {"/a|b", "/c d"};
  const std::string list = joinFileList(paths);
  std::vector<std::string> back;
  for (const std::string_view piece : splitFileList(list)) back.push_back(pathOf(piece));
  EXPECT_EQ(back, paths);
}

}  // namespace
}  // namespace tavrin
