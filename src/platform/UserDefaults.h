#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "foundation/PropertyList.h"

namespace tavrin {

/// Keeps an observation alive: destroying it ends the observation.
using Observation = std::shared_ptr<void>;

/// One domain of user settings, as NSUserDefaults: property-list values under string keys.
///
/// Several processes may hold the same domain at once. A reader sees whole commits only: a value
/// that somebody wrote, never a part of one. A write is seen by every other reader at once and
/// outlives a crash of this process; after `synchronize` it outlives a power cut. A write never
/// takes another key's value back.
///
/// One object is used on one thread.
class UserDefaults {
 public:
  virtual ~UserDefaults() = default;

  /// The value of a key; nothing when absent. A volatile value goes before a stored one.
  virtual std::optional<PropertyList> objectForKey(const std::string& key) const = 0;

  /// Stores a value, whether or not it equals the old one. Observers of the key have been told when
  /// this returns. A failure reaches the log; the old value then stands.
  virtual void setObject(const PropertyList& value, const std::string& key) = 0;

  /// Stores a value only where the key has none, in one step with the test.
  /// Returns whether it was stored.
  virtual bool setObjectIfAbsent(const PropertyList& value, const std::string& key) = 0;

  virtual void removeObjectForKey(const std::string& key) = 0;

  /// The stored keys in byte order.
  virtual std::vector<std::string> keys() const = 0;

  /// Makes all that was written durable. Returns false, with a log line, when that failed.
  virtual bool synchronize() = 0;

  /// Sets a value that this process alone sees and that is never stored (the system's own answers,
  /// see SystemDefaults.h); nothing removes it. Observers are told as by setObject.
  virtual void setVolatileObject(const std::optional<PropertyList>& value,
                                 const std::string& key) = 0;

  /// Calls `changed` after each change of the key, whoever made it: at once for this object's own
  /// changes (an equal value too), from the main loop for those of other objects and processes
  /// (once for several that came together, and only where the value differs). The argument is the
  /// new value, nothing when the key was removed.
  using Observer = std::function<void(const std::optional<PropertyList>& newValue)>;
  [[nodiscard]] virtual Observation observe(const std::string& key, Observer changed) = 0;

  /// The conversions of NSUserDefaults; an absent key reads as false, 0, "" or an empty collection,
  /// and so does a value that is no such collection.
  bool boolForKey(const std::string& key) const;
  std::optional<std::string> stringForKey(const std::string& key) const;
  PropertyList::Array arrayForKey(const std::string& key) const;
  PropertyList::Dictionary dictionaryForKey(const std::string& key) const;
};

/// Opens the domains of user settings.
class UserDefaultsProvider {
 public:
  virtual ~UserDefaultsProvider() = default;

  /// The program's own domain.
  virtual std::unique_ptr<UserDefaults> standardUserDefaults() = 0;

  /// The domain that the program shares with its group (NSUserDefaults initWithSuiteName:). Each
  /// call opens a new object; opening one that is open elsewhere in the process is cheap.
  virtual std::unique_ptr<UserDefaults> suite(const std::string& suiteName) = 0;
};

}  // namespace tavrin
