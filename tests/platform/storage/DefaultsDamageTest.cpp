#include <gmock/gmock.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/platform/storage/DefaultsHarness.h"

namespace tavrin {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class DefaultsDamage : public testing::Test {
 protected:
  void fill() {
    const auto defaults = LinuxUserDefaultsProvider(log_).standardUserDefaults();
    for (int index = 0; index < 500; ++index) {
      defaults->setObject(std::string(100, 'x'), "key" + std::to_string(index));
    }
  }

  /// Files of set-aside databases.
  int countSetAside() const {
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(configuration_.domainFolder())) {
      const std::string name = entry.path().filename();
      if (name.starts_with("defaults.sqlite.corrupt-") && !name.ends_with("-wal") &&
          !name.ends_with("-shm")) {
        ++count;
      }
    }
    return count;
  }

  void expectStartsAfresh() {
    LinuxUserDefaultsProvider provider(log_);
    const auto defaults = provider.standardUserDefaults();
    for (int index = 0; index < 500; ++index) defaults->objectForKey("key" + std::to_string(index));
    defaults->setObject("new", "fresh");
    EXPECT_EQ(defaults->objectForKey("fresh"), "new");
    EXPECT_TRUE(defaults->synchronize());
    EXPECT_TRUE(provider.takeStartedAfresh());
    EXPECT_FALSE(provider.takeStartedAfresh());
    EXPECT_EQ(countSetAside(), 1);
    EXPECT_THAT(log_.lines(), ElementsAre(HasSubstr("start afresh")));
    EXPECT_EQ(LinuxUserDefaultsProvider(log_).standardUserDefaults()->objectForKey("fresh"), "new");
  }

  test::ScratchConfiguration configuration_;
  FakeLog log_;
};

TEST_F(DefaultsDamage, NoDatabaseAtAll) {
  std::filesystem::create_directory(configuration_.domainFolder());
  test::writeFile(configuration_.database(), std::string(20000, 'n'));
  expectStartsAfresh();
}

TEST_F(DefaultsDamage, PagesOfNoise) {
  fill();
  std::string contents = test::contentsOf(configuration_.database());
  ASSERT_GT(contents.size(), 12288U);
  std::fill(contents.begin() + 4096, contents.end(), '\xA5');
  test::writeFile(configuration_.database(), contents);
  expectStartsAfresh();
}

TEST_F(DefaultsDamage, CutInTheMiddle) {
  fill();
  std::filesystem::resize_file(configuration_.database(), 8192);
  expectStartsAfresh();
}

TEST_F(DefaultsDamage, HeaderLostButNotTheRest) {
  fill();
  std::string contents = test::contentsOf(configuration_.database());
  std::fill_n(contents.begin(), 100, '\0');
  test::writeFile(configuration_.database(), contents);
  expectStartsAfresh();
}

TEST_F(DefaultsDamage, AnEmptyFileIsAnEmptyDatabase) {
  std::filesystem::create_directory(configuration_.domainFolder());
  test::writeFile(configuration_.database(), "");
  const auto defaults = LinuxUserDefaultsProvider(log_).standardUserDefaults();
  defaults->setObject(1, "key");
  EXPECT_EQ(countSetAside(), 0);
  EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(DefaultsDamage, WhileOpenTheNextWriteGoesToAFreshOne) {
  LinuxUserDefaultsProvider provider(log_);
  const auto defaults = provider.standardUserDefaults();
  defaults->setObject("old", "key");
  ASSERT_EQ(std::rename(configuration_.database().c_str(),
                        (configuration_.database() + ".moved").c_str()),
            0);
  defaults->setObject("new", "other");
  EXPECT_EQ(defaults->objectForKey("key"), std::nullopt);
  EXPECT_EQ(LinuxUserDefaultsProvider(log_).standardUserDefaults()->objectForKey("other"), "new");
  EXPECT_TRUE(provider.takeStartedAfresh());
  std::filesystem::remove_all(configuration_.domainFolder());
  defaults->setObject("third", "key");
  EXPECT_EQ(LinuxUserDefaultsProvider(log_).standardUserDefaults()->objectForKey("key"), "third");
}

TEST_F(DefaultsDamage, ProcessesThatFindItTogetherKeepTheFreshOne) {
  for (int round = 0; round < 10; ++round) {
    std::filesystem::remove_all(configuration_.domainFolder());
    std::filesystem::create_directory(configuration_.domainFolder());
    test::writeFile(configuration_.database(), std::string(20000, 'n'));
    std::vector<pid_t> children;
    for (int number = 0; number < 4; ++number) {
      const pid_t child = ::fork();
      if (child == 0) {
        LinuxUserDefaultsProvider provider(log_);
        provider.standardUserDefaults()->setObject(number, "key" + std::to_string(number));
        ::_exit(0);
      }
      children.push_back(child);
    }
    for (const pid_t child : children) ::waitpid(child, nullptr, 0);
    const auto defaults = LinuxUserDefaultsProvider(log_).standardUserDefaults();
    EXPECT_THAT(defaults->keys(), ElementsAre("key0", "key1", "key2", "key3"));
    EXPECT_EQ(countSetAside(), 1);
  }
}

TEST_F(DefaultsDamage, WithoutAPlaceToWriteItWorksFromMemory) {
  const auto expectInMemory = [](const std::string& reason) {
    FakeLog log;
    LinuxUserDefaultsProvider provider(log);
    const auto defaults = provider.openStandard();
    defaults->setObject("value", "key");
    EXPECT_EQ(defaults->objectForKey("key"), "value");
    EXPECT_FALSE(defaults->isStored());
    EXPECT_FALSE(defaults->synchronize());
    const Observation observation = defaults->observe("key", [](const auto&) {});
    EXPECT_THAT(log.lines(), ElementsAre(HasSubstr(reason)));
  };
  test::writeFile(configuration_.folder() / "file", "");
  test::ScratchConfiguration::use(configuration_.folder() / "file");
  expectInMemory("Not a directory");
  test::ScratchConfiguration::use("/proc/self");
  expectInMemory("are not stored");
  test::ScratchConfiguration::use(configuration_.folder().path());
  std::filesystem::create_directories(configuration_.database());
  expectInMemory("are not stored");
}

TEST_F(DefaultsDamage, ValuesThatCanOnlyBeReadAreRead) {
  if (::geteuid() != 0) GTEST_SKIP() << "only root can become somebody else";
  fill();
  const auto makeReadable = [](const std::string& path, mode_t mode) {
    ASSERT_EQ(::chmod(path.c_str(), mode), 0);
  };
  makeReadable(configuration_.folder().path(), 0755);
  makeReadable(configuration_.domainFolder(), 0755);
  makeReadable(configuration_.database(), 0644);
  const pid_t child = ::fork();
  if (child == 0) {
    if (::setresuid(65534, 65534, 65534) != 0) ::_exit(2);
    FakeLog log;
    LinuxUserDefaultsProvider provider(log);
    const auto defaults = provider.openStandard();
    const bool isRead = defaults->objectForKey("key7") == PropertyList(std::string(100, 'x'));
    defaults->setObject("mine", "key7");
    const bool isKept = defaults->objectForKey("key7") == PropertyList("mine");
    ::_exit(isRead && isKept && !defaults->isStored() && log.lines().size() == 1 ? 0 : 1);
  }
  int status = -1;
  ::waitpid(child, &status, 0);
  EXPECT_EQ(status, 0);
}

}  // namespace
}  // namespace tavrin
