#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "platform/linux/PartialItems.h"
#include "tests/platform/files/EngineFixture.h"
#include "tests/support/ChildProcess.h"

namespace tavrin::testing {
namespace {

class CountingLog final : public Log {
 public:
  void write(std::string_view) override { ++lines; }
  int lines = 0;
};

class PartialItemsTest : public EngineFixture {
 protected:
  /// What a process leaves that is killed while it copies into the folder "target".
  void leavePartialItem() {
    build().folder("target");
    inChildProcess([this] {
      const Result<PartialItem> partial = partials.begin(item("target/copy"));
      const std::string name = "target/" + partial.value().name();
      build().folder(name).folder(name + "/read-only").file(name + "/read-only/file", "x");
      std::filesystem::permissions(at(name + "/read-only"), std::filesystem::perms(0));
      ::_exit(0);
      return 0;
    });
    ASSERT_EQ(namesIn(at("target")).size(), 1U);
    ASSERT_EQ(namesIn(records.path()).size(), 1U);
  }

  CountingLog log;
};

TEST_F(PartialItemsTest, ClearsWhatAKilledProcessLeft) {
  leavePartialItem();
  partials.clearLeftovers(log, clearing);
  EXPECT_TRUE(namesIn(at("target")).empty());
  EXPECT_TRUE(hasNoRecords());
  EXPECT_EQ(log.lines, 0);
}

TEST_F(PartialItemsTest, GivesItemsThatWereSetAsideTheirNamesAgain) {
  build().folder("source").file("source/file", "x").file("other", "kept");
  const auto setAsideAndDie = [this](const std::string& name) {
    inChildProcess([this, &name] {
      const Result<PartialItem> aside = partials.beginSettingAside(item(name));
      std::filesystem::rename(at(name), at(aside.value().name()));
      ::_exit(0);
      return 0;
    });
    EXPECT_FALSE(std::filesystem::exists(at(name)));
  };
  setAsideAndDie("source");
  partials.clearLeftovers(log, clearing);
  EXPECT_TRUE(std::filesystem::exists(at("source/file")));
  EXPECT_TRUE(hasNoRecords());
  EXPECT_EQ(log.lines, 0);

  setAsideAndDie("other");
  build().file("other", "newer");
  partials.clearLeftovers(log, clearing);
  EXPECT_EQ(std::filesystem::file_size(at("other")), 5U);
  EXPECT_EQ(std::filesystem::file_size(at("other 2")), 4U);
  EXPECT_TRUE(hasNoRecords());
}

TEST_F(PartialItemsTest, LeavesWhatALivingProcessWorksOn) {
  build().folder("target");
  {
    const Result<PartialItem> partial = partials.begin(item("target/copy"));
    ASSERT_TRUE(partial);
    build().folder("target/" + partial.value().name());
    inChildProcess([this] {
      partials.clearLeftovers(log, clearing);
      return 0;
    });
    PartialItems(records.path()).clearLeftovers(log, clearing);
    EXPECT_EQ(namesIn(at("target")).size(), 1U);
    EXPECT_EQ(namesIn(records.path()).size(), 1U);
  }
  EXPECT_TRUE(hasNoRecords());
}

TEST_F(PartialItemsTest, LeavesAnotherFolderAtTheSamePathAlone) {
  leavePartialItem();
  const std::string name = namesIn(at("target")).begin()->first;
  std::filesystem::rename(at("target"), at("moved"));
  build().folder("target").folder("target/" + name);
  partials.clearLeftovers(log, clearing);
  EXPECT_EQ(namesIn(at("target")).size(), 1U);
  EXPECT_EQ(log.lines, 1);

  std::filesystem::remove_all(at("target"));
  build().symbolicLink("target", at("moved"));
  partials.clearLeftovers(log, clearing);
  EXPECT_EQ(namesIn(at("moved")).size(), 1U);
  EXPECT_EQ(log.lines, 2);
}

TEST_F(PartialItemsTest, LeavesNamesAloneThatAreNotItsOwn) {
  leavePartialItem();
  build().file("target/precious", "x");
  const std::string record = records / namesIn(records.path()).begin()->first;
  std::string text;
  std::getline(std::ifstream(record, std::ios::binary), text, '\xff');
  const std::string own = ".tavrin-";
  const std::size_t start = text.find(own);
  ASSERT_NE(start, std::string::npos);
  text.replace(start, text.find('\0', start) - start, "precious");
  std::ofstream(record, std::ios::binary) << text;
  std::ofstream(records / ".tavrin-0123456789abcdef.record") << "torn";
  partials.clearLeftovers(log, clearing);
  EXPECT_EQ(namesIn(at("target")).count("precious"), 1U);
  EXPECT_EQ(log.lines, 2);
}

TEST_F(PartialItemsTest, DropsRecordsWhoseItemGotItsName) {
  leavePartialItem();
  std::filesystem::rename(at("target/" + namesIn(at("target")).begin()->first), at("target/copy"));
  partials.clearLeftovers(log, clearing);
  EXPECT_EQ(namesIn(at("target")).count("copy"), 1U);
  EXPECT_TRUE(hasNoRecords());
  EXPECT_EQ(log.lines, 0);
}

}  // namespace
}  // namespace tavrin::testing
