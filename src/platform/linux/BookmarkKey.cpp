#include "platform/linux/BookmarkKey.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <utility>

#include "platform/linux/FileDescriptor.h"
#include "platform/linux/PrivateFolder.h"
#include "platform/linux/SystemErrors.h"

namespace tavrin {

namespace {

constexpr const char* keyName = "bookmark.key";
constexpr const char* damagedName = "bookmark.key.damaged";
constexpr mode_t ownerOnly = S_IRUSR | S_IWUSR;

Status readFully(int file, BookmarkKey::Bytes& bytes) {
  std::size_t done = 0;
  while (done < bytes.size()) {
    const ssize_t count = ::read(file, bytes.data() + done, bytes.size() - done);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return systemError("read", keyName);
    if (count == 0) return systemError("read", keyName, std::errc::bad_message);
    done += static_cast<std::size_t>(count);
  }
  return success();
}

bool mayBeKey(const struct stat& status) {
  return S_ISREG(status.st_mode) && status.st_uid == ::geteuid() &&
         (status.st_mode & (S_IRWXG | S_IRWXO)) == 0 &&
         status.st_size == std::tuple_size_v<BookmarkKey::Bytes>;
}

/// Fails with no_such_file_or_directory when there is none, with bad_message when it is no key.
Result<BookmarkKey::Bytes> readKey(int folder) {
  const FileDescriptor file(
      ::openat(folder, keyName, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  if (!file) return systemError("open", keyName, errno == ELOOP ? EBADMSG : errno);
  struct stat status {};
  if (::fstat(file.get(), &status) != 0) return systemError("examine", keyName);
  if (!mayBeKey(status)) return systemError("read", keyName, std::errc::bad_message);
  BookmarkKey::Bytes bytes{};
  const auto read = readFully(file.get(), bytes);
  if (!read) return read.error();
  return bytes;
}

Result<BookmarkKey::Bytes> randomKey() {
  BookmarkKey::Bytes bytes{};
  ssize_t count = -1;
  do {
    count = ::getrandom(bytes.data(), bytes.size(), 0);
  } while (count < 0 && errno == EINTR);
  if (count != static_cast<ssize_t>(bytes.size())) return systemError("make", keyName);
  return bytes;
}

Status writeKey(int file, const BookmarkKey::Bytes& bytes) {
  const ssize_t count = ::write(file, bytes.data(), bytes.size());
  if (count < 0) return systemError("write", keyName);
  if (count != static_cast<ssize_t>(bytes.size())) return systemError("write", keyName, ENOSPC);
  if (::fsync(file) != 0) return systemError("write", keyName);
  return success();
}

/// Gives the finished file its name unless the name is taken.
bool nameExclusively(int folder, const std::string& temporaryName) {
  if (::renameat2(folder, temporaryName.c_str(), folder, keyName, RENAME_NOREPLACE) == 0) {
    return true;
  }
  // Some network file systems cannot rename so, but all of them make links so.
  return errno == EINVAL && ::linkat(folder, temporaryName.c_str(), folder, keyName, 0) == 0;
}

Result<BookmarkKey::Bytes> makeKey(int folder) {
  auto bytes = randomKey();
  if (!bytes) return bytes;
  const std::string temporaryName = std::string(keyName) + "." + std::to_string(::getpid());
  ::unlinkat(folder, temporaryName.c_str(), 0);
  const FileDescriptor file(::openat(folder, temporaryName.c_str(),
                                     O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC,
                                     ownerOnly));
  if (!file) return systemError("create", keyName);
  Status made = writeKey(file.get(), bytes.value());
  if (made && !nameExclusively(folder, temporaryName)) made = systemError("create", keyName);
  ::unlinkat(folder, temporaryName.c_str(), 0);
  if (!made) return made.error();
  ::fsync(folder);
  return bytes;
}

}  // namespace

BookmarkKey::BookmarkKey(std::string folder, Log& log) : folder_(std::move(folder)), log_(log) {}

Status BookmarkKey::setAside(int folder) const {
  log_.write("bookmark key in " + folder_ + " is damaged; set aside, a new one is made");
  if (::renameat(folder, keyName, folder, damagedName) != 0) return systemError("rename", keyName);
  return success();
}

Result<BookmarkKey::Bytes> BookmarkKey::readOrMake() const {
  const auto folder = openPrivateFolder(folder_);
  if (!folder) return folder.error();
  // Held until the folder is closed. Where a file system has no locks, the exclusive naming is left
  // to settle who makes the key.
  while (::flock(folder.value().get(), LOCK_EX) != 0 && errno == EINTR) {
  }
  auto found = readKey(folder.value().get());
  if (found) return found;
  if (found.error().code == std::errc::bad_message) {
    const auto aside = setAside(folder.value().get());
    if (!aside) return aside.error();
  } else if (found.error().code != std::errc::no_such_file_or_directory) {
    return found;
  }
  auto made = makeKey(folder.value().get());
  if (!made && made.error().code == std::errc::file_exists) return readKey(folder.value().get());
  return made;
}

Result<BookmarkKey::Bytes> BookmarkKey::bytes() {
  const std::lock_guard lock(mutex_);
  if (bytes_) return *bytes_;
  auto found = readOrMake();
  if (found) bytes_ = found.value();
  return found;
}

}  // namespace tavrin
