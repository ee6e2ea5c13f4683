#pragma once

#include <vector>

#include "extensions/thunar/Thunarx.h"
#include "menu/SelectedItems.h"
#include "platform/linux/GLibPointers.h"

namespace tavrin {

/// The URI of a file, in the list of recent files that of the file meant; "" for one that has none.
std::string uriOf(ThunarxFileInfo* file);

/// Files that are selected in Thunar, which have a reference each.
class ThunarItems final : public SelectedItems {
 public:
  /// `files` are ThunarxFileInfo and stay the caller's.
  explicit ThunarItems(const GList* files);

  std::size_t count() const override { return files_.size(); }
  std::string uri(std::size_t index) const override;
  bool isFolder(std::size_t index) const override;
  std::string contentType(std::size_t index) const override;

 private:
  std::vector<GObjectPointer<ThunarxFileInfo>> files_;
};

}  // namespace tavrin
