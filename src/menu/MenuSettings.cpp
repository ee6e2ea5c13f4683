#include "menu/MenuSettings.h"

#include <unordered_map>
#include <utility>

#include "foundation/ActionNames.h"
#include "foundation/PathHelpers.h"
#include "foundation/PathString.h"
#include "foundation/RequestKeys.h"
#include "foundation/Translatable.h"
#include "menu/MenuTitle.h"
#include "settings/SettingsKeys.h"
#include "terminal/TerminalServiceIdentifiers.h"

namespace tavrin {

const std::array<const char*, 20> menuSettingsKeys{
    settings_key::enableCopyFilesTo,
    settings_key::enableMoveFilesTo,
    settings_key::enableCommonPath,
    settings_key::enableIconOfCreateNewFile,
    settings_key::enableIconOfSendFilesTo,
    settings_key::enableIconOfCommonPath,
    settings_key::enableIconOfCustomIcon,
    settings_key::enableIconOfOthers,
    settings_key::disableAutoNameOfCreateNewFile,
    settings_key::deleteDirectlyRequiresConfirmation,
    settings_key::enableOpenInTerminalWithWindow,
    settings_key::enableOpenIniTerm2WithWindow,
    settings_key::arrOfCreateNewFile,
    settings_key::arrOfCopyFilesTo,
    settings_key::arrOfCommonPath,
    settings_key::arrOfCustomIcon,
    settings_key::arrOfOthers,
    settings_key::filesUrlOfCutting,
    settings_key::positionsOfCustomIcon,
    settings_key::disabledFileManagers,
};

namespace {

// Icons of the theme (Icon Naming Specification).
constexpr const char* folderIcon = "folder";
constexpr const char* fileIcon = "text-x-generic";

class Reader {
 public:
  Reader(const PropertyList::Dictionary& suite, const MenuEnvironment& environment)
      : suite_(suite), environment_(environment) {}

  MenuSettings read() {
    readNewFiles();
    readFolders();
    readCustomIcons();
    readCommands();
    settings_.cutItems = text(settings_key::filesUrlOfCutting);
    for (const PropertyList& manager : rows(settings_key::disabledFileManagers)) {
      if (const std::string* name = manager.stringIfString()) {
        settings_.disabledFileManagers.push_back(*name);
      }
    }
    return std::move(settings_);
  }

 private:
  const PropertyList* find(const char* key) const {
    const auto found = suite_.find(key);
    return found == suite_.end() ? nullptr : &found->second;
  }

  bool isOn(const char* key) const {
    const PropertyList* value = find(key);
    return value != nullptr && value->boolValue();
  }

  std::string text(const char* key) const {
    const PropertyList* value = find(key);
    const std::string* string = value == nullptr ? nullptr : value->stringIfString();
    return string == nullptr ? std::string() : *string;
  }

  const PropertyList::Array& rows(const char* key) const {
    static const PropertyList::Array none;
    const PropertyList* value = find(key);
    const PropertyList::Array* array = value == nullptr ? nullptr : value->arrayIfArray();
    return array == nullptr ? none : *array;
  }

  /// The path of an image that can be shown; "" when there is none.
  std::string templateImage(const char* folder, const std::string& name) {
    if (name.empty() || name.find('/') != name.npos) return {};
    const auto [known, isNew] = images_.try_emplace(std::string(folder) + '/' + name);
    if (!isNew) return known->second;
    for (const std::string& place :
         {appendingPathComponent(environment_.containerPath, folder), environment_.resourcesPath}) {
      const std::string path = appendingPathComponent(place, name + ".png");
      if (environment_.isReadable(path)) return known->second = path;
    }
    return {};
  }

  std::string commandImage(const std::string& command) {
    const bool isPinning = command.find(command_name::snapvane) != command.npos;
    return templateImage(template_folder::othersMenuItemIcon,
                         isPinning ? command_name::snapvane : command);
  }

  std::string submenuIcon(const char* iconSwitch, const char* name) {
    return isOn(iconSwitch) ? templateImage(template_folder::functionIcon, name) : std::string();
  }

