#include "platform/linux/PrivateFolder.h"

#include <fcntl.h>
#include <sys/stat.h>

#include "foundation/PathString.h"
#include "platform/linux/LongPath.h"
#include "platform/linux/SystemErrors.h"

namespace tavrin {

namespace {

Status makeFolders(const std::string& path) {
  if (statusAtPath(path, LastLink::Follow)) return success();
  if (path != "/") {
    auto parent = makeFolders(deletingLastPathComponent(path));
    if (!parent) return parent;
  }
  const auto reached = reachPath(path);
  if (!reached) return reached.error();
  const int made = ::mkdirat(reached.value().base(), reached.value().rest.c_str(), S_IRWXU);
  if (made != 0 && errno != EEXIST) return systemError("create folder", path);
  return success();
}

}  // namespace

Result<FileDescriptor> openPrivateFolder(const std::string& path) {
  const auto made = makeFolders(path);
  if (!made) return made.error();
  const auto reached = reachPath(path);
  if (!reached) return reached.error();
  FileDescriptor folder(::openat(reached.value().base(), reached.value().rest.c_str(),
                                 O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!folder) return systemError("open folder", path);
  return folder;
}

}  // namespace tavrin
