#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QLocale>
#include <sstream>
#include <string>
#include <vector>

#include "platform/linux/LinuxDirectories.h"
#include "platform/linux/panel/FolderListModel.h"
#include "platform/linux/panel/MountedVolumes.h"
#include "platform/linux/panel/PanelPlaces.h"
#include "platform/linux/panel/TypedPath.h"
#include "sandbox/AppSandboxFileAccessOpenSavePanelDelegate.h"
#include "tests/platform/desktop/DesktopSession.h"

namespace tavrin {
namespace {

using testing::ElementsAre;

constexpr PanelRules everything{true, true, nullptr};
constexpr PanelRules foldersOnly{false, true, nullptr};

std::vector<std::string> namesIn(const FolderListModel& model) {
  std::vector<std::string> names;
  for (int row = 0; row < model.rowCount(); ++row) {
    names.push_back(model.urlOfRow(row).lastPathComponent());
  }
  return names;
}

QString text(const FolderListModel& model, int row, int column) {
  return model.data(model.index(row, column), Qt::DisplayRole).toString();
}

bool isEnabled(const FolderListModel& model, const std::string& name) {
  const Qt::ItemFlags flags = model.index(model.rowOfName(name).value(), 0).flags();
  EXPECT_EQ(flags.testFlag(Qt::ItemIsEnabled), flags.testFlag(Qt::ItemIsSelectable)) << name;
  return flags.testFlag(Qt::ItemIsEnabled);
}

class PanelModelTest : public testing::Test {
 protected:
  PanelModelTest() { QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates)); }

  void makeFile(const std::string& name, const std::string& contents = "x") const {
    test::writeFile(folder_ / name, contents);
  }
  void makeFolder(const std::string& name) const {
    ASSERT_EQ(::mkdir((folder_ / name).c_str(), 0755), 0);
  }

  test::TemporaryFolder folder_;
};

TEST_F(PanelModelTest, listsFoldersFirstThenNamesAsThePeopleOfTheLanguageSortThem) {
  for (const char* name : {"Notes 10", "notes 2", "\xc3\x84rger", "Zebra", "banana"})
    makeFile(name);
  makeFolder("zoo");
  makeFolder("Attic");
  ASSERT_EQ(::symlink("Attic", (folder_ / "link to attic").c_str()), 0);
  ASSERT_EQ(::symlink("nowhere", (folder_ / "dangling").c_str()), 0);
  FolderListModel model(everything, HiddenFiles::LeaveOut, nullptr);
  ASSERT_TRUE(model.setFolder(folder_.path()));
  EXPECT_THAT(namesIn(model), ElementsAre("Attic", "link to attic", "zoo", "\xc3\x84rger", "banana",
                                          "dangling", "notes 2", "Notes 10", "Zebra"));
}

TEST_F(PanelModelTest, keepsTheBytesOfNamesAndShowsThemOnOneLine) {
  makeFile("bad\xff name");
  makeFile("two\nlines");
  FolderListModel model(everything, HiddenFiles::LeaveOut, nullptr);
  ASSERT_TRUE(model.setFolder(folder_.path()));
  const int bad = model.rowOfName("bad\xff name").value();
  EXPECT_EQ(model.urlOfRow(bad).path(), folder_ / "bad\xff name");
  EXPECT_EQ(text(model, bad, FolderListModel::NameColumn), QStringLiteral("bad\ufffd name"));
  const int two = model.rowOfName("two\nlines").value();
  EXPECT_EQ(text(model, two, FolderListModel::NameColumn), QStringLiteral("two\u240alines"));
}

TEST_F(PanelModelTest, leavesHiddenItemsOutUnlessAskedOrAboutToBeShown) {
  for (const char* name : {"seen", ".dotted", "listed"}) makeFile(name);
  makeFile(".hidden", "listed\nabsent\n");
  FolderListModel model(everything, HiddenFiles::LeaveOut, nullptr);
  ASSERT_TRUE(model.setFolder(folder_.path()));
  EXPECT_THAT(namesIn(model), ElementsAre("seen"));
  ASSERT_TRUE(model.setFolder(folder_.path(), ".dotted"));
  EXPECT_THAT(namesIn(model), ElementsAre(".dotted", "seen"));
  ASSERT_TRUE(model.setFolder(folder_.path(), "absent"));
  EXPECT_THAT(namesIn(model), ElementsAre("seen"));

  FolderListModel all(everything, HiddenFiles::Include, nullptr);
  ASSERT_TRUE(all.setFolder(folder_.path()));
  EXPECT_EQ(all.rowCount(), 4);
}

