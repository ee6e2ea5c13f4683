#include "tests/support/FakeUserDefaults.h"

namespace tavrin {

namespace {

struct Watcher {
  int owner = 0;
  std::string key;
  UserDefaults::Observer changed;
  std::optional<PropertyList> seen;
};

std::optional<PropertyList> find(const PropertyList::Dictionary& values, const std::string& key) {
  const auto entry = values.find(key);
  return entry == values.end() ? std::nullopt : std::optional(entry->second);
}

void assign(PropertyList::Dictionary& values, const std::string& key,
            const std::optional<PropertyList>& value) {
  if (value) {
    values.insert_or_assign(key, *value);
  } else {
    values.erase(key);
  }
}

}  // namespace

struct FakeDefaultsDomain {
  PropertyList::Dictionary stored;
  PropertyList::Dictionary volatileValues;
  std::vector<std::weak_ptr<Watcher>> watchers;
  std::vector<std::string> changedKeys;
  int synchronizeCount = 0;
  int objectCount = 0;

  std::optional<PropertyList> value(const std::string& key) const {
    auto shadowing = find(volatileValues, key);
    return shadowing ? shadowing : find(stored, key);
  }

  /// Calls the watchers that `concerned` picks. They may set values and end observations: each is
  /// looked up just before its call and is given the value as it then is.
  template <typename Predicate>
  void tell(Predicate concerned) {
    const auto listed = watchers;
    for (const auto& candidate : listed) {
      const auto watcher = candidate.lock();
      if (!watcher || !concerned(*watcher)) continue;
      watcher->seen = value(watcher->key);
      watcher->changed(std::optional(watcher->seen));
    }
    std::erase_if(watchers, [](const auto& candidate) { return candidate.expired(); });
  }
};

FakeUserDefaults::FakeUserDefaults() : FakeUserDefaults(std::make_shared<FakeDefaultsDomain>()) {}

FakeUserDefaults::FakeUserDefaults(std::shared_ptr<FakeDefaultsDomain> domain)
    : domain_(std::move(domain)), number_(domain_->objectCount++) {}

std::optional<PropertyList> FakeUserDefaults::objectForKey(const std::string& key) const {
  return domain_->value(key);
}

void FakeUserDefaults::setObject(const PropertyList& value, const std::string& key) {
  domain_->stored.insert_or_assign(key, value);
  domain_->changedKeys.push_back(key);
  tellObservers(key);
}

bool FakeUserDefaults::setObjectIfAbsent(const PropertyList& value, const std::string& key) {
  if (domain_->stored.contains(key)) return false;
  setObject(value, key);
  return true;
}

void FakeUserDefaults::removeObjectForKey(const std::string& key) {
  if (domain_->stored.erase(key) == 0) return;
  domain_->changedKeys.push_back(key);
  tellObservers(key);
}

std::vector<std::string> FakeUserDefaults::keys() const {
  std::vector<std::string> names;
  for (const auto& entry : domain_->stored) names.push_back(entry.first);
  return names;
}

bool FakeUserDefaults::synchronize() {
  ++domain_->synchronizeCount;
  return true;
}

void FakeUserDefaults::setVolatileObject(const std::optional<PropertyList>& value,
                                         const std::string& key) {
  assign(domain_->volatileValues, key, value);
  tellObservers(key);
}

Observation FakeUserDefaults::observe(const std::string& key, Observer changed) {
  auto watcher =
      std::make_shared<Watcher>(Watcher{number_, key, std::move(changed), domain_->value(key)});
  domain_->watchers.push_back(watcher);
  return watcher;
}

int FakeUserDefaults::synchronizeCount() const {
  return domain_->synchronizeCount;
}

const std::vector<std::string>& FakeUserDefaults::changedKeys() const {
  return domain_->changedKeys;
}

void FakeUserDefaults::tellObservers(const std::string& key) {
  domain_->tell([this, &key](const Watcher& watcher) {
    return watcher.owner == number_ && watcher.key == key;
  });
}

std::unique_ptr<UserDefaults> FakeUserDefaultsProvider::standardUserDefaults() {
  return std::make_unique<FakeUserDefaults>(domain(standardDomain));
}

std::unique_ptr<UserDefaults> FakeUserDefaultsProvider::suite(const std::string& suiteName) {
  return std::make_unique<FakeUserDefaults>(domain(suiteName));
}

void FakeUserDefaultsProvider::changeFromElsewhere(const std::string& domainName,
                                                   const std::string& key,
                                                   const std::optional<PropertyList>& value) {
  assign(domain(domainName)->stored, key, value);
}

void FakeUserDefaultsProvider::processChanges() {
  const auto listed = domains_;
  for (const auto& [name, changedDomain] : listed) {
    changedDomain->tell([&values = *changedDomain](const Watcher& watcher) {
      return watcher.seen != values.value(watcher.key);
    });
  }
}

int FakeUserDefaultsProvider::synchronizeCount(const std::string& domainName) {
  return domain(domainName)->synchronizeCount;
}

std::shared_ptr<FakeDefaultsDomain> FakeUserDefaultsProvider::domain(const std::string& name) {
  auto& found = domains_[name];
  if (!found) found = std::make_shared<FakeDefaultsDomain>();
  return found;
}

}  // namespace tavrin
