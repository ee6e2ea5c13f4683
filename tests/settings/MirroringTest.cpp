#include "tests/settings/SettingsFixture.h"

namespace tavrin {
namespace {

constexpr const char* mirrored[] = {"soundTipsOfNewFile",
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
                                    "enableOpenInTerminalWithWindow"};

constexpr const char* notMirrored[] = {
    "enableHideWhenCutting",  "enableDirectDeleteFiles", "enableImageToIconInMac",
    "hiddenIconInStatusBar",  "enableTextService",       "enableAllOfCreateNewFiles",
    "enableAllOfCustomIcon",  "enableAllOfOthers",       "ShownEnableExtensionAlert",
    "prePathOfCreateNewFile", "prePathOfSendFilesTo",    "prePathOfCommonPath",
    "prePathOfCustomIcon",    "arrOfCreateNewFile",      "arrOfCopyFilesTo",
    "arrOfCommonPath",        "arrOfCustomIcon",         "arrOfOthers",
    "cachedBookmarks",        "filesUrlOfCutting",       ""};

class Mirroring : public SettingsFixture {
 protected:
  void SetUp() override { makeController().observeMirroredSwitches(); }
};

TEST_F(Mirroring, CarriesEachChangeOfEachSwitchAtOnceAsABoolean) {
  int synchronized = 0;
  for (const char* key : mirrored) {
    SCOPED_TRACE(key);
    const PropertyList changes[][2] = {{true, true},
                                       {false, false},
                                       {1, true},
                                       {"YES", true},
                                       {"0", false},
                                       {0.5, true},
                                       {PropertyList::Array{1}, false}};
    for (const auto& [value, expected] : changes) {
      standard->setObject(value, key);
      EXPECT_EQ(published(key), expected);
      EXPECT_EQ(userDefaults.synchronizeCount(bundle.group), ++synchronized);
    }
    standard->setObject(true, key);
    standard->removeObjectForKey(key);
    EXPECT_EQ(published(key), PropertyList(false));
    synchronized += 2;
  }
  EXPECT_EQ(suite->keys().size(), std::size(mirrored));
}

TEST_F(Mirroring, CarriesNothingElse) {
  for (const char* key : notMirrored) {
    standard->setObject(true, key);
    standard->removeObjectForKey(key);
  }
  EXPECT_TRUE(suite->keys().empty());
  EXPECT_EQ(userDefaults.synchronizeCount(bundle.group), 0);
}

TEST_F(Mirroring, CarriesWhatAnotherProcessChanged) {
  userDefaults.changeFromElsewhere(FakeUserDefaultsProvider::standardDomain, "enableCopyFilesTo",
                                   PropertyList("1"));
  userDefaults.processChanges();
  EXPECT_EQ(published("enableCopyFilesTo"), PropertyList(true));
}

TEST_F(Mirroring, CarriesAChangeOnceHoweverOftenTheViewLoaded) {
  controller->viewDidLoad();
  controller->viewDidLoad();
  standard->setObject(true, "enableCommonPath");
  EXPECT_EQ(userDefaults.synchronizeCount(bundle.group), 1);
}

TEST_F(Mirroring, EndsWithTheController) {
  controller.reset();
  standard->setObject(true, "enableCommonPath");
  EXPECT_TRUE(suite->keys().empty());
}

}  // namespace
}  // namespace tavrin
