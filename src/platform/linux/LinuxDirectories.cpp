#include "platform/linux/LinuxDirectories.h"

#include <pwd.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <vector>

#include "foundation/PathString.h"

namespace tavrin {

namespace {

std::string environmentVariable(const char* name) {
  // The environment is read while no thread changes it: nothing in this program ever does.
  const char* value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe)
  return value == nullptr ? std::string() : std::string(value);
}

std::string baseDirectory(const char* variable, const char* fallbackBelowHome) {
  std::string directory = environmentVariable(variable);
  if (directory.empty() || directory.front() != '/') {
    directory = appendingPathComponent(currentAccount().homeDirectory, fallbackBelowHome);
  }
  return standardizingPath(directory);
}

}  // namespace

std::string userConfigDirectory() {
  return baseDirectory("XDG_CONFIG_HOME", ".config");
}

std::string userDataDirectory() {
  return baseDirectory("XDG_DATA_HOME", ".local/share");
}

std::string userCacheDirectory() {
  return baseDirectory("XDG_CACHE_HOME", ".cache");
}

std::string userRuntimeDirectory() {
  const std::string directory = environmentVariable("XDG_RUNTIME_DIR");
  return directory.empty() || directory.front() != '/' ? std::string()
                                                       : standardizingPath(directory);
}

Account currentAccount() {
  std::vector<char> buffer(1024);
  passwd entry{};
  passwd* found = nullptr;
  while (getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found) == ERANGE) {
    buffer.resize(buffer.size() * 2);
  }
  if (found == nullptr) return {std::to_string(getuid()), environmentVariable("HOME")};
  return {entry.pw_name, standardizingPath(entry.pw_dir)};
}

std::string programDirectory() {
  char path[PATH_MAX];
  const ssize_t length = ::readlink("/proc/self/exe", path, sizeof path);
  if (length <= 0) return "/";
  return deletingLastPathComponent(std::string_view(path, static_cast<std::size_t>(length)));
}

}  // namespace tavrin
