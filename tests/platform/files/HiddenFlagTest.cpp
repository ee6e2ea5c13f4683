#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "platform/linux/LinuxFileManager.h"
#include "tests/platform/files/PickedItem.h"
#include "tests/support/FakeLog.h"
#include "tests/support/ScratchFolder.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;

/// The hidden flag as file managers read it: the lines of ".hidden".
class HiddenFlag : public ::testing::Test {
 protected:
  void SetUp() override {
    for (const char* folder : {"in", "out"}) fs::create_directory(scratch_ / folder);
    for (const char* file : {"in/a", "in/b", "in/c"}) write(file, file);
    ASSERT_TRUE(grantByPicking(scopes_, scratch_.path()));
  }

  void write(const std::string& path, std::string_view text) {
    std::ofstream(scratch_ / path, std::ios::binary) << text;
  }

  std::string read(const std::string& path) {
    if (!fs::exists(fs::symlink_status(scratch_ / path))) return "(none)";
    std::ifstream file(scratch_ / path, std::ios::binary);
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
  }

  Status set(const std::string& path, IsHidden isHidden) {
    return files_.setHiddenAtPath(scratch_ / path, isHidden);
  }
  Status hide(const std::string& path) { return set(path, IsHidden::Yes); }
  Status show(const std::string& path) { return set(path, IsHidden::No); }
  Status move(const std::string& from, const std::string& to) {
    return files_.moveItemAtPath(scratch_ / from, scratch_ / to);
  }

  testing::ScratchFolder scratch_;
  FakeLog log_;
  LinuxSecurityScope scopes_{{scratch_ / "keys", scratch_ / "data/group", ""}, log_};
  LinuxFileManager files_{scopes_, log_, scratch_ / "data"};
};

TEST_F(HiddenFlag, IsALineOfTheFoldersList) {
  EXPECT_TRUE(hide("in/a"));
  EXPECT_TRUE(hide("in/b"));
  EXPECT_TRUE(hide("in/a"));
  EXPECT_EQ(read("in/.hidden"), "a\nb\n");
  EXPECT_TRUE(show("in/a"));
  EXPECT_TRUE(show("in/c"));
  EXPECT_EQ(read("in/.hidden"), "b\n");
  EXPECT_TRUE(show("in/b"));
  EXPECT_EQ(read("in/.hidden"), "(none)");
  EXPECT_EQ(hide("in/gone").error().code, std::errc::no_such_file_or_directory);
  EXPECT_EQ(read("in/.hidden"), "(none)");
}

TEST_F(HiddenFlag, OtherLinesStayAsTheyAre) {
  write("in/.hidden", "z\r\n\n a\na\nb.txt\nlast");
  ASSERT_EQ(::chmod((scratch_ / "in/.hidden").c_str(), 0640), 0);
  EXPECT_TRUE(show("in/a"));
  EXPECT_TRUE(hide("in/b"));
  EXPECT_EQ(read("in/.hidden"), "z\r\n\n a\nb.txt\nlast\nb\n");
  EXPECT_EQ(fs::status(scratch_ / "in/.hidden").permissions(), fs::perms(0640));
}

TEST_F(HiddenFlag, NamesMayHoldAnyBytesButALineBreak) {
  const std::string odd = "in/-n \xff\xfe\t'*$(x)";
  write(odd, "");
  write("in/two\nlines", "");
  EXPECT_TRUE(hide(odd));
  EXPECT_EQ(read("in/.hidden"), odd.substr(3) + "\n");
  EXPECT_EQ(hide("in/two\nlines").error().code, std::errc::invalid_argument);
  EXPECT_TRUE(show("in/two\nlines"));
  EXPECT_TRUE(move("in/two\nlines", "out/two\nlines"));
  EXPECT_TRUE(log_.lines().empty());
}

TEST_F(HiddenFlag, FollowsItsItem) {
  for (const char* item : {"in/a", "in/b", "in/c"}) ASSERT_TRUE(hide(item));
  EXPECT_TRUE(move("in/a", "out/moved"));
  EXPECT_EQ(read("in/.hidden"), "b\nc\n");
  EXPECT_EQ(read("out/.hidden"), "moved\n");
  EXPECT_TRUE(move("in/b", "in/renamed"));
  EXPECT_EQ(read("in/.hidden"), "c\nrenamed\n");
  EXPECT_TRUE(files_.removeItemAtPath(scratch_ / "in/renamed"));
  EXPECT_TRUE(files_.removeItemAtPath(scratch_ / "in/c"));
  EXPECT_EQ(read("in/.hidden"), "(none)");
}

