#pragma once

#include <cstddef>
#include <string>

namespace tavrin {

/// The items that are selected in a file manager, in its order, as long as a menu needs them.
class SelectedItems {
 public:
  virtual ~SelectedItems() = default;

  virtual std::size_t count() const = 0;
  /// The URI of an item by its zero-based index, percent-escaped ("file:///tmp/a%20b").
  virtual std::string uri(std::size_t index) const = 0;
  virtual bool isFolder(std::size_t index) const = 0;
  /// The MIME type of an item as the file manager knows it; "" when it does not.
  virtual std::string contentType(std::size_t index) const = 0;
};

}  // namespace tavrin
