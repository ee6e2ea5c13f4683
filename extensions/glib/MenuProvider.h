#pragma once

#include <glib-object.h>

#include <memory>
#include <string>
#include <vector>

#include "extensions/common/MenuExtension.h"
#include "extensions/glib/FileInfos.h"
#include "extensions/glib/Guard.h"
#include "extensions/glib/Labels.h"

namespace tavrin {

/// The object that Nautilus, or a file manager that descends from it, asks for the items of its
/// menus and for the emblems of files. `Manager` says by which types and functions:
/// - FileInfo, Item, Submenu, MenuInterface, InfoInterface: the types of its library;
/// - menuProviderType, infoProviderType, itemsUpdated: of the interfaces;
/// - newItem, newSubmenu, append, setSubmenu: of the menu; append and setSubmenu take a reference;
/// - fileUri, fileActivationUri, isFolder, contentType, addEmblem, lookUp, invalidate: of a file;
/// - typeName, fileManager, connect (both interfaces): what it adds itself.
template <typename Manager>
class MenuProvider {
 public:
  using FileInfo = typename Manager::FileInfo;

  /// To be called once, when the file manager loads the module. It stays loaded from there.
  static void registerType(GTypeModule* module) {
    g_type_module_use(module);
    GTypeInfo info = {};
    info.class_size = sizeof(GObjectClass);
    info.class_init = [](gpointer objectClass, gpointer) {
      static_cast<GObjectClass*>(objectClass)->finalize = &finalize;
    };
    info.instance_size = sizeof(Object);
    info.instance_init = [](GTypeInstance* instance, gpointer) {
      auto* object = reinterpret_cast<Object*>(instance);
      object->provider = guarded([object] { return new MenuProvider(object); });
    };
    type_ = g_type_module_register_type(module, G_TYPE_OBJECT, Manager::typeName, &info,
                                        static_cast<GTypeFlags>(0));
    addInterface<typename Manager::MenuInterface>(module, Manager::menuProviderType());
    addInterface<typename Manager::InfoInterface>(module, Manager::infoProviderType());
  }

  /// The types that the file manager makes an object of.
  static void listTypes(const GType** types, int* count) {
    *types = &type_;
    *count = 1;
  }

  // What the interfaces ask for; `object` is the provider.

  /// A list of menu items for selected files, owned by the caller.
  static GList* itemsForFiles(gpointer object, GList* files) {
    return answer(object, [files](MenuProvider& provider) {
      return provider.itemsOf(
          provider.extension_->menuForItems(std::make_shared<FileInfos<Manager>>(files)));
    });
  }

  /// The same for the background of a folder.
  static GList* itemsForFolder(gpointer object, FileInfo* folder) {
    return answer(object, [folder](MenuProvider& provider) {
      return provider.itemsOf(provider.extension_->menuForFolder(uriOf<Manager>(folder)));
    });
  }

  /// Adds to a file the emblem that it needs.
  static void addEmblems(gpointer object, FileInfo* file) {
    answer(object, [file](MenuProvider& provider) {
      if (provider.extension_->isCut(uriOf<Manager>(file))) Manager::addEmblem(file, cutEmblem);
    });
  }

 private:
  struct Object {
    GObject parent;
    MenuProvider* provider;
  };
  struct Click {
    std::shared_ptr<MenuExtension> extension;
    std::shared_ptr<const OpenedMenu> menu;
    const MenuItem& item;
  };

  explicit MenuProvider(Object* object)
      : extension_(std::make_shared<MenuExtension>(Manager::fileManager())) {
    extension_->onChange([object](const std::vector<std::string>& items) {
      for (const std::string& item : items) invalidate(item);
      Manager::itemsUpdated(reinterpret_cast<typename Manager::MenuObject*>(object));
    });
  }
  ~MenuProvider() { extension_->onChange(nullptr); }

  static void finalize(GObject* object) {
    delete reinterpret_cast<Object*>(object)->provider;
    static_cast<GObjectClass*>(g_type_class_peek(G_TYPE_OBJECT))->finalize(object);
  }

  template <typename Interface>
  static void addInterface(GTypeModule* module, GType interfaceType) {
    GInterfaceInfo info = {};
    info.interface_init = [](gpointer vtable, gpointer) {
      Manager::connect(static_cast<Interface*>(vtable));
    };
    g_type_module_add_interface(module, type_, interfaceType, &info);
  }

  template <typename Work>
  static auto answer(gpointer object, Work work) {
    return guarded([object, &work] {
      auto* provider = static_cast<Object*>(object)->provider;
      return provider != nullptr ? work(*provider) : decltype(work(*provider))();
    });
  }

  static void invalidate(const std::string& uri) {
    FileInfo* file = Manager::lookUp(uri.c_str());
    if (file == nullptr) return;
    Manager::invalidate(file);
    g_object_unref(file);
  }

  GList* itemsOf(const std::shared_ptr<const OpenedMenu>& menu) const {
    GList* items = nullptr;
    for (const MenuItem& item : menu->items) items = g_list_prepend(items, newItem(menu, item));
    return g_list_reverse(items);
  }

  typename Manager::Item* newItem(const std::shared_ptr<const OpenedMenu>& menu,
                                  const MenuItem& item) const {
    auto* made = Manager::newItem(itemName(item).c_str(), itemLabel(item).c_str(), "",
                                  item.icon.empty() ? nullptr : item.icon.c_str());
    if (item.submenu.empty()) {
      connectClick(made, new Click{extension_, menu, item});
    } else {
      addSubmenu(made, menu, item);
    }
    return made;
  }

  void addSubmenu(typename Manager::Item* parent, const std::shared_ptr<const OpenedMenu>& menu,
                  const MenuItem& item) const {
    auto* submenu = Manager::newSubmenu();
    for (const MenuItem& child : item.submenu) {
      auto* made = newItem(menu, child);
      Manager::append(submenu, made);
      g_object_unref(made);
    }
    Manager::setSubmenu(parent, submenu);
    g_object_unref(submenu);
  }

  static void connectClick(gpointer item, Click* click) {
    const GCallback clicked = reinterpret_cast<GCallback>(+[](gpointer, gpointer data) {
      // The click outlives its item, which the activation may end.
      const Click held = *static_cast<Click*>(data);
      held.extension->activate(*held.menu, held.item);
    });
    g_signal_connect_data(
        item, "activate", clicked, click,
        [](gpointer data, GClosure*) { delete static_cast<Click*>(data); },
        static_cast<GConnectFlags>(0));
  }

  static inline GType type_ = 0;

  /// Held by the items too, which may outlive this.
  std::shared_ptr<MenuExtension> extension_;
};

}  // namespace tavrin
