#include "platform/linux/RequestFolder.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <ctime>
#include <string_view>
#include <utility>

#include "foundation/PathString.h"
#include "platform/linux/Identity.h"
#include "platform/linux/LinuxDirectories.h"
#include "platform/linux/LinuxPropertyListSerialization.h"
#include "platform/linux/SystemErrors.h"

namespace tavrin {

namespace {

constexpr const char* requestsName = "requests";
constexpr mode_t ownerOnlyFolder = S_IRWXU;
constexpr mode_t ownerOnlyFile = S_IRUSR | S_IWUSR;

struct OpenedFolder {
  std::string path;
  FileDescriptor descriptor;
};

/// The folder that holds the program's own, made when it is only the cache that is missing.
std::string baseFolder() {
  std::string runtime = userRuntimeDirectory();
  if (!runtime.empty()) return runtime;
  std::string cache = userCacheDirectory();
  // A failure shows when the folder is opened.
  ::mkdir(cache.c_str(), ownerOnlyFolder);
  return cache;
}

Result<struct stat> statusOfOwnFolder(const OpenedFolder& folder) {
  struct stat status {};
  if (::fstat(folder.descriptor.get(), &status) != 0) return systemError("stat", folder.path);
  const bool isOwn = status.st_uid == ::geteuid();
  if (!isOwn) return systemError("trust folder of another user", folder.path, EACCES);
  return status;
}

Result<OpenedFolder> openFolder(int parent, const std::string& name, std::string path) {
  constexpr int flags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
  OpenedFolder folder{std::move(path), FileDescriptor(::openat(parent, name.c_str(), flags))};
  if (folder.descriptor) return folder;
  // ENOTDIR is what O_DIRECTORY makes of a symbolic link.
  const bool isLink = errno == ELOOP || errno == ENOTDIR;
  return systemError(isLink ? "trust what is no folder" : "open folder", folder.path,
                     isLink ? EACCES : errno);
}

Result<OpenedFolder> openBaseFolder() {
  const std::string path = baseFolder();
  auto folder = openFolder(AT_FDCWD, path, path);
  if (!folder) return folder;
  const auto status = statusOfOwnFolder(folder.value());
  if (!status) return status.error();
  if ((status.value().st_mode & (S_IWGRP | S_IWOTH)) != 0) {
    return systemError("trust folder that others can change", path, EACCES);
  }
  return folder;
}

/// A folder of the program's own in `parent`, made when it is missing.
Result<OpenedFolder> openOwnFolder(const OpenedFolder& parent, const std::string& name) {
  const std::string path = appendingPathComponent(parent.path, name);
  if (::mkdirat(parent.descriptor.get(), name.c_str(), ownerOnlyFolder) != 0 && errno != EEXIST) {
    return systemError("create folder", path);
  }
  auto folder = openFolder(parent.descriptor.get(), name, path);
  if (!folder) return folder;
  const auto status = statusOfOwnFolder(folder.value());
  if (!status) return status.error();
  const bool isPrivate = (status.value().st_mode & ALLPERMS) == ownerOnlyFolder;
  if (!isPrivate && ::fchmod(folder.value().descriptor.get(), ownerOnlyFolder) != 0) {
    return systemError("make private", path);
  }
  return folder;
}

Result<OpenedFolder> openRequestFolder() {
  auto base = openBaseFolder();
  if (!base) return base;
  auto program = openOwnFolder(base.value(), identity::applicationId);
  if (!program) return program;
  return openOwnFolder(program.value(), requestsName);
}

constexpr std::string_view namePrefix = "request-";

/// Whether no sender waits for a file. Its age alone does not tell: the clock may have been set.
bool isLeft(const OpenedFolder& folder, const char* name) {
  const FileDescriptor file(::openat(folder.descriptor.get(), name,
                                     O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  return file && ::flock(file.get(), LOCK_EX | LOCK_NB) == 0;
}

/// Files that their senders have left, because they ended before the host answered.
void removeForgotten(const OpenedFolder& folder) {
  constexpr std::time_t oldAge = 600;
  DIR* listing = ::fdopendir(::openat(folder.descriptor.get(), ".", O_RDONLY | O_CLOEXEC));
  if (listing == nullptr) return;
  const std::time_t now = std::time(nullptr);
  // NOLINTNEXTLINE(concurrency-mt-unsafe): the listing is this call's own
  while (const dirent* entry = ::readdir(listing)) {
    struct stat status {};
    const bool isRequest = std::string_view(entry->d_name).starts_with(namePrefix);
    if (!isRequest ||
        ::fstatat(folder.descriptor.get(), entry->d_name, &status, AT_SYMLINK_NOFOLLOW) != 0) {
      continue;
    }
    const bool isOld = S_ISREG(status.st_mode) && now - status.st_mtim.tv_sec > oldAge;
    if (isOld && isLeft(folder, entry->d_name)) {
      ::unlinkat(folder.descriptor.get(), entry->d_name, 0);
    }
  }
  ::closedir(listing);
}

std::string randomName() {
  std::uint64_t number = 0;
  // Of eight bytes the kernel never gives fewer; a taken name is tried again either way.
  [[maybe_unused]] const ssize_t count = ::getrandom(&number, sizeof number, 0);
  std::array<char, 40> name{};
  std::snprintf(name.data(), name.size(), "%s%016llx.plist", namePrefix.data(),
                static_cast<unsigned long long>(number));
  return name.data();
}

/// Locks a new file. False when it is gone: another sender looked for forgotten ones by a clock
/// that was set meanwhile. A file system without locks keeps it as well.
bool lockNew(const FileDescriptor& file) {
  struct stat status {};
  ::flock(file.get(), LOCK_EX);
  return ::fstat(file.get(), &status) == 0 && status.st_nlink > 0;
}

/// Creates a file of a new name, which is stored in `name`, and locks it.
Result<FileDescriptor> createFile(const OpenedFolder& folder, std::string& name) {
  constexpr int attempts = 100;
  for (int attempt = 0; attempt < attempts; ++attempt) {
    name = randomName();
    FileDescriptor file(::openat(folder.descriptor.get(), name.c_str(),
                                 O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC,
                                 ownerOnlyFile));
    if (file && lockNew(file)) return file;
    if (!file && errno != EEXIST) break;
  }
  return systemError("create file", appendingPathComponent(folder.path, name));
}

Status fill(int file, const PropertyList::Data& content, const std::string& path) {
  // The user's mask may have taken rights away.
  if (::fchmod(file, ownerOnlyFile) != 0) return systemError("make private", path);
  std::size_t written = 0;
  while (written < content.size()) {
    const ssize_t count = ::write(file, content.data() + written, content.size() - written);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return systemError("write", path);
    written += static_cast<std::size_t>(count);
  }
  return success();
}

}  // namespace

RequestFile::RequestFile(FileDescriptor folder, FileDescriptor locked,
                         const std::string& folderPath, std::string name)
    : folder_(std::move(folder)),
      locked_(std::move(locked)),
      name_(std::move(name)),
      path_(appendingPathComponent(folderPath, name_)) {}

RequestFile::~RequestFile() {
  if (folder_) ::unlinkat(folder_.get(), name_.c_str(), 0);
}

Result<RequestFile> writeRequestFile(const PropertyList& request) {
  const auto content = LinuxPropertyListSerialization().dataFromPropertyList(
      request, PropertyListSerialization::Format::Binary);
  if (!content) return content.error();
  if (content.value().size() > PropertyListSerialization::maximumFileSize) {
    return systemError("write", "request", EFBIG);
  }
  auto folder = openRequestFolder();
  if (!folder) return folder.error();
  removeForgotten(folder.value());
  std::string name;
  auto file = createFile(folder.value(), name);
  if (!file) return file.error();
  const int descriptor = file.value().get();
  RequestFile made(std::move(folder.value().descriptor), std::move(file).value(),
                   folder.value().path, name);
  const Status filled = fill(descriptor, content.value(), made.path());
  if (!filled) return filled.error();
  return made;
}

}  // namespace tavrin
