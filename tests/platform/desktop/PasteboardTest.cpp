// Pasteboards as another program finds them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <atomic>
#include <filesystem>
#include <thread>

#include "platform/linux/LinuxPasteboard.h"
#include "tests/platform/desktop/DesktopSession.h"

namespace tavrin {

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

class PasteboardTest : public testing::Test {
 protected:
  PasteboardTest() { test::setVariable("XDG_RUNTIME_DIR", runtime_.path()); }
  void TearDown() override { test::setVariable("XDG_RUNTIME_DIR", before_); }

  static std::vector<FileURL> urls(const std::vector<std::string>& paths) {
    std::vector<FileURL> list;
    list.reserve(paths.size());
    for (const std::string& path : paths) list.push_back(FileURL::fileURLWithPath(path));
    return list;
  }

  std::string dragged() const { return test::readFile(folder_ + "/drag"); }

  std::vector<std::string> names() const {
    std::vector<std::string> found;
    if (!fs::exists(folder_)) return found;
    for (const auto& entry : fs::directory_iterator(folder_)) {
      found.push_back(entry.path().filename());
    }
    return found;
  }

  static mode_t modeOf(const std::string& path) {
    struct stat status = {};
    return ::stat(path.c_str(), &status) == 0 ? status.st_mode & 0777U : 0;
  }

  const std::string before_ = g_getenv("XDG_RUNTIME_DIR");
  test::TemporaryFolder runtime_;
  const std::string folder_ = runtime_ / "app.tavrin.Tavrin/pasteboards";
};

TEST_F(PasteboardTest, holdsAListOfUrlsThatAnotherProgramReads) {
  LinuxPasteboardProvider provider;
  const auto drag = provider.pasteboardWithName(pasteboard_name::drag);
  ASSERT_TRUE(drag->writeObjects(urls({"/a b/\xff%\n.png", "/c.JPG"})));
  EXPECT_EQ(dragged(), "file:///a%20b/%FF%25%0A.png\r\nfile:///c.JPG\r\n");
  ASSERT_TRUE(provider.pasteboardWithName("drag")->writeObjects(urls({"/d.png"})));
  EXPECT_EQ(dragged(), "file:///d.png\r\n");
  ASSERT_TRUE(drag->writeObjects({}));
  EXPECT_EQ(dragged(), "");
  EXPECT_THAT(names(), ElementsAre("drag"));
  drag->clearContents();
  drag->clearContents();
  EXPECT_THAT(names(), IsEmpty());
}

TEST_F(PasteboardTest, isForTheUserAlone) {
  LinuxPasteboardProvider provider;
  const mode_t mask = ::umask(0);
  const Status written = provider.pasteboardWithName("drag")->writeObjects(urls({"/a.png"}));
  ::umask(mask);
  ASSERT_TRUE(written);
  EXPECT_EQ(modeOf(folder_), 0700U);
  fs::permissions(folder_, fs::perms::all);
  ASSERT_TRUE(provider.pasteboardWithName("drag")->writeObjects(urls({"/b.png"})));
  EXPECT_EQ(modeOf(folder_), 0700U);
}

TEST_F(PasteboardTest, isReplacedAsAWhole) {
  LinuxPasteboardProvider provider;
  const auto drag = provider.pasteboardWithName("drag");
  const std::vector<FileURL> one(500, FileURL::fileURLWithPath("/" + std::string(200, 'a')));
  const std::vector<FileURL> two(500, FileURL::fileURLWithPath("/" + std::string(200, 'b')));
  ASSERT_TRUE(drag->writeObjects(one));
  const std::string first = dragged();
  ASSERT_TRUE(drag->writeObjects(two));
  const std::string second = dragged();
  std::atomic<bool> ended = false;
  int readings = 0;
  int torn = 0;
  std::thread reader([&] {
    while (!ended) {
      const std::string now = dragged();
      ++readings;
      if (now != first && now != second) ++torn;
    }
  });
  for (int round = 0; round < 100; ++round) {
    EXPECT_TRUE(drag->writeObjects(round % 2 == 0 ? one : two));
  }
  ended = true;
  reader.join();
  EXPECT_GT(readings, 1);
  EXPECT_EQ(torn, 0);
  EXPECT_THAT(names(), ElementsAre("drag"));
}

TEST_F(PasteboardTest, holdsATextOfADeclaredType) {
  LinuxPasteboardProvider provider;
  const auto board = provider.pasteboardWithUniqueName();
  EXPECT_EQ(board->stringForType(PasteboardType::String), std::nullopt);
  EXPECT_FALSE(board->setString("/a", PasteboardType::String));
  board->declareTypes({PasteboardType::String});
  const std::string odd = "/a b/\xff%\r\n/";
  ASSERT_TRUE(board->setString(odd, PasteboardType::String));
  EXPECT_EQ(board->stringForType(PasteboardType::String), odd);
  ASSERT_EQ(names().size(), 1U);
  EXPECT_EQ(test::readFile(folder_ + "/" + names()[0]), odd);
  board->declareTypes({PasteboardType::String});
  EXPECT_EQ(board->stringForType(PasteboardType::String), std::nullopt);
}

TEST_F(PasteboardTest, withAUniqueNameEndsWithItsObject) {
  LinuxPasteboardProvider provider;
  auto one = provider.pasteboardWithUniqueName();
  const auto two = provider.pasteboardWithUniqueName();
  for (Pasteboard* board : {one.get(), two.get()}) {
    board->declareTypes({PasteboardType::String});
    ASSERT_TRUE(board->setString("text", PasteboardType::String));
  }
  EXPECT_EQ(names().size(), 2U);
  one.reset();
  EXPECT_EQ(names().size(), 1U);
  EXPECT_EQ(two->stringForType(PasteboardType::String), "text");
}

TEST_F(PasteboardTest, failsWhereItsFolderCannotBe) {
  const auto failsToWrite = [&](std::errc cause) {
    LinuxPasteboardProvider provider;
    const Status written = provider.pasteboardWithName("drag")->writeObjects(urls({"/a.png"}));
    ASSERT_FALSE(written);
    EXPECT_EQ(written.error().code, cause) << written.error().describe();
  };
  test::writeFile(runtime_ / "app.tavrin.Tavrin", "no folder");
  failsToWrite(std::errc::not_a_directory);
  fs::remove(runtime_ / "app.tavrin.Tavrin");
  fs::create_directories(folder_ + "/drag/full");
  failsToWrite(std::errc::is_a_directory);
  EXPECT_THAT(names(), ElementsAre("drag"));
  test::setVariable("XDG_RUNTIME_DIR", std::nullopt);
  failsToWrite(std::errc::no_such_file_or_directory);
}

}  // namespace

}  // namespace tavrin
