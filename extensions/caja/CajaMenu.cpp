#include <libcaja-extension/caja-info-provider.h>
#include <libcaja-extension/caja-menu-provider.h>

#include "extensions/glib/Gtk3.h"
#include "extensions/glib/MenuProvider.h"
#include "foundation/FileManagers.h"

namespace tavrin {
namespace {

struct Caja {
  using FileInfo = CajaFileInfo;
  using Item = CajaMenuItem;
  using MenuObject = CajaMenuProvider;
  using MenuInterface = CajaMenuProviderIface;
  using InfoInterface = CajaInfoProviderIface;

  static constexpr const char* typeName = "TavrinCajaMenu";
  static constexpr const char* desktop = "x-caja-desktop:///";
  static constexpr bool sameTitles = true;
  static constexpr auto menuProviderType = &caja_menu_provider_get_type;
  static constexpr auto infoProviderType = &caja_info_provider_get_type;
  static constexpr auto itemsUpdated = &caja_menu_provider_emit_items_updated_signal;
  static constexpr auto newItem = &caja_menu_item_new;
  static constexpr auto newSubmenu = &caja_menu_new;
  static constexpr auto append = &caja_menu_append_item;
  static constexpr auto setSubmenu = &caja_menu_item_set_submenu;
  static constexpr auto fileUri = &caja_file_info_get_uri;
  static constexpr auto fileActivationUri = &caja_file_info_get_activation_uri;
  static constexpr auto isFolder = &caja_file_info_is_directory;
  static constexpr auto contentType = &caja_file_info_get_mime_type;
  static constexpr auto addEmblem = &caja_file_info_add_emblem;
  static constexpr auto lookUp = &caja_file_info_lookup_for_uri;
  static constexpr auto invalidate = &caja_file_info_invalidate_extension_info;

  static MenuExtension::FileManager fileManager() {
    return {file_manager::caja, TAVRIN_PREFIX_FROM_MODULE, &gtk3::copyText, &gtk3::startupToken};
  }
  static void connect(MenuInterface* menus);
  static void connect(InfoInterface* infos);
};
using Provider = MenuProvider<Caja>;

void Caja::connect(MenuInterface* menus) {
  menus->get_file_items = [](CajaMenuProvider* provider, GtkWidget*, GList* files) {
    return Provider::itemsForFiles(provider, files);
  };
  menus->get_background_items = [](CajaMenuProvider* provider, GtkWidget*, CajaFileInfo* folder) {
    return Provider::itemsForFolder(provider, folder);
  };
}

void Caja::connect(InfoInterface* infos) {
  infos->update_file_info = [](CajaInfoProvider* provider, CajaFileInfo* file, GClosure*,
                               CajaOperationHandle**) {
    Provider::addEmblems(provider, file);
    return CAJA_OPERATION_COMPLETE;
  };
  infos->cancel_update = [](CajaInfoProvider*, CajaOperationHandle*) {};
}

}  // namespace
}  // namespace tavrin

[[gnu::visibility("default")]] void caja_module_initialize(GTypeModule* module) {
  tavrin::Provider::registerType(module);
}

[[gnu::visibility("default")]] void caja_module_shutdown() {}

[[gnu::visibility("default")]] void caja_module_list_types(const GType** types, int* count) {
  tavrin::Provider::listTypes(types, count);
}
