#include "extensions/thunar/ThunarMenu.h"

// The three functions that Thunar looks for in a module.

namespace {

GType menuType = G_TYPE_INVALID;

}  // namespace

// NOLINTBEGIN(readability-identifier-naming)
extern "C" {

G_MODULE_EXPORT void thunar_extension_initialize(ThunarxProviderPlugin* plugin);
G_MODULE_EXPORT void thunar_extension_shutdown();
G_MODULE_EXPORT void thunar_extension_list_types(const GType** types, gint* count);

// Called more than once: Thunar unloads a module and loads it again. It is linked to stay in
// memory all the same, for its threads and because its settings are read once.
void thunar_extension_initialize(ThunarxProviderPlugin* plugin) {
  thunarx_provider_plugin_set_resident(plugin, TRUE);
  menuType = tavrin::registerThunarMenu(plugin);
}

void thunar_extension_shutdown() {}

void thunar_extension_list_types(const GType** types, gint* count) {
  *types = &menuType;
  *count = 1;
}
}
// NOLINTEND(readability-identifier-naming)
