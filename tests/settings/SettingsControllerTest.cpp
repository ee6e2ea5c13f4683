#include <gmock/gmock.h>

#include <set>

#include "tests/settings/EditingFixture.h"

namespace tavrin {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

using StartingSettings = EditingFixture;

TEST_F(StartingSettings, ShowsTheFirstPageThenPublishesAndDisablesTheRemoveButtons) {
  for (const RuleListKeys& keys : ruleLists) show(keys.list, rowsNamed({"a"}));
  suite->setObject(rowsNamed({"seeded"}), "arrOfCommonPath");
  controller->viewDidLoad();
  EXPECT_THAT(view.events, IsEmpty());
  view.whileShowing = [this] {
    EXPECT_EQ(published("arrOfCopyFilesTo"), PropertyList("(absent)"));
    EXPECT_THAT(view.removeButtons, IsEmpty());
  };
  mainLoop.advance(0.01);
  EXPECT_THAT(view.events, ElementsAre("first page"));
  for (const char* key :
       {"arrOfCopyFilesTo", "arrOfCustomIcon", "arrOfOthers", "arrOfCreateNewFile"}) {
    EXPECT_EQ(published(key), PropertyList(rowsNamed({"a"})));
  }
  EXPECT_EQ(published("arrOfCommonPath"), PropertyList(rowsNamed({"seeded"})));
  EXPECT_EQ(view.removeButtons, (std::map<RuleList, bool>{{RuleList::CreateNewFile, false},
                                                          {RuleList::CustomIcon, false},
                                                          {RuleList::CopyFilesTo, false},
                                                          {RuleList::CommonPath, false}}));
}

TEST_F(StartingSettings, PublishesAloneWithoutAViewAndKeepsNoList) {
  controller->setView(nullptr);
  extensionController.isEnabled = false;
  standard->setObject(rowsNamed({"a"}), "arrOfOthers");
  controller->start();
  mainLoop.advance(1);
  EXPECT_EQ(published("arrOfOthers"), PropertyList(rowsNamed({"a"})));
  EXPECT_THAT(view.events, IsEmpty());
  EXPECT_THAT(alerts.shown, IsEmpty());
  EXPECT_EQ(stored("ShownEnableExtensionAlert"), PropertyList("(absent)"));
  standard->setObject(rowsNamed({"b"}), "arrOfOthers");
  EXPECT_THAT(namesOf(controller->rules().rows(RuleList::Others)), ElementsAre("b"));
}

TEST_F(StartingSettings, PromptsOnceWhileTheExtensionIsOnAndAlwaysWhileItIsOff) {
  alerts.whileShown = [this] {
    EXPECT_EQ(stored("ShownEnableExtensionAlert"), PropertyList("(absent)"));
  };
  controller->start();
  EXPECT_THAT(alerts.shown, IsEmpty());
  mainLoop.runPending();
  EXPECT_THAT(alerts.shown, SizeIs(1));
  EXPECT_EQ(stored("ShownEnableExtensionAlert"), PropertyList(true));
  alerts.whileShown = nullptr;
  controller->start();
  mainLoop.runPending();
  EXPECT_THAT(alerts.shown, SizeIs(1));
  extensionController.isEnabled = false;
  for (std::size_t times = 2; times < 4; ++times) {
    controller->start();
    mainLoop.runPending();
    EXPECT_THAT(alerts.shown, SizeIs(times));
  }
  controller->start();
  controller.reset();
  mainLoop.runPending();
  EXPECT_THAT(alerts.shown, SizeIs(3));
}

TEST_F(StartingSettings, LeadsFromThePromptToTheSystemsPreferences) {
  bundle.translations["Open System Preferences"] = "never translated";
  alerts.answers = {0, 1};
  controller->promptToEnableExtension();
  EXPECT_EQ(extensionController.shows, 1);
  controller->promptToEnableExtension();
  EXPECT_EQ(extensionController.shows, 1);
  EXPECT_EQ(alerts.shown[0].messageText, "Enable Extension");
  EXPECT_EQ(alerts.shown[0].informativeText,
            "The Tavrin Finder extension must be enabled in System Preferences");
  EXPECT_THAT(alerts.shown[0].buttons, ElementsAre("Open System Preferences"));
}

TEST_F(StartingSettings, LaunchesTheTextServiceInTheBackgroundWhereItIsOn) {
  standard->setObject(true, "enableTextService");
  controller->textServiceCheckButtonClick();
  EXPECT_THAT(workspace.launched, IsEmpty());
  mainLoop.runPending();
  EXPECT_THAT(workspace.launched, ElementsAre("/opt/tavrin/lib/tavrin/TavrinService.service"));
  controller->textServiceCheckButtonClick();
  standard->setObject(false, "enableTextService");
  controller.reset();
  mainLoop.runPending();
  EXPECT_THAT(workspace.launched, SizeIs(1));
}

TEST_F(StartingSettings, RestartsTheFileManagersOnlyWhenAsked) {
  controller->start();
  mainLoop.runPending();
  EXPECT_EQ(workspace.fileViewerRestarts, 0);
  controller->restartFinder();
  EXPECT_EQ(workspace.fileViewerRestarts, 1);
}

TEST_F(StartingSettings, ReturnsWhatACommandPrintsAsFarAsItIsText) {
  shell.outputs = {{"date", "Grüße\n"}, {"cat picture", "\xFF\xD8"}};
  EXPECT_EQ(controller->runCommand("date"), "Grüße\n");
  EXPECT_EQ(controller->runCommand("false"), "");
  EXPECT_EQ(controller->runCommand("cat picture"), std::nullopt);
  EXPECT_THAT(shell.commands, ElementsAre("date", "false", "cat picture"));
}

TEST_F(StartingSettings, OpensAPageOfItsOwnForEachLink) {
  std::set<std::string> pages;
  for (int action = 0; action <= static_cast<int>(LinkAction::license); ++action) {
    controller->openLink(static_cast<LinkAction>(action));
    ASSERT_THAT(workspace.openedURLs, SizeIs(action + 1));
    EXPECT_TRUE(workspace.openedURLs.back().starts_with("https://tavrin.app/"));
    pages.insert(workspace.openedURLs.back());
  }
  EXPECT_EQ(pages.size(), workspace.openedURLs.size() - 1) << "Only two actions share a page.";
  EXPECT_EQ(addressOfLink(LinkAction::haveAGoodIdea), addressOfLink(LinkAction::technicalSupport));
  EXPECT_EQ(addressOfLink(LinkAction::gotoOfficialWebsite), "https://tavrin.app/");
}

}  // namespace
}  // namespace tavrin
