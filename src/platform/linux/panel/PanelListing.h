#pragma once

#include <string>
#include <vector>

#include "foundation/Result.h"

namespace tavrin {

/// One item of a folder.
struct PanelEntry {
  std::string name;
  /// A folder, or a link to one.
  bool isFolder = false;
};

enum class HiddenFiles { LeaveOut, Include };

/// Lists an open folder (O_PATH is enough) with its kinds of items in the order of the file system,
/// and asks the disk about single items only where the
/// folder itself does not tell their kind. Hidden are names with a leading "." and those that the
/// folder's ".hidden" file names. `path` is for messages. Fails when the folder cannot be read.
Result<std::vector<PanelEntry>> listFolder(int folder, const std::string& path,
                                           HiddenFiles hiddenFiles);

}  // namespace tavrin
