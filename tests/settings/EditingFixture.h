#pragma once

#include <algorithm>

#include "tests/settings/FakeSettingsView.h"
#include "tests/settings/SettingsFixture.h"

namespace tavrin {

using Row = PropertyList::Dictionary;
using Rows = PropertyList::Array;

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

/// The titles of rows.
inline std::vector<std::string> namesOf(const PropertyList::Array& rows) {
  std::vector<std::string> names;
  for (const PropertyList& row : rows) names.push_back(row.stringForKey("displayName"));
  return names;
}

}  // namespace tavrin
