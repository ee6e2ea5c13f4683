#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "tests/core/HostFixture.h"

namespace tavrin {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Names = std::vector<std::string>;

class CreateNewFile : public HostFixture {
 protected:
  void SetUp() override {
    standard_->setObject(
        PropertyList::Array{rule("Text", "txt", true), rule("Notes", "md", false),
                            rule("Letter", "docx", true), rule("Other", "", "1"),
                            rule("Journal", "md", true), rule("Sheet", "ods", PropertyList(0))},
        settings_key::arrOfCreateNewFile);
    standard_->setObject(true, settings_key::soundTipsOfNewFile);
    for (const char* name : {"Text.txt", "Notes.md", "Letter.docx", "Journal.md"}) {
      files().addFile(templates() + name, name);
    }
    files().addFolder("/home/ada/in");
    files().addFolder("/home/ada/else");
  }

  FakeFileManager& files() { return system_.fileManager; }
  std::string templates() {
    return *files().containerPathForSecurityApplicationGroupIdentifier(
               system_.bundle.groupIdentifier()) +
           "/Templates/CreateNewFile/";
  }

  static PropertyList rule(const char* name, const char* extension, const PropertyList& enable) {
    return PropertyList::Dictionary{
        {"displayName", name}, {"extension", extension}, {"enable", enable}};
  }

  void create(const PropertyList& tag, const std::string& path = "/home/ada/in") {
    system_.sounds.played.clear();
    system_.workspace.asked.clear();
    serve({{"Action", "createNewFile"}, {"Path", path}, {"Tag", tag}});
  }

