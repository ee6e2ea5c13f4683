#include "extensions/thunar/ThunarMenu.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "extensions/common/MenuExtension.h"
#include "extensions/glib/Gtk3.h"
#include "extensions/glib/Labels.h"
#include "extensions/thunar/ThunarItems.h"
#include "foundation/FileManagers.h"
#include "platform/linux/GLibPointers.h"

namespace tavrin {

namespace {

using OpenedMenuPointer = std::shared_ptr<const OpenedMenu>;

/// What an item does, which is one of `menu`.
struct Click {
  // Thunar 4.18 never frees the submenus that it has shown: they are not to hold what was selected.
  std::weak_ptr<const OpenedMenu> menu;
  const MenuItem* item;
};

/// The one of the process. It is never destroyed: Thunar's own end is its end.
MenuExtension& menuExtension() {
  static auto* const extension = new MenuExtension(
      {file_manager::thunar, TAVRIN_PREFIX_FROM_MODULE, gtk3::copyText, gtk3::startupToken});
  return *extension;
}

void onClick(ThunarxMenuItem* /*item*/, gpointer data) {
  const auto* click = static_cast<const Click*>(data);
  const OpenedMenuPointer menu = click->menu.lock();
  if (menu) menuExtension().activate(*menu, *click->item);
}

void forgetClick(gpointer data, GClosure* /*closure*/) {
  delete static_cast<Click*>(data);
}

template <typename Type>
void forget(gpointer data) {
  delete static_cast<Type*>(data);
}

/// Has an object keep a value until its end.
template <typename Type>
void keep(gpointer object, const char* name, Type value) {
  g_object_set_data_full(G_OBJECT(object), name, new Type(std::move(value)), forget<Type>);
}

using ItemPointer = GObjectPointer<ThunarxMenuItem>;
using Items = std::vector<ItemPointer>;

/// Whether a menu of thunarx that goes lets go of its items: those of Thunar 4.18 do not.
bool doMenusFreeItems() {
  static const bool isFreed = [] {
    GObjectPointer<ThunarxMenu> menu(thunarx_menu_new());
    gpointer item = thunarx_menu_item_new("tavrin", "Tavrin", nullptr, nullptr);
    g_object_add_weak_pointer(G_OBJECT(item), &item);
    thunarx_menu_append_item(menu.get(), THUNARX_MENU_ITEM(item));
    g_object_unref(item);
    menu.reset();
    if (item == nullptr) return true;
    g_object_unref(item);
    return false;
  }();
  return isFreed;
}

GObjectPointer<ThunarxMenu> thunarMenu(Items items) {
  GObjectPointer<ThunarxMenu> menu(thunarx_menu_new());
  for (const ItemPointer& item : items) thunarx_menu_append_item(menu.get(), item.get());
  if (doMenusFreeItems()) return menu;
  // The references that the menu has taken are given back with these, at its end.
  for (const ItemPointer& item : items) g_object_unref(item.get());
  keep(menu.get(), "tavrin-items", std::move(items));
  return menu;
}

ItemPointer thunarItem(const MenuItem& item, const OpenedMenuPointer& menu) {
  // Thunar's shortcuts of all items, its own among them, go by these names.
  const std::string name = "tavrin-" + item.identifier;
  ItemPointer made(thunarx_menu_item_new(name.c_str(), itemLabel(item).c_str(), nullptr,
                                         item.icon.empty() ? nullptr : item.icon.c_str()));
  if (item.action != nullptr) {
    g_signal_connect_data(made.get(), "activate", G_CALLBACK(onClick), new Click{menu, &item},
                          forgetClick, GConnectFlags{});
  }
  if (item.submenu.empty()) return made;
  Items items;
  for (const MenuItem& each : item.submenu) items.push_back(thunarItem(each, menu));
  thunarx_menu_item_set_menu(made.get(), thunarMenu(std::move(items)).get());
  return made;
}

/// The items of a menu, which the caller gets with their references. They keep the menu alive.
GList* thunarItems(const OpenedMenuPointer& menu) {
  Items items;
  for (const MenuItem& each : menu->items) {
    items.push_back(thunarItem(each, menu));
    keep(items.back().get(), "tavrin-menu", menu);
  }
  GList* list = nullptr;
  for (auto item = items.rbegin(); item != items.rend(); ++item) {
    list = g_list_prepend(list, item->release());
  }
  return list;
}

// What Thunar calls. It asks for the menu of the selection at every key press too, for the key of
// an item.

GList* getFileMenuItems(ThunarxMenuProvider* /*provider*/, GtkWidget* /*window*/, GList* files) {
  try {
    return thunarItems(menuExtension().menuForItems(std::make_shared<ThunarItems>(files)));
  } catch (...) {
    return nullptr;
  }
}

GList* getFolderMenuItems(ThunarxMenuProvider* /*provider*/, GtkWidget* /*window*/,
                          ThunarxFileInfo* folder) {
  try {
    return thunarItems(menuExtension().menuForFolder(uriOf(folder)));
  } catch (...) {
    return nullptr;
  }
}

void initializeInterface(gpointer interface, gpointer /*data*/) {
  auto* provider = static_cast<ThunarxMenuProviderIface*>(interface);
  provider->get_file_menu_items = getFileMenuItems;
  provider->get_folder_menu_items = getFolderMenuItems;
}

/// Thunar makes its providers with its first window: the settings are read by the first click.
void initializeInstance(GTypeInstance* /*instance*/, gpointer /*type*/) {
  try {
    menuExtension();
  } catch (...) {
    return;
  }
}

}  // namespace

GType registerThunarMenu(ThunarxProviderPlugin* plugin) {
  GTypeInfo info{};
  info.class_size = sizeof(GObjectClass);
  info.instance_size = sizeof(GObject);
  info.instance_init = initializeInstance;
  const GInterfaceInfo interface { initializeInterface, nullptr, nullptr };
  const GType type = thunarx_provider_plugin_register_type(plugin, G_TYPE_OBJECT,
                                                           "TavrinThunarMenu", &info, GTypeFlags{});
  thunarx_provider_plugin_add_interface(plugin, type, THUNARX_TYPE_MENU_PROVIDER, &interface);
  return type;
}

}  // namespace tavrin
