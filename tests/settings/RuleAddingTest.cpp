#include <gmock/gmock.h>

#include "tests/settings/EditingFixture.h"

namespace tavrin {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class AddingRules : public EditingFixture {
 protected:
  void SetUp() override {
    for (const char* folder : {"/home/ada/Documents/Letters", "/home/ada/Desktop", "/home/adalbert",
                               "/srv/data", "/home/ada/Pictures"}) {
      fileManager.addFolder(folder);
    }
    fileManager.addFile("/srv/data/one.png", "image one");
    fileManager.addFile("/srv/data/Two.PNG", "image two");
    fileManager.addFile("/srv/data/no image.png", "text");
    fileManager.addFile("/srv/data/Letter.draft.odt", "a letter");
    fileManager.addFile("/srv/data/Makefile", "all:");
  }

  /// Adds what the user picks.
  void add(RuleList list, std::vector<std::string> paths) {
    panels.answerWithPaths(std::move(paths));
    rules().addRule(list);
    panels.endBegunPanel();
  }

  static Row folderRow(const char* path) {
    return {{"enable", 1}, {"realPath", path}, {"displayName", ""}};
  }
};

TEST_F(AddingRules, AppendsFoldersInThePanelsOrderAndRemembersTheFirstOnesFolder) {
  const std::pair<RuleList, const char*> folderLists[] = {
      {RuleList::CopyFilesTo, "prePathOfSendFilesTo"},
      {RuleList::CommonPath, "prePathOfCommonPath"}};
  for (const auto& [list, folderKey] : folderLists) {
    Rows rows = rowsNamed({"a"});
    show(list, rows);
    const int synchronized = standardSynchronizations();
    add(list,
        {"/home/ada/Documents/Letters", "/srv/data", "/home/adalbert", "/home/ada", "/srv/data"});
    for (const char* path :
         {"~/Documents/Letters", "/srv/data", "/home/adalbert", "~", "/srv/data"}) {
      rows.emplace_back(folderRow(path));
    }
    expectRows(list, rows);
    EXPECT_EQ(standardSynchronizations(), synchronized + 1);
    EXPECT_EQ(view.events, std::vector{std::string("reload ") + keyOf(list)});
    EXPECT_EQ(stored(folderKey), PropertyList("/home/ada/Documents"));
  }
  EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(AddingRules, ShowsAPanelForWhatTheListHolds) {
  struct Expected {
    RuleList list;
    bool files, folders;
    std::vector<std::string> types;
  };
  const Expected expectations[] = {{RuleList::CreateNewFile, true, false, {}},
                                   {RuleList::CopyFilesTo, false, true, {}},
                                   {RuleList::CommonPath, false, true, {}},
                                   {RuleList::CustomIcon, true, false, {"png"}}};
  for (const Expected& expected : expectations) {
    add(expected.list, {});
    const PanelSettings& shown = panels.shown.back();
    EXPECT_EQ(shown.canChooseFiles, expected.files);
    EXPECT_EQ(shown.canChooseDirectories, expected.folders);
    EXPECT_EQ(shown.canCreateDirectories, expected.folders);
    EXPECT_EQ(shown.allowsMultipleSelection, true);
    EXPECT_EQ(shown.allowedFileTypes, expected.types);
    EXPECT_EQ(shown.directory->path(), "/home/ada/Desktop");
  }
  rules().addRule(RuleList::Others);
  EXPECT_THAT(panels.shown, SizeIs(4));
}

TEST_F(AddingRules, BeginsWhereItLastAddedAndElseOnTheDesktop) {
  const std::pair<RuleList, const char*> remembered[] = {
      {RuleList::CreateNewFile, "prePathOfCreateNewFile"},
      {RuleList::CopyFilesTo, "prePathOfSendFilesTo"},
      {RuleList::CommonPath, "prePathOfCommonPath"},
      {RuleList::CustomIcon, "prePathOfCustomIcon"}};
  for (const auto& [list, key] : remembered) {
    const std::pair<PropertyList, const char*> values[] = {{"/srv/gone", "/srv/gone"},
                                                           {"", "/home/ada/Desktop"},
                                                           {"relative", "/home/ada/Desktop"},
                                                           {Rows{"/srv"}, "/home/ada/Desktop"}};
    for (const auto& [value, folder] : values) {
      standard->setObject(value, key);
      add(list, {});
      EXPECT_EQ(panels.shown.back().directory->path(), folder);
      EXPECT_EQ(stored(key), value);
    }
  }
}

TEST_F(AddingRules, ChangesNothingWhenThePanelIsCancelled) {
  const Rows rows = rowsNamed({"a"});
  for (const auto list : {RuleList::CreateNewFile, RuleList::CopyFilesTo, RuleList::CommonPath,
                          RuleList::CustomIcon}) {
    show(list, rows);
    add(list, {});
    EXPECT_EQ(stored(keyOf(list)), PropertyList(rows));
  }
  EXPECT_THAT(view.events, IsEmpty());
  EXPECT_THAT(suite->keys(), IsEmpty());
  EXPECT_EQ(standard->keys().size(), 4U);
}

TEST_F(AddingRules, CopiesFilesAsTemplates) {
  fileManager.addFile(templates + "/Makefile", "an older one");
  show(RuleList::CreateNewFile, {Row{{"displayName", "Makefile"}, {"extension", ""}}});
  add(RuleList::CreateNewFile, {"/srv/data/Letter.draft.odt", "/srv/data/Makefile"});
  const auto row = [](const char* name, const char* extension) {
    return Row{{"enable", "1"}, {"displayName", name}, {"extension", extension}, {"modified", "1"}};
  };
  expectRows(RuleList::CreateNewFile, {Row{{"displayName", "Makefile"}, {"extension", ""}},
                                       row("Letter.draft", "odt"), row("Makefile", "")});
  EXPECT_EQ(fileManager.textOfFile(templates + "/Letter.draft.odt"), "a letter");
  EXPECT_EQ(fileManager.textOfFile(templates + "/Makefile"), "all:");
  EXPECT_EQ(fileManager.textOfFile("/srv/data/Makefile"), "all:");
  EXPECT_EQ(stored("prePathOfCreateNewFile"), PropertyList("/srv/data"));
}

TEST_F(AddingRules, TakesWhatALinkLeadsToUnderTheNameOfTheLink) {
  fileManager.addSymlink("/home/ada/Pictures/link.sh", "/srv/data/Makefile");
  fileManager.addSymlink("/home/ada/Pictures/link.png", "../../../srv/data/one.png");
  add(RuleList::CreateNewFile, {"/home/ada/Pictures/link.sh"});
  add(RuleList::CustomIcon, {"/home/ada/Pictures/link.png"});
  EXPECT_EQ(templateText("link.sh"), "all:");
  EXPECT_EQ(fileManager.targetOfSymlink(templates + "/link.sh"), std::nullopt);
  EXPECT_THAT(namesOf(rules().rows(RuleList::CreateNewFile)), ElementsAre("link"));
  EXPECT_THAT(namesOf(rules().rows(RuleList::CustomIcon)), ElementsAre("link.png"));
  EXPECT_EQ(stored("prePathOfCreateNewFile"), PropertyList("/home/ada/Pictures"));
  EXPECT_EQ(stored("prePathOfCustomIcon"), PropertyList("/home/ada/Pictures"));
  EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(AddingRules, MakesTheFolderOfTemplatesAnew) {
  fileManager.discardItem("/containers");
  add(RuleList::CreateNewFile, {"/srv/data/Makefile"});
  EXPECT_EQ(templateText("Makefile"), "all:");
  EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(AddingRules, LeavesOutTemplatesThatCannotBeCopied) {
  fileManager.addFile(templates + "/Makefile", "an older one");
  fileManager.failOn(templates + "/Makefile", std::errc::no_space_on_device);
  fileManager.addFolder(templates + "/one.png");
  add(RuleList::CreateNewFile,
      {"/srv/data/Makefile", "/srv/data/one.png", "/srv/data/Letter.draft.odt"});
  EXPECT_THAT(namesOf(rules().rows(RuleList::CreateNewFile)), ElementsAre("Letter.draft"));
  EXPECT_EQ(fileManager.textOfFile(templates + "/Makefile"), "an older one");
  EXPECT_EQ(stored("prePathOfCreateNewFile"), PropertyList("/srv/data"));
  EXPECT_THAT(log.lines(), ElementsAre(AllOf(HasSubstr("2 of"), HasSubstr("Makefile"))));
}

TEST_F(AddingRules, KeepsTheListWithoutAContainerOfTheGroup) {
  fileManager.discardItem("/containers");
  fileManager.addFile("/containers", "in the way");
  show(RuleList::CreateNewFile, rowsNamed({"a"}));
  add(RuleList::CreateNewFile, {"/srv/data/Makefile"});
  expectRows(RuleList::CreateNewFile, rowsNamed({"a"}));
  EXPECT_THAT(log.lines(), SizeIs(1));
}

TEST_F(AddingRules, TakesImagesAsIconsAndLeavesOutWhatIsNone) {
  fileManager.addFile("/srv/data/damaged.png", "image damaged");
  images.tiffs = {{"one", {1, 2}}, {"two", {3}}, {"damaged", {}}};
  add(RuleList::CustomIcon, {"/srv/data/no image.png", "/srv/data/one.png", "/srv/data/damaged.png",
                             "/srv/data/Two.PNG"});
  const auto row = [](const char* name, PropertyList::Data icon) {
    return Row{{"enable", 1}, {"icon", std::move(icon)}, {"displayName", name}, {"modified", "1"}};
  };
  expectRows(RuleList::CustomIcon, {row("one.png", {1, 2}), row("Two.PNG", {3})});
  EXPECT_EQ(stored("prePathOfCustomIcon"), PropertyList("/srv/data"));
  EXPECT_THAT(log.lines(), ElementsAre(AllOf(HasSubstr("2 of"), HasSubstr("no image.png"),
                                             HasSubstr("not supported"))));
}

TEST_F(AddingRules, GivesARowTheFolderThatTheUserPicks) {
  const Row future{{"future", Rows{1}}, {"enable", 0}};
  Row row = future;
  row.insert({{"realPath", "Undefined"}, {"displayName", "my title"}});
  show(RuleList::CopyFilesTo, {row, row, 7});
  standard->setObject("/srv", "prePathOfSendFilesTo");
  panels.answerWithPath("/home/ada/Documents/Letters");
  rules().selectPath(1);
  panels.endBegunPanel();
  Row changed = future;
  changed.insert({{"realPath", "/home/ada/Documents/Letters"}, {"displayName", ""}});
  expectRows(RuleList::CopyFilesTo, {row, changed, 7});
  EXPECT_EQ(view.events, std::vector<std::string>{"reload arrOfCopyFilesTo"});
  EXPECT_EQ(stored("prePathOfSendFilesTo"), PropertyList("/srv"));
  const PanelSettings& shown = panels.shown.back();
  EXPECT_EQ(shown.canChooseFiles, false);
  EXPECT_EQ(shown.canChooseDirectories, true);
  EXPECT_EQ(shown.canCreateDirectories, true);
  EXPECT_EQ(shown.allowsMultipleSelection, false);
  EXPECT_EQ(shown.directory->path(), "/home/ada/Desktop");

  rules().selectPath(2);
  panels.endBegunPanel();
  expectRows(RuleList::CopyFilesTo, {row, changed, 7});
  panels.answerWithPath("/srv/data");
  rules().selectPath(2);
  panels.endBegunPanel();
  expectRows(RuleList::CopyFilesTo,
             {row, changed, Row{{"realPath", "/srv/data"}, {"displayName", ""}}});
}

TEST_F(AddingRules, PicksNoFolderForARowThatIsNotThere) {
  show(RuleList::CopyFilesTo, rowsNamed({"a", "b"}));
  rules().selectPath(2);
  rules().selectPath(static_cast<std::size_t>(-1));
  panels.answerWithPath("/srv/data");
  rules().selectPath(1);
  show(RuleList::CopyFilesTo, rowsNamed({"a"}));
  userDefaults.processChanges();
  panels.endBegunPanel();
  EXPECT_EQ(stored("arrOfCopyFilesTo"), PropertyList(rowsNamed({"a"})));
  EXPECT_THAT(panels.shown, SizeIs(1));
}

TEST_F(AddingRules, EndsAPanelAfterTheWindowIsGone) {
  show(RuleList::CommonPath, rowsNamed({"a"}));
  panels.answerWithPath("/srv/data");
  rules().addRule(RuleList::CommonPath);
  controller->setView(nullptr);
  standard->setObject(rowsNamed({"b", "c"}), "arrOfCommonPath");
  panels.endBegunPanel();
  Rows rows = rowsNamed({"b", "c"});
  rows.emplace_back(folderRow("/srv/data"));
  expectRows(RuleList::CommonPath, rows);
  EXPECT_THAT(view.events, IsEmpty());

  panels.answerWithPath("/srv/data");
  rules().addRule(RuleList::CommonPath);
  controller.reset();
  panels.endBegunPanel();
  EXPECT_EQ(stored("arrOfCommonPath"), PropertyList(rows));
}

}  // namespace
}  // namespace tavrin
