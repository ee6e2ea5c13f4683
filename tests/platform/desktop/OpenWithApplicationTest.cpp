// Starting applications by their names, as their desktop entries say.
#include <fcntl.h>
#include <gio/gdesktopappinfo.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "platform/linux/LinuxPropertyListSerialization.h"
#include "platform/linux/OpenWithApplication.h"
#include "tests/platform/desktop/DesktopSession.h"
#include "tests/support/FakeBundle.h"
#include "tests/support/FakeLog.h"

namespace tavrin {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// Notes, in the file whose name stands in its first argument, its process, its folder, and its
/// other arguments, each ended by a NUL byte.
constexpr const char* recorder =
    "#!/bin/sh\n"
    "notes=$1; shift\n"
    "{ printf '%s\\0' \"$$ $PPID $(cut -d' ' -f6 /proc/$$/stat)\" \"$PWD\""
    " \"$(for handle in 0 1 /proc/$$/fd/*; do echo"
    " \"${handle##*/}:$(readlink /proc/$$/fd/${handle##*/})\"; done)\""
    " \"${DESKTOP_STARTUP_ID-none}${XDG_ACTIVATION_TOKEN-none}\" \"$@\"; } > \"$notes.part\"\n"
    "mv \"$notes.part\" \"$notes\"\n";

class OpenWithApplicationTest : public testing::Test {
 protected:
  struct Start {
    std::string process, folder, handles, tokens;
    std::vector<std::string> arguments;
  };

  OpenWithApplicationTest() {
    bundle_.resources["Applications.plist"] = TAVRIN_TEST_RESOURCES "/Applications.plist";
    test::writeFile(recorder_, recorder);
    test::writeFile(file_, "text");
  }

  void TearDown() override { std::filesystem::remove_all(applications_); }

  /// Installs an entry that records its start; `codes` are the field codes of its Exec.
  void install(const std::string& id, const std::string& codes, const std::string& lines = "") {
    test::writeFile(applications_ + "/" + id,
                    "[Desktop Entry]\nType=Application\nExec=" + recorder_ + " " + notes(id) + " " +
                        codes + "\n" + (lines.starts_with("Name=") ? "" : "Name=Some\n") + lines);
    // GLib learns of new entries by the way.
    ASSERT_TRUE(test::waitUntil([&] {
      return GObjectPointer<GDesktopAppInfo>(g_desktop_app_info_new(id.c_str())) != nullptr;
    }));
  }

  std::string notes(const std::string& id) const { return folder_ / ("notes-" + id); }

  bool open(const std::string& path, const std::string& name) {
    return openFileWithApplication(path, name, table_, log_);
  }

  Start startOf(const std::string& id) {
    EXPECT_TRUE(test::waitUntil([&] { return std::filesystem::exists(notes(id)); })) << id;
    std::vector<std::string> words;
    std::string text = test::readFile(notes(id));
    std::filesystem::remove(notes(id));
    for (std::size_t end; (end = text.find('\0')) != std::string::npos; text.erase(0, end + 1)) {
      words.push_back(text.substr(0, end));
    }
    if (words.size() < 4) return {};
    return {words[0], words[1], words[2], words[3], {words.begin() + 4, words.end()}};
  }

  bool wasStarted(const std::string& id) const { return std::filesystem::exists(notes(id)); }

