#include "platform/linux/MenuModules.h"

#include <glib.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>

#include "foundation/FileManagers.h"
#include "foundation/PathString.h"
#include "platform/linux/MenuModuleNames.h"

namespace tavrin {

namespace {

struct MenuModule {
  std::string_view fileManager;
  std::string_view folder;
};

constexpr std::array<MenuModule, 6> modules = {{
    {file_manager::nautilus, menu_module::nautilusFolder},
    {file_manager::nemo, menu_module::nemoFolder},
    {file_manager::caja, menu_module::cajaFolder},
    {file_manager::thunar, menu_module::thunarFolder},
    {file_manager::dolphin, menu_module::dolphinKf5Folder},
    {file_manager::dolphin, menu_module::dolphinKf6Folder},
}};

bool isFile(const std::string& path) {
  struct stat status = {};
  return ::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

/// The folders that Qt looks for plugins in besides its own.
std::vector<std::string> addedPluginFolders() {
  const char* variable = g_getenv("QT_PLUGIN_PATH");
  std::vector<std::string> folders;
  if (variable == nullptr) return folders;
  gchar** paths = g_strsplit(variable, G_SEARCHPATH_SEPARATOR_S, -1);
  for (gchar** path = paths; *path != nullptr; ++path) {
    if (g_path_is_absolute(*path) != FALSE) folders.emplace_back(*path);
  }
  g_strfreev(paths);
  return folders;
}

bool isInstalled(const MenuModule& module, const std::vector<std::string>& libraryFolders) {
  constexpr std::string_view pluginFolder = "/plugins/";
  const std::string file = std::string(menu_module::name) + ".so";
  const auto isIn = [&file](const std::string& folder, std::string_view subfolder) {
    return isFile(appendingPathComponent(appendingPathComponent(folder, subfolder), file));
  };
  for (const std::string& libraries : libraryFolders) {
    if (isIn(libraries, module.folder)) return true;
  }
  const auto plugins = module.folder.find(pluginFolder);
  if (plugins == std::string_view::npos) return false;
  return std::ranges::any_of(addedPluginFolders(), [&](const std::string& added) {
    return isIn(added, module.folder.substr(plugins + pluginFolder.size()));
  });
}

}  // namespace

std::vector<std::string> libraryFolders() {
  return {appendingPathComponent("/usr/lib", menu_module::libraryArchitecture), "/usr/lib64",
          "/usr/lib"};
}

bool isMenuModuleInstalled(std::string_view fileManager,
                           const std::vector<std::string>& libraryFolders) {
  return std::ranges::any_of(modules, [&](const MenuModule& module) {
    return module.fileManager == fileManager && isInstalled(module, libraryFolders);
  });
}

}  // namespace tavrin
