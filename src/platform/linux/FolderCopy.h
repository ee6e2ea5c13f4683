#pragma once

#include <sys/stat.h>

#include <optional>
#include <string>
#include <utility>

#include "foundation/Result.h"
#include "platform/linux/FileDescriptor.h"
#include "platform/linux/FileOperation.h"
#include "platform/linux/FolderEntry.h"
#include "platform/linux/HardLinks.h"
#include "platform/linux/ItemReference.h"

namespace tavrin {

/// What a copy is made for. The source of a move must be such that it can go afterwards.
enum class CopyPurpose { Copy, Move };

/// Copies a folder and all that is in it under a partial name, with several threads. Needs memory
/// for the names of a piece of each folder on the way, and a fixed number of handles.
class FolderCopy {
 public:
  /// `source` and `operation` are borrowed; `destination` is where the copy stands in the end,
  /// `partialName` the name beside it that it grows under.
  FolderCopy(const ItemReference& source, const ItemReference& destination,
             const std::string& partialName, CopyPurpose purpose, FileOperation& operation);

  /// Copies. After a failure the partial item holds what was copied so far.
  Status run();

  /// The open root of the copy, from before anything was written into it.
  FileDescriptor takeRoot() { return std::move(root_); }
  /// The status of the source's root.
  const struct stat& sourceStatus() const { return sourceStatus_; }

 private:
  Status createRoot();
  Status copyContents(FileDescriptor source);

  const ItemReference& sourceItem_;
  const ItemReference& destinationItem_;
  const std::string& partialName_;
  CopyPurpose purpose_;
  FileOperation& operation_;
  FileDescriptor root_;
  struct stat rootStatus_ = {};
  struct stat sourceStatus_ = {};
  std::optional<HardLinks> links_;
};

}  // namespace tavrin
