#include "platform/linux/DefaultsFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "foundation/PathString.h"

namespace tavrin {

namespace {

SystemError lastError(const char* operation, const std::string& path) {
  return {operation, path, std::error_code(errno, std::generic_category())};
}

void makeDurable(const std::string& folder) {
  const FileDescriptor descriptor(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  // A folder that cannot be synchronized is no worse than one that never was.
  if (descriptor) ::fsync(descriptor.get());
}

Status makeFolder(const std::string& folder) {
  if (::mkdir(folder.c_str(), 0700) == 0) {
    makeDurable(deletingLastPathComponent(folder));
    return success();
  }
  struct stat status {};
  if (errno == EEXIST && ::stat(folder.c_str(), &status) == 0) {
    if (S_ISDIR(status.st_mode)) return success();
    errno = ENOTDIR;
  }
  return lastError("make folder", folder);
}

}  // namespace

DefaultsFile::DefaultsFile(std::string folder)
    : folder_(std::move(folder)),
      path_(folder_.empty() ? std::string() : folder_ + "/defaults.sqlite") {}

Status DefaultsFile::ensureFolder() const {
  struct stat status {};
  if (::stat(folder_.c_str(), &status) == 0 && S_ISDIR(status.st_mode)) return success();
  for (std::size_t end = folder_.find('/', 1); end != folder_.npos;
       end = folder_.find('/', end + 1)) {
    const std::string parent = folder_.substr(0, end);
    if (::stat(parent.c_str(), &status) == 0) continue;
    if (Status made = makeFolder(parent); !made) return made;
  }
  return makeFolder(folder_);
}

Status DefaultsFile::ensureFile() const {
  const FileDescriptor file(::open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
  if (file || errno == EEXIST) return success();
  return lastError("make", path_);
}

void DefaultsFile::makeFolderDurable() const {
  makeDurable(folder_);
}

DefaultsFile::Identity DefaultsFile::identity() const {
  struct stat status {};
  if (path_.empty() || ::stat(path_.c_str(), &status) != 0) return {};
  return {status.st_dev, status.st_ino, status.st_size == 0};
}

bool DefaultsFile::hasLog() const {
  struct stat status {};
  return ::lstat((path_ + "-wal").c_str(), &status) == 0 ||
         ::lstat((path_ + "-shm").c_str(), &status) == 0;
}

Result<std::string> DefaultsFile::setAside() const {
  for (int number = 1;; ++number) {
    const std::string target = path_ + ".corrupt-" + std::to_string(number);
    if (::renameat2(AT_FDCWD, path_.c_str(), AT_FDCWD, target.c_str(), RENAME_NOREPLACE) != 0) {
      if (errno == EEXIST) continue;
      return lastError("set aside", path_);
    }
    for (const char* suffix : {"-wal", "-shm"}) {
      // Not there after a clean close.
      static_cast<void>(std::rename((path_ + suffix).c_str(), (target + suffix).c_str()));
    }
    return target;
  }
}

DefaultsFile::Lock::Lock(DefaultsFile& file, BoundedWait& wait) : file_(file) {
  if (file_.lockDepth_++ > 0) return;
  if (!file_.lockFile_ && !file_.folder_.empty()) {
    const std::string path = file_.folder_ + "/defaults.lock";
    file_.lockFile_ = FileDescriptor(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
  }
  if (!file_.lockFile_) return;
  // The system itself would wait for a stopped process without end.
  while (::flock(file_.lockFile_.get(), LOCK_EX | LOCK_NB) != 0) {
    if (errno == EINTR) continue;
    isRefused_ = errno == EWOULDBLOCK;
    if (!isRefused_ || !wait.pause()) return;
    isRefused_ = false;
  }
}

DefaultsFile::Lock::~Lock() {
  if (--file_.lockDepth_ == 0 && file_.lockFile_ && !isRefused_)
    ::flock(file_.lockFile_.get(), LOCK_UN);
}

void DefaultsFile::announceChange() {
  // SQLite writes a commit before it shows it, so whoever looked at that write may have seen
  // nothing yet.
  if (lockFile_) static_cast<void>(::pwrite(lockFile_.get(), "", 1, 0) == 1);
}

}  // namespace tavrin
