#include <gmock/gmock.h>

#include "tests/platform/storage/DefaultsHarness.h"
#include "tests/support/FakeUserDefaults.h"

namespace tavrin {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A backend under the contract, with the means to be another process.
class Backend {
 public:
  virtual ~Backend() = default;
  virtual UserDefaultsProvider& provider() = 0;
  /// Another process changes the standard domain.
  virtual void changeFromElsewhere(const std::string& key,
                                   const std::optional<PropertyList>& value) = 0;
  virtual void processChanges() = 0;
};

class FakeBackend final : public Backend {
 public:
  UserDefaultsProvider& provider() override { return provider_; }
  void changeFromElsewhere(const std::string& key,
                           const std::optional<PropertyList>& value) override {
    provider_.changeFromElsewhere(FakeUserDefaultsProvider::standardDomain, key, value);
  }
  void processChanges() override { provider_.processChanges(); }

 private:
  FakeUserDefaultsProvider provider_;
};

class LinuxBackend final : public Backend {
 public:
  UserDefaultsProvider& provider() override { return provider_; }
  void changeFromElsewhere(const std::string& key,
                           const std::optional<PropertyList>& value) override {
    // A provider of its own has a connection of its own, as another process has.
    LinuxUserDefaultsProvider other(log_);
    const auto defaults = other.standardUserDefaults();
    value ? defaults->setObject(*value, key) : defaults->removeObjectForKey(key);
  }
  void processChanges() override { provider_.processChanges(); }

 private:
  test::ScratchConfiguration configuration_;
  FakeLog log_;
  LinuxUserDefaultsProvider provider_{log_};
};

class UserDefaultsContract : public testing::TestWithParam<std::string> {
 protected:
  using Seen = std::vector<std::optional<PropertyList>>;

  Observation record(UserDefaults& defaults, const std::string& key, Seen& seen) {
    return defaults.observe(
        key, [&seen](const std::optional<PropertyList>& value) { seen.push_back(value); });
  }

