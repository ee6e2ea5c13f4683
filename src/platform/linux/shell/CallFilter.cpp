#include "platform/linux/shell/CallFilter.h"

#include <fcntl.h>
#include <sched.h>
#include <seccomp.h>

#include <cerrno>
#include <initializer_list>
#include <memory>

namespace tavrin::shell {

namespace {

using Filter = std::unique_ptr<void, decltype(&::seccomp_release)>;

constexpr auto refused = SCMP_ACT_ERRNO(EACCES);

constexpr auto networkAndServices = {"socket", "socketcall",
                                     // Opens sockets behind the filter's back.
                                     "io_uring_setup"};

constexpr auto otherProcesses = {"kill",
                                 "tkill",
                                 "tgkill",
                                 "rt_sigqueueinfo",
                                 "rt_tgsigqueueinfo",
                                 "pidfd_send_signal",
                                 "pidfd_getfd",
                                 "ptrace",
                                 "process_vm_readv",
                                 "process_vm_writev",
                                 "process_madvise",
                                 "setpriority",
                                 "ioprio_set",
                                 "sched_setscheduler",
                                 "sched_setparam",
                                 "sched_setattr",
                                 "add_key",
                                 "request_key",
                                 "keyctl",
                                 "ipc",
                                 "shmget",
                                 "shmat",
                                 "shmctl",
                                 "msgget",
                                 "msgsnd",
                                 "msgctl",
                                 "semget",
                                 "semop",
                                 "semtimedop",
                                 "semctl",
                                 "mq_open",
                                 "mq_unlink"};

constexpr auto fileAttributes = {
    "chmod", "fchmod", "fchmodat", "chown", "fchown", "lchown", "fchownat", "chown32", "fchown32",
    "lchown32", "utime", "utimes", "futimesat", "utimensat", "utimensat_time64", "setxattr",
    "lsetxattr", "fsetxattr", "removexattr", "lremovexattr", "fremovexattr",
    // By path, which Landlock knows from its third version on.
    "truncate", "truncate64"};

constexpr auto mountsAndNamespaces = {
    "mount",  "umount",  "umount2",     "mount_setattr", "move_mount", "open_tree",
    "fsopen", "fsmount", "fspick",      "pivot_root",    "chroot",     "unshare",
    "setns",  "bpf",     "userfaultfd", "quotactl",      "quotactl_fd"};

// Calls that are younger than every program here, on all architectures: they change modes and
// attributes too, and the library may not know them yet.
constexpr int firstYoungCall = 450;
constexpr int lastYoungCall = 600;

bool refuse(const Filter& filter, std::initializer_list<const char*> calls) {
  bool isComplete = true;
  for (const char* name : calls) {
    const int call = ::seccomp_syscall_resolve_name(name);
    if (call == __NR_SCMP_ERROR) continue;
    isComplete = ::seccomp_rule_add(filter.get(), refused, call, 0) == 0 && isComplete;
  }
  return isComplete;
}

bool refuseByArguments(const Filter& filter) {
  const scmp_arg_cmp makesUserNamespace{0, SCMP_CMP_MASKED_EQ, CLONE_NEWUSER, CLONE_NEWUSER};
  const scmp_arg_cmp isOtherProcess{0, SCMP_CMP_NE, 0, 0};
  const int clone = SCMP_SYS(clone);
  return ::seccomp_rule_add(filter.get(), refused, clone, 1, makesUserNamespace) == 0 &&
         ::seccomp_rule_add(filter.get(), refused, SCMP_SYS(prlimit64), 1, isOtherProcess) == 0 &&
         ::seccomp_rule_add(filter.get(), refused, SCMP_SYS(sched_setaffinity), 1,
                            isOtherProcess) == 0;
}

/// Opening can empty a file that is not opened for writing, or for neither reading nor writing.
/// Landlock knows of that from its third version on, and lets the last kind pass anywhere.
bool refuseEmptyingByOpening(const Filter& filter) {
  constexpr scmp_datum_t kinds = O_ACCMODE | O_TRUNC;
  const auto refuseFlags = [&](int call, unsigned argument) {
    const scmp_arg_cmp empties{argument, SCMP_CMP_MASKED_EQ, kinds, O_RDONLY | O_TRUNC};
    const scmp_arg_cmp opensForNothing{argument, SCMP_CMP_MASKED_EQ, O_ACCMODE, O_ACCMODE};
    return ::seccomp_rule_add(filter.get(), refused, call, 1, empties) == 0 &&
           ::seccomp_rule_add(filter.get(), refused, call, 1, opensForNothing) == 0;
  };
  // The flags of openat2 cannot be seen from here; who uses it can do without.
  return refuseFlags(SCMP_SYS(openat), 2) && refuseFlags(SCMP_SYS(open), 1) &&
         ::seccomp_rule_add(filter.get(), SCMP_ACT_ERRNO(ENOSYS), SCMP_SYS(openat2), 0) == 0;
}

/// The C library knows what to do without them; the flags of clone3 cannot be seen from here.
bool denyYoungCalls(const Filter& filter) {
  constexpr auto unknown = SCMP_ACT_ERRNO(ENOSYS);
  bool isComplete = ::seccomp_rule_add(filter.get(), unknown, SCMP_SYS(clone3), 0) == 0;
  for (int call = firstYoungCall; call <= lastYoungCall; ++call) {
    isComplete = ::seccomp_rule_add(filter.get(), unknown, call, 0) == 0 && isComplete;
  }
  return isComplete;
}

}  // namespace

int refuseOutsideCalls() {
  const Filter filter(::seccomp_init(SCMP_ACT_ALLOW), ::seccomp_release);
  if (!filter) return ENOMEM;
  ::seccomp_attr_set(filter.get(), SCMP_FLTATR_ACT_BADARCH, SCMP_ACT_ERRNO(ENOSYS));
  const bool isComplete = refuse(filter, networkAndServices) && refuse(filter, otherProcesses) &&
                          refuse(filter, fileAttributes) && refuse(filter, mountsAndNamespaces) &&
                          refuseByArguments(filter) && refuseEmptyingByOpening(filter) &&
                          denyYoungCalls(filter);
  return isComplete ? -::seccomp_load(filter.get()) : EINVAL;
}

}  // namespace tavrin::shell
