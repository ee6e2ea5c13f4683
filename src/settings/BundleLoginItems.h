#pragma once

#include <optional>

#include "platform/Bundle.h"
#include "platform/LoginItems.h"

namespace tavrin {

/// The program's own place among the login items.
class BundleLoginItems {
 public:
  /// Both outlive this object.
  BundleLoginItems(const Bundle& bundle, LoginItems& loginItems);

  /// True when the program is among the login items.
  bool isLoginItem() const;

  /// Appends the program at the end of the login items.
  void addToLoginItems();

  /// Removes the program's first entry from the login items, where there is one.
  void removeFromLoginItems();

  /// The first entry of a snapshot of `list` that starts the program, or nothing.
  std::optional<LoginItems::Item> itemRefWithListRef(const LoginItems& list) const;

 private:
  const Bundle& bundle_;
  LoginItems& loginItems_;
};

}  // namespace tavrin
