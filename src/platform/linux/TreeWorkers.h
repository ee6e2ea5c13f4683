#pragma once

#include <sys/stat.h>

#include <atomic>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "foundation/Result.h"
#include "platform/linux/FileDescriptor.h"
#include "platform/linux/FileOperation.h"
#include "platform/linux/ItemMetadata.h"

namespace tavrin {

/// A folder whose contents are still to be walked. It can be walked by any thread, without a look
/// at the folders around it.
struct Subtree {
  FileDescriptor folder;
  /// The folder of the other tree, the copy, that belongs to it; owns nothing where there is none.
  FileDescriptor copy;
  std::string path;
  std::string copyPath;
  struct stat status = {};
  /// What of the whole operation lies in it, 0 to 1.
  double share = 1;
  /// What of the metadata of `folder` the copy has already.
  MetadataInPlace inPlace = {};
  bool isRoot = false;
  /// The folder around and the name in it, for a walk that removes.
  FileDescriptor parent = {};
  std::string name = {};
};

/// Walks a tree with several threads. The first walk begins at the root and gives subtrees away as
/// long as others want some, so that no thread waits while there is work and little is ever queued.
class TreeWorkers {
 public:
  /// Walks subtrees one after the other and keeps what it needs for that, such as buffers.
  using Walk = std::function<Status(Subtree)>;

  /// The threads that an operation uses at most: `count`, at least 1; 0 for what the machine has,
  /// but not more than 4. For all operations that begin later.
  static void setMostWorkers(unsigned count);

  explicit TreeWorkers(FileOperation& operation);
  TreeWorkers(const TreeWorkers&) = delete;
  TreeWorkers& operator=(const TreeWorkers&) = delete;
  ~TreeWorkers();

  /// Walks `root` and all that is given away; `makeWalk` is called once for each thread, on it.
  /// Returns when all is done, with the first failure, after which the other walks stop too.
  Status run(Subtree root, const std::function<Walk()>& makeWalk);

  /// Whether a walk should give away the next subtree that it comes to.
  bool wantsSubtrees() const { return queued_.load(std::memory_order_relaxed) < mostQueued_; }
  void give(Subtree subtree);

  /// Whether walks should end: another one failed, or the operation is cancelled.
  bool isStopped() const {
    return isStopped_.load(std::memory_order_relaxed) || operation_.isCancelled();
  }

 private:
  void work();
  std::optional<Subtree> take();
  void finish(const Status& status) noexcept;
  static Status walkGuarded(const Walk& walk, Subtree subtree);
  void startThread();

  FileOperation& operation_;
  std::size_t mostThreads_;
  std::size_t mostQueued_;
  const std::function<Walk()>* makeWalk_ = nullptr;
  std::atomic<std::size_t> queued_ = 0;
  std::atomic<bool> isStopped_ = false;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<Subtree> queue_;
  std::size_t walking_ = 0;
  std::optional<SystemError> failure_;
  std::vector<std::thread> threads_;
};

}  // namespace tavrin
