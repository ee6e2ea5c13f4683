#pragma once

#include <spawn.h>

#include <string>
#include <vector>

#include "foundation/Result.h"
#include "platform/linux/FileDescriptor.h"

namespace tavrin {

/// Both ends are closed in programs that are started.
struct Pipe {
  FileDescriptor readEnd;
  FileDescriptor writeEnd;
};

Result<Pipe> makePipe();

/// Starts programs with the handles that they are given, no signal blocked and none ignored.
class SpawnSettings {
 public:
  SpawnSettings();
  SpawnSettings(const SpawnSettings&) = delete;
  SpawnSettings& operator=(const SpawnSettings&) = delete;
  ~SpawnSettings();

  /// Gives the program a file to read under the number `target`.
  void open(int target, const char* path);
  /// Gives the program a handle under the number `target`.
  void put(const FileDescriptor& descriptor, int target);
  /// Starts the program at the path that is the first of `words`, its arguments. Returns the
  /// child's process number; the caller waits for it.
  Result<int> spawn(std::vector<std::string> words, std::vector<std::string> environment);

 private:
  posix_spawn_file_actions_t actions_{};
  posix_spawnattr_t attributes_{};
};

}  // namespace tavrin
