#include <gmock/gmock.h>

#include "tests/settings/EditingFixture.h"

namespace tavrin {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

using RuleTitlesAndOrder = EditingFixture;

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

TEST_F(RuleTitlesAndOrder, GivesRowsWhateverTitleIsTyped) {
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

TEST_F(RuleTitlesAndOrder, PassesOverRowsAndCellsThatAreNotThere) {
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

TEST_F(RuleTitlesAndOrder, MovesTheTemplateWithItsTitle) {
  fileManager.addFile(templates + "/Text.txt", "text");
  show(RuleList::CreateNewFile, {templateRow("Text", "txt")});
  std::optional<std::string> movedAlready;
  view.whileShowing = [&] { movedAlready = templateText("Note.txt"); };
  rules().controlTextShouldEndEditing("NewFileDisplayName", 0, "Note");
  EXPECT_EQ(movedAlready, std::nullopt);
  EXPECT_EQ(templateText("Note.txt"), "text");
  EXPECT_EQ(templateText("Text.txt"), std::nullopt);
  rules().controlTextShouldEndEditing("NewFileDisplayName", 0, "");
  EXPECT_EQ(templateText(".txt"), "text");
  show(RuleList::CustomIcon, {templateRow("", "txt")});
  rules().controlTextShouldEndEditing("CustomIconName", 0, "Note");
  EXPECT_EQ(templateText(".txt"), "text");
  rules().controlTextShouldEndEditing("NewFileDisplayName", 0, "");
  EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(RuleTitlesAndOrder, ReplacesNoTemplateByANewTitle) {
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

TEST_F(RuleTitlesAndOrder, MovesADraggedRowWhereTheDropRowSays) {
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

TEST_F(RuleTitlesAndOrder, CountsTheIconsWhenACommandIsDragged) {
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

TEST_F(RuleTitlesAndOrder, MovesARowToAPlaceAndSelectsItThere) {
  show(RuleList::CustomIcon, rowsNamed({"i", "j"}));
  for (const RuleList list : allLists) {
    for (std::size_t from = 0; from < 3; ++from) {
      for (std::size_t place = 0; place < 3; ++place) {
        show(list, rowsNamed({"a", "b", "c"}));
        std::vector<std::string> names{"a", "b", "c"};
        const std::string moved = names[from];
        names.erase(names.begin() + static_cast<std::ptrdiff_t>(from));
        names.insert(names.begin() + static_cast<std::ptrdiff_t>(place), moved);
        rules().moveRow(list, from, place);
        EXPECT_EQ(namesOf(rules().rows(list)), names);
        expectRows(list, rules().rows(list));
        EXPECT_EQ(view.selectedRow(list), place);
      }
    }
    const Rows before = rules().rows(list);
    rules().moveRow(list, 0, 3);
    rules().moveRow(list, 3, 0);
    rules().moveRow(list, noRow, noRow);
    expectRows(list, before);
  }
}

TEST_F(RuleTitlesAndOrder, MovesNoService) {
  const Rows rows{command("Cut", 1), command("Translate by Google", 1), command("Paste", 1)};
  show(RuleList::Others, rows);
  select(RuleList::Others, 1);
  rules().acceptDrop(RuleList::Others, 1, 0);
  rules().moveRow(RuleList::Others, 1, 0);
  EXPECT_EQ(stored("arrOfOthers"), PropertyList(rows));
  EXPECT_EQ(published("arrOfOthers"), PropertyList("(absent)"));
  EXPECT_EQ(view.selectedRow(RuleList::Others), 1U);
  EXPECT_THAT(view.events, IsEmpty());
  rules().acceptDrop(RuleList::Others, 2, 1);
  expectRows(RuleList::Others, {rows[0], rows[2], rows[1]});
}

// Others' changes

TEST_F(RuleTitlesAndOrder, ShowsWhatAnotherProgramStoredAndEditsThat) {
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

TEST_F(RuleTitlesAndOrder, FollowsNobodyWithoutAView) {
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
  rules().controlTextShouldEndEditing("commonPathDisplayName", 0, "z");
  userDefaults.changeFromElsewhere("", "arrOfCommonPath", PropertyList(rowsNamed({"x"})));
  EXPECT_THAT(namesOf(rules().rows(RuleList::CommonPath)), ElementsAre("x"));
}

}  // namespace
}  // namespace tavrin
