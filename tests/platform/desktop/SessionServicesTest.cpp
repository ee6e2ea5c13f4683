// The services that speak to the rest of the session over a bus.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include "platform/linux/BusIntake.h"
#include "platform/linux/LinuxDistributedNotificationCenter.h"
#include "platform/linux/LinuxPropertyListSerialization.h"
#include "platform/linux/LinuxWorkspace.h"
#include "tests/platform/desktop/DesktopSession.h"
#include "tests/support/FakeBundle.h"
#include "tests/support/FakeLog.h"

namespace tavrin {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class NotificationTest : public testing::Test {
 protected:
  test::PrivateBus bus_{"DBUS_SESSION_BUS_ADDRESS"};
  GObjectPointer<GDBusConnection> connection_ = bus_.connect();
  FakeLog log_;
  LinuxDistributedNotificationCenter center_{connection_.get(), log_};
};

/// Returns when the bus knows all that was sent on the connection before.
void synchronize(GDBusConnection* connection) {
  const GLibPointer<GVariant> answer(g_dbus_connection_call_sync(
      connection, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "GetId",
      nullptr, nullptr, G_DBUS_CALL_FLAGS_NONE, 5000, nullptr, nullptr));
  ASSERT_TRUE(answer);
}

TEST_F(NotificationTest, comesFromAProcessThatEndsRightAfterThePost) {
  int received = 0;
  int others = 0;
  const Observation observation = center_.addObserver("ExitService", [&] { ++received; });
  const Observation other = center_.addObserver("SomethingElse", [&] { ++others; });
  synchronize(connection_.get());
  for (int round = 1; round <= 20; ++round) {
    test::ChildProcess poster({TAVRIN_SERVICE_PROBE, "post", "ExitService"});
    EXPECT_EQ(poster.wait(), 0);
    EXPECT_TRUE(test::waitUntil([&] { return received == round; }));
  }
  EXPECT_EQ(others, 0);
}

TEST_F(NotificationTest, endsWithTheObservation) {
  int ended = 0;
  int running = 0;
  Observation observation = center_.addObserver("Tick", [&] {
    ++ended;
    observation.reset();
  });
  const Observation other = center_.addObserver("Tick", [&] { ++running; });
  center_.postNotificationName("Tick");
  center_.postNotificationName("Tick");
  EXPECT_TRUE(test::waitUntil([&] { return running == 2; }));
  center_.deliverLocally("Tick");
  EXPECT_EQ(ended, 1);
  EXPECT_EQ(running, 3);
}

TEST(NotificationWithoutBusTest, staysInTheProcessAndIsLoggedOnce) {
  FakeLog log;
  LinuxDistributedNotificationCenter center(nullptr, log);
  int received = 0;
  const Observation observation =
      center.addObserver("AppleInterfaceThemeChangedNotification", [&] { ++received; });
  center.postNotificationName("ExitService");
  center.postNotificationName("ExitService");
  center.deliverLocally("AppleInterfaceThemeChangedNotification");
  center.deliverLocally("ExitService");
  EXPECT_EQ(received, 1);
  EXPECT_THAT(log.lines(), ElementsAre(HasSubstr("ExitService")));
}

/// A file manager on the bus that notes what it is asked to show.
class FakeFileManager1 {
 public:
  explicit FakeFileManager1(const test::PrivateBus& bus) : connection_(bus.connect()) {
    const GLibPointer<GDBusNodeInfo> node(g_dbus_node_info_new_for_xml(
        "<node><interface name='org.freedesktop.FileManager1'><method name='ShowFolders'>"
        "<arg type='as' direction='in'/><arg type='s' direction='in'/></method>"
        "<method name='ShowItems'>"
        "<arg type='as' direction='in'/><arg type='s' direction='in'/></method></interface></node>",
        nullptr));
    static constexpr GDBusInterfaceVTable methods = {onCall, nullptr, nullptr, {}};
    g_dbus_connection_register_object(connection_.get(), "/org/freedesktop/FileManager1",
                                      node->interfaces[0], &methods, this, nullptr, nullptr);
    const GLibPointer<GVariant> owned(g_dbus_connection_call_sync(
        connection_.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
        "RequestName", g_variant_new("(su)", "org.freedesktop.FileManager1", 4U), nullptr,
        G_DBUS_CALL_FLAGS_NONE, 5000, nullptr, nullptr));
  }

