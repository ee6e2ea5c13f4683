#include "platform/linux/FolderCopy.h"

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "platform/linux/FolderOpening.h"
#include "platform/linux/ItemMetadata.h"

namespace tavrin {

FolderCopy::FolderCopy(const ItemReference& source, const ItemReference& destination,
                       const std::string& partialName, CopyPurpose purpose)
    : sourceItem_(source),
      destinationItem_(destination),
      partialName_(partialName),
      purpose_(purpose),
      source_(source.path),
      destination_(destination.path) {}

Status FolderCopy::run() {
  FileDescriptor source = openSubfolder(sourceItem_.parentDescriptor, sourceItem_.name);
  if (!source) return FolderEntry(sourceItem_).failure("open", errno == EXDEV ? EBUSY : errno);
  if (::fstat(source.get(), &sourceStatus_) != 0) {
    return FolderEntry(sourceItem_).failure("stat", errno);
  }
  if (Status created = createRoot(); !created) return created;
  const FolderEntry entry(destinationItem_, partialName_);
  FileDescriptor destination = openFolder(destinationItem_.parentDescriptor, partialName_);
  if (!destination) return entry.failure("open", errno);
  links_.emplace(root_.get(), destinationItem_.path);
  Status entered =
      enter(std::move(source), std::move(destination), {sourceItem_.name, sourceStatus_, {}});
  return entered ? walk() : entered;
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

Status FolderCopy::walk() {
  while (!levels_.empty()) {
    Level& level = levels_.back();
    if (level.subfolders.empty()) {
      if (Status left = leave(); !left) return left;
      continue;
    }
    const std::string name = std::move(level.subfolders.back());
    level.subfolders.pop_back();
    if (Status entered = enterSubfolder(name); !entered) return entered;
  }
  return success();
}

FileDescriptor FolderCopy::openSubfolder(int folder, const std::string& name) const {
  return purpose_ == CopyPurpose::Move ? openFolderOfSameMount(folder, name)
                                       : openFolder(folder, name);
}

bool FolderCopy::isOwnRoot(const struct stat& status) const {
  return status.st_dev == rootStatus_.st_dev && status.st_ino == rootStatus_.st_ino;
}

FolderEntry FolderCopy::destinationEntry(const std::string& name) const {
  return {destination_.current(), name, destination_.path()};
}

Status FolderCopy::enterSubfolder(const std::string& name) {
  FileDescriptor source = openSubfolder(source_.current(), name);
  if (!source) {
    // It is gone or no folder any more: what stands there now is copied as what it is.
    if (errno == ENOENT) return success();
    if (errno == ENOTDIR || errno == ELOOP) return copyEntry({name, DT_UNKNOWN});
    return FolderEntry(source_.current(), name, source_.path())
        .failure("open", errno == EXDEV ? EBUSY : errno);
  }
  struct stat status = {};
  if (::fstat(source.get(), &status) != 0) {
    return FolderEntry(source_.current(), name, source_.path()).failure("stat", errno);
  }
  // A bind mount can show the growing copy inside its own source.
  if (isOwnRoot(status)) return success();
  const FolderEntry entry = destinationEntry(name);
  if (::mkdirat(entry.folder(), entry.nameBytes(), S_IRWXU) != 0) {
    return entry.failure("create", errno);
  }
  FileDescriptor destination = openFolder(entry.folder(), name);
  if (!destination) return entry.failure("open", errno);
  return enter(std::move(source), std::move(destination), {name, status, {}});
}

Status FolderCopy::enter(FileDescriptor source, FileDescriptor destination, Level level) {
  const std::string& name = level.name;
  if (Status entered = source_.enter(std::move(source), name); !entered) return entered;
  if (Status entered = destination_.enter(std::move(destination), name); !entered) return entered;
  levels_.push_back(std::move(level));
  return copyEntries();
}

Status FolderCopy::copyEntries() {
  bool hasEntries = false;
  FolderListing::Entry entry;
  listing_.start(source_.current(), source_.path());
  while (true) {
    const Result<bool> found = listing_.next(entry);
    if (!found) return found.error();
    if (!found.value()) break;
    hasEntries = true;
    if (Status copied = copyEntry(entry); !copied) return copied;
  }
  if (purpose_ == CopyPurpose::Copy || !hasEntries) return success();
  if (::faccessat(source_.current(), ".", W_OK | X_OK, AT_EACCESS) == 0) return success();
  return SystemError{"empty", source_.path(), std::error_code(errno, std::generic_category())};
}

Status FolderCopy::copyEntry(const FolderListing::Entry& entry) {
  if (entry.type == DT_DIR) {
    levels_.back().subfolders.push_back(entry.name);
    return success();
  }
  const FolderEntry source(source_.current(), entry.name, source_.path());
  const Result<ItemCopy::Outcome> outcome =
      items_.copy(source, destinationEntry(entry.name), entry.type, &*links_);
  if (!outcome) return outcome.error();
  if (outcome.value() == ItemCopy::Outcome::IsFolder) {
    levels_.back().subfolders.push_back(entry.name);
  }
  return success();
}

Status FolderCopy::leave() {
  if (levels_.size() == 1) {
    if (Status finished = links_->finish(); !finished) return finished;
  }
  const Result<FileDescriptor> source = source_.leave();
  if (!source) return source.error();
  const Result<FileDescriptor> destination = destination_.leave();
  if (!destination) return destination.error();
  const Level level = std::move(levels_.back());
  levels_.pop_back();
  const FolderEntry entry =
      levels_.empty() ? FolderEntry(destinationItem_, partialName_) : destinationEntry(level.name);
  return copyMetadata(source.value().get(), {destination.value().get(), entry}, level.status);
}

}  // namespace tavrin
