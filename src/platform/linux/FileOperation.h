#pragma once

#include <atomic>
#include <cstdint>
#include <functional>

#include "foundation/Result.h"

namespace tavrin {

/// One copy, move or removal, as those see it who show or end it. The engine tells it how far the
/// work is, from all of its threads, and asks whether to go on.
class FileOperation {
 public:
  FileOperation() = default;
  virtual ~FileOperation() = default;
  FileOperation(const FileOperation&) = delete;
  FileOperation& operator=(const FileOperation&) = delete;

  /// Carries out the part of an operation that may take long and gives its result. The engine calls
  /// it at most once, on the thread that began the operation; what takes a moment, such as a rename
  /// or the copy of a small file, never comes here. An heir may let another thread do the work and
  /// serve the user meanwhile, but returns only when the work has ended.
  virtual Status runLongPart(const std::function<Status()>& work) { return work(); }

  /// Asks the work to stop soon: it fails with operation_canceled and leaves everything whole, what
  /// was copied so far removed, what was removed so far gone. Without effect once the result has
  /// its name. Any thread.
  void cancel() { isCancelled_.store(true, std::memory_order_relaxed); }
  bool isCancelled() const { return isCancelled_.load(std::memory_order_relaxed); }

  /// Items that are done, files and folders alike. Any thread.
  void addItems(std::uint64_t count) { items_.fetch_add(count, std::memory_order_relaxed); }
  std::uint64_t items() const { return items_.load(std::memory_order_relaxed); }

  /// Bytes of files that are copied, holes included. Any thread.
  void addBytes(std::uint64_t count) { bytes_.fetch_add(count, std::memory_order_relaxed); }
  std::uint64_t bytes() const { return bytes_.load(std::memory_order_relaxed); }

  /// The share of the whole that is done, 0 to 1. A folder's share is spread evenly over what is
  /// found in it, so that it only grows and needs no second walk. Any thread.
  void addShare(double share) { share_.fetch_add(share, std::memory_order_relaxed); }
  double share() const { return share_.load(std::memory_order_relaxed); }

 private:
  std::atomic<std::uint64_t> items_ = 0;
  std::atomic<std::uint64_t> bytes_ = 0;
  std::atomic<double> share_ = 0;
  std::atomic<bool> isCancelled_ = false;
};

}  // namespace tavrin
