#include "platform/linux/TreeRemoval.h"

#include <unistd.h>

#include <cerrno>
#include <string>
#include <system_error>

#include "platform/linux/PartialRemoval.h"
#include "platform/linux/RemovalWalk.h"

namespace tavrin {

Status removeItem(const ItemReference& item) {
  // Most items are no folders, and then this is all.
  if (::unlinkat(item.parentDescriptor, item.name.c_str(), 0) == 0) return success();
  return RemovalWalk(item, RemovalWalk::FolderRights::Respect).run();
}

Status removeCopiedItem(const ItemReference& source, const ItemReference& copy,
                        TimeGranularity granularity) {
  RemovalWalk walk(source, RemovalWalk::FolderRights::Respect);
  walk.keepUnlessHeldBy(copy, granularity);
  return walk.run();
}

Status removePartialItem(const ItemReference& destination, const std::string& partialName) {
  const ItemReference partial = {destination.parentDescriptor, partialName, destination.path};
  Status removed = RemovalWalk(partial, RemovalWalk::FolderRights::Take).run();
  if (!removed && removed.error().code == std::errc::no_such_file_or_directory) return success();
  return removed;
}

}  // namespace tavrin
