#include "platform/linux/CopyWalk.h"

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "platform/linux/FolderOpening.h"

namespace tavrin {
FileDescriptor openFolderToCopy(int parent, const std::string& name, CopyPurpose purpose) {
  return purpose == CopyPurpose::Move ? openFolderOfSameMount(parent, name)
                                      : openFolder(parent, name);
}

CopyWalk::CopyWalk(const CopiedTree& tree) : tree_(tree), items_(tree.operation) {}

Status CopyWalk::run(Subtree subtree) {
  isRoot_ = subtree.isRoot;
  source_ = FolderChain(std::move(subtree.path));
  destination_ = FolderChain(std::move(subtree.copyPath));
  levels_.clear();
  Level level;
  level.status = subtree.status;
  level.inPlace = subtree.inPlace;
  level.shareLeft = subtree.share;
  Status entered = enter(std::move(subtree.folder), std::move(subtree.copy), std::move(level));
  return entered ? walk() : entered;
}

Status CopyWalk::walk() {
  while (!levels_.empty()) {
    Level& level = levels_.back();
    Status status = success();
    if (tree_.workers.isStopped()) {
      return SystemError{"copy", source_.path(),
                         std::make_error_code(std::errc::operation_canceled)};
    }
    if (!level.subfolders.isEmpty()) {
      const std::string name = level.subfolders.pop();
      status = enterSubfolder(name, level.shareOfEntry);
    } else if (!level.isListed) {
      status = copyPiece();
    } else {
      status = leave();
    }
    if (!status) return status;
  }
  return success();
}

bool CopyWalk::isCopyRoot(const struct stat& status) const {
  return status.st_dev == tree_.copyRoot.st_dev && status.st_ino == tree_.copyRoot.st_ino;
}

FolderEntry CopyWalk::destinationEntry(const std::string& name) const {
  return {destination_.current(), name, destination_.path()};
}

Result<FileDescriptor> CopyWalk::createFolder(const std::string& name, mode_t mode) {
  const FolderEntry entry = destinationEntry(name);
  if (::mkdirat(entry.folder(), entry.nameBytes(), mode) != 0) {
    return entry.failure("create", errno);
  }
  FileDescriptor folder = openFolder(entry.folder(), name);
  if (!folder) return entry.failure("open", errno);
  if (!newFolders_.learn(folder.get(), mode)) return entry.failure("stat", errno);
  return folder;
}

Status CopyWalk::enterSubfolder(const std::string& name, double share) {
  const FolderEntry entry(source_.current(), name, source_.path());
  FileDescriptor source = openFolderToCopy(entry.folder(), name, tree_.purpose);
  if (!source) {
    // It is gone or no folder any more: what stands there now is copied as what it is.
    if (errno == ENOENT) return success();
    if (errno == ENOTDIR || errno == ELOOP) return copyEntry({name, DT_UNKNOWN}, share);
    return entry.failure("open", errno == EXDEV ? EBUSY : errno);
  }
  Level level;
  if (::fstat(source.get(), &level.status) != 0) return entry.failure("stat", errno);
  // A bind mount can show the growing copy inside its own source.
  if (isCopyRoot(level.status)) return success();
  const mode_t mode = newFolders_.modeToAskFor(level.status);
  Result<FileDescriptor> created = createFolder(name, mode);
  if (!created) return created.error();
  tree_.operation.addItems(1);
  level.inPlace = newFolders_.inPlace(level.status, mode);
  if (levels_.back().mayGiveAway(tree_.workers, tree_.operation, source_)) {
    tree_.workers.give({std::move(source), std::move(created).value(), source_.path() + "/" + name,
                        destination_.path() + "/" + name, level.status, share, level.inPlace});
    return success();
  }
  level.name = name;
  level.shareLeft = share;
  return enter(std::move(source), std::move(created).value(), std::move(level));
}

Status CopyWalk::enter(FileDescriptor source, FileDescriptor destination, Level level) {
  const std::string& name = level.name;
  if (Status entered = source_.enter(std::move(source), name); !entered) return entered;
  if (Status entered = destination_.enter(std::move(destination), name); !entered) return entered;
  levels_.push_back(std::move(level));
  return success();
}

Status CopyWalk::copyPiece() {
  Level& level = levels_.back();
  const Result<bool> found = level.readPiece(listing_, source_, tree_.operation);
  if (!found) return found.error();
  if (!found.value()) return checkMayBeEmptied();
  FolderListing::Entry entry;
  while (listing_.next(entry)) {
    level.hasEntries = true;
    if (Status copied = copyEntry(entry, level.shareOfEntry); !copied) return copied;
  }
  return success();
}

/// The source of a move is emptied afterwards.
Status CopyWalk::checkMayBeEmptied() const {
  if (tree_.purpose == CopyPurpose::Copy || !levels_.back().hasEntries) return success();
  if (::faccessat(source_.current(), ".", W_OK | X_OK, AT_EACCESS) == 0) return success();
  return SystemError{"empty", source_.path(), std::error_code(errno, std::generic_category())};
}

Status CopyWalk::copyEntry(const FolderListing::Entry& entry, double share) {
  if (entry.type == DT_DIR) {
    levels_.back().subfolders.push(entry.name);
    return success();
  }
  const FolderEntry source(source_.current(), entry.name, source_.path());
  if (tree_.workers.isStopped()) return source.failure("copy", ECANCELED);
  const Result<ItemCopy::Outcome> outcome =
      items_.copy(source, destinationEntry(entry.name), entry.type, &tree_.links, share);
  if (!outcome) return outcome.error();
  if (outcome.value() == ItemCopy::Outcome::IsFolder) levels_.back().subfolders.push(entry.name);
  return success();
}

Status CopyWalk::leave() {
  const Result<FileDescriptor> source = source_.leave();
  if (!source) return source.error();
  const Result<FileDescriptor> destination = destination_.leave();
  if (!destination) return destination.error();
  const Level level = std::move(levels_.back());
  levels_.pop_back();
  const bool isSubtree = levels_.empty();
  if (isSubtree && isRoot_) return success();
  const ItemReference subtree = {-1, {}, destination_.path()};
  const FolderEntry entry = isSubtree ? FolderEntry(subtree) : destinationEntry(level.name);
  return copyMetadata(source.value().get(), {destination.value().get(), entry}, level.status,
                      level.inPlace);
}

}  // namespace tavrin
