#include <atomic>
#include <filesystem>
#include <thread>

#include "tests/platform/files/EngineFixture.h"

namespace tavrin::testing {
namespace {

constexpr int folders = 40;
constexpr int filesInFolder = 40;

class CancelledOperation : public EngineFixture {
 protected:
  void buildTree() const {
    build().folder("source");
    for (int folder = 0; folder < folders; ++folder) {
      const std::string name = "source/" + std::to_string(folder);
      build().folder(name);
      for (int file = 0; file < filesInFolder; ++file) {
        build().file(name + "/" + std::to_string(file), "contents");
      }
    }
  }

  /// Runs `work` while another thread cancels it in its middle. False when it was too late.
  template <typename Work>
  static bool cancelInTheMiddle(FileOperation& operation, const Work& work) {
    std::atomic<bool> hasEnded = false;
    std::thread canceller([&operation, &hasEnded] {
      while (operation.items() < folders && !hasEnded) std::this_thread::yield();
      operation.cancel();
    });
    const Status status = work();
    hasEnded = true;
    canceller.join();
    if (!status) {
      EXPECT_EQ(causeOf(status), std::errc::operation_canceled);
    }
    return !status;
  }

  ScratchFolder other{otherFileSystem};
};

TEST_F(CancelledOperation, LeavesNoPartOfACopy) {
  buildTree();
  const TreeSnapshot before = snapshotOf(at("source"));
  int cancelled = 0;
  for (int round = 0; round < 6; ++round) {
    FileOperation operation;
    const bool wasInTime = cancelInTheMiddle(operation, [&] {
      return tavrin::copyItem(item("source"), item("copy"), partials, operation);
    });
    EXPECT_EQ(std::filesystem::exists(at("copy")), !wasInTime);
    if (wasInTime) ++cancelled;
    std::filesystem::remove_all(at("copy"));
    EXPECT_EQ(namesIn(scratch.path()).size(), 1U);
    EXPECT_TRUE(hasNoRecords());
  }
  EXPECT_GT(cancelled, 0);
  EXPECT_EQ(snapshotOf(at("source")), before);
}

TEST_F(CancelledOperation, LeavesTheSourceOfAMove) {
  buildTree();
  const TreeSnapshot before = snapshotOf(at("source"));
  FileOperation operation;
  const bool wasInTime = cancelInTheMiddle(operation, [&] {
    return tavrin::moveItem(item("source"), OpenItem(other / "moved"), partials, operation);
  });
  EXPECT_EQ(snapshotOf(wasInTime ? at("source") : other / "moved"), before);
  EXPECT_EQ(namesIn(other.path()).size(), wasInTime ? 0U : 1U);
  EXPECT_TRUE(hasNoRecords());
}

TEST_F(CancelledOperation, EndsARemovalAndTheCopyOfOneLargeFile) {
  buildTree();
  FileOperation removal;
  if (cancelInTheMiddle(removal, [&] { return tavrin::removeItem(item("source"), removal); })) {
    EXPECT_TRUE(std::filesystem::exists(at("source")));
  }
  build().file("large", std::string(80'000'000, 'l'));
  FileOperation copying;
  copying.cancel();
  const Status copied = tavrin::copyItem(item("large"), item("copy"), partials, copying);
  EXPECT_EQ(causeOf(copied), std::errc::operation_canceled);
  EXPECT_FALSE(std::filesystem::exists(at("copy")));
  EXPECT_LT(copying.bytes(), 80'000'000U);
}

TEST_F(CancelledOperation, TellsHowFarItIs) {
  buildTree();
  constexpr std::uint64_t items = 1 + folders + folders * filesInFolder;
  FileOperation copying;
  ASSERT_TRUE(tavrin::copyItem(item("source"), item("copy"), partials, copying));
  EXPECT_EQ(copying.items(), items);
  EXPECT_EQ(copying.bytes(), std::uint64_t{folders} * filesInFolder * 8);
  EXPECT_NEAR(copying.share(), 1, 1e-6);
  FileOperation removal;
  ASSERT_TRUE(tavrin::removeItem(item("copy"), removal));
  EXPECT_EQ(removal.items(), items);
  EXPECT_NEAR(removal.share(), 1, 1e-6);
}

}  // namespace
}  // namespace tavrin::testing
