#include "platform/linux/FileIdentity.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

#include "platform/linux/LongPath.h"
#include "platform/linux/SystemErrors.h"

namespace tavrin {

Result<FileIdentity> identityAt(int folder, const std::string& name) {
  constexpr std::int64_t nanosecondsPerSecond = 1'000'000'000;
  struct statx status {};
  const int flags = AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT | (name.empty() ? AT_EMPTY_PATH : 0);
  if (::statx(folder, name.c_str(), flags, STATX_INO | STATX_BTIME, &status) != 0) {
    return systemError("examine", name);
  }
  FileIdentity identity;
  identity.device = gnu_dev_makedev(status.stx_dev_major, status.stx_dev_minor);
  identity.inode = status.stx_ino;
  if ((status.stx_mask & STATX_BTIME) != 0) {
    identity.birthTime = status.stx_btime.tv_sec * nanosecondsPerSecond + status.stx_btime.tv_nsec;
  }
  return identity;
}

Result<FileIdentity> identityAtPath(const std::string& path) {
  const auto reached = reachPath(path);
  if (!reached) return reached.error();
  auto identity = identityAt(reached.value().base(), reached.value().rest);
  if (!identity) return systemError("examine", path, identity.error().code.value());
  return identity;
}

}  // namespace tavrin
