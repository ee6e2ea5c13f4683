#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <thread>

#include "platform/linux/LinuxFileManager.h"
#include "tests/platform/files/PickedItem.h"
#include "tests/support/FakeLog.h"
#include "tests/support/ScratchFolder.h"
#include "tests/support/TreeBuilder.h"
#include "tests/support/TreeSnapshot.h"

namespace tavrin {
namespace {

using Intermediates = FileManager::IntermediateDirectories;
namespace fs = std::filesystem;

constexpr const char* secretName = "only outside";
constexpr const char* secret = "secret";

int operationCount() {
  const char* count = std::getenv("TAVRIN_ATTACK_OPERATIONS");  // NOLINT(concurrency-mt-unsafe)
  return count == nullptr ? 10'000 : std::max(std::atoi(count), 1);
}

/// Swaps two items of one folder for each other as fast as it can, as long as it lives.
class Swapper {
 public:
  Swapper(std::string first, std::string second)
      : first_(std::move(first)), second_(std::move(second)), thread_([this] { run(); }) {}
  Swapper(const Swapper&) = delete;
  Swapper& operator=(const Swapper&) = delete;
  ~Swapper() {
    isOver_ = true;
    thread_.join();
  }

 private:
  void run() {
    while (!isOver_) {
      ::renameat2(AT_FDCWD, first_.c_str(), AT_FDCWD, second_.c_str(), RENAME_EXCHANGE);
    }
  }

  std::string first_;
  std::string second_;
  std::atomic<bool> isOver_ = false;
  std::thread thread_;
};

/// A granted folder in which "tree/sub" is now the user's folder and now a link to a place outside
/// that has the same names in it.
class ScopeAttack : public ::testing::Test {
 public:
  ScopeAttack() {
    tree_.folder("grant").folder("grant/tree").folder("grant/tree/sub").folder("outside");
    for (const std::string folder : {"grant/tree/sub", "outside"}) {
      const std::string text = folder == "outside" ? secret : "mine";
      tree_.file(folder + "/file", text).folder(folder + "/deep").file(folder + "/deep/file", text);
    }
    tree_.file(std::string("outside/") + secretName, secret);
    tree_.file(std::string("outside/deep/") + secretName, secret);
    tree_.symbolicLink("grant/tree/exit", "../../outside");
    EXPECT_TRUE(grantByPicking(scopes_, scratch_ / "grant"));
  }

  std::string tree(const std::string& path) const { return scratch_ / ("grant/tree/" + path); }

  template <typename Value>
  bool count(const Result<Value>& result) {
    ++(result ? done_ : refused_);
    return static_cast<bool>(result);
  }

  // Each operation leaves things as it found them, or one item more.

  void list() {
    const auto names = files_.contentsOfDirectoryAtPath(tree("sub"));
    if (!count(names)) return;
    EXPECT_THAT(names.value(), ::testing::Not(::testing::Contains(secretName)));
  }

  void read() {
    const auto bytes = files_.contentsAtPath(tree("sub/deep/file"));
    if (!count(bytes)) return;
    EXPECT_EQ(bytes.value(), (PropertyList::Data{'m', 'i', 'n', 'e'}));
  }

  void createFile() {
    count(files_.createFileAtPath(tree("sub/deep/new"), {}, FileManager::Replace::No));
    count(files_.removeItemAtPath(tree("sub/deep/new")));
  }

  void createFolders() {
    count(files_.createDirectoryAtPath(tree("sub/folder/a"), Intermediates::Create));
    count(files_.removeItemAtPath(tree("sub/folder")));
  }

  void copyOut() { checkCopy(tree("sub/deep")); }

  void copyWhole() { checkCopy(scratch_ / "grant/tree"); }

  void copyIn() {
    count(files_.copyItemAtPath(tree("sub/deep"), tree("sub/copy")));
    count(files_.removeItemAtPath(tree("sub/copy")));
  }

  void move() {
    count(files_.moveItemAtPath(tree("sub/file"), tree("sub/moved")));
    count(files_.moveItemAtPath(tree("sub/moved"), tree("sub/file")));
  }

  void checkCopy(const std::string& source) {
    const std::string copy = scratch_ / "grant/copy";
    if (!count(files_.copyItemAtPath(source, copy))) return;
    expectNoSecret(copy);
    EXPECT_TRUE(files_.removeItemAtPath(copy));
  }

  static void expectNoSecret(const std::string& folder) {
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
      EXPECT_NE(entry.path().filename(), secretName);
    }
  }

  /// Whether a program that goes by paths is led outside.
  bool isLedOutside() const {
    std::ifstream stream(tree("sub/file"));
    return std::string(std::istreambuf_iterator<char>(stream), {}) == secret;
  }

  testing::ScratchFolder scratch_;
  testing::TreeBuilder tree_{scratch_.path()};
  FakeLog log_;
  LinuxSecurityScope scopes_{{scratch_ / "keys", "", ""}, log_};
  LinuxFileManager files_{scopes_, log_, scratch_ / "data"};
  int done_ = 0;
  int refused_ = 0;
};

TEST_F(ScopeAttack, LeadsNoOperationOutOfTheGrant) {
  using Operation = void (ScopeAttack::*)();
  constexpr std::array<Operation, 8> operations = {
      &ScopeAttack::list,    &ScopeAttack::read,      &ScopeAttack::createFile,
      &ScopeAttack::copyOut, &ScopeAttack::copyWhole, &ScopeAttack::createFolders,
      &ScopeAttack::move,    &ScopeAttack::copyIn};
  const auto outside = testing::snapshotOf(scratch_ / "outside");
  int ledOutside = 0;
  {
    const Swapper swapper(tree("sub"), tree("exit"));
    for (int number = 0; number < operationCount(); ++number) {
      const Operation operation = operations[static_cast<std::size_t>(number) % operations.size()];
      (this->*operation)();
      if (number % 16 == 0 && isLedOutside()) ++ledOutside;
    }
  }
  EXPECT_EQ(testing::snapshotOf(scratch_ / "outside"), outside);
  std::printf("done %d, refused %d; by path led outside %d times\n", done_, refused_, ledOutside);
  EXPECT_GT(done_, 0);
  EXPECT_GT(refused_, 0);
  EXPECT_GT(ledOutside, 0) << "the attack was no attack";
}

}  // namespace
}  // namespace tavrin
