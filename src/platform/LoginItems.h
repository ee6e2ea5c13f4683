#pragma once

#include <optional>
#include <string>
#include <vector>

namespace tavrin {

/// The programs that start when the user logs in, in their order.
class LoginItems {
 public:
  virtual ~LoginItems() = default;

  /// One entry of the list.
  struct Item {
    /// The list's own name of the entry.
    std::string reference;
    /// The program that the entry starts, as an absolute path with links resolved; nothing when it
    /// cannot be found.
    std::optional<std::string> resolvedPath;
  };

  /// A snapshot of the list; empty when it cannot be read.
  virtual std::vector<Item> snapshot() const = 0;

  /// Adds a program, an absolute path, at the end. A failure reaches the log.
  virtual void insertLast(const std::string& programPath) = 0;

  /// Removes an entry of a snapshot. A failure reaches the log.
  virtual void remove(const Item& item) = 0;
};

}  // namespace tavrin
