#include "platform/linux/FileReplacement.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <optional>

#include "platform/linux/FileCreation.h"
#include "platform/linux/FolderEntry.h"

namespace tavrin {
namespace {

/// The file that is to be replaced; nothing when the name is free.
Result<std::optional<struct stat>> replaceableFile(const FolderEntry& entry) {
  struct stat status = {};
  if (::fstatat(entry.folder(), entry.nameBytes(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
    if (errno == ENOENT) return std::optional<struct stat>();
    return entry.failure("examine", errno);
  }
  if (S_ISLNK(status.st_mode)) return entry.failure("replace", ELOOP);
  if (!S_ISREG(status.st_mode)) return entry.failure("replace", EINVAL);
  if (::faccessat(entry.folder(), entry.nameBytes(), W_OK, AT_EACCESS) != 0) {
    return entry.failure("replace", errno);
  }
  return std::optional(status);
}

}  // namespace

Status replaceFile(const ItemReference& item, const PropertyList::Data& contents,
                   const PartialItems& partials) {
  const auto replaced = replaceableFile(FolderEntry(item));
  if (!replaced) return replaced.error();
  return createOrReplaceFile(item, contents, partials, replaced.value());
}

}  // namespace tavrin
