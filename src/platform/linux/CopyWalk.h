#pragma once

#include <sys/stat.h>

#include <string>
#include <vector>

#include "foundation/Result.h"
#include "platform/linux/FileDescriptor.h"
#include "platform/linux/FileOperation.h"
#include "platform/linux/FolderChain.h"
#include "platform/linux/FolderCopy.h"
#include "platform/linux/FolderEntry.h"
#include "platform/linux/FolderListing.h"
#include "platform/linux/HardLinks.h"
#include "platform/linux/ItemCopy.h"
#include "platform/linux/NewItemTraits.h"
#include "platform/linux/TreeWorkers.h"
#include "platform/linux/WalkLevel.h"

namespace tavrin {

/// What the walks that copy one tree together share.
struct CopiedTree {
  CopyPurpose purpose;
  /// The status of the root of the copy.
  struct stat copyRoot;
  HardLinks& links;
  FileOperation& operation;
  TreeWorkers& workers;
};

/// Opens a folder of the source for reading. The source of a move may have no other file system
/// mounted inside (EXDEV).
FileDescriptor openFolderToCopy(int parent, const std::string& name, CopyPurpose purpose);

/// Copies subtrees, one after the other, and gives away of them what others can copy meanwhile. A
/// folder has its final metadata once all that stands in it directly is created; what is inside a
/// subfolder does not matter for that.
class CopyWalk {
 public:
  /// `tree` is borrowed.
  explicit CopyWalk(const CopiedTree& tree);

  /// Copies what is in `subtree.folder` into the empty `subtree.copy`, and the metadata unless it
  /// is the root.
  Status run(Subtree subtree);

 private:
  struct Level : WalkLevel {
    struct stat status = {};
    MetadataInPlace inPlace;
    bool hasEntries = false;
  };

  Status walk();
  Status enter(FileDescriptor source, FileDescriptor destination, Level level);
  Status enterSubfolder(const std::string& name, double share);
  Status copyPiece();
  Status copyEntry(const FolderListing::Entry& entry, double share);
  Status checkMayBeEmptied() const;
  Status leave();
  Result<FileDescriptor> createFolder(const std::string& name, mode_t mode);
  bool isCopyRoot(const struct stat& status) const;
  FolderEntry destinationEntry(const std::string& name) const;

  const CopiedTree& tree_;
  bool isRoot_ = false;
  FolderChain source_{std::string()};
  FolderChain destination_{std::string()};
  std::vector<Level> levels_;
  FolderListing listing_;
  ItemCopy items_;
  NewItemTraits newFolders_{S_IRWXU};
};

}  // namespace tavrin
