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

FileDescriptor openAgain(const FileDescriptor& folder) {
  return folder ? openFolder(folder.get(), ".") : FileDescriptor();
}

/// The folders of a removal, open from before it began: what stands at their names later may be
/// something else.
class FolderRemoval {
 public:
  FolderRemoval(const RemovedTree& tree, const ItemReference& item, const ItemReference* copy)
      : tree_(tree),
        item_(item),
        copy_(copy),
        folder_(openFolderToEmpty(FolderEntry(item), tree.rights)) {
    if (copy != nullptr) copyFolder_ = openFolder(copy->parentDescriptor, copy->name);
  }

  bool isOpen() const { return folder_ && (copy_ == nullptr || copyFolder_); }

  /// Removes as far as several threads can, and then what is left.
  Status run() {
    std::atomic<bool> isRemoved = false;
    Status removed = runWithWorkers(isRemoved);
    return removed && !isRemoved ? RemovalWalk(tree_).run(root(0)) : removed;
  }

 private:
  Status runWithWorkers(std::atomic<bool>& isRemoved) {
    TreeWorkers workers(tree_.operation);
    RemovedTree tree = tree_;
    tree.workers = &workers;
    tree.isRootRemoved = &isRemoved;
    return workers.run(root(1), [&tree] {
      return [walk = std::make_shared<RemovalWalk>(tree)](Subtree subtree) {
        return walk->run(std::move(subtree));
      };
    });
  }

  Subtree root(double share) const {
    Subtree root = {openAgain(folder_), openAgain(copyFolder_), item_.path,
                    copy_ != nullptr ? copy_->path : std::string()};
    root.parent = FileDescriptor(::fcntl(item_.parentDescriptor, F_DUPFD_CLOEXEC, 0));
    root.name = item_.name;
    root.isRoot = true;
    root.share = share;
    return root;
  }

  const RemovedTree& tree_;
  const ItemReference& item_;
  const ItemReference* copy_;
  FileDescriptor folder_;
  FileDescriptor copyFolder_;
};

Status removeTree(const RemovedTree& tree, const ItemReference& item, const ItemReference* copy) {
  FolderRemoval removal(tree, item, copy);
  return removal.isOpen() ? removal.run() : RemovalWalk(tree).removeItem(item, copy);
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
