#pragma once

#include <QObject>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>

#include "platform/Log.h"
#include "platform/MainLoop.h"

namespace tavrin {

/// The event loop of Qt. Made on the main thread, which is the one that runs the loop; work that is
/// queued before the loop runs is kept for it. An exception that queued work lets out is logged and
/// ends there; one that sync's work lets out reaches sync's caller.
class LinuxMainLoop final : public MainLoop {
 public:
  explicit LinuxMainLoop(Log& log);

  /// Waits for the background work that still runs, and runs what that queues meanwhile. Work that
  /// is queued otherwise is dropped.
  ~LinuxMainLoop() override;
  LinuxMainLoop(const LinuxMainLoop&) = delete;
  LinuxMainLoop& operator=(const LinuxMainLoop&) = delete;

  bool isMainThread() const override;
  void async(std::function<void()> work) override;
  void sync(const std::function<void()>& work) override;
  void performAfterDelay(double seconds, std::function<void()> work) override;
  void runInBackground(std::function<void()> work) override;

 private:
  class Waker : public QObject {
   public:
    explicit Waker(LinuxMainLoop& loop) : loop_(loop) {}

   protected:
    void customEvent(QEvent* event) override;

   private:
    LinuxMainLoop& loop_;
  };

  void postWakeUp();
  bool runNextQueued();
  void runGuarded(const std::function<void()>& work) noexcept;
  void backgroundWorkEnded();

  Log& log_;
  Waker waker_;
  std::mutex mutex_;
  std::condition_variable changed_;
  /// Guarded by mutex_, as the two below.
  std::deque<std::function<void()>> queue_;
  int backgroundWorkCount_ = 0;
};

}  // namespace tavrin
