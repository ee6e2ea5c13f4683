#include "platform/linux/TreeRemoval.h"

#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <memory>
#include <string>
#include <system_error>
#include <utility>

#include "platform/linux/FolderOpening.h"
#include "platform/linux/PartialRemoval.h"
#include "platform/linux/RemovalWalk.h"
#include "platform/linux/TreeWorkers.h"

namespace tavrin {
namespace {

/// Removes a folder as far as several threads can. Whether it is gone is in `isRootRemoved`.
Status removeFolder(RemovedTree tree, const ItemReference& item, const ItemReference* copy,
                    std::atomic<bool>& isRootRemoved) {
  FileDescriptor folder = openFolderToEmpty(FolderEntry(item), tree.rights);
  FileDescriptor parent(::fcntl(item.parentDescriptor, F_DUPFD_CLOEXEC, 0));
  FileDescriptor copyFolder;
  if (copy != nullptr) copyFolder = openFolder(copy->parentDescriptor, copy->name);
  if (!folder || !parent || (copy != nullptr && !copyFolder)) return success();
  TreeWorkers workers(tree.operation);
  tree.workers = &workers;
  tree.isRootRemoved = &isRootRemoved;
  Subtree root = {std::move(folder), std::move(copyFolder), item.path,
                  copy != nullptr ? copy->path : std::string()};
  root.parent = std::move(parent);
  root.name = item.name;
  root.isRoot = true;
  return workers.run(std::move(root), [&tree] {
    return [walk = std::make_shared<RemovalWalk>(tree)](Subtree subtree) {
      return walk->run(std::move(subtree));
    };
  });
}

Status removeTree(const RemovedTree& tree, const ItemReference& item, const ItemReference* copy) {
  std::atomic<bool> isRootRemoved = false;
  Status removed = removeFolder(tree, item, copy, isRootRemoved);
  if (!removed || isRootRemoved) return removed;
  return RemovalWalk(tree).removeItem(item, copy);
}

}  // namespace

Status removeItem(const ItemReference& item, FileOperation& operation) {
  // Most items are no folders, and then this is all.
  if (::unlinkat(item.parentDescriptor, item.name.c_str(), 0) == 0) {
    operation.addItems(1);
    return success();
  }
  return operation.runLongPart([&] {
    return removeTree({FolderRights::Respect, operation}, item, nullptr);
  });
}

Status removeCopiedItem(const ItemReference& source, const ItemReference& copy,
                        TimeGranularity granularity, FileOperation& operation) {
  return removeTree({FolderRights::Respect, operation, nullptr, granularity}, source, &copy);
}

Status removePartialItem(const ItemReference& destination, const std::string& partialName,
                         FileOperation& operation) {
  const ItemReference partial = {destination.parentDescriptor, partialName, destination.path};
  Status removed = removeTree({FolderRights::Take, operation}, partial, nullptr);
  if (!removed && removed.error().code == std::errc::no_such_file_or_directory) return success();
  return removed;
}

}  // namespace tavrin
