#include "platform/linux/ItemRedraw.h"

#include <fcntl.h>
#include <sys/stat.h>

#include "platform/linux/FileDescriptor.h"

namespace tavrin {

void redrawItem(int folder, const std::string& name) {
  const FileDescriptor item(::openat(folder, name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
  struct stat status {};
  if (!item || ::fstat(item.get(), &status) != 0) return;
  const bool isPlain = (status.st_mode & (S_ISUID | S_ISGID | S_ISVTX)) == 0;
  if (!isPlain || !(S_ISREG(status.st_mode) || S_ISDIR(status.st_mode))) return;
  const std::string path = "/proc/self/fd/" + std::to_string(item.get());
  ::chmod(path.c_str(), status.st_mode & ACCESSPERMS);
}

}  // namespace tavrin
