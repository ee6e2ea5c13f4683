#pragma once

#include <chrono>
#include <exception>
#include <functional>
#include <optional>
#include <thread>

#include "foundation/Result.h"
#include "platform/linux/FileDescriptor.h"

namespace tavrin {

/// Work on a thread of its own, which has ended when this object is gone.
class WorkThread {
 public:
  using Clock = std::chrono::steady_clock;

  /// `work` outlives this object. Where the system gives no thread, it is done here.
  explicit WorkThread(const std::function<Status()>& work);
  /// Waits for the end of the work.
  ~WorkThread();
  WorkThread(const WorkThread&) = delete;
  WorkThread& operator=(const WorkThread&) = delete;

  /// Whether the work has ended, at `time` at the latest.
  bool hasEndedBy(Clock::time_point time) const;

  /// Readable once the work has ended; -1 when it has from the start.
  int endDescriptor() const { return ended_.get(); }

  /// Waits for the end of the work. Gives what it gave, or throws what it threw. To be called once.
  Status result();

 private:
  void run(const std::function<Status()>& work) noexcept;

  FileDescriptor ended_;
  /// Of the thread until it has ended.
  std::optional<Status> result_;
  std::exception_ptr failure_;
  std::thread thread_;
};

}  // namespace tavrin
