#include "settings/BundleLoginItems.h"

#include <algorithm>

namespace tavrin {

BundleLoginItems::BundleLoginItems(const Bundle& bundle, LoginItems& loginItems)
    : bundle_(bundle), loginItems_(loginItems) {}

bool BundleLoginItems::isLoginItem() const {
  return itemRefWithListRef(loginItems_).has_value();
}

void BundleLoginItems::addToLoginItems() {
  loginItems_.insertLast(bundle_.bundlePath());
}

void BundleLoginItems::removeFromLoginItems() {
  if (const auto item = itemRefWithListRef(loginItems_)) loginItems_.remove(*item);
}

std::optional<LoginItems::Item> BundleLoginItems::itemRefWithListRef(const LoginItems& list) const {
  const auto items = list.snapshot();
  const auto own = std::find_if(
      items.begin(), items.end(),
      [path = bundle_.bundlePath()](const auto& item) { return item.resolvedPath == path; });
  return own == items.end() ? std::nullopt : std::optional(*own);
}

}  // namespace tavrin
