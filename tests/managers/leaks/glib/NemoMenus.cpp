#include <libnemo-extension/nemo-info-provider.h>
#include <libnemo-extension/nemo-menu-provider.h>

#include "MenuOpening.h"

namespace {

struct Nemo {
  using FileInfo = NemoFileInfo;
  using FileInterface = NemoFileInfoInterface;
  using Submenu = NemoMenu;

  static constexpr auto fileInfoType = &nemo_file_info_get_type;
  static constexpr auto itemsOfSubmenu = &nemo_menu_get_items;

  static GList* itemsOfFiles(gpointer provider, GList* files) {
    // The library's function wants a window.
    auto* menus = NEMO_MENU_PROVIDER_GET_IFACE(provider);
    return menus->get_file_items(NEMO_MENU_PROVIDER(provider), nullptr, files);
  }
  static GList* itemsOfFolder(gpointer provider, FileInfo* folder) {
    auto* menus = NEMO_MENU_PROVIDER_GET_IFACE(provider);
    return menus->get_background_items(NEMO_MENU_PROVIDER(provider), nullptr, folder);
  }
  static void updateInfo(gpointer provider, FileInfo* file, GClosure* updated) {
    NemoOperationHandle* handle = nullptr;
    const auto result =
        nemo_info_provider_update_file_info(NEMO_INFO_PROVIDER(provider), file, updated, &handle);
    tavrin::test::require(result == NEMO_OPERATION_COMPLETE, "an emblem comes late");
  }
};

}  // namespace

int main(int argumentCount, char** arguments) {
  return tavrin::test::runMenuOpening<Nemo>(argumentCount, arguments, "nemo");
}