  void readNewFiles() {
    const bool hasIcons = isOn(settings_key::enableIconOfCreateNewFile);
    settings_.newFileIcon =
        submenuIcon(settings_key::enableIconOfCreateNewFile, action_name::createNewFile);
    std::int64_t tag = 0;
    std::optional<MenuItem> asking;
    for (const PropertyList& row : rows(settings_key::arrOfCreateNewFile)) {
      if (!row.boolForKey(record_field::enable)) continue;
      const std::string extension = row.stringForKey(record_field::extension);
      MenuItem item;
      item.title = menuTitle(titleOfRow(row, record_field::modified, environment_.localized));
      if (hasIcons) item.icon = templateImage(template_folder::createNewFile, extension);
      if (hasIcons && item.icon.empty()) item.icon = fileIcon;
      item.action = action_name::createNewFile;
      item.keys.emplace(request_key::tag, tag++);
      if (extension.empty() && !asking) asking = item;
      const bool isMain = row.boolForKey(record_field::enableMainMenu);
      Menu& menu = isMain ? settings_.newFilesInMainMenu : settings_.newFiles;
      if (item.title.empty() || menu.size() >= MenuSettings::maximumRows) continue;
      item.identifier = (isMain ? "new-main-" : "new-") + std::to_string(menu.size());
      menu.push_back(std::move(item));
    }
    if (asking && isOn(settings_key::disableAutoNameOfCreateNewFile)) offerOnly(std::move(*asking));
  }

  /// Only a file that is asked for has a name of the user's.
  void offerOnly(MenuItem asking) {
    asking.identifier = "new-asking";
    asking.title = environment_.localized(translatable("New File…"));
    asking.icon = settings_.newFileIcon;
    settings_.newFiles.clear();
    settings_.newFilesInMainMenu = {std::move(asking)};
  }

  void readFolders() {
    const bool hasIcons = isOn(settings_key::enableIconOfSendFilesTo);
    if (isOn(settings_key::enableCopyFilesTo)) {
      settings_.copyDestinations = destinations(action_name::copyFilesTo, "copy-", hasIcons);
      addChoosing(settings_.copyDestinations, action_name::copyFilesToCustom, "copy-choose");
      settings_.copyIcon =
          submenuIcon(settings_key::enableIconOfSendFilesTo, action_name::copyFilesTo);
    }
    if (isOn(settings_key::enableMoveFilesTo)) {
      settings_.moveDestinations = destinations(action_name::moveFilesTo, "move-", hasIcons);
      addChoosing(settings_.moveDestinations, action_name::moveFilesToCustom, "move-choose");
      settings_.moveIcon =
          submenuIcon(settings_key::enableIconOfSendFilesTo, action_name::moveFilesTo);
    }
    if (!isOn(settings_key::enableCommonPath)) return;
    settings_.commonFolders =
        folders(settings_key::arrOfCommonPath, action_name::openCommonPath, request_key::path,
                "common-", isOn(settings_key::enableIconOfCommonPath));
    settings_.commonFoldersIcon = submenuIcon(settings_key::enableIconOfCommonPath, "commonPath");
  }

  Menu destinations(const char* action, const char* identifier, bool hasIcons) const {
    Menu menu =
        folders(settings_key::arrOfCopyFilesTo, action, request_key::toPath, identifier, hasIcons);
    for (MenuItem& item : menu) item.subject = MenuItem::Subject::Items;
    return menu;
  }

  Menu folders(const char* list, const char* action, const char* key, const std::string& identifier,
               bool hasIcons) const {
    Menu menu;
    for (const PropertyList& row : rows(list)) {
      const std::string path = row.stringForKey(record_field::realPath);
      if (!row.boolForKey(record_field::enable) || path.empty() || path == undefinedFolder)
        continue;
      MenuItem item;
      item.title = menuTitle(titleOfFolderRow(row, environment_.homePath, environment_.localized));
      if (item.title.empty()) continue;
      if (menu.size() >= MenuSettings::maximumRows) break;
      item.identifier = identifier + std::to_string(menu.size());
      if (hasIcons) item.icon = folderIcon;
      item.action = action;
      item.keys.emplace(key, path);
      menu.push_back(std::move(item));
    }
    return menu;
  }

