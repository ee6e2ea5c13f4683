#include "platform/linux/shell/ReadOnlyMounts.h"

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <string>
#include <string_view>

#include "platform/linux/FileDescriptor.h"

namespace tavrin::shell {

namespace {

bool writeTo(const char* path, std::string_view text) {
  const FileDescriptor file(::open(path, O_WRONLY | O_CLOEXEC));
  return file && ::write(file.get(), text.data(), text.size()) == static_cast<ssize_t>(text.size());
}

std::string sameNumber(unsigned number) {
  return std::to_string(number) + " " + std::to_string(number) + " 1";
}

bool enterOwnNamespaces() {
  const std::string user = sameNumber(::geteuid());
  const std::string group = sameNumber(::getegid());
  return ::unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0 && writeTo("/proc/self/setgroups", "deny") &&
         writeTo("/proc/self/uid_map", user) && writeTo("/proc/self/gid_map", group);
}

/// The folder by its path: a handle from before belongs to the namespace that was left.
FileDescriptor openAgain(int folder) {
  std::array<char, PATH_MAX> path{};
  const std::string link = "/proc/self/fd/" + std::to_string(folder);
  const ssize_t length = ::readlink(link.c_str(), path.data(), path.size() - 1);
  FileDescriptor again(length > 0 ? ::open(path.data(), O_PATH | O_DIRECTORY | O_CLOEXEC) : -1);
  struct stat before {};
  struct stat now {};
  if (!again || ::fstat(folder, &before) != 0 || ::fstat(again.get(), &now) != 0) return {};
  if (before.st_dev == now.st_dev && before.st_ino == now.st_ino) return again;
  errno = ESTALE;
  return {};
}

bool makeAllReadOnly() {
  mount_attr attributes{};
  attributes.attr_set = MOUNT_ATTR_RDONLY;
  return ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
         ::syscall(SYS_mount_setattr, AT_FDCWD, "/", AT_RECURSIVE, &attributes,
                   sizeof attributes) == 0;
}

bool mountReadOnlyAround(int folder) {
  const FileDescriptor here = openAgain(folder);
  if (!here) return false;
  const FileDescriptor writable(static_cast<int>(
      ::syscall(SYS_open_tree, here.get(), "",
                AT_EMPTY_PATH | AT_RECURSIVE | OPEN_TREE_CLONE | OPEN_TREE_CLOEXEC)));
  return writable && makeAllReadOnly() &&
         ::syscall(SYS_move_mount, writable.get(), "", here.get(), "",
                   MOVE_MOUNT_F_EMPTY_PATH | MOVE_MOUNT_T_EMPTY_PATH) == 0;
}

}  // namespace

int mountAllElseReadOnly(int folder) {
  return enterOwnNamespaces() && mountReadOnlyAround(folder) ? 0 : errno;
}

}  // namespace tavrin::shell
