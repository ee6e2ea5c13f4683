#include "menu/MenuBuilding.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>

#include "foundation/FileURL.h"
#include "foundation/RequestKeys.h"
#include "foundation/Translatable.h"
#include "menu/ActionArguments.h"
#include "menu/CommandRules.h"

namespace tavrin {

namespace {

using Subject = MenuItem::Subject;

/// In one pass over the escapes: it is asked of every selected item.
bool hasListSeparator(std::string_view uri) {
  if (uri.find('|') != uri.npos) return true;
  for (auto escape = uri.find('%'); escape != uri.npos; escape = uri.find('%', escape + 1)) {
    const std::string_view digits = uri.substr(escape + 1, 2);
    if (digits == "7C" || digits == "7c") return true;
  }
  return false;
}

/// What the rules ask about a selection.
struct Selection {
  explicit Selection(const SelectedItems& selectedItems)
      : items(selectedItems), count(selectedItems.count()) {
    for (std::size_t index = 0; index < count && areFiles; ++index) {
      const std::string uri = items.uri(index);
      areFiles = uri.starts_with("file:///");
      fitList = fitList && !hasListSeparator(uri);
    }
    if (count == 1 && areFiles) {
      const auto url = FileURL::urlWithString(items.uri(0));
      areFiles = url.has_value();
      if (url) onlyPath = url->path();
    }
  }

  bool isFolder() const { return count == 1 && items.isFolder(0); }
  bool areFew() const { return count <= maximumSingleRequests; }

  /// Whether all are folders, or all are none; nothing for a mixture.
  std::optional<bool> areFolders() const {
    const bool isFirst = items.isFolder(0);
    for (std::size_t index = 1; index < count; ++index) {
      if (items.isFolder(index) != isFirst) return std::nullopt;
    }
    return isFirst;
  }

  bool areImages() const {
    for (std::size_t index = 0; index < count; ++index) {
      if (items.isFolder(index) || !items.contentType(index).starts_with("image/")) return false;
    }
    return true;
  }

  const SelectedItems& items;
  std::size_t count;
  bool areFiles = true;
  bool fitList = true;
  std::string onlyPath;
};

/// An item of a command, for the selection or, with `keys`, for a folder.
MenuItem commandItem(const CommandRow& row, const CommandRule& rule, const char* action) {
  MenuItem item;
  item.identifier = rule.identifier;
  item.title = row.title;
  item.icon = row.icon;
  item.action = action;
  item.keys = row.keys;
  return item;
}

std::optional<MenuItem> itemForSelection(const CommandRow& row, const CommandRule& rule,
                                         const Selection& selection) {
  using Items = CommandRule::Items;
  MenuItem item = commandItem(row, rule, rule.itemsAction);
  switch (rule.items) {
    case Items::None:
      return std::nullopt;
    case Items::All:
      item.subject = Subject::Items;
      if (!selection.fitList && rule.itemsAction != std::string_view(menu_action::copyPath)) {
        return std::nullopt;
      }
      return item;
    case Items::Few: {
      const auto areFolders = selection.areFew() ? selection.areFolders() : std::nullopt;
      if (!areFolders || selection.isFolder()) return std::nullopt;
      if (*areFolders) item.action = rule.folderAction;
      item.subject = Subject::EachItem;
      return item;
    }
    case Items::Image:
      item.subject = Subject::Items;
      if (selection.count != 1 || !selection.areImages()) return std::nullopt;
      return item;
    case Items::Images:
      item.subject = Subject::Items;
      if (!selection.fitList || !selection.areImages()) return std::nullopt;
      return item;
  }
  return std::nullopt;
}

std::optional<MenuItem> itemForFolder(const CommandRow& row, const CommandRule& rule,
                                      const MenuSettings& settings, const std::string& path) {
  if (rule.folderAction == nullptr) return std::nullopt;
  MenuItem item = commandItem(row, rule, rule.folderAction);
  if (rule.folder != CommandRule::Folder::AnyToPasteInto) {
    item.keys.insert_or_assign(request_key::path, path);
    return item;
  }
  if (settings.cutItems.empty()) return std::nullopt;
  item.keys.insert_or_assign(request_key::cuttingFilesURL, settings.cutItems);
  item.keys.insert_or_assign(request_key::pasteInPath, path);
  return item;
}

class Builder {
 public:
  Builder(const MenuSettings& settings, const MenuEnvironment& environment)
      : settings_(settings), environment_(environment) {}

  void addItemsPart(const Selection& selection) {
    if (selection.fitList) {
      addSubmenu("copy", translatable("Copy to Folder"), settings_.copyIcon,
                 settings_.copyDestinations);
      addSubmenu("move", translatable("Move to Folder"), settings_.moveIcon,
                 settings_.moveDestinations);
    }
    if (!selection.areFew()) return;
    addSubmenu("icon", translatable("Set Icon"), settings_.customIconsIcon, settings_.customIcons);
  }

  void addFolderPart(const std::string& path) {
    addFileItems(menu_, settings_.newFilesInMainMenu, path);
    if (settings_.newFiles.empty()) return;
    MenuItem& submenu = addSubmenu("new", translatable("New File"), settings_.newFileIcon, {});
    addFileItems(submenu.submenu, settings_.newFiles, path);
  }

  void addCommonFolders() {
    addSubmenu("common", translatable("Common Folders"), settings_.commonFoldersIcon,
               settings_.commonFolders);
  }

