#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <fstream>

#include "platform/linux/DefaultsReader.h"
#include "tests/platform/storage/DefaultsHarness.h"

namespace tavrin {

namespace {

namespace fs = std::filesystem;
using Dictionary = PropertyList::Dictionary;

constexpr std::array keys{"list", "text"};

class DefaultsReaderTest : public testing::Test {
 protected:
  std::unique_ptr<LinuxUserDefaults> store() { return provider_.openStandard(); }

  /// What is read when something may have changed; what was read before otherwise.
  Dictionary current() {
    if (!reader_.hasChanged()) return last_;
    const auto values = reader_.read(keys);
    EXPECT_TRUE(values);
    return last_ = values.value_or(Dictionary());
  }

  static int writeInAnotherProcess(const char* text) {
    const pid_t child = ::fork();
    if (child == 0) {
      // NOLINTNEXTLINE(concurrency-mt-unsafe): the process has one thread
      ::execl(TAVRIN_DEFAULTS_TOOL, "tavrin-defaults", "write", "standard", "text", "-string", text,
              nullptr);
      ::_exit(127);
    }
    int status = -1;
    ::waitpid(child, &status, 0);
    return status;
  }

  test::ScratchConfiguration configuration_;
  FakeLog log_;
  LinuxUserDefaultsProvider provider_{log_};
  DefaultsReader reader_{configuration_.domainFolder(), log_};
  Dictionary last_;
};

TEST_F(DefaultsReaderTest, followsEveryCommitAndNothingElse) {
  EXPECT_EQ(current(), Dictionary());
  EXPECT_FALSE(reader_.hasChanged());
  EXPECT_FALSE(fs::exists(configuration_.domainFolder())) << "a reader makes nothing";
  auto writer = store();
  writer->setObject("one", "text");
  EXPECT_EQ(current(), (Dictionary{{"text", "one"}}));
  EXPECT_FALSE(reader_.hasChanged());
  writer->setObject("two", "text");
  writer->setObject(7, "other");
  EXPECT_TRUE(reader_.hasChanged());
  EXPECT_EQ(current(), (Dictionary{{"text", "two"}}));
  writer->removeObjectForKey("text");
  EXPECT_EQ(current(), Dictionary());
}

TEST_F(DefaultsReaderTest, readsWhatAProgramThatHasEndedLeft) {
  { store()->setObject("left", "text"); }
  provider_.openSuite("another");
  EXPECT_EQ(current(), (Dictionary{{"text", "left"}}));
  fs::remove_all(configuration_.domainFolder());
  EXPECT_EQ(current(), Dictionary());
  LinuxUserDefaultsProvider(log_).openStandard()->setObject("new", "text");
  EXPECT_EQ(current(), (Dictionary{{"text", "new"}}));
}

TEST_F(DefaultsReaderTest, followsEvenWhenItsProcessLosesItsLocks) {
  { store()->setObject("one", "text"); }
  EXPECT_EQ(current(), (Dictionary{{"text", "one"}}));
  // Closing any handle of a file gives up all locks of the process on it.
  { std::ifstream(configuration_.database()).get(); }
  for (const char* text : {"two", "three"}) {
    ASSERT_EQ(writeInAnotherProcess(text), 0);
    EXPECT_EQ(current(), (Dictionary{{"text", text}}));
  }
}

TEST_F(DefaultsReaderTest, leavesLargeDataWhereItIs) {
  const auto large = std::make_shared<const PropertyList::Data>(1'000'000, 'x');
  const PropertyList::Data small{1, 2, 3};
  store()->setObject(PropertyList::Array{large, small, large}, "list");
  const Dictionary values = current();
  const PropertyList::Array& rows = *values.at("list").arrayIfArray();
  ASSERT_EQ(rows.size(), 3U);
  ASSERT_NE(rows[0].dataIfData(), nullptr);
  EXPECT_LT(rows[0].dataIfData()->size(), 100U);
  EXPECT_EQ(rows[1], PropertyList(small));
  EXPECT_EQ(DefaultsReader::digestOf(*rows[0].dataIfData()), DefaultsReader::digestOf(*large));
  EXPECT_EQ(DefaultsReader::digestOf(small),
            "039058c6f2c0cb492c533b0a4d14ef77cc0f78abccced5287d84a1a2011cfb81");
}

TEST_F(DefaultsReaderTest, anUnreadableDatabaseIsEmptyAndSaidOnce) {
  fs::create_directories(configuration_.domainFolder());
  for (const std::string& content :
       {std::string("no database at all, but long enough to look at"),
        "SQLite format 3" + std::string(5000, '\0'), std::string(100'000, '\xff')}) {
    const std::size_t linesBefore = log_.lines().size();
    fs::remove(configuration_.database());
    std::ofstream(configuration_.database()) << content;
    EXPECT_EQ(current(), Dictionary());
    EXPECT_EQ(current(), Dictionary());
    EXPECT_EQ(log_.lines().size(), linesBefore + 1);
    EXPECT_EQ(fs::file_size(configuration_.database()), content.size()) << "it is as it was";
  }
}

TEST_F(DefaultsReaderTest, doesNotWaitForWhoeverHoldsTheDatabase) {
  store()->setObject("before", "text");
  sqlite3* other = nullptr;
  ASSERT_EQ(sqlite3_open(configuration_.database().c_str(), &other), SQLITE_OK);
  ASSERT_EQ(sqlite3_exec(other,
                         "PRAGMA locking_mode=EXCLUSIVE; BEGIN IMMEDIATE; "
                         "UPDATE setting SET value=value",
                         nullptr, nullptr, nullptr),
            SQLITE_OK);
  const auto start = std::chrono::steady_clock::now();
  const auto values = reader_.read(keys);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
  if (values) {
    EXPECT_EQ(*values, (Dictionary{{"text", "before"}}));
  } else {
    EXPECT_TRUE(reader_.hasChanged()) << "it is to be read again";
  }
  sqlite3_close(other);
  EXPECT_EQ(reader_.read(keys), (Dictionary{{"text", "before"}}));
}

}  // namespace

}  // namespace tavrin
