#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <string>

#include "platform/linux/LinuxPropertyListSerialization.h"
#include "settings/SettingsKeys.h"

namespace tavrin {
namespace {

using Rows = PropertyList::Array;
using Strings = std::set<std::string>;

/// The resource that both stores are seeded from, as the program reads it.
class DefaultPreferences : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    LinuxPropertyListSerialization serialization;
    const auto read = serialization.propertyListWithContentsOfFile(TAVRIN_TEST_RESOURCES
                                                                   "/DefaultPreferences.plist");
    ASSERT_TRUE(read) << read.error().describe();
    ASSERT_TRUE(read.value().isDictionary());
    settings = *read.value().dictionaryIfDictionary();
  }

  static const Rows& rowsOf(const std::string& listKey) {
    return *settings.at(listKey).arrayIfArray();
  }

  static Strings valuesOf(const std::string& listKey, const char* field) {
    Strings values;
    for (const PropertyList& row : rowsOf(listKey)) values.insert(row.stringForKey(field));
    return values;
  }

  static inline PropertyList::Dictionary settings;
};

const Strings switches{"soundTipsOfNewFile",
                       "enableCopyFilesTo",
                       "enableCommonPath",
                       "enableMoveFilesTo",
                       "enableIconOfCreateNewFile",
                       "disableAutoNameOfCreateNewFile",
                       "enableAutoOpenAfterCreateNewFile",
                       "enableIconOfSendFilesTo",
                       "enableIconOfCommonPath",
                       "enableIconOfCustomIcon",
                       "enableIconOfOthers",
                       "deleteDirectlyRequiresConfirmation",
                       "enableOpenIniTerm2WithWindow",
                       "enableOpenInTerminalWithWindow",
                       "enableHideWhenCutting",
                       "enableDirectDeleteFiles",
                       "enableImageToIconInMac",
                       "hiddenIconInStatusBar",
                       "enableTextService"};

/// The lists and the fields that each of their rows has, no more and no fewer.
const std::map<std::string, Strings> fieldsOfLists{
    {"arrOfCreateNewFile", {"displayName", "extension", "enable", "enableMainMenu"}},
    {"arrOfCopyFilesTo", {"displayName", "realPath", "enable"}},
    {"arrOfCommonPath", {"displayName", "realPath", "enable"}},
    {"arrOfCustomIcon", {"displayName", "icon", "enable"}},
    {"arrOfOthers", {"displayName", "Action", "enable"}},
};

TEST_F(DefaultPreferences, HaveAValueForEachSeededKeyAndForNoOther) {
  Strings expected = switches;
  for (const auto& [listKey, fields] : fieldsOfLists) expected.insert(listKey);
  Strings keys;
  for (const auto& [key, value] : settings) {
    keys.insert(key);
    EXPECT_TRUE(switches.contains(key) ? value.isBoolean() : value.isArray()) << key;
  }
  EXPECT_EQ(keys, expected);
}

TEST_F(DefaultPreferences, HaveRowsOfTheRightFieldsInEachList) {
  for (const auto& [listKey, fields] : fieldsOfLists) {
    bool hasEnabledRow = false;
    for (const PropertyList& row : rowsOf(listKey)) {
      SCOPED_TRACE(listKey + ": " + row.stringForKey("displayName"));
      ASSERT_TRUE(row.isDictionary());
      for (const auto& [field, value] : *row.dictionaryIfDictionary()) {
        EXPECT_TRUE(fields.contains(field)) << field;
        const bool isSwitch = field == "enable" || field == "enableMainMenu";
        EXPECT_TRUE(isSwitch ? value.isInteger() : field == "icon" || value.isString()) << field;
      }
      EXPECT_EQ(row.dictionaryIfDictionary()->size(), fields.size());
      hasEnabledRow = hasEnabledRow || row.boolForKey("enable");
    }
    EXPECT_TRUE(hasEnabledRow) << listKey;
  }
}

TEST_F(DefaultPreferences, AskBeforeTheyDeleteAndRemoveNothingElse) {
  EXPECT_FALSE(settings.at("enableDirectDeleteFiles").boolValue());
  EXPECT_TRUE(settings.at("deleteDirectlyRequiresConfirmation").boolValue());
  EXPECT_FALSE(settings.at("enableImageToIconInMac").boolValue());
  EXPECT_FALSE(settings.at("hiddenIconInStatusBar").boolValue());
}

TEST_F(DefaultPreferences, OfferEachCommandOnceAndTheFixedOnesAlways) {
  Strings expected;
  for (const auto name : commandIconNames) expected.insert(std::string(name));
  for (const auto name : alwaysOnActions) expected.insert(std::string(name));
  EXPECT_EQ(valuesOf("arrOfOthers", "Action"), expected);
  EXPECT_EQ(rowsOf("arrOfOthers").size(), expected.size());
  for (const PropertyList& row : rowsOf("arrOfOthers")) {
    const auto action = row.stringForKey("Action");
    if (std::find(alwaysOnActions.begin(), alwaysOnActions.end(), action) !=
        alwaysOnActions.end()) {
      EXPECT_TRUE(row.boolForKey("enable")) << action;
    }
  }
}

TEST_F(DefaultPreferences, NameEachTemplateAndFolderOnce) {
  Strings templates;
  for (const PropertyList& row : rowsOf("arrOfCreateNewFile")) {
    templates.insert(row.stringForKey("displayName") + "." + row.stringForKey("extension"));
  }
  EXPECT_EQ(templates.size(), rowsOf("arrOfCreateNewFile").size());
  EXPECT_THAT(templates, testing::Each(testing::Not(testing::HasSubstr("/"))));
  for (const char* listKey : {"arrOfCopyFilesTo", "arrOfCommonPath"}) {
    const Strings paths = valuesOf(listKey, "realPath");
    EXPECT_EQ(paths.size(), rowsOf(listKey).size()) << listKey;
    EXPECT_THAT(paths, testing::Each(testing::StartsWith("~"))) << listKey;
  }
}

}  // namespace
}  // namespace tavrin