  /// The commands that `makeItem` gives an item for.
  template <typename MakeItem>
  void addCommands(MakeItem makeItem) {
    Menu commands;
    for (const CommandRow& row : settings_.commands) {
      const CommandRule* rule = ruleOfCommand(row.name);
      auto item = rule == nullptr ? std::nullopt : makeItem(row, *rule);
      if (!item || isTaken(commands, *item)) continue;
      commands.push_back(std::move(*item));
    }
    addSubmenu("command", "Tavrin", settings_.commandsIcon, std::move(commands));
  }

  /// `which` tells the identifiers of this menu from those of the other one of the window.
  Menu take(const std::string& which) {
    prefix(menu_, "tavrin-" + which + "-");
    return std::move(menu_);
  }

 private:
  /// A list written by hand may have a command twice, or two that pin.
  static bool isTaken(const Menu& menu, const MenuItem& item) {
    return std::any_of(menu.begin(), menu.end(), [&item](const MenuItem& each) {
      return each.identifier == item.identifier;
    });
  }

  static void prefix(Menu& menu, const std::string& prefix) {
    for (MenuItem& item : menu) {
      item.identifier.insert(0, prefix);
      for (MenuItem& inner : item.submenu) inner.identifier.insert(0, prefix);
    }
  }

  static void addFileItems(Menu& menu, const Menu& items, const std::string& path) {
    for (const MenuItem& item : items) {
      menu.push_back(item);
      menu.back().keys.emplace(request_key::path, path);
    }
  }

  MenuItem& addSubmenu(const char* identifier, const char* title, const std::string& icon,
                       Menu items) {
    MenuItem item;
    item.identifier = identifier;
    item.title = environment_.localized(title);
    item.icon = icon;
    item.submenu = std::move(items);
    return menu_.emplace_back(std::move(item));
  }

  const MenuSettings& settings_;
  const MenuEnvironment& environment_;
  Menu menu_;
};

/// The paths of each request of an item.
std::vector<std::vector<std::string>> groupsOf(const std::vector<std::string>& paths,
                                               Subject subject) {
  if (subject == Subject::Keys) return {{}};
  std::vector<std::vector<std::string>> groups;
  if (subject == Subject::Items && !paths.empty()) groups.push_back(paths);
  if (subject == Subject::EachItem) {
    for (const std::string& path : paths) groups.push_back({path});
  }
  return groups;
}

void removeEmptySubmenus(Menu& menu) {
  std::erase_if(
      menu, [](const MenuItem& item) { return item.action == nullptr && item.submenu.empty(); });
}

}  // namespace

Menu menuForItems(const MenuSettings& settings, const MenuEnvironment& environment,
                  const SelectedItems& items) {
  const Selection selection(items);
  if (selection.count == 0 || !selection.areFiles) return {};
  Builder builder(settings, environment);
  builder.addItemsPart(selection);
  builder.addCommands([&](const CommandRow& row, const CommandRule& rule) {
    if (selection.isFolder() && rule.folder != CommandRule::Folder::InView) {
      if (auto item = itemForFolder(row, rule, settings, selection.onlyPath)) return item;
    }
    return itemForSelection(row, rule, selection);
  });
  Menu menu = builder.take("items");
  removeEmptySubmenus(menu);
  return menu;
}

Menu menuForFolder(const MenuSettings& settings, const MenuEnvironment& environment,
                   const std::string& uri) {
  Builder builder(settings, environment);
  const auto folder =
      uri.starts_with("file:///") ? FileURL::urlWithString(uri) : std::optional<FileURL>();
  if (folder) builder.addFolderPart(folder->path());
  builder.addCommonFolders();
  if (folder) {
    builder.addCommands([&](const CommandRow& row, const CommandRule& rule) {
      return itemForFolder(row, rule, settings, folder->path());
    });
  }
  Menu menu = builder.take("folder");
  removeEmptySubmenus(menu);
  return menu;
}

Menu menuForFolderOrItem(const MenuSettings& settings, const MenuEnvironment& environment,
                         const SelectedItems& folder) {
  const Selection selection(folder);
  if (selection.count != 1 || !selection.areFiles) return {};
  Builder builder(settings, environment);
  builder.addFolderPart(selection.onlyPath);
  builder.addItemsPart(selection);
  builder.addCommonFolders();
  builder.addCommands([&](const CommandRow& row, const CommandRule& rule) {
    auto item = itemForFolder(row, rule, settings, selection.onlyPath);
    return item ? item : itemForSelection(row, rule, selection);
  });
  Menu menu = builder.take("both");
  removeEmptySubmenus(menu);
  return menu;
}

Result<std::vector<PropertyList>> requestsOfItem(const MenuItem& item,
                                                 const std::vector<std::string>& paths) {
  const auto arguments = argumentsOfAction(item.action == nullptr ? "" : item.action);
  std::vector<PropertyList> requests;
  if (!arguments) return requests;
  for (const auto& those : groupsOf(paths, item.subject)) {
    auto entries = requestItems(*arguments, those);
    if (!entries) return entries.error();
    PropertyList::Dictionary request = std::move(entries).value();
    request.insert(item.keys.begin(), item.keys.end());
    request.insert_or_assign(request_key::action, item.action);
    requests.emplace_back(std::move(request));
  }
  return requests;
}

}  // namespace tavrin
