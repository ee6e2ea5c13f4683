#pragma once

#include <optional>
#include <string>
#include <vector>

#include "foundation/Result.h"
#include "platform/linux/FileDescriptor.h"
#include "platform/linux/FolderChain.h"
#include "platform/linux/FolderEntry.h"
#include "platform/linux/FolderListing.h"
#include "platform/linux/ItemReference.h"
#include "platform/linux/TreeRemoval.h"

namespace tavrin {

/// Removes a tree from its leaves up, with a fixed number of handles.
class RemovalWalk {
 public:
  /// What to do with a folder that may not be read or changed: fail, or give the user the rights.
  enum class FolderRights { Respect, Take };

  /// `item` is borrowed.
  RemovalWalk(const ItemReference& item, FolderRights rights);

  /// Removes only what `copy`, borrowed, holds unchanged.
  void keepUnlessHeldBy(const ItemReference& copy, TimeGranularity granularity);

  Status run();

 private:
  struct Level {
    std::string name;
    std::vector<std::string> subfolders;
    bool hasKept = false;
    int listings = 0;
  };

  Status walk();
  Status removeRoot();
  Status enter(const FolderEntry& folder);
  Status enterCopy(const FolderEntry& folder, bool& isHeld);
  Status removeEntries();
  Status removeEntry(const std::string& name, unsigned char type);
  Status removeUnlessFolder(const FolderEntry& entry, bool& isFolder);
  Status leave();
  FileDescriptor openFolder(const FolderEntry& entry) const;
  FolderEntry currentEntry(const std::string& name) const;
  Result<bool> isHeld(const FolderEntry& entry) const;
  void keep(const FolderEntry& entry);

  const ItemReference& item_;
  FolderRights rights_;
  const ItemReference* copyItem_ = nullptr;
  TimeGranularity granularity_ = 1;
  FolderChain tree_;
  std::optional<FolderChain> copy_;
  std::vector<Level> levels_;
  FolderListing listing_;
  std::optional<SystemError> firstKept_;
};

}  // namespace tavrin
