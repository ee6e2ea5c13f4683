#include "menu/ActionArguments.h"

#include <algorithm>
#include <array>

#include "foundation/ActionNames.h"
#include "foundation/FileURL.h"
#include "foundation/PathString.h"
#include "foundation/RequestKeys.h"

namespace tavrin {

namespace {

namespace name = action_name;
namespace key = request_key;

constexpr std::array<ActionArguments, name::all.size()> table = {{
    {name::createNewFile, ActionItems::Single, key::path},
    {name::copyFilesTo, ActionItems::List, key::selectedFilesUrl},
    {name::moveFilesTo, ActionItems::List, key::selectedFilesUrl},
    {name::copyFilesToCustom, ActionItems::List, key::selectedFilesUrl},
    {name::moveFilesToCustom, ActionItems::List, key::selectedFilesUrl},
    {name::customIcon, ActionItems::Single, key::selectedFile},
    {name::openCommonPath, ActionItems::Single, key::path},
    {name::cutSelectedFiles, ActionItems::List, key::selectedFilesUrl},
    {name::pasteSelectedFiles, ActionItems::List, key::cuttingFilesURL},
    {name::hiddenSelectedFiles, ActionItems::List, key::selectedFilesUrl},
    {name::unHiddenSelectedFiles, ActionItems::List, key::selectedFilesUrl},
    {name::deleteDirectlySelectedFiles, ActionItems::List, key::selectedFilesUrl},
    {name::hiddenAllFilesInPath, ActionItems::Single, key::path},
    {name::unhiddenAllFilesInPath, ActionItems::Single, key::path},
    {name::openInVSCode, ActionItems::Single, key::path},
    {name::openInIDEA, ActionItems::Single, key::path},
    {name::openInSublimeText, ActionItems::Single, key::path},
    {name::openInEmacs, ActionItems::Single, key::path},
    {name::openFileInVSCode, ActionItems::FileInFolder, key::file},
    {name::openFileInIDEA, ActionItems::FileInFolder, key::file},
    {name::openFileInSublimeText, ActionItems::FileInFolder, key::file},
    {name::openFileInEmacs, ActionItems::FileInFolder, key::file},
    {name::pinbySnapvane, ActionItems::List, key::selectedFilesUrl},
    {name::imageToIconSetForMac, ActionItems::Single, key::file},
    {name::imageToIconSetForiOS, ActionItems::Single, key::file},
}};

}  // namespace

std::optional<ActionArguments> argumentsOfAction(std::string_view action) {
  const auto row = std::find_if(table.begin(), table.end(),
                                [&](const ActionArguments& each) { return each.action == action; });
  return row == table.end() ? std::nullopt : std::optional(*row);
}

Result<PropertyList::Dictionary> requestItems(const ActionArguments& arguments,
                                              const std::vector<std::string>& paths) {
  if (paths.empty()) return PropertyList::Dictionary();
  if (arguments.items == ActionItems::List) {
    const auto parted = std::find_if(paths.begin(), paths.end(), [](const std::string& path) {
      return path.find('|') != std::string::npos;
    });
    if (parted == paths.end())
      return PropertyList::Dictionary{{arguments.key, joinFileList(paths)}};
    return SystemError{"put in a list", *parted, std::make_error_code(std::errc::invalid_argument)};
  }
  if (paths.size() > 1) {
    return SystemError{"take more than one item for", arguments.action,
                       std::make_error_code(std::errc::argument_list_too_long)};
  }
  PropertyList::Dictionary entries = {{arguments.key, paths.front()}};
  if (arguments.items == ActionItems::FileInFolder) {
    entries.emplace(key::path, deletingLastPathComponent(paths.front()));
  }
  return entries;
}

}  // namespace tavrin
