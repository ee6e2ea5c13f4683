#include "tests/support/ScratchFolder.h"

#include <spawn.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <vector>

namespace tavrin::testing {

int runProgram(const std::string& program, const std::string& first, const std::string& second,
               const std::string& third) {
  std::vector<std::string> words = {program, first, second};
  if (!third.empty()) words.push_back(third);
  std::vector<char*> arguments;
  arguments.reserve(words.size() + 1);
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  pid_t child = 0;
  if (::posix_spawnp(&child, program.c_str(), nullptr, nullptr, arguments.data(), environ) != 0) {
    return -1;
  }
  int status = 0;
  if (::waitpid(child, &status, 0) != child || !WIFEXITED(status)) return -1;
  return WEXITSTATUS(status);
}

ScratchFolder::ScratchFolder(const std::string& base) {
  const std::string parent = base.empty() ? std::filesystem::temp_directory_path().string() : base;
  path_ = parent + "/tavrin-test-XXXXXX";
  if (::mkdtemp(path_.data()) == nullptr) throw std::runtime_error("no folder below " + parent);
}

ScratchFolder::~ScratchFolder() {
  runProgram("rm", "-rf", "--", path_);
}

MountedFolder::MountedFolder(const std::string& options) {
  isMounted_ = ::mount("tmpfs", path().c_str(), "tmpfs", 0, options.c_str()) == 0;
}

MountedFolder::~MountedFolder() {
  if (isMounted_) ::umount2(path().c_str(), MNT_DETACH);
}

bool MountedFolder::makeReadOnly() {
  return ::mount("tmpfs", path().c_str(), "tmpfs", MS_REMOUNT | MS_RDONLY, nullptr) == 0;
}

}  // namespace tavrin::testing
