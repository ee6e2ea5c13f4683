#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/PropertyList.h"
#include "menu/MenuItem.h"
#include "settings/RowTitles.h"

namespace tavrin {

/// What the menu has to know besides the settings.
struct MenuEnvironment {
  /// The account's home folder.
  std::string homePath;
  /// The group's container; it has the images of the menu.
  std::string containerPath;
  /// The product's own images, for those that the container lacks.
  std::string resourcesPath;
  std::function<bool(const std::string& path)> isReadable;
  Localization localized;
  /// The path of an image file that shows the icon which a record's data stands for; "" when there
  /// is none.
  std::function<std::string(const PropertyList& icon)> fileOfIcon;
  /// Whether the services of the second terminal can be performed.
  bool hasSecondTerminal = false;
  /// The name of the product's icon in the theme.
  std::string productIcon = {};
};

/// One row of the Others list.
struct CommandRow {
  std::string name;
  std::string title;
  std::string icon;
  /// What the command is told besides the items and folders.
  PropertyList::Dictionary keys;
};

/// What the settings say about the menu. It is made once after each change of them; the menus of
/// single selections are made from it.
struct MenuSettings {
  /// A list has no more rows in a menu, however many are stored: nobody finds one among so many,
  /// and file managers slow down.
  static constexpr std::size_t maximumRows = 200;

  /// Items of createNewFile that still have to be told the folder.
  Menu newFiles;
  Menu newFilesInMainMenu;
  // Items of what their submenus offer.
  Menu copyDestinations;
  Menu moveDestinations;
  Menu commonFolders;
  Menu customIcons;
  std::vector<CommandRow> commands;
  // The images of the submenus; "" for none.
  std::string newFileIcon;
  std::string copyIcon;
  std::string moveIcon;
  std::string commonFoldersIcon;
  std::string customIconsIcon;
  std::string commandsIcon;
  /// The items of the latest cut, a file list string.
  std::string cutItems;
  std::vector<std::string> disabledFileManagers;
};

/// The settings that the menu needs, of the group's suite.
extern const std::array<const char*, 20> menuSettingsKeys;

/// Reads what the suite has under `menuSettingsKeys`. Whatever is missing or of another type reads
/// as empty or off; a row without a title is left out.
MenuSettings readMenuSettings(const PropertyList::Dictionary& suite,
                              const MenuEnvironment& environment);

}  // namespace tavrin