  std::string text(const std::string& path) { return files().textOfFile(path).value_or("(none)"); }
  Names created() {
    Names paths;
    for (const std::string& path : files().allPaths()) {
      if (path.find("/untitled") != std::string::npos) paths.push_back(path);
    }
    return paths;
  }
};

const Names success = {"Volume Mount.aiff"};
const Names failure = {"Funk.aiff"};

TEST_F(CreateNewFile, CountsEnabledRulesAlone) {
  grant("/home/ada");
  create(1);
  EXPECT_EQ(text("/home/ada/in/untitled.docx"), "Letter.docx");
  create("3");
  EXPECT_EQ(text("/home/ada/in/untitled.md"), "Journal.md");
  create(0.9);
  EXPECT_EQ(text("/home/ada/in/untitled.txt"), "Text.txt");
  EXPECT_EQ(created().size(), 3U);
}

TEST_F(CreateNewFile, ATagWithoutARuleMakesAnEmptyFileAllTheSame) {
  grant("/home/ada");
  const std::vector<PropertyList> tags = {4, -1, std::int64_t{1} << 62, "-7",
                                          "99999999999999999999999"};
  for (const PropertyList& tag : tags) create(tag);
  EXPECT_THAT(created(),
              ElementsAre("/home/ada/in/untitled 2.(null)", "/home/ada/in/untitled 3.(null)",
                          "/home/ada/in/untitled 4.(null)", "/home/ada/in/untitled 5.(null)",
                          "/home/ada/in/untitled.(null)"));
  EXPECT_EQ(text("/home/ada/in/untitled.(null)"), "");
  EXPECT_EQ(system_.sounds.played, success);
  EXPECT_THAT(system_.workspace.asked,
              ElementsAre("select /home/ada/in/untitled 5.(null) in /home/ada/in"));
}

TEST_F(CreateNewFile, NumbersRevealsOpensAndSounds) {
  grant("/home/ada");
  files().addFile("/home/ada/in/untitled.txt", "mine");
  create(0);
  EXPECT_EQ(text("/home/ada/in/untitled.txt"), "mine");
  EXPECT_EQ(text("/home/ada/in/untitled 2.txt"), "Text.txt");
  EXPECT_THAT(system_.workspace.asked,
              ElementsAre("select /home/ada/in/untitled 2.txt in /home/ada/in"));
  EXPECT_EQ(system_.sounds.played, success);

  standard_->setObject("YES", settings_key::enableAutoOpenAfterCreateNewFile);
  standard_->setObject(false, settings_key::soundTipsOfNewFile);
  create(0);
  EXPECT_THAT(system_.workspace.asked,
              ElementsAre("select /home/ada/in/untitled 3.txt in /home/ada/in",
                          "open /home/ada/in/untitled 3.txt"));
  EXPECT_TRUE(system_.sounds.played.empty());
}

TEST_F(CreateNewFile, TheDesktopIsNotRevealedButOpenedAndSounds) {
  const std::string desktop = realHomePath(system_.bundle.account()) + "/Desktop";
  files().addFolder(desktop);
  grant("/");
  standard_->setObject(true, settings_key::enableAutoOpenAfterCreateNewFile);
  create(0, desktop);
  EXPECT_THAT(system_.workspace.asked, ElementsAre("open " + desktop + "/untitled.txt"));
  EXPECT_EQ(system_.sounds.played, success);
  create(0, desktop + "/");
  EXPECT_EQ(system_.workspace.asked.size(), 2U) << "another path than exactly the desktop's";
}

TEST_F(CreateNewFile, AMissingTemplateMakesAnEmptyFileAndABadOneIsTold) {
  grant("/home/ada");
  files().discardItem(templates() + "Text.txt");
  create(0);
  EXPECT_EQ(text("/home/ada/in/untitled.txt"), "");
  EXPECT_EQ(system_.sounds.played, success);
  EXPECT_THAT(system_.log.lines(), IsEmpty());

  files().addFolder(templates() + "Text.txt");
  create(0);
  EXPECT_EQ(text("/home/ada/in/untitled 2.txt"), "");
  EXPECT_EQ(system_.sounds.played, success);
  EXPECT_THAT(system_.log.lines(), ElementsAre(HasSubstr("Text.txt: Is a directory")));
}

TEST_F(CreateNewFile, WhatCannotBeCreatedIsLoggedAndSounds) {
  grant("/home/ada");
  files().addFile("/home/ada/file", "");
  for (const char* folder : {"/home/ada/missing", "/home/ada/file"}) {
    create(0, folder);
    EXPECT_EQ(system_.sounds.played, failure) << folder;
    EXPECT_THAT(system_.workspace.asked, IsEmpty()) << folder;
  }
  files().failOn("/home/ada/in/untitled.txt", std::errc::read_only_file_system);
  create(0);
  EXPECT_EQ(system_.sounds.played, failure);
  EXPECT_THAT(system_.log.lines(),
              ElementsAre(HasSubstr("No such file"), HasSubstr("Not a directory"),
                          HasSubstr("createNewFile: create /home/ada/in/untitled.txt: Read-only")));
  standard_->setObject(false, settings_key::soundTipsOfNewFile);
  create(0);
  EXPECT_TRUE(system_.sounds.played.empty());
}

TEST_F(CreateNewFile, ANameThatIsTakenMeanwhileIsPassedOver) {
  system_.panels.answerWith([this](const PanelSettings&) {
    files().addFile("/home/ada/in/untitled.txt", "theirs");
    return "/home/ada/in";
  });
  create(0);
  EXPECT_EQ(text("/home/ada/in/untitled.txt"), "theirs");
  EXPECT_EQ(text("/home/ada/in/untitled 2.txt"), "Text.txt");
  files().failOn("/home/ada/in/untitled.md", std::errc::file_exists);
  create(3);
  EXPECT_EQ(system_.sounds.played, failure) << "a name that is never free is given up";
}

TEST_F(CreateNewFile, BadRequestsAndBadSettingsAreSurvived) {
  serve({{"Action", "createNewFile"}});
  serve({{"Action", "createNewFile"}, {"Path", ""}});
  EXPECT_THAT(system_.sounds.played, ElementsAre("Funk.aiff", "Funk.aiff"));
  serve({{"Action", "createNewFile"}, {"Path", 5}, {"Tag", PropertyList::Array{}}});
  EXPECT_EQ(system_.log.lines().size(), 3U);
  EXPECT_THAT(created(), IsEmpty());
  EXPECT_THAT(system_.panels.shown, IsEmpty());

  grant("/home/ada");
  const PropertyList enabled = true;
  standard_->setObject(
      PropertyList::Array{
          "text", PropertyList::Dictionary{{"enable", enabled}, {"extension", 7}},
          PropertyList::Dictionary{{"enable", enabled}, {"extension", "txt"}},
          PropertyList::Dictionary{
              {"enable", enabled}, {"extension", std::string(300, 'x')}, {"displayName", "a/b"}}},
      settings_key::arrOfCreateNewFile);
  create(0);
  create(1);
  EXPECT_THAT(created(), ElementsAre("/home/ada/in/untitled.(null)", "/home/ada/in/untitled.txt"));
  create(2);
  EXPECT_EQ(system_.sounds.played, failure);
  create(0, std::string(100'000, '/') + "home/ada/in");
  EXPECT_EQ(created().size(), 3U);
  standard_->setObject("no list", settings_key::arrOfCreateNewFile);
  create(0);
  EXPECT_EQ(created().size(), 4U);
}

TEST_F(CreateNewFile, RefusedAccessDoesNothing) {
  create(0);
  ASSERT_EQ(system_.panels.shown.size(), 1U);
  EXPECT_EQ(system_.panels.shown[0].directory->path(), "/home/ada/in");
  EXPECT_THAT(created(), IsEmpty());
  EXPECT_TRUE(system_.sounds.played.empty());
  EXPECT_THAT(system_.workspace.asked, IsEmpty());
  system_.panels.answerWithPath("/home/ada/in");
  create(0);
  EXPECT_EQ(text("/home/ada/in/untitled.txt"), "Text.txt");
  EXPECT_EQ(standard_->dictionaryForKey("cachedBookmarks").count("/home/ada/in"), 1U);
}

class ChosenFormat : public CreateNewFile {
 protected:
  static constexpr int tag = 2;
  FakeSavePanels& panels() { return system_.panels.savePanels; }
};

TEST_F(ChosenFormat, ThePanelIsSetUpWithTheFormatsOfAllRules) {
  create(tag);
  ASSERT_EQ(panels().shown.size(), 1U);
  const SavePanelSettings& panel = *panels().shown[0];
  EXPECT_EQ(panel.level, 1);
  EXPECT_EQ(panel.allowsOtherFileTypes, false);
  EXPECT_EQ(panel.title, "Create New File");
  EXPECT_EQ(panel.directory->path(), "/home/ada/in");
  EXPECT_EQ(panel.name, "untitled");
  EXPECT_THAT(panel.validated, ElementsAre(Names{"txt"}));
  ASSERT_TRUE(panel.accessory);
  EXPECT_EQ(panel.accessory->label, "Format:");
  EXPECT_THAT(panel.accessory->items, ElementsAre("txt", "md", "docx", "md", "ods"));

  EXPECT_TRUE(system_.sounds.played.empty());
  EXPECT_THAT(system_.panels.shown, IsEmpty()) << "cancelled: access is not asked for";
  panel.accessory->action(2);
  panel.accessory->action(99);
  EXPECT_THAT(panel.validated, ElementsAre(Names{"txt"}, Names{"docx"}));
}

TEST_F(ChosenFormat, MakesTheFileFromTheFirstTemplateOfItsExtension) {
  grant("/home/ada/in");
  panels().answerWith([](const SavePanelSettings& panel) {
    panel.accessory->action(3);
    return FakeSavePanels::Pick{"/home/ada/in/notes." + panel.allowedFileTypes.front()};
  });
  create(tag);
  EXPECT_EQ(text("/home/ada/in/notes.md"), "Notes.md");
  EXPECT_THAT(system_.workspace.asked, ElementsAre("select /home/ada/in/notes.md in /home/ada/in"));
  EXPECT_EQ(system_.sounds.played, success);
}

TEST_F(ChosenFormat, AnotherFolderNeedsNoGrantButThatOfTheRequest) {
  panels().answerWithPick({"/home/ada/else/new.txt"});
  create(tag);
  EXPECT_EQ(text("/home/ada/else/new.txt"), "(none)")
      << "access to the request's folder is refused";
  EXPECT_TRUE(system_.sounds.played.empty());

  panels().answerWithPick({"/home/ada/else/new.txt"});
  system_.panels.answerWithPath("/home/ada/in");
  create(tag);
  EXPECT_EQ(text("/home/ada/else/new.txt"), "Text.txt");
  EXPECT_EQ(system_.securityScope.startedPaths(), Names{"/home/ada/in"});
  EXPECT_THAT(system_.workspace.asked,
              ElementsAre("select /home/ada/else/new.txt in /home/ada/in"));
}

TEST_F(ChosenFormat, ReplacesOnlyWhatTheUserAgreedTo) {
  grant("/home/ada");
  files().addFile("/home/ada/in/a.txt", "mine");
  panels().answerWithPick({"/home/ada/in/a.txt"});  // it came after the panel had ended
  create(tag);
  EXPECT_EQ(text("/home/ada/in/a.txt"), "mine");
  EXPECT_EQ(system_.sounds.played, failure);
  panels().answerWithPick({"/home/ada/in/a.txt", FakeSavePanels::Replace::Yes});
  create(tag);
  EXPECT_EQ(text("/home/ada/in/a.txt"), "Text.txt");
  EXPECT_EQ(system_.sounds.played, success);
}

TEST_F(ChosenFormat, WithoutAnyFormatAnyNameIsTaken) {
  grant("/home/ada");
  standard_->setObject(PropertyList::Array{rule("Other", "", true)},
                       settings_key::arrOfCreateNewFile);
  panels().answerWithPick({"/home/ada/in/Makefile"});
  create(0);
  EXPECT_FALSE(panels().shown[0]->accessory);
  EXPECT_THAT(panels().shown[0]->allowedFileTypes, IsEmpty());
  EXPECT_EQ(text("/home/ada/in/Makefile"), "");
  EXPECT_EQ(system_.sounds.played, success);
}

}  // namespace
}  // namespace tavrin
