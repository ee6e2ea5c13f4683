#include "platform/linux/ProcessSpawning.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <csignal>

#include "platform/linux/SystemErrors.h"

namespace tavrin {

namespace {

std::vector<char*> pointersTo(std::vector<std::string>& words) {
  std::vector<char*> pointers;
  pointers.reserve(words.size() + 1);
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  return pointers;
}

}  // namespace

Result<Pipe> makePipe() {
  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) return systemError("make a pipe", "");
  return Pipe{FileDescriptor(ends[0]), FileDescriptor(ends[1])};
}

SpawnSettings::SpawnSettings() {
  ::posix_spawn_file_actions_init(&actions_);
  ::posix_spawnattr_init(&attributes_);
  sigset_t none;
  sigset_t all;
  ::sigemptyset(&none);
  ::sigfillset(&all);
  ::posix_spawnattr_setsigmask(&attributes_, &none);
  ::posix_spawnattr_setsigdefault(&attributes_, &all);
  ::posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
}

SpawnSettings::~SpawnSettings() {
  ::posix_spawn_file_actions_destroy(&actions_);
  ::posix_spawnattr_destroy(&attributes_);
}

void SpawnSettings::open(int target, const char* path) {
  ::posix_spawn_file_actions_addopen(&actions_, target, path, O_RDONLY, 0);
}

void SpawnSettings::put(const FileDescriptor& descriptor, int target) {
  ::posix_spawn_file_actions_adddup2(&actions_, descriptor.get(), target);
}

Result<int> SpawnSettings::spawn(std::vector<std::string> words,
                                 std::vector<std::string> environment) {
  pid_t child = -1;
  const int cause = ::posix_spawn(&child, words.front().c_str(), &actions_, &attributes_,
                                  pointersTo(words).data(), pointersTo(environment).data());
  if (cause != 0) return systemError("start", words.front(), cause);
  return static_cast<int>(child);
}

}  // namespace tavrin
