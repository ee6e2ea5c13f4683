#include <gmock/gmock.h>

#include "tests/settings/EditingFixture.h"

namespace tavrin {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr std::size_t noRow = static_cast<std::size_t>(-1);

constexpr RuleList allLists[] = {RuleList::CreateNewFile, RuleList::CopyFilesTo,
                                 RuleList::CommonPath, RuleList::CustomIcon, RuleList::Others};
constexpr RuleList shrinkingLists[] = {RuleList::CreateNewFile, RuleList::CopyFilesTo,
                                       RuleList::CommonPath, RuleList::CustomIcon};

Row with(const PropertyList& row, const char* field, const PropertyList& value) {
  Row changed = *row.dictionaryIfDictionary();
  changed.insert_or_assign(field, value);
  return changed;
}

Row command(const char* action, const PropertyList& enable) {
  return {{"Action", action}, {"displayName", action}, {"enable", enable}, {"future", 1.5}};
}

Row templateRow(const char* name, const char* extension) {
  return {{"displayName", name}, {"extension", extension}, {"enable", "1"}};
}

class RuleEditing : public EditingFixture {
 protected:
  void select(RuleList list, std::optional<std::size_t> row) {
    view.selected[list] = row;
    view.removeButtons[list] = row.has_value();
  }

  std::optional<std::string> templateText(const std::string& name) const {
    return fileManager.textOfFile(templates + "/" + name);
  }

