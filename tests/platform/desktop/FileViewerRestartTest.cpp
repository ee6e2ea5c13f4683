// The restart of file managers, with programs that play them and record what they are asked.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>

#include <filesystem>

#include "platform/linux/FileViewerRestart.h"
#include "tests/platform/desktop/DesktopSession.h"
#include "tests/support/FakeLog.h"

namespace tavrin {

namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

constexpr RunningFileViewer::Pace quickPace = {std::chrono::milliseconds(20), 12, 1000};
constexpr RunningFileViewer::Pace impatientPace = {std::chrono::milliseconds(20), 12, 30};

class FileViewerRestartTest : public testing::Test {
 protected:
  FileViewerRestartTest() {
    test::setVariable("PATH", folder_ / "bin");
    fs::create_directories(folder_ / "bin");
  }
  void TearDown() override {
    test::setVariable("PATH", path_);
    fs::remove_all(services_);
  }

  /// Installs a program that notes what it is called with, and ends the process that stands in
  /// the file "process" when it is to quit.
  void install(const std::string& program, const std::string& whenToQuit = "end") {
    test::writeFile(folder_ / ("bin/" + program),
                    "#!/bin/sh\n"
                    "end() { read process < '" +
                        (folder_ / "process") +
                        "'; kill \"$process\"; }\n"
                        "echo \"${0##*/} $*\" >> '" +
                        notes_ +
                        "'\n"
                        "if [ \"$1\" = --quit ]; then " +
                        whenToQuit + "; exit 255; fi\n");
  }

  /// Makes a name one that the bus starts with `command`.
  void installService(const std::string& name, const std::string& command) {
    test::writeFile(services_ + "/" + name + ".service",
                    "[D-BUS Service]\nName=" + name + "\nExec=" + command + "\n");
    const GLibPointer<GVariant> reloaded(g_dbus_connection_call_sync(
        connection_.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
        "ReloadConfig", nullptr, nullptr, G_DBUS_CALL_FLAGS_NONE, 5000, nullptr, nullptr));
    ASSERT_TRUE(reloaded);
  }

  /// Starts a program that has the name on the bus.
  std::unique_ptr<test::ChildProcess> run(const std::string& name,
                                          const std::vector<std::string>& options = {}) {
    std::vector<std::string> command = {TAVRIN_PYTHON, TAVRIN_TEST_FILE_VIEWER, name};
    command.insert(command.end(), options.begin(), options.end());
    const std::vector<std::string> noSettings;
    auto viewer = std::make_unique<test::ChildProcess>(command, noSettings, folder_.path());
    EXPECT_TRUE(test::waitUntil([&] { return viewer->output() == "ready\n"; })) << viewer->errors();
    test::writeFile(folder_ / "process", std::to_string(viewer->processId()) + "\n");
    return viewer;
  }

  std::vector<std::string> notes() const { return test::linesOf(test::readFile(notes_)); }

  bool waitForNotes(std::size_t count) const {
    return test::waitUntil([&] { return notes().size() >= count; });
  }

  static void lookFor(std::chrono::milliseconds time) {
    test::waitUntil([] { return false; }, time);
  }

