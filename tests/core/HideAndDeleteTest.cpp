#include <string>
#include <vector>

#include "tests/core/HostFixture.h"

namespace tavrin {
namespace {

using Names = std::vector<std::string>;

const Names emptied = {"empty trash.aiff"};
const Names failure = {"Funk.aiff"};

class HideAndDelete : public HostFixture {
 protected:
  void SetUp() override {
    for (const char* file : {"/in/a.txt", "/in/b.txt", "/in/.git/config", "/in/folder/inner"}) {
      files().addFile(file);
    }
    grant("/");
  }

  FakeFileManager& files() { return system_.fileManager; }

  void remove(const std::string& list) {
    system_.sounds.played.clear();
    serve({{"Action", "deleteDirectlySelectedFiles"}, {"SelectedFilesUrl", list}});
  }

  Names hiddenPaths() {
    Names hidden;
    for (const std::string& path : files().allPaths()) {
      if (files().isHidden(path)) hidden.push_back(path);
    }
    return hidden;
  }
};

TEST_F(HideAndDelete, HidesAndShowsASelection) {
  const std::string list = "file:///in/a.txt|file:///in/gone|file:///bad url|file:///in/folder";
  serve({{"Action", "hiddenSelectedFiles"}, {"SelectedFilesUrl", list}});
  EXPECT_EQ(hiddenPaths(), (Names{"/in/a.txt", "/in/folder"}));
  EXPECT_EQ(system_.log.lines().size(), 2U);
  serve({{"Action", "unHiddenSelectedFiles"}, {"SelectedFilesUrl", "file:///in/a.txt"}});
  EXPECT_EQ(hiddenPaths(), Names{"/in/folder"});
  EXPECT_TRUE(system_.sounds.played.empty());
}

TEST_F(HideAndDelete, HidesAFoldersOwnItemsButNoDotNames) {
  serve({{"Action", "hiddenAllFilesInPath"}, {"Path", "/in"}});
  EXPECT_EQ(hiddenPaths(), (Names{"/in/a.txt", "/in/b.txt", "/in/folder"}));
  ASSERT_TRUE(files().setHiddenAtPath("/in/.git", IsHidden::Yes));
  serve({{"Action", "unhiddenAllFilesInPath"}, {"Path", "/in"}});
  EXPECT_EQ(hiddenPaths(), Names{"/in/.git"});
  EXPECT_TRUE(system_.sounds.played.empty());
}

TEST_F(HideAndDelete, AFolderThatCannotBeListedChangesNothing) {
  for (const char* folder : {"/gone", "/in/a.txt", "", "relative"}) {
    serve({{"Action", "hiddenAllFilesInPath"}, {"Path", folder}});
  }
  serve({{"Action", "hiddenAllFilesInPath"}});
  serve({{"Action", "hiddenSelectedFiles"}});
  EXPECT_EQ(hiddenPaths(), Names{});
  EXPECT_EQ(system_.log.lines().size(), 6U);
}

TEST_F(HideAndDelete, AFailureToHideIsLoggedAndTheOthersGoOn) {
  files().failOn("/in/a.txt", std::errc::read_only_file_system);
  serve({{"Action", "hiddenAllFilesInPath"}, {"Path", "/in"}});
  EXPECT_EQ(hiddenPaths(), (Names{"/in/b.txt", "/in/folder"}));
  EXPECT_EQ(system_.log.lines(),
            Names{"hiddenAllFilesInPath: hide /in/a.txt: Read-only file system"});
}

TEST_F(HideAndDelete, AsksBeforeItDeletes) {
  system_.bundle.resources["Tavrin.png"] = "/resources/Tavrin.png";
  system_.alerts.answers = {1, 0};
  remove("file:///in/a.txt|file:///in/folder");
  EXPECT_TRUE(files().fileExistsAtPath("/in/a.txt"));
  EXPECT_TRUE(system_.sounds.played.empty());
  remove("file:///in/a.txt|file:///in/folder");
  EXPECT_FALSE(files().fileExistsAtPath("/in/a.txt"));
  EXPECT_FALSE(files().fileExistsAtPath("/in/folder"));
  EXPECT_EQ(system_.sounds.played, emptied);

  ASSERT_EQ(system_.alerts.shown.size(), 2U);
  const ShownAlert& alert = system_.alerts.shown.front();
  EXPECT_EQ(alert.messageText, "Warning");
  EXPECT_EQ(alert.informativeText, "The files you selected will be permanently deleted!");
  EXPECT_EQ(alert.buttons, (Names{"OK", "Cancel"}));
  EXPECT_EQ(alert.icon, "/resources/Tavrin.png");
  EXPECT_FALSE(alert.isSheet);
}

TEST_F(HideAndDelete, DeletesWithoutAskingWhereTheSwitchIsOn) {
  standard_->setObject(true, "enableDirectDeleteFiles");
  standard_->setObject(true, "deleteDirectlyRequiresConfirmation");
  remove("file:///in/a.txt|file:///in/gone|file:///in/b.txt");
  EXPECT_TRUE(system_.alerts.shown.empty());
  EXPECT_FALSE(files().fileExistsAtPath("/in/a.txt"));
  EXPECT_FALSE(files().fileExistsAtPath("/in/b.txt"));
  EXPECT_EQ(system_.sounds.played, failure);
}

TEST_F(HideAndDelete, DeletesNothingWhereAccessIsRefused) {
  standard_->removeObjectForKey("cachedBookmarks");
  standard_->setObject(true, "enableDirectDeleteFiles");
  remove("file:///in/a.txt|file:///in/b.txt");
  EXPECT_EQ(system_.panels.shown.size(), 2U);
  EXPECT_TRUE(files().fileExistsAtPath("/in/a.txt"));
  EXPECT_EQ(system_.sounds.played, failure);
}

}  // namespace
}  // namespace tavrin
