#pragma once

#include <string>
#include <string_view>
#include <system_error>

#include "platform/linux/FileDescriptor.h"

namespace tavrin {

/// A hidden name that is free at random: ".tavrin-0123456789abcdef.<kind>".
std::string randomHiddenName(std::string_view kind);

/// True for the names that randomHiddenName makes of `kind`.
bool isRandomHiddenName(std::string_view name, std::string_view kind);

/// Renames an item to a name that is free, atomically: EEXIST when it is taken. On a file system
/// that cannot refuse to replace, a file is linked to its new name before it loses the old one, and
/// a folder goes over an empty one made for it, so that nothing is ever replaced there either.
std::error_code renameToFreeName(int fromFolder, const std::string& from, int toFolder,
                                 const std::string& to);

/// Renames an item of `folder` to `name`, or where that is taken to the first free one of "name 2",
/// "name 3" and so on; `name` is the one it got then.
std::error_code renameToNameOrNext(int folder, const std::string& from, std::string& name);

/// A new file without a name in `folder`, open for writing; nothing with errno where the file
/// system has no such files.
FileDescriptor openNamelessFile(int folder, unsigned mode);

/// Gives a file without a name a name that is free.
std::error_code nameNamelessFile(int file, int folder, const std::string& name);

}  // namespace tavrin
