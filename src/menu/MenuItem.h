#pragma once

#include <string>
#include <vector>

#include "foundation/PropertyList.h"

namespace tavrin {

/// What the menu carries out in the file manager's process, without the host.
namespace menu_action {

/// The paths of the items, or of the folder, go to the clipboard.
inline constexpr const char* copyPath = "copyPath";
/// A terminal opens at a folder.
inline constexpr const char* openInTerminal = "openInTerminal";

}  // namespace menu_action

/// The entries of the actions of menu_action. Those of others are request_key's.
namespace menu_key {

/// Of openInTerminal: the identifier of the terminal's service.
inline constexpr const char* terminalService = "terminalService";

}  // namespace menu_key

/// One entry of the context menu.
struct MenuItem {
  /// What a click works on.
  enum class Subject {
    /// Nothing but what stands in `keys`.
    Keys,
    /// All selected items, in one request.
    Items,
    /// The selected items, a request each.
    EachItem,
  };

  /// Lower-case ASCII letters, digits and hyphens. It stays the same while the settings do, and no
  /// other item of the menu, its submenus and the other menu of the window has it.
  std::string identifier;
  /// In the user's language, UTF-8. It has no mnemonic and no markup.
  std::string title;
  /// The absolute path of an image, or the name of an icon of the theme; "" for none.
  std::string icon;
  /// An item with a submenu has no action.
  std::vector<MenuItem> submenu;
  /// One of action_name or of menu_action; nullptr for a submenu.
  const char* action = nullptr;
  /// What the action needs to know besides the items.
  PropertyList::Dictionary keys;
  Subject subject = Subject::Keys;
};

/// From the first to the last; empty where there is nothing to offer.
using Menu = std::vector<MenuItem>;

}  // namespace tavrin
