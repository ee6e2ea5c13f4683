#include "platform/linux/LongPath.h"

#include <fcntl.h>

#include <climits>
#include <utility>

#include "platform/linux/SystemErrors.h"

namespace tavrin {

namespace {

/// How many bytes of a path that is too long for one call the next call can take: up to a
/// separator.
std::size_t lengthOfPiece(const std::string& path) {
  const auto separator = path.rfind('/', PATH_MAX - 2);
  return separator == std::string::npos ? 0 : separator;
}

}  // namespace

int ReachedPath::base() const {
  return folder ? folder.get() : AT_FDCWD;
}

Result<ReachedPath> reachPath(const std::string& path) {
  if (!path.starts_with('/') || path.find('\0') != std::string::npos) {
    return systemError("reach", path, std::errc::invalid_argument);
  }
  ReachedPath reached{FileDescriptor(), path};
  while (reached.rest.size() >= PATH_MAX) {
    const std::size_t length = lengthOfPiece(reached.rest);
    const auto next = reached.rest.find_first_not_of('/', length);
    if (length == 0 || next == std::string::npos) {
      return systemError("reach", path, std::errc::filename_too_long);
    }
    const std::string piece = reached.rest.substr(0, length);
    FileDescriptor folder(
        ::openat(reached.base(), piece.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    if (!folder) return systemError("reach", path);
    reached.folder = std::move(folder);
    reached.rest.erase(0, next);
  }
  return reached;
}

Result<struct stat> statusAtPath(const std::string& path, LastLink lastLink) {
  const auto reached = reachPath(path);
  if (!reached) return reached.error();
  struct stat status {};
  const int flags = lastLink == LastLink::Keep ? AT_SYMLINK_NOFOLLOW : 0;
  if (::fstatat(reached.value().base(), reached.value().rest.c_str(), &status, flags) != 0) {
    return systemError("examine", path);
  }
  return status;
}

}  // namespace tavrin
