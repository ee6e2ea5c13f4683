#pragma once

#include <optional>

namespace tavrin {

/// Tells from outside when a process does nothing with files: it holds none open for writing alone,
/// as a copy does with its target, has no thread that waits for a disk, and hardly uses the
/// processor. Standard output and error do not count, nor does a database, which is open for
/// reading too. Reads of /proc what never waits for a disk.
class ProcessRest {
 public:
  explicit ProcessRest(int processId) : processId_(processId) {}

  /// Looks at the process, to be called at intervals of the same length. Returns how many looks in
  /// a row have found it at rest since the look before them; 0 when it is at work, cannot be seen,
  /// or is looked at for the first time.
  int look();

 private:
  int processId_;
  int looks_ = 0;
  /// The processor time in clock ticks at the look before the first at rest.
  std::optional<long> ticksBefore_;
};

}  // namespace tavrin
