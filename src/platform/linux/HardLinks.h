#pragma once

#include <sys/stat.h>

#include <atomic>
#include <mutex>
#include <string>

#include "foundation/Result.h"
#include "platform/linux/FileDescriptor.h"
#include "platform/linux/FolderEntry.h"

namespace tavrin {

/// Keeps hard links between the items of a tree that is copied. The first copy of an item with
/// several names also gets a name in a folder of its own inside the copy, from which the others are
/// linked however deep they stand; it goes when the last name is linked. That folder is all the
/// memory there is, so that a tree of links costs none. Any thread may use it.
class HardLinks {
 public:
  /// `root` is the open root of the copy, borrowed.
  HardLinks(int root, const std::string& rootPath) : root_(root), rootPath_(rootPath) {}

  /// Makes `destination` another name of the copy of the item with `status`; false when that item
  /// was not copied yet or cannot have another name.
  Result<bool> link(const struct stat& status, const FolderEntry& destination);

  /// Says that `destination` is the copy of the item with `status`. When another thread has copied
  /// that item meanwhile, `destination` becomes another name of its copy.
  Status remember(const struct stat& status, const FolderEntry& destination);

  /// Removes what was kept for linking; when nothing is copied any more.
  Status finish();

 private:
  Status ensureFolder();
  Result<bool> linkKept(const std::string& name, const struct stat& status,
                        const FolderEntry& destination);
  Status rememberAgain(const std::string& name, const struct stat& status,
                       const FolderEntry& destination);
  Status removeKept();
  FolderEntry folderEntry() const { return {root_, folderName_, rootPath_}; }

  int root_;
  const std::string& rootPath_;
  std::string folderName_;
  FileDescriptor folder_;
  std::mutex mutex_;
  std::atomic<bool> hasFolder_ = false;
};

}  // namespace tavrin
