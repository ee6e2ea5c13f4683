#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/UserDefaults.h"

namespace tavrin {

struct FakeDefaultsDomain;

/// UserDefaults in memory. Objects of one domain of one provider share their values.
class FakeUserDefaults final : public UserDefaults {
 public:
  /// A domain of its own.
  FakeUserDefaults();
  explicit FakeUserDefaults(std::shared_ptr<FakeDefaultsDomain> domain);

  std::optional<PropertyList> objectForKey(const std::string& key) const override;
  void setObject(const PropertyList& value, const std::string& key) override;
  bool setObjectIfAbsent(const PropertyList& value, const std::string& key) override;
  void removeObjectForKey(const std::string& key) override;
  std::vector<std::string> keys() const override;
  bool synchronize() override;
  void setVolatileObject(const std::optional<PropertyList>& value, const std::string& key) override;
  [[nodiscard]] Observation observe(const std::string& key, Observer changed) override;

  /// How often any object of the domain was synchronized.
  int synchronizeCount() const;
  /// The keys of all values stored or removed so far by objects of the domain, in order.
  const std::vector<std::string>& changedKeys() const;

 private:
  void tellObservers(const std::string& key);

  std::shared_ptr<FakeDefaultsDomain> domain_;
  int number_;
};

/// Domains in memory, made as they are asked for.
class FakeUserDefaultsProvider final : public UserDefaultsProvider {
 public:
  std::unique_ptr<UserDefaults> standardUserDefaults() override;
  std::unique_ptr<UserDefaults> suite(const std::string& suiteName) override;

  /// The domain's name in the calls below; a suite goes by its own name.
  static constexpr const char* standardDomain = "";

  /// Another process sets a value, or removes it (nothing). Observers hear of it in
  /// `processChanges`.
  void changeFromElsewhere(const std::string& domainName, const std::string& key,
                           const std::optional<PropertyList>& value);

  /// What the main loop does when something changed: tells the observers of every object about
  /// changes that other objects or processes made.
  void processChanges();

  /// How often any object of the domain was synchronized.
  int synchronizeCount(const std::string& domainName);

 private:
  std::shared_ptr<FakeDefaultsDomain> domain(const std::string& name);

  std::map<std::string, std::shared_ptr<FakeDefaultsDomain>> domains_;
};

}  // namespace tavrin
