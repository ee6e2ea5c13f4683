#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

/// The folders below which the file managers of the distribution look for modules, wherever this
/// program itself is installed.
std::vector<std::string> libraryFolders();

/// Whether the menu's module for a file manager, by its name of file_manager, stands where the file
/// manager looks for modules: below one of `libraryFolders` or, for Dolphin, in $QT_PLUGIN_PATH.
bool isMenuModuleInstalled(std::string_view fileManager,
                           const std::vector<std::string>& libraryFolders);

}  // namespace tavrin
