#include "tests/settings/SettingsFixture.h"

namespace tavrin {
namespace {

using Row = PropertyList::Dictionary;
using Rows = PropertyList::Array;

Row rowNamed(const char* name, const PropertyList& enable) {
  return {{"displayName", name}, {"enable", enable}};
}

struct ListOperations {
  const char* listKey;
  const char* enableAllKey;
  void (SettingsController::*publish)();
  void (SettingsController::*reset)();
};

/// Each rule list with its own operations.
class EachList : public SettingsFixture, public testing::WithParamInterface<ListOperations> {
 protected:
  void publish(const Rows& rows) {
    standard->setObject(rows, GetParam().listKey);
    (makeController().*GetParam().publish)();
  }

  void expectEnableAll(bool value) const {
    if (GetParam().enableAllKey == nullptr) return;
    EXPECT_EQ(stored(GetParam().enableAllKey), PropertyList(value));
  }
};

INSTANTIATE_TEST_SUITE_P(
    Settings, EachList,
    testing::Values(
        ListOperations{"arrOfCreateNewFile", "enableAllOfCreateNewFiles",
                       &SettingsController::setCreateNewFileToSettings,
                       &SettingsController::resetArrOfCreateNewFile},
        ListOperations{"arrOfCopyFilesTo", nullptr, &SettingsController::setCopyFilesToSettings,
                       &SettingsController::resetArrOfCopyFilesTo},
        ListOperations{"arrOfCommonPath", nullptr, &SettingsController::setCommonPathSettings,
                       &SettingsController::resetArrOfOpenCommonPath},
        ListOperations{"arrOfCustomIcon", "enableAllOfCustomIcon",
                       &SettingsController::setCustomIconToSettings,
                       &SettingsController::resetArrOfCustomIcon},
        ListOperations{"arrOfOthers", "enableAllOfOthers", &SettingsController::setOthersToSettings,
                       &SettingsController::resetArrOfOthers}),
    [](const auto& tested) { return std::string(tested.param.listKey); });

TEST_P(EachList, PublishesItsEnabledRowsUnchangedAndInOrder) {
  Row withUnknownFields = rowNamed("d", "1");
  withUnknownFields.insert({"future", Rows{1, "two", PropertyList::Data{0, 255}}});
  const Rows rows{rowNamed("c", 1), rowNamed("a", 0), withUnknownFields, rowNamed("b", true),
                  rowNamed("a", false)};
  publish(rows);
  EXPECT_EQ(published(GetParam().listKey), PropertyList(Rows{rows[0], rows[2], rows[3]}));
  EXPECT_EQ(stored(GetParam().listKey), PropertyList(rows));
  expectEnableAll(false);
}

TEST_P(EachList, PublishesAnEmptyArrayWhenEveryRowIsDisabled) {
  standard->setObject(true, "enableAllOfOthers");
  publish({rowNamed("a", 0), rowNamed("b", "0")});
  EXPECT_EQ(published(GetParam().listKey), PropertyList(Rows{}));
  expectEnableAll(false);
}

TEST_P(EachList, TurnsEnableAllOnForAFullListAndForAnEmptyOne) {
  publish({rowNamed("a", 1), rowNamed("b", "1")});
  expectEnableAll(true);
  publish({rowNamed("a", 0)});
  expectEnableAll(false);
  publish({});
  EXPECT_EQ(published(GetParam().listKey), PropertyList(Rows{}));
  expectEnableAll(true);
}

TEST_P(EachList, TouchesNoOtherKey) {
  publish({rowNamed("a", 1)});
  std::vector<std::string> keys{GetParam().listKey};
  if (GetParam().listKey == std::string("arrOfCustomIcon")) keys.push_back("positionsOfCustomIcon");
  EXPECT_EQ(suite->keys(), keys);
  EXPECT_EQ(standard->keys().size(), GetParam().enableAllKey == nullptr ? 1U : 2U);
}

TEST_P(EachList, IsEmptyWhereTheStoreHasNoArray) {
  (makeController().*GetParam().publish)();
  EXPECT_EQ(published(GetParam().listKey), PropertyList(Rows{}));
  standard->setObject(rowNamed("a", 1), GetParam().listKey);
  (makeController().*GetParam().publish)();
  EXPECT_EQ(published(GetParam().listKey), PropertyList(Rows{}));
}

TEST_P(EachList, SurvivesRowsThatAreNoRecords) {
  const Rows hostile{1,
                     "1",
                     Rows{rowNamed("a", 1)},
                     PropertyList::Data{1},
                     Row{},
                     Row{{"displayName", "no switch"}},
                     rowNamed("a", Rows{1}),
                     rowNamed("b", Row{{"enable", 1}}),
                     rowNamed("c", PropertyList::Date{1}),
                     rowNamed("d", "no")};
  publish(hostile);
  EXPECT_EQ(published(GetParam().listKey), PropertyList(Rows{}));
  EXPECT_EQ(stored(GetParam().listKey), PropertyList(hostile));
  expectEnableAll(false);
}

TEST_P(EachList, ResetsToTheDefaultRowsAndLeavesPublishingToTheCaller) {
  const Rows defaultRows{rowNamed("default", 1)};
  defaults = DefaultSettings({{GetParam().listKey, defaultRows}});
  publish({rowNamed("mine", 1)});
  const int synchronized = userDefaults.synchronizeCount(FakeUserDefaultsProvider::standardDomain);
  (controller.get()->*GetParam().reset)();
  EXPECT_EQ(stored(GetParam().listKey), PropertyList(defaultRows));
  EXPECT_EQ(userDefaults.synchronizeCount(FakeUserDefaultsProvider::standardDomain),
            synchronized + 1);
  EXPECT_EQ(published(GetParam().listKey), PropertyList(Rows{rowNamed("mine", 1)}));
  (controller.get()->*GetParam().publish)();
  EXPECT_EQ(published(GetParam().listKey), PropertyList(defaultRows));
}

TEST_P(EachList, ResetsToNothingWithoutADefault) {
  publish({rowNamed("mine", 1)});
  (controller.get()->*GetParam().reset)();
  EXPECT_EQ(stored(GetParam().listKey), PropertyList(Rows{}));
}

TEST_F(SettingsFixture, PublishesWhereTheEnabledIconsStandInTheWholeList) {
  standard->setObject(
      Rows{rowNamed("a", 0), rowNamed("b", 1), rowNamed("c", 0), rowNamed("d", "1")},
      "arrOfCustomIcon");
  makeController().setCustomIconToSettings();
  EXPECT_EQ(published("positionsOfCustomIcon"), PropertyList(Rows{2, 4}));
}

class LoadedSettings : public SettingsFixture {};

TEST_F(LoadedSettings, PublishesFourListsAMomentAfterItLoaded) {
  const Rows edited{rowNamed("edited", 1)};
  const Rows seeded{rowNamed("seeded", 1)};
  const char* listKeys[] = {"arrOfCopyFilesTo", "arrOfCustomIcon", "arrOfOthers",
                            "arrOfCreateNewFile", "arrOfCommonPath"};
  for (const char* key : listKeys) {
    standard->setObject(edited, key);
    suite->setObject(seeded, key);
  }
  const auto alreadyWritten = static_cast<FakeUserDefaults&>(*suite).changedKeys().size();
  makeController().viewDidLoad();
  mainLoop.advance(0.009);
  EXPECT_EQ(published("arrOfOthers"), PropertyList(seeded));
  mainLoop.advance(0.002);
  auto written = static_cast<FakeUserDefaults&>(*suite).changedKeys();
  written.erase(written.begin(), written.begin() + static_cast<std::ptrdiff_t>(alreadyWritten));
  std::erase(written, "positionsOfCustomIcon");
  EXPECT_EQ(written, std::vector<std::string>(listKeys, listKeys + 4));
  EXPECT_EQ(published("arrOfCommonPath"), PropertyList(seeded));
  controller->setCommonPathSettings();
  EXPECT_EQ(published("arrOfCommonPath"), PropertyList(edited));
}

TEST_F(LoadedSettings, ThatIsGoneBeforeItsStartPublishesNothing) {
  makeController().viewDidLoad();
  controller.reset();
  mainLoop.advance(1);
  EXPECT_TRUE(suite->keys().empty());
}

TEST_F(LoadedSettings, MirrorsASwitchFromTheMomentItLoaded) {
  makeController().viewDidLoad();
  standard->setObject(true, "soundTipsOfNewFile");
  EXPECT_EQ(published("soundTipsOfNewFile"), PropertyList(true));
}

TEST_F(LoadedSettings, MakesEveryWriteToTheSuiteDurable) {
  makeController().saveData(PropertyList::Array{}, "arrOfOthers");
  EXPECT_EQ(userDefaults.synchronizeCount(bundle.group), 1);
  controller->publishAtStart();
  EXPECT_EQ(userDefaults.synchronizeCount(bundle.group), 5);
}

TEST_F(LoadedSettings, AsksBeforeItRemovesTheProgramFromTheLoginItems) {
  bundle.translations["OK"] = "Gut";
  loginItems.items = {{"other", "/usr/bin/other"},
                      {"gone", std::nullopt},
                      {"first", bundle.programPath},
                      {"second", bundle.programPath}};
  alerts.answers = {1, 0};
  makeController().removeFromLoginItemsIfListed();
  EXPECT_EQ(loginItems.items.size(), 4U);
  ASSERT_EQ(alerts.shown.size(), 1U);
  EXPECT_EQ(alerts.shown[0].style, Alert::Style::Warning);
  EXPECT_EQ(alerts.shown[0].messageText, "");
  EXPECT_EQ(alerts.shown[0].informativeText,
            "Tavrin is not need to auto starts when login,and will be removed from the login "
            "item.");
  EXPECT_EQ(alerts.shown[0].buttons, (std::vector<std::string>{"Gut", "Cancel"}));

  controller->removeFromLoginItemsIfListed();
  ASSERT_EQ(loginItems.items.size(), 3U);
  EXPECT_EQ(loginItems.items[2].reference, "second");
}

TEST_F(LoadedSettings, SaysNothingWhenTheProgramIsNoLoginItem) {
  loginItems.items = {{"other", "/usr/bin/other"}, {"gone", std::nullopt}};
  makeController().removeFromLoginItemsIfListed();
  EXPECT_TRUE(alerts.shown.empty());
  EXPECT_EQ(loginItems.items.size(), 2U);
}

}  // namespace
}  // namespace tavrin
