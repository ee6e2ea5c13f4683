#pragma once

#include <poll.h>
#include <stdlib.h>

#include <optional>
#include <string>

#include "platform/linux/Identity.h"
#include "platform/linux/LinuxUserDefaultsProvider.h"
#include "tests/platform/storage/ScratchFolder.h"
#include "tests/support/FakeLog.h"

namespace tavrin::test {

/// A configuration folder of its own for the time of a test.
class ScratchConfiguration {
 public:
  ScratchConfiguration() { use(folder_.path()); }
  ScratchConfiguration(const ScratchConfiguration&) = delete;
  ScratchConfiguration& operator=(const ScratchConfiguration&) = delete;
  ~ScratchConfiguration() { ::unsetenv("XDG_CONFIG_HOME"); }  // NOLINT(concurrency-mt-unsafe)

  /// Takes another folder instead.
  static void use(const std::string& path) {
    ::setenv("XDG_CONFIG_HOME", path.c_str(), 1);  // NOLINT(concurrency-mt-unsafe)
  }

  const ScratchFolder& folder() const { return folder_; }
  std::string domainFolder() const { return folder_ / identity::applicationId; }
  std::string database() const { return domainFolder() + "/defaults.sqlite"; }

 private:
  ScratchFolder folder_;
};

/// Waits until the descriptor is readable; false when that takes implausibly long.
inline bool waitReadable(int descriptor, int milliseconds = 30000) {
  pollfd entry{descriptor, POLLIN, 0};
  return ::poll(&entry, 1, milliseconds) == 1;
}

}  // namespace tavrin::test
