#pragma once

#include <functional>

namespace tavrin {

/// The event loop of the main thread and the threads beside it.
class MainLoop {
 public:
  virtual ~MainLoop() = default;

  virtual bool isMainThread() const = 0;

  /// Queues work on the main thread, behind what is queued already. Any thread may call it.
  virtual void async(std::function<void()> work) = 0;

  /// Runs work on the main thread and returns when it is done; on the main thread, at once.
  virtual void sync(const std::function<void()>& work) = 0;

  /// Runs work on the main thread after `seconds`.
  virtual void performAfterDelay(double seconds, std::function<void()> work) = 0;

  /// Runs work on a thread of its own.
  virtual void runInBackground(std::function<void()> work) = 0;
};

}  // namespace tavrin
