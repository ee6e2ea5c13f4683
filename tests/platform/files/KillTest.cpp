#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <new>
#include <random>

#include "platform/linux/TreeCopy.h"
#include "platform/linux/TreeMove.h"
#include "platform/linux/TreeRemoval.h"
#include "tests/platform/files/EngineFixture.h"
#include "tests/support/ChildProcess.h"

namespace tavrin::testing {
namespace {

int rounds() {
  const char* count = std::getenv("TAVRIN_KILL_ROUNDS");  // NOLINT(concurrency-mt-unsafe)
  return count != nullptr ? std::atoi(count) : 40;
}

/// What the child was doing when it was killed, in memory that outlives it.
enum class Doing : int { MovingThere, CopyingThere, MovingBack, CopyingBack };

class SharedStep {
 public:
  SharedStep()
      : memory_(::mmap(nullptr, sizeof(std::atomic<Doing>), PROT_READ | PROT_WRITE,
                       MAP_SHARED | MAP_ANONYMOUS, -1, 0)),
        step_(new (memory_) std::atomic<Doing>(Doing::MovingThere)) {}
  SharedStep(const SharedStep&) = delete;
  SharedStep& operator=(const SharedStep&) = delete;
  ~SharedStep() { ::munmap(memory_, sizeof(std::atomic<Doing>)); }

  std::atomic<Doing>& operator*() const { return *step_; }

 private:
  void* memory_;
  std::atomic<Doing>* step_;
};

class LineLog final : public Log {
 public:
  void write(std::string_view message) override { lines.append(message).append("\n"); }
  std::string lines;
};

class Kill : public EngineFixture {
 protected:
  void buildTree() {
    build().folder("tree");
    for (int folder = 0; folder < 6; ++folder) {
      const std::string name = "tree/" + std::to_string(folder);
      build().folder(name);
      for (int file = 0; file < 12; ++file) {
        build().file(name + "/" + std::to_string(file),
                     std::string(static_cast<std::size_t>(file) * 9000 + 1, 'k'));
      }
      build().hardLink(name + "/twin", name + "/1").symbolicLink(name + "/link", "1");
    }
    build().file("file", std::string(400'000, 'f'));
  }

  /// Moves and copies between the two file systems for ever.
  void workForEver(std::atomic<Doing>& step) {
    for (int copy = 0;; ++copy) {
      const std::string suffix = std::to_string(copy);
      step = Doing::MovingThere;
      moveBoth(scratch.path(), other.path());
      step = Doing::CopyingThere;
      copyBoth(other.path(), scratch.path(), suffix);
      step = Doing::MovingBack;
      moveBoth(other.path(), scratch.path());
      step = Doing::CopyingBack;
      copyBoth(scratch.path(), other.path(), suffix);
    }
  }

  void moveBoth(const std::string& from, const std::string& to) {
    for (const char* name : {"/tree", "/file"}) {
      if (!moveItem(OpenItem(from + name), OpenItem(to + name), partials)) ::_exit(1);
    }
  }

  void copyBoth(const std::string& from, const std::string& to, const std::string& suffix) {
    for (const char* name : {"/tree", "/file"}) {
      if (!copyItem(OpenItem(from + name), OpenItem(to + name + suffix), partials)) ::_exit(1);
    }
  }

  /// Every item is whole in one place at least, and where an operation names its result it is
  /// whole.
  void expectNothingTorn(const std::string& name, Doing doing, const TreeSnapshot& whole) {
    const TreeSnapshot here = snapshotOf(at(name));
    const TreeSnapshot there = snapshotOf(other / name);
    EXPECT_TRUE(here == whole || there == whole) << name << " is nowhere whole";
    const TreeSnapshot& target = doing == Doing::MovingThere ? there : here;
    const bool isMoving = doing == Doing::MovingThere || doing == Doing::MovingBack;
    EXPECT_TRUE(!isMoving || target.empty() || target == whole) << name << " is named but torn";
    EXPECT_TRUE(isMoving || here.empty() || there.empty());
  }

  void expectCopiesWhole(const std::string& folder, const TreeSnapshot& tree,
                         const TreeSnapshot& file) {
    for (const auto& [name, ignored] : namesIn(folder)) {
      EXPECT_FALSE(name.starts_with(".tavrin-")) << name << " is left";
      if (name == "tree" || name == "file") continue;
      EXPECT_EQ(snapshotOf(folder + "/" + name), name.starts_with("tree") ? tree : file) << name;
    }
  }

  static void empty(const std::string& folder) {
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
      std::filesystem::remove_all(entry.path());
    }
  }

  ScratchFolder other{otherFileSystem};
};

TEST_F(Kill, AtAnyMomentLeavesEveryItemWholeAndNothingElse) {
  std::mt19937 random(std::random_device{}());
  int leftovers = 0;
  for (int round = 0; round < rounds() && !HasFailure(); ++round) {
    buildTree();
    const TreeSnapshot tree = snapshotOf(at("tree"));
    const TreeSnapshot file = snapshotOf(at("file"));
    const SharedStep step;
    killAfter(static_cast<unsigned>(random() % 60'000), [this, &step] { workForEver(*step); });

    leftovers += namesIn(records.path()).empty() ? 0 : 1;
    LineLog log;
    partials.clearLeftovers(log, clearing);
    EXPECT_EQ(log.lines, "");
    EXPECT_TRUE(hasNoRecords());
    expectNothingTorn("tree", *step, tree);
    expectNothingTorn("file", *step, file);
    expectCopiesWhole(scratch.path(), tree, file);
    expectCopiesWhole(other.path(), tree, file);
    empty(scratch.path());
    empty(other.path());
  }
  RecordProperty("roundsWithLeftovers", leftovers);
  EXPECT_GT(leftovers, rounds() / 20) << "the kills met no copy in the making";
}

}  // namespace
}  // namespace tavrin::testing
