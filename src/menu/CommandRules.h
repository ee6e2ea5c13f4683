#pragma once

#include <string_view>

namespace tavrin {

/// What a command of the Others list does in the menus.
struct CommandRule {
  /// The items that it is offered for, of those that are selected.
  enum class Items {
    None,
    /// Any.
    All,
    /// Files alone or folders alone, a few of them.
    Few,
    /// One file that is an image.
    Image,
    /// Images alone, any number.
    Images,
  };
  /// The folders that it is offered for.
  enum class Folder {
    None,
    /// The folder in view.
    InView,
    /// The folder in view and one that is selected alone.
    Any,
    /// The same while cut items wait to be pasted.
    AnyToPasteInto,
  };

  std::string_view command;
  /// In the identifiers of its items.
  const char* identifier;
  Items items;
  const char* itemsAction;
  Folder folder;
  const char* folderAction;
};

/// The rule of a command; nullptr for one that has no place in the menus of files.
const CommandRule* ruleOfCommand(std::string_view command);

}  // namespace tavrin
