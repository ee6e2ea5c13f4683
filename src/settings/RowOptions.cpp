#include "settings/RowOptions.h"

#include <algorithm>

#include "foundation/Translatable.h"
#include "settings/SettingsKeys.h"

namespace tavrin {

const std::array<RowOption, rowOptionCount> rowOptions{{
    {command_name::cut,
     {translatable("Keep visible"), translatable("Hide")},
     {{{settings_key::enableHideWhenCutting, {false, true}}, {}}}},
    {command_name::deleteDirectly,
     {translatable("Ask before deleting"), translatable("Delete without asking")},
     {{{settings_key::enableDirectDeleteFiles, {false, true}},
       {settings_key::deleteDirectlyRequiresConfirmation, {true, false}}}}},
    {command_name::openInTerminal,
     {translatable("New tab"), translatable("New window")},
     {{{settings_key::enableOpenInTerminalWithWindow, {false, true}}, {}}}},
    {command_name::openInITerm2,
     {translatable("New tab"), translatable("New window")},
     {{{settings_key::enableOpenIniTerm2WithWindow, {false, true}}, {}}}},
    {command_name::imageToIconForMac,
     {translatable("Folder of images"), translatable(".icns file")},
     {{{settings_key::enableImageToIconInMac, {false, true}}, {}}}},
}};

const RowOption* optionOfAction(std::string_view action) {
  const auto* option = std::find_if(rowOptions.begin(), rowOptions.end(),
                                    [action](const auto& each) { return each.action == action; });
  return option == rowOptions.end() ? nullptr : option;
}

int chosenOption(const RowOption& option, const UserDefaults& standardUserDefaults) {
  const OptionSetting& deciding = option.settings.front();
  return standardUserDefaults.boolForKey(deciding.key) == deciding.values[1] ? 1 : 0;
}

int choiceWithValue(const RowOption& option, std::string_view key, bool value) {
  const auto setting =
      std::find_if(option.settings.begin(), option.settings.end(),
                   [key](const auto& each) { return each.key != nullptr && each.key == key; });
  return setting != option.settings.end() && setting->values[1] == value ? 1 : 0;
}

void chooseOption(const RowOption& option, int choice, UserDefaults& standardUserDefaults) {
  if (choice != 0 && choice != 1) return;
  for (const OptionSetting& setting : option.settings) {
    if (setting.key == nullptr) continue;
    standardUserDefaults.setObject(setting.values.at(static_cast<std::size_t>(choice)),
                                   setting.key);
  }
}

}  // namespace tavrin