  const std::string path_ = g_getenv("PATH");
  const std::string services_ = std::string(g_get_user_data_dir()) + "/dbus-1/services";
  test::TemporaryFolder folder_;
  const std::string notes_ = folder_ / "notes";
  test::PrivateBus bus_{"DBUS_SESSION_BUS_ADDRESS"};
  GObjectPointer<GDBusConnection> connection_ = bus_.connect();
  FakeLog log_;
};

TEST_F(FileViewerRestartTest, quitsWhatIsRunningAndStartsItAsTheServiceThatItIs) {
  install("nautilus");
  install("thunar");
  install("service");
  installService("org.gnome.Nautilus", folder_ / "bin/service --of-the-bus");
  const auto nautilus = run("org.gnome.Nautilus");
  FileViewerRestart restart(connection_.get(), log_, quickPace);
  restart.start();
  // Impatient users ask twice.
  restart.start();
  ASSERT_TRUE(waitForNotes(2));
  EXPECT_FALSE(nautilus->isRunning());
  lookFor(std::chrono::milliseconds(400));
  EXPECT_THAT(notes(), ElementsAre("nautilus --quit", "service --of-the-bus"));
  EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(FileViewerRestartTest, startsByItsProgramWhatTheBusDoesNotStart) {
  const struct {
    const char *program, *name, *option;
  } cases[] = {{"thunar", "org.xfce.Thunar", "--daemon"},
               {"caja", "org.mate.Caja", "--no-default-window"},
               {"nemo", "org.Nemo", "--no-default-window"}};
  FileViewerRestart restart(connection_.get(), log_, quickPace);
  for (const auto& [program, name, option] : cases) {
    install(program);
    installService(name, "/bin/false");
    const auto viewer = run(name);
    restart.start();
    ASSERT_TRUE(waitForNotes(2)) << program;
    EXPECT_THAT(notes(),
                ElementsAre(std::string(program) + " --quit", std::string(program) + " " + option));
    fs::remove(notes_);
  }
  restart.start();
  lookFor(std::chrono::milliseconds(400));
  EXPECT_THAT(notes(), IsEmpty()) << "Nothing is running any more.";
  EXPECT_THAT(log_.lines(), IsEmpty());
}

class FileViewerAtWorkTest : public FileViewerRestartTest,
                             public testing::WithParamInterface<const char*> {};

TEST_P(FileViewerAtWorkTest, isWaitedFor) {
  install("thunar");
  installService("org.xfce.Thunar", "/bin/false");
  const auto thunar = run("org.xfce.Thunar", {GetParam()});
  FileViewerRestart impatient(connection_.get(), log_, impatientPace);
  impatient.start();
  ASSERT_TRUE(test::waitUntil([&] { return !log_.lines().empty(); }));
  EXPECT_THAT(log_.lines(), ElementsAre(AllOf(HasSubstr("org.xfce.Thunar"), HasSubstr("at work"))));
  FileViewerRestart restart(connection_.get(), log_, quickPace);
  restart.start();
  lookFor(std::chrono::milliseconds(400));
  EXPECT_THAT(notes(), IsEmpty());
  thunar->signal(SIGUSR1);
  ASSERT_TRUE(waitForNotes(2));
  EXPECT_THAT(notes(), ElementsAre("thunar --quit", "thunar --daemon"));
}

INSTANTIATE_TEST_SUITE_P(ByItsFiles, FileViewerAtWorkTest, testing::Values("--writes=copy"));
INSTANTIATE_TEST_SUITE_P(ByItsProcessor, FileViewerAtWorkTest, testing::Values("--computes"));

TEST_F(FileViewerRestartTest, doesNotStartWhatTheUserEndedOrWhatDoesNotEnd) {
  install("thunar", "true");
  const auto thunar = run("org.xfce.Thunar");
  FileViewerRestart impatient(connection_.get(), log_, impatientPace);
  impatient.start();
  ASSERT_TRUE(test::waitUntil([&] { return !log_.lines().empty(); }));
  EXPECT_THAT(log_.lines(), ElementsAre(AllOf(HasSubstr("org.xfce.Thunar"), HasSubstr("has not"))));
  EXPECT_THAT(notes(), ElementsAre("thunar --quit"));
  EXPECT_TRUE(thunar->isRunning());

  install("nemo");
  const auto nemo = run("org.Nemo", {"--writes", folder_ / "copy"});
  thunar->signal(SIGTERM);
  thunar->wait();
  FileViewerRestart restart(connection_.get(), log_, quickPace);
  restart.start();
  lookFor(std::chrono::milliseconds(400));
  nemo->signal(SIGTERM);
  nemo->wait();
  lookFor(std::chrono::milliseconds(400));
  EXPECT_THAT(notes(), ElementsAre("thunar --quit"));
}

TEST_F(FileViewerRestartTest, asksTheWindowsOfDolphinAndStartsItOnce) {
  install("dolphin");
  const auto windows = run("org.kde.dolphin-PID", {"--windows", "2"});
  const auto service = run("org.kde.dolphin-PID");
  FileViewerRestart restart(connection_.get(), log_, quickPace);
  restart.start();
  EXPECT_EQ(windows->wait(), 0);
  EXPECT_EQ(service->wait(), 0);
  EXPECT_THAT(
      test::linesOf(windows->output()),
      UnorderedElementsAre("ready", "close /dolphin/Dolphin_1", "close /dolphin/Dolphin_2"));
  EXPECT_THAT(test::linesOf(service->output()), ElementsAre("ready", "quit"));
  ASSERT_TRUE(waitForNotes(1));
  lookFor(std::chrono::milliseconds(400));
  EXPECT_THAT(notes(), ElementsAre("dolphin --daemon"));
  EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(FileViewerRestartTest, saysWhyAFileManagerIsNotRestarted) {
  FileViewerRestart withoutBus(nullptr, log_, quickPace);
  withoutBus.start();
  EXPECT_THAT(log_.lines(), ElementsAre(HasSubstr("no session bus")));
  const auto caja = run("org.mate.Caja");
  FileViewerRestart restart(connection_.get(), log_, quickPace);
  restart.start();
  ASSERT_TRUE(test::waitUntil([&] { return log_.lines().size() == 2; }));
  EXPECT_THAT(log_.lines()[1], AllOf(HasSubstr("org.mate.Caja"), HasSubstr("No such file")));
  EXPECT_TRUE(caja->isRunning());
}

TEST_F(FileViewerRestartTest, mayEndAtAnyTime) {
  install("thunar");
  const auto thunar = run("org.xfce.Thunar");
  for (const int milliseconds : {0, 5, 40}) {
    FileViewerRestart restart(connection_.get(), log_, quickPace);
    restart.start();
    lookFor(std::chrono::milliseconds(milliseconds));
  }
  lookFor(std::chrono::milliseconds(400));
  EXPECT_THAT(notes(), IsEmpty());
  EXPECT_TRUE(thunar->isRunning());
  EXPECT_THAT(log_.lines(), IsEmpty());
}

}  // namespace

}  // namespace tavrin
