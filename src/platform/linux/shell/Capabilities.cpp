#include "platform/linux/shell/Capabilities.h"

#include <linux/capability.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <cerrno>

namespace tavrin::shell {

namespace {

using Sets = std::array<__user_cap_data_struct, _LINUX_CAPABILITY_U32S_3>;

constexpr std::array<unsigned long, 5> kept = {CAP_CHOWN, CAP_DAC_OVERRIDE, CAP_DAC_READ_SEARCH,
                                               CAP_FOWNER, CAP_FSETID};

bool isKept(unsigned long capability) {
  for (const unsigned long one : kept) {
    if (one == capability) return true;
  }
  return false;
}

bool hasPrivileges(const Sets& sets) {
  return sets[0].permitted != 0 || sets[1].permitted != 0;
}

/// What programs that root runs may gain.
bool lowerBound() {
  for (unsigned long capability = 0; ::prctl(PR_CAPBSET_READ, capability, 0, 0, 0) >= 0;
       ++capability) {
    if (!isKept(capability) && ::prctl(PR_CAPBSET_DROP, capability, 0, 0, 0) != 0) return false;
  }
  return true;
}

}  // namespace

int giveUpPrivileges() {
  __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
  Sets sets{};
  if (::syscall(SYS_capget, &header, sets.data()) != 0) return errno;
  if (!hasPrivileges(sets)) return 0;
  if (!lowerBound()) return errno;
  unsigned mask = 0;
  for (const unsigned long capability : kept) mask |= 1U << capability;
  const unsigned left = sets[0].permitted & mask;
  sets[0] = {left, left, 0};
  sets[1] = {0, 0, 0};
  return ::syscall(SYS_capset, &header, sets.data()) == 0 ? 0 : errno;
}

}  // namespace tavrin::shell