  const std::string applications_ = std::string(g_get_user_data_dir()) + "/applications";
  test::TemporaryFolder folder_;
  const std::string recorder_ = folder_ / "recorder";
  const std::string file_ = folder_ / "a file.txt";
  FakeLog log_;
  FakeBundle bundle_;
  LinuxPropertyListSerialization propertyLists_;
  ApplicationTable table_{bundle_, propertyLists_, log_};
};

TEST_F(OpenWithApplicationTest, findsTheFirstEntryOfTheTableThatIsInstalled) {
  install("com.sublimetext.three.desktop", "%f");
  install("sublime-text_subl.desktop", "%f");
  test::writeFile(applications_ + "/sublime_text.desktop",
                  "[Desktop Entry]\nType=Application\nName=Sublime Text\nTryExec=no-such-program\n"
                  "Exec=" +
                      recorder_ + " " + notes("sublime_text.desktop") + "\n");
  EXPECT_TRUE(open(file_, "Sublime Text"));
  EXPECT_THAT(startOf("sublime-text_subl.desktop").arguments, ElementsAre(file_));
  EXPECT_FALSE(wasStarted("sublime_text.desktop"));
  EXPECT_FALSE(wasStarted("com.sublimetext.three.desktop"));
  EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(OpenWithApplicationTest, findsAnEntryByItsOwnNameOrWindowClass) {
  install("b-own.desktop", "%f", "Name=Emacs\nName[de]=Anders\n");
  install("a-other.desktop", "%f", "Name=Emacs (Client)\n");
  install("c-own.desktop", "%f", "Name=Emacs\n");
  install("jetbrains-idea-0815.desktop", "%f",
          "Name=IntelliJ IDEA Ultimate 2099.1\nStartupWMClass=jetbrains-idea\n");
  EXPECT_TRUE(open(file_, "Emacs"));
  EXPECT_THAT(startOf("b-own.desktop").arguments, ElementsAre(file_));
  EXPECT_TRUE(open(file_, "IntelliJ IDEA"));
  EXPECT_THAT(startOf("jetbrains-idea-0815.desktop").arguments, ElementsAre(file_));
  EXPECT_FALSE(wasStarted("a-other.desktop"));
  EXPECT_FALSE(wasStarted("c-own.desktop"));
}

TEST_F(OpenWithApplicationTest, leavesNoTraceOfAnApplicationThatIsMissing) {
  install("hidden.desktop", "%f", "Name=Other\n");
  test::writeFile(applications_ + "/emacs.desktop",
                  "[Desktop Entry]\nType=Application\nName=Emacs\nHidden=true\nExec=/bin/sh\n");
  test::writeFile(applications_ + "/gone.desktop",
                  "[Desktop Entry]\nType=Application\nName=Emacs\nExec=no-such-program\n");
  for (const char* name : {"Emacs", "Sublime Text", "", "no such application"}) {
    EXPECT_FALSE(open(file_, name)) << name;
  }
  EXPECT_FALSE(open(file_, std::string(100000, 'x')));
  EXPECT_FALSE(open("", "Emacs"));
  EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(OpenWithApplicationTest, givesTheFieldCodesWhatTheyStandFor) {
  const std::string odd = folder_ / "-a b%'\"$\n\xff\xc3\xa4#?.txt";
  test::writeFile(odd, "text");
  const std::string uri = "file://" + folder_.path() + "/-a%20b%25'%22$%0A%FF%C3%A4%23%3F.txt";
  install("emacs.desktop", "%i -- %f", "Name=The Editor\nIcon=picture\n");
  EXPECT_TRUE(open(odd, "Emacs"));
  EXPECT_THAT(startOf("emacs.desktop").arguments, ElementsAre("--icon", "picture", "--", odd));
  struct Case {
    std::string codes, lines;
    std::vector<std::string> arguments;
  };
  const Case cases[] = {{"%F", "", {odd}},
                        {"--last", "", {"--last", odd}},
                        {"%u", "", {odd}},
                        {"100%% %U", "", {"100%", odd}},
                        {"-u %u", "X-GIO-NoFuse=true\n", {"-u", uri}},
                        {"-U %U", "X-GIO-NoFuse=true\n", {"-U", uri}},
                        {"%c %f", "", {"The Editor", odd}}};
  for (const Case& each : cases) {
    install("emacs.desktop", each.codes, "Name=The Editor\n" + each.lines);
    ASSERT_TRUE(test::waitUntil([&] {
      const GObjectPointer<GDesktopAppInfo> entry(g_desktop_app_info_new("emacs.desktop"));
      const char* line = entry ? g_app_info_get_commandline(G_APP_INFO(entry.get())) : nullptr;
      return line != nullptr && std::string(line).ends_with(" " + each.codes);
    }));
    EXPECT_TRUE(open(odd, "Emacs"));
    EXPECT_EQ(startOf("emacs.desktop").arguments, each.arguments) << each.codes;
  }
}

TEST_F(OpenWithApplicationTest, startsAProgramThatIsNoChildAndInheritsNothing) {
  // NOLINTNEXTLINE(android-cloexec-open): what must not be inherited although it could be
  const int held = ::open(file_.c_str(), O_RDONLY);
  ASSERT_GE(held, 0);
  test::setVariable("DESKTOP_STARTUP_ID", "mine");
  test::setVariable("XDG_ACTIVATION_TOKEN", "mine");
  install("emacs.desktop", "%f");
  EXPECT_TRUE(open(folder_.path(), "Emacs"));
  const Start start = startOf("emacs.desktop");
  test::setVariable("DESKTOP_STARTUP_ID", std::nullopt);
  test::setVariable("XDG_ACTIVATION_TOKEN", std::nullopt);
  ::close(held);
  EXPECT_THAT(start.arguments, ElementsAre(folder_.path()));
  EXPECT_EQ(start.tokens, "nonenone");
  EXPECT_THAT(start.handles, HasSubstr("0:/dev/null\n1:"));
  EXPECT_THAT(start.handles, testing::Not(HasSubstr(file_)));
  int process = 0;
  int parent = 0;
  int session = 0;
  ASSERT_EQ(std::sscanf(start.process.c_str(), "%d %d %d", &process, &parent, &session), 3);
  EXPECT_NE(parent, ::getpid());
  EXPECT_NE(session, ::getsid(0));
}

TEST_F(OpenWithApplicationTest, startsInTheFolderOfTheEntryAndInATerminal) {
  const std::string own = folder_ / "own folder";
  std::filesystem::create_directories(own);
  install("emacs.desktop", "%f", "Path=" + own + "\n");
  EXPECT_TRUE(open(file_, "Emacs"));
  EXPECT_EQ(startOf("emacs.desktop").folder, own);

  const char* path = g_getenv("PATH");
  const std::string before = path == nullptr ? "" : path;
  test::writeFile(folder_ / "bin/gnome-terminal",
                  "#!/bin/sh\necho in terminal > '" + (folder_ / "terminal") +
                      "'\nwhile [ \"$1\" != -x ] && [ \"$1\" != -- ]; do shift; done\n"
                      "shift\nexec \"$@\"\n");
  test::setVariable("PATH", (folder_ / "bin") + ":" + before);
  install("sublime_text.desktop", "%f", "Terminal=true\n");
  EXPECT_TRUE(open(file_, "Sublime Text"));
  EXPECT_THAT(startOf("sublime_text.desktop").arguments, ElementsAre(file_));
  EXPECT_EQ(test::readFile(folder_ / "terminal"), "in terminal\n");
  test::setVariable("PATH", before);
}

TEST_F(OpenWithApplicationTest, saysWhyAnInstalledApplicationOpensNothing) {
  install("emacs.desktop", "%f");
  EXPECT_FALSE(open(folder_ / "gone", "Emacs"));
  EXPECT_FALSE(open(std::string(100000, 'x'), "Emacs"));
  EXPECT_FALSE(open(file_ + std::string("\0more", 5), "Emacs"));
  EXPECT_THAT(log_.lines(), ElementsAre(HasSubstr("No such file"), HasSubstr("too long"),
                                        HasSubstr("Invalid argument")));
  const std::string nowhere = folder_ / "nowhere";
  install("sublime_text.desktop", "%f", "Path=" + nowhere + "\n");
  EXPECT_FALSE(open(file_, "Sublime Text"));
  ASSERT_EQ(log_.lines().size(), 4U);
  EXPECT_THAT(log_.lines().back(),
              testing::AllOf(HasSubstr("sublime_text.desktop"), HasSubstr(nowhere)));
  EXPECT_FALSE(wasStarted("emacs.desktop"));
}

/// An editor that is started by its name on the bus.
class BusEditor {
 public:
  explicit BusEditor(const test::PrivateBus& bus) : connection_(bus.connect()) {
    const GLibPointer<GDBusNodeInfo> node(g_dbus_node_info_new_for_xml(
        "<node><interface name='org.freedesktop.Application'><method name='Open'>"
        "<arg type='as' direction='in'/><arg type='a{sv}' direction='in'/></method></interface>"
        "</node>",
        nullptr));
    static constexpr GDBusInterfaceVTable methods = {onCall, nullptr, nullptr, {}};
    g_dbus_connection_register_object(connection_.get(), "/org/example/Editor", node->interfaces[0],
                                      &methods, this, nullptr, nullptr);
    const GLibPointer<GVariant> owned(g_dbus_connection_call_sync(
        connection_.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
        "RequestName", g_variant_new("(su)", "org.example.Editor", 4U), nullptr,
        G_DBUS_CALL_FLAGS_NONE, 5000, nullptr, nullptr));
  }

  std::vector<std::string> opened;

 private:
  static void onCall(GDBusConnection*, const char*, const char*, const char*, const char*,
                     GVariant* arguments, GDBusMethodInvocation* invocation, gpointer self) {
    const char* uri = "";
    const GLibPointer<GVariant> uris(g_variant_get_child_value(arguments, 0));
    if (g_variant_n_children(uris.get()) > 0) g_variant_get_child(uris.get(), 0, "&s", &uri);
    static_cast<BusEditor*>(self)->opened.emplace_back(uri);
    g_dbus_method_invocation_return_value(invocation, nullptr);
  }

  GObjectPointer<GDBusConnection> connection_;
};

TEST_F(OpenWithApplicationTest, callsAnApplicationThatIsStartedByTheBus) {
  const test::PrivateBus bus("DBUS_SESSION_BUS_ADDRESS");
  // GIO's own connection would end this program with the test's bus.
  const GObjectPointer<GDBusConnection> shared(
      g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr));
  g_dbus_connection_set_exit_on_close(shared.get(), FALSE);
  BusEditor editor(bus);
  install("org.example.Editor.desktop", "%f", "Name=Emacs\nDBusActivatable=true\n");
  EXPECT_TRUE(open(file_, "Emacs"));
  EXPECT_TRUE(test::waitUntil([&] { return !editor.opened.empty(); }));
  EXPECT_THAT(editor.opened, ElementsAre("file://" + folder_.path() + "/a%20file.txt"));
  EXPECT_FALSE(wasStarted("org.example.Editor.desktop"));
}

}  // namespace

}  // namespace tavrin
