#pragma once

#include <array>

#include "foundation/PropertyList.h"
#include "platform/UserDefaults.h"
#include "settings/SettingsKeys.h"

namespace tavrin {

/// The five rule lists as they are being edited: enabled and disabled rows in the user's order.
/// A list changes here first and is then written to the standard store. Used on the main thread.
class WorkingLists {
 public:
  /// Copies the lists of the standard store. An absent list, and a value that is no array, is
  /// empty.
  explicit WorkingLists(const UserDefaults& standard);

  const PropertyList::Array& list(RuleList list) const { return lists_.at(indexOf(list)); }
  PropertyList::Array& list(RuleList list) { return lists_.at(indexOf(list)); }

 private:
  static constexpr std::size_t indexOf(RuleList list) { return static_cast<std::size_t>(list); }

  std::array<PropertyList::Array, ruleLists.size()> lists_;
};

}  // namespace tavrin
