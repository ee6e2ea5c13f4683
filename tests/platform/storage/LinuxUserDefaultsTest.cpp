#include <gmock/gmock.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <thread>

#include "tests/platform/storage/DefaultsHarness.h"

namespace tavrin {
namespace {

using testing::IsEmpty;
using testing::SizeIs;

/// Runs `work` in a new process and returns its exit status. The caller has no thread besides its
/// own and no connection that the child would share.
template <typename Work>
pid_t inNewProcess(Work work) {
  const pid_t child = ::fork();
  if (child != 0) return child;
  work();
  ::_exit(0);
}

int exitStatus(pid_t child) {
  int status = -1;
  ::waitpid(child, &status, 0);
  return status;
}

class LinuxDefaults : public testing::Test {
 protected:
  static mode_t modeOf(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 ? status.st_mode & 07777 : 0;
  }

  /// What a query of one number gives in the database as it stands on the disk.
  std::int64_t ask(const std::string& query) const {
    sqlite3* handle = nullptr;
    sqlite3_open(configuration_.database().c_str(), &handle);
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v2(handle, query.c_str(), -1, &statement, nullptr);
    const std::int64_t answer =
        sqlite3_step(statement) == SQLITE_ROW ? sqlite3_column_int64(statement, 0) : -1;
    sqlite3_finalize(statement);
    sqlite3_close(handle);
    return answer;
  }

