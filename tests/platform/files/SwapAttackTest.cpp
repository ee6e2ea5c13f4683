#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <thread>

#include "platform/linux/FileCreation.h"
#include "platform/linux/TreeCopy.h"
#include "platform/linux/TreeMove.h"
#include "platform/linux/TreeRemoval.h"
#include "tests/platform/files/EngineFixture.h"

namespace tavrin::testing {
namespace {

constexpr const char* outsideText = "outside";

int operationsPerCase() {
  const char* count = std::getenv("TAVRIN_ATTACK_OPERATIONS");  // NOLINT(concurrency-mt-unsafe)
  return (count != nullptr ? std::atoi(count) : 20'000) / 2;
}

/// Does something over and over on a thread of its own, until it goes.
class Attacker {
 public:
  template <typename Strike>
  explicit Attacker(Strike strike)
      : thread_([this, strike] {
          while (!hasEnded_) swaps_ += strike() ? 1 : 0;
        }) {}
  Attacker(const Attacker&) = delete;
  Attacker& operator=(const Attacker&) = delete;
  ~Attacker() { stop(); }

  /// Ends the attack; how often it succeeded.
  long stop() {
    hasEnded_ = true;
    if (thread_.joinable()) thread_.join();
    return swaps_;
  }

 private:
  std::atomic<bool> hasEnded_ = false;
  std::atomic<long> swaps_ = 0;
  std::thread thread_;
};

/// A folder "outside" that no operation is given, and a link to it that an attacker swaps with
/// "sub" in the trees that the engine works on.
class SwapAttack : public EngineFixture {
 protected:
  void SetUp() override {
    build().folder("outside").folder("outside/deep").file("outside/file", outsideText);
    build().file("outside/deep/file", outsideText).folder("work").folder("work/tree");
    build().folder("work/tree/sub").folder("work/tree/sub/deep").file("work/tree/file", "inside");
    build().file("work/tree/sub/file", "inside").file("work/tree/sub/deep/file", "inside");
    build().symbolicLink("work/swap", at("outside")).folder("work/copies");
    outside_ = snapshotOf(at("outside"));
  }

  void expectOutsideUntouched() const { EXPECT_EQ(snapshotOf(at("outside")), outside_); }

  static bool exchange(const std::string& one, const std::string& other) {
    return ::renameat2(AT_FDCWD, one.c_str(), AT_FDCWD, other.c_str(), RENAME_EXCHANGE) == 0;
  }

  /// True when a regular file of the tree, links not followed, holds what stands outside.
  static bool holdsOutsideText(const std::string& tree) {
    namespace fs = std::filesystem;
    std::error_code ignored;
    for (const char* name : {"/sub/file", "/sub/deep/file", "/file"}) {
      if (fs::is_symlink(tree + "/sub", ignored)) continue;
      std::string text;
      std::getline(std::ifstream(tree + name), text);
      if (text == outsideText) return true;
    }
    return false;
  }

 private:
  TreeSnapshot outside_;
};

TEST_F(SwapAttack, OnTheSourceBringsNothingFromOutside) {
  Attacker attacker([this] { return exchange(at("work/tree/sub"), at("work/swap")); });
  int copies = 0;
  int links = 0;
  int foreign = 0;
  for (int operation = 0; operation < operationsPerCase(); operation += 2) {
    const std::string copy = "work/copies/" + std::to_string(operation);
    if (!copyItem(item("work/tree"), item(copy), partials)) continue;
    ++copies;
    if (std::filesystem::is_symlink(at(copy + "/sub"))) ++links;
    if (holdsOutsideText(at(copy))) ++foreign;
    const Status removed = removeItem(item(copy));
    EXPECT_TRUE(removed) << removed.error().describe();
  }
  EXPECT_GT(attacker.stop(), copies / 10);
  EXPECT_EQ(foreign, 0);
  // The attack was one: the copies met both the folder and the link.
  EXPECT_GT(links, 0);
  EXPECT_GT(copies, links);
  expectOutsideUntouched();
  EXPECT_TRUE(namesIn(at("work/copies")).empty());
  EXPECT_TRUE(hasNoRecords());
}

TEST_F(SwapAttack, OnTheDestinationAndOnRemovalChangesNothingOutside) {
  const std::string swap = at("work/swap");
  Attacker attacker([this, swap] {
    bool hasSwapped = false;
    for (const auto& [name, ignored] : namesIn(at("work/copies"))) {
      const std::string inner = at("work/copies/" + name + "/sub");
      if (!exchange(inner, swap)) continue;
      hasSwapped = true;
      if (exchange(inner, swap)) continue;
      // The other side is gone meanwhile and the folder stayed here.
      runProgram("rm", "-rf", swap);
      [[maybe_unused]] const int linked = ::symlink(at("outside").c_str(), swap.c_str());
    }
    return hasSwapped;
  });
  int failures = 0;
  for (int operation = 0; operation < operationsPerCase(); operation += 3) {
    const std::string copy = "work/copies/" + std::to_string(operation);
    if (!copyItem(item("work/tree"), item(copy), partials)) ++failures;
    if (!createFile(item("work/copies/new"), {1}, &partials)) ++failures;
    if (!removeItem(item("work/copies/new"))) ++failures;
    if (std::filesystem::exists(std::filesystem::symlink_status(at(copy)))) {
      if (!removeItem(item(copy))) ++failures;
    }
  }
  const long swaps = attacker.stop();
  EXPECT_GT(swaps, 0);
  RecordProperty("swaps", std::to_string(swaps));
  RecordProperty("failures", failures);
  expectOutsideUntouched();
  EXPECT_FALSE(holdsOutsideText(at("work/tree")));
}

TEST_F(SwapAttack, OnAMoveAcrossFileSystemsRemovesNothingOutside) {
  const ScratchFolder other(otherFileSystem);
  const std::string tree = at("work/tree");
  const std::string swap = at("work/swap");
  int moves = 0;
  for (int round = 0; round < operationsPerCase() / 200; ++round) {
    Attacker attacker([&tree, &swap] { return exchange(tree + "/sub", swap); });
    if (moveItem(OpenItem(tree), OpenItem(other / "tree"), partials)) ++moves;
    attacker.stop();
    EXPECT_FALSE(holdsOutsideText(other / "tree"));
    ASSERT_EQ(runProgram("rm", "-rf", tree, swap), 0);
    ASSERT_EQ(runProgram("rm", "-rf", other / "tree"), 0);
    build().folder("work/tree").folder("work/tree/sub").folder("work/tree/sub/deep");
    build().file("work/tree/sub/file", "inside").file("work/tree/sub/deep/file", "inside");
    build().symbolicLink("work/swap", at("outside"));
  }
  EXPECT_GT(moves, 0);
  expectOutsideUntouched();
}

}  // namespace
}  // namespace tavrin::testing
