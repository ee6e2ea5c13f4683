#pragma once

#include <array>
#include <optional>

#include "foundation/PropertyList.h"
#include "platform/UserDefaults.h"
#include "settings/SettingsKeys.h"

namespace tavrin {

/// The five rule lists as they are being edited: enabled and disabled rows in the user's order.
/// A list changes here first and is then written to the standard store. Used on the main thread.
class WorkingLists {
 public:
  /// Each list is copied from the standard store, which outlives this object, when it is first
  /// asked for: a start that serves a request does not read images. An absent list, and a value
  /// that is no array, is empty.
  explicit WorkingLists(const UserDefaults& standard) : standard_(standard) {}

  PropertyList::Array& list(RuleList list);

  /// Forgets a list, or all of them: it is copied anew when it is next asked for.
  void release(RuleList list);
  void release();

 private:
  const UserDefaults& standard_;
  std::array<std::optional<PropertyList::Array>, ruleLists.size()> lists_;
};

}  // namespace tavrin
