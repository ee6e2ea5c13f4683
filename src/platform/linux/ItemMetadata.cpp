#include "platform/linux/ItemMetadata.h"

#include <fcntl.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {
namespace {

constexpr const char* accessList = "system.posix_acl_access";
constexpr const char* defaultList = "system.posix_acl_default";

/// An item whose attributes are reached by its handle, or by name below its folder's handle: the
/// kernel has no calls for attributes of a name in an open folder.
class AttributeHolder {
 public:
  explicit AttributeHolder(int descriptor) : descriptor_(descriptor) {}
  explicit AttributeHolder(const FolderEntry& entry)
      : path_("/proc/self/fd/" + std::to_string(entry.folder()) + "/" + entry.name()) {}

  ssize_t list(char* names, std::size_t size) const {
    return path_.empty() ? ::flistxattr(descriptor_, names, size)
                         : ::llistxattr(path_.c_str(), names, size);
  }
  ssize_t get(const char* name, char* value, std::size_t size) const {
    return path_.empty() ? ::fgetxattr(descriptor_, name, value, size)
                         : ::lgetxattr(path_.c_str(), name, value, size);
  }
  int set(const char* name, const char* value, std::size_t size) const {
    return path_.empty() ? ::fsetxattr(descriptor_, name, value, size, 0)
                         : ::lsetxattr(path_.c_str(), name, value, size, 0);
  }
  void remove(const char* name) const {
    if (path_.empty()) {
      ::fremovexattr(descriptor_, name);
    } else {
      ::lremovexattr(path_.c_str(), name);
    }
  }

 private:
  int descriptor_ = -1;
  std::string path_;
};

bool isUnknownToFileSystem(int cause) {
  return cause == EOPNOTSUPP || cause == ENOSYS;
}

/// Attributes of the system's own name spaces are for the privileged; the user's are not.
bool mayStayBehind(std::string_view name, int cause) {
  if (isUnknownToFileSystem(cause)) return true;
  const bool isPrivileged = name.starts_with("security.") || name.starts_with("trusted.");
  return isPrivileged && (cause == EPERM || cause == EACCES || cause == EINVAL);
}

bool mayKeepOtherOwner(int cause) {
  return cause == EPERM || cause == EINVAL || isUnknownToFileSystem(cause);
}

Status copyAttribute(const AttributeHolder& source, const AttributeHolder& destination,
                     const char* name, const FolderEntry& entry) {
  std::vector<char> value(256);
  ssize_t size = source.get(name, value.data(), value.size());
  while (size < 0 && errno == ERANGE) {
    const ssize_t needed = source.get(name, nullptr, 0);
    if (needed >= 0) value.resize(static_cast<std::size_t>(needed) + 1);
    size = source.get(name, value.data(), value.size());
  }
  if (size < 0) {
    if (errno == ENODATA || mayStayBehind(name, errno)) return success();
    return entry.failure("read an attribute for", errno);
  }
  if (destination.set(name, value.data(), static_cast<std::size_t>(size)) == 0) return success();
  if (mayStayBehind(name, errno)) return success();
  return entry.failure("set an attribute of", errno);
}

bool isAccessList(std::string_view name) {
  return name == accessList || name == defaultList;
}

/// Gives whether there were any.
Result<bool> copyAttributes(const AttributeHolder& source, const AttributeHolder& destination,
                            const FolderEntry& entry) {
  std::array<char, 1024> usual;
  std::vector<char> large;
  char* names = usual.data();
  ssize_t size = source.list(names, usual.size());
  while (size < 0 && errno == ERANGE) {
    const ssize_t needed = source.list(nullptr, 0);
    if (needed >= 0) large.resize(static_cast<std::size_t>(needed) + 1);
    names = large.data();
    size = source.list(names, large.size());
  }
  if (size < 0) {
    if (isUnknownToFileSystem(errno)) return false;
    return entry.failure("list attributes for", errno);
  }
  // An access control list may take away the right to set the others.
  for (const bool isForLists : {false, true}) {
    for (const char* name = names; name < names + size; name += std::strlen(name) + 1) {
      if (isAccessList(name) != isForLists) continue;
      if (Status status = copyAttribute(source, destination, name, entry); !status) {
        return status.error();
      }
    }
  }
  return size > 0;
}

/// The mode to set once `owned` tells whether owner and group are those of the source.
mode_t modeToSet(const struct stat& status, bool isOwned) {
  constexpr mode_t permissionBits = 07777;
  constexpr mode_t setIdBits = S_ISUID | S_ISGID;
  const mode_t mode = status.st_mode & permissionBits;
  return isOwned ? mode : mode & ~setIdBits;
}

template <typename ChangeOwner>
Result<bool> copyOwner(const struct stat& status, const FolderEntry& entry,
                       ChangeOwner changeOwner) {
  constexpr auto unchanged = static_cast<uid_t>(-1);
  if (changeOwner(status.st_uid, status.st_gid) == 0) return true;
  if (!mayKeepOtherOwner(errno)) return entry.failure("set the owner of", errno);
  if (changeOwner(unchanged, status.st_gid) == 0 || mayKeepOtherOwner(errno)) return false;
  return entry.failure("set the group of", errno);
}

}  // namespace

