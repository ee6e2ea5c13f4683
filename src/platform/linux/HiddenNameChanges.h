#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "platform/FileManager.h"

namespace tavrin {

/// Changes to a folder's list of hidden names, gathered in little memory; of one name the last one
/// counts.
class HiddenNameChanges {
 public:
  void add(std::string_view name, IsHidden isHidden);
  bool isEmpty() const { return changes_.empty(); }

  /// The list, one name a line, after the changes: other lines stay as they are, and names that
  /// come to it follow at its end. "" when no name is left.
  std::string appliedTo(std::string_view list) const;

  /// The names that change, at most `count` of them.
  std::vector<std::string> names(std::size_t count) const;

 private:
  /// Lines of a mark and a name, in the order of the changes.
  std::string changes_;
};

}  // namespace tavrin
