#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>

#include <algorithm>
#include <atomic>
#include <filesystem>

#include "platform/linux/BusIntake.h"
#include "platform/linux/GLibPointers.h"
#include "tests/platform/desktop/DesktopSession.h"
#include "tests/support/FakeLog.h"

namespace tavrin {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using Kind = ExternalRequest::Kind;
using Outcome = BusIntake::Outcome;

constexpr const char* name = "app.tavrin.Tavrin";
constexpr const char* probe = TAVRIN_SERVICE_PROBE;

GVariant* noPlatformData() {
  return g_variant_new("a{sv}", nullptr);
}

GVariant* openArguments(const std::vector<std::string>& uris) {
  GVariantBuilder list;
  g_variant_builder_init(&list, G_VARIANT_TYPE_STRING_ARRAY);
  for (const std::string& uri : uris) g_variant_builder_add(&list, "s", uri.c_str());
  return g_variant_new("(as@a{sv})", &list, noPlatformData());
}

GVariant* actionArguments(const char* action) {
  return g_variant_new("(sav@a{sv})", action, nullptr, noPlatformData());
}

/// The answer to a call on the program's object: "" for success, else the reason.
std::string call(GDBusConnection* connection, const char* method, GVariant* arguments) {
  GLibError error;
  const GLibPointer<GVariant> answer(g_dbus_connection_call_sync(
      connection, name, "/app/tavrin/Tavrin", "org.freedesktop.Application", method, arguments,
      nullptr, G_DBUS_CALL_FLAGS_NO_AUTO_START, 10000, nullptr, error.slot()));
  return answer ? "" : error.message();
}

/// Calls that wait for their answers.
struct Answers {
  std::size_t accepted = 0;
  std::size_t failed = 0;
  std::size_t count() const { return accepted + failed; }
};

void callOpenLater(GDBusConnection* connection, const std::string& uri, Answers& answers) {
  g_dbus_connection_call(
      connection, name, "/app/tavrin/Tavrin", "org.freedesktop.Application", "Open",
      openArguments({uri}), nullptr, G_DBUS_CALL_FLAGS_NO_AUTO_START, 10000, nullptr,
      [](GObject* source, GAsyncResult* result, gpointer data) {
        const GLibPointer<GVariant> answer(
            g_dbus_connection_call_finish(G_DBUS_CONNECTION(source), result, nullptr));
        auto& counted = *static_cast<Answers*>(data);
        ++(answer ? counted.accepted : counted.failed);
      },
      &answers);
}

std::vector<ExternalRequest> takeAll(AcceptedRequests& accepted) {
  std::vector<ExternalRequest> requests;
  while (auto request = accepted.take()) requests.push_back(*request);
  return requests;
}

class BusIntakeTest : public testing::Test {
 protected:
  test::PrivateBus bus_{"DBUS_SESSION_BUS_ADDRESS"};
  GObjectPointer<GDBusConnection> caller_ = bus_.connect();
  FakeLog log_;
  AcceptedRequests accepted_;
  BusIntake intake_{accepted_, log_};
};

TEST_F(BusIntakeTest, answersAtOnceWhileTheMainThreadTakesNothing) {
  ASSERT_EQ(intake_.start({}), Outcome::Primary);
  intake_.serve();
  EXPECT_EQ(call(caller_.get(), "Open",
                 openArguments({"file:///tmp/a%20b", "https://example.org/x", "file:///tmp/%FF%0A",
                                "/no/url", "file:///bad%2"})),
            "");
  EXPECT_THAT(takeAll(accepted_), ElementsAre(ExternalRequest{Kind::Open, "/tmp/a b"},
                                              ExternalRequest{Kind::Open, "/tmp/\xff\n"}));
  EXPECT_THAT(log_.lines(), ElementsAre(HasSubstr("https://example.org/x"), HasSubstr("/no/url"),
                                        HasSubstr("file:///bad%2")));
}

TEST_F(BusIntakeTest, readsAFileBeforeItAnswers) {
  ASSERT_EQ(intake_.start({}), Outcome::Primary);
  intake_.serve();
  const test::TemporaryFolder folder;
  const std::string path = folder / "request";
  const std::string uri = "file://" + path;
  for (const char* contents : {"first", "second"}) {
    test::writeFile(path, contents);
    ASSERT_EQ(call(caller_.get(), "Open", openArguments({uri})), "");
  }
  std::filesystem::remove(path);
  ASSERT_EQ(call(caller_.get(), "Open", openArguments({uri})), "");

  const auto takeText = [&] {
    const auto file = accepted_.takeContents(path);
    if (!file || !file->contents) return std::string("none");
    return std::string(file->contents.value().begin(), file->contents.value().end());
  };
  EXPECT_EQ(takeText(), "first");
  EXPECT_EQ(takeText(), "second");
  const auto missing = accepted_.takeContents(path);
  ASSERT_TRUE(missing && !missing->contents);
  EXPECT_EQ(missing->contents.error().code, std::errc::no_such_file_or_directory);
  EXPECT_FALSE(accepted_.takeContents(path));
}

TEST_F(BusIntakeTest, refusesMoreThanItCanKeepUntilSomeIsTaken) {
  ASSERT_EQ(intake_.start({}), Outcome::Primary);
  intake_.serve();
  const test::TemporaryFolder folder;
  const std::string path = folder / "large";
  test::writeFile(path, "");
  std::filesystem::resize_file(path, 60U << 20U);
  const std::string uri = "file://" + path;
  for (int number = 0; number < 4; ++number) {
    ASSERT_EQ(call(caller_.get(), "Open", openArguments({uri})), "");
  }
  EXPECT_THAT(call(caller_.get(), "Open", openArguments({uri})), HasSubstr("Too many"));
  EXPECT_THAT(takeAll(accepted_), SizeIs(4));
  EXPECT_TRUE(accepted_.takeContents(path));
  EXPECT_EQ(call(caller_.get(), "Open", openArguments({uri})), "");
}

TEST_F(BusIntakeTest, takesActivationsAndActionsAndRefusesAnUnknownAction) {
  ASSERT_EQ(intake_.start({}), Outcome::Primary);
  intake_.serve();
  EXPECT_EQ(call(caller_.get(), "Activate", g_variant_new("(@a{sv})", noPlatformData())), "");
  EXPECT_EQ(call(caller_.get(), "ActivateAction", actionArguments("preferences")), "");
  EXPECT_THAT(call(caller_.get(), "ActivateAction", actionArguments("explode")),
              HasSubstr("explode"));
  EXPECT_EQ(call(caller_.get(), "ActivateAction", actionArguments("quit")), "");
  EXPECT_THAT(takeAll(accepted_),
              ElementsAre(ExternalRequest{Kind::Reopen}, ExternalRequest{Kind::Reopen},
                          ExternalRequest{Kind::Terminate}));
}

TEST_F(BusIntakeTest, keepsTheOrderOfAThousandOpens) {
  ASSERT_EQ(intake_.start({{"/first"}}), Outcome::Primary);
  intake_.serve();
  Answers answers;
  std::vector<ExternalRequest> expected = {{Kind::Open, "/first"}};
  for (int number = 0; number < 1000; ++number) {
    const std::string path = "/tmp/" + std::to_string(number);
    expected.push_back({Kind::Open, path});
    callOpenLater(caller_.get(), "file://" + path, answers);
  }
  ASSERT_TRUE(test::waitUntil([&] { return answers.count() == 1000; }));
  EXPECT_EQ(answers.failed, 0U);
  EXPECT_EQ(takeAll(accepted_), expected);
}

TEST_F(BusIntakeTest, loseNothingThatWasAnsweredWhenItStopsAmongCalls) {
  ASSERT_EQ(intake_.start({}), Outcome::Primary);
  intake_.serve();
  Answers answers;
  for (int number = 0; number < 300; ++number) {
    callOpenLater(caller_.get(), "file:///tmp/" + std::to_string(number), answers);
    if (number == 150) g_dbus_connection_flush_sync(caller_.get(), nullptr, nullptr);
  }
  intake_.stop();
  EXPECT_FALSE(bus_.hasOwner(name));
  ASSERT_TRUE(test::waitUntil([&] { return answers.count() == 300; }));
  EXPECT_GT(answers.accepted, 0U);
  EXPECT_THAT(takeAll(accepted_), SizeIs(answers.accepted));
}

TEST_F(BusIntakeTest, doesNotAnswerWhatItWillNotHandle) {
  auto intake = std::make_unique<BusIntake>(accepted_, log_);
  ASSERT_EQ(intake->start({}), Outcome::Primary);
  Answers answers;
  callOpenLater(caller_.get(), "file:///tmp/a", answers);
  g_dbus_connection_flush_sync(caller_.get(), nullptr, nullptr);
  intake.reset();
  ASSERT_TRUE(test::waitUntil([&] { return answers.count() == 1; }));
  EXPECT_EQ(answers.accepted, 0U);
}

TEST_F(BusIntakeTest, handsOverToARunningProgram) {
  test::ChildProcess running({probe, "take", "4"});
  ASSERT_TRUE(test::waitUntil([&] { return bus_.hasOwner(name); }));
  EXPECT_EQ(intake_.start({{"/tmp/a b", "/tmp/\xff%"}}), Outcome::HandedOver);
  BusIntake withoutFiles(accepted_, log_);
  BusIntake::Launch launch;
  launch.activationToken = "token";
  launch.startupId = "not \xff utf-8";
  EXPECT_EQ(withoutFiles.start(launch), Outcome::HandedOver);
  launch.isService = true;
  BusIntake startedByTheBus(accepted_, log_);
  EXPECT_EQ(startedByTheBus.start(launch), Outcome::HandedOver);
  EXPECT_EQ(call(caller_.get(), "ActivateAction", actionArguments("quit")), "");
  EXPECT_EQ(running.wait(), 0);
  EXPECT_EQ(running.output(), "primary\nopen /tmp/a b\nopen /tmp/\xff%\nreopen\nend\n");
  EXPECT_THAT(takeAll(accepted_), IsEmpty());
}

TEST_F(BusIntakeTest, givesUpOnAProgramThatDoesNotAnswer) {
  test::ChildProcess running({probe, "take", "1"});
  ASSERT_TRUE(test::waitUntil([&] { return bus_.hasOwner(name); }));
  running.signal(SIGSTOP);
  BusIntake::Launch launch{{"/tmp/a"}};
  launch.patience = std::chrono::milliseconds(300);
  EXPECT_EQ(intake_.start(launch), Outcome::Refused);
  EXPECT_THAT(log_.lines(), ElementsAre(HasSubstr("did not accept")));
}

TEST_F(BusIntakeTest, takesThePlaceOfAProgramThatDiesWithoutAnAnswer) {
  const auto dying = bus_.connect();
  g_dbus_connection_add_filter(
      dying.get(),
      [](GDBusConnection* connection, GDBusMessage* message, gboolean isIncoming, gpointer) {
        const bool isOpen =
            isIncoming != FALSE && g_strcmp0(g_dbus_message_get_member(message), "Open") == 0;
        if (isOpen) g_dbus_connection_close(connection, nullptr, nullptr, nullptr);
        return message;
      },
      nullptr, nullptr);
  const GLibPointer<GVariant> owned(g_dbus_connection_call_sync(
      dying.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
      "RequestName", g_variant_new("(su)", name, 4U), nullptr, G_DBUS_CALL_FLAGS_NONE, 5000,
      nullptr, nullptr));
  ASSERT_TRUE(owned);
  EXPECT_EQ(intake_.start({{"/tmp/a"}}), Outcome::Primary);
  EXPECT_THAT(takeAll(accepted_), ElementsAre(ExternalRequest{Kind::Open, "/tmp/a"}));
}

TEST_F(BusIntakeTest, handlesEachRequestOnceWhenManyStartAndEndAtOnce) {
  // Each that becomes the primary one ends after a few requests, while others hand over to it.
  std::vector<std::unique_ptr<test::ChildProcess>> programs;
  std::vector<std::string> expected;
  for (int number = 0; number < 60; ++number) {
    const std::string path = "/tmp/" + std::to_string(number);
    expected.push_back("open " + path);
    programs.push_back(
        std::make_unique<test::ChildProcess>(std::vector<std::string>{probe, "take", "3", path}));
  }
  const auto handledByAll = [&] {
    std::vector<std::string> lines;
    for (const auto& program : programs) {
      for (const std::string& line : test::linesOf(program->output())) {
        if (line.starts_with("open")) lines.push_back(line);
      }
    }
    return lines;
  };
  const auto running = [&] {
    return std::count_if(programs.begin(), programs.end(),
                         [](const auto& program) { return program->isRunning(); });
  };
  // The last one may wait for requests that never come.
  EXPECT_TRUE(test::waitUntil([&] { return running() <= 1; }));
  EXPECT_TRUE(test::waitUntil([&] { return handledByAll().size() >= expected.size(); }));
  for (const auto& program : programs) EXPECT_THAT(program->errors(), IsEmpty());
  std::vector<std::string> handled = handledByAll();
  std::sort(handled.begin(), handled.end());
  std::sort(expected.begin(), expected.end());
  EXPECT_EQ(handled, expected);
}

TEST_F(BusIntakeTest, oneOfTwoThatStartAtOnceIsThePrimary) {
  test::ChildProcess one({probe, "take", "2", "/one"});
  test::ChildProcess two({probe, "take", "2", "/two"});
  EXPECT_EQ(one.wait(), 0);
  EXPECT_EQ(two.wait(), 0);
  const auto& primary = one.output().empty() ? two : one;
  const auto& other = one.output().empty() ? one : two;
  EXPECT_THAT(test::linesOf(primary.output()), SizeIs(4));
  EXPECT_EQ(other.output(), "");
}

TEST_F(BusIntakeTest, endsTheProgramWhenTheBusGoes) {
  ASSERT_EQ(intake_.start({}), Outcome::Primary);
  intake_.serve();
  bus_.kill();
  ASSERT_TRUE(test::waitUntil([&] { return accepted_.size() > 0; }));
  EXPECT_THAT(takeAll(accepted_), ElementsAre(ExternalRequest{Kind::Terminate}));
  EXPECT_THAT(log_.lines(), SizeIs(1));
  intake_.stop();
}

TEST_F(BusIntakeTest, runsWithoutABus) {
  bus_.kill();
  ASSERT_EQ(intake_.start({{"/tmp/a"}}), Outcome::WithoutBus);
  intake_.serve();
  EXPECT_EQ(intake_.connection(), nullptr);
  EXPECT_THAT(log_.lines(), ElementsAre(HasSubstr("session bus")));
  EXPECT_THAT(takeAll(accepted_), ElementsAre(ExternalRequest{Kind::Open, "/tmp/a"}));
}

TEST_F(BusIntakeTest, aConnectionAloneTakesNoNameAndItsEndEndsNothing) {
  intake_.connectOnly();
  GDBusConnection* connection = intake_.connection();
  ASSERT_NE(connection, nullptr);
  EXPECT_NE(call(caller_.get(), "Activate", g_variant_new("(@a{sv})", noPlatformData())), "");
  bus_.kill();
  ASSERT_TRUE(test::waitUntil([&] { return g_dbus_connection_is_closed(connection) != FALSE; }));
  while (g_main_context_iteration(nullptr, FALSE) != FALSE) continue;
  EXPECT_EQ(accepted_.size(), 0U);
  EXPECT_THAT(log_.lines(), IsEmpty());
  intake_.stop();
}

TEST_F(BusIntakeTest, aConnectionAloneIsNoneWithoutABus) {
  bus_.kill();
  intake_.connectOnly();
  EXPECT_EQ(intake_.connection(), nullptr);
  EXPECT_THAT(log_.lines(), ElementsAre(HasSubstr("no session bus")));
}

}  // namespace

}  // namespace tavrin
