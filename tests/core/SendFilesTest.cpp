#include <string>
#include <vector>

#include "tests/core/HostFixture.h"

namespace tavrin {
namespace {

using Names = std::vector<std::string>;

const Names success = {"Volume Mount.aiff"};
const Names failure = {"Funk.aiff"};

class SendFiles : public HostFixture {
 protected:
  void SetUp() override {
    files().addFile("/home/ada/in/a.txt", "a");
    files().addFile("/home/ada/in/b.txt", "b");
    files().addFile("/home/ada/in/folder/inner.txt", "inner");
    files().addFolder("/home/ada/out");
  }

  FakeFileManager& files() { return system_.fileManager; }

  static std::string urls(const std::vector<std::string>& paths) { return joinFileList(paths); }

  void send(const char* action, const std::string& selection,
            const std::string& toPath = "/home/ada/out") {
    system_.sounds.played.clear();
    serve({{"Action", action}, {"SelectedFilesUrl", selection}, {"ToPath", toPath}});
  }
};

TEST_F(SendFiles, CopiesUnderFreeNamesAndReplacesNothing) {
  grant("/home/ada");
  files().addFile("/home/ada/out/a.txt", "older");
  send("copyFilesTo", urls({"/home/ada/in/a.txt", "/home/ada/in/folder"}));
  send("copyFilesTo", urls({"/home/ada/in/a.txt", "/home/ada/in/folder"}));
  EXPECT_EQ(files().textOfFile("/home/ada/out/a.txt"), "older");
  EXPECT_EQ(files().textOfFile("/home/ada/out/a 2.txt"), "a");
  EXPECT_EQ(files().textOfFile("/home/ada/out/a 3.txt"), "a");
  EXPECT_EQ(files().textOfFile("/home/ada/out/folder 2/inner.txt"), "inner");
  EXPECT_EQ(files().textOfFile("/home/ada/in/a.txt"), "a");
  EXPECT_EQ(system_.sounds.played, success);
}

TEST_F(SendFiles, MovesUnderFreeNames) {
  grant("/home/ada");
  files().addFolder("/home/ada/out/folder");
  send("moveFilesTo", urls({"/home/ada/in/folder", "/home/ada/in/b.txt"}));
  EXPECT_EQ(files().textOfFile("/home/ada/out/folder 2/inner.txt"), "inner");
  EXPECT_EQ(files().textOfFile("/home/ada/out/b.txt"), "b");
  EXPECT_FALSE(files().fileExistsAtPath("/home/ada/in/folder"));
  EXPECT_FALSE(files().fileExistsAtPath("/home/ada/in/b.txt"));
  EXPECT_EQ(system_.sounds.played, success);
  EXPECT_EQ(files().movesOutsideBatches(), 0) << "each would write the lists of hidden names";
}

TEST_F(SendFiles, CopiesBesideTheOriginalAndExpandsTheHome) {
  grant("/home/ada");
  send("copyFilesTo", urls({"/home/ada/in/a.txt"}), "~/in");
  EXPECT_EQ(files().textOfFile("/home/ada/in/a 2.txt"), "a");
}

TEST_F(SendFiles, TheOthersGoOnWhenOneFails) {
  grant("/home/ada");
  for (const std::string& bad :
       {std::string("file:///home/ada/in/gone"), std::string("file:///no url"), std::string(),
        std::string("sftp://host/home/ada/in/a.txt"), std::string("file:///")}) {
    SCOPED_TRACE(bad);
    send("copyFilesTo",
         urls({"/home/ada/in/a.txt"}) + "|" + bad + "|" + urls({"/home/ada/in/b.txt"}));
    EXPECT_EQ(system_.sounds.played, failure);
  }
  EXPECT_EQ(files().textOfFile("/home/ada/out/a 5.txt"), "a");
  EXPECT_EQ(files().textOfFile("/home/ada/out/b 5.txt"), "b");
}

TEST_F(SendFiles, AFailingFileManagerIsLoggedWithItsCause) {
  grant("/home/ada");
  files().failOn("/home/ada/in/a.txt", std::errc::no_space_on_device);
  send("copyFilesTo", urls({"/home/ada/in/a.txt", "/home/ada/in/b.txt"}));
  EXPECT_EQ(files().textOfFile("/home/ada/out/b.txt"), "b");
  EXPECT_EQ(system_.sounds.played, failure);
  ASSERT_EQ(system_.log.lines().size(), 1U);
  EXPECT_NE(system_.log.lines().front().find("copyFilesTo: "), std::string::npos);
  EXPECT_NE(system_.log.lines().front().find("No space left"), std::string::npos);
}

TEST_F(SendFiles, ManyFailuresDoNotDrownTheLog) {
  std::string selection = "file:///no url";
  for (int i = 1; i < 500; ++i) selection += "|file:///no url";
  send("copyFilesTo", selection);
  EXPECT_EQ(system_.log.lines().size(), 21U);
  EXPECT_EQ(system_.log.lines().back(), "copyFilesTo: and 480 more failures");
}

TEST_F(SendFiles, AskForTheParentAndThenForTheDestination) {
  system_.panels.answerWithPath("/home/ada/in");
  system_.panels.answerWithPath("/home/ada/out");
  send("copyFilesTo", urls({"/home/ada/in/a.txt", "/home/ada/in/b.txt"}));
  ASSERT_EQ(system_.panels.shown.size(), 2U);
  EXPECT_EQ(system_.panels.shown[0].directory->path(), "/home/ada/in");
  EXPECT_EQ(system_.panels.shown[1].directory->path(), "/home/ada/out");
  EXPECT_EQ(files().textOfFile("/home/ada/out/b.txt"), "b");
  EXPECT_EQ(system_.sounds.played, success);
}

TEST_F(SendFiles, RefusedAccessLeavesTheItemWhereItIs) {
  send("moveFilesTo", urls({"/home/ada/in/a.txt"}));
  EXPECT_EQ(files().textOfFile("/home/ada/in/a.txt"), "a");
  EXPECT_EQ(system_.sounds.played, failure);

  system_.panels.answerWithPath("/home/ada/in");
  send("moveFilesTo", urls({"/home/ada/in/a.txt"}));
  EXPECT_EQ(files().textOfFile("/home/ada/in/a.txt"), "a");
  EXPECT_EQ(system_.sounds.played, failure);
}

TEST_F(SendFiles, WithoutASelectionThereIsNothingToFail) {
  serve({{"Action", "copyFilesTo"}, {"ToPath", "/home/ada/out"}});
  EXPECT_EQ(system_.sounds.played, success);
  EXPECT_TRUE(system_.panels.shown.empty());
}

TEST_F(SendFiles, WithoutADestinationNothingIsSent) {
  grant("/home/ada");
  serve({{"Action", "moveFilesTo"}, {"SelectedFilesUrl", urls({"/home/ada/in/a.txt"})}});
  EXPECT_EQ(files().textOfFile("/home/ada/in/a.txt"), "a");
  EXPECT_EQ(system_.sounds.played, failure);
}

TEST_F(SendFiles, AFolderIsNotSentIntoItself) {
  grant("/home/ada");
  for (const char* action : {"copyFilesTo", "moveFilesTo"}) {
    send(action, urls({"/home/ada/in"}), "/home/ada/in/folder");
    EXPECT_EQ(system_.sounds.played, failure);
  }
  EXPECT_EQ(files().textOfFile("/home/ada/in/folder/inner.txt"), "inner");
  EXPECT_FALSE(files().fileExistsAtPath("/home/ada/in/folder/in"));
}

TEST_F(SendFiles, TheChosenFolderNeedsNoFurtherGrant) {
  grant("/home/ada/in");
  send("copyFilesToCustom", urls({"/home/ada/in/a.txt"}));
  EXPECT_TRUE(system_.panels.shown.empty());
  system_.panels.answerWithPath("/home/ada/out");
  system_.panels.endBegunPanel();
  EXPECT_EQ(files().textOfFile("/home/ada/out/a.txt"), "a");
  EXPECT_EQ(system_.sounds.played, success);
  EXPECT_EQ(standard_->dictionaryForKey("cachedBookmarks").count("/home/ada/out"), 0U);

  send("moveFilesToCustom", urls({"/home/ada/in/b.txt"}));
  system_.panels.answerWithPath("/home/ada/out");
  system_.panels.endBegunPanel();
  EXPECT_EQ(files().textOfFile("/home/ada/out/b.txt"), "b");
  EXPECT_FALSE(files().fileExistsAtPath("/home/ada/in/b.txt"));
}

TEST_F(SendFiles, ACancelledChoiceMakesNoSoundAndLetsTheNextRequestIn) {
  grant("/home/ada");
  send("copyFilesToCustom", urls({"/home/ada/in/a.txt"}));
  send("copyFilesTo", urls({"/home/ada/in/b.txt"}));
  EXPECT_FALSE(files().fileExistsAtPath("/home/ada/out/b.txt"));
  system_.panels.endBegunPanel();
  EXPECT_TRUE(system_.sounds.played.empty());
  system_.mainLoop.runPending();
  EXPECT_EQ(files().textOfFile("/home/ada/out/b.txt"), "b");
  EXPECT_EQ(system_.sounds.played, success);
}

}  // namespace
}  // namespace tavrin
