#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "settings/Seeding.h"
#include "tests/support/FakeBundle.h"
#include "tests/support/FakeLog.h"
#include "tests/support/FakePropertyLists.h"
#include "tests/support/FakeUserDefaults.h"

namespace tavrin {
namespace {

const PropertyList::Array defaultRows{PropertyList::Dictionary{{"displayName", "Plain Text"}}};

/// A store that counts its attempts to seed, and that another process may write to meanwhile.
class WatchedDefaults final : public UserDefaults {
 public:
  std::vector<std::string> keys() const override {
    auto listed = store.keys();
    if (afterListing) afterListing();
    return listed;
  }
  std::optional<PropertyList> objectForKey(const std::string& key) const override {
    return store.objectForKey(key);
  }
  void setObject(const PropertyList& value, const std::string& key) override {
    store.setObject(value, key);
  }
  bool setObjectIfAbsent(const PropertyList& value, const std::string& key) override {
    ++attempts;
    return store.setObjectIfAbsent(value, key);
  }
  void removeObjectForKey(const std::string& key) override { store.removeObjectForKey(key); }
  bool synchronize() override { return store.synchronize(); }
  void setVolatileObject(const std::optional<PropertyList>& value,
                         const std::string& key) override {
    store.setVolatileObject(value, key);
  }
  [[nodiscard]] Observation observe(const std::string& key, Observer changed) override {
    return store.observe(key, std::move(changed));
  }

  mutable FakeUserDefaults store;
  std::function<void()> afterListing;
  int attempts = 0;
};

class Seeding : public testing::Test {
 protected:
  void seed() { seedSettings(defaults, standard, suite); }

  DefaultSettings defaults{{{"soundTipsOfNewFile", true}, {"arrOfOthers", defaultRows}}};
  FakeUserDefaults standard;
  FakeUserDefaults suite;
};

TEST_F(Seeding, GivesBothStoresWhatTheyLackAndMakesTheSuiteDurable) {
  seed();
  for (const FakeUserDefaults* store : {&standard, &suite}) {
    EXPECT_EQ(store->objectForKey("soundTipsOfNewFile"), PropertyList(true));
    EXPECT_EQ(store->objectForKey("arrOfOthers"), PropertyList(defaultRows));
  }
  EXPECT_EQ(suite.synchronizeCount(), 1);
}

TEST_F(Seeding, KeepsAValueInEitherStoreWhateverItsKind) {
  standard.setObject(false, "soundTipsOfNewFile");
  suite.setObject("of another kind", "arrOfOthers");
  seed();
  EXPECT_EQ(standard.objectForKey("soundTipsOfNewFile"), PropertyList(false));
  EXPECT_EQ(suite.objectForKey("soundTipsOfNewFile"), PropertyList(true));
  EXPECT_EQ(suite.objectForKey("arrOfOthers"), PropertyList("of another kind"));
  EXPECT_EQ(standard.objectForKey("arrOfOthers"), PropertyList(defaultRows));
}

TEST_F(Seeding, AttemptsNothingWhereNothingIsLacking) {
  WatchedDefaults watched;
  seedSettings(defaults, watched, suite);
  EXPECT_EQ(watched.attempts, 2);
  const auto changes = suite.changedKeys().size();
  const int synchronized = suite.synchronizeCount();
  seedSettings(defaults, watched, suite);
  EXPECT_EQ(watched.attempts, 2);
  EXPECT_EQ(suite.changedKeys().size(), changes);
  EXPECT_EQ(suite.synchronizeCount(), synchronized);
}

TEST_F(Seeding, KeepsAValueThatAnotherProcessStoredMeanwhile) {
  WatchedDefaults raced;
  raced.afterListing = [&raced] { raced.setObject("written meanwhile", "soundTipsOfNewFile"); };
  seedSettings(defaults, raced, suite);
  EXPECT_EQ(raced.objectForKey("soundTipsOfNewFile"), PropertyList("written meanwhile"));
  EXPECT_EQ(raced.objectForKey("arrOfOthers"), PropertyList(defaultRows));
}

TEST_F(Seeding, SeedsAStoreThatWasLostBesideOneThatWasNot) {
  seed();
  standard.setObject(false, "soundTipsOfNewFile");
  standard.setObject("/home/ada/Desktop", "prePathOfCommonPath");
  FakeUserDefaults newSuite;
  seedSettings(defaults, standard, newSuite);
  EXPECT_EQ(newSuite.keys(), (std::vector<std::string>{"arrOfOthers", "soundTipsOfNewFile"}));
  EXPECT_EQ(newSuite.objectForKey("soundTipsOfNewFile"), PropertyList(true));
  EXPECT_EQ(standard.objectForKey("soundTipsOfNewFile"), PropertyList(false));
}

class LoadingDefaultSettings : public testing::Test {
 protected:
  DefaultSettings load() const {
    return DefaultSettings::loadedFromBundle(bundle, propertyLists, log);
  }