  std::vector<std::string> calls;

 private:
  static void onCall(GDBusConnection*, const char*, const char*, const char*, const char* method,
                     GVariant* arguments, GDBusMethodInvocation* invocation, gpointer self) {
    const GLibPointer<char> text(g_variant_print(arguments, FALSE));
    static_cast<FakeFileManager1*>(self)->calls.push_back(std::string(method) + text.get());
    g_dbus_method_invocation_return_value(invocation, nullptr);
  }

  GObjectPointer<GDBusConnection> connection_;
};

/// A desktop entry whose program notes its arguments.
void installViewer(const std::string& applications, const std::string& notes) {
  const std::string program = applications + "/viewer";
  test::writeFile(program, "#!/bin/sh\nprintf '%s\\n' \"$@\" >> '" + notes + "'\n");
  test::writeFile(applications + "/viewer.desktop",
                  "[Desktop Entry]\nType=Application\nName=Viewer\nExec=" + program +
                      " %U\nMimeType=inode/directory;x-scheme-handler/tavrintest;\n");
  test::writeFile(applications + "/mimeapps.list",
                  "[Default Applications]\ninode/directory=viewer.desktop\n"
                  "x-scheme-handler/tavrintest=viewer.desktop\n");
}

class WorkspaceTest : public testing::Test {
 protected:
  // GIO's own connection would end this program with the test's bus.
  WorkspaceTest() { g_dbus_connection_set_exit_on_close(shared_.get(), FALSE); }

  std::string noteOf(const std::string& name) const { return test::readFile(folder_ / name); }

  test::PrivateBus bus_{"DBUS_SESSION_BUS_ADDRESS"};
  GObjectPointer<GDBusConnection> connection_ = bus_.connect();
  GObjectPointer<GDBusConnection> shared_{g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr)};
  test::TemporaryFolder folder_;
  FakeLog log_;
  FakeBundle bundle_;
  LinuxPropertyListSerialization propertyLists_;
  ApplicationTable applications_{bundle_, propertyLists_, log_};
};

