#pragma once

#include <deque>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "foundation/PropertyList.h"
#include "foundation/Result.h"
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
  /// What the desktop gave the caller for this program's windows; "" for nothing.
  std::string startupToken = {};

  bool operator==(const ExternalRequest&) const = default;
};

/// The line in which accepted requests wait for the main thread. Any thread may use it.
///
/// What the files of accepted requests hold is read before they are accepted, so that the caller
/// may remove or rewrite a file as soon as it has its answer, however long the request waits.
class AcceptedRequests {
 public:
  /// Bytes of files that wait to be handled, at most.
  static constexpr std::size_t maximumWaitingBytes = 256U << 20U;

  AcceptedRequests();

  /// Reads the files to be opened and adds the requests at the end; they stay together. A file that
  /// cannot be read is accepted, with the cause as what it holds. False, with nothing added, when
  /// the files would exceed maximumWaitingBytes.
  [[nodiscard]] bool push(const std::vector<ExternalRequest>& requests);

  /// The request at the head of the line, which leaves it; nothing when the line is empty.
  std::optional<ExternalRequest> take();

  /// An accepted file.
  struct File {
    Result<PropertyList::Data> contents;
    std::string startupToken;
  };

  /// What an accepted file held, each time the path was accepted once and in that order; nothing
  /// when it is not among the accepted ones.
  std::optional<File> takeContents(const std::string& path);

  std::size_t size() const;

  /// A descriptor that is readable as long as a request waits: one that an event loop can watch,
  /// also a loop inside the handling of an earlier request.
  int readyDescriptor() const { return ready_.get(); }

 private:
  mutable std::mutex mutex_;
  std::deque<ExternalRequest> requests_;
  std::map<std::string, std::deque<File>> contents_;
  std::size_t waitingBytes_ = 0;
  FileDescriptor ready_;
};

}  // namespace tavrin
