#include "platform/linux/TreeMove.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "foundation/PathString.h"
#include "platform/linux/FolderEntry.h"
#include "platform/linux/FolderOpening.h"
#include "platform/linux/ItemNaming.h"
#include "platform/linux/PartialCopy.h"
#include "platform/linux/PartialItems.h"
#include "platform/linux/TreeRemoval.h"

namespace tavrin {
namespace {

bool isIntoItself(const ItemReference& source, const ItemReference& destination) {
  struct stat status = {};
  return ::fstatat(source.parentDescriptor, source.name.c_str(), &status, AT_SYMLINK_NOFOLLOW) ==
             0 &&
         S_ISDIR(status.st_mode) && isFolderAtOrBelow(destination.parentDescriptor, status);
}

/// Removes the source once its copy is safe. It goes under a hidden name first, so that no program
/// that knows its path can change a file between the look at it and its removal. What changed
/// before, and all of it after a failure, has the old name again.
Status removeSource(const ItemReference& source, const ItemReference& copy,
                    TimeGranularity granularity, const PartialItems& partials) {
  // From here on the move is completed, cancelled or not.
  FileOperation completion;
  Result<PartialItem> aside = partials.beginSettingAside(source);
  const int folder = source.parentDescriptor;
  const std::string name = aside ? aside.value().name() : std::string();
  // A full disk may have no room for the record: moving away from it must work nevertheless.
  if (!aside || renameToFreeName(folder, source.name, folder, name)) {
    return removeCopiedItem(source, copy, granularity, completion);
  }
  const ItemReference hidden = {folder, name, source.path};
  Status removed = removeCopiedItem(hidden, copy, granularity, completion);
  if (removed) return removed;
  std::string given = source.name;
  const std::error_code cause = renameToNameOrNext(folder, name, given);
  if (cause && cause != std::errc::no_such_file_or_directory) aside.value().keepRecord();
  if (cause || given == source.name) return removed;
  const std::string path = appendingPathComponent(deletingLastPathComponent(source.path), given);
  return SystemError{"keep under another name what changed during the copy", path,
                     removed.error().code};
}

Status copyThenRemove(PartialCopy& copy, const ItemReference& source,
                      const ItemReference& destination, const PartialItems& partials) {
  if (Status built = copy.build(); !built) return built;
  const Result<TimeGranularity> granularity = copy.timeGranularity();
  if (!granularity) return granularity.error();
  if (Status durable = copy.makeDurable(); !durable) return durable;
  if (Status named = copy.giveName(); !named) return named;
  // Leftovers of a power cut are removed at the next start: the source must not go before the copy
  // has its name for good.
  if (Status durable = copy.makeNameDurable(); !durable) return durable;
  return removeSource(source, destination, granularity.value(), partials);
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
    Status moved = copyThenRemove(copy, source, destination, partials);
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
