#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "foundation/Result.h"

namespace tavrin {

/// What tells one item from every other on this system, also from one that comes after it at the
/// same path: inode numbers are used again, birth times hardly.
struct FileIdentity {
  std::uint64_t device = 0;
  std::uint64_t inode = 0;
  /// Since 1970 in nanoseconds; 0 on file systems that keep none.
  std::int64_t birthTime = 0;

  bool operator==(const FileIdentity&) const = default;
};

/// The identity of the item `name` in the folder `folder` (a descriptor, or AT_FDCWD for a path),
/// not following a symbolic link; "" is the item that `folder` itself is open on.
Result<FileIdentity> identityAt(int folder, const std::string& name);

/// The identity of the item at an absolute path of any length, the last component not followed.
Result<FileIdentity> identityAtPath(const std::string& path);

}  // namespace tavrin
