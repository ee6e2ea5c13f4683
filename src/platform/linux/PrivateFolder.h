#pragma once

#include <string>

#include "foundation/Result.h"
#include "platform/linux/FileDescriptor.h"

namespace tavrin {

/// Opens a folder of the program's own at an absolute path, readable, following symbolic links on
/// the way. What is missing of the path is made with the rights of the owner alone, as the XDG base
/// directory specification wants it.
Result<FileDescriptor> openPrivateFolder(const std::string& path);

}  // namespace tavrin
