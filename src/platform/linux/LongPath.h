#pragma once

#include <sys/stat.h>

#include <string>

#include "foundation/Result.h"
#include "platform/linux/FileDescriptor.h"

namespace tavrin {

/// A path in the form that system calls take whatever its length: what is left of it, short enough,
/// relative to a folder.
struct ReachedPath {
  /// Owns nothing when `rest` is the whole path.
  FileDescriptor folder;
  /// A path for the `*at` calls together with `base()`.
  std::string rest;

  int base() const;
};

/// Opens the folders on the way of an absolute path of any length, following symbolic links, until
/// the rest is short enough for a system call. Fails where such a folder cannot be entered, and
/// with invalid_argument for a path that is relative or holds a NUL byte.
Result<ReachedPath> reachPath(const std::string& path);

enum class LastLink { Follow, Keep };

/// fstatat for a path of any length. `lastLink` says whether a symbolic link as the last component
/// is followed.
Result<struct stat> statusAtPath(const std::string& path, LastLink lastLink);

}  // namespace tavrin
