#pragma once

#include <map>
#include <string>

#include "foundation/PropertyList.h"
#include "platform/Bundle.h"
#include "platform/Log.h"
#include "platform/PropertyListSerialization.h"

namespace tavrin {

/// The settings that the program comes with: what both stores are seeded from and what a list is
/// reset to. Never changes once it is made.
class DefaultSettings {
 public:
  /// No defaults at all.
  DefaultSettings() = default;
  explicit DefaultSettings(PropertyList::Dictionary values);

  /// The resource "DefaultPreferences" of type "plist". One that is missing, cannot be read or is
  /// no dictionary gives no defaults, with one line in the log.
  static DefaultSettings loadedFromBundle(const Bundle& bundle,
                                          PropertyListSerialization& propertyLists, Log& log);

  /// The same for an account whose folders have other places: each folder of a rule that `places`
  /// has is replaced by what stands there.
  DefaultSettings withFoldersAt(const std::map<std::string, std::string>& places) const;

  /// All of it, settings keys with their values.
  const PropertyList::Dictionary& dictionary() const { return values_; }

  /// The default rows of a list; empty when there are none or the value is no array.
  PropertyList::Array arrayForKey(const std::string& key) const;

 private:
  PropertyList::Dictionary values_;
};

}  // namespace tavrin
