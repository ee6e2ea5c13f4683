#include <libcaja-extension/caja-info-provider.h>
#include <libcaja-extension/caja-menu-provider.h>

#include "MenuOpening.h"

namespace {

struct Caja {
  using FileInfo = CajaFileInfo;
  using FileInterface = CajaFileInfoIface;
  using Submenu = CajaMenu;

  static constexpr auto fileInfoType = &caja_file_info_get_type;
  static constexpr auto itemsOfSubmenu = &caja_menu_get_items;

  static GList* itemsOfFiles(gpointer provider, GList* files) {
    // The library's function wants a window.
    auto* menus = CAJA_MENU_PROVIDER_GET_IFACE(provider);
    return menus->get_file_items(CAJA_MENU_PROVIDER(provider), nullptr, files);
  }
  static GList* itemsOfFolder(gpointer provider, FileInfo* folder) {
    auto* menus = CAJA_MENU_PROVIDER_GET_IFACE(provider);
    return menus->get_background_items(CAJA_MENU_PROVIDER(provider), nullptr, folder);
  }
  static void updateInfo(gpointer provider, FileInfo* file, GClosure* updated) {
    CajaOperationHandle* handle = nullptr;
    const auto result =
        caja_info_provider_update_file_info(CAJA_INFO_PROVIDER(provider), file, updated, &handle);
    tavrin::test::require(result == CAJA_OPERATION_COMPLETE, "an emblem comes late");
  }
};

}  // namespace

int main(int argumentCount, char** arguments) {
  return tavrin::test::runMenuOpening<Caja>(argumentCount, arguments, "caja");
}
