#include "platform/linux/FolderCopy.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <memory>

#include "platform/linux/CopyWalk.h"
#include "platform/linux/FolderOpening.h"
#include "platform/linux/ItemMetadata.h"
#include "platform/linux/TreeWorkers.h"

namespace tavrin {

FolderCopy::FolderCopy(const ItemReference& source, const ItemReference& destination,
                       const std::string& partialName, CopyPurpose purpose,
                       FileOperation& operation)
    : sourceItem_(source),
      destinationItem_(destination),
      partialName_(partialName),
      purpose_(purpose),
      operation_(operation) {}

Status FolderCopy::run() {
  FileDescriptor source =
      openFolderToCopy(sourceItem_.parentDescriptor, sourceItem_.name, purpose_);
  if (!source) return FolderEntry(sourceItem_).failure("open", errno == EXDEV ? EBUSY : errno);
  if (::fstat(source.get(), &sourceStatus_) != 0) {
    return FolderEntry(sourceItem_).failure("stat", errno);
  }
  if (Status created = createRoot(); !created) return created;
  links_.emplace(root_.get(), destinationItem_.path);
  const int sourceRoot = source.get();
  // Read on after the walk has used up its own.
  const FileDescriptor kept(::fcntl(sourceRoot, F_DUPFD_CLOEXEC, 0));
  if (!kept) return FolderEntry(sourceItem_).failure("open", errno);
  if (Status copied = copyContents(std::move(source)); !copied) return copied;
  if (Status finished = links_->finish(); !finished) return finished;
  const FolderEntry entry(destinationItem_, partialName_);
  return copyMetadata(kept.get(), {root_.get(), entry}, sourceStatus_, {});
}

Status FolderCopy::createRoot() {
  const FolderEntry entry(destinationItem_, partialName_);
  const int folder = destinationItem_.parentDescriptor;
  if (::mkdirat(folder, partialName_.c_str(), S_IRWXU) != 0) return entry.failure("create", errno);
  root_ = openFolder(folder, partialName_);
  if (!root_) return entry.failure("open", errno);
  // Without a default list here nothing inside inherits one either.
  dropInheritedAccess(root_.get());
  if (::fchmod(root_.get(), S_IRWXU) != 0) return entry.failure("set the mode of", errno);
  if (::fstat(root_.get(), &rootStatus_) != 0) return entry.failure("stat", errno);
  return success();
}

Status FolderCopy::copyContents(FileDescriptor source) {
  FileDescriptor destination(::fcntl(root_.get(), F_DUPFD_CLOEXEC, 0));
  if (!destination) return FolderEntry(destinationItem_, partialName_).failure("open", errno);
  operation_.addItems(1);
  TreeWorkers workers(operation_);
  const CopiedTree tree = {purpose_, rootStatus_, *links_, operation_, workers};
  Subtree root = {std::move(source),     std::move(destination), sourceItem_.path,
                  destinationItem_.path, sourceStatus_,          1};
  root.isRoot = true;
  return workers.run(std::move(root), [&tree] {
    return [walk = std::make_shared<CopyWalk>(tree)](Subtree subtree) {
      return walk->run(std::move(subtree));
    };
  });
}

}  // namespace tavrin
