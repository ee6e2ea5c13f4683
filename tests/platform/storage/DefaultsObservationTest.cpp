#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/platform/storage/DefaultsHarness.h"

namespace tavrin {
namespace {

using test::waitReadable;
using testing::IsEmpty;

class DefaultsObservation : public testing::Test {
 protected:
  /// Another process sets a value, and has ended when this returns.
  void setElsewhere(const std::string& key, const PropertyList& value) {
    const pid_t child = ::fork();
    if (child == 0) {
      FakeLog log;
      LinuxUserDefaultsProvider(log).standardUserDefaults()->setObject(value, key);
      ::_exit(0);
    }
    ::waitpid(child, nullptr, 0);
  }

  /// Runs what a main loop does until the observed value is there.
  bool processUntil(const std::optional<PropertyList>& expected) {
    for (int turn = 0; turn < 1000000 && seen_ != expected; ++turn) {
      if (!waitReadable(provider_.changeDescriptor())) return false;
      provider_.processChanges();
    }
    return seen_ == expected;
  }

  Observation observe(UserDefaults& defaults) {
    return defaults.observe("key", [this](const auto& value) {
      seen_ = value;
      ++calls_;
    });
  }

  test::ScratchConfiguration configuration_;
  FakeLog log_;
  LinuxUserDefaultsProvider provider_{log_};
  std::optional<PropertyList> seen_;
  int calls_ = 0;
};

TEST_F(DefaultsObservation, ChangesOfOtherProcessesArriveWithoutPolling) {
  {
    // Nobody has the database open when the first change comes, so its log is made anew.
    const auto defaults = provider_.standardUserDefaults();
    const Observation observation = observe(*defaults);
    setElsewhere("key", "first");
    EXPECT_TRUE(processUntil("first"));
    setElsewhere("key", PropertyList::Data(50'000, 3));
    EXPECT_TRUE(processUntil(PropertyList(PropertyList::Data(50'000, 3))));
    EXPECT_EQ(calls_, 2);
    setElsewhere("other", 1);
    setElsewhere("key", PropertyList::Data(50'000, 3));
    EXPECT_TRUE(waitReadable(provider_.changeDescriptor()));
    provider_.processChanges();
    EXPECT_EQ(calls_, 2);
  }
  EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(DefaultsObservation, NoChangeIsLostWhileAnotherProcessWritesFast) {
  const auto defaults = provider_.standardUserDefaults();
  const Observation observation = observe(*defaults);
  constexpr int rounds = 2000;
  const pid_t child = ::fork();
  if (child == 0) {
    FakeLog log;
    LinuxUserDefaultsProvider provider(log);
    const auto own = provider.standardUserDefaults();
    for (int index = 1; index <= rounds; ++index) own->setObject(index, "key");
    // Lives on, so that no closing of files announces the last change.
    ::pause();
  }
  EXPECT_TRUE(processUntil(rounds));
  ::kill(child, SIGKILL);
  ::waitpid(child, nullptr, 0);
}

TEST_F(DefaultsObservation, OtherObjectsOfTheProcessAreToldFromTheMainLoop) {
  const auto observed = provider_.standardUserDefaults();
  const auto second = provider_.standardUserDefaults();
  const Observation observation = observe(*observed);
  second->setObject(1, "key");
  EXPECT_EQ(calls_, 0);
  EXPECT_TRUE(processUntil(1));
  second->setVolatileObject("dark", "key");
  EXPECT_TRUE(processUntil("dark"));
}

TEST_F(DefaultsObservation, TheDescriptorRestsWhenNothingChanges) {
  const auto defaults = provider_.standardUserDefaults();
  EXPECT_FALSE(waitReadable(provider_.changeDescriptor(), 0));
  const Observation observation = observe(*defaults);
  defaults->setObject(1, "key");
  provider_.processChanges();
  EXPECT_FALSE(waitReadable(provider_.changeDescriptor(), 0));
  EXPECT_EQ(defaults->objectForKey("key"), PropertyList(1));
  EXPECT_FALSE(waitReadable(provider_.changeDescriptor(), 50));
  EXPECT_EQ(calls_, 1);
}

TEST_F(DefaultsObservation, AReplacedFileOrFolderIsNoticed) {
  const auto defaults = provider_.standardUserDefaults();
  defaults->setObject("old", "key");
  const Observation observation = observe(*defaults);
  std::filesystem::remove_all(configuration_.domainFolder());
  seen_ = "not told yet";
  EXPECT_TRUE(processUntil(std::nullopt));
  setElsewhere("key", "new folder");
  EXPECT_TRUE(processUntil("new folder"));
  std::string other;
  {
    const test::ScratchFolder elsewhere;
    test::ScratchConfiguration::use(elsewhere.path());
    setElsewhere("key", "replaced");
    other = test::contentsOf(elsewhere / std::string(identity::applicationId) + "/defaults.sqlite");
    test::ScratchConfiguration::use(configuration_.folder().path());
  }
  test::writeFile(configuration_.domainFolder() + "/incoming", other);
  std::filesystem::rename(configuration_.domainFolder() + "/incoming", configuration_.database());
  std::filesystem::remove(configuration_.database() + "-wal");
  std::filesystem::remove(configuration_.database() + "-shm");
  EXPECT_TRUE(processUntil("replaced"));
}

}  // namespace
}  // namespace tavrin
