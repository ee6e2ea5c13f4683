#include "platform/linux/FolderCreation.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <utility>

#include "platform/linux/FileDescriptor.h"
#include "platform/linux/SystemErrors.h"

namespace tavrin {

namespace {

constexpr mode_t allRightsThatTheUserLeaves = 0777;

/// Goes down from folder to folder and knows what it has made.
class Descent {
 public:
  explicit Descent(int folder) : folder_(folder) {}

  /// Enters the folder of that name in the one it stands in, making it when it is missing. False
  /// with errno when it cannot.
  bool enter(const std::string& name) {
    FileDescriptor next = open(name);
    if (next || errno != ENOENT) return goTo(std::move(next));
    const bool isMade = ::mkdirat(current(), name.c_str(), allRightsThatTheUserLeaves) == 0;
    if (!isMade && errno != EEXIST) return false;
    next = open(name);
    if (isMade) {
      const int cause = errno;
      made_.push_back({FileDescriptor(::fcntl(current(), F_DUPFD_CLOEXEC, 0)), name});
      errno = cause;
    }
    return goTo(std::move(next));
  }

  /// Takes away what was made. A folder that is in use by now is not empty and stays.
  void undo() {
    for (; !made_.empty(); made_.pop_back()) {
      ::unlinkat(made_.back().parent.get(), made_.back().name.c_str(), AT_REMOVEDIR);
    }
  }

 private:
  struct Made {
    FileDescriptor parent;
    std::string name;
  };

  int current() const { return entered_ ? entered_.get() : folder_; }

  FileDescriptor open(const std::string& name) const {
    return FileDescriptor(
        ::openat(current(), name.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
  }

  bool goTo(FileDescriptor next) {
    if (!next) return false;
    entered_ = std::move(next);
    return true;
  }

  int folder_;
  FileDescriptor entered_;
  std::vector<Made> made_;
};

}  // namespace

Status createFolders(int folder, const std::vector<std::string>& names, const std::string& path) {
  Descent descent(folder);
  for (std::size_t index = 0; index < names.size(); ++index) {
    if (descent.enter(names[index])) continue;
    const bool isLast = index + 1 == names.size();
    const bool isTaken = isLast && (errno == ENOTDIR || errno == ELOOP);
    const SystemError error = systemError("create folder", path, isTaken ? EEXIST : errno);
    descent.undo();
    return error;
  }
  return success();
}

}  // namespace tavrin
