#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <functional>

#include "platform/linux/ItemIcons.h"
#include "platform/linux/LinuxFileManager.h"
#include "tests/platform/desktop/DesktopSession.h"
#include "tests/platform/files/PickedItem.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/FakeImages.h"
#include "tests/support/FakeLog.h"
#include "tests/support/ScratchFolder.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using tavrin::testing::MountedFolder;
using tavrin::testing::ScratchFolder;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

/// Of the image whose contents are "red".
constexpr const char* red = "b1f51a511f1da0cd348b8f8598db32e61cb963e5fc69e2b41485bf99590ed75a";

/// The icons of a session that keeps no metadata: what is left is the folders' own files.
class ItemIconsTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() { test::setVariable("GIO_USE_VFS", "local"); }

  ItemIconsTest() {
    fs::create_directories(folder());
    grant(scratch_ / "granted");
  }

  void grant(const std::string& path) { ASSERT_TRUE(grantByPicking(scopes_, path)); }
  std::string folder() const { return scratch_ / "granted/folder"; }
  std::string directoryFile() const { return folder() + "/.directory"; }
  std::string store() const { return scratch_ / "data/group/ItemIcons"; }
  std::string iconOf(const std::string& digest) const { return store() + "/" + digest + ".png"; }

  bool set(const std::string& contents, const std::string& path) {
    const FakeImage image(contents);
    return icons_.setIcon(&image, path);
  }
  bool remove(const std::string& path) { return icons_.setIcon(nullptr, path); }
  /// The lines of the log but for the one that there are no metadata.
  std::vector<std::string> failures() {
    std::vector<std::string> lines;
    for (const std::string& line : log_.lines()) {
      if (line.find("GIO's") == std::string::npos) lines.push_back(line);
    }
    return lines;
  }

  ScratchFolder scratch_;
  FakeLog log_;
  LinuxSecurityScope scopes_{{scratch_ / "keys", scratch_ / "data/group", ""}, log_};
  LinuxFileManager files_{scopes_, log_, scratch_ / "data"};
  ItemIcons icons_{scopes_.startedScopes(), files_.partialItems(), files_, "group", log_};
};

TEST_F(ItemIconsTest, keepsTheImageOnceAndNamesItInTheFolder) {
  fs::create_directory(scratch_ / "granted/other");
  EXPECT_TRUE(set("red", folder()));
  EXPECT_TRUE(set("red", scratch_ / "granted/other/"));
  EXPECT_EQ(test::readFile(directoryFile()), "[Desktop Entry]\nIcon=" + iconOf(red) + "\n");
  EXPECT_EQ(test::readFile(scratch_ / "granted/other/.directory"), test::readFile(directoryFile()));
  EXPECT_EQ(test::readFile(iconOf(red)), "red");
  EXPECT_TRUE(set("blue", folder()));
  EXPECT_EQ(std::distance(fs::directory_iterator(store()), {}), 2);
  EXPECT_THAT(failures(), IsEmpty());
  EXPECT_THAT(log_.lines(), ElementsAre(HasSubstr("metadata")));
}

TEST_F(ItemIconsTest, aRemovedIconLeavesNothingInTheFolder) {
  EXPECT_TRUE(remove(folder()));
  EXPECT_TRUE(set("red", folder()));
  EXPECT_TRUE(remove(folder()));
  EXPECT_TRUE(fs::is_empty(folder()));
  EXPECT_THAT(failures(), IsEmpty());
}

TEST_F(ItemIconsTest, whatTheUserKeepsInTheFolderStays) {
  const std::string kept = "[Desktop Entry]\r\nName=Photos\r\n";
  test::writeFile(directoryFile(), kept);
  ::chmod(directoryFile().c_str(), 0640);
  EXPECT_TRUE(set("red", folder()));
  EXPECT_EQ(test::readFile(directoryFile()),
            "[Desktop Entry]\r\nIcon=" + iconOf(red) + "\r\nName=Photos\r\n");
  EXPECT_EQ(fs::status(directoryFile()).permissions(), fs::perms{0640});
  EXPECT_TRUE(remove(folder()));
  EXPECT_EQ(test::readFile(directoryFile()), kept);
}

