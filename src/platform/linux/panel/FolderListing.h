#pragma once

#include <string>
#include <vector>

#include "foundation/Result.h"
#include "platform/linux/FileDescriptor.h"

namespace tavrin {

/// One item of a folder.
struct FolderEntry {
  std::string name;
  /// A folder, or a link to one.
  bool isFolder = false;
};

/// The items of a folder in the order of the file system.
struct FolderListing {
  /// The folder itself, open.
  FileDescriptor folder;
  std::vector<FolderEntry> entries;
};

enum class HiddenFiles { LeaveOut, Include };

/// Lists a folder with its kinds of items, and asks the disk about single items only where the
/// folder itself does not tell their kind. Hidden are names with a leading "." and those that the
/// folder's ".hidden" file names. Fails when the folder cannot be opened or read.
Result<FolderListing> listFolder(const std::string& path, HiddenFiles hiddenFiles);

}  // namespace tavrin
