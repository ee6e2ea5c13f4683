#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "extensions/common/MenuExtension.h"
#include "foundation/FileManagers.h"
#include "platform/linux/AcceptedPropertyLists.h"
#include "platform/linux/BusIntake.h"
#include "platform/linux/Identity.h"
#include "platform/linux/LinuxUserDefaultsProvider.h"
#include "tests/menu/MenuFixture.h"
#include "tests/platform/desktop/DesktopSession.h"
#include "tests/support/FakeLog.h"

namespace tavrin {

namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using Rows = PropertyList::Array;
using Row = PropertyList::Dictionary;

/// Keeps the messages that programs want the desktop to show.
class Notifications {
 public:
  explicit Notifications(const test::PrivateBus& bus) : connection_(bus.connect()) {
    static constexpr const char* interface =
        "<node><interface name='org.freedesktop.Notifications'><method name='Notify'>"
        "<arg type='s' direction='in'/><arg type='u' direction='in'/>"
        "<arg type='s' direction='in'/><arg type='s' direction='in'/>"
        "<arg type='s' direction='in'/><arg type='as' direction='in'/>"
        "<arg type='a{sv}' direction='in'/><arg type='i' direction='in'/>"
        "<arg type='u' direction='out'/></method></interface></node>";
    static constexpr GDBusInterfaceVTable calls{notify, nullptr, nullptr, {}};
    const GLibPointer<GDBusNodeInfo> node(g_dbus_node_info_new_for_xml(interface, nullptr));
    g_dbus_connection_register_object(connection_.get(), "/org/freedesktop/Notifications",
                                      *node->interfaces, &calls, this, nullptr, nullptr);
    const GLibPointer<GVariant> owned(g_dbus_connection_call_sync(
        connection_.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
        "RequestName", g_variant_new("(su)", "org.freedesktop.Notifications", 0U), nullptr,
        G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr));
  }

  std::vector<std::string> texts;

 private:
  static void notify(GDBusConnection*, const char*, const char*, const char*, const char*,
                     GVariant* arguments, GDBusMethodInvocation* invocation, gpointer data) {
    const char* text = nullptr;
    g_variant_get_child(arguments, 4, "&s", &text);
    static_cast<Notifications*>(data)->texts.emplace_back(text);
    g_dbus_method_invocation_return_value(invocation, g_variant_new("(u)", 1U));
  }

  GObjectPointer<GDBusConnection> connection_;
};

/// The folders of a user of its own, named as the variables that lead there.
class UserFolders {
 public:
  UserFolders() {
    // The shared connection of GVfs would end the process with the first bus.
    test::setVariable("GIO_USE_VFS", "local");
    for (const char* name : variables) {
      fs::create_directories(folder_ / name);
      fs::permissions(folder_ / name, fs::perms::owner_all);
      test::setVariable(name, folder_ / name);
    }
  }
  UserFolders(const UserFolders&) = delete;
  UserFolders& operator=(const UserFolders&) = delete;
  ~UserFolders() {
    for (const char* name : variables) test::setVariable(name, std::nullopt);
  }

  std::string operator/(const char* variable) const { return folder_ / variable; }

 private:
  static constexpr const char* variables[] = {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME",
                                              "XDG_RUNTIME_DIR"};
  test::TemporaryFolder folder_;
};

class MenuExtensionTest : public ::testing::Test {
 protected:
  void set(const std::string& key, const PropertyList& value) {
    provider_.openSuite(identity::groupIdentifier)->setObject(value, key);
  }
  void setCommands(const std::vector<std::string>& actions) {
    Rows rows;
    for (const std::string& action : actions) {
      rows.emplace_back(Row{{"enable", 1}, {"Action", action}, {"displayName", action}});
    }
    set("arrOfOthers", rows);
  }

  std::unique_ptr<MenuExtension> extension() {
    MenuExtension::FileManager manager{file_manager::nemo, TAVRIN_PREFIX_FROM_MODULE,
                                       [this](const std::string& text) { copied_ = text; },
                                       nullptr};
    return std::make_unique<MenuExtension>(std::move(manager));
  }

  static std::shared_ptr<const SelectedItems> selection(std::vector<ListedItems::Item> items = {
                                                            {"file:///tmp/a"}}) {
    return std::make_shared<ListedItems>(std::move(items));
  }
  /// The titles of the commands for a selected file.
  static std::vector<std::string> commands(MenuExtension& menus) {
    const auto menu = menus.menuForItems(selection());
    std::vector<std::string> titles;
    for (const MenuItem& item : menu->items) {
      for (const MenuItem& inner : item.submenu) titles.push_back(inner.title);
    }
    return titles;
  }
  static void activateFirst(MenuExtension& menus, std::shared_ptr<const SelectedItems> items) {
    const auto menu = menus.menuForItems(std::move(items));
    ASSERT_FALSE(menu->items.empty());
    menus.activate(*menu, menu->items.front().submenu.front());
  }

