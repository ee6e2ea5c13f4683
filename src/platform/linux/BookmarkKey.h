#pragma once

#include <array>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>

#include "foundation/Result.h"
#include "platform/Log.h"

namespace tavrin {

/// The user's secret that bookmarks are sealed with, kept in a file that only the user may read.
class BookmarkKey {
 public:
  using Bytes = std::array<std::uint8_t, 32>;

  /// `folder` is where the file "bookmark.key" lies; it is made, for the user alone, when missing.
  BookmarkKey(std::string folder, Log& log);

  /// The key, read or made at the first call. Of several processes that make it at once, one does
  /// and all get its key. A file that cannot be a key, or that others may read, is set aside as
  /// "bookmark.key.damaged", which the log tells, and a new key is made. May be called on any
  /// thread.
  Result<Bytes> bytes();

 private:
  Result<Bytes> readOrMake() const;
  Status setAside(int folder) const;

  std::string folder_;
  Log& log_;
  std::mutex mutex_;
  std::optional<Bytes> bytes_;
};

}  // namespace tavrin
