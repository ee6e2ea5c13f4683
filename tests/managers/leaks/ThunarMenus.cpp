// Loads the module for Thunar, its path being the first argument, with Thunar's own library, opens
// its menus as often as the second one says, and lets go of all that it was given. Fails when a
// menu has no items, or when a file that it was for is still held.
#include "extensions/thunar/Thunarx.h"

// The library exports its loader for Thunar alone.
#define THUNARX_COMPILATION
extern "C" {
#include <thunarx/thunarx-provider-module.h>
}

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

constexpr const char* fileUri = "file:///usr/share/dict";

struct File {
  GObject parent;
  /// As it stands in the list of recent files, where it has another URI.
  bool isRecent;
};

// What thunarx asks a file.

gchar* uriOf(ThunarxFileInfo* file) {
  const bool isRecent = reinterpret_cast<const File*>(file)->isRecent;
  return g_strdup(isRecent ? "recent:///5f3759df" : fileUri);
}

GFileInfo* informationOf(ThunarxFileInfo* /*file*/) {
  GFileInfo* information = g_file_info_new();
  g_file_info_set_attribute_string(information, G_FILE_ATTRIBUTE_STANDARD_TARGET_URI, fileUri);
  return information;
}

gchar* nameOf(ThunarxFileInfo* /*file*/) {
  return g_strdup("dict");
}

gchar* schemeOf(ThunarxFileInfo* /*file*/) {
  return g_strdup("file");
}

gchar* mimeTypeOf(ThunarxFileInfo* /*file*/) {
  return g_strdup("inode/directory");
}

gboolean isDirectory(ThunarxFileInfo* /*file*/) {
  return TRUE;
}

void initializeFileInfo(gpointer interface, gpointer /*data*/) {
  auto* file = static_cast<ThunarxFileInfoIface*>(interface);
  file->get_uri = uriOf;
  file->get_file_info = informationOf;
  file->get_name = nameOf;
  file->get_uri_scheme = schemeOf;
  file->get_mime_type = mimeTypeOf;
  file->is_directory = isDirectory;
}

GType registerFile() {
  const GType type = g_type_register_static_simple(G_TYPE_OBJECT, "TestFile", sizeof(GObjectClass),
                                                   nullptr, sizeof(File), nullptr, GTypeFlags{});
  const GInterfaceInfo interface { initializeFileInfo, nullptr, nullptr };
  g_type_add_interface_static(type, THUNARX_TYPE_FILE_INFO, &interface);
  return type;
}

[[noreturn]] void fail(const char* what) {
  std::fprintf(stderr, "%s\n", what);
  std::_Exit(EXIT_FAILURE);
}

/// Reads what Thunar reads of the items, and frees them. The references of their submenus, which
/// Thunar itself forgets, go to `submenus`.
int readAndFree(GList* items, GSList** submenus) {
  int count = 0;
  for (GList* each = items; each != nullptr; each = each->next, ++count) {
    g_autofree gchar* label = nullptr;
    ThunarxMenu* menu = nullptr;
    g_object_get(each->data, "label", &label, "menu", &menu, nullptr);
    if (label == nullptr || *label == '\0') fail("an item without a label");
    if (menu == nullptr) continue;
    count += readAndFree(thunarx_menu_get_items(menu), submenus);
    *submenus = g_slist_prepend(*submenus, menu);
  }
  thunarx_menu_item_list_free(items);
  return count;
}

void openMenus(ThunarxMenuProvider* provider, GObject* file) {
  // The library's own functions want a window, and so a display.
  const ThunarxMenuProviderIface* menus = THUNARX_MENU_PROVIDER_GET_IFACE(provider);
  GList* files = g_list_append(nullptr, file);
  GSList* submenus = nullptr;
  GList* ofFile = menus->get_file_menu_items(provider, nullptr, files);
  if (file->ref_count < 2) fail("a menu does not hold the file that it is for");
  GList* ofFolder = menus->get_folder_menu_items(provider, nullptr, THUNARX_FILE_INFO(file));
  if (readAndFree(ofFile, &submenus) == 0) fail("the menu of a file has no items");
  if (readAndFree(ofFolder, &submenus) == 0) fail("the menu of a folder has no items");
  if (submenus == nullptr) fail("no item has a submenu");
  if (file->ref_count != 1) fail("a file is held by submenus of a menu that has gone");
  g_slist_free_full(submenus, g_object_unref);
  g_list_free(files);
}

/// As Thunar starts: it loads a module, asks for its types, unloads it and loads it again.
ThunarxMenuProvider* loadModule(const std::string& path) {
  // The library looks in the folder of the installed modules alone.
  std::string name = path;
  for (int step = 0; step < 16; ++step) name.insert(0, "/..");
  GTypeModule* module = G_TYPE_MODULE(thunarx_provider_module_new(name.c_str()));
  for (int loading = 0; loading < 2; ++loading) {
    if (g_type_module_use(module) == FALSE) fail("the module cannot be loaded");
    if (loading == 0) g_type_module_unuse(module);
  }
  const GType* types = nullptr;
  gint count = 0;
  thunarx_provider_module_list_types(THUNARX_PROVIDER_MODULE(module), &types, &count);
  if (count != 1 || g_type_is_a(*types, THUNARX_TYPE_MENU_PROVIDER) == FALSE) fail("no menus");
  return THUNARX_MENU_PROVIDER(g_object_new(*types, nullptr));
}

}  // namespace

int main(int argumentCount, char** arguments) {
  if (argumentCount != 3) fail("usage: tavrin-thunar-menus MODULE OPENINGS");
  ThunarxMenuProvider* provider = loadModule(arguments[1]);
  auto* file = static_cast<GObject*>(g_object_new(registerFile(), nullptr));
  for (long left = std::strtol(arguments[2], nullptr, 10); left > 0; --left) {
    reinterpret_cast<File*>(file)->isRecent = left % 2 == 0;
    openMenus(provider, file);
  }
  g_object_unref(file);
  g_object_unref(provider);
}
