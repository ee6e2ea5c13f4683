#include <libnemo-extension/nemo-info-provider.h>
#include <libnemo-extension/nemo-menu-provider.h>

#include "extensions/glib/Gtk3.h"
#include "extensions/glib/MenuProvider.h"
#include "foundation/FileManagers.h"

namespace tavrin {
namespace {

struct Nemo {
  using FileInfo = NemoFileInfo;
  using Item = NemoMenuItem;
  using MenuObject = NemoMenuProvider;
  using MenuInterface = NemoMenuProviderInterface;
  using InfoInterface = NemoInfoProviderInterface;

  static constexpr const char* typeName = TAVRIN_NEMO_TYPE;
  static constexpr const char* desktop = "x-nemo-desktop:///";
  static constexpr bool sameTitles = true;
  static constexpr auto menuProviderType = &nemo_menu_provider_get_type;
  static constexpr auto infoProviderType = &nemo_info_provider_get_type;
  static constexpr auto itemsUpdated = &nemo_menu_provider_emit_items_updated_signal;
  static constexpr auto newItem = &nemo_menu_item_new;
  static constexpr auto newSubmenu = &nemo_menu_new;
  static constexpr auto append = &nemo_menu_append_item;
  static constexpr auto setSubmenu = &nemo_menu_item_set_submenu;
  static constexpr auto fileUri = &nemo_file_info_get_uri;
  static constexpr auto fileActivationUri = &nemo_file_info_get_activation_uri;
  static constexpr auto isFolder = &nemo_file_info_is_directory;
  static constexpr auto contentType = &nemo_file_info_get_mime_type;
  static constexpr auto addEmblem = &nemo_file_info_add_emblem;
  static constexpr auto lookUp = &nemo_file_info_lookup_for_uri;
  static constexpr auto invalidate = &nemo_file_info_invalidate_extension_info;

  static MenuExtension::FileManager fileManager() {
    return {file_manager::nemo, TAVRIN_PREFIX_FROM_MODULE, &gtk3::copyText, &gtk3::startupToken};
  }
  static void connect(MenuInterface* menus);
  static void connect(InfoInterface* infos);
};
using Provider = MenuProvider<Nemo>;

void Nemo::connect(MenuInterface* menus) {
  menus->get_file_items = [](NemoMenuProvider* provider, GtkWidget*, GList* files) {
    return Provider::itemsForFiles(provider, files);
  };
  menus->get_background_items = [](NemoMenuProvider* provider, GtkWidget*, NemoFileInfo* folder) {
    return Provider::itemsForFolder(provider, folder);
  };
}

void Nemo::connect(InfoInterface* infos) {
  infos->update_file_info = [](NemoInfoProvider* provider, NemoFileInfo* file, GClosure*,
                               NemoOperationHandle**) {
    Provider::addEmblems(provider, file);
    return NEMO_OPERATION_COMPLETE;
  };
  infos->cancel_update = [](NemoInfoProvider*, NemoOperationHandle*) {};
}

}  // namespace
}  // namespace tavrin

[[gnu::visibility("default")]] void nemo_module_initialize(GTypeModule* module) {
  tavrin::Provider::registerType(module);
}

[[gnu::visibility("default")]] void nemo_module_shutdown() {}

[[gnu::visibility("default")]] void nemo_module_list_types(const GType** types, int* count) {
  tavrin::Provider::listTypes(types, count);
}