TEST_F(ItemIconsTest, whatIsNoPlainSmallFileStaysAsItIs) {
  const std::string outside = scratch_ / "outside";
  test::writeFile(outside, "[Desktop Entry]\nIcon=mine\n");
  const std::string large(std::size_t{2} << 20U, '#');
  const std::vector<std::pair<std::string, std::function<void()>>> obstacles = {
      {"a link", [&] { fs::create_symlink(outside, directoryFile()); }},
      {"a folder", [&] { fs::create_directory(directoryFile()); }},
      {"a pipe", [&] { ::mkfifo(directoryFile().c_str(), 0600); }},
      {"a large file", [&] { test::writeFile(directoryFile(), large); }},
  };
  for (const auto& [name, make] : obstacles) {
    make();
    const fs::file_status before = fs::symlink_status(directoryFile());
    EXPECT_FALSE(set("red", folder())) << name;
    EXPECT_FALSE(remove(folder())) << name;
    EXPECT_EQ(fs::symlink_status(directoryFile()).type(), before.type()) << name;
    fs::remove_all(directoryFile());
  }
  EXPECT_EQ(failures().size(), 8U);
  EXPECT_EQ(test::readFile(outside), "[Desktop Entry]\nIcon=mine\n");
}

TEST_F(ItemIconsTest, onlyWhatIsGrantedCanGetAnIcon) {
  const std::string outside = scratch_ / "outside";
  fs::create_directory(outside);
  fs::create_directory_symlink(outside, scratch_ / "granted/link");
  EXPECT_FALSE(set("red", outside));
  EXPECT_FALSE(set("red", scratch_ / "granted/link"));
  EXPECT_FALSE(set("red", scratch_ / "granted/missing"));
  EXPECT_FALSE(set("red", "/"));
  EXPECT_FALSE(set("red", "relative"));
  EXPECT_FALSE(set("red", ""));
  EXPECT_TRUE(fs::is_empty(outside));
  EXPECT_THAT(failures(),
              ElementsAre(HasSubstr("Permission denied"), HasSubstr("No such file"), HasSubstr("/"),
                          HasSubstr("relative"), HasSubstr("icon of  not changed")));
}

TEST_F(ItemIconsTest, aGrantedFolderItselfCanGetAnIcon) {
  const std::string alone = scratch_ / "alone";
  fs::create_directory(alone);
  grant(alone);
  EXPECT_TRUE(set("red", alone));
  EXPECT_TRUE(fs::exists(alone + "/.directory"));
}

TEST_F(ItemIconsTest, windowsThatWatchAnItemAreTold) {
  const std::string file = scratch_ / "granted/file";
  test::writeFile(file, "");
  ::chmod(file.c_str(), 0604);
  const FileDescriptor events(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
  ASSERT_GE(::inotify_add_watch(events.get(), file.c_str(), IN_ATTRIB), 0);
  remove(file);
  inotify_event event{};
  EXPECT_EQ(::read(events.get(), &event, sizeof event), static_cast<ssize_t>(sizeof event));
  EXPECT_EQ(fs::status(file).permissions(), fs::perms{0604});
}

TEST_F(ItemIconsTest, aReadOnlyFolderKeepsItsIcon) {
  MountedFolder disk("size=1m");
  if (!disk.isMounted()) GTEST_SKIP() << "needs the rights to mount";
  fs::create_directory(disk / "folder");
  grant(disk.path());
  EXPECT_TRUE(set("red", disk / "folder"));
  const std::string before = test::readFile(disk / "folder/.directory");
  ASSERT_TRUE(disk.makeReadOnly());
  EXPECT_FALSE(remove(disk / "folder"));
  EXPECT_FALSE(set("blue", disk / "folder"));
  EXPECT_EQ(test::readFile(disk / "folder/.directory"), before);
  EXPECT_EQ(failures().size(), 2U);
}

TEST_F(ItemIconsTest, theImagesThatWereSetLastAreKept) {
  EXPECT_TRUE(set("red", folder()));
  for (std::size_t number = 1; number < IconStore::mostImages; ++number) {
    test::writeFile(store() + "/" + std::to_string(number) + ".png", "x");
  }
  const timespec old[2] = {{1, 0}, {1, 0}};
  for (const std::string& first : {store() + "/7.png", iconOf(red)}) {
    ASSERT_EQ(::utimensat(AT_FDCWD, first.c_str(), old, 0), 0);
  }
  // A use makes an image new again.
  EXPECT_TRUE(set("red", folder()));
  EXPECT_TRUE(set("blue", folder()));
  EXPECT_EQ(static_cast<std::size_t>(std::distance(fs::directory_iterator(store()), {})),
            IconStore::mostImages);
  EXPECT_FALSE(fs::exists(store() + "/7.png"));
  EXPECT_TRUE(fs::exists(iconOf(red)));
}

}  // namespace
}  // namespace tavrin