  /// What both stores hold of a list when its table is shown anew.
  struct Moment {
    PropertyList stored, published;
    int synchronized;
  };
  Moment momentOfReload(RuleList list, const std::function<void()>& edit) {
    std::optional<Moment> moment;
    view.whileReloading = [&] {
      EXPECT_FALSE(moment);
      moment = {stored(keyOf(list)), published(keyOf(list)), standardSynchronizations()};
    };
    edit();
    view.whileReloading = nullptr;
    EXPECT_TRUE(moment);
    return *moment;
  }
};

// Removing

TEST_F(RuleEditing, RemovesTheSelectedRowAndSelectsTheOneBefore) {
  for (const RuleList list : shrinkingLists) {
    SCOPED_TRACE(keyOf(list));
    Rows rows = rowsNamed({"a", "b", "c", "d"});
    show(list, rows);
    select(list, 3);
    rules().removeRule(list);
    rows.pop_back();
    expectRows(list, rows);
    EXPECT_EQ(view.selectedRow(list), 2U);
    EXPECT_EQ(view.events, std::vector{std::string("reload ") + keyOf(list)});

    select(list, 0);
    rules().removeRule(list);
    rows.erase(rows.begin());
    expectRows(list, rows);
    EXPECT_EQ(view.selectedRow(list), 0U);
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
  select(RuleList::CreateNewFile, 1);
  rules().removeRule(RuleList::CreateNewFile);
  EXPECT_EQ(templateText("Text.txt"), std::nullopt);
  EXPECT_EQ(templateText("Other.txt"), "other");
  EXPECT_THAT(log.lines(), IsEmpty());

  select(RuleList::CreateNewFile, 1);
  rules().removeRule(RuleList::CreateNewFile);
  expectRows(RuleList::CreateNewFile, {templateRow("Other", "txt"), templateRow("Format", "")});
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

// Titles

struct TitleCase {
  const char* identifier;
  RuleList list;
  const char* ownTitleField;
};

constexpr TitleCase titleCases[] = {{"NewFileDisplayName", RuleList::CreateNewFile, "modified"},
                                    {"newFileName", RuleList::CopyFilesTo, nullptr},
                                    {"Note", RuleList::CopyFilesTo, nullptr},
                                    {"commonPathDisplayName", RuleList::CommonPath, nullptr},
                                    {"CustomIconName", RuleList::CustomIcon, "modified"},
                                    {"OthersDisplayName", RuleList::Others, "nameModified"}};

TEST_F(RuleEditing, GivesRowsWhateverTitleIsTyped) {
  for (const TitleCase& title : titleCases) {
    SCOPED_TRACE(title.identifier);
    for (const std::string& text :
         {std::string(), std::string("a"), std::string("ü\xFF/\n"), std::string(5000, 'x')}) {
      Rows rows = rowsNamed({"a", "b"});
      rows.emplace_back(7);
      show(title.list, rows);
      const int synchronized = standardSynchronizations();
      EXPECT_TRUE(rules().controlTextShouldEndEditing(title.identifier, 1, text));
      EXPECT_TRUE(rules().controlTextShouldEndEditing(title.identifier, 2, text));
      EXPECT_EQ(standardSynchronizations(), synchronized + 2);
      rows[2] = Row{};
      for (PropertyList* row : {&rows[1], &rows[2]}) {
        *row = with(*row, "displayName", text);
        if (title.ownTitleField != nullptr) *row = with(*row, title.ownTitleField, "1");
      }
      expectRows(title.list, rows);
    }
  }
}

TEST_F(RuleEditing, PassesOverRowsAndCellsThatAreNotThere) {
  for (const RuleList list : allLists) show(list, rowsNamed({"a"}));
  for (const TitleCase& title : titleCases) {
    EXPECT_TRUE(rules().controlTextShouldEndEditing(title.identifier, 1, "x"));
    EXPECT_TRUE(rules().controlTextShouldEndEditing(title.identifier, noRow, "x"));
  }
  for (const char* identifier : {"", "DisplayName", "note", "Extension"}) {
    EXPECT_TRUE(rules().controlTextShouldEndEditing(identifier, 0, "x"));
  }
  for (const RuleList list : allLists) {
    rules().switchRow(list, 1, record_field::enable, false);
    rules().switchRow(list, noRow, record_field::enable, false);
    rules().acceptDrop(list, 1, 0);
    rules().acceptDrop(list, noRow, 0);
    rules().acceptDrop(list, 0, 2);
    rules().acceptDrop(list, 0, noRow);
    EXPECT_EQ(stored(keyOf(list)), PropertyList(rowsNamed({"a"})));
  }
  EXPECT_THAT(suite->keys(), IsEmpty());
  EXPECT_THAT(view.events, IsEmpty());
}

TEST_F(RuleEditing, MovesTheTemplateWithItsTitle) {
  fileManager.addFile(templates + "/Text.txt", "text");
  show(RuleList::CreateNewFile, {templateRow("Text", "txt")});
  std::optional<std::string> movedAlready;
  view.whileReloading = [&] { movedAlready = templateText("Note.txt"); };
  rules().controlTextShouldEndEditing("NewFileDisplayName", 0, "Note");
  EXPECT_EQ(movedAlready, std::nullopt);
  EXPECT_EQ(templateText("Note.txt"), "text");
  EXPECT_EQ(templateText("Text.txt"), std::nullopt);
  rules().controlTextShouldEndEditing("NewFileDisplayName", 0, "");
  EXPECT_EQ(templateText(".txt"), "text");
  rules().controlTextShouldEndEditing("NewFileDisplayName", 0, "");
  EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(RuleEditing, ReplacesNoTemplateByANewTitle) {
  fileManager.addFile(templates + "/Text.txt", "text");
  fileManager.addFile(templates + "/Note.txt", "note");
  show(RuleList::CreateNewFile, {templateRow("Text", "txt"), templateRow("Gone", "txt")});
  rules().controlTextShouldEndEditing("NewFileDisplayName", 0, "Note");
  rules().controlTextShouldEndEditing("NewFileDisplayName", 1, "Note");
  EXPECT_THAT(namesOf(rules().rows(RuleList::CreateNewFile)), ElementsAre("Note", "Note"));
  EXPECT_EQ(templateText("Text.txt"), "text");
  EXPECT_EQ(templateText("Note.txt"), "note");
  EXPECT_THAT(log.lines(), ElementsAre(HasSubstr("Note.txt"), HasSubstr("Gone.txt")));
}

// Order

TEST_F(RuleEditing, MovesADraggedRowWhereTheDropRowSays) {
  struct Drop {
    std::size_t source, row;
    std::vector<std::string> names;
  };
  const Drop drops[] = {{0, 3, {"b", "c", "a"}}, {0, 2, {"b", "c", "a"}}, {0, 1, {"b", "a", "c"}},
                        {0, 0, {"a", "b", "c"}}, {1, 1, {"a", "b", "c"}}, {1, 2, {"a", "c", "b"}},
                        {2, 0, {"c", "a", "b"}}, {2, 1, {"a", "c", "b"}}, {2, 3, {"a", "b", "c"}}};
  for (const RuleList list : shrinkingLists) {
    for (const Drop& drop : drops) {
      SCOPED_TRACE(std::to_string(drop.source) + " to " + std::to_string(drop.row));
      const Rows before = rowsNamed({"a", "b", "c"});
      show(list, before);
      suite->removeObjectForKey(keyOf(list));
      select(list, drop.source);
      const int synchronized = standardSynchronizations();
      const auto moment =
          momentOfReload(list, [&] { rules().acceptDrop(list, drop.source, drop.row); });
      EXPECT_EQ(moment.published, published(keyOf(list)));
      EXPECT_EQ(namesOf(rules().rows(list)), drop.names);
      expectRows(list, rules().rows(list));
      EXPECT_EQ(rules().rows(list).back().find("future") != nullptr, true);
      EXPECT_EQ(view.selectedRow(list), std::nullopt);
      EXPECT_EQ(standardSynchronizations(), synchronized);
    }
  }
}

TEST_F(RuleEditing, CountsTheIconsWhenACommandIsDragged) {
  struct Drop {
    std::vector<const char*> icons;
    std::size_t source, row;
    std::vector<std::string> names;
  };
  const Drop drops[] = {{{"i", "j"}, 0, 2, {"b", "a", "c"}},
                        {{"i", "j"}, 0, 1, {"b", "a", "c"}},
                        {{"i", "j"}, 0, 3, {"b", "c", "a"}},
                        {{}, 2, 0, {"c", "a", "b"}},
                        {{}, 0, 3, {"b", "c", "a"}},
                        {{"i", "j", "k"}, 0, 3, {"b", "c", "a"}},
                        {{"i", "j", "k", "l"}, 1, 3, {"a", "c", "b"}}};
  for (const Drop& drop : drops) {
    show(RuleList::CustomIcon, rowsNamed(drop.icons));
    show(RuleList::Others, rowsNamed({"a", "b", "c"}));
    rules().acceptDrop(RuleList::Others, drop.source, drop.row);
    EXPECT_EQ(namesOf(rules().rows(RuleList::Others)), drop.names);
  }
}

TEST_F(RuleEditing, MovesNoService) {
  const Rows rows{command("Cut", 1), command("Translate by Google", 1), command("Paste", 1)};
  show(RuleList::Others, rows);
  select(RuleList::Others, 1);
  rules().acceptDrop(RuleList::Others, 1, 0);
  EXPECT_EQ(stored("arrOfOthers"), PropertyList(rows));
  EXPECT_EQ(published("arrOfOthers"), PropertyList("(absent)"));
  EXPECT_EQ(view.selectedRow(RuleList::Others), 1U);
  EXPECT_THAT(view.events, IsEmpty());
  rules().acceptDrop(RuleList::Others, 2, 1);
  expectRows(RuleList::Others, {rows[0], rows[2], rows[1]});
}

// Others' changes

TEST_F(RuleEditing, ShowsWhatAnotherProgramStoredAndEditsThat) {
  for (const RuleList list : allLists) {
    SCOPED_TRACE(keyOf(list));
    show(list, rowsNamed({"a"}));
    ASSERT_EQ(namesOf(rules().rows(list)), std::vector<std::string>{"a"});
    const Rows foreign = rowsNamed({"x", "y"});
    userDefaults.changeFromElsewhere("", keyOf(list), foreign);
    userDefaults.processChanges();
    EXPECT_EQ(view.events, std::vector{std::string("reload ") + keyOf(list)});
    rules().acceptDrop(list, 1, 0);
    expectRows(list, {foreign[1], foreign[0]});

    view.events.clear();
    userDefaults.processChanges();
    EXPECT_THAT(view.events, IsEmpty());
    userDefaults.changeFromElsewhere("", keyOf(list), PropertyList("no array"));
    userDefaults.processChanges();
    EXPECT_THAT(rules().rows(list), IsEmpty());
    EXPECT_EQ(view.events.size(), 1U);
  }
}

TEST_F(RuleEditing, FollowsNobodyWithoutAView) {
  show(RuleList::CommonPath, rowsNamed({"a"}));
  controller->setView(nullptr);
  userDefaults.changeFromElsewhere("", "arrOfCommonPath", PropertyList(rowsNamed({"x"})));
  userDefaults.processChanges();
  EXPECT_THAT(view.events, IsEmpty());
  rules().removeRule(RuleList::CommonPath);
  EXPECT_THAT(suite->keys(), IsEmpty());
  rules().controlTextShouldEndEditing("commonPathDisplayName", 0, "y");
  EXPECT_THAT(namesOf(rules().rows(RuleList::CommonPath)), ElementsAre("y"));
  EXPECT_THAT(view.events, IsEmpty());
}

}  // namespace
}  // namespace tavrin
