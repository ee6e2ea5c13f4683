#pragma once

#include <string>

#include "foundation/Result.h"
#include "platform/linux/FileDescriptor.h"

namespace tavrin {

/// Opens the folder at `relativePath` beneath the folder `folder` as a place to work from (O_PATH).
/// No symbolic link is followed and the folder is never left, whatever is swapped meanwhile: the
/// result lies below `folder` or the call fails. "" is `folder` itself. The path may have any
/// length; a path with ".." fails, unless the kernel resolves it beneath the folder.
Result<FileDescriptor> openFolderBeneath(int folder, const std::string& relativePath);

}  // namespace tavrin
