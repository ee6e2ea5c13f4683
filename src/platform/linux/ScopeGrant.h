#pragma once

#include <memory>
#include <string>

#include "foundation/Result.h"
#include "platform/linux/FileDescriptor.h"
#include "platform/linux/FileIdentity.h"

namespace tavrin {

/// An item that the user has opened to the program, held by handles. As long as they are held, no
/// other item gets its inode number.
class ScopeGrant {
 public:
  /// Takes hold of the item at a real path. Fails with too_many_symbolic_link_levels when a
  /// symbolic link stands on the way or at its end.
  static Result<std::shared_ptr<const ScopeGrant>> open(const std::string& realPath);

  /// The real path that the item was granted at, without trailing separator unless it is "/".
  const std::string& path() const { return path_; }
  const FileIdentity& identity() const { return identity_; }
  bool isFolder() const { return isFolder_; }

  /// The item, to work from (O_PATH).
  int item() const { return item_.get(); }
  /// The folder that the item stands in, to work from (O_PATH); "/" is its own.
  int parent() const { return parent_.get(); }

  /// Whether the item still stands at its path, and not another one or none.
  bool standsAtItsPath() const;

 private:
  ScopeGrant() = default;

  std::string path_;
  FileIdentity identity_;
  bool isFolder_ = false;
  FileDescriptor parent_;
  FileDescriptor item_;
};

}  // namespace tavrin
