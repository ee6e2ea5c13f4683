#include "platform/linux/ItemCopy.h"

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "platform/linux/ItemMetadata.h"

namespace tavrin {
namespace {

constexpr mode_t ownerOnly = S_IRUSR | S_IWUSR;

/// What open answers when the item is no regular file any more, or not there.
bool isNoFileAnyMore(int cause) {
  return cause == ELOOP || cause == ENXIO || cause == ENODEV || cause == ENOENT;
}

Result<std::string> linkTarget(const FolderEntry& link, off_t expectedSize) {
  std::string target(static_cast<std::size_t>(expectedSize) + 64, '\0');
  while (true) {
    const ssize_t size =
        ::readlinkat(link.folder(), link.nameBytes(), target.data(), target.size());
    if (size < 0) return link.failure("read the link", errno);
    const auto length = static_cast<std::size_t>(size);
    if (length < target.size()) {
      target.resize(length);
      return target;
    }
    target.resize(target.size() * 2);
  }
}

Status copyLink(const FolderEntry& source, const FolderEntry& destination,
                const struct stat& status) {
  const Result<std::string> target = linkTarget(source, status.st_size);
  if (!target) return target.error();
  if (::symlinkat(target.value().c_str(), destination.folder(), destination.nameBytes()) != 0) {
    return destination.failure("create the link", errno);
  }
  return copyMetadataByName(source, destination, status);
}

Status copyNode(const FolderEntry& source, const FolderEntry& destination,
                const struct stat& status) {
  const mode_t mode = (status.st_mode & S_IFMT) | ownerOnly;
  if (::mknodat(destination.folder(), destination.nameBytes(), mode, status.st_rdev) != 0) {
    return destination.failure("create the node", errno);
  }
  return copyMetadataByName(source, destination, status);
}

}  // namespace

Result<SourceFile> openSourceFile(const FolderEntry& source) {
  SourceFile file;
  file.descriptor =
      FileDescriptor(::openat(source.folder(), source.nameBytes(),
                              O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  if (!file.descriptor) {
    if (isNoFileAnyMore(errno)) return file;
    return source.failure("open", errno);
  }
  if (::fstat(file.descriptor.get(), &file.status) != 0) return source.failure("stat", errno);
  if (!S_ISREG(file.status.st_mode)) file.descriptor.reset();
  return file;
}

Status ItemCopy::fill(const SourceFile& file, const FolderEntry& source,
                      const OpenFile& destination, MetadataInPlace inPlace, double share) {
  Status data = data_.copy({file.descriptor.get(), source}, destination, file.status, share);
  return data ? copyMetadata(file.descriptor.get(), destination, file.status, inPlace) : data;
}

Status ItemCopy::copyFile(const SourceFile& file, const FolderEntry& source,
                          const FolderEntry& destination, double share) {
  const mode_t mode = newFiles_.modeToAskFor(file.status);
  FileDescriptor created(::openat(destination.folder(), destination.nameBytes(),
                                  O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode));
  if (!created) return destination.failure("create", errno);
  if (!newFiles_.learn(created.get(), mode)) return destination.failure("stat", errno);
  Status filled =
      fill(file, source, {created.get(), destination}, newFiles_.inPlace(file.status, mode), share);
  if (!filled) return filled;
  const int cause = created.close();
  return cause == 0 ? success() : Status(destination.failure("write", cause));
}

Status ItemCopy::copyAnything(const SourceFile& file, const FolderEntry& source,
                              const FolderEntry& destination, double share) {
  if (file.descriptor) return copyFile(file, source, destination, share);
  operation_.addShare(share);
  if (S_ISLNK(file.status.st_mode)) return copyLink(source, destination, file.status);
  return copyNode(source, destination, file.status);
}

Result<ItemCopy::Outcome> ItemCopy::copyOnce(const SourceFile& file, const FolderEntry& source,
                                             const FolderEntry& destination, HardLinks* links,
                                             double share) {
  operation_.addItems(1);
  const bool hasOtherNames = links != nullptr && file.status.st_nlink > 1;
  if (hasOtherNames) {
    const Result<bool> linked = links->link(file.status, destination);
    if (!linked) return linked.error();
    if (linked.value()) {
      operation_.addShare(share);
      return Outcome::Copied;
    }
  }
  if (Status copied = copyAnything(file, source, destination, share); !copied) {
    return copied.error();
  }
  if (hasOtherNames) {
    if (Status kept = links->remember(file.status, destination); !kept) return kept.error();
  }
  return Outcome::Copied;
}

Result<ItemCopy::Outcome> ItemCopy::copy(const FolderEntry& source, const FolderEntry& destination,
                                         unsigned char type, HardLinks* links, double share) {
  if (type == DT_REG) {
    const Result<SourceFile> file = openSourceFile(source);
    if (!file) return file.error();
    if (file.value().descriptor) return copyOnce(file.value(), source, destination, links, share);
  }
  SourceFile other;
  if (::fstatat(source.folder(), source.nameBytes(), &other.status, AT_SYMLINK_NOFOLLOW) != 0) {
    if (errno == ENOENT) return Outcome::Vanished;
    return source.failure("stat", errno);
  }
  if (S_ISDIR(other.status.st_mode)) return Outcome::IsFolder;
  if (S_ISREG(other.status.st_mode)) {
    Result<SourceFile> file = openSourceFile(source);
    if (!file) return file.error();
    if (!file.value().descriptor) return source.failure("open", EBUSY);
    other = std::move(file).value();
  }
  return copyOnce(other, source, destination, links, share);
}

}  // namespace tavrin
