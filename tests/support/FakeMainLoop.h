#pragma once

#include <functional>
#include <map>
#include <thread>
#include <utility>

#include "platform/MainLoop.h"

namespace tavrin {

/// A main loop whose time a test moves. The thread that makes it is the main one; background work
/// waits for the test too.
class FakeMainLoop final : public MainLoop {
 public:
  bool isMainThread() const override { return std::this_thread::get_id() == mainThread_; }

  void async(std::function<void()> work) override { performAfterDelay(0, std::move(work)); }

  void sync(const std::function<void()>& work) override { work(); }

  void performAfterDelay(double seconds, std::function<void()> work) override {
    queue_.emplace(now_ + seconds, std::move(work));
  }

  void runInBackground(std::function<void()> work) override { async(std::move(work)); }

  /// Runs what is due within the next `seconds`, in the order of its time, and what that queues
  /// within them; what is due at one time runs in the order in which it was queued.
  void advance(double seconds) {
    const double end = now_ + seconds;
    while (!queue_.empty() && queue_.begin()->first <= end) {
      auto next = queue_.extract(queue_.begin());
      now_ = next.key();
      next.mapped()();
    }
    now_ = end;
  }

  /// Runs what is due now.
  void runPending() { advance(0); }

  bool isIdle() const { return queue_.empty(); }

 private:
  const std::thread::id mainThread_ = std::this_thread::get_id();
  double now_ = 0;
  std::multimap<double, std::function<void()>> queue_;
};

}  // namespace tavrin
