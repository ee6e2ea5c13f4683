#pragma once

#include <sys/stat.h>

#include <string>

#include "platform/linux/FileDescriptor.h"

namespace tavrin {

/// Opens a folder by its name in an open folder, for reading. What is no folder, a link to one
/// too, is refused. On failure the handle owns nothing and errno tells why.
FileDescriptor openFolder(int parent, const std::string& name);

/// As openFolder; a folder on which another file system is mounted is refused with EXDEV.
FileDescriptor openFolderOfSameMount(int parent, const std::string& name);

/// Opens a folder by its absolute path, however long, when no part of it is a link.
FileDescriptor openFolderAtPath(const std::string& path);

/// True when the open folder is the one with `status`, or lies in it.
bool isFolderAtOrBelow(int folder, const struct stat& status);

}  // namespace tavrin
