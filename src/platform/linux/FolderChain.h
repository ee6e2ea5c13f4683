#pragma once

#include <sys/types.h>

#include <cstddef>
#include <string>
#include <vector>

#include "foundation/Result.h"
#include "platform/linux/FileDescriptor.h"

namespace tavrin {

/// The open folders from the root of a tree down to where a walk stands. Only the deepest are held
/// open; an outer one is opened again through ".." on the way back, to be listed on from where it
/// was, and must be the same folder, so that depth costs no handles and a folder that was moved
/// meanwhile leads nowhere else.
class FolderChain {
 public:
  /// `path` is what messages call the root.
  explicit FolderChain(std::string path) : path_(std::move(path)) {}

  /// Goes down into `folder`, a readable handle. The first one is the root and its name is unused.
  Status enter(FileDescriptor folder, const std::string& name);

  /// Goes back up and gives the handle of the folder that was left. Fails when the outer folder is
  /// not where it was.
  Result<FileDescriptor> leave();

  bool isEmpty() const { return levels_.empty(); }
  int current() const { return levels_.back().folder.get(); }
  /// What messages call the current folder.
  const std::string& path() const { return path_; }

 private:
  struct Level {
    FileDescriptor folder;
    std::size_t outerPathLength = 0;
    /// Known once the handle is closed.
    dev_t device = 0;
    ino_t inode = 0;
    off_t position = 0;
  };

  Status closeOutermost();
  Status reopen(Level& outer, int inner) const;

  std::vector<Level> levels_;
  std::string path_;
};

}  // namespace tavrin
