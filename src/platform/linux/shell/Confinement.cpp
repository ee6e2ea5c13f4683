#include "platform/linux/shell/Confinement.h"

#include <sys/prctl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "platform/linux/shell/CallFilter.h"
#include "platform/linux/shell/Capabilities.h"
#include "platform/linux/shell/FileRules.h"
#include "platform/linux/shell/ReadOnlyMounts.h"

namespace tavrin::shell {

namespace {

std::string because(int cause) {
  return " (" + std::generic_category().message(cause) + ")";
}

/// What is missing; "" for nothing.
std::string confineFiles(int folder, const std::string& moduleFolder) {
  const int rulesCause = confineToFolder(folder, moduleFolder);
  if (rulesCause == 0) return "";
  const int mountsCause = mountAllElseReadOnly(folder);
  const std::string lost = "no Landlock" + because(rulesCause);
  if (mountsCause == 0) return lost + ", files are protected by read-only mounts";
  return lost + " and no mounts of their own" + because(mountsCause) + ", files are not protected";
}

}  // namespace

std::vector<std::string> confine(int folder, const std::string& moduleFolder) {
  std::vector<std::string> missing;
  // A terminal takes what its processes push into it for commands that were typed.
  ::setsid();
  const bool staysUnprivileged = ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0;
  if (!staysUnprivileged) missing.push_back("programs may gain privileges" + because(errno));
  if (auto lost = confineFiles(folder, moduleFolder); !lost.empty()) {
    missing.push_back(std::move(lost));
  }
  // After the mounts, which need some.
  if (const int cause = giveUpPrivileges(); cause != 0) {
    missing.push_back("privileges are kept" + because(cause));
  }
  if (const int cause = refuseOutsideCalls(); cause != 0) {
    missing.push_back("no filter of system calls" + because(cause) +
                      ", the network and other processes are within reach");
  }
  return missing;
}

}  // namespace tavrin::shell