TEST_F(PanelModelTest, doesNotHangOnAPipeNamedHidden) {
  ASSERT_EQ(::mkfifo((folder_ / ".hidden").c_str(), 0600), 0);
  makeFile("seen");
  FolderListModel model(everything, HiddenFiles::LeaveOut, nullptr);
  ASSERT_TRUE(model.setFolder(folder_.path()));
  EXPECT_THAT(namesIn(model), ElementsAre("seen"));
}

TEST_F(PanelModelTest, disablesWhatTheRulesRefuse) {
  makeFolder("wanted");
  makeFolder("wanted too");
  makeFile("file");
  const AppSandboxFileAccessOpenSavePanelDelegate delegate(
      FileURL::fileURLWithPath(folder_ / "wanted/deep/item"));
  FolderListModel access({true, true, &delegate}, HiddenFiles::LeaveOut, nullptr);
  ASSERT_TRUE(access.setFolder(folder_.path()));
  EXPECT_TRUE(isEnabled(access, "wanted"));
  EXPECT_FALSE(isEnabled(access, "wanted too"));
  EXPECT_FALSE(isEnabled(access, "file"));

  FolderListModel chooser(foldersOnly, HiddenFiles::LeaveOut, nullptr);
  ASSERT_TRUE(chooser.setFolder(folder_.path()));
  EXPECT_TRUE(isEnabled(chooser, "wanted too"));
  EXPECT_FALSE(isEnabled(chooser, "file"));
}

TEST_F(PanelModelTest, showsSizesOfFilesAndTimesOfAll) {
  makeFile("file", std::string(1500, 'x'));
  makeFolder("folder");
  FolderListModel model(everything, HiddenFiles::LeaveOut, nullptr);
  ASSERT_TRUE(model.setFolder(folder_.path()));
  EXPECT_EQ(text(model, 0, FolderListModel::SizeColumn), QString());
  EXPECT_EQ(text(model, 1, FolderListModel::SizeColumn), QStringLiteral("1.5 kB"));
  EXPECT_FALSE(text(model, 0, FolderListModel::ModifiedColumn).isEmpty());
}

TEST_F(PanelModelTest, isEmptyAndSaysWhyForWhatIsNoReadableFolder) {
  makeFile("file");
  FolderListModel model(everything, HiddenFiles::LeaveOut, nullptr);
  ASSERT_TRUE(model.setFolder(folder_.path()));
  const Status listed = model.setFolder(folder_ / "file");
  ASSERT_FALSE(listed);
  EXPECT_EQ(listed.error().code, std::errc::not_a_directory);
  EXPECT_EQ(model.rowCount(), 0);
}

TEST_F(PanelModelTest, findsTheItemsOfTypedPaths) {
  makeFolder("sub");
  makeFile("sub/file");
  const FileURL here = FileURL::fileURLWithPath(folder_.path());
  const auto typed = [&here](const std::string& text) {
    const auto url = existingItemAtTypedPath(QString::fromStdString(text), here);
    return url ? url->path() : std::string("none");
  };
  EXPECT_EQ(typed("sub/file"), folder_ / "sub/file");
  EXPECT_EQ(typed(folder_ / "sub//./../sub/"), folder_ / "sub");
  EXPECT_EQ(typed("~"), currentAccount().homeDirectory);
  EXPECT_EQ(typed("/"), "/");
  for (const char* missing : {"", "sub/other", "/no such folder", "~nobody"}) {
    EXPECT_EQ(typed(missing), "none") << missing;
  }
}

TEST(PanelPlacesTest, offersTheVolumesThatUsersMount) {
  std::istringstream mounts(
      "/dev/sda1 / ext4 rw 0 0\n"
      "proc /proc proc rw 0 0\n"
      "/dev/sdb1 /media/user/My\\040Disk vfat rw 0 0\n"
      "/dev/sdb1 /media/user/My\\040Disk vfat rw 0 0\n"
      "tmpfs /mnt tmpfs rw 0 0\n"
      "/dev/sdc1 /run/media/user/tab\\011 ext4 rw 0 0\n"
      "/dev/sdd1 /mediathek ext4 rw 0 0\n"
      "/dev/sde1 /media/user/feed\f\r ext4 rw 0 0\n"
      "broken\n");
  EXPECT_THAT(mountedVolumes(mounts),
              ElementsAre("/media/user/My Disk", "/run/media/user/tab\t", "/media/user/feed\f\r"));
}

}  // namespace
}  // namespace tavrin
