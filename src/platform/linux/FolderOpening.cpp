#include "platform/linux/FolderOpening.h"

#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>

namespace tavrin {
namespace {

constexpr int folderFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

FileDescriptor openResolved(int parent, const std::string& path, int flags, __u64 resolve) {
  open_how how = {};
  how.flags = static_cast<__u64>(flags);
  how.resolve = resolve;
  long descriptor = 0;
  do {
    descriptor = ::syscall(SYS_openat2, parent, path.c_str(), &how, sizeof(how));
  } while (descriptor < 0 && (errno == EINTR || errno == EAGAIN));
  return FileDescriptor(static_cast<int>(descriptor));
}

bool isSame(const struct stat& left, const struct stat& right) {
  return left.st_dev == right.st_dev && left.st_ino == right.st_ino;
}

}  // namespace

FileDescriptor openFolder(int parent, const std::string& name) {
  return FileDescriptor(::openat(parent, name.c_str(), folderFlags));
}

FileDescriptor openFolderOfSameMount(int parent, const std::string& name) {
  return openResolved(
      parent, name, folderFlags,
      RESOLVE_BENEATH | RESOLVE_NO_XDEV | RESOLVE_NO_MAGICLINKS | RESOLVE_NO_SYMLINKS);
}

FileDescriptor openFolderAtPath(const std::string& path) {
  constexpr std::size_t longestPiece = 3000;
  FileDescriptor folder(::open("/", O_PATH | O_DIRECTORY | O_CLOEXEC));
  std::size_t position = path.find_first_not_of('/');
  while (folder && position != std::string::npos) {
    std::size_t end = path.size();
    if (end - position > longestPiece) end = path.rfind('/', position + longestPiece);
    if (end == std::string::npos || end <= position) {
      errno = ENAMETOOLONG;
      return {};
    }
    folder = openResolved(folder.get(), path.substr(position, end - position),
                          O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC,
                          RESOLVE_BENEATH | RESOLVE_NO_MAGICLINKS | RESOLVE_NO_SYMLINKS);
    position = path.find_first_not_of('/', end);
  }
  return folder;
}

bool isFolderAtOrBelow(int folder, const struct stat& status) {
  struct stat inner = {};
  if (::fstat(folder, &inner) != 0) return false;
  FileDescriptor current;
  while (!isSame(inner, status)) {
    const int from = current ? current.get() : folder;
    FileDescriptor outer(::openat(from, "..", O_PATH | O_DIRECTORY | O_CLOEXEC));
    struct stat around = {};
    if (!outer || ::fstat(outer.get(), &around) != 0 || isSame(around, inner)) return false;
    inner = around;
    current = std::move(outer);
  }
  return true;
}

}  // namespace tavrin
