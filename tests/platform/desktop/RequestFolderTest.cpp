#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <set>

#include "platform/linux/LinuxPropertyListSerialization.h"
#include "platform/linux/RequestFolder.h"
#include "tests/platform/desktop/DesktopSession.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/ScratchFolder.h"

namespace tavrin {

namespace {

namespace fs = std::filesystem;
using tavrin::testing::asNobody;
using tavrin::testing::MountedFolder;
using tavrin::testing::ScratchFolder;

const PropertyList request =
    PropertyList::Dictionary{{"Action", "copyFilesTo"}, {"ToPath", "/\xff"}};

unsigned modeOf(const std::string& path) {
  struct stat status {};
  EXPECT_EQ(::stat(path.c_str(), &status), 0) << path;
  return status.st_mode & ALLPERMS;
}

std::size_t entriesBelow(const std::string& folder) {
  const fs::recursive_directory_iterator entries(folder);
  return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

class RequestFolderTest : public ::testing::Test {
 protected:
  void SetUp() override { useRuntimeFolder(scratch_.path()); }
  void TearDown() override {
    test::setVariable("XDG_RUNTIME_DIR", std::nullopt);
    test::setVariable("XDG_CACHE_HOME", std::nullopt);
  }

  static void useRuntimeFolder(const std::string& path) {
    test::setVariable("XDG_RUNTIME_DIR", path);
  }
  std::string programFolder() const { return scratch_ / "app.tavrin.Tavrin"; }
  std::string requestFolder() const { return programFolder() + "/requests"; }

  /// Expects that no request is written, and that nothing is made below the scratch folder.
  void expectRefused(std::errc cause) {
    const std::size_t before = entriesBelow(scratch_.path());
    const auto file = writeRequestFile(request);
    ASSERT_FALSE(file);
    EXPECT_EQ(file.error().code, cause) << file.error().describe();
    EXPECT_EQ(entriesBelow(scratch_.path()), before);
  }

  ScratchFolder scratch_;
};

TEST_F(RequestFolderTest, aRequestIsReadableByItsUserAlone) {
  const mode_t before = ::umask(0);
  const auto open = writeRequestFile(request);
  ::umask(0377);
  const auto closed = writeRequestFile(request);
  ::umask(before);
  ASSERT_TRUE(open && closed);
  EXPECT_EQ(modeOf(open.value().path()), 0600U);
  EXPECT_EQ(modeOf(closed.value().path()), 0600U);
  EXPECT_EQ(modeOf(programFolder()), 0700U);
  EXPECT_EQ(modeOf(requestFolder()), 0700U);
  const auto read =
      LinuxPropertyListSerialization().propertyListWithContentsOfFile(open.value().path());
  ASSERT_TRUE(read);
  EXPECT_EQ(read.value(), request);
}

TEST_F(RequestFolderTest, aFolderThatOthersCouldEnterIsMadePrivate) {
  fs::create_directories(requestFolder());
  ::chmod(programFolder().c_str(), 0755);
  ::chmod(requestFolder().c_str(), 0777);
  ASSERT_TRUE(writeRequestFile(request));
  EXPECT_EQ(modeOf(programFolder()), 0700U);
  EXPECT_EQ(modeOf(requestFolder()), 0700U);
}

TEST_F(RequestFolderTest, namesDifferAndFilesGoWithTheirObjects) {
  std::vector<RequestFile> files;
  std::set<std::string> paths;
  for (int number = 0; number < 200; ++number) {
    auto file = writeRequestFile(request);
    ASSERT_TRUE(file);
    paths.insert(file.value().path());
    files.push_back(std::move(file).value());
  }
  EXPECT_EQ(paths.size(), 200U);
  EXPECT_EQ(entriesBelow(requestFolder()), 200U);
  files.clear();
  EXPECT_EQ(entriesBelow(requestFolder()), 0U);
}

TEST_F(RequestFolderTest, oldOnesGoUnlessSomebodyWaitsForThem) {
  const auto waiting = writeRequestFile(request);
  ASSERT_TRUE(waiting);
  const std::string left = requestFolder() + "/request-left.plist";
  const std::string recent = requestFolder() + "/request-recent.plist";
  test::writeFile(left, "");
  test::writeFile(recent, "");
  const auto old = fs::file_time_type::clock::now() - std::chrono::hours(1);
  for (const std::string& path : {left, waiting.value().path()}) fs::last_write_time(path, old);
  const auto next = writeRequestFile(request);
  ASSERT_TRUE(next);
  EXPECT_FALSE(fs::exists(left));
  EXPECT_TRUE(fs::exists(recent));
  EXPECT_TRUE(fs::exists(waiting.value().path()));
}

TEST_F(RequestFolderTest, withoutARuntimeFolderTheCacheHoldsRequests) {
  test::setVariable("XDG_CACHE_HOME", scratch_ / "cache");
  for (const std::optional<std::string>& unset :
       {std::optional<std::string>(), {""}, {"relative"}}) {
    test::setVariable("XDG_RUNTIME_DIR", unset);
    const auto file = writeRequestFile(request);
    ASSERT_TRUE(file) << file.error().describe();
    EXPECT_THAT(file.value().path(),
                ::testing::StartsWith(scratch_ / "cache/app.tavrin.Tavrin/requests/"));
    EXPECT_EQ(modeOf(scratch_ / "cache"), 0700U);
  }
}

TEST_F(RequestFolderTest, aLinkInTheWayIsRefused) {
  ScratchFolder elsewhere;
  fs::create_directory_symlink(elsewhere.path(), scratch_ / "runtime");
  useRuntimeFolder(scratch_ / "runtime");
  expectRefused(std::errc::permission_denied);
  useRuntimeFolder(scratch_.path());
  fs::create_directory_symlink(elsewhere.path(), programFolder());
  expectRefused(std::errc::permission_denied);
  fs::remove(programFolder());
  fs::create_directory(programFolder());
  fs::create_directory_symlink(elsewhere.path(), requestFolder());
  expectRefused(std::errc::permission_denied);
  EXPECT_TRUE(fs::is_empty(elsewhere.path()));
}

TEST_F(RequestFolderTest, aFolderOfAnotherUserOrOpenToOthersIsRefused) {
  if (::geteuid() != 0) GTEST_SKIP() << "needs the rights to give folders away";
  constexpr uid_t nobody = 65534;
  fs::create_directories(requestFolder());
  for (const std::string& folder : {requestFolder(), programFolder(), scratch_.path()}) {
    ASSERT_EQ(::chown(folder.c_str(), nobody, nobody), 0);
    expectRefused(std::errc::permission_denied);
  }
  EXPECT_EQ(asNobody([] { return writeRequestFile(request) ? 0 : 1; }), 0);
  ASSERT_EQ(::chown(scratch_.path().c_str(), 0, 0), 0);
  ::chmod(scratch_.path().c_str(), 0777);
  EXPECT_EQ(asNobody([] { return writeRequestFile(request) ? 0 : 1; }), 1);
  fs::remove_all(programFolder());
  expectRefused(std::errc::permission_denied);
}

TEST_F(RequestFolderTest, whatCannotBeWrittenLeavesNothing) {
  useRuntimeFolder(scratch_ / "missing");
  expectRefused(std::errc::no_such_file_or_directory);
  MountedFolder full("size=64k,mode=700");
  if (!full.isMounted()) GTEST_SKIP() << "needs the rights to mount";
  useRuntimeFolder(full.path());
  const PropertyList large =
      PropertyList::Dictionary{{"Action", std::string(std::size_t{1} << 20U, 'a')}};
  const auto file = writeRequestFile(large);
  ASSERT_FALSE(file);
  EXPECT_EQ(file.error().code, std::errc::no_space_on_device);
  EXPECT_TRUE(fs::is_empty(full / "app.tavrin.Tavrin/requests"));
  const PropertyList tooLarge =
      PropertyList::Dictionary{{"Action", std::string(std::size_t{65} << 20U, 'a')}};
  const auto refused = writeRequestFile(tooLarge);
  ASSERT_FALSE(refused);
  EXPECT_EQ(refused.error().code, std::errc::file_too_large);
}

}  // namespace

}  // namespace tavrin
