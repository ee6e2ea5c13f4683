#include "platform/linux/PartialCopy.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <utility>

#include "platform/linux/FolderEntry.h"
#include "platform/linux/FolderOpening.h"
#include "platform/linux/ItemCopy.h"
#include "platform/linux/ItemMetadata.h"
#include "platform/linux/ItemNaming.h"
#include "platform/linux/PartialRemoval.h"

namespace tavrin {
namespace {

bool stands(const ItemReference& item) {
  struct stat status = {};
  return ::fstatat(item.parentDescriptor, item.name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0;
}

bool isFolder(const ItemReference& item) {
  struct stat status = {};
  return ::fstatat(item.parentDescriptor, item.name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 &&
         S_ISDIR(status.st_mode);
}

/// Why an item of that mode cannot be copied as a file.
int causeOfNoFile(mode_t mode) {
  if (S_ISDIR(mode)) return EISDIR;
  return S_ISLNK(mode) ? ELOOP : EINVAL;
}

bool hasNoNamelessFiles(int cause) {
  return cause == EOPNOTSUPP || cause == EISDIR || cause == EINVAL || cause == ENOENT;
}

}  // namespace

PartialCopy::PartialCopy(const ItemReference& source, const ItemReference& destination,
                         const PartialItems& partials, CopyPurpose purpose,
                         FileOperation& operation)
    : source_(source),
      destination_(destination),
      partials_(partials),
      purpose_(purpose),
      operation_(operation) {}

PartialCopy::~PartialCopy() {
  discard();
}

void PartialCopy::discard() {
  if (isNamed_ || !partial_) return;
  content_.reset();
  FileOperation removal;
  if (!removePartialItem(destination_, partial_->name(), removal)) partial_->keepRecord();
  partial_.reset();
}

bool PartialCopy::mayTakeLong() const {
  constexpr off_t largeFile = off_t{1} << 20;
  return S_ISDIR(sourceStatus_.st_mode) || sourceStatus_.st_size > largeFile;
}

Status PartialCopy::examine() {
  const int result = ::fstatat(source_.parentDescriptor, source_.name.c_str(), &sourceStatus_,
                               AT_SYMLINK_NOFOLLOW);
  return result == 0 ? success() : Status(FolderEntry(source_).failure("stat", errno));
}

Status PartialCopy::build() {
  if (stands(destination_)) return FolderEntry(destination_).failure("create", EEXIST);
  if (S_ISREG(sourceStatus_.st_mode)) return buildFile();
  if (S_ISDIR(sourceStatus_.st_mode)) return buildFolder();
  return buildOther();
}

Status PartialCopy::buildReplacement() {
  if (!S_ISREG(sourceStatus_.st_mode)) {
    return FolderEntry(source_).failure("copy as a file", causeOfNoFile(sourceStatus_.st_mode));
  }
  if (isFolder(destination_)) return FolderEntry(destination_).failure("replace", EISDIR);
  // A file without a name could not take the place of another.
  if (Status begun = begin(); !begun) return begun;
  return buildFile();
}

Status PartialCopy::begin() {
  Result<PartialItem> partial = partials_.begin(destination_);
  if (!partial) return partial.error();
  partial_.emplace(std::move(partial).value());
  return success();
}

Result<FileDescriptor> PartialCopy::createFile() {
  if (!partial_) {
    FileDescriptor nameless = openNamelessFile(destination_.parentDescriptor, S_IRUSR | S_IWUSR);
    if (nameless) return nameless;
    if (!hasNoNamelessFiles(errno)) return FolderEntry(destination_).failure("create", errno);
    if (Status begun = begin(); !begun) return begun.error();
  }
  FileDescriptor named(::openat(destination_.parentDescriptor, partial_->name().c_str(),
                                O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC,
                                S_IRUSR | S_IWUSR));
  if (named) return named;
  return FolderEntry(destination_).failure("create", errno);
}

Status PartialCopy::buildFile() {
  const FolderEntry source(source_);
  const Result<SourceFile> file = openSourceFile(source);
  if (!file) return file.error();
  if (!file.value().descriptor) return source.failure("open", EBUSY);
  sourceStatus_ = file.value().status;
  Result<FileDescriptor> created = createFile();
  if (!created) return created.error();
  content_ = std::move(created).value();
  dropInheritedAccess(content_.get());
  const FolderEntry destination(destination_);
  operation_.addItems(1);
  Status filled =
      ItemCopy(operation_).fill(file.value(), source, {content_.get(), destination}, {}, 1);
  if (!filled) return filled;
  // A close tells of writing that failed late, whichever handle it is of.
  FileDescriptor second(::fcntl(content_.get(), F_DUPFD_CLOEXEC, 0));
  const int cause = second ? second.close() : errno;
  return cause == 0 ? success() : Status(destination.failure("write", cause));
}

Status PartialCopy::buildFolder() {
  if (isFolderAtOrBelow(destination_.parentDescriptor, sourceStatus_)) {
    return FolderEntry(destination_).failure("copy a folder into itself", EINVAL);
  }
  if (Status begun = begin(); !begun) return begun;
  FolderCopy copy(source_, destination_, partial_->name(), purpose_, operation_);
  Status copied = copy.run();
  sourceStatus_ = copy.sourceStatus();
  content_ = copy.takeRoot();
  return copied;
}

Status PartialCopy::buildOther() {
  if (Status begun = begin(); !begun) return begun;
  const Result<ItemCopy::Outcome> outcome =
      ItemCopy(operation_)
          .copy(FolderEntry(source_), FolderEntry(destination_, partial_->name()), 0, nullptr, 1);
  if (!outcome) return outcome.error();
  if (outcome.value() == ItemCopy::Outcome::Copied) return success();
  return FolderEntry(source_).failure("copy", EBUSY);
}

Status PartialCopy::makeDurable() {
  // Links and nodes have no data; the folder's own sync covers them.
  if (!content_) return success();
  const int result =
      S_ISDIR(sourceStatus_.st_mode) ? ::syncfs(content_.get()) : ::fsync(content_.get());
  return result == 0 ? success() : Status(FolderEntry(destination_).failure("sync", errno));
}

Status PartialCopy::giveName() {
  if (operation_.isCancelled()) return FolderEntry(destination_).failure("name", ECANCELED);
  const int folder = destination_.parentDescriptor;
  const std::error_code cause =
      partial_ ? renameToFreeName(folder, partial_->name(), folder, destination_.name)
               : nameNamelessFile(content_.get(), folder, destination_.name);
  if (cause) return FolderEntry(destination_).failure("name", cause.value());
  isNamed_ = true;
  partial_.reset();
  return success();
}

Status PartialCopy::replace() {
  if (operation_.isCancelled()) return FolderEntry(destination_).failure("replace", ECANCELED);
  const int folder = destination_.parentDescriptor;
  if (::renameat(folder, partial_->name().c_str(), folder, destination_.name.c_str()) != 0) {
    return FolderEntry(destination_).failure("replace", errno);
  }
  isNamed_ = true;
  partial_.reset();
  return success();
}

Status PartialCopy::makeNameDurable() {
  const FileDescriptor folder = openFolder(destination_.parentDescriptor, ".");
  if (folder && ::fsync(folder.get()) == 0) return success();
  if (folder && errno != EINVAL) return FolderEntry(destination_).failure("sync", errno);
  // The folder is one that may be entered but not read, or knows no sync of its own.
  const int handle = folder ? folder.get() : content_.get();
  if (handle >= 0 && ::syncfs(handle) == 0) return success();
  return FolderEntry(destination_).failure("sync", handle < 0 ? EACCES : errno);
}

Result<TimeGranularity> PartialCopy::timeGranularity() {
  constexpr TimeGranularity second = 1'000'000'000;
  if (!content_) return TimeGranularity{1};
  // An odd second and the last nanosecond of it: what is missing afterwards was cut off.
  const timespec probe = {sourceStatus_.st_mtim.tv_sec | 1, second - 1};
  const std::array<timespec, 2> probing = {sourceStatus_.st_atim, probe};
  const std::array<timespec, 2> real = {sourceStatus_.st_atim, sourceStatus_.st_mtim};
  struct stat kept = {};
  if (::futimens(content_.get(), probing.data()) != 0 || ::fstat(content_.get(), &kept) != 0 ||
      ::futimens(content_.get(), real.data()) != 0) {
    return FolderEntry(destination_).failure("set the times of", errno);
  }
  const TimeGranularity cut =
      (probe.tv_sec - kept.st_mtim.tv_sec) * second + (probe.tv_nsec - kept.st_mtim.tv_nsec) + 1;
  const bool isPlausible = cut >= 1 && cut <= 2 * second;
  return isPlausible ? cut : TimeGranularity{1};
}

}  // namespace tavrin
