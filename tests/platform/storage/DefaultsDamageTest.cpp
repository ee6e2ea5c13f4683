#include <fcntl.h>
#include <gmock/gmock.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>

#include "platform/linux/FileDescriptor.h"
#include "tests/platform/storage/DefaultsHarness.h"

namespace tavrin {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// A process that does `work`, says so, and then waits to be ended with this object; it starts
/// before its parent has a connection, which it would share. Work that waits without end fails.
class OtherProcess {
 public:
  template <typename Work>
  explicit OtherProcess(Work work) {
    int ends[2] = {-1, -1};
    if (::pipe(ends) != 0) return;
    process_ = ::fork();
    if (process_ == 0) {
      ::alarm(20);
      work();
      static_cast<void>(::write(ends[1], "", 1) == 1);
      for (;;) ::pause();
    }
    ::close(ends[1]);
    done_ = FileDescriptor(ends[0]);
  }
  OtherProcess(const OtherProcess&) = delete;
  OtherProcess& operator=(const OtherProcess&) = delete;
  ~OtherProcess() {
    if (process_ <= 0) return;
    ::kill(process_, SIGKILL);
    ::waitpid(process_, nullptr, 0);
  }

  /// Waits for the end of the work; false when it failed.
  bool waitDone() const {
    char byte = 0;
    return ::read(done_.get(), &byte, 1) == 1;
  }
  void stop() const { ::kill(process_, SIGSTOP); }

 private:
  pid_t process_ = -1;
  FileDescriptor done_;
};

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

TEST_F(DefaultsDamage, EmptiedWhileOpenTheNextUseStartsAfresh) {
  LinuxUserDefaultsProvider provider(log_);
  const auto defaults = provider.standardUserDefaults();
  int told = 0;
  const Observation observation = defaults->observe("key", [&](const auto&) { ++told; });
  for (const int round : {1, 2, 3}) {
    defaults->setObject("old", "key");
    provider.processChanges();
    told = 0;
    std::filesystem::resize_file(configuration_.database(), 0);
    // A change notice, a read and a write, each as the first to see it.
    if (round == 1) {
      ASSERT_TRUE(test::waitReadable(provider.changeDescriptor()));
      provider.processChanges();
      EXPECT_EQ(told, 1);
    }
    if (round == 2) {
      EXPECT_EQ(defaults->objectForKey("key"), std::nullopt);
    }
    defaults->setObject("new", "other");
    EXPECT_EQ(defaults->objectForKey("key"), std::nullopt);
    EXPECT_EQ(LinuxUserDefaultsProvider(log_).standardUserDefaults()->objectForKey("other"), "new");
    EXPECT_TRUE(provider.takeStartedAfresh());
    EXPECT_EQ(countSetAside(), round);
    EXPECT_EQ(log_.lines().size(), static_cast<std::size_t>(round));
  }
}

TEST_F(DefaultsDamage, EmptiedWhileOthersHaveItOpenAllGoToOneFreshOne) {
  const OtherProcess user([this] {
    static LinuxUserDefaultsProvider provider(log_);
    static const auto defaults = provider.standardUserDefaults();
    defaults->setObject("old", "key");
  });
  ASSERT_TRUE(user.waitDone());
  const OtherProcess finder([this] {
    while (std::filesystem::file_size(configuration_.database()) > 0) ::usleep(1000);
    LinuxUserDefaultsProvider(log_).standardUserDefaults()->setObject("new", "key");
  });
  LinuxUserDefaultsProvider provider(log_);
  const auto defaults = provider.openStandard();
  EXPECT_EQ(defaults->objectForKey("key"), "old");
  std::filesystem::resize_file(configuration_.database(), 0);
  ASSERT_TRUE(finder.waitDone());
  // The process that made the fresh one has not seeded it: this one is to.
  EXPECT_EQ(defaults->objectForKey("key"), "new");
  EXPECT_TRUE(provider.takeStartedAfresh());
  EXPECT_TRUE(defaults->isStored());
  EXPECT_EQ(countSetAside(), 1);
  EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(DefaultsDamage, ALockThatIsNeverReleasedCostsSecondsAndOneLineEach) {
  using std::chrono::steady_clock;
  LinuxUserDefaultsProvider(log_).standardUserDefaults()->setObject("old", "key");
  {
    const OtherProcess holder([this] {
      const std::string path = configuration_.domainFolder() + "/defaults.lock";
      if (::flock(::open(path.c_str(), O_RDWR | O_CLOEXEC), LOCK_EX) != 0) ::_exit(1);
    });
    ASSERT_TRUE(holder.waitDone());
    holder.stop();
    // In another process, since without a bound it would never end.
    const OtherProcess writer([] {
      const auto started = steady_clock::now();
      FakeLog log;
      LinuxUserDefaultsProvider inner(log);
      const auto other = inner.openStandard();
      for (int turn = 0; turn < 20; ++turn) other->setObject("new", "key");
      const bool isQuick = steady_clock::now() - started < std::chrono::seconds(5);
      if (!isQuick || !other->isStored() || other->objectForKey("key") != "old") ::_exit(1);
      if (log.lines().size() != 20) ::_exit(1);
    });
    ASSERT_TRUE(writer.waitDone());
    LinuxUserDefaultsProvider provider(log_);
    const auto defaults = provider.openStandard();
    EXPECT_EQ(defaults->objectForKey("key"), "old");
    EXPECT_FALSE(defaults->setObjects({{"key", "newer"}}));
    EXPECT_THAT(log_.lines(), ElementsAre(HasSubstr("locked")));
    // Nothing can be made there either: that goes on from memory.
    std::filesystem::remove(configuration_.database());
    defaults->setObject("kept", "key");
    EXPECT_EQ(defaults->objectForKey("key"), "kept");
    EXPECT_FALSE(defaults->isStored());
  }
  const auto again = LinuxUserDefaultsProvider(log_).openStandard();
  again->setObject("after", "key");
  EXPECT_TRUE(again->isStored());
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
