#pragma once

#include <array>
#include <cstddef>
#include <string_view>

#include "foundation/FileManagers.h"
#include "settings/CommandNames.h"

/// The names that the settings are stored under. Other programs read them: none may change.
namespace tavrin {

/// The keys of both stores. A switch that is absent reads as off.
namespace settings_key {

// Switches that the program copies into the shared suite on every change.
inline constexpr const char* soundTipsOfNewFile = "soundTipsOfNewFile";
inline constexpr const char* enableCopyFilesTo = "enableCopyFilesTo";
inline constexpr const char* enableCommonPath = "enableCommonPath";
inline constexpr const char* enableMoveFilesTo = "enableMoveFilesTo";
inline constexpr const char* enableIconOfCreateNewFile = "enableIconOfCreateNewFile";
inline constexpr const char* disableAutoNameOfCreateNewFile = "disableAutoNameOfCreateNewFile";
inline constexpr const char* enableAutoOpenAfterCreateNewFile = "enableAutoOpenAfterCreateNewFile";
inline constexpr const char* enableIconOfSendFilesTo = "enableIconOfSendFilesTo";
inline constexpr const char* enableIconOfCommonPath = "enableIconOfCommonPath";
inline constexpr const char* enableIconOfCustomIcon = "enableIconOfCustomIcon";
inline constexpr const char* enableIconOfOthers = "enableIconOfOthers";
inline constexpr const char* deleteDirectlyRequiresConfirmation =
    "deleteDirectlyRequiresConfirmation";
inline constexpr const char* enableOpenIniTerm2WithWindow = "enableOpenIniTerm2WithWindow";
inline constexpr const char* enableOpenInTerminalWithWindow = "enableOpenInTerminalWithWindow";

// Switches that the program alone reads; the shared suite has only their first value.
inline constexpr const char* enableHideWhenCutting = "enableHideWhenCutting";
inline constexpr const char* enableDirectDeleteFiles = "enableDirectDeleteFiles";
inline constexpr const char* enableImageToIconInMac = "enableImageToIconInMac";
inline constexpr const char* hiddenIconInStatusBar = "hiddenIconInStatusBar";
inline constexpr const char* enableTextService = "enableTextService";

// Kept in the shared suite alone: the items of the most recent cut, a file list string;
inline constexpr const char* filesUrlOfCutting = "filesUrlOfCutting";
// the one-based positions that the rows of the suite's `arrOfCustomIcon` have in the whole list;
inline constexpr const char* positionsOfCustomIcon = "positionsOfCustomIcon";
// and the file managers (an array of file_manager) where the user has switched the menu off.
inline constexpr const char* disabledFileManagers = file_manager::disabledSetting;

// Kept in the standard store alone. The folders are paths; an absent one means the desktop.
inline constexpr const char* enableAllOfCreateNewFiles = "enableAllOfCreateNewFiles";
inline constexpr const char* enableAllOfCustomIcon = "enableAllOfCustomIcon";
inline constexpr const char* enableAllOfOthers = "enableAllOfOthers";
inline constexpr const char* shownEnableExtensionAlert = "ShownEnableExtensionAlert";
inline constexpr const char* prePathOfCreateNewFile = "prePathOfCreateNewFile";
inline constexpr const char* prePathOfSendFilesTo = "prePathOfSendFilesTo";
inline constexpr const char* prePathOfCommonPath = "prePathOfCommonPath";
inline constexpr const char* prePathOfCustomIcon = "prePathOfCustomIcon";

// The rule lists: whole in the standard store, their enabled rows in the shared suite.
inline constexpr const char* arrOfCreateNewFile = "arrOfCreateNewFile";
inline constexpr const char* arrOfCopyFilesTo = "arrOfCopyFilesTo";
inline constexpr const char* arrOfCommonPath = "arrOfCommonPath";
inline constexpr const char* arrOfCustomIcon = "arrOfCustomIcon";
inline constexpr const char* arrOfOthers = "arrOfOthers";

}  // namespace settings_key

/// The fields of the rule lists' records.
namespace record_field {

inline constexpr const char* enable = "enable";
inline constexpr const char* displayName = "displayName";
inline constexpr const char* extension = "extension";
inline constexpr const char* enableMainMenu = "enableMainMenu";
inline constexpr const char* modified = "modified";
inline constexpr const char* realPath = "realPath";
inline constexpr const char* icon = "icon";
inline constexpr const char* action = "Action";
inline constexpr const char* nameModified = "nameModified";

}  // namespace record_field

/// What fields hold that say yes by a text: `modified`, `nameModified`, and `enable` of a template.
inline constexpr const char* yesText = "1";

/// The mirrored switches in the order in which they are observed.
inline constexpr std::array mirroredSwitches{
    settings_key::soundTipsOfNewFile,
    settings_key::enableCopyFilesTo,
    settings_key::enableCommonPath,
    settings_key::enableMoveFilesTo,
    settings_key::enableIconOfCreateNewFile,
    settings_key::disableAutoNameOfCreateNewFile,
    settings_key::enableAutoOpenAfterCreateNewFile,
    settings_key::enableIconOfSendFilesTo,
    settings_key::enableIconOfCommonPath,
    settings_key::enableIconOfCustomIcon,
    settings_key::enableIconOfOthers,
    settings_key::deleteDirectlyRequiresConfirmation,
    settings_key::enableOpenIniTerm2WithWindow,
    settings_key::enableOpenInTerminalWithWindow,
};
static_assert(mirroredSwitches.size() == 14);

/// The five rule lists, in the order in which they are loaded.
enum class RuleList { CopyFilesTo, CommonPath, CreateNewFile, CustomIcon, Others };

/// What a rule list is stored under.
struct RuleListKeys {
  RuleList list;
  const char* listKey;
  /// The switch that is on exactly when every row is enabled; nullptr when the list has none.
  const char* enableAllKey;
};

/// Indexed by RuleList.
inline constexpr std::array<RuleListKeys, 5> ruleLists{{
    {RuleList::CopyFilesTo, settings_key::arrOfCopyFilesTo, nullptr},
    {RuleList::CommonPath, settings_key::arrOfCommonPath, nullptr},
    {RuleList::CreateNewFile, settings_key::arrOfCreateNewFile,
     settings_key::enableAllOfCreateNewFiles},
    {RuleList::CustomIcon, settings_key::arrOfCustomIcon, settings_key::enableAllOfCustomIcon},
    {RuleList::Others, settings_key::arrOfOthers, settings_key::enableAllOfOthers},
}};

/// The keys of a rule list.
constexpr const RuleListKeys& keysOfRuleList(RuleList list) {
  return ruleLists.at(static_cast<std::size_t>(list));
}

/// The commands of the Others list that cannot be switched off.
inline constexpr std::array<std::string_view, 3> alwaysOnActions{
    "Change to QR Code", "Translate by Google", "Translate by Baidu"};

/// Folders below the group's container, and the images that the program puts into two of them, each
/// named with ".png" appended.
namespace template_folder {

inline constexpr const char* createNewFile = "Templates/CreateNewFile";
inline constexpr const char* functionIcon = "Templates/FunctionIcon";
inline constexpr const char* othersMenuItemIcon = "Templates/OthersMenuItemIcon";

}  // namespace template_folder

inline constexpr std::array<std::string_view, 5> functionIconNames{
    "createNewFile", "copyFilesTo", "moveFilesTo", "commonPath", "customIcon"};

inline constexpr std::array<std::string_view, 17> commandIconNames{
    command_name::hideSelected,      command_name::hideAll,
    command_name::unhideSelected,    command_name::unhideAll,
    command_name::openInITerm2,      command_name::deleteDirectly,
    command_name::openInTerminal,    command_name::paste,
    command_name::copyPath,          command_name::cut,
    command_name::imageToIconForMac, command_name::imageToIconForIOS,
    command_name::openInVSCode,      command_name::openInIDEA,
    command_name::openInSublimeText, command_name::openInFileManager,
    command_name::openInEmacs,
};

}  // namespace tavrin