  test::ScratchConfiguration configuration_;
  FakeLog log_;
  LinuxUserDefaultsProvider provider_{log_};
};

PropertyList iconList(int count, int changedRow) {
  PropertyList::Array rows;
  for (int row = 0; row < count; ++row) {
    PropertyList::Data icon(100'000, static_cast<std::uint8_t>(row));
    icon[0] = static_cast<std::uint8_t>(row >> 8);
    rows.emplace_back(
        PropertyList::Dictionary{{"enable", row != changedRow}, {"icon", std::move(icon)}});
  }
  return rows;
}

TEST_F(LinuxDefaults, FilesAreForTheUserAlone) {
  const auto defaults = provider_.standardUserDefaults();
  defaults->setObject(1, "key");
  EXPECT_EQ(modeOf(configuration_.domainFolder()), 0700U);
  for (const char* suffix : {"", "-wal", "-shm"}) {
    EXPECT_EQ(modeOf(configuration_.database() + suffix), 0600U) << suffix;
  }
  const auto suite = provider_.suite("group");
  EXPECT_TRUE(std::filesystem::exists(configuration_.folder() / "group/defaults.sqlite"));
  EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(LinuxDefaults, ASuiteNameThatIsNoFileNameNeverLeavesTheFolder) {
  for (const std::string& name : {std::string("a/b"), std::string(".."), std::string(),
                                  std::string("../x"), std::string("a\0b", 3)}) {
    const auto suite = provider_.suite(name);
    suite->setObject(1, "key");
    EXPECT_EQ(suite->objectForKey("key"), PropertyList(1));
    EXPECT_FALSE(suite->synchronize());
  }
  EXPECT_TRUE(std::filesystem::is_empty(configuration_.folder().path()));
  EXPECT_THAT(log_.lines(), SizeIs(5));
}

TEST_F(LinuxDefaults, RewritingAListLeavesItsImagesAlone) {
  const auto defaults = provider_.standardUserDefaults();
  defaults->setObject(iconList(300, -1), "icons");
  defaults->setObject(iconList(300, -1), "published");
  EXPECT_EQ(ask("SELECT count(*) FROM large_data"), 300);
  const std::int64_t rows = ask("SELECT sum(id * id) FROM large_data");
  ask("PRAGMA wal_checkpoint(TRUNCATE)");

  defaults->setObject(iconList(300, 5), "icons");
  EXPECT_LT(std::filesystem::file_size(configuration_.database() + "-wal"), 200'000U);
  EXPECT_EQ(ask("SELECT sum(id * id) FROM large_data"), rows);
  EXPECT_EQ(defaults->objectForKey("icons"), iconList(300, 5));
  EXPECT_EQ(defaults->objectForKey("published"), iconList(300, -1));

  defaults->setObject(iconList(7, -1), "icons");
  defaults->removeObjectForKey("published");
  EXPECT_EQ(ask("SELECT count(*) FROM large_data"), 7);
  defaults->setObject("none", "icons");
  EXPECT_EQ(ask("SELECT count(*) FROM large_data"), 0);
  EXPECT_EQ(ask("SELECT count(*) FROM large_data_use"), 0);
}

TEST_F(LinuxDefaults, AValueBeyondTheLimitsIsRefusedAndTheOldOneStands) {
  const auto defaults = provider_.openStandard();
  defaults->setObject("old", "key");
  PropertyList deep = 1;
  for (int level = 0; level < 600; ++level) {
    PropertyList::Array outer;
    outer.push_back(std::move(deep));
    deep = std::move(outer);
  }
  int told = 0;
  const Observation observation = defaults->observe("key", [&told](const auto&) { ++told; });
  defaults->setObject(deep, "key");
  EXPECT_EQ(defaults->objectForKey("key"), "old");
  EXPECT_FALSE(defaults->setObjects({{"other", 1}, {"key", deep}}));
  EXPECT_EQ(defaults->objectForKey("other"), std::nullopt);
  EXPECT_EQ(told, 0);
  EXPECT_THAT(log_.lines(), SizeIs(2));
}

TEST_F(LinuxDefaults, TwoWritersLoseNothing) {
  constexpr int count = 10'000;
  const auto writer = [this](const std::string& name) {
    return inNewProcess([&] {
      LinuxUserDefaultsProvider provider(log_);
      const auto defaults = provider.standardUserDefaults();
      for (int index = 0; index < count; ++index) {
        defaults->setObject(index, name + std::to_string(index));
        if (index % 10 == 0) defaults->setObject(index, "shared");
      }
      if (!log_.lines().empty()) ::_exit(1);
    });
  };
  const pid_t first = writer("a");
  const pid_t second = writer("b");
  EXPECT_EQ(exitStatus(first), 0);
  EXPECT_EQ(exitStatus(second), 0);
  const auto defaults = provider_.standardUserDefaults();
  EXPECT_THAT(defaults->keys(), SizeIs(2 * count + 1));
  int wrong = 0;
  for (int index = 0; index < count; ++index) {
    for (const char* name : {"a", "b"}) {
      if (defaults->objectForKey(name + std::to_string(index)) != PropertyList(index)) ++wrong;
    }
  }
  EXPECT_EQ(wrong, 0);
}

TEST_F(LinuxDefaults, OfTwoSeedersOneWins) {
  const auto seed = [this](int value) {
    return inNewProcess([&] {
      LinuxUserDefaultsProvider provider(log_);
      const auto defaults = provider.standardUserDefaults();
      int stored = 0;
      for (int index = 0; index < 200; ++index) {
        stored += defaults->setObjectIfAbsent(value, std::to_string(index));
      }
      ::_exit(stored);
    });
  };
  const pid_t first = seed(1);
  const pid_t second = seed(2);
  EXPECT_EQ(WEXITSTATUS(exitStatus(first)) + WEXITSTATUS(exitStatus(second)), 200);
}

TEST_F(LinuxDefaults, KilledAtAnyMomentItKeepsWholeValues) {
  const char* wished = ::getenv("TAVRIN_KILL_ROUNDS");  // NOLINT(concurrency-mt-unsafe)
  const int rounds = wished == nullptr ? 5 : std::atoi(wished);
  const auto valueOf = [](std::int64_t number) {
    return PropertyList(PropertyList::Array{
        number, PropertyList::Data(5000 + static_cast<std::size_t>(number) % 50 * 1000,
                                   static_cast<std::uint8_t>(number))});
  };
  std::int64_t last = 0;
  for (int round = 0; round < rounds; ++round) {
    int started[2];
    ASSERT_EQ(::pipe(started), 0);
    const pid_t child = inNewProcess([&] {
      LinuxUserDefaultsProvider provider(log_);
      const auto defaults = provider.standardUserDefaults();
      defaults->setObject(valueOf(last + 1), "key");
      static_cast<void>(::write(started[1], "", 1) == 1);
      for (std::int64_t number = last + 2;; ++number) defaults->setObject(valueOf(number), "key");
    });
    ::close(started[1]);
    char byte = 0;
    EXPECT_EQ(::read(started[0], &byte, 1), 1);
    ::close(started[0]);
    ::usleep(static_cast<useconds_t>((round * 7919) % 30'000));
    ::kill(child, SIGKILL);
    exitStatus(child);
    const auto value = LinuxUserDefaultsProvider(log_).standardUserDefaults()->objectForKey("key");
    ASSERT_TRUE(value && value->isArray());
    const std::int64_t number = value->arrayIfArray()->front().integerValue();
    EXPECT_EQ(*value, valueOf(number));
    EXPECT_GT(number, last);
    last = number;
  }
  EXPECT_EQ(ask("SELECT count(*) FROM large_data"), 1);
  EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(LinuxDefaults, SettingsSurviveReopeningAndSynchronizeSucceeds) {
  {
    const auto defaults = provider_.standardUserDefaults();
    defaults->setObject(iconList(3, 0), "icons");
    EXPECT_TRUE(defaults->synchronize());
  }
  EXPECT_EQ(provider_.standardUserDefaults()->objectForKey("icons"), iconList(3, 0));
}

TEST_F(LinuxDefaults, ObjectsOfOneDomainShareAConnectionPerThread) {
  const auto open = [] {
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
      std::error_code gone;
      const auto target = std::filesystem::read_symlink(entry, gone);
      if (target.string().ends_with("/defaults.sqlite")) ++count;
    }
    return count;
  };
  const auto first = provider_.standardUserDefaults();
  const auto second = provider_.standardUserDefaults();
  EXPECT_EQ(open(), 1);
  std::thread([&] {
    const auto elsewhere = provider_.standardUserDefaults();
    elsewhere->setObject("thread", "key");
    EXPECT_EQ(open(), 2);
  }).join();
  EXPECT_EQ(second->objectForKey("key"), "thread");
}

}  // namespace
}  // namespace tavrin
