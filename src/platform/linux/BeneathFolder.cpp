#include "platform/linux/BeneathFolder.h"

#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <climits>
#include <utility>

#include "foundation/PathString.h"
#include "platform/linux/SystemErrors.h"

namespace tavrin {

namespace {

constexpr int folderFlags = O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
// The kernel answers EAGAIN while something is renamed anywhere; it gives up only when that goes
// on.
constexpr int mostAttempts = 1000;

int openWithKernelGuard(int folder, const std::string& path) {
  open_how how{};
  how.flags = static_cast<unsigned>(folderFlags);
  how.resolve = RESOLVE_BENEATH | RESOLVE_NO_MAGICLINKS | RESOLVE_NO_SYMLINKS;
  long descriptor = -1;
  for (int attempt = 0; attempt < mostAttempts; ++attempt) {
    descriptor = ::syscall(SYS_openat2, folder, path.c_str(), &how, sizeof how);
    if (descriptor >= 0 || (errno != EAGAIN && errno != EINTR)) break;
  }
  return static_cast<int>(descriptor);
}

int openByComponents(int folder, const std::string& path) {
  FileDescriptor current(::openat(folder, ".", folderFlags));
  for (const std::string& component : pathComponents(path)) {
    if (component == ".." || component == "/") {
      errno = EXDEV;
      return -1;
    }
    if (!current) return -1;
    current = FileDescriptor(::openat(current.get(), component.c_str(), folderFlags));
  }
  return current.release();
}

/// Opens a path that is short enough for a system call.
FileDescriptor openPiece(int folder, const std::string& path) {
  const int descriptor = openWithKernelGuard(folder, path);
  if (descriptor >= 0 || errno != ENOSYS) return FileDescriptor(descriptor);
  return FileDescriptor(openByComponents(folder, path));
}

std::string takePiece(std::string& path) {
  std::size_t length = path.size();
  if (length >= PATH_MAX) {
    const auto separator = path.rfind('/', PATH_MAX - 2);
    if (separator != std::string::npos && separator > 0) length = separator;
  }
  std::string piece = path.substr(0, length);
  path.erase(0, path.find_first_not_of('/', length));
  return piece;
}

}  // namespace

Result<FileDescriptor> openFolderBeneath(int folder, const std::string& relativePath) {
  std::string rest = relativePath.empty() ? "." : relativePath;
  FileDescriptor current;
  while (!rest.empty()) {
    FileDescriptor next = openPiece(current ? current.get() : folder, takePiece(rest));
    if (!next) return systemError("open folder", relativePath);
    current = std::move(next);
  }
  return current;
}

}  // namespace tavrin
