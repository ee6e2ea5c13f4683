#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QTest>
#include <QTimer>
#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "platform/linux/LongWork.h"
#include "platform/linux/SystemErrors.h"
#include "tests/support/FakeLog.h"

namespace tavrin {
namespace {

using std::chrono::milliseconds;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

using Clock = std::chrono::steady_clock;

class FakeDisplay final : public WorkDisplay {
 public:
  void show(const ShownWork& work, const std::function<void()>& cancel) override {
    shown.push_back(work);
    cancelNow = cancel;
    if (onShow) onShow();
  }
  void end(WorkEnd end) override { ends.push_back(end); }

  std::vector<ShownWork> shown;
  std::vector<WorkEnd> ends;
  std::function<void()> cancelNow;
  std::function<void()> onShow;
};

class LongWorkTest : public testing::Test {
 protected:
  static constexpr milliseconds untilShown{150};

  /// Runs a command as a handler, in a turn of the event loop, and the next turns after it.
  static void handle(const std::function<void()>& command) {
    QTimer::singleShot(0, [&] {
      command();
      QTimer::singleShot(0, [] { QCoreApplication::exit(0); });
    });
    QCoreApplication::exec();
    QTest::qWait(0);
  }

  static bool waitOutside(const std::function<bool()>& condition) {
    const auto end = Clock::now() + std::chrono::seconds(20);
    while (!condition() && Clock::now() < end) std::this_thread::sleep_for(milliseconds(1));
    return condition();
  }

  Status copy(const std::string& path, const std::function<Status(FileOperation&)>& work) {
    const auto operation = watch_.operation(OperationKind::Copy, path);
    if (operation->isCancelled()) return cancelled();
    return operation->runLongPart([&] { return work(*operation); });
  }

  /// An operation without a long part.
  Status rename(const std::string& path) {
    const auto operation = watch_.operation(OperationKind::Move, path);
    operation->addItems(1);
    return operation->isCancelled() ? cancelled() : success();
  }

  static Status cancelled() { return systemError("copy", "/item", std::errc::operation_canceled); }

  static Status untilCancelled(FileOperation& operation) {
    return waitOutside([&] { return operation.isCancelled(); }) ? cancelled() : success();
  }

  /// The program is told to end, which it does by cancelling here.
  void endProgram() {
    isEnding_ = true;
    QTimer::singleShot(0, [] { QCoreApplication::exit(0); });
  }

