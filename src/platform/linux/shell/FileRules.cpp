#include "platform/linux/shell/FileRules.h"

#include <fcntl.h>
#include <linux/landlock.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <initializer_list>

#include "platform/linux/FileDescriptor.h"

namespace tavrin::shell {

namespace {

using Rights = __u64;

// Newer than the kernel headers that the oldest supported release has.
constexpr Rights truncateRight = Rights{1} << 14;
constexpr Rights deviceControlRight = Rights{1} << 15;

constexpr Rights reading = LANDLOCK_ACCESS_FS_READ_FILE | LANDLOCK_ACCESS_FS_READ_DIR;
constexpr Rights running = reading | LANDLOCK_ACCESS_FS_EXECUTE;
constexpr Rights ofFiles = LANDLOCK_ACCESS_FS_READ_FILE | LANDLOCK_ACCESS_FS_WRITE_FILE |
                           LANDLOCK_ACCESS_FS_EXECUTE | truncateRight;
constexpr Rights changing = reading | LANDLOCK_ACCESS_FS_WRITE_FILE | truncateRight |
                            LANDLOCK_ACCESS_FS_MAKE_REG | LANDLOCK_ACCESS_FS_MAKE_DIR |
                            LANDLOCK_ACCESS_FS_REMOVE_FILE | LANDLOCK_ACCESS_FS_REMOVE_DIR |
                            LANDLOCK_ACCESS_FS_REFER;
constexpr Rights linksAndDevices = LANDLOCK_ACCESS_FS_MAKE_SYM | LANDLOCK_ACCESS_FS_MAKE_SOCK |
                                   LANDLOCK_ACCESS_FS_MAKE_FIFO | LANDLOCK_ACCESS_FS_MAKE_BLOCK |
                                   LANDLOCK_ACCESS_FS_MAKE_CHAR;

/// The rights that a kernel knows and so can withhold, by the version of its interface.
Rights rightsKnownTo(long version) {
  Rights known = running | changing | linksAndDevices | deviceControlRight;
  if (version < 2) known &= ~Rights{LANDLOCK_ACCESS_FS_REFER};
  if (version < 3) known &= ~truncateRight;
  if (version < 5) known &= ~deviceControlRight;
  return known;
}

class Ruleset {
 public:
  explicit Ruleset(Rights known) : known_(known) {
    landlock_ruleset_attr attributes{};
    attributes.handled_access_fs = known;
    descriptor_ = FileDescriptor(static_cast<int>(
        ::syscall(SYS_landlock_create_ruleset, &attributes, sizeof attributes, 0)));
  }
  explicit operator bool() const { return static_cast<bool>(descriptor_); }

  bool allowBelow(int item, Rights rights) {
    landlock_path_beneath_attr rule{};
    rule.allowed_access = rights & known_;
    rule.parent_fd = item;
    return ::syscall(SYS_landlock_add_rule, descriptor_.get(), LANDLOCK_RULE_PATH_BENEATH, &rule,
                     0) == 0;
  }
  /// A place that this system does not have needs no rule.
  void allowBelow(const std::string& path, Rights rights) {
    const FileDescriptor item(::open(path.c_str(), O_PATH | O_CLOEXEC));
    if (item) allowBelow(item.get(), rights);
  }
  bool apply() { return ::syscall(SYS_landlock_restrict_self, descriptor_.get(), 0) == 0; }

 private:
  Rights known_;
  FileDescriptor descriptor_;
};

void allowWhatToolsNeed(Ruleset& rules, const std::string& moduleFolder) {
  for (const char* programs :
       {"/usr", "/bin", "/sbin", "/lib", "/lib32", "/lib64", "/libx32", moduleFolder.c_str()}) {
    rules.allowBelow(programs, running);
  }
  // Of other processes, /proc shows nothing here that needs rights over them.
  for (const char* settings : {"/etc", "/proc", "/sys/devices/system/cpu"}) {
    rules.allowBelow(settings, reading);
  }
  for (const char* source : {"/dev/urandom", "/dev/random", "/dev/zero"}) {
    rules.allowBelow(source, reading & ofFiles);
  }
  rules.allowBelow("/dev/null", (reading | changing) & ofFiles);
}

}  // namespace

int confineToFolder(int folder, const std::string& moduleFolder) {
  const long version =
      ::syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION);
  if (version < 1) return errno;
  Ruleset rules(rightsKnownTo(version));
  if (!rules) return errno;
  allowWhatToolsNeed(rules, moduleFolder);
  if (!rules.allowBelow(folder, changing) || !rules.apply()) return errno;
  return 0;
}

}  // namespace tavrin::shell