  void addChoosing(Menu& menu, const char* action, const char* identifier) const {
    MenuItem item;
    item.identifier = identifier;
    item.title = environment_.localized(translatable("Choose Folder…"));
    item.action = action;
    item.subject = MenuItem::Subject::Items;
    menu.push_back(std::move(item));
  }

  void readCustomIcons() {
    const bool hasIcons = isOn(settings_key::enableIconOfCustomIcon);
    const PropertyList::Array& icons = rows(settings_key::arrOfCustomIcon);
    const PropertyList::Array& positions = rows(settings_key::positionsOfCustomIcon);
    const bool hasPositions = positions.size() == icons.size();
    Menu& menu = settings_.customIcons;
    for (std::size_t index = 0; index < icons.size() && menu.size() < MenuSettings::maximumRows;
         ++index) {
      const PropertyList& row = icons[index];
      const PropertyList* icon = row.find(record_field::icon);
      const std::int64_t position =
          hasPositions ? positions[index].integerValue() : static_cast<std::int64_t>(index) + 1;
      MenuItem item =
          iconItem(menuTitle(titleOfRow(row, record_field::modified, environment_.localized)),
                   "icon-" + std::to_string(menu.size()), position);
      // A place below the first would take the icon away.
      if (!row.boolForKey(record_field::enable) || item.title.empty() || position < 1) continue;
      if (hasIcons && icon != nullptr) item.icon = environment_.fileOfIcon(*icon);
      menu.push_back(std::move(item));
    }
    if (menu.empty()) return;
    menu.push_back(iconItem(environment_.localized(translatable("Remove Icon")), "icon-remove", 0));
    settings_.customIconsIcon =
        submenuIcon(settings_key::enableIconOfCustomIcon, action_name::customIcon);
  }

  static MenuItem iconItem(std::string title, std::string identifier, std::int64_t tag) {
    MenuItem item;
    item.identifier = std::move(identifier);
    item.title = std::move(title);
    item.action = action_name::customIcon;
    item.keys.emplace(request_key::tag, tag);
    item.subject = MenuItem::Subject::EachItem;
    return item;
  }

  void readCommands() {
    const bool hasIcons = isOn(settings_key::enableIconOfOthers);
    if (hasIcons) settings_.commandsIcon = environment_.productIcon;
    for (const PropertyList& row : rows(settings_key::arrOfOthers)) {
      if (settings_.commands.size() >= MenuSettings::maximumRows) break;
      if (!row.boolForKey(record_field::enable)) continue;
      CommandRow command;
      command.name = row.stringForKey(record_field::action);
      command.title =
          menuTitle(titleOfRow(row, record_field::nameModified, environment_.localized));
      if (hasIcons) command.icon = commandImage(command.name);
      if (command.title.empty() || !isAvailable(command)) continue;
      // What asks before it acts has an ellipsis.
      if (command.name == command_name::deleteDirectly &&
          isOn(settings_key::deleteDirectlyRequiresConfirmation)) {
        command.title += "\u2026";
      }
      settings_.commands.push_back(std::move(command));
    }
  }

  bool isAvailable(CommandRow& command) const {
    if (command.name == command_name::openInTerminal) {
      command.keys.emplace(menu_key::terminalService,
                           isOn(settings_key::enableOpenInTerminalWithWindow)
                               ? terminal_service::terminalWindow
                               : terminal_service::terminalTab);
    }
    if (command.name != command_name::openInITerm2) return true;
    command.keys.emplace(menu_key::terminalService, isOn(settings_key::enableOpenIniTerm2WithWindow)
                                                        ? terminal_service::iTerm2Window
                                                        : terminal_service::iTerm2Tab);
    return environment_.hasSecondTerminal;
  }

  const PropertyList::Dictionary& suite_;
  const MenuEnvironment& environment_;
  MenuSettings settings_;
  /// By folder and name.
  std::unordered_map<std::string, std::string> images_;
};

}  // namespace

MenuSettings readMenuSettings(const PropertyList::Dictionary& suite,
                              const MenuEnvironment& environment) {
  return Reader(suite, environment).read();
}

}  // namespace tavrin
