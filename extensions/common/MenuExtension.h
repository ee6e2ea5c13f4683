#pragma once

#include <functional>
#include <memory>
#include <string>

#include "menu/MenuItem.h"
#include "menu/SelectedItems.h"

/// What the adapters of all file managers share. Nothing here throws, and nothing here blocks: it
/// runs in the file manager's process, on the thread of its windows.
namespace tavrin {

/// A menu that a file manager shows, with what it was made for.
struct OpenedMenu {
  Menu items;
  /// Null in the menu of a folder.
  std::shared_ptr<const SelectedItems> selection;
};

/// The menu extension of one file manager, one object a process. Used on one thread, whose
/// thread-default main context (GLib's) runs.
class MenuExtension {
 public:
  /// What a file manager offers to its extension.
  struct FileManager {
    /// One of file_manager (foundation/FileManagers.h).
    const char* identifier;
    /// From the folder of the module to the prefix of its installation, relative:
    /// TAVRIN_PREFIX_FROM_MODULE.
    const char* prefixFromModule;
    /// Puts a text, in UTF-8, on the clipboard.
    std::function<void(const std::string& text)> copyText;
    /// A token by which the desktop lets a started program's window come to the front, "" when it
    /// has none; may be empty.
    std::function<std::string()> startupToken;
  };

  explicit MenuExtension(FileManager fileManager) noexcept;
  ~MenuExtension();
  MenuExtension(const MenuExtension&) = delete;
  MenuExtension& operator=(const MenuExtension&) = delete;

  // The menus, never null. They come from memory unless the settings have changed.

  /// For selected items; none selected gives an empty menu.
  std::shared_ptr<const OpenedMenu> menuForItems(
      std::shared_ptr<const SelectedItems> selection) noexcept;
  /// For the background of the folder in view, by its URI.
  std::shared_ptr<const OpenedMenu> menuForFolder(const std::string& uri) noexcept;
  /// For one folder that is either selected or in view: what both menus have.
  std::shared_ptr<const OpenedMenu> menuForFolderOrItem(
      std::shared_ptr<const SelectedItems> folder) noexcept;

  /// Carries out an item of a menu, which may be closed. Returns at once; a failure is shown as a
  /// notification of the desktop.
  void activate(const OpenedMenu& menu, const MenuItem& item) noexcept;

  /// Whether the item of that URI waits to be pasted.
  bool isCut(const std::string& uri) noexcept;

  /// Called from the main context whenever the menus may have changed; `items` are the URIs whose
  /// isCut has. Replaces the function set before.
  using Changed = std::function<void(const std::vector<std::string>& items)>;
  void onChange(Changed changed) noexcept;

 private:
  struct State;
  template <typename Build>
  std::shared_ptr<const OpenedMenu> opened(Build build) noexcept;

  std::unique_ptr<State> state_;
};

}  // namespace tavrin
