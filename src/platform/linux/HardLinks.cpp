#include "platform/linux/HardLinks.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>

#include "platform/linux/FolderListing.h"
#include "platform/linux/ItemNaming.h"

namespace tavrin {
namespace {

std::string keptName(const struct stat& status) {
  std::array<char, 40> name = {};
  std::snprintf(name.data(), name.size(), "%llx-%llx",
                static_cast<unsigned long long>(status.st_dev),
                static_cast<unsigned long long>(status.st_ino));
  return name.data();
}

/// Whether a copy has the state of its source now; some file systems cut times, to whole seconds at
/// most.
bool isSameState(const struct stat& source, const struct stat& copy) {
  return source.st_size == copy.st_size && source.st_mtim.tv_sec == copy.st_mtim.tv_sec &&
         copy.st_mtim.tv_nsec <= source.st_mtim.tv_nsec;
}

/// A file system without hard links, or an item that has all it may have, gets separate items.
bool hasNoMoreLinks(int cause) {
  return cause == EPERM || cause == EOPNOTSUPP || cause == EMLINK;
}

}  // namespace

Status HardLinks::ensureFolder() {
  if (hasFolder_) return success();
  const std::lock_guard lock(mutex_);
  if (hasFolder_) return success();
  folderName_ = randomHiddenName("links");
  if (::mkdirat(root_, folderName_.c_str(), S_IRWXU) != 0) {
    return folderEntry().failure("create", errno);
  }
  folder_ = FileDescriptor(
      ::openat(root_, folderName_.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
  if (!folder_) return folderEntry().failure("open", errno);
  hasFolder_ = true;
  return success();
}

Result<bool> HardLinks::linkKept(const std::string& name, const struct stat& status,
                                 const FolderEntry& destination) {
  struct stat kept = {};
  if (::fstatat(folder_.get(), name.c_str(), &kept, AT_SYMLINK_NOFOLLOW) != 0) return false;
  // An inode number may have got a new owner during the copy.
  if (!isSameState(status, kept)) return false;
  if (::linkat(folder_.get(), name.c_str(), destination.folder(), destination.nameBytes(), 0) !=
      0) {
    if (errno == ENOENT || hasNoMoreLinks(errno)) return false;
    return destination.failure("link", errno);
  }
  if (kept.st_nlink >= status.st_nlink) ::unlinkat(folder_.get(), name.c_str(), 0);
  return true;
}

Result<bool> HardLinks::link(const struct stat& status, const FolderEntry& destination) {
  if (!hasFolder_) return false;
  return linkKept(keptName(status), status, destination);
}

Status HardLinks::remember(const struct stat& status, const FolderEntry& destination) {
  if (Status ready = ensureFolder(); !ready) return ready;
  const std::string name = keptName(status);
  if (::linkat(destination.folder(), destination.nameBytes(), folder_.get(), name.c_str(), 0) ==
          0 ||
      hasNoMoreLinks(errno)) {
    return success();
  }
  if (errno != EEXIST) return destination.failure("link", errno);
  return rememberAgain(name, status, destination);
}

Status HardLinks::rememberAgain(const std::string& name, const struct stat& status,
                                const FolderEntry& destination) {
  const std::string spare = randomHiddenName("link");
  const Result<bool> isKept = linkKept(name, status, {folder_.get(), spare, rootPath_});
  if (!isKept) return isKept.error();
  if (isKept.value()) {
    if (::renameat(folder_.get(), spare.c_str(), destination.folder(), destination.nameBytes()) ==
        0) {
      return success();
    }
    return destination.failure("link", errno);
  }
  // What is kept is an older state.
  if (::linkat(destination.folder(), destination.nameBytes(), folder_.get(), spare.c_str(), 0) ==
          0 &&
      ::renameat(folder_.get(), spare.c_str(), folder_.get(), name.c_str()) == 0) {
    return success();
  }
  return hasNoMoreLinks(errno) ? success() : Status(destination.failure("link", errno));
}

Status HardLinks::removeKept() {
  FolderListing listing;
  FolderListing::Entry entry;
  const FileDescriptor folder(
      ::openat(folder_.get(), ".", O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
  if (!folder) return folderEntry().failure("open", errno);
  while (true) {
    const Result<bool> found = listing.readPiece(folder.get(), rootPath_);
    if (!found) return found.error();
    if (!found.value()) return success();
    while (listing.next(entry)) {
      if (::unlinkat(folder_.get(), entry.name.c_str(), 0) != 0) {
        return folderEntry().failure("empty", errno);
      }
    }
  }
}

Status HardLinks::finish() {
  if (!hasFolder_) return success();
  constexpr int mostListings = 8;
  for (int listing = 0; listing < mostListings; ++listing) {
    if (Status removed = removeKept(); !removed) return removed;
    if (::unlinkat(root_, folderName_.c_str(), AT_REMOVEDIR) == 0) return success();
    if (errno != ENOTEMPTY && errno != EEXIST) break;
  }
  return folderEntry().failure("remove", errno);
}

}  // namespace tavrin