  UserFolders folder_;
  test::PrivateBus bus_{"DBUS_SESSION_BUS_ADDRESS"};
  FakeLog log_;
  LinuxUserDefaultsProvider provider_{log_};
  std::string copied_;
};

TEST_F(MenuExtensionTest, followsTheSettingsOfOthers) {
  const auto menus = extension();
  EXPECT_THAT(commands(*menus), IsEmpty()) << "there is no suite";
  setCommands({"Cut", "Copy Path"});
  EXPECT_THAT(commands(*menus), ElementsAre("Cut", "Copy Path"));
  setCommands({"Cut"});
  EXPECT_THAT(commands(*menus), ElementsAre("Cut"));
  set("disabledFileManagers", Rows{"nautilus"});
  EXPECT_THAT(commands(*menus), ElementsAre("Cut"));
  set("disabledFileManagers", Rows{"nautilus", "nemo"});
  EXPECT_THAT(commands(*menus), IsEmpty());
  set("disabledFileManagers", "nemo");
  EXPECT_THAT(commands(*menus), ElementsAre("Cut"));
}

TEST_F(MenuExtensionTest, tellsOfChangesWhoeverMakesThem) {
  setCommands({"Cut"});
  set("filesUrlOfCutting", "file:///tmp/a%20b|file:///tmp/c");
  const auto menus = extension();
  std::vector<std::vector<std::string>> told;
  menus->onChange([&](const std::vector<std::string>& items) { told.push_back(items); });
  EXPECT_TRUE(menus->isCut("file:///tmp/c"));
  EXPECT_TRUE(menus->isCut("file:///tmp/a%20%62"));
  EXPECT_FALSE(menus->isCut("file:///tmp/b"));
  EXPECT_FALSE(menus->isCut("sftp://host/tmp/c"));

  commands(*menus);
  test::ChildProcess other({TAVRIN_DEFAULTS_TOOL, "write", "group", "filesUrlOfCutting", "-string",
                            "file:///tmp/c|file:///tmp/d"});
  EXPECT_EQ(other.wait(), 0) << other.errors();
  ASSERT_TRUE(test::waitUntil([&] { return menus->isCut("file:///tmp/d"); }));
  ASSERT_FALSE(told.empty());
  EXPECT_THAT(told.back(), testing::UnorderedElementsAre("file:///tmp/a%20b", "file:///tmp/d"));
}

TEST_F(MenuExtensionTest, aClickReachesTheHost) {
  setCommands({"Cut"});
  const auto menus = extension();
  AcceptedRequests accepted;
  BusIntake intake(accepted, log_);
  ASSERT_EQ(intake.start({}), BusIntake::Outcome::Primary);
  intake.serve();
  activateFirst(*menus, selection({{"file:///tmp/a%20b"}, {"file:///tmp/c"}}));
  std::optional<ExternalRequest> request;
  ASSERT_TRUE(test::waitUntil([&] {
    request = accepted.take();
    return request.has_value();
  }));
  const auto list = AcceptedPropertyLists(accepted).propertyListWithContentsOfFile(request->path);
  ASSERT_TRUE(list);
  EXPECT_EQ(list.value(),
            PropertyList(Row{{"Action", "cutSelectedFiles"},
                             {"SelectedFilesUrl", "file:///tmp/a%20b|file:///tmp/c"}}));
}

TEST_F(MenuExtensionTest, aMissingHostIsSaid) {
  setCommands({"Cut"});
  const Notifications shown(bus_);
  const auto menus = extension();
  activateFirst(*menus, selection());
  ASSERT_TRUE(test::waitUntil([&] { return !shown.texts.empty(); }));
  EXPECT_THAT(shown.texts,
              ElementsAre("Tavrin cannot be started. The command has not been carried out."));
}

TEST_F(MenuExtensionTest, withoutABusNothingIsWaitedFor) {
  setCommands({"Cut"});
  const auto menus = extension();
  bus_.kill();
  const auto start = std::chrono::steady_clock::now();
  activateFirst(*menus, selection());
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
}

TEST_F(MenuExtensionTest, copiesPathsAsText) {
  setCommands({"Copy Path"});
  const auto menus = extension();
  activateFirst(*menus, selection({{"file:///tmp/a%20b"}, {"file:///tmp/%FF"}}));
  EXPECT_EQ(copied_, "/tmp/a b\nfile:///tmp/%FF");
  const auto folder = menus->menuForFolder("file:///tmp/view");
  menus->activate(*folder, folder->items.front().submenu.front());
  EXPECT_EQ(copied_, "/tmp/view");
}

TEST_F(MenuExtensionTest, anIconGetsItsImageOnce) {
  const std::string drawing = test::readFile(TAVRIN_TEST_IMAGE);
  ASSERT_FALSE(drawing.empty());
  set("enableIconOfCustomIcon", true);
  set("arrOfCustomIcon",
      Rows{Row{{"enable", 1}, {"displayName", "No image"}, {"icon", PropertyList::Data{1, 2}}},
           Row{{"enable", 1},
               {"displayName", "Image"},
               {"icon", PropertyList::Data(drawing.begin(), drawing.end())}}});
  const auto menus = extension();
  const auto iconOf = [&menus](std::size_t row) {
    return menus->menuForItems(selection())->items.front().submenu.at(row).icon;
  };
  EXPECT_EQ(iconOf(1), "");
  ASSERT_TRUE(test::waitUntil([&] { return !iconOf(1).empty(); }));
  EXPECT_TRUE(iconOf(1).starts_with(folder_ / "XDG_CACHE_HOME")) << iconOf(1);
  EXPECT_TRUE(test::readFile(iconOf(1)).starts_with("\x89PNG"));
  EXPECT_EQ(iconOf(0), "");
}

}  // namespace

}  // namespace tavrin
