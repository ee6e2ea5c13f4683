#include "platform/linux/TreeMove.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "platform/linux/FolderEntry.h"
#include "platform/linux/FolderOpening.h"
#include "platform/linux/ItemNaming.h"
#include "platform/linux/PartialCopy.h"
#include "platform/linux/TreeRemoval.h"

namespace tavrin {
namespace {

bool isIntoItself(const ItemReference& source, const ItemReference& destination) {
  struct stat status = {};
  return ::fstatat(source.parentDescriptor, source.name.c_str(), &status, AT_SYMLINK_NOFOLLOW) ==
             0 &&
         S_ISDIR(status.st_mode) && isFolderAtOrBelow(destination.parentDescriptor, status);
}

Status copyThenRemove(PartialCopy& copy, const ItemReference& source,
                      const ItemReference& destination) {
  if (Status built = copy.build(); !built) return built;
  const Result<TimeGranularity> granularity = copy.timeGranularity();
  if (!granularity) return granularity.error();
  if (Status durable = copy.makeDurable(); !durable) return durable;
  if (Status named = copy.giveName(); !named) return named;
  // Leftovers of a power cut are removed at the next start: the source must not go before the copy
  // has its name for good.
  if (Status durable = copy.makeNameDurable(); !durable) return durable;
  // From here on the move is completed, cancelled or not.
  FileOperation completion;
  return removeCopiedItem(source, destination, granularity.value(), completion);
}

Status moveAcrossFileSystems(const ItemReference& source, const ItemReference& destination,
                             PartialItems& partials, FileOperation& operation) {
  if (::faccessat(source.parentDescriptor, ".", W_OK | X_OK, AT_EACCESS) != 0) {
    return FolderEntry(source).failure("remove", errno);
  }
  PartialCopy copy(source, destination, partials, CopyPurpose::Move, operation);
  if (Status examined = copy.examine(); !examined) return examined;
  // To be durable takes its time for small files too.
  return operation.runLongPart([&] {
    Status moved = copyThenRemove(copy, source, destination);
    copy.discard();
    return moved;
  });
}

}  // namespace

Status moveItem(const ItemReference& source, const ItemReference& destination,
                PartialItems& partials, FileOperation& operation) {
  if (::renameat2(source.parentDescriptor, source.name.c_str(), destination.parentDescriptor,
                  destination.name.c_str(), RENAME_NOREPLACE) == 0) {
    return success();
  }
  int cause = errno;
  if (cause == EINVAL && isIntoItself(source, destination)) {
    return FolderEntry(destination).failure("move a folder into itself", EINVAL);
  }
  if (cause == EINVAL || cause == ENOSYS) {
    cause = renameToFreeName(source.parentDescriptor, source.name, destination.parentDescriptor,
                             destination.name)
                .value();
    if (cause == 0) return success();
  }
  if (cause == EXDEV) return moveAcrossFileSystems(source, destination, partials, operation);
  const bool isDestinationsFault = cause == EEXIST || cause == ENOSPC || cause == ENAMETOOLONG;
  return FolderEntry(isDestinationsFault ? destination : source).failure("move", cause);
}

}  // namespace tavrin
