#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/PropertyList.h"
#include "foundation/Result.h"

namespace tavrin {

/// What an action does with the items that it is called on.
enum class ActionItems {
  /// Any number of items, as a file list string (splitFileList).
  List,
  /// One item, as its path.
  Single,
  /// One file, as its path, and beside it the path of the folder that it stands in.
  FileInFolder,
};

/// How a request of one action carries its items.
struct ActionArguments {
  const char* action;
  ActionItems items;
  /// The key of request_key that the items stand under.
  const char* key;
};

/// How requests of an action carry their items; nothing for a name that is no action's.
std::optional<ActionArguments> argumentsOfAction(std::string_view action);

/// The entries of a request that carry `paths`, absolute ones, to an action; none for no path.
/// Fails with argument_list_too_long for more paths than the action takes, and with
/// invalid_argument, naming the path, for one with "|" in a file list, whose items it parts.
Result<PropertyList::Dictionary> requestItems(const ActionArguments& arguments,
                                              const std::vector<std::string>& paths);

}  // namespace tavrin
