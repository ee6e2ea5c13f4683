#pragma once

#include <atomic>
#include <optional>
#include <string>
#include <vector>

#include "foundation/Result.h"
#include "platform/linux/FileDescriptor.h"
#include "platform/linux/FileOperation.h"
#include "platform/linux/FolderChain.h"
#include "platform/linux/FolderEntry.h"
#include "platform/linux/FolderListing.h"
#include "platform/linux/ItemReference.h"
#include "platform/linux/TreeRemoval.h"
#include "platform/linux/TreeWorkers.h"
#include "platform/linux/WalkLevel.h"

namespace tavrin {

/// What to do with a folder that may not be read or changed: fail, or give the user the rights.
enum class FolderRights { Respect, Take };

/// What the walks that remove one tree together share.
struct RemovedTree {
  FolderRights rights = FolderRights::Respect;
  FileOperation& operation;
  /// Null when one walk does all.
  TreeWorkers* workers = nullptr;
  /// How exactly the copy keeps times, when only what it holds unchanged is to go.
  std::optional<TimeGranularity> copyGranularity = std::nullopt;
  /// Set when the root itself is removed.
  std::atomic<bool>* isRootRemoved = nullptr;
};

/// Opens a folder to be emptied; one on which another file system is mounted is refused (EXDEV).
FileDescriptor openFolderToEmpty(const FolderEntry& entry, FolderRights rights);

/// Removes trees from their leaves up, with a fixed number of handles. With workers it gives
/// subtrees away, and leaves a folder standing whose last items another walk has still to remove: a
/// walk without workers then removes the rest.
class RemovalWalk {
 public:
  /// `tree` is borrowed.
  explicit RemovalWalk(const RemovedTree& tree) : tree_(tree) {}

  /// Removes what is in `subtree.folder`, and then the folder. Without workers it fails with
  /// device_or_resource_busy when something stayed that the copy does not hold.
  Status run(Subtree subtree);

  /// Removes an item of any kind. `copy` stands beside it when only what it holds is to go, and is
  /// null otherwise. Fails with device_or_resource_busy when something stayed for that.
  Status removeItem(const ItemReference& item, const ItemReference* copy);

 private:
  struct Level : WalkLevel {
    bool hasKept = false;
    bool hasGivenAway = false;
    int listings = 1;
  };

  Status walk();
  Status removeRoot();
  Status enter(const FolderEntry& folder, double share);
  Status enterOpened(FileDescriptor folder, FileDescriptor copy, const std::string& name,
                     double share);
  Status removeUnopened(const FolderEntry& folder, int cause);
  bool openCopy(const FolderEntry& folder, FileDescriptor& copy);
  bool giveAway(FileDescriptor& folder, FileDescriptor& copy, const std::string& name,
                double share);
  Status removePiece();
  Status removeEntry(const std::string& name, unsigned char type);
  Status removeUnlessFolder(const FolderEntry& entry, bool& isFolder);
  Status leave();
  Status removeLeft(const Level& level, int left);
  Status enterAgain(const FolderEntry& folder, int left);
  FolderEntry currentEntry(const std::string& name) const;
  Result<bool> isHeld(const FolderEntry& entry) const;
  void keep(const FolderEntry& entry);

  const RemovedTree& tree_;
  /// The root and the folder around it.
  ItemReference root_;
  ItemReference copyRoot_;
  bool isRoot_ = false;
  FolderChain folders_{std::string()};
  FolderChain copies_{std::string()};
  std::vector<Level> levels_;
  FolderListing listing_;
  std::optional<SystemError> firstKept_;
};

}  // namespace tavrin
