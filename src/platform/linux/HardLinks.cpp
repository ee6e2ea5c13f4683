#include "platform/linux/HardLinks.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "platform/linux/ItemNaming.h"

namespace tavrin {
namespace {

bool isSameState(const struct stat& status, const timespec& modified, off_t size) {
  return status.st_mtim.tv_sec == modified.tv_sec && status.st_mtim.tv_nsec == modified.tv_nsec &&
         status.st_size == size;
}

}  // namespace

Status HardLinks::ensureFolder() {
  if (folder_) return success();
  folderName_ = randomHiddenName("links");
  if (::mkdirat(root_, folderName_.c_str(), S_IRWXU) != 0) {
    return folderEntry().failure("create", errno);
  }
  folder_ = FileDescriptor(
      ::openat(root_, folderName_.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
  return folder_ ? success() : Status(folderEntry().failure("open", errno));
}

Result<bool> HardLinks::link(const struct stat& status, const FolderEntry& destination) {
  const auto found = copied_.find({status.st_dev, status.st_ino});
  if (found == copied_.end()) return false;
  Copied& copied = found->second;
  // An inode number may have got a new owner during the copy.
  if (!isSameState(status, copied.modified, copied.size)) return false;
  if (::linkat(folder_.get(), copied.name.c_str(), destination.folder(), destination.nameBytes(),
               0) != 0) {
    if (errno == EMLINK) return false;
    return destination.failure("link", errno);
  }
  if (--copied.namesLeft == 0) {
    ::unlinkat(folder_.get(), copied.name.c_str(), 0);
    copied_.erase(found);
  }
  return true;
}

Status HardLinks::remember(const struct stat& status, const FolderEntry& destination) {
  if (Status ready = ensureFolder(); !ready) return ready;
  Copied copied = {std::to_string(++lastNumber_), status.st_nlink - 1, status.st_mtim,
                   status.st_size};
  if (::linkat(destination.folder(), destination.nameBytes(), folder_.get(), copied.name.c_str(),
               0) != 0) {
    // A file system without hard links gets separate files.
    if (errno == EPERM || errno == EOPNOTSUPP || errno == EMLINK) return success();
    return destination.failure("link", errno);
  }
  Copied& kept = copied_[{status.st_dev, status.st_ino}];
  if (!kept.name.empty()) ::unlinkat(folder_.get(), kept.name.c_str(), 0);
  kept = std::move(copied);
  return success();
}

Status HardLinks::finish() {
  if (!folder_) return success();
  for (const auto& [identity, copied] : copied_) {
    if (::unlinkat(folder_.get(), copied.name.c_str(), 0) != 0) {
      return folderEntry().failure("empty", errno);
    }
  }
  copied_.clear();
  folder_.reset();
  if (::unlinkat(root_, folderName_.c_str(), AT_REMOVEDIR) == 0) return success();
  return folderEntry().failure("remove", errno);
}

}  // namespace tavrin
