#include "platform/linux/TreeWorkers.h"

#include <algorithm>
#include <exception>
#include <system_error>
#include <utility>

namespace tavrin {
namespace {

// More than four wait for each other in the locks of one file system.
constexpr unsigned mostWorkersByDefault = 4;
// A thread takes the next subtree from here while the one that gives away is inside a large folder.
constexpr std::size_t queuedForEachThread = 4;

std::atomic<unsigned> askedWorkers = 0;

unsigned mostWorkers() {
  const unsigned asked = askedWorkers.load(std::memory_order_relaxed);
  if (asked > 0) return asked;
  return std::clamp(std::thread::hardware_concurrency(), 1U, mostWorkersByDefault);
}

}  // namespace

void TreeWorkers::setMostWorkers(unsigned count) {
  askedWorkers.store(count, std::memory_order_relaxed);
}

TreeWorkers::TreeWorkers(FileOperation& operation)
    : operation_(operation),
      mostThreads_(mostWorkers() - 1),
      mostQueued_(mostThreads_ * queuedForEachThread) {}

TreeWorkers::~TreeWorkers() {
  for (std::thread& thread : threads_) thread.join();
}

Status TreeWorkers::run(Subtree root, const std::function<Walk()>& makeWalk) {
  makeWalk_ = &makeWalk;
  {
    const std::lock_guard lock(mutex_);
    queue_.push_back(std::move(root));
    queued_ = queue_.size();
  }
  work();
  for (std::thread& thread : threads_) thread.join();
  threads_.clear();
  return failure_ ? Status(*failure_) : success();
}

void TreeWorkers::give(Subtree subtree) {
  {
    const std::lock_guard lock(mutex_);
    queue_.push_back(std::move(subtree));
    queued_ = queue_.size();
    if (threads_.size() < mostThreads_) startThread();
  }
  changed_.notify_one();
}

void TreeWorkers::startThread() {
  try {
    threads_.emplace_back([this] { work(); });
  } catch (const std::system_error&) {
    // With as many threads as there are the work is done too.
    mostThreads_ = threads_.size();
  }
}

/// Whatever a walk throws must not keep the others waiting.
Status TreeWorkers::walkGuarded(const Walk& walk, Subtree subtree) {
  const std::string path = subtree.path;
  try {
    return walk(std::move(subtree));
  } catch (const std::exception&) {
    return SystemError{"walk", path, std::make_error_code(std::errc::not_enough_memory)};
  }
}

void TreeWorkers::work() {
  Walk walk;
  while (std::optional<Subtree> subtree = take()) {
    if (!walk) walk = (*makeWalk_)();
    finish(walkGuarded(walk, std::move(*subtree)));
  }
}

std::optional<Subtree> TreeWorkers::take() {
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [this] { return !queue_.empty() || walking_ == 0; });
  if (queue_.empty()) return std::nullopt;
  std::optional<Subtree> subtree = std::move(queue_.front());
  queue_.pop_front();
  queued_ = queue_.size();
  ++walking_;
  return subtree;
}

void TreeWorkers::finish(const Status& status) noexcept {
  const std::lock_guard lock(mutex_);
  --walking_;
  if (!status) {
    if (!failure_) failure_ = status.error();
    isStopped_ = true;
    queue_.clear();
    queued_ = 0;
  }
  if (walking_ == 0 && queue_.empty()) changed_.notify_all();
}

}  // namespace tavrin