TEST_F(HiddenFlag, AnItemIsNotHiddenByALineThatWasLeftBehind) {
  write("out/.hidden", "a\nother\n");
  EXPECT_TRUE(move("in/a", "out/a"));
  EXPECT_EQ(read("out/.hidden"), "other\n");
  write("out/.hidden", "new\nother\ncopy\n");
  EXPECT_TRUE(files_.createFileAtPath(scratch_ / "out/new", {}, FileManager::Replace::No));
  EXPECT_EQ(read("out/.hidden"), "other\ncopy\n");
  EXPECT_TRUE(files_.copyItemAtPath(scratch_ / "in/b", scratch_ / "out/copy"));
  EXPECT_EQ(read("out/.hidden"), "other\n");
  write("out/.hidden", "copy\nother\n");
  EXPECT_TRUE(files_.copyFileReplacingAtPath(scratch_ / "in/b", scratch_ / "out/copy"));
  EXPECT_EQ(read("out/.hidden"), "other\n");
  EXPECT_FALSE(files_.createFileAtPath(scratch_ / "out/other/new", {}, FileManager::Replace::No));
  EXPECT_EQ(read("out/.hidden"), "other\n");
}

TEST_F(HiddenFlag, ABatchWritesOnceAtItsEnd) {
  auto batch = files_.batch();
  auto inner = files_.batch();
  for (const char* item : {"in/a", "in/b", "in/c"}) EXPECT_TRUE(hide(item));
  EXPECT_TRUE(show("in/b"));
  EXPECT_TRUE(move("in/c", "out/c"));
  inner.reset();
  EXPECT_EQ(read("out/.hidden"), "(none)");
  batch.reset();
  EXPECT_EQ(read("in/.hidden"), "a\n");
  EXPECT_EQ(read("out/.hidden"), "c\n");
}

TEST_F(HiddenFlag, ABatchKnowsItsOwnChangesWithoutWriting) {
  for (const char* item : {"in/a", "in/b"}) ASSERT_TRUE(hide(item));
  write("out/.hidden", "b\nother\n");
  auto batch = files_.batch();
  EXPECT_TRUE(move("in/a", "out/a"));
  EXPECT_TRUE(show("out/a"));
  EXPECT_TRUE(hide("in/c"));
  EXPECT_TRUE(move("in/c", "in/renamed"));
  EXPECT_TRUE(move("in/b", "out/b"));
  EXPECT_EQ(read("in/.hidden"), "a\nb\n");
  EXPECT_EQ(read("out/.hidden"), "b\nother\n");
  batch.reset();
  EXPECT_EQ(read("in/.hidden"), "renamed\n");
  EXPECT_EQ(read("out/.hidden"), "b\nother\n");
}

TEST_F(HiddenFlag, ABatchForgetsAFolderThatItMovesOrRemoves) {
  auto batch = files_.batch();
  EXPECT_TRUE(hide("in/a"));
  EXPECT_TRUE(move("in", "out/in"));
  EXPECT_EQ(hide("in/b").error().code, std::errc::no_such_file_or_directory);
  EXPECT_EQ(move("in/b", "out/b").error().code, std::errc::no_such_file_or_directory);
  EXPECT_TRUE(hide("out/in/b"));
  fs::create_directory_symlink(scratch_ / "out/in", scratch_ / "link");
  EXPECT_TRUE(hide("link/c"));
  EXPECT_TRUE(move("link", "moved link"));
  EXPECT_EQ(hide("link/c").error().code, std::errc::no_such_file_or_directory);
  fs::create_directory_symlink(scratch_ / "out", scratch_ / "link");
  EXPECT_TRUE(hide("out/in/b"));
  EXPECT_FALSE(hide("link/none"));
  EXPECT_TRUE(move("link/in", "link/in 2"));
  EXPECT_FALSE(hide("out/in/b"));
  EXPECT_TRUE(files_.removeItemAtPath(scratch_ / "out/in 2"));
  batch.reset();
  EXPECT_FALSE(fs::exists(scratch_ / "out/in"));
  EXPECT_TRUE(log_.lines().empty()) << log_.lines().front();
}

