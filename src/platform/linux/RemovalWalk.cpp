#include "platform/linux/RemovalWalk.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "platform/linux/CopyComparison.h"
#include "platform/linux/FolderOpening.h"

namespace tavrin {
namespace {

/// A folder that others keep filling is given up after so many listings.
constexpr int mostListings = 8;

}  // namespace

RemovalWalk::RemovalWalk(const ItemReference& item, FolderRights rights)
    : item_(item), rights_(rights), tree_(item.path) {}

void RemovalWalk::keepUnlessHeldBy(const ItemReference& copy, TimeGranularity granularity) {
  copyItem_ = &copy;
  granularity_ = granularity;
  copy_.emplace(copy.path);
}

Status RemovalWalk::run() {
  if (Status removed = removeRoot(); !removed) return removed;
  if (Status walked = walk(); !walked) return walked;
  return firstKept_ ? Status(*firstKept_) : success();
}

Status RemovalWalk::removeRoot() {
  const FolderEntry root(item_);
  struct stat status = {};
  if (::fstatat(root.folder(), root.nameBytes(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
    return root.failure("remove", errno);
  }
  if (S_ISDIR(status.st_mode)) return enter(root);
  bool isFolder = false;
  Status removed = removeUnlessFolder(root, isFolder);
  return removed && isFolder ? enter(root) : removed;
}

Status RemovalWalk::walk() {
  while (!levels_.empty()) {
    Level& level = levels_.back();
    if (level.subfolders.empty()) {
      if (Status left = leave(); !left) return left;
      continue;
    }
    const std::string name = std::move(level.subfolders.back());
    level.subfolders.pop_back();
    if (Status entered = enter(currentEntry(name)); !entered) return entered;
  }
  return success();
}

FolderEntry RemovalWalk::currentEntry(const std::string& name) const {
  return levels_.empty() ? FolderEntry(item_) : FolderEntry(tree_.current(), name, tree_.path());
}

void RemovalWalk::keep(const FolderEntry& entry) {
  if (!levels_.empty()) levels_.back().hasKept = true;
  if (!firstKept_) firstKept_ = entry.failure("remove what changed during the copy", EBUSY);
}

FileDescriptor RemovalWalk::openFolder(const FolderEntry& entry) const {
  FileDescriptor folder = openFolderOfSameMount(entry.folder(), entry.name());
  if (rights_ == FolderRights::Respect) return folder;
  if (!folder && errno == EACCES &&
      ::fchmodat(entry.folder(), entry.nameBytes(), S_IRWXU, AT_SYMLINK_NOFOLLOW) == 0) {
    folder = openFolderOfSameMount(entry.folder(), entry.name());
  }
  if (folder) ::fchmod(folder.get(), S_IRWXU);
  return folder;
}

Status RemovalWalk::enter(const FolderEntry& folder) {
  FileDescriptor opened = openFolder(folder);
  if (!opened) {
    const int cause = errno;
    if (cause == ENOENT) return success();
    if (cause == EXDEV) return folder.failure("remove", EBUSY);
    bool isFolder = false;
    if (cause == ENOTDIR || cause == ELOOP) {
      Status removed = removeUnlessFolder(folder, isFolder);
      return isFolder ? Status(folder.failure("remove", EBUSY)) : removed;
    }
    // A folder that cannot be read can still go when it is empty.
    if (!copy_ && ::unlinkat(folder.folder(), folder.nameBytes(), AT_REMOVEDIR) == 0) {
      return success();
    }
    return folder.failure("open", cause);
  }
  bool isHeldByCopy = true;
  if (Status entered = enterCopy(folder, isHeldByCopy); !entered) return entered;
  if (!isHeldByCopy) return success();
  if (Status entered = tree_.enter(std::move(opened), folder.name()); !entered) return entered;
  Level level;
  level.name = folder.name();
  levels_.push_back(std::move(level));
  return removeEntries();
}

Status RemovalWalk::enterCopy(const FolderEntry& folder, bool& isHeld) {
  if (!copy_) return success();
  const bool isRoot = levels_.empty();
  FileDescriptor opened =
      tavrin::openFolder(isRoot ? copyItem_->parentDescriptor : copy_->current(),
                         isRoot ? copyItem_->name : folder.name());
  isHeld = static_cast<bool>(opened);
  if (isHeld) return copy_->enter(std::move(opened), folder.name());
  keep(folder);
  return success();
}

Status RemovalWalk::removeEntries() {
  ++levels_.back().listings;
  FolderListing::Entry entry;
  listing_.start(tree_.current(), tree_.path());
  while (true) {
    const Result<bool> found = listing_.next(entry);
    if (!found) return found.error();
    if (!found.value()) return success();
    if (Status removed = removeEntry(entry.name, entry.type); !removed) return removed;
  }
}

Status RemovalWalk::removeEntry(const std::string& name, unsigned char type) {
  bool isFolder = type == DT_DIR;
  if (!isFolder) {
    Status removed = removeUnlessFolder(currentEntry(name), isFolder);
    if (!removed) return removed;
  }
  if (isFolder) levels_.back().subfolders.push_back(name);
  return success();
}

Result<bool> RemovalWalk::isHeld(const FolderEntry& entry) const {
  const bool isRoot = levels_.empty();
  const FolderEntry copy =
      isRoot ? FolderEntry(*copyItem_) : FolderEntry(copy_->current(), entry.name(), copy_->path());
  return isHeldUnchanged(entry, copy, granularity_);
}

Status RemovalWalk::removeUnlessFolder(const FolderEntry& entry, bool& isFolder) {
  if (copy_) {
    const Result<bool> held = isHeld(entry);
    if (!held) {
      isFolder = held.error().code.value() == EISDIR;
      const bool isGone = held.error().code.value() == ENOENT;
      return isFolder || isGone ? success() : Status(held.error());
    }
    if (!held.value()) {
      keep(entry);
      return success();
    }
  }
  if (::unlinkat(entry.folder(), entry.nameBytes(), 0) == 0 || errno == ENOENT) return success();
  isFolder = errno == EISDIR;
  return isFolder ? success() : Status(entry.failure("remove", errno));
}

Status RemovalWalk::leave() {
  const Result<FileDescriptor> left = tree_.leave();
  if (!left) return left.error();
  if (copy_) {
    if (const Result<FileDescriptor> copyLeft = copy_->leave(); !copyLeft) return copyLeft.error();
  }
  const Level level = std::move(levels_.back());
  levels_.pop_back();
  const FolderEntry entry = currentEntry(level.name);
  if (level.hasKept) {
    keep(entry);
    return success();
  }
  if (::unlinkat(entry.folder(), entry.nameBytes(), AT_REMOVEDIR) == 0) return success();
  if (errno == ENOENT) return success();
  if ((errno != ENOTEMPTY && errno != EEXIST) || level.listings >= mostListings) {
    return entry.failure("remove", errno);
  }
  // Something came in meanwhile, or the listing passed over names while others went.
  const std::size_t depth = levels_.size();
  if (Status entered = enter(entry); !entered) return entered;
  if (levels_.size() > depth) levels_.back().listings += level.listings;
  return success();
}

}  // namespace tavrin