void dropInheritedAccess(int descriptor) {
  const AttributeHolder holder(descriptor);
  holder.remove(defaultList);
  holder.remove(accessList);
}

Status copyMetadata(int source, const OpenFile& destination, const struct stat& status,
                    MetadataInPlace inPlace) {
  const int descriptor = destination.descriptor;
  const FolderEntry& entry = destination.entry;
  // In this order: a change of owner takes set-id bits and capabilities away, an access control
  // list changes the mode, and a mode without write permission refuses attributes.
  const Result<bool> isOwned =
      inPlace.owner ? Result<bool>(true) : copyOwner(status, entry, [&](uid_t user, gid_t group) {
        return ::fchown(descriptor, user, group);
      });
  if (!isOwned) return isOwned.error();
  const Result<bool> hasAttributes =
      copyAttributes(AttributeHolder(source), AttributeHolder(descriptor), entry);
  if (!hasAttributes) return hasAttributes.error();
  const bool isModeInPlace = inPlace.mode && inPlace.owner && !hasAttributes.value();
  if (!isModeInPlace && ::fchmod(descriptor, modeToSet(status, isOwned.value())) != 0 &&
      !isUnknownToFileSystem(errno)) {
    return entry.failure("set the mode of", errno);
  }
  const std::array<timespec, 2> times = {status.st_atim, status.st_mtim};
  if (::futimens(descriptor, times.data()) != 0) return entry.failure("set the times of", errno);
  return success();
}

Status copyMetadataByName(const FolderEntry& source, const FolderEntry& destination,
                          const struct stat& status) {
  const int folder = destination.folder();
  const char* name = destination.nameBytes();
  const AttributeHolder attributes(destination);
  attributes.remove(accessList);
  const Result<bool> isOwned = copyOwner(status, destination, [&](uid_t user, gid_t group) {
    return ::fchownat(folder, name, user, group, AT_SYMLINK_NOFOLLOW);
  });
  if (!isOwned) return isOwned.error();
  const Result<bool> copied = copyAttributes(AttributeHolder(source), attributes, destination);
  if (!copied) return copied.error();
  if (!S_ISLNK(status.st_mode) &&
      ::fchmodat(folder, name, modeToSet(status, isOwned.value()), AT_SYMLINK_NOFOLLOW) != 0) {
    return destination.failure("set the mode of", errno);
  }
  const std::array<timespec, 2> times = {status.st_atim, status.st_mtim};
  if (::utimensat(folder, name, times.data(), AT_SYMLINK_NOFOLLOW) != 0) {
    return destination.failure("set the times of", errno);
  }
  return success();
}

}  // namespace tavrin
