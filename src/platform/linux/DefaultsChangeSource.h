#pragma once

#include <string>

#include "platform/Log.h"
#include "platform/linux/FileDescriptor.h"

namespace tavrin {

/// Tells the main loop, through one descriptor, that settings may have changed: files in watched
/// folders by the system's own notices (inotify), values in memory by `wake`. Nothing polls.
class DefaultsChangeSource {
 public:
  explicit DefaultsChangeSource(Log& log) : log_(log) {}

  /// Readable when something may have changed; stays the same. -1 when the system has none left.
  int descriptor();

  /// Watches a folder from now on; one that is watched already stays so, and for "" only `wake` is
  /// made ready. A failure reaches the log.
  void watch(const std::string& folder);

  /// Makes the descriptor readable. Any thread may call it once `watch` was called.
  void wake();

  /// Makes the descriptor unreadable until the next change. Returns whether a watched folder went
  /// away, so that all must be watched again.
  bool drain();

 private:
  bool open();

  Log& log_;
  FileDescriptor descriptor_;
  FileDescriptor notices_;
  FileDescriptor wakeups_;
  bool failed_ = false;
};

}  // namespace tavrin
