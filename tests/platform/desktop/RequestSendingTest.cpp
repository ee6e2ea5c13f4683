#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <stdexcept>
#include <thread>

#include "platform/linux/AcceptedPropertyLists.h"
#include "platform/linux/BusIntake.h"
#include "platform/linux/RequestSending.h"
#include "tests/platform/desktop/DesktopSession.h"
#include "tests/support/FakeLog.h"

namespace tavrin {

namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using namespace std::chrono_literals;

PropertyList request(const std::string& path) {
  return PropertyList::Dictionary{{"Action", "openCommonPath"}, {"Path", path}};
}

class RequestSendingTest : public ::testing::Test {
 protected:
  void SetUp() override { test::setVariable("XDG_RUNTIME_DIR", runtime_.path()); }
  void TearDown() override { test::setVariable("XDG_RUNTIME_DIR", std::nullopt); }

  void startHost() {
    ASSERT_EQ(intake_.start({}), BusIntake::Outcome::Primary);
    intake_.serve();
  }
  bool noFileIsLeft() const { return fs::is_empty(runtime_ / "app.tavrin.Tavrin/requests"); }

  /// The next request of the host's line, read as the host does when its turn comes.
  PropertyList handleNext() {
    const auto next = accepted_.take();
    if (!next) return "nothing was accepted";
    EXPECT_FALSE(fs::exists(next->path));
    const auto list = AcceptedPropertyLists(accepted_).propertyListWithContentsOfFile(next->path);
    return list ? list.value() : PropertyList(list.error().describe());
  }

  test::TemporaryFolder runtime_;
  test::PrivateBus bus_{"DBUS_SESSION_BUS_ADDRESS"};
  FakeLog log_;
  AcceptedRequests accepted_;
  BusIntake intake_{accepted_, log_};
};

TEST_F(RequestSendingTest, theTokenOfTheClickStaysWithItsRequest) {
  startHost();
  ASSERT_TRUE(sendRequest(request("/one"), {patienceWithHost, "menu-1_TIME42"}));
  ASSERT_TRUE(sendRequest(request("/two"), {patienceWithHost, "no\xfftext"}));
  EXPECT_EQ(accepted_.takeContents(accepted_.take()->path)->startupToken, "menu-1_TIME42");
  EXPECT_EQ(accepted_.takeContents(accepted_.take()->path)->startupToken, "");
}

TEST_F(RequestSendingTest, theFileIsGoneWhenTheHostHasAcceptedAndTheHostStillHasTheRequest) {
  startHost();
  EXPECT_TRUE(sendRequest(request("/one")));
  EXPECT_TRUE(sendRequest(request("/two\xff")));
  EXPECT_TRUE(noFileIsLeft());
  EXPECT_EQ(handleNext(), request("/one"));
  EXPECT_EQ(handleNext(), request("/two\xff"));
}

TEST_F(RequestSendingTest, callsBackInTheCallersLoopAndNotBefore) {
  startHost();
  std::vector<std::string> outcomes;
  const auto thread = std::this_thread::get_id();
  for (int number = 0; number < 20; ++number) {
    sendRequestsAsync({request("/x")}, [&](const Status& outcome) {
      EXPECT_EQ(std::this_thread::get_id(), thread);
      outcomes.push_back(outcome ? "accepted" : outcome.error().describe());
      if (outcomes.size() == 1) throw std::runtime_error("in a callback");
    });
  }
  EXPECT_TRUE(outcomes.empty());
  ASSERT_TRUE(test::waitUntil([&] { return outcomes.size() == 20; }));
  EXPECT_THAT(outcomes, ::testing::Each("accepted"));
  EXPECT_TRUE(noFileIsLeft());
  for (int number = 0; number < 20; ++number) EXPECT_EQ(handleNext(), request("/x"));
}

TEST_F(RequestSendingTest, saysThatNoHostIsThere) {
  const Status outcome = sendRequest(request("/one"));
  ASSERT_FALSE(outcome);
  EXPECT_EQ(outcome.error().code, std::errc::no_such_device_or_address);
  EXPECT_THAT(outcome.error().describe(), HasSubstr("app.tavrin.Tavrin"));
  EXPECT_TRUE(noFileIsLeft());

  std::string answer;
  sendRequestsAsync({request("/one")},
                    [&](const Status& late) { answer = late ? "" : late.error().describe(); });
  ASSERT_TRUE(test::waitUntil([&] { return !answer.empty(); }));
  EXPECT_EQ(answer, outcome.error().describe());
  EXPECT_TRUE(noFileIsLeft());
}

TEST_F(RequestSendingTest, givesUpOnAHostThatDoesNotAnswer) {
  // It has the name, but does not serve yet.
  ASSERT_EQ(intake_.start({}), BusIntake::Outcome::Primary);
  const Status outcome = sendRequest(request("/one"), {200ms});
  ASSERT_FALSE(outcome);
  EXPECT_EQ(outcome.error().code, std::errc::timed_out);
  EXPECT_TRUE(noFileIsLeft());
}

TEST_F(RequestSendingTest, saysThatThereIsNoBusOrNoSafeFolder) {
  startHost();
  test::setVariable("XDG_RUNTIME_DIR", runtime_ / "missing");
  EXPECT_FALSE(sendRequest(request("/one")));
  test::setVariable("XDG_RUNTIME_DIR", runtime_.path());
  bus_.kill();
  const Status outcome = sendRequest(request("/one"));
  ASSERT_FALSE(outcome);
  EXPECT_THAT(outcome.error().describe(), HasSubstr("session bus"));
  EXPECT_TRUE(noFileIsLeft());
}

}  // namespace

}  // namespace tavrin
