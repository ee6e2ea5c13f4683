#include <gio/gio.h>

#include "extensions/glib/MenuProvider.h"
#include "extensions/nautilus/Gtk4.h"
#include "foundation/FileManagers.h"

// Its declarations are not C's by themselves.
extern "C" {
#include <nautilus-extension.h>
}

namespace tavrin {
namespace {

struct Nautilus {
  using FileInfo = NautilusFileInfo;
  using Item = NautilusMenuItem;
  using MenuObject = NautilusMenuProvider;
  using MenuInterface = NautilusMenuProviderInterface;
  using InfoInterface = NautilusInfoProviderInterface;

  static constexpr const char* typeName = "TavrinNautilusMenu";
  static constexpr const char* desktop = "";
  static constexpr bool sameTitles = false;
  static constexpr auto menuProviderType = &nautilus_menu_provider_get_type;
  static constexpr auto infoProviderType = &nautilus_info_provider_get_type;
  static constexpr auto itemsUpdated = &nautilus_menu_provider_emit_items_updated_signal;
  static constexpr auto newItem = &nautilus_menu_item_new;
  static constexpr auto newSubmenu = &nautilus_menu_new;
  static constexpr auto append = &nautilus_menu_append_item;
  static constexpr auto setSubmenu = &nautilus_menu_item_set_submenu;
  static constexpr auto fileUri = &nautilus_file_info_get_uri;
  static constexpr auto fileActivationUri = &nautilus_file_info_get_activation_uri;
  static constexpr auto isFolder = &nautilus_file_info_is_directory;
  static constexpr auto contentType = &nautilus_file_info_get_mime_type;
  static constexpr auto addEmblem = &nautilus_file_info_add_emblem;
  static constexpr auto lookUp = &nautilus_file_info_lookup_for_uri;
  static constexpr auto invalidate = &nautilus_file_info_invalidate_extension_info;

  static MenuExtension::FileManager fileManager() {
    return {file_manager::nautilus, TAVRIN_PREFIX_FROM_MODULE, &gtk4::copyText,
            &gtk4::startupToken};
  }
  static void connect(MenuInterface* menus);
  static void connect(InfoInterface* infos);
};
using Provider = MenuProvider<Nautilus>;

void Nautilus::connect(MenuInterface* menus) {
  menus->get_file_items = [](NautilusMenuProvider* provider, GList* files) {
    return Provider::itemsForFiles(provider, files);
  };
  menus->get_background_items = [](NautilusMenuProvider* provider, NautilusFileInfo* folder) {
    return Provider::itemsForFolder(provider, folder);
  };
}

void Nautilus::connect(InfoInterface* infos) {
  infos->update_file_info = [](NautilusInfoProvider* provider, NautilusFileInfo* file, GClosure*,
                               NautilusOperationHandle**) {
    Provider::addEmblems(provider, file);
    return NAUTILUS_OPERATION_COMPLETE;
  };
  infos->cancel_update = [](NautilusInfoProvider*, NautilusOperationHandle*) {};
}

}  // namespace
}  // namespace tavrin

[[gnu::visibility("default")]] void nautilus_module_initialize(GTypeModule* module) {
  tavrin::Provider::registerType(module);
}

[[gnu::visibility("default")]] void nautilus_module_shutdown() {}

[[gnu::visibility("default")]] void nautilus_module_list_types(const GType** types, int* count) {
  tavrin::Provider::listTypes(types, count);
}