TEST_F(HiddenFlag, TheListItselfMayBeMovedAndRemoved) {
  ASSERT_TRUE(hide("in/a"));
  auto batch = files_.batch();
  EXPECT_TRUE(show("in/b"));
  EXPECT_TRUE(move("in/.hidden", "out/.hidden"));
  EXPECT_TRUE(hide("in/b"));
  batch.reset();
  EXPECT_EQ(read("in/.hidden"), "b\n");
  EXPECT_EQ(read("out/.hidden"), "a\n");
  EXPECT_TRUE(files_.removeItemAtPath(scratch_ / "out/.hidden"));
  EXPECT_EQ(read("out/.hidden"), "(none)");
}

TEST_F(HiddenFlag, AMovedListTakesTheWaitingChangesAlong) {
  for (const char* item : {"in/a", "in/b"}) ASSERT_TRUE(hide(item));
  auto batch = files_.batch();
  EXPECT_TRUE(show("in/a"));
  EXPECT_TRUE(move("in/.hidden", "out/.hidden"));
  batch.reset();
  EXPECT_EQ(read("out/.hidden"), "b\n");
}

TEST_F(HiddenFlag, AListThatIsNoPlainFileIsLeftAlone) {
  write("outside", "a\n");
  fs::create_symlink(scratch_ / "outside", scratch_ / "in/.hidden");
  EXPECT_EQ(hide("in/b").error().code, std::errc::too_many_symbolic_link_levels);
  EXPECT_EQ(show("in/a").error().code, std::errc::too_many_symbolic_link_levels);
  EXPECT_EQ(read("outside"), "a\n");
  // What the list cannot follow still moves, and the log hears why once.
  auto batch = files_.batch();
  EXPECT_TRUE(move("in/a", "out/a"));
  EXPECT_TRUE(move("in/b", "out/b"));
  EXPECT_EQ(log_.lines().size(), 1U);
  fs::create_directory(scratch_ / "out/.hidden");
  EXPECT_EQ(show("out/a").error().code, std::errc::is_a_directory);
}

TEST_F(HiddenFlag, NeedsAScope) {
  const std::string outside = scratch_.path() + "-outside";
  fs::create_directory(outside);
  std::ofstream(outside + "/file") << "";
  EXPECT_EQ(files_.setHiddenAtPath(outside + "/file", IsHidden::Yes).error().code,
            std::errc::permission_denied);
  auto batch = files_.batch();
  EXPECT_TRUE(hide("in/a"));
  fs::create_symlink(outside, scratch_ / "link");
  EXPECT_EQ(hide("link/file").error().code, std::errc::permission_denied);
  batch.reset();
  EXPECT_FALSE(fs::exists(outside + "/.hidden"));
  fs::remove_all(outside);
}

TEST_F(HiddenFlag, FollowsItsItemsThroughMoreFoldersThanABatchHolds) {
  constexpr int folders = 40;
  const auto folder = [](const char* kind, int number) { return kind + std::to_string(number); };
  for (int number = 0; number < folders; ++number) {
    for (const char* kind : {"from", "to"}) fs::create_directory(scratch_ / folder(kind, number));
    write(folder("from", number) + "/a", "a");
    EXPECT_TRUE(hide(folder("from", number) + "/a"));
  }
  {
    const auto batch = files_.batch();
    // An odd one, so that the folders are let go between the two of a move too.
    EXPECT_TRUE(files_.removeItemAtPath(scratch_ / "in/a"));
    for (int number = 0; number < folders; ++number) {
      EXPECT_TRUE(move(folder("from", number) + "/a", folder("to", number) + "/b"));
    }
  }
  for (int number = 0; number < folders; ++number) {
    EXPECT_EQ(read(folder("from", number) + "/.hidden"), "(none)") << number;
    EXPECT_EQ(read(folder("to", number) + "/.hidden"), "b\n") << number;
  }
}

}  // namespace
}  // namespace tavrin
