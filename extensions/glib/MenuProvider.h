#pragma once

#include <glib-object.h>

#include <memory>
#include <string>
#include <vector>

#include "extensions/common/MenuExtension.h"
#include "extensions/glib/FileInfos.h"
#include "extensions/glib/Guard.h"
#include "extensions/glib/Labels.h"
#include "extensions/glib/MenuItems.h"
#include "platform/linux/GLibPointers.h"

namespace tavrin {

/// The object that Nautilus, or a file manager that descends from it, asks for the items of its
/// menus and for the emblems of files. `Manager` says by which types and functions:
/// - FileInfo, Item, MenuObject, MenuInterface, InfoInterface: the types of its library;
/// - menuProviderType, infoProviderType, itemsUpdated: of its interfaces;
/// - newItem, newSubmenu, append, setSubmenu: of its menu; the last two take a reference;
/// - fileUri, fileActivationUri, isFolder, contentType, addEmblem, lookUp, invalidate: of a file;
/// - typeName, fileManager(): what this module is;
/// - desktop: the URI of what is in view on the desktop, "" where it has none;
/// - sameTitles: whether it tells submenus of the same title from each other;
/// - connect(), of both interfaces: sets the functions below, in its own signatures.
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
    menuType = g_type_module_register_type(module, G_TYPE_OBJECT, Manager::typeName, &info,
                                           G_TYPE_FLAG_FINAL);
    addInterface<typename Manager::MenuInterface>(module, Manager::menuProviderType());
    addInterface<typename Manager::InfoInterface>(module, Manager::infoProviderType());
  }

  /// The types that the file manager makes an object of.
  static void listTypes(const GType** types, int* count) {
    *types = &menuType;
    *count = 1;
  }

  // What the interfaces ask for; `object` is the provider.

  /// A list of menu items for selected files, which the caller owns.
  static GList* itemsForFiles(gpointer object, GList* files) {
    return answer(object, [files](MenuProvider& provider) {
      return provider.items_.itemsOf(
          provider.extension_->menuForItems(std::make_shared<FileInfos<Manager>>(files)));
    });
  }

  /// The same for the background of a folder.
  static GList* itemsForFolder(gpointer object, FileInfo* folder) {
    return answer(object, [folder](MenuProvider& provider) {
      return provider.items_.itemsOf(provider.extension_->menuForFolder(uriOf<Manager>(folder)));
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

  explicit MenuProvider(Object* object)
      : extension_(std::make_shared<MenuExtension>(Manager::fileManager())), items_(extension_) {
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
    g_type_module_add_interface(module, menuType, interfaceType, &info);
  }

  template <typename Work>
  static auto answer(gpointer object, Work work) {
    return guarded([object, &work] {
      auto* provider = static_cast<Object*>(object)->provider;
      return provider != nullptr ? work(*provider) : decltype(work(*provider))();
    });
  }

  static void invalidate(const std::string& uri) {
    const GObjectPointer<FileInfo> file(Manager::lookUp(uri.c_str()));
    if (file) Manager::invalidate(file.get());
  }

  static inline GType menuType = 0;

  std::shared_ptr<MenuExtension> extension_;
  MenuItems<Manager> items_;
};

}  // namespace tavrin
