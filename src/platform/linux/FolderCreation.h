#pragma once

#include <string>
#include <vector>

#include "foundation/Result.h"

namespace tavrin {

/// Creates the folders that are missing on the way from `folder` (a descriptor) down to the last of
/// `names`, one within the other, each by the handle of the one before. Success when the last one
/// is there already. Fails with file_exists when it is there and is no folder, with not_a_directory
/// when something else than a folder, be it a symbolic link, stands on the way; what was created by
/// then is removed again. `path` is for messages.
Status createFolders(int folder, const std::vector<std::string>& names, const std::string& path);

}  // namespace tavrin
