#include <string>
#include <vector>

#include "tests/core/HostFixture.h"

namespace tavrin {
namespace {

using Names = std::vector<std::string>;

const Names success = {"Volume Mount.aiff"};
const Names failure = {"Funk.aiff"};

class CutAndPaste : public HostFixture {
 protected:
  void SetUp() override {
    for (const char* file : {"/in/report.txt", "/in/b.txt", "/other/c.txt"}) {
      files().addFile(file, file);
    }
    files().addFolder("/out");
    grant("/");
  }

  FakeFileManager& files() { return system_.fileManager; }

  void cut(const std::vector<std::string>& paths) {
    serve({{"Action", "cutSelectedFiles"}, {"SelectedFilesUrl", joinFileList(paths)}});
  }

  void paste(const std::string& list, const std::string& folder = "/out") {
    system_.sounds.played.clear();
    serve({{"Action", "pasteSelectedFiles"}, {"CuttingFilesURL", list}, {"PasteInPath", folder}});
  }

  std::optional<std::string> cutSet() {
    return system_.userDefaults.suite(system_.bundle.groupIdentifier())
        ->stringForKey("filesUrlOfCutting");
  }
};

TEST_F(CutAndPaste, ACutIsRememberedAndReplacesTheOneBefore) {
  cut({"/in/report.txt", "/in/b.txt"});
  EXPECT_EQ(cutSet(), "file:///in/report.txt|file:///in/b.txt");
  EXPECT_FALSE(files().isHidden("/in/report.txt"));
  cut({"/other/c.txt"});
  EXPECT_EQ(cutSet(), "file:///other/c.txt");
  serve({{"Action", "cutSelectedFiles"}});
  EXPECT_EQ(cutSet(), std::nullopt);
  EXPECT_TRUE(system_.sounds.played.empty());
  EXPECT_TRUE(system_.panels.shown.empty());
}

TEST_F(CutAndPaste, HidesWhatIsCutWhereTheSwitchIsOn) {
  standard_->setObject("YES", "enableHideWhenCutting");
  cut({"/in/report.txt", "/in/gone", "/in/b.txt"});
  EXPECT_TRUE(files().isHidden("/in/report.txt"));
  EXPECT_TRUE(files().isHidden("/in/b.txt"));
  cut({"/other/c.txt"});
  EXPECT_FALSE(files().isHidden("/in/report.txt"));
  EXPECT_FALSE(files().isHidden("/in/b.txt"));
  EXPECT_TRUE(files().isHidden("/other/c.txt"));

  standard_->setObject(false, "enableHideWhenCutting");
  cut({"/in/b.txt"});
  EXPECT_TRUE(files().isHidden("/other/c.txt"));
  EXPECT_FALSE(files().isHidden("/in/b.txt"));
}

TEST_F(CutAndPaste, CuttingTheSameItemAgainLeavesItHidden) {
  standard_->setObject(true, "enableHideWhenCutting");
  cut({"/in/report.txt"});
  cut({"/in/report.txt", "/in/b.txt"});
  EXPECT_TRUE(files().isHidden("/in/report.txt"));
  EXPECT_TRUE(files().isHidden("/in/b.txt"));
}

TEST_F(CutAndPaste, PastesUnderFreeNamesAndShowsWhatWasHidden) {
  standard_->setObject(true, "enableHideWhenCutting");
  files().addFile("/out/report.txt", "older");
  cut({"/in/report.txt", "/other/c.txt"});
  const std::string list = *cutSet();
  paste(list);
  EXPECT_EQ(system_.sounds.played, success);
  EXPECT_EQ(files().textOfFile("/out/report.txt"), "older");
  EXPECT_EQ(files().textOfFile("/out/report 2.txt"), "/in/report.txt");
  EXPECT_EQ(files().textOfFile("/out/c.txt"), "/other/c.txt");
  EXPECT_FALSE(files().isHidden("/out/report 2.txt"));
  EXPECT_FALSE(files().isHidden("/out/c.txt"));
  EXPECT_EQ(cutSet(), list);

  paste(list);
  EXPECT_EQ(system_.sounds.played, failure);
  EXPECT_EQ(cutSet(), list);
}

TEST_F(CutAndPaste, TheOthersArePastedWhenOneFails) {
  for (const std::string bad : {"file:///in/gone", "file:///in/no url", "", "ftp://a/b"}) {
    SCOPED_TRACE(bad);
    files().addFile("/in/first");
    files().addFile("/in/last");
    paste("file:///in/first|" + bad + "|file:///in/last");
    EXPECT_EQ(system_.sounds.played, failure);
    EXPECT_FALSE(files().fileExistsAtPath("/in/first"));
    EXPECT_FALSE(files().fileExistsAtPath("/in/last"));
  }
}

TEST_F(CutAndPaste, WithoutAFolderOrItemsNothingIsMoved) {
  serve({{"Action", "pasteSelectedFiles"}, {"CuttingFilesURL", "file:///in/b.txt"}});
  EXPECT_EQ(system_.sounds.played, failure);
  system_.sounds.played.clear();
  serve({{"Action", "pasteSelectedFiles"}, {"PasteInPath", "/out"}});
  EXPECT_EQ(system_.sounds.played, success);
  EXPECT_TRUE(files().fileExistsAtPath("/in/b.txt"));
}

/// The folder strings that the access layer is asked for, as its panels show them.
class FoldersAskedFor : public CutAndPaste {
 protected:
  void SetUp() override {
    for (const char* file : {"/in/a", "/in/b", "/other/c"}) files().addFile(file);
    files().addFolder("/out");
  }

  /// The longest path that each panel lets the user pick.
  Names pathsAskedFor() const {
    Names paths;
    for (const PanelSettings& panel : system_.panels.shown) {
      paths.push_back(panel.directory ? panel.directory->path() : "");
    }
    return paths;
  }

  static bool offers(const PanelSettings& panel, const std::string& path) {
    return panel.delegate->panelShouldEnableURL(FileURL::fileURLWithPath(path));
  }
};

TEST_F(FoldersAskedFor, ACutAsksByTheTextOfTheURL) {
  standard_->setObject(true, "enableHideWhenCutting");
  Names picked;
  const auto user = [&](const PanelSettings& panel) -> std::optional<std::string> {
    EXPECT_TRUE(offers(panel, "/"));
    EXPECT_TRUE(offers(panel, "/file:/in"));
    EXPECT_FALSE(offers(panel, "/in"));
    picked.emplace_back("/");
    return picked.back();
  };
  system_.panels.answerWith([](const PanelSettings&) { return std::nullopt; });
  system_.panels.answerWith(user);
  cut({"/in/a", "/in/b"});
  EXPECT_EQ(pathsAskedFor(), (Names{"/", "/"}));
  EXPECT_EQ(picked.size(), 1U);
  EXPECT_FALSE(files().isHidden("/in/a"));
  EXPECT_TRUE(files().isHidden("/in/b"));
  EXPECT_EQ(cutSet(), "file:///in/a|file:///in/b");
}

TEST_F(FoldersAskedFor, APasteAsksForTheItemsFolderAndThenTheDestination) {
  system_.panels.answerWithPath("/");
  paste("file:///in/a|file:///other/c");
  EXPECT_EQ(pathsAskedFor(), Names{"/"});
  EXPECT_EQ(system_.sounds.played, success);
}

}  // namespace
}  // namespace tavrin
