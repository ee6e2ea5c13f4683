#pragma once

#include <deque>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/FileDescriptor.h"

namespace tavrin {

/// What another program asked of this one.
struct ExternalRequest {
  enum class Kind {
    /// Open the file `path`.
    Open,
    /// The user launched the running program again.
    Reopen,
    Terminate,
  };
  Kind kind = Kind::Reopen;
  std::string path = {};

  bool operator==(const ExternalRequest&) const = default;
};

/// The line in which accepted requests wait for the main thread. Any thread may use it.
class AcceptedRequests {
 public:
  AcceptedRequests();

  /// Adds requests at the end; they stay together.
  void push(const std::vector<ExternalRequest>& requests);

  /// The request at the head of the line, which leaves it; nothing when the line is empty.
  std::optional<ExternalRequest> take();

  std::size_t size() const;

  /// A descriptor that is readable as long as a request waits: one that an event loop can watch,
  /// also a loop inside the handling of an earlier request.
  int readyDescriptor() const { return ready_.get(); }

 private:
  mutable std::mutex mutex_;
  std::deque<ExternalRequest> requests_;
  FileDescriptor ready_;
};

}  // namespace tavrin
