#include "platform/linux/RemovalWalk.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "platform/linux/CopyComparison.h"
#include "platform/linux/FileIdentity.h"
#include "platform/linux/FolderOpening.h"

namespace tavrin {
namespace {

/// A folder that others keep filling is given up after so many listings.
constexpr int mostListings = 8;

bool isNotEmpty(int cause) {
  return cause == ENOTEMPTY || cause == EEXIST;
}

}  // namespace

FileDescriptor openFolderToEmpty(const FolderEntry& entry, FolderRights rights) {
  FileDescriptor folder = openFolderOfSameMount(entry.folder(), entry.name());
  if (rights == FolderRights::Respect) return folder;
  if (!folder && errno == EACCES &&
      ::fchmodat(entry.folder(), entry.nameBytes(), S_IRWXU, AT_SYMLINK_NOFOLLOW) == 0) {
    folder = openFolderOfSameMount(entry.folder(), entry.name());
  }
  if (folder) ::fchmod(folder.get(), S_IRWXU);
  return folder;
}

Status RemovalWalk::run(Subtree subtree) {
  root_ = {subtree.parent.get(), std::move(subtree.name), subtree.path};
  isRoot_ = subtree.isRoot;
  folders_ = FolderChain(std::move(subtree.path));
  copies_ = FolderChain(std::move(subtree.copyPath));
  levels_.clear();
  Status entered =
      enterOpened(std::move(subtree.folder), std::move(subtree.copy), root_.name, subtree.share);
  if (!entered) return entered;
  if (Status walked = walk(); !walked) return walked;
  return firstKept_ && tree_.workers == nullptr ? Status(*firstKept_) : success();
}

Status RemovalWalk::removeItem(const ItemReference& item, const ItemReference* copy) {
  root_ = item;
  isRoot_ = true;
  folders_ = FolderChain(item.path);
  if (copy != nullptr) {
    copyRoot_ = *copy;
    copies_ = FolderChain(copy->path);
  }
  if (Status removed = removeRoot(); !removed) return removed;
  if (Status walked = walk(); !walked) return walked;
  return firstKept_ ? Status(*firstKept_) : success();
}

Status RemovalWalk::removeRoot() {
  const FolderEntry root(root_);
  struct stat status = {};
  if (::fstatat(root.folder(), root.nameBytes(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
    return root.failure("remove", errno);
  }
  // Walks with several threads have counted what they could.
  if (S_ISDIR(status.st_mode)) return enter(root, 0);
  bool isFolder = false;
  Status removed = removeUnlessFolder(root, isFolder);
  return removed && isFolder ? enter(root, 0) : removed;
}

Status RemovalWalk::walk() {
  while (!levels_.empty()) {
    Level& level = levels_.back();
    Status status = success();
    if (tree_.workers != nullptr ? tree_.workers->isStopped() : tree_.operation.isCancelled()) {
      return SystemError{"remove", folders_.path(),
                         std::make_error_code(std::errc::operation_canceled)};
    }
    if (!level.subfolders.isEmpty()) {
      const std::string name = level.subfolders.pop();
      status = enter(currentEntry(name), level.shareOfEntry);
    } else if (!level.isListed) {
      status = removePiece();
    } else {
      status = leave();
    }
    if (!status) return status;
  }
  return success();
}

FolderEntry RemovalWalk::currentEntry(const std::string& name) const {
  return levels_.empty() ? FolderEntry(root_)
                         : FolderEntry(folders_.current(), name, folders_.path());
}

void RemovalWalk::keep(const FolderEntry& entry) {
  if (!levels_.empty()) levels_.back().hasKept = true;
  if (!firstKept_) firstKept_ = entry.failure("remove what changed during the copy", EBUSY);
}

Status RemovalWalk::removeUnopened(const FolderEntry& folder, int cause) {
  if (cause == ENOENT) return success();
  if (cause == EXDEV) return folder.failure("remove", EBUSY);
  if (cause == ENOTDIR || cause == ELOOP) {
    bool isFolder = false;
    Status removed = removeUnlessFolder(folder, isFolder);
    return isFolder ? Status(folder.failure("remove", EBUSY)) : removed;
  }
  // A folder that cannot be read can still go when it is empty.
  if (!tree_.copyGranularity &&
      ::unlinkat(folder.folder(), folder.nameBytes(), AT_REMOVEDIR) == 0) {
    return success();
  }
  return folder.failure("open", cause);
}

/// Enters the folder that the handle `left` is of; another one that has its name meanwhile stays.
Status RemovalWalk::enterAgain(const FolderEntry& folder, int left) {
  FileDescriptor opened = openFolderToEmpty(folder, tree_.rights);
  if (!opened && errno == ENOENT) return success();
  const auto identity = identityAt(left, "");
  const auto found = identityAt(opened.get(), "");
  if (!opened || !identity || !found || identity.value() != found.value()) {
    return folder.failure("remove", EBUSY);
  }
  if (tree_.copyGranularity && levels_.empty()) {
    keep(folder);
    return success();
  }
  FileDescriptor copy;
  if (!openCopy(folder, copy)) return success();
  return enterOpened(std::move(opened), std::move(copy), folder.name(), 0);
}

/// False when the copy has no such folder, so that this one stays.
bool RemovalWalk::openCopy(const FolderEntry& folder, FileDescriptor& copy) {
  if (!tree_.copyGranularity) return true;
  const bool isRoot = levels_.empty();
  copy = openFolder(isRoot ? copyRoot_.parentDescriptor : copies_.current(),
                    isRoot ? copyRoot_.name : folder.name());
  if (!copy) keep(folder);
  return static_cast<bool>(copy);
}

Status RemovalWalk::enter(const FolderEntry& folder, double share) {
  FileDescriptor opened = openFolderToEmpty(folder, tree_.rights);
  if (!opened) return removeUnopened(folder, errno);
  FileDescriptor copy;
  if (!openCopy(folder, copy) || giveAway(opened, copy, folder.name(), share)) return success();
  return enterOpened(std::move(opened), std::move(copy), folder.name(), share);
}

bool RemovalWalk::giveAway(FileDescriptor& folder, FileDescriptor& copy, const std::string& name,
                           double share) {
  if (tree_.workers == nullptr || levels_.empty() ||
      !levels_.back().mayGiveAway(*tree_.workers, tree_.operation, folders_)) {
    return false;
  }
  FileDescriptor parent(::fcntl(folders_.current(), F_DUPFD_CLOEXEC, 0));
  if (!parent) return false;
  Subtree subtree = {std::move(folder), std::move(copy), folders_.path() + "/" + name,
                     copies_.path() + "/" + name};
  subtree.share = share;
  subtree.parent = std::move(parent);
  subtree.name = name;
  levels_.back().hasGivenAway = true;
  tree_.workers->give(std::move(subtree));
  return true;
}

Status RemovalWalk::enterOpened(FileDescriptor folder, FileDescriptor copy, const std::string& name,
                                double share) {
  if (copy) {
    if (Status entered = copies_.enter(std::move(copy), name); !entered) return entered;
  }
  if (Status entered = folders_.enter(std::move(folder), name); !entered) return entered;
  Level level;
  level.name = name;
  level.shareLeft = share;
  levels_.push_back(std::move(level));
  return success();
}

Status RemovalWalk::removePiece() {
  Level& level = levels_.back();
  const Result<bool> found = level.readPiece(listing_, folders_, tree_.operation);
  if (!found) return found.error();
  FolderListing::Entry entry;
  std::uint64_t removed = 0;
  while (listing_.next(entry)) {
    if (tree_.operation.isCancelled()) break;
    if (Status status = removeEntry(entry.name, entry.type); !status) return status;
    if (entry.type != DT_DIR) ++removed;
  }
  tree_.operation.addItems(removed);
  tree_.operation.addShare(level.shareOfEntry * static_cast<double>(removed));
  return success();
}

Status RemovalWalk::removeEntry(const std::string& name, unsigned char type) {
  bool isFolder = type == DT_DIR;
  if (!isFolder) {
    Status removed = removeUnlessFolder(currentEntry(name), isFolder);
    if (!removed) return removed;
  }
  if (isFolder) levels_.back().subfolders.push(name);
  return success();
}

Result<bool> RemovalWalk::isHeld(const FolderEntry& entry) const {
  const FolderEntry copy = levels_.empty()
                               ? FolderEntry(copyRoot_)
                               : FolderEntry(copies_.current(), entry.name(), copies_.path());
  return isHeldUnchanged(entry, copy, *tree_.copyGranularity);
}

Status RemovalWalk::removeUnlessFolder(const FolderEntry& entry, bool& isFolder) {
  if (tree_.copyGranularity) {
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
  const Result<FileDescriptor> left = folders_.leave();
  if (!left) return left.error();
  if (tree_.copyGranularity) {
    if (const Result<FileDescriptor> copyLeft = copies_.leave(); !copyLeft) return copyLeft.error();
  }
  const Level level = std::move(levels_.back());
  levels_.pop_back();
  if (!level.hasKept) return removeLeft(level, left.value().get());
  keep(currentEntry(level.name));
  return success();
}

Status RemovalWalk::removeLeft(const Level& level, int left) {
  const FolderEntry entry = currentEntry(level.name);
  if (::unlinkat(entry.folder(), entry.nameBytes(), AT_REMOVEDIR) == 0 || errno == ENOENT) {
    tree_.operation.addItems(1);
    if (levels_.empty() && isRoot_ && tree_.isRootRemoved != nullptr) *tree_.isRootRemoved = true;
    return success();
  }
  if (isNotEmpty(errno) && level.hasGivenAway) {
    if (!levels_.empty()) levels_.back().hasGivenAway = true;
    return success();
  }
  if (!isNotEmpty(errno) || level.listings >= mostListings) return entry.failure("remove", errno);
  // Something came in meanwhile, or the listing passed over names while others went.
  const std::size_t depth = levels_.size();
  if (Status entered = enterAgain(entry, left); !entered) return entered;
  if (levels_.size() > depth) levels_.back().listings += level.listings;
  return success();
}

}  // namespace tavrin
