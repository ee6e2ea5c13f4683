#include "platform/linux/DefaultsDomain.h"

#include <algorithm>

#include "platform/linux/PropertyListFormats.h"

namespace tavrin {

std::optional<PropertyList> VolatileDefaults::value(const std::string& key) const {
  const std::lock_guard lock(mutex_);
  const auto found = values_.find(key);
  return found == values_.end() ? std::nullopt : std::optional(found->second);
}

void VolatileDefaults::set(const std::optional<PropertyList>& value, const std::string& key) {
  const std::lock_guard lock(mutex_);
  ++changeCount_;
  if (value) {
    values_.insert_or_assign(key, *value);
  } else {
    values_.erase(key);
  }
}

std::uint64_t VolatileDefaults::changeCount() const {
  const std::lock_guard lock(mutex_);
  return changeCount_;
}

DefaultsDomain::DefaultsDomain(std::string folder, Log& log, std::function<void()> startedAfresh,
                               std::shared_ptr<DefaultsChangeSource> changes,
                               std::shared_ptr<VolatileDefaults> volatileValues,
                               std::shared_ptr<KnownLargeData> knownLargeData)
    : database_(std::move(folder), log, std::move(startedAfresh), std::move(knownLargeData)),
      changes_(std::move(changes)),
      volatileValues_(std::move(volatileValues)) {}

std::optional<PropertyList> DefaultsDomain::value(const std::string& key) {
  auto shadowing = volatileValues_->value(key);
  return shadowing ? shadowing : database_.value(key);
}

std::optional<std::string> DefaultsDomain::fingerprint(const std::string& key) {
  const auto shadowing = volatileValues_->value(key);
  if (!shadowing) return database_.fingerprint(key);
  const auto encoded = binaryFromPropertyList(*shadowing, {});
  return encoded ? std::string(encoded->begin(), encoded->end()) : std::string();
}

Observation DefaultsDomain::observe(int object, const std::string& key,
                                    UserDefaults::Observer changed) {
  // Before the value is looked at, so that no change falls between.
  watchFolder();
  forgetEnded();
  auto watcher =
      std::make_shared<Watcher>(Watcher{object, key, std::move(changed), fingerprint(key)});
  watchers_.push_back(watcher);
  return watcher;
}

void DefaultsDomain::forgetEnded() {
  std::erase_if(watchers_, [](const auto& watcher) { return watcher.expired(); });
}

template <typename Predicate>
void DefaultsDomain::tell(Predicate concerned) {
  // Observers set values and end observations: each is looked up just before its call, and is given
  // the value as it then is.
  const auto listed = watchers_;
  for (const auto& candidate : listed) {
    const auto watcher = candidate.lock();
    if (!watcher || !concerned(*watcher)) continue;
    watcher->seen = fingerprint(watcher->key);
    watcher->changed(value(watcher->key));
  }
}

void DefaultsDomain::tellOwnObservers(int object, const std::string& key) {
  forgetEnded();
  if (watchers_.empty()) return;
  tell([object, &key](const Watcher& watcher) {
    return watcher.object == object && watcher.key == key;
  });
  changes_->wake();
}

void DefaultsDomain::processChanges() {
  forgetEnded();
  if (watchers_.empty()) return;
  const auto stamp = database_.stamp();
  const std::uint64_t volatileStamp = volatileValues_->changeCount();
  if (stamp == processed_ && volatileStamp == processedVolatile_) return;
  processed_ = stamp;
  processedVolatile_ = volatileStamp;
  tell([this](const Watcher& watcher) { return watcher.seen != fingerprint(watcher.key); });
}

void DefaultsDomain::watchAgain() {
  forgetEnded();
  if (watchers_.empty()) return;
  // Makes the folder where it is gone.
  static_cast<void>(database_.stamp());
  watchFolder();
}

void DefaultsDomain::watchFolder() {
  changes_->watch(database_.isStored() ? database_.folder() : std::string());
}

}  // namespace tavrin
