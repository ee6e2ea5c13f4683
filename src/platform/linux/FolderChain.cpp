#include "platform/linux/FolderChain.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace tavrin {
namespace {

constexpr std::size_t openLevels = 32;

SystemError failure(const char* operation, const std::string& path, int cause) {
  return {operation, path, std::error_code(cause, std::generic_category())};
}

}  // namespace

Status FolderChain::enter(FileDescriptor folder, const std::string& name) {
  const std::size_t outerPathLength = path_.size();
  if (!levels_.empty()) path_.append("/").append(name);
  levels_.push_back({std::move(folder), outerPathLength});
  return levels_.size() > openLevels ? closeOutermost() : success();
}

Status FolderChain::closeOutermost() {
  Level& level = levels_[levels_.size() - 1 - openLevels];
  if (!level.folder) return success();
  struct stat status = {};
  if (::fstat(level.folder.get(), &status) != 0) return failure("stat", path_, errno);
  level.device = status.st_dev;
  level.inode = status.st_ino;
  level.position = ::lseek(level.folder.get(), 0, SEEK_CUR);
  level.folder.reset();
  return success();
}

Status FolderChain::reopen(Level& outer, int inner) const {
  FileDescriptor folder(::openat(inner, "..", O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
  if (!folder) return failure("open the folder around", path_, errno);
  struct stat status = {};
  if (::fstat(folder.get(), &status) != 0) return failure("stat", path_, errno);
  if (status.st_dev != outer.device || status.st_ino != outer.inode) {
    return failure("find the folder around", path_, EBUSY);
  }
  if (outer.position > 0) ::lseek(folder.get(), outer.position, SEEK_SET);
  outer.folder = std::move(folder);
  return success();
}

Result<FileDescriptor> FolderChain::leave() {
  if (levels_.size() > 1 && !levels_[levels_.size() - 2].folder) {
    if (Status status = reopen(levels_[levels_.size() - 2], current()); !status) {
      return status.error();
    }
  }
  Level left = std::move(levels_.back());
  levels_.pop_back();
  path_.resize(left.outerPathLength);
  return std::move(left.folder);
}

}  // namespace tavrin
