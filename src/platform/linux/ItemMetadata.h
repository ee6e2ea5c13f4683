#pragma once

#include <sys/stat.h>

#include "foundation/Result.h"
#include "platform/linux/FileData.h"
#include "platform/linux/FolderEntry.h"

namespace tavrin {

/// What a new item has already as its source has it.
struct MetadataInPlace {
  bool owner = false;
  bool mode = false;
};

/// Gives an open file or folder the owner, attributes, access control lists, mode and times of its
/// source, but for what is in place; `status` is that of the source. Owner and group are left where
/// the user may not set them, and the set-id bits with them.
Status copyMetadata(int source, const OpenFile& destination, const struct stat& status,
                    MetadataInPlace inPlace);

/// The same for what cannot be opened: links, pipes, sockets, devices.
Status copyMetadataByName(const FolderEntry& source, const FolderEntry& destination,
                          const struct stat& status);

/// Takes away the access control lists that a new item has from the default list of its folder.
void dropInheritedAccess(int descriptor);

}  // namespace tavrin
