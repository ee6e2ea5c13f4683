#pragma once

#include <glib-object.h>

#include <deque>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "extensions/common/MenuExtension.h"
#include "extensions/glib/Labels.h"
#include "platform/linux/GLibPointers.h"

namespace tavrin {

/// Makes menus into the items of a file manager; see MenuProvider for `Manager`.
template <typename Manager>
class MenuItems {
 public:
  explicit MenuItems(std::shared_ptr<MenuExtension> extension) : extension_(std::move(extension)) {}

  /// A list of items, which the caller owns. They may outlive this.
  GList* itemsOf(const std::shared_ptr<const OpenedMenu>& menu) {
    keep(menu);
    const auto shown = std::make_shared<Shown>(Shown{menu, menu, &menu->items});
    std::size_t submenus = 0;
    GList* items = nullptr;
    for (std::size_t index = 0; index < menu->items.size(); ++index) {
      const MenuItem& item = menu->items[index];
      GObjectPointer<Item> made = item.submenu.empty() ? newItem(shown, item, {index}, submenus)
                                                       : newParent(menu, item, submenus);
      items = g_list_prepend(items, made.release());
    }
    return g_list_reverse(items);
  }

 private:
  using Item = typename Manager::Item;
  using Submenu = std::remove_pointer_t<decltype(Manager::newSubmenu())>;
  /// From item to item of a submenu, by their indices.
  using Path = std::vector<std::size_t>;

  /// What items stand for at present.
  struct Shown {
    /// Null while no item has the submenu.
    std::shared_ptr<const OpenedMenu> menu;
    /// Of that menu, or of the last one that the submenu was part of.
    std::weak_ptr<const OpenedMenu> lastMenu;
    const Menu* items;
  };
  struct Click {
    std::shared_ptr<MenuExtension> extension;
    std::shared_ptr<const Shown> shown;
    Path path;
  };
  struct Made {
    std::string contents;
    GObjectPointer<Submenu> submenu;
    std::shared_ptr<Shown> shown;
    /// How many submenus the menu has up to here.
    std::size_t submenus;
  };

  /// More than are open at a time, and than users have rules for.
  static constexpr std::size_t manySubmenus = 64;

  /// A file manager asks anew for both menus of each window when something changes, and may go on
  /// to show a submenu whose item it has let go.
  static constexpr std::size_t keptMenus = 16;

  void keep(const std::shared_ptr<const OpenedMenu>& menu) {
    kept_.push_back(menu);
    if (kept_.size() > keptMenus) kept_.pop_front();
  }

  GObjectPointer<Item> newParent(const std::shared_ptr<const OpenedMenu>& menu,
                                 const MenuItem& item, std::size_t& submenus) {
    GObjectPointer<Item> parent = newItem(item, parentLabel(item, submenus));
    const Made& made = submenuFor(item, submenus);
    submenus = made.submenus;
    *made.shown = {menu, menu, &item.submenu};
    Manager::setSubmenu(parent.get(), made.submenu.get());
    g_object_set_data_full(G_OBJECT(parent.get()), "tavrin-submenu",
                           new std::shared_ptr<Shown>(made.shown), [](gpointer data) {
                             auto* shown = static_cast<std::shared_ptr<Shown>*>(data);
                             (*shown)->menu.reset();
                             delete shown;
                           });
    return parent;
  }

  /// The file managers never let go of a submenu: one that has been shown is taken once more.
  const Made& submenuFor(const MenuItem& item, std::size_t submenus) {
    std::string contents = std::to_string(submenus) + contentsOf(item.submenu);
    for (const Made& made : made_) {
      if (!made.shown->menu && made.contents == contents) return made;
    }
    if (made_.size() >= manySubmenus) {
      std::erase_if(made_, [](const Made& made) { return !made.shown->menu; });
    }
    const auto shown = std::make_shared<Shown>(Shown{nullptr, {}, &item.submenu});
    GObjectPointer<Submenu> submenu = newSubmenu(shown, item.submenu, {}, submenus);
    return made_.emplace_back(Made{std::move(contents), std::move(submenu), shown, submenus});
  }

  GObjectPointer<Submenu> newSubmenu(const std::shared_ptr<Shown>& shown, const Menu& items,
                                     const Path& path, std::size_t& submenus) const {
    GObjectPointer<Submenu> submenu(Manager::newSubmenu());
    for (std::size_t index = 0; index < items.size(); ++index) {
      Path step = path;
      step.push_back(index);
      Manager::append(submenu.get(), newItem(shown, items[index], step, submenus).get());
    }
    return submenu;
  }

  GObjectPointer<Item> newItem(const std::shared_ptr<Shown>& shown, const MenuItem& item,
                               const Path& path, std::size_t& submenus) const {
    if (item.submenu.empty()) {
      GObjectPointer<Item> made = newItem(item, itemLabel(item));
      connectClick(made.get(), new Click{extension_, shown, path});
      return made;
    }
    GObjectPointer<Item> parent = newItem(item, parentLabel(item, submenus));
    Manager::setSubmenu(parent.get(), newSubmenu(shown, item.submenu, path, submenus).get());
    return parent;
  }

  static GObjectPointer<Item> newItem(const MenuItem& item, const std::string& label) {
    // A tooltip must be given, though it may be empty.
    return GObjectPointer<Item>(Manager::newItem(item.identifier.c_str(), label.c_str(), "",
                                                 item.icon.empty() ? nullptr : item.icon.c_str()));
  }

  static std::string parentLabel(const MenuItem& item, std::size_t& submenus) {
    ++submenus;
    return Manager::sameTitles ? itemLabel(item) : distinctLabel(item, submenus);
  }

  static void connectClick(gpointer item, Click* click) {
    g_signal_connect_data(
        item, "activate",
        G_CALLBACK(+[](gpointer, gpointer data) { activate(*static_cast<Click*>(data)); }), click,
        [](gpointer data, GClosure*) { delete static_cast<Click*>(data); }, GConnectFlags{});
  }

  static void activate(const Click& click) {
    const std::shared_ptr<const OpenedMenu> menu = click.shown->lastMenu.lock();
    if (!menu) return;
    const Menu* items = click.shown->items;
    for (std::size_t step = 0; step + 1 < click.path.size(); ++step) {
      items = &(*items)[click.path[step]].submenu;
    }
    click.extension->activate(*menu, (*items)[click.path.back()]);
  }

  std::shared_ptr<MenuExtension> extension_;
  std::vector<Made> made_;
  std::deque<std::shared_ptr<const OpenedMenu>> kept_;
};

}  // namespace tavrin
