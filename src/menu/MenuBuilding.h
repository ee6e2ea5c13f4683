#pragma once

#include <string>
#include <vector>

#include "foundation/PropertyList.h"
#include "foundation/Result.h"
#include "menu/MenuItem.h"
#include "menu/MenuSettings.h"
#include "menu/SelectedItems.h"

/// From settings and what is selected to the menu, and from one of its items to requests. Only what
/// can be carried is offered: nothing for an item that is no file of this system, no file list for
/// a name with "|" in it.
namespace tavrin {

/// How many items get a request each, at most.
inline constexpr std::size_t maximumSingleRequests = 20;

/// The menu of selected items.
Menu menuForItems(const MenuSettings& settings, const MenuEnvironment& environment,
                  const SelectedItems& items);

/// The menu of a folder in view, by its URI.
Menu menuForFolder(const MenuSettings& settings, const MenuEnvironment& environment,
                   const std::string& uri);

/// The menu of one folder that may be selected or in view: of a command that is in both menus the
/// one for the folder in view.
Menu menuForFolderOrItem(const MenuSettings& settings, const MenuEnvironment& environment,
                         const SelectedItems& folder);

/// The requests of an item whose action is one of action_name, for selected items at `paths`
/// (absolute). None where the item has a subject but no path is given. Fails as requestItems does.
Result<std::vector<PropertyList>> requestsOfItem(const MenuItem& item,
                                                 const std::vector<std::string>& paths);

}  // namespace tavrin
