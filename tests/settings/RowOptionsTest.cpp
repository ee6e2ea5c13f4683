#include "settings/RowOptions.h"
#include "settings/SettingsKeys.h"
#include "tests/settings/SettingsFixture.h"

namespace tavrin {
namespace {

struct OptionCase {
  const char* action;
  /// The keys, each with its values for the two choices.
  std::vector<std::pair<const char*, std::array<bool, 2>>> settings;
};

const OptionCase optionCases[] = {
    {"Cut", {{"enableHideWhenCutting", {false, true}}}},
    {"Delete directly",
     {{"enableDirectDeleteFiles", {false, true}},
      {"deleteDirectlyRequiresConfirmation", {true, false}}}},
    {"Open in Terminal", {{"enableOpenInTerminalWithWindow", {false, true}}}},
    {"Open in iTerm2", {{"enableOpenIniTerm2WithWindow", {false, true}}}},
    {"Image to Icon for mac", {{"enableImageToIconInMac", {false, true}}}}};

using ChoosingOptions = SettingsFixture;

TEST_F(ChoosingOptions, StoresTheValuesOfAChoiceAndReadsThemBack) {
  for (const OptionCase& expected : optionCases) {
    SCOPED_TRACE(expected.action);
    const RowOption* option = optionOfAction(expected.action);
    ASSERT_NE(option, nullptr);
    EXPECT_EQ(chosenOption(*option, *standard), 0);
    for (const int choice : {1, 0, 1}) {
      chooseOption(*option, choice, *standard);
      EXPECT_EQ(chosenOption(*option, *standard), choice);
      for (const auto& [key, values] : expected.settings) {
        EXPECT_EQ(stored(key), PropertyList(values.at(static_cast<std::size_t>(choice))));
      }
    }
    chooseOption(*option, 2, *standard);
    chooseOption(*option, -1, *standard);
    EXPECT_EQ(chosenOption(*option, *standard), 1);
    standard->setObject("0", expected.settings.front().first);
    EXPECT_EQ(chosenOption(*option, *standard), 0);
  }
  EXPECT_EQ(standard->keys().size(), 6U);
}

TEST_F(ChoosingOptions, ReachesTheMenuWhereTheSwitchIsMirrored) {
  makeController().observeMirroredSwitches();
  for (const OptionCase& each : optionCases) {
    chooseOption(*optionOfAction(each.action), 1, *standard);
  }
  EXPECT_EQ(suite->keys(), (std::vector<std::string>{"deleteDirectlyRequiresConfirmation",
                                                     "enableOpenInTerminalWithWindow",
                                                     "enableOpenIniTerm2WithWindow"}));
  EXPECT_EQ(published("deleteDirectlyRequiresConfirmation"), PropertyList(false));
}

TEST_F(ChoosingOptions, OffersNoneForOtherCommands) {
  for (const char* action : {"", "cut", "Paste", "Image to Icon for iOS", "Translate by Google"}) {
    EXPECT_EQ(optionOfAction(action), nullptr);
  }
}

}  // namespace
}  // namespace tavrin