  FakeLog log_;
  FakeDisplay display_;
  bool isEnding_ = false;
  std::function<void()> endNow_ = [] {};
  LongWork watch_{{[this] { return isEnding_; }, [this] { endNow_(); }},
                  {&display_},
                  log_,
                  {untilShown, milliseconds(5), milliseconds(10)}};
};

TEST_F(LongWorkTest, showsNothingOfWhatIsDoneSoonAndServesNoEventMeanwhile) {
  bool servedEvent = false;
  std::optional<std::thread::id> worker;
  Status done = success();
  handle([&] {
    QTimer::singleShot(0, [&] { servedEvent = true; });
    const auto series = watch_.series();
    done = copy("/item", [&](FileOperation&) {
      worker = std::this_thread::get_id();
      return systemError("copy", "/item", std::errc::no_space_on_device);
    });
    EXPECT_FALSE(servedEvent);
  });
  ASSERT_FALSE(done);
  EXPECT_EQ(done.error().code, std::errc::no_space_on_device);
  EXPECT_NE(worker, std::this_thread::get_id());
  EXPECT_THAT(display_.shown, IsEmpty());
  EXPECT_THAT(display_.ends, IsEmpty());
}

TEST_F(LongWorkTest, showsHowFarALongCopyIsAndServesEventsUntilItHasEnded) {
  const auto begun = Clock::now();
  std::optional<Clock::duration> shownAfter;
  display_.onShow = [&] {
    if (!shownAfter) shownAfter = Clock::now() - begun;
  };
  std::atomic<bool> servedEvent = false;
  Status done = cancelled();
  handle([&] {
    const auto series = watch_.series();
    EXPECT_TRUE(rename("/first"));
    QTimer::singleShot(0, [&] { servedEvent = true; });
    done = copy("/a/Photos", [&](FileOperation& operation) {
      operation.addItems(2);
      operation.addBytes(3000);
      operation.addShare(0.25);
      EXPECT_TRUE(waitOutside([&] { return servedEvent.load(); }));
      operation.addShare(0.5);
      std::this_thread::sleep_for(milliseconds(60));
      return success();
    });
    EXPECT_THAT(display_.ends, IsEmpty());
  });
  EXPECT_TRUE(done);
  ASSERT_TRUE(shownAfter);
  EXPECT_GE(*shownAfter, untilShown);
  const ShownWork& last = display_.shown.back();
  EXPECT_EQ(last.path, "/a/Photos");
  EXPECT_EQ(last.items, 3U);
  EXPECT_EQ(last.bytes, 3000U);
  EXPECT_EQ(last.share, 0.75);
  EXPECT_THAT(display_.ends, ElementsAre(WorkEnd::Done));
}

TEST_F(LongWorkTest, cancelEndsTheWholeCommandAndNoneAfterIt) {
  display_.onShow = [this] {
    if (!display_.shown.back().isCancelled) QTimer::singleShot(0, [this] { display_.cancelNow(); });
  };
  std::vector<bool> results;
  handle([&] {
    auto series = watch_.series();
    results.push_back(bool(copy("/long", untilCancelled)));
    results.push_back(bool(rename("/second")));
    // The command goes on in another folder.
    series.reset();
    series = watch_.series();
    results.push_back(bool(rename("/third")));
  });
  EXPECT_THAT(results, ElementsAre(false, false, false));
  EXPECT_TRUE(display_.shown.back().isCancelled);
  EXPECT_THAT(display_.ends, ElementsAre(WorkEnd::Cancelled));
  handle([&] { results.push_back(bool(rename("/fourth"))); });
  EXPECT_TRUE(results.back());
}

TEST_F(LongWorkTest, takesTurnsOfTheEventLoopBetweenManySmallOperations) {
  const auto begun = Clock::now();
  std::optional<Clock::duration> servedAfter;
  std::uint64_t done = 0;
  std::uint64_t refused = 0;
  handle([&] {
    const auto series = watch_.series();
    QTimer::singleShot(0, [&] { servedAfter = Clock::now() - begun; });
    while (done < 100'000'000 && !servedAfter) done += rename("/item") ? 1U : 0U;
    QTimer::singleShot(0, [this] { display_.cancelNow(); });
    while (rename("/item")) continue;
    for (int turn = 0; turn < 10; ++turn) refused += rename("/item") ? 0U : 1U;
  });
  ASSERT_TRUE(servedAfter);
  EXPECT_GE(*servedAfter, untilShown);
  EXPECT_EQ(refused, 10U);
  ASSERT_THAT(display_.shown, SizeIs(testing::Ge(2U)));
  EXPECT_EQ(display_.shown.front().kind, OperationKind::Move);
  EXPECT_EQ(display_.shown.front().share, std::nullopt);
  EXPECT_GE(display_.shown.front().items, done - 1);
  EXPECT_THAT(display_.ends, ElementsAre(WorkEnd::Cancelled));
}

TEST_F(LongWorkTest, theTimeInWhichTheUserIsAskedBetweenTwoSeriesDoesNotCount) {
  handle([&] {
    {
      const auto series = watch_.series();
      EXPECT_TRUE(rename("/first"));
    }
    QTest::qWait(2 * untilShown.count());
    const auto series = watch_.series();
    EXPECT_TRUE(rename("/second"));
    EXPECT_TRUE(copy("/third", [](FileOperation&) { return success(); }));
  });
  EXPECT_THAT(display_.shown, IsEmpty());
}

TEST_F(LongWorkTest, theEndOfTheProgramWaitsForNoWork) {
  std::atomic<bool> mayEnd = false;
  int ends = 0;
  endNow_ = [&] {
    ++ends;
    mayEnd = true;
  };
  handle([&] {
    display_.onShow = [this] { endProgram(); };
    const Status done = copy("/long", [&](FileOperation&) {
      EXPECT_TRUE(waitOutside([&] { return mayEnd.load(); }));
      return success();
    });
    EXPECT_TRUE(done);
  });
  EXPECT_EQ(ends, 1);
  EXPECT_THAT(log_.lines(), ElementsAre(HasSubstr("/long")));
}

TEST_F(LongWorkTest, theEndOfTheProgramComesBetweenSmallOperations) {
  int ends = 0;
  endNow_ = [&] { ++ends; };
  handle([&] {
    QTimer::singleShot(0, [this] { isEnding_ = true; });
    const auto series = watch_.series();
    for (int turn = 0; turn < 100'000'000 && ends == 0; ++turn) EXPECT_TRUE(rename("/item"));
  });
  EXPECT_EQ(ends, 1);
}

TEST_F(LongWorkTest, anOperationThatAnEventBeginsIsDoneAtOnceAndNotShown) {
  std::atomic<bool> isDone = false;
  std::optional<std::thread::id> worker;
  handle([&] {
    QTimer::singleShot(0, [&] {
      EXPECT_TRUE(copy("/other", [&](FileOperation&) {
        worker = std::this_thread::get_id();
        return success();
      }));
      isDone = true;
    });
    EXPECT_TRUE(copy("/long", [&](FileOperation&) {
      EXPECT_TRUE(waitOutside([&] { return isDone.load(); }));
      std::this_thread::sleep_for(milliseconds(30));
      return success();
    }));
  });
  EXPECT_EQ(worker, std::this_thread::get_id());
  std::vector<std::string> paths;
  for (const ShownWork& shown : display_.shown) paths.push_back(shown.path);
  EXPECT_THAT(paths, Each("/long"));
}

TEST_F(LongWorkTest, whatTheWorkThrowsReachesTheCommand) {
  handle([&] {
    EXPECT_THROW((void)copy("/item", [](FileOperation&) -> Status { throw std::bad_alloc(); }),
                 std::bad_alloc);
    EXPECT_THROW((void)copy("/item",
                            [](FileOperation&) -> Status {
                              std::this_thread::sleep_for(untilShown * 2);
                              throw std::runtime_error("broken");
                            }),
                 std::runtime_error);
  });
  EXPECT_THAT(display_.ends, ElementsAre(WorkEnd::Done));
}

}  // namespace
}  // namespace tavrin
