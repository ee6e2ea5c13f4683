// Images in lists of settings: stored once, and neither read nor stored again without need.
#include <gmock/gmock.h>
#include <sqlite3.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <random>
#include <set>
#include <thread>

#include "tests/platform/storage/DefaultsHarness.h"

namespace tavrin {
namespace {

using testing::IsEmpty;
using testing::SizeIs;

constexpr std::size_t iconSize = 100'000;

PropertyList::Data iconBytes(int number) {
  PropertyList::Data bytes(iconSize, static_cast<std::uint8_t>(number));
  bytes[1] = static_cast<std::uint8_t>(number >> 8);
  return bytes;
}

/// One row for each icon; equal numbers share their bytes.
PropertyList listOf(const std::vector<int>& icons) {
  std::map<int, std::shared_ptr<const PropertyList::Data>> made;
  PropertyList::Array rows;
  for (const int number : icons) {
    auto& icon = made[number];
    if (!icon) icon = std::make_shared<const PropertyList::Data>(iconBytes(number));
    rows.emplace_back(PropertyList::Dictionary{{"enable", true}, {"icon", icon}});
  }
  return rows;
}

PropertyList listOf(int count) {
  std::vector<int> icons;
  for (int number = 0; number < count; ++number) icons.push_back(number);
  return listOf(icons);
}

PropertyList withRowOff(PropertyList list, std::size_t row) {
  (*list.arrayIfArray())[row].dictionaryIfDictionary()->insert_or_assign("enable", false);
  return list;
}

std::shared_ptr<const PropertyList::Data> iconOfRow(const PropertyList& list, std::size_t row) {
  return list.arrayIfArray()->at(row).find("icon")->sharedDataIfData();
}

/// The bytes that this process has read from files and the like.
std::size_t bytesRead() {
  std::ifstream numbers("/proc/self/io");
  std::string name;
  std::size_t count = 0;
  numbers >> name >> count;
  EXPECT_EQ(name, "rchar:");
  return count;
}

class LargeData : public testing::Test {
 protected:
  /// What a query of one number gives in the database as it stands on the disk; -1 without rows.
  std::int64_t ask(const std::string& query) const {
    sqlite3* handle = nullptr;
    sqlite3_open(configuration_.database().c_str(), &handle);
    sqlite3_busy_timeout(handle, 10'000);
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v2(handle, query.c_str(), -1, &statement, nullptr);
    const bool hasRow = sqlite3_step(statement) == SQLITE_ROW;
    const std::int64_t answer = hasRow ? sqlite3_column_int64(statement, 0) : -1;
    sqlite3_finalize(statement);
    sqlite3_close(handle);
    return answer;
  }

  /// What a process finds that has nothing in memory.
  std::optional<PropertyList> readAfresh(const std::string& key) {
    return LinuxUserDefaultsProvider(log_).standardUserDefaults()->objectForKey(key);
  }

  void setFromElsewhere(const PropertyList& value, const std::string& key) {
    LinuxUserDefaultsProvider(log_).standardUserDefaults()->setObject(value, key);
  }

  test::ScratchConfiguration configuration_;
  FakeLog log_;
  LinuxUserDefaultsProvider provider_{log_};
  std::unique_ptr<UserDefaults> defaults_ = provider_.standardUserDefaults();
};

TEST_F(LargeData, ReadAgainItIsSharedWithWhoHoldsIt) {
  setFromElsewhere(listOf(100), "icons");
  const auto suite = provider_.suite("group");
  const auto list = defaults_->objectForKey("icons");
  const std::size_t before = bytesRead();
  const auto again = defaults_->objectForKey("icons");
  EXPECT_LT(bytesRead() - before, iconSize);
  ASSERT_TRUE(list && again);
  EXPECT_EQ(iconOfRow(*list, 7), iconOfRow(*again, 7));
  suite->setObject(*list, "published");
  const auto published = suite->objectForKey("published");
  ASSERT_TRUE(published);
  EXPECT_EQ(iconOfRow(*list, 7), iconOfRow(*published, 7));
  EXPECT_EQ(*published, listOf(100));
}

TEST_F(LargeData, WhatNobodyHoldsLeavesTheMemoryAndIsReadAgain) {
  std::weak_ptr<const PropertyList::Data> icon;
  {
    const PropertyList list = listOf(3);
    icon = iconOfRow(list, 0);
    defaults_->setObject(list, "icons");
    provider_.suite("group")->setObject(list, "published");
    EXPECT_EQ(defaults_->objectForKey("icons"), list);
  }
  EXPECT_TRUE(icon.expired());
  EXPECT_EQ(defaults_->objectForKey("icons"), listOf(3));
}

TEST_F(LargeData, AListIsStoredAndPublishedWithoutReadingItsImages) {
  setFromElsewhere(listOf(300), "icons");
  LinuxUserDefaultsProvider(log_).suite("group")->setObject(listOf(300), "published");
  const auto list = defaults_->objectForKey("icons");
  ASSERT_TRUE(list);
  const auto suite = provider_.suite("group");
  const std::size_t before = bytesRead();
  defaults_->setObject(withRowOff(*list, 5), "icons");
  suite->setObject(withRowOff(*list, 5), "published");
  EXPECT_LT(bytesRead() - before, 20 * iconSize);
  EXPECT_EQ(readAfresh("icons"), withRowOff(listOf(300), 5));
  EXPECT_EQ(LinuxUserDefaultsProvider(log_).suite("group")->objectForKey("published"),
            withRowOff(listOf(300), 5));
}

TEST_F(LargeData, AnyChangeOfAListKeepsExactlyTheImagesItUses) {
  std::minstd_rand random(1);
  for (int step = 0; step < 60; ++step) {
    std::vector<int> icons(random() % 9);
    for (int& icon : icons) icon = static_cast<int>(random() % 6);
    const std::string key = step % 3 == 0 ? "other" : "icons";
    defaults_->setObject(listOf(icons), key);
    ASSERT_EQ(readAfresh(key), listOf(icons)) << step;
    std::set<PropertyList::Data> contents;
    std::int64_t uses = 0;
    for (const char* name : {"icons", "other"}) {
      const PropertyList::Array rows = defaults_->arrayForKey(name);
      uses += static_cast<std::int64_t>(rows.size());
      for (const PropertyList& row : rows) contents.insert(*row.find("icon")->dataIfData());
    }
    ASSERT_EQ(ask("SELECT count(*) FROM large_data"), static_cast<std::int64_t>(contents.size()));
    ASSERT_EQ(ask("SELECT count(*) FROM large_data_use"), uses);
  }
  EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(LargeData, WhatAnotherProcessRemovedIsStoredAgain) {
  defaults_->setObject(listOf(std::vector{1, 2}), "icons");
  const auto held = defaults_->objectForKey("icons");
  // The other one's image gets the number of the one that it removed.
  setFromElsewhere(listOf(std::vector{1, 3}), "icons");
  EXPECT_EQ(defaults_->objectForKey("icons"), listOf(std::vector{1, 3}));
  setFromElsewhere("none", "icons");
  defaults_->setObject(*held, "icons");
  EXPECT_EQ(readAfresh("icons"), listOf(std::vector{1, 2}));
  EXPECT_EQ(defaults_->objectForKey("icons"), held);
}

TEST_F(LargeData, AfterAFailedWriteTheOldListStandsAndTheNextWriteIsWhole) {
  defaults_->setObject(listOf(std::vector{1}), "icons");
  ask("CREATE TRIGGER refusal BEFORE INSERT ON large_data_use "
      "BEGIN SELECT RAISE(ABORT, 'refused'); END");
  const PropertyList wished = listOf(std::vector{1, 2, 3});
  defaults_->setObject(wished, "icons");
  EXPECT_THAT(log_.lines(), SizeIs(1));
  EXPECT_EQ(defaults_->objectForKey("icons"), listOf(std::vector{1}));
  EXPECT_EQ(ask("SELECT count(*) FROM large_data"), 1);
  ask("DROP TRIGGER refusal");
  defaults_->setObject(wished, "icons");
  EXPECT_EQ(readAfresh("icons"), wished);
  EXPECT_EQ(defaults_->objectForKey("icons"), wished);
}

TEST_F(LargeData, ObserversSeeAListOnceItDiffers) {
  defaults_->setObject(listOf(3), "icons");
  const auto other = provider_.standardUserDefaults();
  std::vector<std::optional<PropertyList>> seen;
  const Observation observation =
      other->observe("icons", [&seen](const auto& value) { seen.push_back(value); });
  defaults_->setObject(listOf(3), "icons");
  provider_.processChanges();
  EXPECT_THAT(seen, IsEmpty());
  defaults_->setObject(listOf(std::vector{0, 1, 5}), "icons");
  provider_.processChanges();
  ASSERT_THAT(seen, SizeIs(1));
  EXPECT_EQ(seen.front(), listOf(std::vector{0, 1, 5}));
}

TEST_F(LargeData, ReadsAndRenewsTheRowsOfOlderVersions) {
  setFromElsewhere(listOf(4), "icons");
  ask("UPDATE large_data SET hash=CAST(id AS INTEGER)");
  EXPECT_EQ(defaults_->objectForKey("icons"), listOf(4));
  defaults_->setObject(withRowOff(defaults_->objectForKey("icons").value(), 1), "icons");
  EXPECT_EQ(readAfresh("icons"), withRowOff(listOf(4), 1));
  EXPECT_EQ(ask("SELECT count(*) FROM large_data WHERE length(hash)=32"), 4);
  EXPECT_EQ(ask("SELECT count(*) FROM large_data"), 4);
}

TEST_F(LargeData, SurvivesADatabaseThatStartsAfresh) {
  const PropertyList list = listOf(5);
  defaults_->setObject(list, "icons");
  for (const char* suffix : {"", "-wal", "-shm"}) {
    std::filesystem::remove(configuration_.database() + suffix);
  }
  defaults_->setObject(list, "icons");
  EXPECT_EQ(readAfresh("icons"), list);
}

TEST_F(LargeData, ProcessesAndThreadsThatShareImagesLoseNone) {
  constexpr int rounds = 150;
  const auto lastOf = [](int writer) { return listOf(std::vector{writer, rounds % 7, 6}); };
  const auto writeAll = [](UserDefaults& defaults, int writer) {
    for (int round = 0; round <= rounds; ++round) {
      defaults.setObject(listOf(std::vector{writer, round % 7, 6}), std::to_string(writer));
    }
  };
  std::vector<pid_t> children;
  for (const int writer : {10, 11}) {
    children.push_back(::fork());
    if (children.back() != 0) continue;
    LinuxUserDefaultsProvider provider(log_);
    writeAll(*provider.standardUserDefaults(), writer);
    ::_exit(log_.lines().empty() ? 0 : 1);
  }
  std::vector<std::thread> threads;
  for (const int writer : {12, 13}) {
    threads.emplace_back([&, writer] { writeAll(*provider_.standardUserDefaults(), writer); });
  }
  for (std::thread& thread : threads) thread.join();
  for (const pid_t child : children) {
    int status = -1;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
  }
  for (const int writer : {10, 11, 12, 13}) {
    EXPECT_EQ(readAfresh(std::to_string(writer)), lastOf(writer)) << writer;
  }
  EXPECT_EQ(ask("SELECT count(*) FROM large_data"), 6);
}

}  // namespace
}  // namespace tavrin
