#pragma once

#include <algorithm>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "tests/settings/FakeSettingsView.h"
#include "tests/settings/SettingsFixture.h"

namespace tavrin {

using Row = PropertyList::Dictionary;
using Rows = PropertyList::Array;

inline constexpr std::size_t noRow = static_cast<std::size_t>(-1);

inline constexpr RuleList allLists[] = {RuleList::CreateNewFile, RuleList::CopyFilesTo,
                                        RuleList::CommonPath, RuleList::CustomIcon,
                                        RuleList::Others};
inline constexpr RuleList shrinkingLists[] = {RuleList::CreateNewFile, RuleList::CopyFilesTo,
                                              RuleList::CommonPath, RuleList::CustomIcon};

/// The rule lists of a window that has come up.
class EditingFixture : public SettingsFixture {
 protected:
  EditingFixture() {
    fileManager.addFolder(templates);
    makeController().setView(&view);
  }

  static const char* keyOf(RuleList list) { return keysOfRuleList(list).listKey; }

  /// The list is stored and shown; what was done and told before is forgotten.
  void show(RuleList list, const Rows& rows) {
    standard->setObject(rows, keyOf(list));
    view.events.clear();
  }

  RuleListEditing& rules() { return controller->rules(); }

  static Rows enabledRowsOf(Rows rows) {
    std::erase_if(rows, [](const PropertyList& row) { return !row.boolForKey("enable"); });
    return rows;
  }

  /// The rows are what is edited, stored and published.
  void expectRows(RuleList list, const Rows& rows) {
    EXPECT_EQ(PropertyList(rules().rows(list)), PropertyList(rows));
    EXPECT_EQ(stored(keyOf(list)), PropertyList(rows));
    EXPECT_EQ(published(keyOf(list)), PropertyList(enabledRowsOf(rows)));
  }

  int standardSynchronizations() {
    return userDefaults.synchronizeCount(FakeUserDefaultsProvider::standardDomain);
  }

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
    view.whileShowing = [&] {
      EXPECT_FALSE(moment);
      moment = {stored(keyOf(list)), published(keyOf(list)), standardSynchronizations()};
    };
    edit();
    view.whileShowing = nullptr;
    EXPECT_TRUE(moment);
    return *moment;
  }

  const std::string templates = "/containers/" + bundle.group + "/Templates/CreateNewFile";
  FakeSettingsView view;
};

/// Rows with the given titles that are all on.
inline Rows rowsNamed(const std::vector<const char*>& names) {
  Rows rows;
  for (const char* name : names) {
    rows.emplace_back(Row{{"displayName", name}, {"enable", 1}, {"future", Rows{name, 1}}});
  }
  return rows;
}

/// A record with one field set.
inline Row with(const PropertyList& row, const char* field, const PropertyList& value) {
  Row changed = *row.dictionaryIfDictionary();
  changed.insert_or_assign(field, value);
  return changed;
}

inline Row command(const char* action, const PropertyList& enable) {
  return {{"Action", action}, {"displayName", action}, {"enable", enable}, {"future", 1.5}};
}

inline Row templateRow(const char* name, const char* extension) {
  return {{"displayName", name}, {"extension", extension}, {"enable", "1"}};
}

/// The titles of rows.
inline std::vector<std::string> namesOf(const PropertyList::Array& rows) {
  std::vector<std::string> names;
  for (const PropertyList& row : rows) names.push_back(row.stringForKey("displayName"));
  return names;
}

}  // namespace tavrin
