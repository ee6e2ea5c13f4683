#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "platform/UserDefaults.h"
#include "platform/linux/DefaultsChangeSource.h"
#include "platform/linux/DefaultsDatabase.h"

namespace tavrin {

/// The values that this process alone sees, of one domain, for all threads.
class VolatileDefaults {
 public:
  std::optional<PropertyList> value(const std::string& key) const;
  void set(const std::optional<PropertyList>& value, const std::string& key);
  /// Differs after each change.
  std::uint64_t changeCount() const;

 private:
  mutable std::mutex mutex_;
  PropertyList::Dictionary values_;
  std::uint64_t changeCount_ = 0;
};

/// One settings domain as one thread sees it: what all its objects there share.
class DefaultsDomain {
 public:
  DefaultsDomain(std::string folder, Log& log, std::function<void()> startedAfresh,
                 std::shared_ptr<DefaultsChangeSource> changes,
                 std::shared_ptr<VolatileDefaults> volatileValues,
                 std::shared_ptr<KnownLargeData> knownLargeData);

  DefaultsDatabase& database() { return database_; }
  VolatileDefaults& volatileValues() { return *volatileValues_; }

  std::optional<PropertyList> value(const std::string& key);

  /// The number of a new object, by which its observers are told from those of others.
  int addObject() { return objectCount_++; }
  Observation observe(int object, const std::string& key, UserDefaults::Observer changed);

  /// Tells the observers of a key that belong to the object which changed it; for the others the
  /// main loop is woken.
  void tellOwnObservers(int object, const std::string& key);
  /// Tells all observers whose value differs from what they saw last.
  void processChanges();
  /// Watches the domain's folder again if anybody observes it.
  void watchAgain();

 private:
  struct Watcher {
    int object = 0;
    std::string key;
    UserDefaults::Observer changed;
    std::optional<std::string> seen;
  };

  template <typename Predicate>
  void tell(Predicate concerned);
  std::optional<std::string> fingerprint(const std::string& key);
  void forgetEnded();
  void watchFolder();

  DefaultsDatabase database_;
  std::shared_ptr<DefaultsChangeSource> changes_;
  std::shared_ptr<VolatileDefaults> volatileValues_;
  std::vector<std::weak_ptr<Watcher>> watchers_;
  DefaultsDatabase::Stamp processed_;
  std::uint64_t processedVolatile_ = 0;
  int objectCount_ = 0;
};

}  // namespace tavrin
