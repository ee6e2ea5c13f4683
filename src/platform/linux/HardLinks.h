#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <map>
#include <string>
#include <utility>

#include "foundation/Result.h"
#include "platform/linux/FileDescriptor.h"
#include "platform/linux/FolderEntry.h"

namespace tavrin {

/// Keeps hard links between the items of a tree that is copied. The first copy of an item with
/// several names also gets a name in a folder of its own inside the copy, from which the others are
/// linked however deep they stand; it goes when the last name is linked.
class HardLinks {
 public:
  /// `root` is the open root of the copy, borrowed.
  HardLinks(int root, const std::string& rootPath) : root_(root), rootPath_(rootPath) {}

  /// Makes `destination` another name of the copy of the item with `status`; false when that item
  /// was not copied yet or cannot have another name.
  Result<bool> link(const struct stat& status, const FolderEntry& destination);

  /// Says that `destination` is the copy of the item with `status`.
  Status remember(const struct stat& status, const FolderEntry& destination);

  /// Removes what was kept for linking.
  Status finish();

 private:
  struct Copied {
    std::string name;
    nlink_t namesLeft = 0;
    timespec modified = {};
    off_t size = 0;
  };
  using Identity = std::pair<dev_t, ino_t>;

  Status ensureFolder();
  FolderEntry folderEntry() const { return {root_, folderName_, rootPath_}; }

  int root_;
  const std::string& rootPath_;
  std::string folderName_;
  FileDescriptor folder_;
  std::map<Identity, Copied> copied_;
  std::uint64_t lastNumber_ = 0;
};

}  // namespace tavrin
