#pragma once

#include <string>

#include "foundation/Result.h"
#include "platform/linux/ItemReference.h"

namespace tavrin {

/// One item during a walk: an open folder and a name, and what a message calls it. Everything is
/// borrowed, so that an item costs nothing until it fails.
class FolderEntry {
 public:
  /// An item of the folder that messages call `folderPath`.
  FolderEntry(int folder, const std::string& name, const std::string& folderPath)
      : folder_(folder), name_(&name), shownPath_(&folderPath), isShownWhole_(false) {}

  /// The item itself.
  explicit FolderEntry(const ItemReference& item) : FolderEntry(item, item.name) {}

  /// What stands in for `item` in its folder under another name; messages show the item's path.
  FolderEntry(const ItemReference& item, const std::string& name)
      : folder_(item.parentDescriptor), name_(&name), shownPath_(&item.path), isShownWhole_(true) {}

  int folder() const { return folder_; }
  const std::string& name() const { return *name_; }
  const char* nameBytes() const { return name_->c_str(); }
  std::string path() const;

  /// The failure of `operation` on this item; `cause` is an errno value.
  SystemError failure(const char* operation, int cause) const;

 private:
  int folder_;
  const std::string* name_;
  const std::string* shownPath_;
  bool isShownWhole_;
};

}  // namespace tavrin
