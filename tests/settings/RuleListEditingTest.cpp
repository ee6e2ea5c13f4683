#include <gmock/gmock.h>

#include "tests/settings/EditingFixture.h"

namespace tavrin {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

using RuleEditing = EditingFixture;

// Removing

TEST_F(RuleEditing, RemovesTheSelectedRowAndSelectsTheOneBefore) {
  for (const RuleList list : shrinkingLists) {
    SCOPED_TRACE(keyOf(list));
    Rows rows = rowsNamed({"a", "b", "c", "d"});
    show(list, rows);
    select(list, 3);
    const int synchronized = standardSynchronizations();
    rules().removeRule(list);
    rows.pop_back();
    expectRows(list, rows);
    EXPECT_EQ(view.selectedRow(list), 2U);
    EXPECT_EQ(view.events, std::vector{std::string("reload ") + keyOf(list)});
    EXPECT_EQ(standardSynchronizations(), synchronized + 1);

    for (const std::size_t row : {1U, 0U}) {
      select(list, row);
      rules().removeRule(list);
      rows.erase(rows.begin() + static_cast<std::ptrdiff_t>(row));
      expectRows(list, rows);
      EXPECT_EQ(view.selectedRow(list), 0U);
    }
    EXPECT_TRUE(view.removeButtons[list]);
  }
}

TEST_F(RuleEditing, DisablesTheRemoveButtonWithTheLastRow) {
  for (const RuleList list : shrinkingLists) {
    show(list, rowsNamed({"a"}));
    select(list, 0);
    rules().removeRule(list);
    expectRows(list, {});
    EXPECT_FALSE(view.removeButtons[list]);
  }
}

TEST_F(RuleEditing, RemovesNothingWithoutASelectionButPublishes) {
  for (const RuleList list : shrinkingLists) {
    SCOPED_TRACE(keyOf(list));
    const Rows rows = rowsNamed({"a", "b"});
    for (const std::optional<std::size_t> row : {std::optional<std::size_t>(), {2U}, {noRow}}) {
      show(list, rows);
      select(list, row);
      suite->removeObjectForKey(keyOf(list));
      view.removeButtons[list] = true;
      rules().removeRule(list);
      expectRows(list, rows);
      EXPECT_EQ(view.selectedRow(list), std::nullopt);
      EXPECT_TRUE(view.removeButtons[list]);
      EXPECT_THAT(view.events, IsEmpty());
    }
    show(list, {});
    rules().removeRule(list);
    expectRows(list, {});
    EXPECT_FALSE(view.removeButtons[list]);
  }
}

TEST_F(RuleEditing, RemovesNoBuiltInCommand) {
  show(RuleList::Others, rowsNamed({"a"}));
  select(RuleList::Others, 0);
  rules().removeRule(RuleList::Others);
  EXPECT_EQ(stored("arrOfOthers"), PropertyList(rowsNamed({"a"})));
  EXPECT_EQ(published("arrOfOthers"), PropertyList("(absent)"));
}

TEST_F(RuleEditing, RemovesTheTemplateOfARow) {
  fileManager.addFile(templates + "/Text.txt", "text");
  fileManager.addFile(templates + "/Other.txt", "other");
  show(RuleList::CreateNewFile, {templateRow("Other", "txt"), templateRow("Text", "txt"),
                                 templateRow("Text", "txt"), templateRow("Format", "")});
  show(RuleList::CommonPath, {templateRow("Text", "txt")});
  select(RuleList::CommonPath, 0);
  rules().removeRule(RuleList::CommonPath);
  EXPECT_EQ(templateText("Text.txt"), "text");
  for (const auto& left : {std::optional<std::string>("text"), std::optional<std::string>()}) {
    select(RuleList::CreateNewFile, 1);
    rules().removeRule(RuleList::CreateNewFile);
    EXPECT_EQ(templateText("Text.txt"), left);
  }
  EXPECT_EQ(templateText("Other.txt"), "other");
  expectRows(RuleList::CreateNewFile, {templateRow("Other", "txt"), templateRow("Format", "")});
  EXPECT_THAT(log.lines(), IsEmpty());

  show(RuleList::CreateNewFile, {templateRow("Other", "txt"), templateRow("Text", "txt")});
  select(RuleList::CreateNewFile, 1);
  rules().removeRule(RuleList::CreateNewFile);
  EXPECT_THAT(log.lines(), ElementsAre(HasSubstr("Text.txt")));
}

TEST_F(RuleEditing, TouchesNoFileOutsideOfTheTemplates) {
  const std::string cutShort("kept.txt\0", 9);
  fileManager.addFile("/containers/" + bundle.group + "/Templates/up.txt", "outside");
  fileManager.addFile(templates + "/kept.txt", "kept");
  fileManager.addFile(templates + "/folder/in.txt", "below");
  fileManager.addFile(templates + "/Text.txt", "text");
  const auto before = fileManager.allPaths();
  const Rows rows{templateRow("../up", "txt"),
                  templateRow("folder/in", "txt"),
                  templateRow("", "."),
                  templateRow("", ""),
                  templateRow("x", "/../../up.txt"),
                  Row{{"displayName", cutShort}, {"extension", "x"}, {"enable", 1}}};
  show(RuleList::CreateNewFile, rows);
  while (!rules().rows(RuleList::CreateNewFile).empty()) {
    select(RuleList::CreateNewFile, 0);
    rules().removeRule(RuleList::CreateNewFile);
  }
  show(RuleList::CreateNewFile, rows);
  for (std::size_t row = 0; row < rows.size(); ++row) {
    rules().controlTextShouldEndEditing("NewFileDisplayName", row, "Stolen");
  }
  show(RuleList::CreateNewFile, {templateRow("Text", "txt")});
  for (const std::string& title : {std::string("../out"), std::string("folder/Text"), cutShort}) {
    rules().controlTextShouldEndEditing("NewFileDisplayName", 0, title);
    EXPECT_EQ(stored("arrOfCreateNewFile").arrayIfArray()->front().stringForKey("displayName"),
              title);
    show(RuleList::CreateNewFile, {templateRow("Text", "txt")});
  }
  EXPECT_EQ(fileManager.allPaths(), before);
}

TEST_F(RuleEditing, RemovingARowLeavesTheTemplateThatAnotherRowHasGotItsTitleOf) {
  fileManager.addFile(templates + "/A.txt", "a");
  fileManager.addFile(templates + "/B.txt", "b");
  show(RuleList::CreateNewFile, {templateRow("A", "txt"), templateRow("B", "txt")});
  rules().controlTextShouldEndEditing("NewFileDisplayName", 1, "A");
  select(RuleList::CreateNewFile, 1);
  rules().removeRule(RuleList::CreateNewFile);
  EXPECT_EQ(templateText("A.txt"), "a");
  expectRows(RuleList::CreateNewFile, {templateRow("A", "txt")});
}

// Resetting

TEST_F(RuleEditing, ResetsAListWhenTheUserAgrees) {
  bundle.translations["All setting parameters will be reseted!"] = "Alles!";
  for (const RuleList list : allLists) {
    SCOPED_TRACE(keyOf(list));
    const Rows defaultRows = rowsNamed({"default"});
    defaults = DefaultSettings({{keyOf(list), defaultRows}});
    const Rows mine = rowsNamed({"mine", "too"});
    show(list, mine);
    select(list, 1);
    alerts.answers = {1};
    rules().resetRule(list);
    EXPECT_EQ(stored(keyOf(list)), PropertyList(mine));
    EXPECT_EQ(published(keyOf(list)), PropertyList("(absent)"));
    EXPECT_TRUE(view.removeButtons[list]);
    EXPECT_THAT(view.events, IsEmpty());

    alerts.answers = {0};
    const int synchronized = standardSynchronizations();
    const auto moment = momentOfReload(list, [&] { rules().resetRule(list); });
    EXPECT_EQ(moment.stored, PropertyList(defaultRows));
    EXPECT_EQ(moment.published, PropertyList("(absent)"));
    EXPECT_EQ(moment.synchronized, synchronized + 1);
    expectRows(list, defaultRows);
    EXPECT_FALSE(view.removeButtons[list]);
  }
  EXPECT_EQ(alerts.shown[0].informativeText, "Alles!");
  EXPECT_EQ(alerts.shown[0].buttons, (std::vector<std::string>{"OK", "Cancel"}));
}

// Switches

TEST_F(RuleEditing, EnablesAllRowsAsTheSwitchSays) {
  const std::pair<RuleList, const char*> switched[] = {
      {RuleList::CreateNewFile, "enableAllOfCreateNewFiles"},
      {RuleList::CustomIcon, "enableAllOfCustomIcon"},
      {RuleList::Others, "enableAllOfOthers"}};
  for (const auto& [list, key] : switched) {
    SCOPED_TRACE(key);
    Rows rows = rowsNamed({"a", "b"});
    const Rows before{with(rows[0], "enable", "1"), with(rows[1], "enable", 0), "no record"};
    show(list, before);
    standard->setObject(true, key);
    const int synchronized = standardSynchronizations();
    const auto moment = momentOfReload(list, [&, only = list] { rules().enableAllClick(only); });
    EXPECT_EQ(moment.stored, PropertyList(before));
    rows.emplace_back(Row{{"enable", 1}});
    expectRows(list, rows);
    EXPECT_EQ(stored(key), PropertyList(true));

    standard->setObject("NO", key);
    rules().enableAllClick(list);
    for (PropertyList& row : rows) row = with(row, "enable", 0);
    expectRows(list, rows);
    EXPECT_EQ(stored(key), PropertyList(false));
    EXPECT_EQ(standardSynchronizations(), synchronized);
  }
  for (const RuleList list : {RuleList::CopyFilesTo, RuleList::CommonPath}) {
    show(list, rowsNamed({"a"}));
    rules().enableAllClick(list);
    EXPECT_EQ(published(keyOf(list)), PropertyList("(absent)"));
  }
}

TEST_F(RuleEditing, KeepsTheServicesOnWhenAllIsSwitchedOff) {
  show(RuleList::Others, {command("Change to QR Code", 0), command("Cut", 1),
                          command("Translate by Google", "1"), command("Translate by Baidu", 1)});
  standard->setObject(false, "enableAllOfOthers");
  rules().enableAllClick(RuleList::Others);
  expectRows(RuleList::Others,
             {command("Change to QR Code", 1), command("Cut", 0), command("Translate by Google", 1),
              command("Translate by Baidu", 1)});
}

TEST_F(RuleEditing, SwitchesOneRowAndKeepsItsOtherFields) {
  for (const RuleList list :
       {RuleList::CreateNewFile, RuleList::CopyFilesTo, RuleList::CustomIcon, RuleList::Others}) {
    SCOPED_TRACE(keyOf(list));
    Rows rows = rowsNamed({"a", "b", "c"});
    rows[1] = with(rows[1], "enable", "1");
    rows.emplace_back("no record");
    show(list, rows);
    const int synchronized = standardSynchronizations();
    const auto moment =
        momentOfReload(list, [&] { rules().switchRow(list, 1, record_field::enable, false); });
    rows[1] = with(rows[1], "enable", 0);
    EXPECT_EQ(moment.stored, PropertyList(rows));
    EXPECT_EQ(moment.published, PropertyList("(absent)"));
    EXPECT_EQ(moment.synchronized, synchronized + 1);
    expectRows(list, rows);
    rules().switchRow(list, 1, record_field::enable, true);
    rules().switchRow(list, 3, record_field::enable, true);
    rows[1] = with(rows[1], "enable", 1);
    rows[3] = Row{{"enable", 1}};
    expectRows(list, rows);
  }
}

TEST_F(RuleEditing, OffersOnlyTheSwitchesThatAListHas) {
  Rows rows = rowsNamed({"a"});
  show(RuleList::CreateNewFile, rows);
  rules().switchRow(RuleList::CreateNewFile, 0, record_field::enableMainMenu, true);
  expectRows(RuleList::CreateNewFile, {with(rows[0], "enableMainMenu", 1)});
  rules().switchRow(RuleList::CreateNewFile, 0, record_field::enableMainMenu, false);
  expectRows(RuleList::CreateNewFile, {with(rows[0], "enableMainMenu", 0)});
  rules().switchRow(RuleList::CreateNewFile, 0, record_field::modified, true);
  expectRows(RuleList::CreateNewFile, {with(rows[0], "enableMainMenu", 0)});
  show(RuleList::CommonPath, rows);
  rules().switchRow(RuleList::CommonPath, 0, record_field::enable, false);
  show(RuleList::Others, rows);
  rules().switchRow(RuleList::Others, 0, record_field::enableMainMenu, true);
  for (const RuleList list : {RuleList::CommonPath, RuleList::Others}) {
    EXPECT_EQ(stored(keyOf(list)), PropertyList(rows));
  }
}

TEST_F(RuleEditing, NeverSwitchesARowWithoutAFolderOn) {
  const Row undefined{{"realPath", "Undefined"}, {"enable", 1}};
  show(RuleList::CopyFilesTo, {undefined, with(undefined, "realPath", "~/Undefined")});
  show(RuleList::CustomIcon, {undefined});
  rules().switchRow(RuleList::CustomIcon, 0, record_field::enable, true);
  expectRows(RuleList::CustomIcon, {undefined});
  rules().switchRow(RuleList::CopyFilesTo, 0, record_field::enable, true);
  rules().switchRow(RuleList::CopyFilesTo, 1, record_field::enable, true);
  expectRows(RuleList::CopyFilesTo,
             {with(undefined, "enable", 0), with(undefined, "realPath", "~/Undefined")});
}

TEST_F(RuleEditing, LetsASwitchedServiceLeaveTheWorkingListAlone) {
  const Rows rows{command("Cut", 1), command("Translate by Baidu", 1), command("Paste", 1)};
  show(RuleList::Others, rows);
  rules().switchRow(RuleList::Others, 1, record_field::enable, false);
  EXPECT_EQ(namesOf(rules().rows(RuleList::Others)), (std::vector<std::string>{"Cut", "Paste"}));
  EXPECT_EQ(stored("arrOfOthers"), PropertyList(rows));
  EXPECT_EQ(published("arrOfOthers"), PropertyList("(absent)"));
  EXPECT_THAT(view.events, IsEmpty());
  controller->setView(&view);
  EXPECT_EQ(PropertyList(rules().rows(RuleList::Others)), PropertyList(rows));
}

}  // namespace
}  // namespace tavrin