TEST_F(WorkspaceTest, asksTheFileManagerToShowAFolder) {
  FakeFileManager1 fileManager(bus_);
  LinuxWorkspace workspace(connection_.get(), applications_, nullptr, log_);
  workspace.selectNoFileInFileViewerRootedAtPath("/tmp/a b/\xff%?#\n/");
  workspace.selectNoFileInFileViewerRootedAtPath("/");
  ASSERT_TRUE(test::waitUntil([&] { return fileManager.calls.size() == 2; }));
  EXPECT_THAT(fileManager.calls,
              ElementsAre("ShowFolders(['file:///tmp/a%20b/%FF%25%3F%23%0A'], '')",
                          "ShowFolders(['file:///'], '')"));
  EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(WorkspaceTest, asksTheFileManagerToSelectEachFileByItself) {
  FakeFileManager1 fileManager(bus_);
  LinuxWorkspace workspace(connection_.get(), applications_, nullptr, log_);
  workspace.selectFile("/tmp/a b/new|\xff.txt", "/tmp/a b");
  workspace.selectFile("/c", "/");
  ASSERT_TRUE(test::waitUntil([&] { return fileManager.calls.size() == 2; }));
  EXPECT_THAT(fileManager.calls, ElementsAre("ShowItems(['file:///tmp/a%20b/new%7C%FF.txt'], '')",
                                             "ShowItems(['file:///c'], '')"));
  EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(WorkspaceTest, opensAFolderWithItsApplicationWhereNoFileManagerIsOnTheBus) {
  const std::string applications = std::string(g_get_user_data_dir()) + "/applications";
  installViewer(applications, folder_ / "notes");
  LinuxWorkspace workspace(connection_.get(), applications_, nullptr, log_);
  workspace.selectFile(folder_.path() + "/gone/file", folder_.path());
  EXPECT_TRUE(test::waitUntil([&] { return !noteOf("notes").empty(); }));
  LinuxWorkspace withoutBus(nullptr, applications_, nullptr, log_);
  withoutBus.selectNoFileInFileViewerRootedAtPath("/");
  EXPECT_TRUE(test::waitUntil([&] { return test::linesOf(noteOf("notes")).size() == 2; }));
  // Of a type that needs no database to be told.
  withoutBus.openFile("/usr");
  EXPECT_TRUE(test::waitUntil([&] { return test::linesOf(noteOf("notes")).size() == 3; }));
  EXPECT_THAT(test::linesOf(noteOf("notes")), ElementsAre(folder_.path(), "/", "/usr"));
  EXPECT_THAT(log_.lines(), IsEmpty());
  withoutBus.selectFile("/file", "/no such folder");
  EXPECT_THAT(log_.lines(),
              ElementsAre(HasSubstr("shows /no such folder: no session bus; open /no such folder: "
                                    "No such file")));
}

TEST_F(WorkspaceTest, opensAUrlInTheApplicationOfItsScheme) {
  installViewer(std::string(g_get_user_data_dir()) + "/applications", folder_ / "notes");
  LinuxWorkspace workspace(nullptr, applications_, nullptr, log_);
  const std::string url = "tavrintest://host/a%20b?x=1&y='$(id)'#end";
  workspace.openURL(url);
  EXPECT_TRUE(test::waitUntil([&] { return !noteOf("notes").empty(); }));
  EXPECT_THAT(test::linesOf(noteOf("notes")), ElementsAre(url));
  EXPECT_THAT(log_.lines(), IsEmpty());
  for (const char* bad : {"", "no url", "--help", "tavrinunknown:x"}) workspace.openURL(bad);
  EXPECT_THAT(log_.lines(), ElementsAre(HasSubstr("Invalid argument"), HasSubstr("no url"),
                                        HasSubstr("--help"), HasSubstr("tavrinunknown:x")));
}

TEST_F(WorkspaceTest, saysThatAFileCannotBeOpened) {
  LinuxWorkspace workspace(connection_.get(), applications_, nullptr, log_);
  test::writeFile(folder_ / "file", std::string("\0\1", 2));
  workspace.openFile(folder_ / "file");
  workspace.openFile(folder_ / "gone");
  EXPECT_THAT(log_.lines(), ElementsAre(HasSubstr("find an application for application/"),
                                        HasSubstr("gone: No such file")));
}

TEST_F(WorkspaceTest, mayEndWhileAFolderIsBeingShown) {
  {
    LinuxWorkspace workspace(connection_.get(), applications_, nullptr, log_);
    workspace.selectNoFileInFileViewerRootedAtPath("/tmp");
  }
  synchronize(connection_.get());
  while (g_main_context_iteration(nullptr, FALSE) != FALSE) continue;
  EXPECT_THAT(log_.lines(), IsEmpty());
}

constexpr const char* noteOwnProcess =
    "#!/bin/sh\n"
    "in=$(readlink /proc/$$/fd/0) out=$(readlink /proc/$$/fd/1)\n"
    "{ echo \"$$ $PPID $(cut -d' ' -f6 /proc/$$/stat) $PWD\"; echo \"$in\"; echo \"$out\"; }"
    " > \"${0%/*}/started.part\"\n"
    "mv \"${0%/*}/started.part\" \"${0%/*}/started\"\n";

TEST_F(WorkspaceTest, launchesAProgramThatIsNoChildOfThisOne) {
  LinuxWorkspace workspace(connection_.get(), applications_, nullptr, log_);
  test::writeFile(folder_ / "program", noteOwnProcess);
  EXPECT_TRUE(workspace.launchApplication(folder_ / "program"));
  ASSERT_TRUE(test::waitUntil([&] { return !noteOf("started").empty(); }));
  const auto lines = test::linesOf(noteOf("started"));
  ASSERT_THAT(lines, SizeIs(3));
  int process = 0;
  int parent = 0;
  int session = 0;
  char workingFolder[16] = "";
  ASSERT_EQ(
      std::sscanf(lines[0].c_str(), "%d %d %d %15s", &process, &parent, &session, workingFolder),
      4);
  EXPECT_NE(parent, ::getpid());
  EXPECT_EQ(session, process);
  EXPECT_STREQ(workingFolder, "/");
  EXPECT_EQ(lines[1], "/dev/null");
  EXPECT_EQ(lines[2], "/dev/null");
}

TEST_F(WorkspaceTest, launchesTheProgramOfABundle) {
  LinuxWorkspace workspace(connection_.get(), applications_, nullptr, log_);
  test::writeFile(folder_ / "My Service.service/My Service", noteOwnProcess);
  test::writeFile(folder_ / "Other.app/AppRun", noteOwnProcess);
  EXPECT_TRUE(workspace.launchApplication(folder_ / "My Service.service"));
  EXPECT_TRUE(workspace.launchApplication(folder_ / "Other.app"));
  EXPECT_TRUE(test::waitUntil([&] {
    return !noteOf("My Service.service/started").empty() && !noteOf("Other.app/started").empty();
  }));
}

TEST_F(WorkspaceTest, saysThatAProgramCannotBeLaunched) {
  LinuxWorkspace workspace(connection_.get(), applications_, nullptr, log_);
  test::writeFile(folder_ / "plain", "not a program");
  std::string empty = folder_ / "Empty.app";
  test::writeFile(empty + "/Contents", "");
  EXPECT_FALSE(workspace.launchApplication(folder_ / "missing"));
  EXPECT_FALSE(workspace.launchApplication(folder_ / "plain"));
  EXPECT_FALSE(workspace.launchApplication(empty));
  EXPECT_THAT(log_.lines(), ElementsAre(HasSubstr("No such file"), HasSubstr("Permission denied"),
                                        HasSubstr("no program in the bundle")));
}

class SleepTest : public testing::Test {
 protected:
  /// Plays logind; returns when it is on the bus.
  void startLogind() {
    logind_ = std::make_unique<test::ChildProcess>(std::vector<std::string>{
        TAVRIN_PYTHON, "-m", "dbusmock", "--system", "--template", "logind"});
    ASSERT_TRUE(test::waitUntil([&] { return system_.hasOwner("org.freedesktop.login1"); }));
  }

  void emit(const char* goesToSleep) {
    test::ChildProcess caller({"gdbus", "call", "--system", "--dest", "org.freedesktop.login1",
                               "--object-path", "/org/freedesktop/login1", "--method",
                               "org.freedesktop.DBus.Mock.EmitSignal",
                               "org.freedesktop.login1.Manager", "PrepareForSleep", "b",
                               std::string("[<") + goesToSleep + ">]"});
    ASSERT_EQ(caller.wait(), 0) << caller.errors();
  }

  test::PrivateBus system_{"DBUS_SYSTEM_BUS_ADDRESS"};
  std::unique_ptr<test::ChildProcess> logind_;
  FakeLog log_;
  FakeBundle bundle_;
  LinuxPropertyListSerialization propertyLists_;
  ApplicationTable applications_{bundle_, propertyLists_, log_};
};

TEST_F(SleepTest, isAnnouncedByLogindAlone) {
  LinuxWorkspace workspace(nullptr, applications_, nullptr, log_);
  int sleeps = 0;
  const Observation observation = workspace.observeWillSleep([&] { ++sleeps; });
  Observation ended = workspace.observeWillSleep([&] { sleeps += 100; });
  ended.reset();
  startLogind();
  // The first announcement that arrives shows that the observation stands.
  for (int round = 0; round < 10 && sleeps == 0; ++round) {
    emit("true");
    test::waitUntil([&] { return sleeps > 0; }, std::chrono::seconds(2));
  }
  ASSERT_EQ(sleeps, 1);
  emit("false");
  const auto stranger = system_.connect();
  g_dbus_connection_emit_signal(stranger.get(), nullptr, "/org/freedesktop/login1",
                                "org.freedesktop.login1.Manager", "PrepareForSleep",
                                g_variant_new("(b)", TRUE), nullptr);
  g_dbus_connection_flush_sync(stranger.get(), nullptr, nullptr);
  emit("true");
  EXPECT_TRUE(test::waitUntil([&] { return sleeps > 1; }));
  EXPECT_EQ(sleeps, 2);
  EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(SleepTest, isNotAnnouncedWithoutASystemBus) {
  system_.kill();
  LinuxWorkspace workspace(nullptr, applications_, nullptr, log_);
  const Observation one = workspace.observeWillSleep([] {});
  const Observation two = workspace.observeWillSleep([] {});
  EXPECT_TRUE(test::waitUntil([&] { return !log_.lines().empty(); }));
  EXPECT_THAT(log_.lines(), ElementsAre(HasSubstr("sleep")));
}

}  // namespace

}  // namespace tavrin