  FakeBundle bundle;
  mutable FakePropertyLists propertyLists;
  mutable FakeLog log;
};

TEST_F(LoadingDefaultSettings, ReadsTheResourceOnce) {
  bundle.resources["DefaultPreferences.plist"] = "/share/DefaultPreferences.plist";
  propertyLists.files.insert(
      {"/share/DefaultPreferences.plist",
       PropertyList::Dictionary{{"arrOfOthers", defaultRows}, {"arrOfCommonPath", "no array"}}});
  const DefaultSettings settings = load();
  EXPECT_EQ(settings.arrayForKey("arrOfOthers"), defaultRows);
  EXPECT_TRUE(settings.arrayForKey("arrOfCommonPath").empty());
  EXPECT_TRUE(settings.arrayForKey("arrOfCustomIcon").empty());
  EXPECT_EQ(propertyLists.readCount, 1);
  EXPECT_TRUE(log.lines().empty());
}

TEST(DefaultSettingsOfAnAccount, HaveItsFoldersInTheirPlaces) {
  const auto rule = [](const char* path) {
    return PropertyList::Dictionary{{"realPath", path}, {"displayName", "kept"}};
  };
  const DefaultSettings settings({{"arrOfCopyFilesTo", PropertyList::Array{rule("~/Pictures"), 7}},
                                  {"arrOfCommonPath", PropertyList::Array{rule("~/Music")}},
                                  {"arrOfOthers", PropertyList::Array{rule("~/Pictures")}}});
  const DefaultSettings own = settings.withFoldersAt({{"~/Pictures", "~/Bilder"}});
  EXPECT_EQ(own.arrayForKey("arrOfCopyFilesTo"), (PropertyList::Array{rule("~/Bilder"), 7}));
  EXPECT_EQ(own.arrayForKey("arrOfCommonPath"), settings.arrayForKey("arrOfCommonPath"));
  EXPECT_EQ(own.arrayForKey("arrOfOthers"), settings.arrayForKey("arrOfOthers"));
}

TEST_F(LoadingDefaultSettings, HasNoneAndSaysSoOnceWhenTheResourceIsMissingOrNoDictionary) {
  EXPECT_TRUE(load().dictionary().empty());
  EXPECT_EQ(log.lines().size(), 1U);

  bundle.resources["DefaultPreferences.plist"] = "/share/DefaultPreferences.plist";
  EXPECT_TRUE(load().dictionary().empty());
  ASSERT_EQ(log.lines().size(), 2U);
  EXPECT_NE(log.lines().back().find("open /share/DefaultPreferences.plist"), std::string::npos);

  propertyLists.files.insert({"/share/DefaultPreferences.plist", defaultRows});
  EXPECT_TRUE(load().dictionary().empty());
  EXPECT_EQ(log.lines().size(), 3U);
}

}  // namespace
}  // namespace tavrin
