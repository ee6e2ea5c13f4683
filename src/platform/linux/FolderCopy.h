#pragma once

#include <sys/stat.h>

#include <optional>
#include <string>
#include <vector>

#include "foundation/Result.h"
#include "platform/linux/FileDescriptor.h"
#include "platform/linux/FolderChain.h"
#include "platform/linux/FolderListing.h"
#include "platform/linux/HardLinks.h"
#include "platform/linux/ItemCopy.h"
#include "platform/linux/ItemReference.h"

namespace tavrin {

/// What a copy is made for. The source of a move must be such that it can go afterwards.
enum class CopyPurpose { Copy, Move };

/// Copies a folder and all that is in it under a partial name. Needs memory for the names of the
/// subfolders on the way and for items with several names, and a fixed number of handles.
class FolderCopy {
 public:
  /// `source` is borrowed; `destination` is where the copy stands in the end, `partialName` the
  /// name beside it that it grows under.
  FolderCopy(const ItemReference& source, const ItemReference& destination,
             const std::string& partialName, CopyPurpose purpose);

  /// Copies. After a failure the partial item holds what was copied so far.
  Status run();

  /// The open root of the copy, from before anything was written into it.
  FileDescriptor takeRoot() { return std::move(root_); }
  /// The status of the source's root.
  const struct stat& sourceStatus() const { return sourceStatus_; }

 private:
  struct Level {
    std::string name;
    struct stat status = {};
    std::vector<std::string> subfolders;
  };

  Status createRoot();
  Status enter(FileDescriptor source, FileDescriptor destination, Level level);
  Status enterSubfolder(const std::string& name);
  Status copyEntries();
  Status copyEntry(const FolderListing::Entry& entry);
  Status leave();
  Status walk();
  FileDescriptor openSubfolder(int folder, const std::string& name) const;
  bool isOwnRoot(const struct stat& status) const;
  FolderEntry destinationEntry(const std::string& name) const;

  const ItemReference& sourceItem_;
  const ItemReference& destinationItem_;
  const std::string& partialName_;
  CopyPurpose purpose_;
  FileDescriptor root_;
  struct stat rootStatus_ = {};
  struct stat sourceStatus_ = {};
  FolderChain source_;
  FolderChain destination_;
  std::vector<Level> levels_;
  FolderListing listing_;
  ItemCopy items_;
  std::optional<HardLinks> links_;
};

}  // namespace tavrin
