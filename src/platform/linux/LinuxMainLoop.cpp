#include "platform/linux/LinuxMainLoop.h"

#include <QCoreApplication>
#include <QEvent>
#include <QThread>
#include <QTimer>
#include <algorithm>
#include <exception>
#include <future>
#include <string>
#include <system_error>
#include <thread>
#include <utility>

namespace tavrin {

LinuxMainLoop::LinuxMainLoop(Log& log) : log_(log), waker_(*this) {}

LinuxMainLoop::~LinuxMainLoop() {
  std::unique_lock lock(mutex_);
  while (backgroundWorkCount_ > 0) {
    changed_.wait(lock, [this] { return backgroundWorkCount_ == 0 || !queue_.empty(); });
    lock.unlock();
    while (runNextQueued()) continue;
    lock.lock();
  }
}

bool LinuxMainLoop::isMainThread() const {
  return QThread::currentThread() == waker_.thread();
}

void LinuxMainLoop::async(std::function<void()> work) {
  const std::lock_guard lock(mutex_);
  queue_.push_back(std::move(work));
  changed_.notify_all();
  if (queue_.size() == 1) postWakeUp();
}

// The work waits in a queue of our own and one event says so; it runs one piece. While more is
// waiting the next event is posted before the piece runs: a nested loop sleeps over events that
// were posted before it began, and a piece may show a modal panel.
void LinuxMainLoop::postWakeUp() {
  QCoreApplication::postEvent(&waker_, new QEvent(QEvent::User));
}

void LinuxMainLoop::sync(const std::function<void()>& work) {
  if (isMainThread()) {
    work();
    return;
  }
  std::packaged_task<void()> task(work);
  std::future<void> done = task.get_future();
  async([&task] { task(); });
  done.get();
}

void LinuxMainLoop::performAfterDelay(double seconds, std::function<void()> work) {
  if (!isMainThread()) {
    async([this, seconds, work = std::move(work)] { performAfterDelay(seconds, work); });
    return;
  }
  constexpr double longestDelay = 2.0e9;
  const auto milliseconds = static_cast<int>(std::clamp(seconds * 1000.0, 0.0, longestDelay));
  QTimer::singleShot(milliseconds, &waker_, [this, work = std::move(work)] { runGuarded(work); });
}

void LinuxMainLoop::runInBackground(std::function<void()> work) {
  {
    const std::lock_guard lock(mutex_);
    ++backgroundWorkCount_;
  }
  try {
    std::thread([this, work = std::move(work)]() mutable {
      runGuarded(work);
      work = nullptr;
      backgroundWorkEnded();
    }).detach();
  } catch (const std::system_error& error) {
    backgroundWorkEnded();
    log_.write(std::string("start a thread: ") + error.what());
  }
}

void LinuxMainLoop::backgroundWorkEnded() {
  // Told while locked: the loop may be gone as soon as the lock is.
  const std::lock_guard lock(mutex_);
  --backgroundWorkCount_;
  changed_.notify_all();
}

bool LinuxMainLoop::runNextQueued() {
  std::function<void()> work;
  {
    const std::lock_guard lock(mutex_);
    if (queue_.empty()) return false;
    work = std::move(queue_.front());
    queue_.pop_front();
    if (!queue_.empty()) postWakeUp();
  }
  runGuarded(work);
  return true;
}

void LinuxMainLoop::runGuarded(const std::function<void()>& work) noexcept {
  try {
    work();
  } catch (const std::exception& error) {
    log_.write(std::string("queued work failed: ") + error.what());
  } catch (...) {
    log_.write("queued work failed");
  }
}

void LinuxMainLoop::Waker::customEvent(QEvent* /*event*/) {
  loop_.runNextQueued();
}

}  // namespace tavrin
