#include "platform/linux/FileCreation.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <system_error>
#include <tuple>
#include <utility>

#include "platform/linux/FileDescriptor.h"
#include "platform/linux/FolderEntry.h"
#include "platform/linux/ItemNaming.h"

namespace tavrin {
namespace {

constexpr mode_t rightsOfNewFiles = 0666;

Status writeAll(int descriptor, const PropertyList::Data& contents, const FolderEntry& entry) {
  std::size_t position = 0;
  while (position < contents.size()) {
    const ssize_t written =
        ::write(descriptor, contents.data() + position, contents.size() - position);
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return entry.failure("write", errno);
    position += static_cast<std::size_t>(written);
  }
  return success();
}

/// The owner stays as far as the user may give files away; the rights come last, for a change of
/// owner takes some of them.
Status takeOverRights(int file, const struct stat& replaced, const FolderEntry& entry) {
  constexpr mode_t kept = 0777;
  std::ignore = ::fchown(file, replaced.st_uid, replaced.st_gid);
  if (::fchmod(file, replaced.st_mode & kept) == 0) return success();
  const int cause = errno;
  struct stat status = {};
  // A file system without modes gives both files the same.
  const bool isSame =
      ::fstat(file, &status) == 0 && (status.st_mode & kept) == (replaced.st_mode & kept);
  return isSame ? success() : Status(entry.failure("set the mode of", cause));
}

Status createUnderName(const std::string& name, const ItemReference& item,
                       const PropertyList::Data& contents) {
  const FolderEntry entry(item);
  FileDescriptor file(::openat(item.parentDescriptor, name.c_str(),
                               O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC,
                               rightsOfNewFiles));
  if (!file) return entry.failure("create", errno);
  if (Status written = writeAll(file.get(), contents, entry); !written) return written;
  // Network file systems tell here of writing that failed late.
  if (const int cause = file.close(); cause != 0) return entry.failure("write", cause);
  const std::error_code cause =
      renameToFreeName(item.parentDescriptor, name, item.parentDescriptor, item.name);
  return cause ? Status(entry.failure("create", cause.value())) : success();
}

Status createUnderTemporaryName(const ItemReference& item, const PropertyList::Data& contents,
                                const PartialItems* partials) {
  std::optional<PartialItem> partial;
  if (partials != nullptr) {
    Result<PartialItem> begun = partials->begin(item);
    if (!begun) return begun.error();
    partial.emplace(std::move(begun).value());
  }
  const std::string name = partial ? partial->name() : randomHiddenName("partial");
  Status created = createUnderName(name, item, contents);
  if (created) return created;
  struct stat status = {};
  const bool isLeft =
      ::unlinkat(item.parentDescriptor, name.c_str(), 0) != 0 &&
      ::fstatat(item.parentDescriptor, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0;
  if (isLeft && partial) partial->keepRecord();
  return created;
}

Status writeDurably(int descriptor, const PropertyList::Data& contents, const FolderEntry& entry) {
  Status written = writeAll(descriptor, contents, entry);
  if (written && ::fsync(descriptor) != 0) return entry.failure("sync", errno);
  return written;
}

Status replaceBy(const std::string& name, const ItemReference& item) {
  const int folder = item.parentDescriptor;
  if (::renameat(folder, name.c_str(), folder, item.name.c_str()) == 0) return success();
  return FolderEntry(item).failure("replace", errno);
}

Result<FileDescriptor> openForReading(const FolderEntry& entry) {
  FileDescriptor file(::openat(entry.folder(), entry.nameBytes(),
                               O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  if (!file) return entry.failure("open", errno == ENXIO ? EINVAL : errno);
  struct stat status = {};
  if (::fstat(file.get(), &status) != 0) return entry.failure("stat", errno);
  if (S_ISDIR(status.st_mode)) return entry.failure("read", EISDIR);
  if (!S_ISREG(status.st_mode)) return entry.failure("read as a file", EINVAL);
  return file;
}

}  // namespace

Status createFile(const ItemReference& item, const PropertyList::Data& contents,
                  const PartialItems* partials) {
  const FolderEntry entry(item);
  const FileDescriptor file = openNamelessFile(item.parentDescriptor, rightsOfNewFiles);
  if (!file) {
    // Whatever the reason, the attempt with a name finds the one that matters.
    return createUnderTemporaryName(item, contents, partials);
  }
  if (Status written = writeAll(file.get(), contents, entry); !written) return written;
  const std::error_code cause = nameNamelessFile(file.get(), item.parentDescriptor, item.name);
  return cause ? Status(entry.failure("create", cause.value())) : success();
}

Status createOrReplaceFile(const ItemReference& item, const PropertyList::Data& contents,
                           const PartialItems& partials, const std::optional<struct stat>& rights) {
  const FolderEntry entry(item);
  Result<PartialItem> partial = partials.begin(item);
  if (!partial) return partial.error();
  const std::string& name = partial.value().name();
  const FileDescriptor file(::openat(item.parentDescriptor, name.c_str(),
                                     O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC,
                                     rightsOfNewFiles));
  if (!file) return entry.failure("create", errno);
  Status done = rights ? takeOverRights(file.get(), *rights, entry) : success();
  if (done) done = writeDurably(file.get(), contents, entry);
  if (done) done = replaceBy(name, item);
  if (!done && ::unlinkat(item.parentDescriptor, name.c_str(), 0) != 0) {
    partial.value().keepRecord();
  }
  return done;
}

Result<PropertyList::Data> readFile(const ItemReference& item, std::size_t largestSize) {
  constexpr std::size_t step = std::size_t{64} * 1024;
  const FolderEntry entry(item);
  const Result<FileDescriptor> file = openForReading(entry);
  if (!file) return file.error();
  PropertyList::Data contents;
  while (true) {
    const std::size_t position = contents.size();
    contents.resize(position + step);
    const ssize_t count = ::read(file.value().get(), contents.data() + position, step);
    if (count < 0 && errno != EINTR) return entry.failure("read", errno);
    contents.resize(position + static_cast<std::size_t>(count < 0 ? 0 : count));
    if (contents.size() > largestSize) return entry.failure("read", EFBIG);
    if (count == 0) return contents;
  }
}

}  // namespace tavrin
