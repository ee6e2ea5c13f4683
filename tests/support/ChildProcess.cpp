#include "tests/support/ChildProcess.h"

#include <grp.h>
#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstddef>

namespace tavrin::testing {
namespace {

constexpr int notSetUp = 250;
constexpr uid_t nobody = 65534;

bool forbid(int number, int cause) {
  std::array<sock_filter, 4> program = {
      sock_filter BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
      sock_filter BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<unsigned>(number), 0, 1),
      sock_filter BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | static_cast<unsigned>(cause)),
      sock_filter BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW)};
  const sock_fprog filter = {static_cast<unsigned short>(program.size()), program.data()};
  return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
         ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) == 0;
}

}  // namespace

int inChildProcess(const std::function<int()>& body) {
  const pid_t child = ::fork();
  if (child == 0) ::_exit(body());
  int status = 0;
  if (child < 0 || ::waitpid(child, &status, 0) != child || !WIFEXITED(status)) return -1;
  return WEXITSTATUS(status) == notSetUp ? -1 : WEXITSTATUS(status);
}

int asNobody(const std::function<int()>& body) {
  return inChildProcess([&body] {
    const bool isNobody =
        ::setgroups(0, nullptr) == 0 && ::setgid(nobody) == 0 && ::setuid(nobody) == 0;
    return isNobody ? body() : notSetUp;
  });
}

int withoutSystemCall(int number, int cause, const std::function<int()>& body) {
  return inChildProcess(
      [number, cause, &body] { return forbid(number, cause) ? body() : notSetUp; });
}

void killAfter(unsigned microseconds, const std::function<void()>& body) {
  const pid_t child = ::fork();
  if (child == 0) {
    body();
    ::_exit(0);
  }
  if (child < 0) return;
  ::usleep(microseconds);
  ::kill(child, SIGKILL);
  int status = 0;
  ::waitpid(child, &status, 0);
}

}  // namespace tavrin::testing
