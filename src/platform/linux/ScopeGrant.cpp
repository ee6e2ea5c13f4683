#include "platform/linux/ScopeGrant.h"

#include <fcntl.h>
#include <sys/stat.h>

#include "foundation/PathString.h"
#include "platform/linux/BeneathFolder.h"
#include "platform/linux/SystemErrors.h"

namespace tavrin {

Result<std::shared_ptr<const ScopeGrant>> ScopeGrant::open(const std::string& realPath) {
  const FileDescriptor root(::open("/", O_PATH | O_DIRECTORY | O_CLOEXEC));
  if (!root) return systemError("open folder", "/");
  auto parent = openFolderBeneath(root.get(), deletingLastPathComponent(realPath).substr(1));
  if (!parent) return systemError("open", realPath, parent.error().code.value());

  const std::shared_ptr<ScopeGrant> grant(new ScopeGrant());
  grant->path_ = realPath;
  grant->parent_ = std::move(parent).value();
  const std::string name = realPath == "/" ? "." : lastPathComponent(realPath);
  grant->item_ =
      FileDescriptor(::openat(grant->parent(), name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
  if (!grant->item_) return systemError("open", realPath);
  struct stat status {};
  if (::fstat(grant->item(), &status) != 0) return systemError("examine", realPath);
  if (S_ISLNK(status.st_mode)) return systemError("open", realPath, ELOOP);
  grant->isFolder_ = S_ISDIR(status.st_mode);
  const auto identity = identityAt(grant->item(), "");
  if (!identity) return systemError("examine", realPath, identity.error().code.value());
  grant->identity_ = identity.value();
  return std::shared_ptr<const ScopeGrant>(grant);
}

bool ScopeGrant::standsAtItsPath() const {
  const auto present = identityAtPath(path_);
  return present && present.value() == identity_;
}

}  // namespace tavrin
