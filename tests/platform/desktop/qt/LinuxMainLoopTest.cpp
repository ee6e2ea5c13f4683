#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QEventLoop>
#include <QTest>
#include <atomic>
#include <optional>
#include <stdexcept>
#include <thread>
#include <vector>

#include "platform/linux/LinuxMainLoop.h"
#include "tests/support/FakeLog.h"

namespace tavrin {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class LinuxMainLoopTest : public testing::Test {
 protected:
  bool waitFor(const std::function<bool()>& condition) { return QTest::qWaitFor(condition); }

  FakeLog log_;
  LinuxMainLoop loop_{log_};
  std::vector<int> order_;
};

TEST_F(LinuxMainLoopTest, keepsQueuedWorkUntilTheLoopRunsAndItsOrder) {
  std::thread([this] { loop_.async([this] { order_.push_back(1); }); }).join();
  loop_.async([this] {
    order_.push_back(2);
    loop_.async([this] { order_.push_back(4); });
  });
  loop_.async([this] { order_.push_back(3); });
  EXPECT_THAT(order_, IsEmpty());
  EXPECT_TRUE(waitFor([this] { return order_.size() == 4; }));
  EXPECT_THAT(order_, ElementsAre(1, 2, 3, 4));
}

TEST_F(LinuxMainLoopTest, queuedWorkGoesOnInANestedLoop) {
  QEventLoop nested;
  loop_.async([&] {
    order_.push_back(1);
    nested.exec();
    order_.push_back(3);
  });
  loop_.async([&] {
    order_.push_back(2);
    nested.quit();
  });
  EXPECT_TRUE(waitFor([this] { return order_.size() == 3; }));
  EXPECT_THAT(order_, ElementsAre(1, 2, 3));
}

TEST_F(LinuxMainLoopTest, logsWhatQueuedWorkThrowsAndGoesOn) {
  loop_.async([] { throw std::runtime_error("broken"); });
  loop_.performAfterDelay(0.0, [] { throw 7; });
  loop_.runInBackground([] { throw std::runtime_error("behind"); });
  EXPECT_TRUE(waitFor([this] { return log_.lines().size() == 3; }));
  EXPECT_THAT(log_.lines(), testing::Contains(testing::HasSubstr("broken")));
  EXPECT_THAT(log_.lines(), testing::Contains(testing::HasSubstr("behind")));
}

TEST_F(LinuxMainLoopTest, syncRunsOnTheMainThreadWhileTheCallerWaits) {
  bool ranHere = false;
  loop_.sync([&] { ranHere = loop_.isMainThread(); });
  EXPECT_TRUE(ranHere);

  std::atomic<bool> isDone = false;
  bool ranOnMain = false;
  bool sawBackground = true;
  loop_.runInBackground([&] {
    sawBackground = !loop_.isMainThread();
    loop_.sync([&] { ranOnMain = loop_.isMainThread(); });
    isDone = true;
  });
  EXPECT_TRUE(waitFor([&] { return isDone.load(); }));
  EXPECT_TRUE(ranOnMain);
  EXPECT_TRUE(sawBackground);
}

TEST_F(LinuxMainLoopTest, syncHandsAnExceptionToItsCaller) {
  std::atomic<bool> isCaught = false;
  loop_.runInBackground([&] {
    try {
      loop_.sync([] { throw std::runtime_error("broken"); });
    } catch (const std::runtime_error&) {
      isCaught = true;
    }
  });
  EXPECT_TRUE(waitFor([&] { return isCaught.load(); }));
  EXPECT_THROW(loop_.sync([] { throw std::runtime_error("broken"); }), std::runtime_error);
  EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(LinuxMainLoopTest, delaysWorkFromAnyThread) {
  QElapsedTimer timer;
  timer.start();
  qint64 elapsed = 0;
  bool ranOnMain = false;
  std::thread([&] {
    loop_.performAfterDelay(0.1, [&] {
      elapsed = timer.elapsed();
      ranOnMain = loop_.isMainThread();
    });
  }).join();
  EXPECT_TRUE(waitFor([&] { return elapsed > 0; }));
  EXPECT_GE(elapsed, 95);
  EXPECT_TRUE(ranOnMain);
}

TEST(LinuxMainLoopEndTest, waitsForBackgroundWorkAndWhatItAsksOfTheMainThread) {
  FakeLog log;
  std::atomic<int> ended = 0;
  {
    LinuxMainLoop loop(log);
    for (int count = 0; count < 20; ++count) {
      loop.runInBackground([&] {
        loop.sync([&ended] { ++ended; });
        ++ended;
      });
    }
  }
  EXPECT_EQ(ended, 40);
}

}  // namespace
}  // namespace tavrin
