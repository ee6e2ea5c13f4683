#include "platform/linux/PartialItems.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <filesystem>
#include <optional>
#include <system_error>
#include <utility>

#include "foundation/PathString.h"
#include "platform/linux/FolderListing.h"
#include "platform/linux/FolderOpening.h"
#include "platform/linux/ItemNaming.h"
#include "platform/linux/PartialRecord.h"
#include "platform/linux/PartialRemoval.h"

namespace tavrin {
namespace {

constexpr const char* recordKind = "record";

SystemError failureAt(const char* operation, const std::string& path) {
  return {operation, path, std::error_code(errno, std::generic_category())};
}

/// The real path of an open folder; the one that messages use when it is longer than the kernel can
/// tell.
std::string pathOfFolder(const ItemReference& item) {
  std::array<char, 4096> buffer;
  const std::string link = "/proc/self/fd/" + std::to_string(item.parentDescriptor);
  const ssize_t size = ::readlink(link.c_str(), buffer.data(), buffer.size());
  const bool isWhole = size > 0 && static_cast<std::size_t>(size) < buffer.size();
  return isWhole ? std::string(buffer.data(), static_cast<std::size_t>(size))
                 : deletingLastPathComponent(item.path);
}

/// Creates a record file that is locked. Whoever clears leftovers may lock it first: it is empty
/// then and is removed, and another one is made.
Result<FileDescriptor> createLockedRecord(const std::string& path) {
  while (true) {
    FileDescriptor record(
        ::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (!record) return failureAt("create", path);
    struct stat status = {};
    if (::flock(record.get(), LOCK_EX) != 0 || ::fstat(record.get(), &status) != 0) {
      return failureAt("lock", path);
    }
    if (status.st_nlink > 0) return record;
  }
}

Result<std::string> readRecord(int record, const std::string& path) {
  std::string text;
  std::array<char, 4096> buffer;
  while (true) {
    const ssize_t count = ::read(record, buffer.data(), buffer.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return failureAt("read", path);
    if (count == 0) return text;
    text.append(buffer.data(), static_cast<std::size_t>(count));
  }
}

Status returnItem(const ItemReference& item, std::string name) {
  const std::error_code cause = renameToNameOrNext(item.parentDescriptor, item.name, name);
  if (!cause || cause == std::errc::no_such_file_or_directory) return success();
  return SystemError{"give " + name + " its name again", item.path, cause};
}

Status clearRecordedItem(const PartialRecord& record, FileOperation& operation) {
  const FileDescriptor folder = openFolderAtPath(record.folderPath);
  if (!folder) return failureAt("open", record.folderPath);
  struct stat status = {};
  if (::fstat(folder.get(), &status) != 0) return failureAt("stat", record.folderPath);
  // Not the device: its number may be another one after the next mount.
  if (std::to_string(status.st_ino) != record.inode) {
    return SystemError{"find the folder of a partial item", record.folderPath,
                       std::make_error_code(std::errc::no_such_file_or_directory)};
  }
  const ItemReference partial = {folder.get(), record.name,
                                 appendingPathComponent(record.folderPath, record.name)};
  return record.nameToReturnTo.empty() ? removePartialItem(partial, record.name, operation)
                                       : returnItem(partial, record.nameToReturnTo);
}

/// Success when the record is dropped, or its owner lives.
Status clearRecord(const std::string& path, FileOperation& operation) {
  const FileDescriptor file(::open(path.c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  if (!file) return errno == ENOENT ? success() : Status(failureAt("open", path));
  if (::flock(file.get(), LOCK_EX | LOCK_NB) != 0) {
    return errno == EWOULDBLOCK ? success() : Status(failureAt("lock", path));
  }
  const Result<std::string> text = readRecord(file.get(), path);
  if (!text) return text.error();
  // An owner that has not written its record has not created its item.
  if (!text.value().empty()) {
    const std::optional<PartialRecord> record = partialRecordFrom(text.value());
    if (!record) {
      return SystemError{"read the record", path, std::make_error_code(std::errc::bad_message)};
    }
    if (Status cleared = clearRecordedItem(*record, operation); !cleared) return cleared;
  }
  return ::unlink(path.c_str()) == 0 ? success() : Status(failureAt("remove", path));
}

Status clearRecords(const std::string& folderPath, Log& log, FileOperation& operation) {
  const FileDescriptor folder(
      ::open(folderPath.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
  if (!folder) return errno == ENOENT ? success() : Status(failureAt("open", folderPath));
  FolderListing listing;
  FolderListing::Entry entry;
  while (true) {
    const Result<bool> found = listing.readPiece(folder.get(), folderPath);
    if (!found) return found.error();
    if (!found.value()) return success();
    while (listing.next(entry)) {
      if (!isRandomHiddenName(entry.name, recordKind)) continue;
      const Status cleared = clearRecord(appendingPathComponent(folderPath, entry.name), operation);
      if (operation.isCancelled()) return success();
      if (!cleared) log.write("A partial item is left alone: " + cleared.error().describe());
    }
  }
}

}  // namespace

PartialItem::PartialItem(std::string name, std::string recordPath, FileDescriptor record)
    : name_(std::move(name)), recordPath_(std::move(recordPath)), record_(std::move(record)) {}

PartialItem::~PartialItem() {
  if (record_) ::unlink(recordPath_.c_str());
}

Status PartialItem::write(std::string_view content) {
  const ssize_t written = ::write(record_.get(), content.data(), content.size());
  if (written == static_cast<ssize_t>(content.size())) return success();
  if (written >= 0) errno = ENOSPC;
  return failureAt("write", recordPath_);
}

void PartialItem::keepRecord() {
  record_.reset();
}

PartialItems::PartialItems(std::string recordFolder) : recordFolder_(std::move(recordFolder)) {}

Result<PartialItem> PartialItems::begin(const ItemReference& destination) const {
  return beginRecorded(destination, {});
}

Result<PartialItem> PartialItems::beginSettingAside(const ItemReference& item) const {
  return beginRecorded(item, item.name);
}

Result<PartialItem> PartialItems::beginRecorded(const ItemReference& item,
                                                const std::string& nameToReturnTo) const {
  std::error_code cause;
  std::filesystem::create_directories(recordFolder_, cause);
  if (cause) return SystemError{"create", recordFolder_, cause};
  struct stat status = {};
  if (::fstat(item.parentDescriptor, &status) != 0) {
    return failureAt("stat the folder of", item.path);
  }
  const std::string recordPath =
      appendingPathComponent(recordFolder_, randomHiddenName(recordKind));
  Result<FileDescriptor> record = createLockedRecord(recordPath);
  if (!record) return record.error();
  PartialItem partial(randomHiddenName(partialItemKind), recordPath, std::move(record).value());
  const PartialRecord content = {std::to_string(status.st_ino), partial.name(), pathOfFolder(item),
                                 nameToReturnTo};
  if (Status written = partial.write(content.written()); !written) return written.error();
  return partial;
}

void PartialItems::clearLeftovers(Log& log, FileOperation& operation) const {
  const Status cleared = clearRecords(recordFolder_, log, operation);
  if (!cleared) log.write("Partial items are left alone: " + cleared.error().describe());
}

}  // namespace tavrin
