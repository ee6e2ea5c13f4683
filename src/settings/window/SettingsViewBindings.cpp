#include <ui_PreferencesWindow.h>

#include <array>
#include <string>
#include <utility>

#include "settings/window/SettingsViewController.h"

namespace tavrin {

void SettingsViewController::bindSwitches() {
  const Ui::PreferencesWindow& ui = outlets_;
  const std::pair<QAbstractButton*, const char*> switches[] = {
      {ui.soundTipsOfNewFile, settings_key::soundTipsOfNewFile},
      {ui.enableCopyFilesTo, settings_key::enableCopyFilesTo},
      {ui.enableCommonPath, settings_key::enableCommonPath},
      {ui.enableMoveFilesTo, settings_key::enableMoveFilesTo},
      {ui.enableIconOfCreateNewFile, settings_key::enableIconOfCreateNewFile},
      {ui.disableAutoNameOfCreateNewFile, settings_key::disableAutoNameOfCreateNewFile},
      {ui.enableAutoOpenAfterCreateNewFile, settings_key::enableAutoOpenAfterCreateNewFile},
      {ui.enableIconOfSendFilesTo, settings_key::enableIconOfSendFilesTo},
      {ui.enableIconOfCommonPath, settings_key::enableIconOfCommonPath},
      {ui.enableIconOfCustomIcon, settings_key::enableIconOfCustomIcon},
      {ui.enableIconOfOthers, settings_key::enableIconOfOthers},
      {ui.hiddenIconInStatusBar, settings_key::hiddenIconInStatusBar},
      {ui.enableTextService, settings_key::enableTextService},
      {ui.enableAllOfCreateNewFiles, settings_key::enableAllOfCreateNewFiles},
      {ui.enableAllOfCustomIcon, settings_key::enableAllOfCustomIcon},
      {ui.enableAllOfOthers, settings_key::enableAllOfOthers},
  };
  for (const auto& [checkBox, key] : switches) bindings_.bind(*checkBox, key);

  // The actions come after the bindings: they read what these have stored.
  using Self = SettingsViewController;
  const auto clicked = &QAbstractButton::clicked;
  connect(ui.enableAllOfCreateNewFiles, clicked, this, &Self::enableAllOfCreateNewFilesClick);
  connect(ui.enableAllOfCustomIcon, clicked, this, &Self::enableAllOfCustomIconClick);
  connect(ui.enableAllOfOthers, clicked, this, &Self::enableAllOfOthersClick);
  connect(ui.enableTextService, clicked, this, &Self::textServiceCheckButtonClick);
  connect(ui.restartFinderButton, clicked, this, &Self::restartFinder);
  connect(ui.fileManagersButton, clicked, this, &Self::showFileManagers);
}

void SettingsViewController::makeOptions() {
  struct OptionOutlets {
    const char* action;
    QComboBox* popUp;
    QAbstractButton* checkBox;
    const char* key;
  };
  const Ui::PreferencesWindow& ui = outlets_;
  const OptionOutlets optionOutlets[] = {
      {command_name::cut, ui.popUpButtonOfCut, ui.enableHideWhenCutting,
       settings_key::enableHideWhenCutting},
      {command_name::deleteDirectly, ui.popUpButtonOfDirectDelete,
       ui.deleteDirectlyRequiresConfirmation, settings_key::deleteDirectlyRequiresConfirmation},
      {command_name::openInTerminal, ui.popUpButtonOfOpeninTerminal,
       ui.enableOpenInTerminalWithWindow, settings_key::enableOpenInTerminalWithWindow},
      {command_name::openInITerm2, ui.popUpButtonOfOpeniTerm2, ui.enableOpenIniTerm2WithWindow,
       settings_key::enableOpenIniTerm2WithWindow},
      {command_name::imageToIconForMac, ui.popUpButtonOfImageToIconInMac, ui.enableImageToIconInMac,
       settings_key::enableImageToIconInMac},
  };
  for (const auto& [action, popUp, checkBox, key] : optionOutlets) {
    const RowOption& option = *optionOfAction(action);
    for (const char* choice : option.choices) popUp->addItem(localized(choice));
    // The name of a pop-up is its choice here, whatever it is given.
    popUp->setAccessibleDescription(popUp->accessibleName());
    bindings_.bind(*popUp, option);
    bindings_.bind(*checkBox, option, key);
    options_.setControl(action, *popUp);
  }
  const std::array helpButtons{ui.helpButtonAboutService1, ui.helpButtonAboutService2,
                               ui.helpButtonAboutService3};
  for (std::size_t index = 0; index < helpButtons.size(); ++index) {
    connect(helpButtons.at(index), &QAbstractButton::clicked, this,
            &SettingsViewController::helpAboutService);
    options_.setControl(std::string(alwaysOnActions.at(index)), *helpButtons.at(index));
  }
  options_.place();
}

}  // namespace tavrin
