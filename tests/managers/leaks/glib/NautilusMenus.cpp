#include "MenuOpening.h"

extern "C" {
#include <nautilus-extension.h>
}

namespace {

struct Nautilus {
  using FileInfo = NautilusFileInfo;
  using FileInterface = NautilusFileInfoInterface;
  using Submenu = NautilusMenu;

  static constexpr auto fileInfoType = &nautilus_file_info_get_type;
  static constexpr auto itemsOfSubmenu = &nautilus_menu_get_items;

  static GList* itemsOfFiles(gpointer provider, GList* files) {
    return nautilus_menu_provider_get_file_items(NAUTILUS_MENU_PROVIDER(provider), files);
  }
  static GList* itemsOfFolder(gpointer provider, FileInfo* folder) {
    return nautilus_menu_provider_get_background_items(NAUTILUS_MENU_PROVIDER(provider), folder);
  }
  static void updateInfo(gpointer provider, FileInfo* file, GClosure* updated) {
    NautilusOperationHandle* handle = nullptr;
    const auto result = nautilus_info_provider_update_file_info(NAUTILUS_INFO_PROVIDER(provider),
                                                                file, updated, &handle);
    tavrin::test::require(result == NAUTILUS_OPERATION_COMPLETE, "an emblem comes late");
  }
};

}  // namespace

int main(int argumentCount, char** arguments) {
  return tavrin::test::runMenuOpening<Nautilus>(argumentCount, arguments, "nautilus");
}
