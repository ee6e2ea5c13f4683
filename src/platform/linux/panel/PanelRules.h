#pragma once

#include <string>
#include <vector>

#include "foundation/FileURL.h"
#include "platform/OpenPanel.h"

namespace tavrin {

/// What a panel lets the user do with an item.
struct PanelRules {
  bool canChooseFiles = true;
  bool canChooseDirectories = false;
  /// nullptr refuses nothing.
  const OpenSavePanelDelegate* delegate = nullptr;
  /// The extensions of files that can be chosen, without a dot; empty for all files.
  std::vector<std::string> allowedFileTypes = {};

  /// Whether the delegate judges items by where they really are, so that a path with a symbolic
  /// link in it stands for none.
  bool namesRealPaths() const { return delegate != nullptr; }

  /// Whether the item's row can be selected, and, for a folder, whether the panel goes into it.
  bool isEnabled(const FileURL& url, bool isFolder) const;

  /// Whether the panel may end with the item.
  bool isPickable(const FileURL& url, bool isFolder) const;
};

}  // namespace tavrin