  std::unique_ptr<Backend> backend_ = GetParam() == "Linux"
                                          ? std::unique_ptr<Backend>(new LinuxBackend)
                                          : std::unique_ptr<Backend>(new FakeBackend);
  std::unique_ptr<UserDefaults> defaults_ = backend_->provider().standardUserDefaults();
};

TEST_P(UserDefaultsContract, ValuesComeBackUntilRemoved) {
  EXPECT_EQ(defaults_->objectForKey("absent"), std::nullopt);
  const PropertyList list = PropertyList::Array{
      PropertyList::Dictionary{{"icon", PropertyList::Data(20000, 7)}, {"enable", true}}, 1.5};
  for (const std::string& key : {std::string("list"), std::string(), std::string("\xFF\0'", 3)}) {
    defaults_->setObject(list, key);
    EXPECT_EQ(defaults_->objectForKey(key), list);
    defaults_->setObject("replaced", key);
    EXPECT_EQ(defaults_->objectForKey(key), "replaced");
  }
  EXPECT_THAT(defaults_->keys(), ElementsAre("", "list", std::string("\xFF\0'", 3)));
  defaults_->removeObjectForKey("list");
  defaults_->removeObjectForKey("never there");
  EXPECT_EQ(defaults_->objectForKey("list"), std::nullopt);
  EXPECT_TRUE(defaults_->synchronize());
}

TEST_P(UserDefaultsContract, AValueIsSetIfAbsentOnlyThen) {
  EXPECT_TRUE(defaults_->setObjectIfAbsent(false, "key"));
  EXPECT_FALSE(defaults_->setObjectIfAbsent(true, "key"));
  EXPECT_EQ(defaults_->objectForKey("key"), PropertyList(false));
  defaults_->setVolatileObject(1, "shadowed");
  EXPECT_TRUE(defaults_->setObjectIfAbsent(2, "shadowed"));
}

TEST_P(UserDefaultsContract, ConversionsFollowFoundation) {
  const std::pair<PropertyList, std::optional<std::string>> cases[] = {
      {"text", "text"},     {5, "5"},
      {true, "1"},          {0.1, "0.1"},
      {100000.0, "100000"}, {1.0 / 3, "0.3333333333333333"},
      {-2.0, "-2"},         {PropertyList::Array{}, std::nullopt}};
  for (const auto& [value, expected] : cases) {
    defaults_->setObject(value, "key");
    EXPECT_EQ(defaults_->stringForKey("key"), expected);
  }
  defaults_->setObject("YES", "switch");
  EXPECT_TRUE(defaults_->boolForKey("switch"));
  EXPECT_FALSE(defaults_->boolForKey("absent"));
  EXPECT_EQ(defaults_->stringForKey("absent"), std::nullopt);
  defaults_->setObject(PropertyList::Array{1}, "array");
  EXPECT_EQ(defaults_->arrayForKey("array").size(), 1U);
  EXPECT_THAT(defaults_->dictionaryForKey("array"), IsEmpty());
  EXPECT_THAT(defaults_->arrayForKey("switch"), IsEmpty());
}

TEST_P(UserDefaultsContract, ObjectsOfOneDomainShareValuesAndOthersDoNot) {
  const auto second = backend_->provider().standardUserDefaults();
  const auto suite = backend_->provider().suite("group");
  defaults_->setObject(1, "key");
  EXPECT_EQ(second->objectForKey("key"), PropertyList(1));
  EXPECT_EQ(suite->objectForKey("key"), std::nullopt);
  suite->setObject(2, "key");
  EXPECT_EQ(backend_->provider().suite("group")->objectForKey("key"), PropertyList(2));
  EXPECT_EQ(defaults_->objectForKey("key"), PropertyList(1));
  backend_->changeFromElsewhere("key", 3);
  EXPECT_EQ(defaults_->objectForKey("key"), PropertyList(3));
  EXPECT_EQ(second->objectForKey("key"), PropertyList(3));
}

TEST_P(UserDefaultsContract, VolatileValuesGoBeforeStoredOnesAndAreNeverStored) {
  defaults_->setObject("stored", "key");
  defaults_->setVolatileObject("volatile", "key");
  defaults_->setVolatileObject(1, "only");
  const auto second = backend_->provider().standardUserDefaults();
  EXPECT_EQ(second->objectForKey("key"), "volatile");
  EXPECT_THAT(defaults_->keys(), ElementsAre("key"));
  defaults_->setVolatileObject(std::nullopt, "key");
  EXPECT_EQ(second->objectForKey("key"), "stored");
}

TEST_P(UserDefaultsContract, OwnChangesAreToldAtOnceEvenEqualOnes) {
  Seen seen;
  Observation observation = record(*defaults_, "key", seen);
  defaults_->setObject(1, "key");
  defaults_->setObject(1, "key");
  defaults_->setObject(5, "other");
  EXPECT_FALSE(defaults_->setObjectIfAbsent(2, "key"));
  defaults_->removeObjectForKey("key");
  defaults_->removeObjectForKey("key");
  defaults_->setVolatileObject(3, "key");
  const Seen expected{PropertyList(1), PropertyList(1), std::nullopt, PropertyList(3)};
  EXPECT_EQ(seen, expected);
  backend_->processChanges();
  EXPECT_EQ(seen, expected);
  observation.reset();
  defaults_->setObject(4, "key");
  EXPECT_EQ(seen, expected);
}

TEST_P(UserDefaultsContract, ChangesByOthersAreToldTogetherAndOnlyWhereTheValueDiffers) {
  const auto second = backend_->provider().standardUserDefaults();
  defaults_->setObject("old", "key");
  Seen seen;
  const Observation observation = record(*defaults_, "key", seen);
  second->setObject("old", "key");
  backend_->changeFromElsewhere("other", 1);
  backend_->processChanges();
  EXPECT_THAT(seen, IsEmpty());

  backend_->changeFromElsewhere("key", "first");
  second->setObject(PropertyList::Data(9000, 1), "key");
  EXPECT_THAT(seen, IsEmpty());
  backend_->processChanges();
  EXPECT_EQ(seen, Seen{PropertyList(PropertyList::Data(9000, 1))});

  backend_->changeFromElsewhere("key", PropertyList::Data(9000, 2));
  backend_->processChanges();
  EXPECT_EQ(seen.back(), PropertyList(PropertyList::Data(9000, 2)));
  second->setVolatileObject(true, "key");
  backend_->processChanges();
  EXPECT_EQ(seen.back(), PropertyList(true));
  backend_->changeFromElsewhere("key", std::nullopt);
  second->setVolatileObject(std::nullopt, "key");
  backend_->processChanges();
  EXPECT_EQ(seen.back(), std::nullopt);
  EXPECT_EQ(seen.size(), 4U);
}

TEST_P(UserDefaultsContract, ObserversMaySetValuesAndEndObservations) {
  const auto suite = backend_->provider().suite("group");
  Seen never;
  Observation ended = record(*defaults_, "key", never);
  Observation own;
  Seen last;
  own = defaults_->observe("key", [&](const std::optional<PropertyList>& value) {
    if (value == PropertyList(1)) defaults_->setObject(2, "key");
    suite->setObject(*value, "key");
    own.reset();
  });
  const Observation late = record(*defaults_, "key", last);
  ended.reset();
  defaults_->setObject(1, "key");
  EXPECT_EQ(last.back(), PropertyList(2));
  EXPECT_THAT(never, IsEmpty());
  EXPECT_EQ(own, nullptr);
  defaults_->setObject(7, "key");
  EXPECT_NE(suite->objectForKey("key"), PropertyList(7));
}

TEST_P(UserDefaultsContract, AnObservationOutlivesItsObjectInPeace) {
  Seen seen;
  auto second = backend_->provider().standardUserDefaults();
  const Observation observation = record(*second, "key", seen);
  second.reset();
  defaults_->setObject(1, "key");
  backend_->processChanges();
  EXPECT_EQ(seen, Seen{PropertyList(1)});
  defaults_.reset();
}

INSTANTIATE_TEST_SUITE_P(Backends, UserDefaultsContract, testing::Values("Linux", "Fake"),
                         [](const auto& backend) { return backend.param; });

}  // namespace
}  // namespace tavrin
